#include "EmbeddedHost/src/model/ModelAttributes.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelEntity.h"
#include "EmbeddedHost/src/model/SlotAttribute.h"
#include "EmbeddedHost/src/model/ValueText.h"

#include <algorithm>
#include <utility>

namespace EmbeddedHost {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::TypeRef;

namespace {

ModelEntity *existing(ModelEntity *entity) {
  return entity != nullptr && entity->exists() ? entity : nullptr;
}

class ValueAttribute final : public SlotAttribute<Attribute> {
public:
  using SlotAttribute::SlotAttribute;

  Attribute *getReferencedAttribute() const override {
    const auto *target = std::get_if<std::shared_ptr<const AttributeTarget>>(&slot().value);
    return target == nullptr || !entitiesLive() ? nullptr : (*target)->entity->findAttribute((*target)->path);
  }
};

class TypeValueAttribute final : public SlotAttribute<EntityModel::TypeAttribute> {
public:
  using SlotAttribute::SlotAttribute;

  EntityModel::TypeAttribute *asTypeAttribute() override { return this; }

  TypeRef getTypeValue() const override {
    const auto *type = std::get_if<TypeRef>(&slot().value);
    return type == nullptr ? TypeRef() : *type;
  }

  bool hasSameTypes(const EntityModel::TypeAttribute &other) const override {
    const Slot *that = slotOf(other);
    return that != nullptr && that->member->options == slot().member->options;
  }
};

class LinkAttribute final : public SlotAttribute<EntityModel::EntityLink> {
public:
  using SlotAttribute::SlotAttribute;

  EntityModel::EntityLink *asLink() override { return this; }

  EntityModel::Entity *getLinkedEntity() const override {
    const auto *link = std::get_if<LinkValue>(&slot().value);
    return link == nullptr || !entitiesLive() ? nullptr : existing(link->entity);
  }
};

class EntityListAttribute final : public SlotAttribute<EntityModel::ListAttribute> {
public:
  using SlotAttribute::SlotAttribute;

  EntityModel::EntityLink *asLink() override { return this; }
  EntityModel::ListAttribute *asList() override { return this; }

  EntityModel::Entity *getLinkedEntity() const override { return getEntity(0); }

  int getCount() const override {
    return entitiesLive() ? static_cast<int>(elementsOf(slot().value).size()) : 0;
  }

  EntityModel::Entity *getEntity(int index) const override {
    const std::vector<LinkValue> &elements = elementsOf(slot().value);
    const bool isInRange = index >= 0 && static_cast<std::size_t>(index) < elements.size();
    return isInRange && entitiesLive() ? existing(elements[static_cast<std::size_t>(index)].entity) : nullptr;
  }

  int indexOf(const EntityModel::Entity *entity) const override {
    const std::vector<LinkValue> &elements = elementsOf(slot().value);
    if (!entitiesLive() || elements.empty()) {
      return -1;
    }
    const ModelEntity *known = ModelEntity::from(entity, elements.front().entity->model());
    if (known == nullptr) {
      return -1;
    }
    std::size_t &hint = known->positionHint;
    if (hint >= elements.size() || elements[hint].entity != known) {
      const auto found = std::find_if(elements.begin(), elements.end(),
                                      [known](const LinkValue &element) { return element.entity == known; });
      if (found == elements.end()) {
        return -1;
      }
      hint = static_cast<std::size_t>(found - elements.begin());
    }
    return static_cast<int>(hint);
  }

  bool moveEntity(EntityModel::Entity *entity, int to) override {
    const int from = indexOf(entity);
    if (from < 0 || to < 0 || to > getCount() || slot().owner == nullptr) {
      return false;
    }
    return slot().owner->model().reorder(slot(), static_cast<std::size_t>(from),
                                         static_cast<std::size_t>(to));
  }
};

/// A member that holds members.
class CompositeMember final : public SlotAttribute<EntityModel::CompositeAttribute> {
public:
  using SlotAttribute::SlotAttribute;

  using EntityModel::CompositeAttribute::findAttribute;

  Attribute *findAttribute(const AttributePath &path) override {
    if (path.empty()) {
      return this;
    }
    ModelEntity *owner = slot().owner;
    std::vector<TypeRef> elements = slot().member->path.elements();
    elements.insert(elements.end(), path.elements().begin(), path.elements().end());
    return owner == nullptr ? nullptr : owner->findAttribute(AttributePath(elements));
  }

  Attribute *findAttribute(const TypeRef &type, bool searchMembers) override {
    ModelEntity *owner = slot().owner;
    if (owner == nullptr || !owner->exists()) {
      return nullptr;
    }
    const std::size_t depth = slot().member->path.size();
    for (Slot &candidate : owner->slots()) {
      const std::vector<TypeRef> &elements = candidate.member->path.elements();
      const bool isInside =
          elements.size() > depth &&
          std::equal(elements.begin(), elements.begin() + static_cast<std::ptrdiff_t>(depth),
                     slot().member->path.elements().begin());
      if (isInside && candidate.member->type == type && (searchMembers || elements.size() == depth + 1)) {
        return &ModelEntity::attributeOf(candidate);
      }
    }
    return nullptr;
  }
};

template <class... Arguments>
std::unique_ptr<Attribute> makeByKind(MemberKind kind, Arguments &&...arguments) {
  switch (kind) {
  case MemberKind::TypeReference:
    return std::make_unique<TypeValueAttribute>(std::forward<Arguments>(arguments)...);
  case MemberKind::EntityLink:
    return std::make_unique<LinkAttribute>(std::forward<Arguments>(arguments)...);
  case MemberKind::EntityList:
    return std::make_unique<EntityListAttribute>(std::forward<Arguments>(arguments)...);
  case MemberKind::Composite:
    return std::make_unique<CompositeMember>(std::forward<Arguments>(arguments)...);
  case MemberKind::Real:
  case MemberKind::Integer:
  case MemberKind::Boolean:
  case MemberKind::Choice:
  case MemberKind::Text:
  case MemberKind::AttributeReference:
    break;
  }
  return std::make_unique<ValueAttribute>(std::forward<Arguments>(arguments)...);
}

// Kinds without an attribute class of their own share one.
bool hasOwnClass(MemberKind kind) {
  return kind == MemberKind::TypeReference || kind == MemberKind::EntityLink ||
         kind == MemberKind::EntityList || kind == MemberKind::Composite;
}

bool isSameClass(MemberKind a, MemberKind b) {
  return a == b || (!hasOwnClass(a) && !hasOwnClass(b));
}

std::unique_ptr<DetachedSlot> copyOf(const Slot &slot, const Value &value) {
  auto copy = std::make_unique<DetachedSlot>();
  copy->slot.member = slot.member;
  copy->slot.value = deepCopy(value);
  if (slot.limits != nullptr) {
    copy->slot.limits = std::make_unique<SlotLimits>(*slot.limits);
  }
  if (slot.owner != nullptr) {
    copy->type = slot.owner->sharedType();
    copy->model = slot.owner->model().lifetime();
  }
  return copy;
}

std::shared_ptr<const EntityType> nameOnlyType() {
  static const auto type = [] {
    MemberType name;
    name.label = "Entity";
    name.kind = MemberKind::Text;
    return std::make_shared<const EntityType>("Entity", std::vector<MemberType>{name}, false);
  }();
  return type;
}

} // namespace

std::unique_ptr<Attribute> makeAttribute(Slot &slot) {
  return makeByKind(slot.member->kind, slot);
}

std::unique_ptr<Attribute> makeDetachedAttribute(const Slot &slot, const Value &value) {
  return makeByKind(slot.member->kind, copyOf(slot, value));
}

void renewDetachedAttribute(std::unique_ptr<Attribute> &copy, const Slot &slot, const Value &value) {
  auto *holder = copy == nullptr ? nullptr : dynamic_cast<SlotHolder *>(copy.get());
  DetachedSlot *detached = holder == nullptr ? nullptr : holder->detached();
  const bool isUsable = detached != nullptr && detached->type == slot.owner->sharedType() &&
                        isSameClass(detached->slot.member->kind, slot.member->kind) &&
                        detached->slot.limits == nullptr && slot.limits == nullptr;
  if (!isUsable) {
    copy = makeDetachedAttribute(slot, value);
    return;
  }
  detached->slot.value = deepCopy(value);
  detached->slot.member = slot.member;
}

std::unique_ptr<Attribute> makeDetachedAttribute(const DetachedSlot &original) {
  std::unique_ptr<DetachedSlot> copy = copyOf(original.slot, original.slot.value);
  copy->type = original.type;
  copy->model = original.model;
  return makeByKind(original.slot.member->kind, std::move(copy));
}

std::unique_ptr<Attribute> makeDetachedEntity(const ModelEntity &entity) {
  auto detached = std::make_unique<DetachedSlot>();
  detached->type = nameOnlyType();
  detached->slot.member = &detached->type->members().front();
  detached->slot.value = makeText(entity.getName(false));
  return makeByKind(MemberKind::Text, std::move(detached));
}

const Slot *slotOf(const Attribute &attribute) {
  const auto *holder = dynamic_cast<const SlotHolder *>(&attribute);
  return holder == nullptr ? nullptr : &holder->slot();
}

} // namespace EmbeddedHost
