#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/Services.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/ObserverManager.h"

namespace EmbeddedHost {

using EntityModel::ModelVersionStudyType;

ManagerService::ManagerService(Model &model) : m_model(model) {}
ManagerService::~ManagerService() = default;

EntityModel::ChangeManager *ManagerService::getChangeManager() {
  return &m_model.tree();
}

EntityGUI::AbstractObserverManager *ManagerService::getObserverManager() {
  return &EntityGUI::ObserverManager::process();
}

void ManagerService::setNeedsSave(bool needsSave) {
  m_model.needsSave = needsSave;
}

bool ManagerService::setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                              const std::string &text, bool notify) {
  // Through the facade, so that a host that wraps this one sees the edit too.
  if (!EntityModel::EntityEditor::setValue(entity, path, text, false, nullptr, notify, true)) {
    return false;
  }
  EntityGUI::AbstractObserverManager *observers = EntityGUI::EntityManager::getObserverManager();
  if (notify && observers != nullptr) {
    EntityModel::ChangeSet changes;
    changes.addModified(entity);
    EntityModel::Attribute *attribute = entity->findAttribute(path);
    changes.addModifiedAttribute(attribute == nullptr ? entity : attribute->getOwnerEntity(), attribute);
    observers->broadcastChangedEntities(changes);
  }
  return true;
}

void ManagerService::checkSelectionsAreValid() {
  const ModelEntity *selected = ModelEntity::from(EntityGUI::EntityManager::s_CurrentEntity, m_model);
  if (selected == nullptr || !selected->exists()) {
    EntityGUI::EntityManager::s_CurrentEntity = nullptr;
  }
}

EntityGUI::AbstractModelChecker *ManagerService::getModelChecker() {
  return checker;
}

StudyTypeNames::~StudyTypeNames() = default;

QString StudyTypeNames::getStudyTypeName(ModelVersionStudyType type) {
  switch (type) {
  case ModelVersionStudyType::None:
    return QStringLiteral("Ordinary");
  case ModelVersionStudyType::Parametric:
    return QStringLiteral("Parametric");
  case ModelVersionStudyType::Optimality:
    return QStringLiteral("Optimality");
  case ModelVersionStudyType::Calibration:
    return QStringLiteral("Calibration");
  }
  return QStringLiteral("Study %1").arg(static_cast<int>(type));
}

namespace {

// The number of steps is limited, because entities may own each other in a circle.
bool hasOwnerWithoutEffect(const ModelEntity &entity) {
  std::size_t steps = entity.model().entities().size();
  for (const Slot *owner = entity.ownerSlot(); owner != nullptr && steps > 0; --steps) {
    if (owner->member->hasNoSimulationEffect) {
      return true;
    }
    owner = owner->owner->ownerSlot();
  }
  return false;
}

} // namespace

DeclaredImpact::DeclaredImpact(Model &model) : m_model(model) {}
DeclaredImpact::~DeclaredImpact() = default;

bool DeclaredImpact::hasModellingImpact(const EntityModel::Attribute *attribute, const std::string &kind,
                                        bool includeOwners) {
  if (attribute == nullptr || kind != "NoCFDImpact") {
    return false;
  }
  const Slot *slot = slotOf(*attribute);
  if (slot != nullptr && slot->member->hasNoSimulationEffect) {
    return true;
  }
  const ModelEntity *owner = ModelEntity::from(attribute->getOwnerEntity(), m_model);
  if (slot != nullptr && slot->owner == nullptr) {
    return false;
  }
  if (slot != nullptr && includeOwners && owner != nullptr) {
    // The composites around the member, then the links that own the entity.
    const Member *member = slot->member;
    while (member->parent != member->index) {
      member = &owner->type().members()[member->parent];
      if (member->hasNoSimulationEffect) {
        return true;
      }
    }
  }
  const ModelEntity *entity = attribute->isEntity() ? dynamic_cast<const ModelEntity *>(attribute) : owner;
  return includeOwners && entity != nullptr && hasOwnerWithoutEffect(*entity);
}

} // namespace EmbeddedHost
