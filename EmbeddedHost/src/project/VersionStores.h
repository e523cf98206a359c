#pragma once

#include "EmbeddedHost/src/project/FolderTree.h"
#include "HostModel/ProjectStore.h"

#include <string>
#include <vector>

namespace EmbeddedHost {

/// The folders of versions: "<stem of the project file>.results/<folder name>" beside the project file. Only paths of
/// exactly this form are ever touched, and never through a link. Problems are one sentence with the path and the
/// reason.

/// The folder that holds the versions' folders of a project.
std::string resultsFolder(const std::string &projectFile);
/// That folder, held open.
Folder openResultsFolder(const std::string &projectFile);
/// The folder of one version.
/// \param create  make it when it does not exist
/// \return "" when a folder was to be made and could not be, or when anything but a folder stands in its place
std::string versionFolderPath(const std::string &projectFile, const std::string &folderName, bool create);
/// Removes a version's folder with what it holds. It leaves its place whole or not at all; what cannot be removed then
/// is when the project is opened next.
/// \return whether all of it is gone
bool removeVersionFolder(const std::string &projectFile, const std::string &folderName, std::string &problem);
/// Puts right what an interrupted copy or removal has left behind.
bool removeUnfinishedCopies(const std::string &projectFile, std::string &problem);
/// Writes the files of a version's folder, and the folders above, to the disk. Harmless without a folder.
bool syncVersionFolder(const std::string &projectFile, const std::string &folderName, std::string &problem);

/// The stores of the versions of any project, see ProjectData::ProjectStore.
class VersionStores final : public ProjectData::ProjectStoreService, public FileSystem::DirectoryService {
public:
  ~VersionStores() override;

  std::string getStoreDirectoryName(const ProjectData::StoreLocation &store) override;
  /// Harmless for a store that holds nothing.
  bool remove(const ProjectData::StoreLocation &store) override;
  /// What the target held stays until the new content is complete, whatever happens.
  bool copyResults(const ProjectData::StoreLocation &source, const ProjectData::StoreLocation &target,
                   bool move, Tools::ToolProgress *progress, bool overwrite) override;
  /// Renames a version's folder to another name of that form in the same folder. An existing target is refused.
  bool rename(const std::string &from, const std::string &to) override;

  /// Writes to the disk what copyResults() has brought to its place since this was done last: once for all of it,
  /// because a study that copies the results of thousands of versions must not wait for each file.
  bool syncCopies(std::string &problem);

  /// Why the last operation that changes something answered false; "" when it did not.
  const std::string &lastProblem() const { return m_lastProblem; }

private:
  bool noted(bool isDone);
  void noteUnsynced(Folder results);

  std::string m_lastProblem;
  std::vector<Folder> m_unsynced; ///< one results folder of each file system that something was copied to
};

} // namespace EmbeddedHost
