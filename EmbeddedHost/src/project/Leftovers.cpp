#include "EmbeddedHost/src/project/Leftovers.h"

#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/src/project/FileChecks.h"
#include "EmbeddedHost/src/project/FileLock.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/VersionStores.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdio.h>
#include <vector>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kRandomSize = 16;

struct Unfinished {
  std::string_view kind;    // kNew or kUpgrade
  std::string_view project; // the name before that
  std::string_view random;
  std::string_view ending; // "", kJournalEnding or, of something new, kResultsEnding
};

std::optional<Unfinished> parse(std::string_view name) {
  for (const std::string_view kind : {kNew, kUpgrade}) {
    const std::size_t begin = name.rfind(kind);
    if (begin == std::string_view::npos || begin == 0) {
      continue;
    }
    const std::string_view rest = name.substr(begin + kind.size());
    const Unfinished found{kind, name.substr(0, begin), rest.substr(0, kRandomSize),
                           rest.size() < kRandomSize ? std::string_view() : rest.substr(kRandomSize)};
    const bool isKnown = found.ending.empty() || found.ending == kJournalEnding ||
                         (kind == kNew && found.ending == kResultsEnding);
    if (isFolderName(found.random) && isKnown) {
      return found;
    }
  }
  return std::nullopt;
}

void discard(const Folder &folder, const std::string &name, EntryKind kind) {
  std::string ignored;
  if (folder.kindOf(name) == kind) {
    folder.remove(name, ignored);
  }
}

// Of a project whose results folder got its place, but which itself did not get its name.
// \return whether none of it is in that place any more
bool takeBackResults(const Folder &folder, const std::string &projectFile, const std::string &random) {
  const std::string results = std::filesystem::path(resultsFolder(projectFile)).filename().string();
  const Folder placed = folder.open(results);
  const Folder mark = placed.isOpen() ? placed.open(kPublishing) : Folder();
  if (!mark.isOpen() || mark.kindOf(random) == EntryKind::Absent) {
    return true;
  }
  const std::string name = std::filesystem::path(projectFile).filename().string();
  if (folder.kindOf(name) != EntryKind::Absent) {
    return true;
  }
  // Out of the way in one step: were we killed while removing it, nobody would know any more that it is of no use.
  std::string taken = name;
  taken.append(kNew).append(random).append(kResultsEnding);
  std::string ignored;
  if (!folder.rename(results, folder, taken, RENAME_NOREPLACE, ignored)) {
    return false;
  }
  discard(folder, taken, EntryKind::Folder);
  return true;
}

// The format of what a copy holds; 0 where that cannot be found out.
std::int64_t formatOfCopy(const std::string &file) {
  try {
    return formatOf(file);
  } catch (const DatabaseError &) {
    return 0;
  }
}

// When the project has the present format, what is left is the project as it was before: it was complete then.
bool keep(const Folder &folder, const std::string &name, const std::string &projectName) {
  const std::int64_t present = formatOfCopy(folder.pathOf(projectName));
  const std::int64_t former = formatOfCopy(folder.pathOf(name));
  const bool isComplete = folder.kindOf(name + std::string(kJournalEnding)) == EntryKind::Absent &&
                          former > 0 && former < present;
  std::string ignored;
  return isComplete && nameKeptProject(folder, name, projectName, former, ignored);
}

void clear(const Folder &folder, const std::string &name, const Unfinished &what,
           const std::string &projectFile) {
  if (what.ending == kResultsEnding) {
    discard(folder, name, EntryKind::Folder);
    return;
  }
  const bool isNew = what.ending.empty() && what.kind == kNew;
  if (isNew && !takeBackResults(folder, projectFile, std::string(what.random))) {
    return; // the file says whose they are
  }
  const bool mayBeKept = what.ending.empty() && what.kind == kUpgrade;
  if (!mayBeKept || !keep(folder, name, std::string(what.project))) {
    discard(folder, name, EntryKind::File);
  }
}

} // namespace

bool isUnfinishedName(std::string_view name) {
  return parse(name).has_value();
}

bool nameKeptProject(const Folder &folder, const std::string &unfinished, const std::string &projectName,
                     std::int64_t format, std::string &problem) {
  constexpr int kMost = 100;
  const std::string name = projectName + ".format-" + std::to_string(format);
  for (int number = 1; number <= kMost; ++number) {
    const std::string free = number == 1 ? name : name + "-" + std::to_string(number);
    if (folder.kindOf(free) == EntryKind::Absent) {
      return folder.rename(unfinished, folder, free, RENAME_NOREPLACE, problem);
    }
  }
  problem = "There are too many files like " + folder.pathOf(name) + ".";
  return false;
}

void removeLeftovers(const std::string &projectFile) {
  const std::filesystem::path path(projectFile);
  const std::string projectName = path.filename().string();
  const Folder folder = Folder::at(path.parent_path().string());
  std::vector<std::string> names;
  std::string ignored;
  if (!folder.isOpen() || !folder.listNames(names, ignored)) {
    return;
  }
  for (const std::string &name : names) {
    const std::optional<Unfinished> what = parse(name);
    if (what.has_value() && what->project == projectName) {
      clear(folder, name, *what, projectFile);
    }
  }
  const std::string resultsPath = resultsFolder(projectFile);
  const std::string resultsName = std::filesystem::path(resultsPath).filename().string();
  // The lock on the results folder is only held while a project is made; letting go of it removes its file.
  if (folder.kindOf(resultsName + ".lock") == EntryKind::File) {
    FileLock::acquire(resultsPath, ignored);
  }
  // A project that has its name is published.
  const Folder results = folder.openMounted(resultsName);
  if (results.isOpen() && folder.kindOf(projectName) == EntryKind::File) {
    discard(results, kPublishing, EntryKind::Folder);
  }
}

} // namespace EmbeddedHost
