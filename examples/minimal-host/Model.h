#pragma once

#include "HostModel/Attribute.h"
#include "MinimalHost.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace MinimalHost {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityLink;
using EntityModel::TypeRef;

class ModelEntity;
class Version;

/// The entities of the project, the root first, and the version in which they are shown. Deleted ones stay.
struct Model {
  std::vector<std::unique_ptr<ModelEntity>> entities;
  Version *current = nullptr;
};

/// What an attribute holds: a text, entities, or nothing.
struct Value {
  std::optional<std::string> text = {};
  std::vector<Entity *> entities = {};
};

inline bool operator==(const Value &a, const Value &b) {
  return a.text == b.text && a.entities == b.entities;
}

/// What an attribute of any kind is made of. A copy has neither model nor owner.
struct Slot {
  Model *model = nullptr;
  Entity *owner = nullptr;
  Member member = {};
  bool isStudyStorage = false;
  Value held = {};
  std::optional<double> lowest = {};
  std::optional<double> highest = {};

  /// Studies, and the names of entities, are the same in every version.
  bool isVersioned() const { return model != nullptr && !isStudyStorage && member.kind != Kind::Entity; }
  bool isNumber() const { return member.kind == Kind::Real || member.kind == Kind::Boolean; }
  bool isLink() const { return member.kind == Kind::Link || member.kind == Kind::List; }
  bool isVersionReadOnly() const;
  /// The value in the current version.
  const Value &value() const;
  /// Sets the value in the current version; false when there is none.
  bool store(Value changed);
  /// The value that the text stands for; throws std::invalid_argument when it stands for none.
  Value read(const std::string &text) const;
  double number() const;
  int wholeNumber() const;
};

/// A detached attribute with the type, the limits and the text of a slot.
std::unique_ptr<Attribute> copyOf(const Slot &slot, const std::optional<std::string> &text);

template <class Base> class AttributeOf : public Base, public Slot {
public:
  explicit AttributeOf(Slot slot) : Slot(std::move(slot)) {}

  Entity *getOwnerEntity() override { return owner; }
  const Entity *getOwnerEntity() const override { return owner; }
  AttributePath getAttributePath() const override {
    return owner == nullptr || isEntity() ? AttributePath() : AttributePath(member.type);
  }
  EntityModel::Type getType() const override { return {member.type, static_cast<int>(member.kind)}; }
  bool isReadOnly(bool includeVersion) const override {
    return member.isResult || (includeVersion && isVersionReadOnly());
  }
  bool isLocked() const override { return false; }

  bool isMonitor() const override { return false; }
  bool isInternal() const override { return isStudyStorage || isLink(); }
  bool isInteger() const override { return false; }
  bool isReal() const override { return member.kind == Kind::Real; }
  bool isChoice() const override { return false; }
  bool isBoolean() const override { return member.kind == Kind::Boolean; }
  bool isEntityLink() const override { return isLink(); }
  bool isTypeReference() const override { return member.kind == Kind::TypeReference; }
  bool isEntityList() const override { return member.kind == Kind::List; }
  bool isText() const override { return member.kind == Kind::Text; }
  bool isAttributeReference() const override { return false; }
  bool isEntity() const override { return member.kind == Kind::Entity; }

  bool hasValue() const override { return value().text.has_value(); }
  std::string getValueAsString() const override { return value().text.value_or(""); }
  void setValueFromString(const std::string &text) override { store(read(text)); }
  void assignValue(const Attribute &other) override {
    store(other.hasValue() ? Value{other.getValueAsString()} : Value());
  }
  double getStandardValue() const override { return number(); }
  bool isQuantity() const override { return false; }
  std::string getUnits(int /*form*/) const override { return {}; }
  double getValueInUnits(const std::string & /*units*/) const override { return number(); }
  bool isNumeric() const override { return isNumber(); }
  double getNumericValue() const override { return number(); }
  int getIntValue() const override { return wholeNumber(); }
  int getUpperIndex() const override { return 0; }
  void setOptionalMinimum(const std::optional<double> &minimum) override { lowest = minimum; }
  void setOptionalMaximum(const std::optional<double> &maximum) override { highest = maximum; }
  std::string getTypeDescription() const override { return std::to_string(static_cast<int>(member.kind)); }
  std::unique_ptr<Attribute> clone() const override {
    return copyOf(*this, this->hasValue() ? std::optional(this->getValueAsString()) : std::nullopt);
  }
};

/// A type reference; the only one that this host knows is the target of a study.
class TypeValue final : public AttributeOf<EntityModel::TypeAttribute> {
public:
  using AttributeOf::AttributeOf;

  TypeAttribute *asTypeAttribute() override { return this; }
  TypeRef getTypeValue() const override { return TypeRef::fromLabel(getValueAsString()); }
  bool hasSameTypes(const TypeAttribute &other) const override { return other.isTypeReference(); }
};

/// A single link, or a list of them.
class Links final : public AttributeOf<EntityModel::ListAttribute> {
public:
  using AttributeOf::AttributeOf;

  EntityLink *asLink() override { return this; }
  ListAttribute *asList() override { return isEntityList() ? this : nullptr; }
  bool hasValue() const override { return getLinkedEntity() != nullptr; }
  std::string getValueAsString() const override;
  Entity *getLinkedEntity() const override { return getEntity(0); }
  int getCount() const override { return static_cast<int>(value().entities.size()); }
  Entity *getEntity(int index) const override;
  int indexOf(const Entity *entity) const override;
  bool moveEntity(Entity *entity, int to) override;

  bool hasPlace() const { return isEntityList() || !hasValue(); }
  /// A position that the list does not have is the end.
  bool insert(ModelEntity &entity, bool owns, int position);
  bool remove(ModelEntity &entity);
};

class ModelEntity final : public AttributeOf<EntityModel::Entity> {
public:
  ModelEntity(Model &project, const Member &type, const std::vector<Member> &declared, bool isStudyPart);

  Entity *asEntity() override { return this; }
  bool hasValue() const override { return exists(); }
  std::string getValueAsString() const override { return getName(false); }
  using CompositeAttribute::findAttribute;
  Attribute *findAttribute(const AttributePath &path) override;
  Attribute *findAttribute(const TypeRef &type, bool searchMembers) override;
  EntityLink *getOwnerEntityLink() const override;
  std::string getName(bool asDisplayed) const override;

  /// Whether the current version has it: something that is there owns it.
  bool exists() const;

  std::vector<std::unique_ptr<Attribute>> members;
  /// Every link that has owned it in some version.
  std::vector<Links *> owners;
};

/// The entity, if the current version has it, or null.
ModelEntity *existing(const Entity *entity);

} // namespace MinimalHost
