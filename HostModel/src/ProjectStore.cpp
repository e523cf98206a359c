#include "HostModel/ProjectStore.h"

#include "HostModel/Host.h"

namespace ProjectData {

ProjectStoreService::~ProjectStoreService() = default;

namespace {

ProjectStoreService *service() {
  HostModel::Host *host = HostModel::installedHost();
  return host == nullptr ? nullptr : host->getProjectStore();
}

} // namespace

ProjectStore::ProjectStore(const std::string &projectFile, const std::string &versionFolder)
    : m_location{projectFile, versionFolder} {}

ProjectStore::~ProjectStore() = default;

std::string ProjectStore::getStoreDirectoryName() const {
  ProjectStoreService *stores = service();
  return stores == nullptr ? std::string() : stores->getStoreDirectoryName(m_location);
}

bool ProjectStore::remove() {
  ProjectStoreService *stores = service();
  return stores != nullptr && stores->remove(m_location);
}

bool ProjectStore::copyResults(ProjectStore &target, bool move, Tools::ToolProgress *progress,
                               bool overwrite) {
  ProjectStoreService *stores = service();
  return stores != nullptr && stores->copyResults(m_location, target.m_location, move, progress, overwrite);
}

} // namespace ProjectData

namespace FileSystem {

DirectoryService::~DirectoryService() = default;

bool Directory::rename(const std::string &from, const std::string &to) {
  HostModel::Host *host = HostModel::installedHost();
  DirectoryService *directories = host == nullptr ? nullptr : host->getDirectories();
  return directories != nullptr && directories->rename(from, to);
}

} // namespace FileSystem
