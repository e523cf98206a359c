#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <QPointer>

#include <utility>

namespace OptimizationTool {

using EntityModel::AttributePath;

// While the study switches versions itself it must not be replaced under its own feet. A flag that is set
// though no operation runs was left by an exception, and a reload is the way out of that.
bool OptimizationManager::mustNotReload() const {
  return isSolvingVersions() || (m_data != nullptr && m_data->isEditingOperationRunning());
}

void OptimizationManager::setCurrentEntity(EntityModel::Entity *entity, bool /*scrollTo*/) {
  if (!mustNotReload() && entity == EntityModel::EntityEditor::getRootEntity()) {
    initializeVersion();
  }
}

void OptimizationManager::selectEntities(const std::vector<EntityModel::Entity *> & /*entities*/) {}

void OptimizationManager::changedVersion(EntityModel::ChangeSet & /*changes*/, EntityModel::Entity *entity,
                                         const std::string &versionName, bool /*reload*/) {
  if (!mustNotReload() && entity == EntityModel::EntityEditor::getRootEntity() &&
      getBaseVersionName() != versionName) {
    initializeVersion();
  }
}

void OptimizationManager::changedEntities(EntityModel::ChangeSet &changes) {
  if (isSolvingVersions() || m_data == nullptr || isEditingVersions()) {
    return;
  }
  const OptimizationGroups groups = m_data->getGroups(true);
  // Every value is read before the first one is pushed: pushing row 0 writes its whole row into the baseline,
  // and with it the old values of the other modified attributes.
  std::vector<std::pair<std::size_t, std::string>> edits;
  for (const EntityModel::ChangeSet::ModifiedEntity &modified : changes.getModifiedEntities()) {
    for (const EntityModel::Attribute *attribute : modified.attributes) {
      const AttributePath path(attribute->getAttributePath().toString('.'));
      for (int index = 0; index < groups.size(); ++index) {
        if (groups.getGroup(index).containsAttribute(modified.entity, path)) {
          edits.emplace_back(static_cast<std::size_t>(index), attribute->getValueAsString());
        }
      }
    }
  }
  const QPointer<OptimizationData> data(m_data.get());
  for (const auto &[group, text] : edits) {
    if (!data) {
      return;
    }
    data->setVariantValue(0, group, text);
  }
}

} // namespace OptimizationTool
