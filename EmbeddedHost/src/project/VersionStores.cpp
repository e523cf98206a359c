#include "EmbeddedHost/src/project/VersionStores.h"

#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/FolderTree.h"
#include "EmbeddedHost/src/project/UnfinishedFolder.h"

#include <filesystem>
#include <optional>
#include <stdio.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;
using ProjectData::StoreLocation;

namespace {

// The name of the version folder that a location stands for; empty for any path of another form.
std::optional<std::string> folderNameOf(const StoreLocation &store) {
  if (store.projectFile.empty() || store.versionFolder.empty()) {
    return std::nullopt;
  }
  const fs::path folder(store.versionFolder);
  const std::string name = folder.filename().string();
  const bool isInPlace = folder.parent_path() == fs::path(resultsFolder(store.projectFile));
  return isFolderName(name) && isInPlace ? std::optional<std::string>(name) : std::nullopt;
}

std::string noVersionFolder(const std::string &path) {
  return "\"" + path + "\" is no folder of a version.";
}

// A folder by a path whose last name must not be a link; an engineer may well keep the folders above elsewhere.
Folder folderAt(const fs::path &path, bool create) {
  const Folder above = Folder::at(path.parent_path().string());
  if (!above.isOpen()) {
    return Folder::at(path.parent_path().string());
  }
  const std::string name = path.filename().string();
  return create ? above.makeMounted(name) : above.openMounted(name);
}

Folder openResults(const std::string &projectFile, bool create = false) {
  return folderAt(resultsFolder(projectFile), create);
}

// Whether the folder is open; an absent one is no problem.
bool isUsable(const Folder &folder, std::string &problem) {
  problem = folder.isAbsent() ? std::string() : folder.problem();
  return folder.isOpen();
}

bool copyOrMove(const Folder &fromResults, const std::string &from, const Folder &toResults,
                const std::string &to, bool move, std::string &problem) {
  if (move && fromResults.sharesFileSystem(toResults)) {
    return moveThroughUnfinished(fromResults, from, toResults, to, problem);
  }
  const Folder source = fromResults.open(from);
  if (!source.isOpen()) {
    problem = source.problem();
    return false;
  }
  return copyThroughUnfinished(source, toResults, to, problem) &&
         (!move || removeThroughUnfinished(fromResults, from, problem));
}

bool copyStore(const StoreLocation &source, const StoreLocation &target, bool move, bool overwrite,
               std::string &problem) {
  const std::optional<std::string> from = folderNameOf(source);
  const std::optional<std::string> to = folderNameOf(target);
  if (!from.has_value() || !to.has_value()) {
    problem = noVersionFolder(from.has_value() ? target.versionFolder : source.versionFolder);
    return false;
  }
  const Folder fromResults = openResults(source.projectFile);
  if (!isUsable(fromResults, problem)) {
    return problem.empty();
  }
  if (!restoreSetAside(fromResults, *from, problem)) {
    return false;
  }
  const Folder fromFolder = fromResults.open(*from);
  if (!isUsable(fromFolder, problem)) {
    return problem.empty();
  }
  const Folder toResults = openResults(target.projectFile, true);
  if (!toResults.isOpen()) {
    problem = toResults.problem();
    return false;
  }
  if (toResults.holds(*to, fromFolder)) {
    return true;
  }
  if (!restoreSetAside(toResults, *to, problem)) {
    return false;
  }
  if (!overwrite && toResults.kindOf(*to) != EntryKind::Absent) {
    problem = "There are results in " + toResults.pathOf(*to) + " already.";
    return false;
  }
  return copyOrMove(fromResults, *from, toResults, *to, move, problem);
}

bool renameVersionFolder(const std::string &from, const std::string &to, std::string &problem) {
  const fs::path source(from);
  const fs::path target(to);
  const std::string name = source.filename().string();
  const std::string newName = target.filename().string();
  const bool isInPlace =
      source.parent_path() == target.parent_path() && source.parent_path().extension() == ".results";
  if (!isInPlace || !isFolderName(name) || !isFolderName(newName)) {
    problem = "\"" + from + "\" and \"" + to + "\" are not folders of versions of one project.";
    return false;
  }
  const Folder results = folderAt(source.parent_path(), false);
  const Folder folder = results.isOpen() ? results.open(name) : Folder();
  if (!results.isOpen() || !folder.isOpen()) {
    problem = results.isOpen() ? folder.problem() : results.problem();
    return false;
  }
  return results.rename(name, results, newName, RENAME_NOREPLACE, problem);
}

} // namespace

std::string resultsFolder(const std::string &projectFile) {
  const fs::path file(projectFile);
  return (file.parent_path() / (file.stem().string() + ".results")).string();
}

std::string versionFolderPath(const std::string &projectFile, const std::string &folderName, bool create) {
  if (!isFolderName(folderName)) {
    return {};
  }
  const std::string path = (fs::path(resultsFolder(projectFile)) / folderName).string();
  const Folder results = openResults(projectFile, create);
  if (!results.isOpen()) {
    return !create && results.isAbsent() ? path : std::string();
  }
  const Folder folder = create ? results.make(folderName) : results.open(folderName);
  return folder.isOpen() || (!create && folder.isAbsent()) ? path : std::string();
}

bool removeVersionFolder(const std::string &projectFile, const std::string &folderName,
                         std::string &problem) {
  if (!isFolderName(folderName)) {
    problem = noVersionFolder(folderName);
    return false;
  }
  const Folder results = openResults(projectFile);
  if (!isUsable(results, problem)) {
    return problem.empty();
  }
  return removeThroughUnfinished(results, folderName, problem);
}

bool removeVersionFolder(const std::string &projectFile, const std::string &folderName) {
  std::string ignored;
  return removeVersionFolder(projectFile, folderName, ignored);
}

bool copyFolder(const std::string &from, const std::string &to, const std::string &workFolder,
                std::string &problem) {
  const fs::path source(from);
  const fs::path target(to);
  const fs::path work(workFolder);
  const Folder fromResults = folderAt(source.parent_path(), false);
  if (!fromResults.isOpen()) {
    problem = fromResults.problem();
    return false;
  }
  const Folder fromFolder = fromResults.open(source.filename().string());
  const Folder toResults = folderAt(target.parent_path(), false);
  const Folder workParent = folderAt(work.parent_path(), false);
  for (const Folder *folder : {&fromFolder, &toResults, &workParent}) {
    if (!folder->isOpen()) {
      problem = folder->problem();
      return false;
    }
  }
  const Folder unfinished = workParent.make(work.filename().string());
  if (!unfinished.isOpen()) {
    problem = unfinished.problem();
    return false;
  }
  const std::string arriving = newFolderName();
  const bool isCopied =
      copyTree(fromFolder, unfinished, arriving, problem) &&
      unfinished.rename(arriving, toResults, target.filename().string(), RENAME_NOREPLACE, problem);
  if (!isCopied) {
    std::string ignored;
    unfinished.remove(arriving, ignored);
  }
  workParent.removeIfEmpty(work.filename().string());
  return isCopied;
}

bool copyFolder(const std::string &from, const std::string &to, const std::string &workFolder) {
  std::string ignored;
  return copyFolder(from, to, workFolder, ignored);
}

bool removeUnfinishedCopies(const std::string &projectFile, std::string &problem) {
  const Folder results = openResults(projectFile);
  return isUsable(results, problem) ? clearUnfinished(results, problem) : problem.empty();
}

bool removeUnfinishedCopies(const std::string &projectFile) {
  std::string ignored;
  return removeUnfinishedCopies(projectFile, ignored);
}

bool syncVersionFolder(const std::string &projectFile, const std::string &folderName, std::string &problem) {
  if (!isFolderName(folderName)) {
    problem = noVersionFolder(folderName);
    return false;
  }
  const Folder results = openResults(projectFile);
  if (!isUsable(results, problem)) {
    return problem.empty();
  }
  const Folder folder = results.open(folderName);
  if (!isUsable(folder, problem)) {
    return problem.empty();
  }
  const Folder above = Folder::at(fs::path(projectFile).parent_path().string());
  if (!above.isOpen()) {
    problem = above.problem();
    return false;
  }
  return syncTree(folder, problem) && results.sync(problem) && above.sync(problem);
}

bool syncVersionFolder(const std::string &projectFile, const std::string &folderName) {
  std::string ignored;
  return syncVersionFolder(projectFile, folderName, ignored);
}

VersionStores::~VersionStores() = default;

std::string VersionStores::getStoreDirectoryName(const StoreLocation &store) {
  return folderNameOf(store).has_value() ? store.versionFolder : std::string();
}

bool VersionStores::noted(bool isDone) {
  // What was done in the end may have taken a second attempt.
  if (isDone) {
    m_lastProblem.clear();
  }
  return isDone;
}

bool VersionStores::remove(const StoreLocation &store) {
  m_lastProblem.clear();
  const std::optional<std::string> name = folderNameOf(store);
  if (!name.has_value()) {
    m_lastProblem = noVersionFolder(store.versionFolder);
    return false;
  }
  return noted(removeVersionFolder(store.projectFile, *name, m_lastProblem));
}

bool VersionStores::copyResults(const StoreLocation &source, const StoreLocation &target, bool move,
                                Tools::ToolProgress * /*progress*/, bool overwrite) {
  m_lastProblem.clear();
  return noted(copyStore(source, target, move, overwrite, m_lastProblem));
}

bool VersionStores::rename(const std::string &from, const std::string &to) {
  m_lastProblem.clear();
  return noted(renameVersionFolder(from, to, m_lastProblem));
}

} // namespace EmbeddedHost
