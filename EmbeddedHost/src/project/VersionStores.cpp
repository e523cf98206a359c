#include "EmbeddedHost/src/project/VersionStores.h"

#include "EmbeddedHost/src/project/CopyProgress.h"
#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/FolderTree.h"
#include "EmbeddedHost/src/project/UnfinishedFolder.h"

#include <filesystem>
#include <optional>
#include <stdio.h>
#include <utility>

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

struct CopyOrder {
  bool isMove = false;
  bool overwrites = false;
  Tools::ToolProgress *progress = nullptr;
};

// Whether the content is in its new place.
bool copyOrMove(const Folder &fromResults, const std::string &from, const Folder &toResults,
                const std::string &to, const CopyOrder &order, std::string &problem) {
  if (order.isMove && fromResults.sharesFileSystem(toResults)) {
    return moveThroughUnfinished(fromResults, from, toResults, to, problem);
  }
  const Folder source = fromResults.open(from);
  if (!source.isOpen()) {
    problem = source.problem();
    return false;
  }
  if (order.progress == nullptr) {
    return copyThroughUnfinished(source, toResults, to, nullptr, problem);
  }
  CopyProgress progress(*order.progress, source);
  return copyThroughUnfinished(source, toResults, to, &progress, problem);
}

// \param placed  receives the results folder of the target when there is new content in it
bool copyStore(const StoreLocation &source, const StoreLocation &target, const CopyOrder &order,
               Folder &placed, std::string &problem) {
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
  Folder toResults = openResults(target.projectFile, true);
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
  if (!order.overwrites && toResults.kindOf(*to) != EntryKind::Absent) {
    problem = "There are results in " + toResults.pathOf(*to) + " already.";
    return false;
  }
  if (!copyOrMove(fromResults, *from, toResults, *to, order, problem)) {
    return false;
  }
  const bool isLeft = order.isMove && !fromResults.sharesFileSystem(toResults);
  placed = std::move(toResults);
  return !isLeft || removeThroughUnfinished(fromResults, *from, problem);
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

Folder openResultsFolder(const std::string &projectFile) {
  return openResults(projectFile);
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

bool removeUnfinishedCopies(const std::string &projectFile, std::string &problem) {
  const Folder results = openResults(projectFile);
  return isUsable(results, problem) ? clearUnfinished(results, problem) : problem.empty();
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
                                Tools::ToolProgress *progress, bool overwrite) {
  m_lastProblem.clear();
  Folder placed;
  const bool isDone = copyStore(source, target, {move, overwrite, progress}, placed, m_lastProblem);
  if (placed.isOpen()) {
    noteUnsynced(std::move(placed));
  }
  return noted(isDone);
}

void VersionStores::noteUnsynced(Folder results) {
  for (const Folder &other : m_unsynced) {
    if (other.sharesFileSystem(results)) {
      return;
    }
  }
  m_unsynced.push_back(std::move(results));
}

bool VersionStores::syncCopies(std::string &problem) {
  while (!m_unsynced.empty()) {
    if (!m_unsynced.back().syncFileSystem(problem)) {
      return false;
    }
    m_unsynced.pop_back();
  }
  return true;
}

bool VersionStores::rename(const std::string &from, const std::string &to) {
  m_lastProblem.clear();
  return noted(renameVersionFolder(from, to, m_lastProblem));
}

} // namespace EmbeddedHost
