#include "OptimizationTool/OptimizationManager.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/ToolProgress.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"

#include <algorithm>

namespace OptimizationTool {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::ChangeManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;

namespace {

ModelVersion *currentVersion() {
  ChangeManager *manager = EntityManager::getChangeManager();
  return manager == nullptr ? nullptr : manager->getCurrentVersion();
}

ModelVersion *resolved(ModelVersion *version) {
  return version == nullptr ? currentVersion() : version;
}

std::string baseVersionNameOf(const Entity *studyEntity) {
  return EntityModel::getStringValue(studyEntity, AttributePath(EntityModel::BaseVersionName_t), "");
}

std::vector<Entity *> studyEntities(const Entity *root) {
  return EntityModel::getLinkedEntities(root, AttributePath(EntityModel::OptimizationDataList_t));
}

void notifyVersionChange(ChangeSet &changes) {
  if (EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager()) {
    observers->broadcastChangedVersion(changes, EntityManager::getCurrentEntity(),
                                       EntityManager::getCurrentVersion(), false, true);
  }
}

void releaseFromStudy(ModelVersion &version) {
  version.clearStudy();
  version.setReadOnlyVersion("false");
}

} // namespace

OptimizationManager &OptimizationManager::instance() {
  static OptimizationManager manager;
  return manager;
}

OptimizationManager::OptimizationManager() : QObject(nullptr), EntityGUI::Observer(false, true) {
  if (EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager()) {
    observers->addObserver(this);
  }
}

OptimizationManager::~OptimizationManager() {
  if (EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager()) {
    observers->removeObserver(this);
  }
}

Entity *OptimizationManager::getOptimizationDataEnt(ModelVersion *version) {
  const ModelVersion *wanted = resolved(version);
  if (wanted == nullptr) {
    return nullptr;
  }
  const std::string label = wanted->getLabel();
  const Entity *root = EntityEditor::getRootEntity();
  if (root == nullptr) {
    return nullptr;
  }
  for (Entity *entity : studyEntities(root)) {
    if (baseVersionNameOf(entity) == label) {
      return entity;
    }
  }
  return nullptr;
}

bool OptimizationManager::versionHasStudy(ModelVersion *version) {
  return getOptimizationDataEnt(version) != nullptr;
}

// The study data is owned by the returned pointer alone, so the parent is not passed on.
std::unique_ptr<OptimizationData> OptimizationManager::getOptimizationData(ModelVersion *version,
                                                                           QObject * /*parent*/) {
  Entity *entity = getOptimizationDataEnt(version);
  return entity == nullptr ? nullptr : std::make_unique<OptimizationData>(entity, nullptr);
}

std::unique_ptr<OptimizationData> OptimizationManager::createOptimizationData(QObject * /*parent*/) {
  const ModelVersion *version = currentVersion();
  Entity *root = EntityEditor::getRootEntity();
  if (version == nullptr || root == nullptr) {
    return nullptr;
  }
  Entity *entity = EntityEditor::createEntity(EntityModel::OptimizationData_t, root,
                                              AttributePath(EntityModel::OptimizationDataList_t), nullptr,
                                              true, true, false, "", -1);
  if (entity == nullptr) {
    return nullptr;
  }
  EntityEditor::setValue(entity, AttributePath(EntityModel::BaseVersionName_t), version->getLabel(), false,
                         nullptr, true, true);
  EntityManager::setNeedsSave(true);
  return std::make_unique<OptimizationData>(entity, nullptr);
}

void OptimizationManager::clearOptimizationData() {
  const ModelVersion *version = currentVersion();
  const Entity *root = EntityEditor::getRootEntity();
  if (version == nullptr || root == nullptr) {
    return;
  }
  const std::string label = version->getLabel();
  std::vector<Entity *> entities = studyEntities(root);
  entities.erase(std::remove_if(entities.begin(), entities.end(),
                                [&](const Entity *entity) { return baseVersionNameOf(entity) != label; }),
                 entities.end());
  if (!entities.empty()) {
    EntityEditor::deleteEntities(entities, false, true);
  }
}

void OptimizationManager::initializeVersion() {
  const Tools::ProgressScope scope(m_progress);
  if (isSolvingVersions()) {
    return;
  }
  m_data = getOptimizationData(nullptr, this);
  if (m_data != nullptr) {
    m_data->initializeVariants(m_progress);
  }
}

void OptimizationManager::beginStudy(ModelVersionStudyType type) {
  ModelVersion *version = currentVersion();
  if (version != nullptr && version->getStudyType() != ModelVersionStudyType::None) {
    return;
  }
  clearOptimizationData();
  if (version != nullptr) {
    version->setStudyType(type);
  }
  m_data = createOptimizationData(this);
  if (m_data != nullptr) {
    m_data->initializeVariants(true, nullptr);
  } else if (version != nullptr) {
    version->setStudyType(ModelVersionStudyType::None);
  }
  EntityManager::setNeedsSave(true);
  ChangeSet changes;
  notifyVersionChange(changes);
}

void OptimizationManager::endStudy(bool deleteVersions) {
  const ModelVersion *version = currentVersion();
  ModelVersion *baseline = version == nullptr ? nullptr : version->getStudyBaseline();
  clearOptimizationData();
  m_data.reset();
  if (baseline != nullptr && baseline->isStudyBaseline()) {
    releaseFromStudy(*baseline);
  }
  ChangeSet changes;
  ChangeManager *manager = EntityManager::getChangeManager();
  std::vector<ModelVersion *> toDestroy;
  if (baseline != nullptr && manager != nullptr) {
    for (auto next = baseline->beginNext(); next != baseline->endNext(); ++next) {
      ModelVersion *following = *next;
      if (following == nullptr) {
        continue;
      }
      if (deleteVersions && following != manager->getRootVersion(true)) {
        toDestroy.push_back(following);
        // The answer is not needed; hosts see from the question which version's folder is about to go.
        manager->getVersionFolder(following, false);
      } else {
        releaseFromStudy(*following);
      }
    }
  }
  if (!toDestroy.empty()) {
    bool isDestroyed = false;
    manager->destroyVersions(toDestroy, &changes, isDestroyed);
  }
  EntityManager::setNeedsSave(true);
  notifyVersionChange(changes);
}

bool OptimizationManager::canBeginStudy(ModelVersion *version) const {
  ModelVersion *wanted = resolved(version);
  if (wanted == nullptr) {
    return false;
  }
  const bool isHeld = m_data != nullptr && m_data->getBaseVersionName() == wanted->getLabel();
  const bool canContinue =
      m_data == nullptr && wanted->getVersionType() == ModelVersion::VersionType::StudyBaseline;
  if (!isHeld && !canContinue && wanted->getVersionType() != ModelVersion::VersionType::Ordinary) {
    return false;
  }
  ChangeManager *manager = EntityManager::getChangeManager();
  return manager != nullptr && manager->canBeginPACStudy(wanted);
}

void OptimizationManager::attachProgress(Tools::ToolProgress *progress) {
  m_progress = progress;
}

OptimizationData *OptimizationManager::getData() const {
  return m_data.get();
}

ModelVersionStudyType OptimizationManager::getStudyType() {
  if (m_data != nullptr) {
    return m_data->getStudyType();
  }
  ChangeManager *manager = EntityEditor::getChangeManager();
  const ModelVersion *version = manager == nullptr ? nullptr : manager->getCurrentVersion();
  return version == nullptr ? ModelVersionStudyType::None : version->getStudyType();
}

std::string OptimizationManager::getBaseVersionName() {
  return m_data == nullptr ? std::string() : m_data->getBaseVersionName();
}

bool OptimizationManager::isEditingVersions() const {
  return m_data != nullptr && m_data->isEditingVersions();
}

bool OptimizationManager::isSolvingVersions() const {
  return m_data != nullptr && m_data->isSolvingVersions();
}

} // namespace OptimizationTool
