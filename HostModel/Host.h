#pragma once

#include "HostModel/Export.h"

namespace EntityModel {
class EntityEditorService;
class ModellingImpactService;
class StudyTypeNameService;
} // namespace EntityModel
namespace EntityGUI {
class EntityManagerService;
}
namespace ProjectData {
class ProjectStoreService;
}
namespace FileSystem {
class DirectoryService;
}

namespace HostModel {

/// The application that the library is loaded into, as a set of services. A null service answers like no
/// host.
class HOSTMODEL_EXPORT Host {
public:
  Host() = default;
  Host(const Host &) = delete;
  Host &operator=(const Host &) = delete;
  virtual ~Host();

  virtual EntityModel::EntityEditorService *getEntityEditor() = 0;
  virtual EntityGUI::EntityManagerService *getEntityManager() = 0;
  virtual EntityModel::StudyTypeNameService *getStudyTypeNames();
  virtual EntityModel::ModellingImpactService *getModellingImpact();
  virtual ProjectData::ProjectStoreService *getProjectStore();
  virtual FileSystem::DirectoryService *getDirectories();
};

/// Makes a host the one that the process works with, for as long as the object lives; the host installed
/// before is installed again afterwards. Installations end in the reverse order of their beginning.
class HOSTMODEL_EXPORT HostInstallation {
public:
  /// \param host  not owned; outlives the installation
  explicit HostInstallation(Host &host);
  HostInstallation(const HostInstallation &) = delete;
  HostInstallation &operator=(const HostInstallation &) = delete;
  ~HostInstallation();

private:
  Host *m_previous;
};

/// The host that is installed now, or null.
HOSTMODEL_EXPORT Host *installedHost() noexcept;

} // namespace HostModel
