#include "HostModel/Host.h"

namespace HostModel {

namespace {

Host *s_installed = nullptr;

} // namespace

Host::~Host() = default;

EntityModel::StudyTypeNameService *Host::getStudyTypeNames() {
  return nullptr;
}
EntityModel::ModellingImpactService *Host::getModellingImpact() {
  return nullptr;
}
ProjectData::ProjectStoreService *Host::getProjectStore() {
  return nullptr;
}
FileSystem::DirectoryService *Host::getDirectories() {
  return nullptr;
}

HostInstallation::HostInstallation(Host &host) : m_previous(s_installed) {
  s_installed = &host;
}

HostInstallation::~HostInstallation() {
  s_installed = m_previous;
}

Host *installedHost() noexcept {
  return s_installed;
}

} // namespace HostModel
