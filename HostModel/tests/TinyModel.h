#pragma once

#include "HostModel/Attribute.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace TinyModel {

enum class Kind { Integer, Real, Choice, Boolean, Link, Type, List, Text, Reference, Entity };

/// The answers of an attribute, as plain data.
struct Answers {
  Kind kind = Kind::Text;
  EntityModel::Entity *owner = nullptr;
  EntityModel::AttributePath path;
  EntityModel::Type type;
  std::string text;
  bool isHeld = true;
  bool isReadOnly = false;
  bool isVersionReadOnly = false;
  bool isLocked = false;
  bool isMonitor = false;
  bool isInternal = false;
  std::string units;
  int upperIndex = 0;
  double factor = 1.0;
  std::optional<double> minimum;
  std::optional<double> maximum;
  EntityModel::Attribute *referenced = nullptr;
};

/// An attribute that is a \p Base and answers from plain data. Its numbers are read from its text.
template <class Base> class AttributeOf : public Base {
public:
  explicit AttributeOf(Answers given) : answers(std::move(given)) {}

  EntityModel::Entity *getOwnerEntity() override { return answers.owner; }
  const EntityModel::Entity *getOwnerEntity() const override { return answers.owner; }
  EntityModel::AttributePath getAttributePath() const override { return answers.path; }
  EntityModel::Type getType() const override { return answers.type; }
  bool isReadOnly(bool includeVersion) const override {
    return answers.isReadOnly || (includeVersion && answers.isVersionReadOnly);
  }
  bool isLocked() const override { return answers.isLocked; }
  bool isMonitor() const override { return answers.isMonitor; }
  bool isInternal() const override { return answers.isInternal; }
  bool isInteger() const override { return answers.kind == Kind::Integer; }
  bool isReal() const override { return answers.kind == Kind::Real; }
  bool isChoice() const override { return answers.kind == Kind::Choice; }
  bool isBoolean() const override { return answers.kind == Kind::Boolean; }
  bool isEntityLink() const override { return answers.kind == Kind::Link || answers.kind == Kind::List; }
  bool isTypeReference() const override { return answers.kind == Kind::Type; }
  bool isEntityList() const override { return answers.kind == Kind::List; }
  bool isText() const override { return answers.kind == Kind::Text; }
  bool isAttributeReference() const override { return answers.kind == Kind::Reference; }
  bool isEntity() const override { return answers.kind == Kind::Entity; }
  EntityModel::Attribute *getReferencedAttribute() const override { return answers.referenced; }
  bool hasValue() const override { return answers.isHeld; }
  std::string getValueAsString() const override { return answers.isHeld ? answers.text : std::string(); }
  void setValueFromString(const std::string &text) override;
  void assignValue(const EntityModel::Attribute &other) override;
  double getStandardValue() const override;
  bool isQuantity() const override { return !answers.units.empty(); }
  std::string getUnits(int form) const override {
    return form == 0 ? answers.units : "[" + answers.units + "]";
  }
  double getValueInUnits(const std::string &units) const override;
  bool isNumeric() const override { return isInteger() || isReal() || isChoice() || isBoolean(); }
  double getNumericValue() const override { return getStandardValue(); }
  int getIntValue() const override { return static_cast<int>(getStandardValue()); }
  int getUpperIndex() const override { return answers.upperIndex; }
  void setOptionalMinimum(const std::optional<double> &minimum) override { answers.minimum = minimum; }
  void setOptionalMaximum(const std::optional<double> &maximum) override { answers.maximum = maximum; }
  std::string getTypeDescription() const override { return "tiny"; }
  std::unique_ptr<EntityModel::Attribute> clone() const override;

  Answers answers;
};

using Value = AttributeOf<EntityModel::Attribute>;

/// A single link.
class Link : public AttributeOf<EntityModel::EntityLink> {
public:
  using AttributeOf::AttributeOf;
  EntityModel::EntityLink *asLink() override { return this; }
  EntityModel::Entity *getLinkedEntity() const override { return linked; }

  EntityModel::Entity *linked = nullptr;
};

/// A list of entities, with null entries where a test puts them.
class List : public AttributeOf<EntityModel::ListAttribute> {
public:
  using AttributeOf::AttributeOf;
  EntityModel::EntityLink *asLink() override { return this; }
  EntityModel::ListAttribute *asList() override { return this; }
  EntityModel::Entity *getLinkedEntity() const override { return getEntity(0); }
  int getCount() const override { return static_cast<int>(entities.size()); }
  EntityModel::Entity *getEntity(int index) const override;
  int indexOf(const EntityModel::Entity *entity) const override;
  bool moveEntity(EntityModel::Entity *entity, int to) override;

  std::vector<EntityModel::Entity *> entities;
};

class TypeValue : public AttributeOf<EntityModel::TypeAttribute> {
public:
  using AttributeOf::AttributeOf;
  EntityModel::TypeAttribute *asTypeAttribute() override { return this; }
  EntityModel::TypeRef getTypeValue() const override { return held; }
  bool hasSameTypes(const EntityModel::TypeAttribute &other) const override {
    return other.getTypeValue() == held;
  }

  EntityModel::TypeRef held;
};

/// An entity that owns its members.
class Entity : public AttributeOf<EntityModel::Entity> {
public:
  Entity(std::string entityName, const EntityModel::TypeRef &type);

  EntityModel::Entity *asEntity() override { return this; }
  using CompositeAttribute::findAttribute;
  EntityModel::Attribute *findAttribute(const EntityModel::AttributePath &path) override;
  EntityModel::Attribute *findAttribute(const EntityModel::TypeRef &type, bool searchMembers) override;
  EntityModel::EntityLink *getOwnerEntityLink() const override { return ownerLink; }
  std::string getName(bool asDisplayed) const override { return asDisplayed ? "<" + name + ">" : name; }

  /// Adds a member at a path; its owner is this entity.
  template <class Member = Value> Member &add(const char *path, Answers given) {
    given.owner = this;
    given.path = EntityModel::AttributePath(path);
    auto member = std::make_unique<Member>(std::move(given));
    Member &result = *member;
    members.push_back(std::move(member));
    return result;
  }
  Value &addValue(const char *path, Kind kind, const std::string &text);
  List &addList(const char *path);
  Link &addLink(const char *path, EntityModel::Entity *linked);
  TypeValue &addType(const char *path, const EntityModel::TypeRef &held);

  std::string name;
  EntityModel::EntityLink *ownerLink = nullptr;
  std::vector<std::unique_ptr<EntityModel::Attribute>> members;
};

/// Puts an entity at the end of a list that owns it.
void own(List &list, Entity &entity);

} // namespace TinyModel
