#include "HostModel/ChangeManager.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ProjectStore.h"
#include "OptimizationTool/OptimizationData.h"

namespace OptimizationTool {

using EntityGUI::EntityManager;

// A new version starts with the results of the version that it was made from, and is current afterwards.
void OptimizationData::processNewVersion(EntityModel::ModelVersion *version,
                                         EntityModel::ModelVersion *origin, EntityModel::ChangeSet &changes) {
  const EditingVersionsScope editing(*this);
  const QPointer<OptimizationData> self(this);
  EntityModel::ChangeManager &manager = *m_changeManager;
  bool isEdited = false;
  manager.editedVersion(version, &changes, isEdited, true);
  if (!self) {
    return;
  }
  ProjectData::ProjectStore originStore(EntityManager::s_CurrentFilename,
                                        manager.getVersionFolder(origin, false));
  ProjectData::ProjectStore newStore(EntityManager::s_CurrentFilename,
                                     manager.getVersionFolder(version, false));
  newStore.remove();
  if (!self) {
    return;
  }
  originStore.copyResults(newStore, false, nullptr, true);
  if (!self) {
    return;
  }
  if (manager.getCurrentVersion() != version) {
    manager.setCurrentVersion(version, &changes, false, nullptr, true);
    if (!self) {
      return;
    }
  }
  EntityManager::checkSelectionsAreValid();
  EntityManager::setNeedsSave(true);
}

} // namespace OptimizationTool
