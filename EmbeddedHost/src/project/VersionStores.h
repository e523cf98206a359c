#pragma once

#include "HostModel/ProjectStore.h"

#include <string>

namespace EmbeddedHost {

/// The folders of versions: "<stem of the project file>.results/<folder name>" beside the project file. Only paths of
/// exactly this form are ever touched, and never through a link.

/// The folder that holds the versions' folders of a project.
std::string resultsFolder(const std::string &projectFile);
/// The folder of one version.
/// \param create  make it when it does not exist
/// \return "" when a folder was to be made and could not be, or when something else stands in its place
std::string versionFolderPath(const std::string &projectFile, const std::string &folderName, bool create);
/// Removes a version's folder with what it holds. \return whether it is gone
bool removeVersionFolder(const std::string &projectFile, const std::string &folderName);
/// Copies a folder into a place that must be free. It appears there whole or not at all. Regular files and folders are
/// copied; links, pipes and devices are left out.
/// \param workFolder  on the same file system, for what is not finished yet
bool copyFolder(const std::string &from, const std::string &to, const std::string &workFolder);
/// Removes what an interrupted copy has left behind.
void removeUnfinishedCopies(const std::string &projectFile);
/// Writes the files of a version's folder, and the folders above, to the disk.
bool syncVersionFolder(const std::string &projectFile, const std::string &folderName);

/// The stores of the versions of any project, see ProjectData::ProjectStore.
class VersionStores final : public ProjectData::ProjectStoreService, public FileSystem::DirectoryService {
public:
  ~VersionStores() override;

  std::string getStoreDirectoryName(const ProjectData::StoreLocation &store) override;
  bool remove(const ProjectData::StoreLocation &store) override;
  bool copyResults(const ProjectData::StoreLocation &source, const ProjectData::StoreLocation &target,
                   bool move, Tools::ToolProgress *progress, bool overwrite) override;
  /// Renames a version's folder to another name of that form in the same folder. An existing target is refused.
  bool rename(const std::string &from, const std::string &to) override;
};

} // namespace EmbeddedHost
