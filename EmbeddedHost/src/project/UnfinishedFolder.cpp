#include "EmbeddedHost/src/project/UnfinishedFolder.h"

#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/FolderName.h"

#include <cerrno>
#include <stdio.h>
#include <vector>

namespace EmbeddedHost {

namespace {

constexpr const char *kUnfinished = "unfinished";
constexpr const char *kSetAside = "old-";

// The folder while something is done in it; gone afterwards unless something was left.
class Work {
public:
  explicit Work(const Folder &results) : m_results(results), m_folder(results.make(kUnfinished)) {}
  Work(const Work &) = delete;
  Work &operator=(const Work &) = delete;
  ~Work() { m_results.removeIfEmpty(kUnfinished); }

  const Folder &folder() const { return m_folder; }
  bool isOpen(std::string &problem) const {
    if (!m_folder.isOpen()) {
      problem = m_folder.problem();
    }
    return m_folder.isOpen();
  }

private:
  const Folder &m_results;
  Folder m_folder;
};

std::string setAsideName(const std::string &name) {
  return kSetAside + name;
}

bool isSetAsideName(const std::string &text) {
  return text.rfind(kSetAside, 0) == 0 && isFolderName(text.substr(std::string(kSetAside).size()));
}

// What is no longer of use; the outcome of the operation does not hang on it, the next opening tries again.
void discard(const Folder &work, const std::string &name) {
  std::string ignored;
  work.remove(name, ignored);
}

// Where the file system cannot exchange two names in one step.
bool replaceInTwoSteps(const Folder &source, const std::string &sourceName, const Folder &results,
                       const std::string &name, const Folder &work, std::string &problem) {
  const std::string aside = setAsideName(name);
  // Whatever was set aside before is older than what is in place now.
  if (!work.remove(aside, problem) || !results.rename(name, work, aside, RENAME_NOREPLACE, problem)) {
    return false;
  }
  if (!source.rename(sourceName, results, name, RENAME_NOREPLACE, problem)) {
    std::string ignored;
    work.rename(aside, results, name, RENAME_NOREPLACE, ignored);
    return false;
  }
  discard(work, aside);
  return true;
}

bool isTaken(const Folder &results, const std::string &name) {
  return results.kindOf(name) != EntryKind::Absent;
}

bool putInPlace(const Folder &work, const std::string &arriving, const Folder &results,
                const std::string &name, std::string &problem) {
  if (!isTaken(results, name)) {
    return work.rename(arriving, results, name, RENAME_NOREPLACE, problem);
  }
  if (work.rename(arriving, results, name, RENAME_EXCHANGE, problem)) {
    discard(work, arriving);
    return true;
  }
  const bool cannotExchange = errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
  return cannotExchange && replaceInTwoSteps(work, arriving, results, name, work, problem);
}

} // namespace

bool removeThroughUnfinished(const Folder &results, const std::string &name, std::string &problem) {
  if (!isTaken(results, name)) {
    const Folder work = results.open(kUnfinished);
    return work.isOpen() ? work.remove(setAsideName(name), problem) : true;
  }
  const Work work(results);
  const std::string leaving = newFolderName();
  int error = work.folder().error();
  if (work.isOpen(problem)) {
    if (!work.folder().remove(setAsideName(name), problem)) {
      return false;
    }
    if (results.rename(name, work.folder(), leaving, RENAME_NOREPLACE, problem)) {
      return work.folder().remove(leaving, problem);
    }
    error = errno;
  }
  // Room has to be made on a full disk too, where no other folder can take it.
  const bool isFull = error == ENOSPC || error == EDQUOT;
  return isFull && results.remove(name, problem);
}

bool copyThroughUnfinished(const Folder &source, const Folder &results, const std::string &name,
                           CopyProgress *progress, std::string &problem) {
  const Work work(results);
  const std::string arriving = newFolderName();
  if (!work.isOpen(problem)) {
    return false;
  }
  const bool isDone = copyTree(source, work.folder(), arriving, problem, progress) &&
                      putInPlace(work.folder(), arriving, results, name, problem);
  if (!isDone) {
    discard(work.folder(), arriving);
  }
  return isDone;
}

bool moveThroughUnfinished(const Folder &source, const std::string &sourceName, const Folder &results,
                           const std::string &name, std::string &problem) {
  if (!isTaken(results, name)) {
    return source.rename(sourceName, results, name, RENAME_NOREPLACE, problem);
  }
  const Work work(results);
  return work.isOpen(problem) && replaceInTwoSteps(source, sourceName, results, name, work.folder(), problem);
}

bool restoreSetAside(const Folder &results, const std::string &name, std::string &problem) {
  const Folder work = results.open(kUnfinished);
  const std::string aside = setAsideName(name);
  if (!work.isOpen() || isTaken(results, name) || work.kindOf(aside) == EntryKind::Absent) {
    return true;
  }
  const bool isRestored = work.rename(aside, results, name, RENAME_NOREPLACE, problem);
  results.removeIfEmpty(kUnfinished);
  return isRestored;
}

bool clearUnfinished(const Folder &results, std::string &problem) {
  const Folder work = results.open(kUnfinished);
  std::vector<std::string> names;
  if (!work.isOpen()) {
    problem = work.isAbsent() ? std::string() : work.problem();
    return work.isAbsent();
  }
  if (!work.listNames(names, problem)) {
    return false;
  }
  bool isClear = true;
  for (const std::string &name : names) {
    if (isSetAsideName(name)) {
      const std::string folder = name.substr(std::string(kSetAside).size());
      isClear = (isTaken(results, folder) ? work.remove(name, problem)
                                          : restoreSetAside(results, folder, problem)) &&
                isClear;
    } else if (isFolderName(name)) {
      isClear = work.remove(name, problem) && isClear;
    } else {
      // Not ours to judge; with an empty folder nothing is lost.
      work.removeIfEmpty(name);
    }
  }
  results.removeIfEmpty(kUnfinished);
  return isClear;
}

} // namespace EmbeddedHost
