#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/Services.h"

#include <exception>
#include <limits>

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::Entity;

namespace {

// Any negative position means the end.
std::size_t placeFor(int position) {
  return position < 0 ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(position);
}

// The slot that a path of an entity leads to, also over a link on the way.
Slot *findSlot(Model &model, Entity *entity, const AttributePath &path) {
  ModelEntity *known = ModelEntity::from(entity, model);
  const EntityModel::Attribute *attribute = known == nullptr ? nullptr : known->findAttribute(path);
  const Slot *slot = attribute == nullptr ? nullptr : slotOf(*attribute);
  return slot == nullptr                                                    ? nullptr
         : ModelEntity::from(attribute->getOwnerEntity(), model) == nullptr ? nullptr
                                                                            : const_cast<Slot *>(slot);
}

} // namespace

EditorService::EditorService(Model &model) : m_model(model) {}
EditorService::~EditorService() = default;

Entity *EditorService::getRootEntity() {
  return &m_model.root();
}

EntityModel::ChangeManager *EditorService::getChangeManager() {
  return &m_model.tree();
}

Entity *EditorService::createEntity(const EntityModel::TypeRef &type, Entity *owner,
                                    const AttributePath &listPath,
                                    EntityModel::LibraryInterface * /*library*/, bool /*setDefaults*/,
                                    bool /*notify*/, bool /*select*/, const std::string &name, int position) {
  const std::shared_ptr<const EntityType> known = m_model.schema().findType(type.getLabel());
  Slot *link = findSlot(m_model, owner, listPath);
  if (known == nullptr || link == nullptr || known == m_model.schema().rootType()) {
    return nullptr;
  }
  return m_model.create(known, *link->owner, *link, name, placeFor(position));
}

bool EditorService::addEntity(Entity *owner, const AttributePath &listPath, Entity *entity,
                              bool takeOwnership, bool /*checkType*/, bool /*notify*/, bool /*markEdited*/,
                              bool /*select*/, int position) {
  Slot *link = findSlot(m_model, owner, listPath);
  ModelEntity *known = ModelEntity::from(entity, m_model);
  if (link == nullptr || known == nullptr) {
    return false;
  }
  return takeOwnership ? m_model.move(*known, *link, placeFor(position))
                       : m_model.addLink(*link, *known, placeFor(position));
}

bool EditorService::moveEntity(Entity *entity, Entity *newOwner, EntityModel::EntityLink *link,
                               bool /*notify*/, int position) {
  ModelEntity *known = ModelEntity::from(entity, m_model);
  if (known == nullptr || link == nullptr || link->getOwnerEntity() != newOwner) {
    return false;
  }
  Slot *target = findSlot(m_model, newOwner, link->getAttributePath());
  return target != nullptr && m_model.move(*known, *target, placeFor(position));
}

bool EditorService::deleteEntity(Entity *entity, bool /*force*/, bool /*notify*/) {
  ModelEntity *known = ModelEntity::from(entity, m_model);
  return known != nullptr && m_model.remove(*known);
}

bool EditorService::deleteEntities(std::vector<Entity *> &entities, bool force, bool notify) {
  bool areDeleted = true;
  for (Entity *entity : entities) {
    areDeleted = deleteEntity(entity, force, notify) && areDeleted;
  }
  return areDeleted;
}

bool EditorService::setValue(Entity *entity, const AttributePath &path, const std::string &text,
                             bool /*force*/, std::vector<Entity *> *affected, bool /*notify*/,
                             bool /*markEdited*/) {
  ModelEntity *known = ModelEntity::from(entity, m_model);
  if (known == nullptr) {
    return false;
  }
  bool isSet = false;
  if (path.empty()) {
    isSet = m_model.rename(*known, text);
  } else {
    Slot *slot = findSlot(m_model, entity, path);
    isSet = slot != nullptr && m_model.setText(*slot, text);
  }
  if (isSet && affected != nullptr) {
    affected->push_back(entity);
  }
  return isSet;
}

bool EditorService::setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text,
                                    bool force, std::vector<Entity *> *affected, bool notify) {
  try {
    return setValue(entity, path, text, force, affected, notify, true);
  } catch (const std::exception &) {
    return false;
  }
}

bool EditorService::setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool /*notify*/) {
  Slot *slot = findSlot(m_model, entity, path);
  return slot != nullptr && slot->member->kind == MemberKind::Boolean &&
         m_model.setValue(*slot, std::int64_t{value ? 1 : 0});
}

} // namespace EmbeddedHost
