#include "EmbeddedHost/src/model/ModelEntity.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/ValueText.h"

#include <algorithm>
#include <typeinfo>
#include <utility>

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::TypeRef;

ModelEntity::ModelEntity(Model &model, std::shared_ptr<const EntityType> type, std::int64_t number,
                         std::string name, bool isProjectLevel)
    : m_model(model), m_type(std::move(type)), m_number(number), m_name(std::move(name)),
      m_isProjectLevel(isProjectLevel), m_slots(m_type->members().size()) {
  for (const Member &member : m_type->members()) {
    Slot &slot = m_slots[member.index];
    slot.member = &member;
    slot.owner = this;
    slot.value = defaultValue(member);
  }
}

ModelEntity::~ModelEntity() = default;

ModelEntity *ModelEntity::from(EntityModel::Entity *entity, const Model &model) {
  if (entity == nullptr || typeid(*entity) != typeid(ModelEntity)) {
    return nullptr;
  }
  auto *known = static_cast<ModelEntity *>(entity);
  return &known->m_model == &model ? known : nullptr;
}

const ModelEntity *ModelEntity::from(const EntityModel::Entity *entity, const Model &model) {
  return from(const_cast<EntityModel::Entity *>(entity), model);
}

// The number of steps is limited: entities own each other in a circle in a damaged file, and, once deleted, where
// one was moved into the other in a version and the other way round in a version before it.
bool ModelEntity::isInside(const ModelEntity &other) const {
  const ModelEntity *entity = this;
  for (std::size_t steps = m_model.entities().size(); entity != &other; --steps) {
    const Slot *owner = entity->ownerSlot();
    if (owner == nullptr || steps == 0) {
      return false;
    }
    entity = owner->owner;
  }
  return true;
}

void ModelEntity::addOwner(Slot &slot) {
  if (m_ownerSlot == nullptr) {
    m_ownerSlot = &slot;
  } else {
    m_otherOwners.push_back(&slot);
  }
}

void ModelEntity::removeOwner(const Slot &slot) {
  if (m_ownerSlot == &slot) {
    m_ownerSlot = m_otherOwners.empty() ? nullptr : m_otherOwners.back();
    if (m_ownerSlot != nullptr) {
      m_otherOwners.pop_back();
    }
    return;
  }
  const auto found = std::find(m_otherOwners.begin(), m_otherOwners.end(), &slot);
  if (found != m_otherOwners.end()) {
    m_otherOwners.erase(found);
  }
}

Slot *ModelEntity::latestOwner() const {
  std::vector<Slot *> owners = m_otherOwners;
  owners.push_back(m_ownerSlot);
  return m_model.tree().latestOf(owners);
}

bool ModelEntity::exists() const {
  return isInside(m_model.root());
}

const Slot *ModelEntity::findSlot(const AttributePath &path) const {
  const Member *member = m_type->findMember(path);
  return member == nullptr ? nullptr : &m_slots[member->index];
}

Slot *ModelEntity::findSlot(const AttributePath &path) {
  const Member *member = m_type->findMember(path);
  return member == nullptr ? nullptr : &m_slots[member->index];
}

EntityModel::Attribute &ModelEntity::attributeOf(Slot &slot) {
  if (slot.attribute == nullptr) {
    slot.attribute = makeAttribute(slot);
  }
  return *slot.attribute;
}

EntityModel::Attribute *ModelEntity::findAttribute(const AttributePath &path) {
  if (!exists()) {
    return nullptr;
  }
  if (path.empty()) {
    return this;
  }
  if (Slot *slot = findSlot(path)) {
    return &attributeOf(*slot);
  }
  // The path may go on in an entity that a link on the way holds.
  const std::vector<TypeRef> &elements = path.elements();
  for (std::size_t length = elements.size() - 1; length > 0; --length) {
    const auto split = elements.begin() + static_cast<std::ptrdiff_t>(length);
    const Slot *slot = findSlot(AttributePath(std::vector<TypeRef>(elements.begin(), split)));
    const auto *link = slot == nullptr ? nullptr : std::get_if<LinkValue>(&slot->value);
    if (link != nullptr && link->entity != nullptr) {
      return link->entity->findAttribute(AttributePath(std::vector<TypeRef>(split, elements.end())));
    }
  }
  return nullptr;
}

EntityModel::Attribute *ModelEntity::findAttribute(const TypeRef &type, bool searchMembers) {
  if (!exists()) {
    return nullptr;
  }
  for (Slot &slot : m_slots) {
    const bool isDirect = slot.member->parent == slot.member->index;
    if (slot.member->type == type && (isDirect || searchMembers)) {
      return &attributeOf(slot);
    }
  }
  return nullptr;
}

EntityModel::EntityLink *ModelEntity::getOwnerEntityLink() const {
  Slot *owner = ownerSlot();
  return owner == nullptr || !exists() ? nullptr : attributeOf(*owner).asLink();
}

std::string ModelEntity::getName(bool /*asDisplayed*/) const {
  return exists() ? m_name : std::string();
}

EntityModel::Entity *ModelEntity::getOwnerEntity() {
  const Slot *owner = ownerSlot();
  return owner == nullptr || !exists() ? nullptr : owner->owner;
}

const EntityModel::Entity *ModelEntity::getOwnerEntity() const {
  const Slot *owner = ownerSlot();
  return owner == nullptr || !exists() ? nullptr : owner->owner;
}

AttributePath ModelEntity::getAttributePath() const {
  return {};
}

EntityModel::Type ModelEntity::getType() const {
  return exists() ? EntityModel::Type(m_type->reference(), kEntityKindCode) : EntityModel::Type();
}

bool ModelEntity::isReadOnly(bool includeVersion) const {
  const Version *current = m_model.tree().current();
  return includeVersion && !m_isProjectLevel && current != nullptr && current->marks().isReadOnly;
}

bool ModelEntity::isInternal() const {
  return m_type->isStudyStorage();
}

bool ModelEntity::isLocked() const {
  return false;
}
bool ModelEntity::isMonitor() const {
  return false;
}
bool ModelEntity::isInteger() const {
  return false;
}
bool ModelEntity::isReal() const {
  return false;
}
bool ModelEntity::isChoice() const {
  return false;
}
bool ModelEntity::isBoolean() const {
  return false;
}
bool ModelEntity::isEntityLink() const {
  return false;
}
bool ModelEntity::isTypeReference() const {
  return false;
}
bool ModelEntity::isEntityList() const {
  return false;
}
bool ModelEntity::isText() const {
  return false;
}
bool ModelEntity::isAttributeReference() const {
  return false;
}
bool ModelEntity::isEntity() const {
  return true;
}

EntityModel::Entity *ModelEntity::asEntity() {
  return this;
}

bool ModelEntity::hasValue() const {
  return exists();
}

std::string ModelEntity::getValueAsString() const {
  return getName(false);
}

void ModelEntity::setValueFromString(const std::string &text) {
  m_model.rename(*this, text);
}

void ModelEntity::assignValue(const EntityModel::Attribute &other) {
  m_model.rename(*this, other.getValueAsString());
}

double ModelEntity::getStandardValue() const {
  return 0.0;
}
bool ModelEntity::isQuantity() const {
  return false;
}
std::string ModelEntity::getUnits(int /*form*/) const {
  return {};
}
double ModelEntity::getValueInUnits(const std::string & /*units*/) const {
  return 0.0;
}
bool ModelEntity::isNumeric() const {
  return false;
}
double ModelEntity::getNumericValue() const {
  return 0.0;
}
int ModelEntity::getIntValue() const {
  return 0;
}
int ModelEntity::getUpperIndex() const {
  return 0;
}
void ModelEntity::setOptionalMinimum(const std::optional<double> & /*minimum*/) {}
void ModelEntity::setOptionalMaximum(const std::optional<double> & /*maximum*/) {}

std::string ModelEntity::getTypeDescription() const {
  return exists() ? "entity " + m_type->label() : std::string();
}

std::unique_ptr<EntityModel::Attribute> ModelEntity::clone() const {
  return makeDetachedEntity(*this);
}

int kindCode(MemberKind kind) {
  return static_cast<int>(kind);
}

} // namespace EmbeddedHost
