#include "EmbeddedHost/src/project/VersionStores.h"

#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/ProjectFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace EmbeddedHost {

namespace fs = std::filesystem;
using ProjectData::StoreLocation;

namespace {

constexpr const char *kWorkFolder = "unfinished";

// A folder itself, not a link to one.
bool isRealFolder(const fs::path &path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() == fs::file_type::directory;
}

bool existsInAnyForm(const fs::path &path) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(path, error).type();
  return type != fs::file_type::not_found && type != fs::file_type::none;
}

bool makeFolder(const fs::path &path) {
  return mkdir(path.c_str(), 0777) == 0 || (errno == EEXIST && isRealFolder(path));
}

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

// Never replaces anything, an empty folder included.
bool renameInto(const fs::path &from, const fs::path &to) {
  return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

} // namespace

std::string resultsFolder(const std::string &projectFile) {
  const fs::path file(projectFile);
  return (file.parent_path() / (file.stem().string() + ".results")).string();
}

std::string versionFolderPath(const std::string &projectFile, const std::string &folderName, bool create) {
  const fs::path results(resultsFolder(projectFile));
  const fs::path folder = results / folderName;
  if (!isFolderName(folderName) || (create && !(makeFolder(results) && makeFolder(folder)))) {
    return {};
  }
  return folder.string();
}

bool removeVersionFolder(const std::string &projectFile, const std::string &folderName) {
  const fs::path results(resultsFolder(projectFile));
  if (!isFolderName(folderName)) {
    return false;
  }
  if (!existsInAnyForm(results)) {
    return true;
  }
  if (!isRealFolder(results)) {
    return false;
  }
  std::error_code error;
  // Links are removed, not followed.
  fs::remove_all(results / folderName, error);
  return !error;
}

bool copyFolder(const std::string &from, const std::string &to, const std::string &workFolder) {
  const fs::path unfinished = fs::path(workFolder) / newFolderName();
  const bool isCopied =
      makeFolder(workFolder) && copyTree(from, unfinished.string()) && renameInto(unfinished, to);
  std::error_code error;
  if (!isCopied) {
    fs::remove_all(unfinished, error);
  }
  fs::remove(workFolder, error);
  return isCopied;
}

void removeUnfinishedCopies(const std::string &projectFile) {
  const fs::path results(resultsFolder(projectFile));
  std::error_code error;
  if (isRealFolder(results)) {
    fs::remove_all(results / kWorkFolder, error);
  }
}

bool syncVersionFolder(const std::string &projectFile, const std::string &folderName) {
  const fs::path results(resultsFolder(projectFile));
  const fs::path folder = results / folderName;
  if (!isFolderName(folderName) || !isRealFolder(results) || !isRealFolder(folder)) {
    return !existsInAnyForm(folder);
  }
  return syncTree(folder.string()) && syncFolder(results.string()) &&
         syncFolder(results.parent_path().empty() ? "." : results.parent_path().string());
}

VersionStores::~VersionStores() = default;

std::string VersionStores::getStoreDirectoryName(const StoreLocation &store) {
  return folderNameOf(store).has_value() ? store.versionFolder : std::string();
}

bool VersionStores::remove(const StoreLocation &store) {
  const std::optional<std::string> name = folderNameOf(store);
  return name.has_value() && removeVersionFolder(store.projectFile, *name);
}

bool VersionStores::copyResults(const StoreLocation &source, const StoreLocation &target, bool move,
                                Tools::ToolProgress * /*progress*/, bool overwrite) {
  const std::optional<std::string> from = folderNameOf(source);
  const std::optional<std::string> to = folderNameOf(target);
  if (!from.has_value() || !to.has_value()) {
    return false;
  }
  const fs::path fromResults(resultsFolder(source.projectFile));
  const fs::path toResults(resultsFolder(target.projectFile));
  const fs::path fromFolder = fromResults / *from;
  const fs::path toFolder = toResults / *to;
  std::error_code error;
  if (!existsInAnyForm(fromFolder) || fromFolder == toFolder || fs::equivalent(fromFolder, toFolder, error)) {
    return true;
  }
  const bool areFolders = isRealFolder(fromResults) && isRealFolder(fromFolder) && makeFolder(toResults);
  if (!areFolders || (!overwrite && existsInAnyForm(toFolder))) {
    return false;
  }
  const fs::path work = toResults / kWorkFolder;
  const fs::path arriving = work / newFolderName();
  // The old content stays until the new one is there whole.
  bool isDone = makeFolder(work);
  isDone =
      isDone && (move ? renameInto(fromFolder, arriving) : copyTree(fromFolder.string(), arriving.string()));
  if (isDone && existsInAnyForm(toFolder)) {
    isDone = renameInto(toFolder, work / newFolderName());
  }
  isDone = isDone && renameInto(arriving, toFolder);
  fs::remove_all(work, error);
  return isDone;
}

bool VersionStores::rename(const std::string &from, const std::string &to) {
  const fs::path source(from);
  const fs::path target(to);
  const bool isSameFolder = source.parent_path() == target.parent_path() &&
                            source.parent_path().extension() == ".results" &&
                            isRealFolder(source.parent_path());
  const bool areVersionFolders =
      isFolderName(source.filename().string()) && isFolderName(target.filename().string());
  return isSameFolder && areVersionFolders && isRealFolder(source) && renameInto(source, target);
}

} // namespace EmbeddedHost
