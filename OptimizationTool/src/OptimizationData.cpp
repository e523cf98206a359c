#include "OptimizationTool/OptimizationData.h"

#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/StudyTypeName.h"
#include "HostModel/TypeConstants.h"

namespace OptimizationTool {

using EntityModel::AttributePath;
using EntityModel::EntityEditor;

OptimizationData::OptimizationData(EntityModel::Entity *studyEntity, QObject *parent)
    : QObject(parent), m_studyEntity(studyEntity), m_inputGroups(studyEntity, true),
      m_outputGroups(studyEntity, false), m_changeManager(EntityGUI::EntityManager::getChangeManager()),
      m_observerManager(EntityGUI::EntityManager::getObserverManager()), m_costFunctionBuilder(*this) {
  if (m_studyEntity != nullptr && getStudyType() == EntityModel::ModelVersionStudyType::Optimality) {
    const AttributePath link(EntityModel::OptimalityConfigurationLink_t);
    if (EntityModel::getLinkedEntity(m_studyEntity, link) == nullptr) {
      EntityEditor::createEntity(EntityModel::OptimalityConfiguration_t, m_studyEntity, link, nullptr, true,
                                 true, false, "", -1);
    }
  }
  m_inputGroups.fixVariables();
  m_outputGroups.fixVariables();
}

OptimizationData::~OptimizationData() = default;

OptimizationGroups &OptimizationData::getGroups(bool isInput) const {
  return isInput ? m_inputGroups : m_outputGroups;
}

int OptimizationData::getNumInputs() const {
  return m_inputGroups.size();
}

int OptimizationData::getNumOutputs() const {
  return m_outputGroups.size();
}

std::size_t OptimizationData::getNumVariants() const {
  return m_variants.size();
}

EntityModel::ModelVersionStudyType OptimizationData::getStudyType() {
  const EntityModel::ModelVersion *version = currentVersion();
  return version == nullptr ? EntityModel::ModelVersionStudyType::None : version->getStudyType();
}

QString OptimizationData::getStudyTypeName() const {
  const EntityModel::ModelVersion *version = currentVersion();
  return EntityModel::modelVersionStudyTypeToQString(
      version == nullptr ? EntityModel::ModelVersionStudyType::None : version->getStudyType());
}

std::string OptimizationData::getBaseVersionName() const {
  return EntityModel::getStringValue(m_studyEntity, AttributePath(EntityModel::BaseVersionName_t), "");
}

std::string OptimizationData::getCopyVersionName() const {
  return EntityModel::getStringValue(m_studyEntity, AttributePath(EntityModel::CopyVersionName_t), "");
}

void OptimizationData::setBaseVersionName(const std::string &name) {
  EntityEditor::setValue(m_studyEntity, AttributePath(EntityModel::BaseVersionName_t), name, false, nullptr,
                         true, true);
}

void OptimizationData::setCopyVersionName(const std::string &name) {
  EntityEditor::setValue(m_studyEntity, AttributePath(EntityModel::CopyVersionName_t), name, false, nullptr,
                         true, true);
}

EntityModel::ModelVersion *OptimizationData::currentVersion() const {
  return m_changeManager == nullptr ? nullptr : m_changeManager->getCurrentVersion();
}

EntityModel::ModelVersion *OptimizationData::findVersion(const std::string &label) const {
  return m_changeManager == nullptr ? nullptr : m_changeManager->findVersion(label, nullptr);
}

void OptimizationData::notifyVersionChange(EntityModel::ChangeSet &changes,
                                           const std::string &versionName) const {
  if (m_observerManager != nullptr) {
    m_observerManager->broadcastChangedVersion(changes, EntityGUI::EntityManager::getCurrentEntity(),
                                               versionName, false, true);
  }
}

OptimizationData::RunningOperationScope::RunningOperationScope(OptimizationData &data) : m_data(&data) {
  ++data.m_runningOperations;
}

OptimizationData::RunningOperationScope::~RunningOperationScope() {
  if (m_data) {
    --m_data->m_runningOperations;
  }
}

OptimizationData::RowsInUseScope::RowsInUseScope(OptimizationData &data) : m_data(&data) {
  ++data.m_rowsInUse;
}

OptimizationData::RowsInUseScope::~RowsInUseScope() {
  if (m_data && --m_data->m_rowsInUse == 0) {
    m_data->m_takenRows.clear();
  }
}

OptimizationData::EditingVersionsScope::EditingVersionsScope(OptimizationData &data)
    : m_data(&data), m_previous(data.m_isEditingVersions) {
  data.m_isEditingVersions = true;
  ++data.m_runningOperations;
}

OptimizationData::EditingVersionsScope::~EditingVersionsScope() {
  if (m_data) {
    --m_data->m_runningOperations;
    m_data->m_isEditingVersions = m_previous;
  }
}

} // namespace OptimizationTool
