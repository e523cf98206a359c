#include "EmbeddedHost/src/model/Model.h"

#include "EmbeddedHost/src/model/ValueText.h"

#include <algorithm>
#include <utility>

namespace EmbeddedHost {

namespace {

bool holdsEntities(const Slot &slot) {
  return slot.member->kind == MemberKind::EntityList || slot.member->kind == MemberKind::EntityLink;
}

void release(Slot &slot, const LinkValue &element) {
  if (element.isOwned) {
    element.entity->removeOwner(slot);
  }
}

void takeOver(Slot &slot, const LinkValue &element) {
  if (element.isOwned) {
    element.entity->addOwner(slot);
  }
}

template <class Each> void forEachLink(const Value &value, Each each) {
  if (const auto *link = std::get_if<LinkValue>(&value)) {
    each(*link);
  }
  for (const LinkValue &element : elementsOf(value)) {
    each(element);
  }
}

std::ptrdiff_t offset(std::size_t position) {
  return static_cast<std::ptrdiff_t>(position);
}

} // namespace

Model::Model(ModelSchema schema)
    : m_lifetime(this, [](Model * /*model*/) {}), m_schema(std::move(schema)), m_tree(*this) {
  m_root = &restore(m_nextNumber, m_schema.rootType(), "Model", false);
  m_unsavedEntities.insert(m_root);
}

Model::~Model() = default;

ModelEntity *Model::findEntity(std::int64_t number) const {
  const auto found = m_byNumber.find(number);
  return found == m_byNumber.end() ? nullptr : found->second;
}

ModelEntity &Model::restore(std::int64_t number, const std::shared_ptr<const EntityType> &type,
                            const std::string &name, bool isProjectLevel) {
  m_entities.push_back(std::make_unique<ModelEntity>(*this, type, number, name, isProjectLevel));
  ModelEntity &entity = *m_entities.back();
  m_byNumber.emplace(number, &entity);
  m_nextNumber = std::max(m_nextNumber, number + 1);
  return entity;
}

void Model::reserveNumbers(std::int64_t next) {
  m_nextNumber = std::max(m_nextNumber, next);
}

bool Model::isProjectLevel(const Slot &slot) {
  return slot.member->isProjectLevel || slot.owner->isProjectLevel();
}

void Model::show(Slot &slot, Value value) {
  if (!holdsEntities(slot)) {
    slot.value = std::move(value);
    return;
  }
  forEachLink(slot.value, [&slot](const LinkValue &element) { release(slot, element); });
  slot.value = std::move(value);
  forEachLink(slot.value, [&slot](const LinkValue &element) { takeOver(slot, element); });
}

bool Model::setValue(Slot &slot, Value value) {
  // A link by text to the entity that it owns already goes on owning it.
  if (auto *link = std::get_if<LinkValue>(&value)) {
    const auto *present = std::get_if<LinkValue>(&slot.value);
    link->isOwned =
        link->isOwned || (present != nullptr && present->entity == link->entity && present->isOwned);
  }
  if (!isProjectLevel(slot)) {
    return m_tree.record(slot, std::move(value));
  }
  show(slot, std::move(value));
  m_unsavedSlots.insert(&slot);
  needsSave = true;
  return true;
}

void Model::setValueIn(Version &version, Slot &slot, Value value) {
  m_tree.recordIn(version, slot, std::move(value));
}

bool Model::setText(Slot &slot, const std::string &text) {
  if (text.empty() && isNumberKind(slot.member->kind)) {
    return setValue(slot, Value());
  }
  return setValue(slot, readValue(slot, text, this));
}

bool Model::hasPlaceFor(const Slot &link, const ModelEntity &entity) const {
  const std::string &target = link.member->targetType;
  return holdsEntities(link) && link.owner->exists() && (target.empty() || target == entity.type().label());
}

// The list that the current version has recorded for itself, or at project level the one list there is. It is
// shared with the edit that recorded it, so that it can grow in place.
std::shared_ptr<ListContent> Model::editableList(Slot &list) {
  auto content = std::get<std::shared_ptr<ListContent>>(list.value);
  const bool isProject = isProjectLevel(list);
  const bool isRecorded = isProject || m_tree.current()->edits.find(&list) != EditTable::kNone;
  if (content == nullptr || !isRecorded) {
    auto copy = std::make_shared<ListContent>(ListContent{elementsOf(list.value)});
    for (LinkValue &element : copy->elements) {
      // What another place owns in this version would otherwise move back here.
      element.isOwned = element.isOwned && element.entity->ownerSlot() == &list;
    }
    setValue(list, std::move(copy));
    return std::get<std::shared_ptr<ListContent>>(list.value);
  }
  if (isProject) {
    m_unsavedSlots.insert(&list);
    needsSave = true;
  } else {
    m_tree.markEditUnsaved(*m_tree.current(), list);
  }
  return content;
}

bool Model::insert(Slot &link, ModelEntity &entity, bool isOwned, std::size_t position) {
  if (!isProjectLevel(link) && m_tree.current() == nullptr) {
    return false;
  }
  const LinkValue element{&entity, isOwned};
  if (link.member->kind == MemberKind::EntityLink) {
    return setValue(link, element);
  }
  std::vector<LinkValue> &elements = editableList(link)->elements;
  entity.positionHint = std::min(position, elements.size());
  elements.insert(elements.begin() + offset(entity.positionHint), element);
  takeOver(link, element);
  return true;
}

ModelEntity *Model::create(const std::shared_ptr<const EntityType> &type, ModelEntity &owner, Slot &link,
                           const std::string &name, std::size_t position) {
  if (!isProjectLevel(link) && m_tree.current() == nullptr) {
    return nullptr;
  }
  const auto *present = std::get_if<LinkValue>(&link.value);
  const std::string &target = link.member->targetType;
  const bool isTaken = present != nullptr && present->entity != nullptr && present->entity->exists();
  if (!owner.exists() || !holdsEntities(link) || isTaken || (!target.empty() && target != type->label())) {
    return nullptr;
  }
  ModelEntity &entity = restore(m_nextNumber, type, name, isProjectLevel(link));
  m_unsavedEntities.insert(&entity);
  insert(link, entity, true, position);
  return &entity;
}

bool Model::addLink(Slot &link, ModelEntity &entity, std::size_t position) {
  return hasPlaceFor(link, entity) && insert(link, entity, false, position);
}

void Model::takeOutOf(Slot &owner, ModelEntity &entity) {
  if (owner.member->kind == MemberKind::EntityLink) {
    setValue(owner, Value());
    return;
  }
  std::vector<LinkValue> &elements = editableList(owner)->elements;
  const auto isEntity = [&owner, &entity](const LinkValue &element) {
    const bool isFound = element.isOwned && element.entity == &entity;
    if (isFound) {
      entity.removeOwner(owner);
    }
    return isFound;
  };
  elements.erase(std::remove_if(elements.begin(), elements.end(), isEntity), elements.end());
}

// Takes an entity out of the list or link that owns it, and out of those that would own it then.
bool Model::takeOut(ModelEntity &entity) {
  Slot *owner = entity.ownerSlot();
  if (owner == nullptr || !entity.exists() || (!isProjectLevel(*owner) && m_tree.current() == nullptr)) {
    return false;
  }
  for (; owner != nullptr; owner = entity.ownerSlot()) {
    takeOutOf(*owner, entity);
  }
  return true;
}

bool Model::move(ModelEntity &entity, Slot &link, std::size_t position) {
  const bool staysOnLevel = entity.isProjectLevel() == isProjectLevel(link);
  if (!hasPlaceFor(link, entity) || !staysOnLevel || link.owner->isInside(entity)) {
    return false;
  }
  const auto *present = std::get_if<LinkValue>(&link.value);
  if (present != nullptr && present->entity != nullptr && present->entity->exists()) {
    return present->entity == &entity;
  }
  return takeOut(entity) && insert(link, entity, true, position);
}

bool Model::reorder(Slot &list, std::size_t from, std::size_t to) {
  if (!list.owner->exists() || (!isProjectLevel(list) && m_tree.current() == nullptr)) {
    return false;
  }
  std::vector<LinkValue> &elements = editableList(list)->elements;
  const auto first = elements.begin();
  if (to > from) {
    std::rotate(first + offset(from), first + offset(from + 1), first + offset(to));
  } else {
    std::rotate(first + offset(to), first + offset(from), first + offset(from + 1));
  }
  return true;
}

// In a loop, because entities may be nested deeper than calls may.
void Model::buryWithContent(ModelEntity &entity) {
  std::vector<ModelEntity *> buried = {&entity};
  while (!buried.empty()) {
    ModelEntity &each = *buried.back();
    buried.pop_back();
    m_deletedEntities.push_back(each.number());
    m_unsavedEntities.erase(&each);
    for (Slot &slot : each.slots()) {
      m_unsavedSlots.erase(&slot);
      forEachLink(slot.value, [&slot, &buried](const LinkValue &element) {
        if (element.isOwned && element.entity->ownerSlot() == &slot) {
          element.entity->removeOwner(slot);
          buried.push_back(element.entity);
        }
      });
    }
  }
}

bool Model::remove(ModelEntity &entity) {
  if (!takeOut(entity)) {
    return false;
  }
  if (entity.isProjectLevel()) {
    buryWithContent(entity);
  }
  return true;
}

bool Model::rename(ModelEntity &entity, const std::string &name) {
  if (!entity.exists()) {
    return false;
  }
  entity.setName(name);
  m_unsavedEntities.insert(&entity);
  needsSave = true;
  return true;
}

void Model::forgetUnsaved() {
  m_unsavedEntities.clear();
  m_unsavedSlots.clear();
  m_deletedEntities.clear();
  m_tree.forgetUnsaved();
  needsSave = false;
}

} // namespace EmbeddedHost
