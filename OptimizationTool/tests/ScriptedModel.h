#pragma once

#include "HostModel/Attribute.h"
#include "HostModel/TypeConstants.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace StudyTesting {

/// Answers every query of an attribute with nothing.
template <class Base> class SilentAttribute : public Base {
public:
  EntityModel::Entity *getOwnerEntity() override { return nullptr; }
  const EntityModel::Entity *getOwnerEntity() const override { return nullptr; }
  EntityModel::AttributePath getAttributePath() const override { return {}; }
  EntityModel::Type getType() const override { return {}; }
  bool isReadOnly(bool) const override { return false; }
  bool isLocked() const override { return false; }
  bool isMonitor() const override { return false; }
  bool isInternal() const override { return false; }
  bool isInteger() const override { return false; }
  bool isReal() const override { return false; }
  bool isChoice() const override { return false; }
  bool isBoolean() const override { return false; }
  bool isEntityLink() const override { return false; }
  bool isTypeReference() const override { return false; }
  bool isEntityList() const override { return false; }
  bool isText() const override { return false; }
  bool isAttributeReference() const override { return false; }
  bool isEntity() const override { return false; }
  bool hasValue() const override { return false; }
  std::string getValueAsString() const override { return {}; }
  void setValueFromString(const std::string &) override {}
  void assignValue(const EntityModel::Attribute &) override {}
  double getStandardValue() const override { return 0.0; }
  bool isQuantity() const override { return false; }
  std::string getUnits(int) const override { return {}; }
  double getValueInUnits(const std::string &) const override { return 0.0; }
  bool isNumeric() const override { return false; }
  double getNumericValue() const override { return 0.0; }
  int getIntValue() const override { return 0; }
  int getUpperIndex() const override { return 0; }
  void setOptionalMinimum(const std::optional<double> &) override {}
  void setOptionalMaximum(const std::optional<double> &) override {}
  std::string getTypeDescription() const override { return {}; }
  std::unique_ptr<EntityModel::Attribute> clone() const override { return nullptr; }
};

/// An attribute that answers what a test wants, and that writes down when it is cloned and destroyed.
class ScriptedAttribute : public SilentAttribute<EntityModel::Attribute> {
public:
  using Log = std::vector<std::string>;

  ScriptedAttribute() = default;
  explicit ScriptedAttribute(std::string text, Log *log = nullptr);
  ~ScriptedAttribute() override;

  EntityModel::Entity *getOwnerEntity() override { return owner; }
  const EntityModel::Entity *getOwnerEntity() const override { return owner; }
  EntityModel::AttributePath getAttributePath() const override { return path; }
  EntityModel::Type getType() const override { return type; }
  bool isAttributeReference() const override { return isReference; }
  EntityModel::Attribute *getReferencedAttribute() const override { return referenced; }
  std::string getValueAsString() const override { return text; }
  double getStandardValue() const override { return standardValue; }
  std::string getTypeDescription() const override { return typeDescription; }
  /// Has the same text, standard value and log. Writes "clone " and the text.
  std::unique_ptr<EntityModel::Attribute> clone() const override;

  std::string text;
  double standardValue = 0.0;
  std::string typeDescription;
  EntityModel::Type type;
  bool isReference = false;
  EntityModel::Attribute *referenced = nullptr;
  EntityModel::Entity *owner = nullptr;
  EntityModel::AttributePath path;

private:
  // Gets "destroy " and the text.
  Log *m_log = nullptr;
};

/// An attribute that holds a type, and accepts those of one family.
class ScriptedTypeAttribute : public SilentAttribute<EntityModel::TypeAttribute> {
public:
  explicit ScriptedTypeAttribute(int family) : m_family(family) {}

  bool isTypeReference() const override { return true; }
  EntityModel::TypeAttribute *asTypeAttribute() override { return this; }
  EntityModel::TypeRef getTypeValue() const override { return {}; }
  bool hasSameTypes(const EntityModel::TypeAttribute &other) const override;
  std::string getTypeDescription() const override { return typeDescription; }

  std::string typeDescription;

private:
  int m_family;
};

/// A link to an entity.
class ScriptedLink : public SilentAttribute<EntityModel::EntityLink> {
public:
  explicit ScriptedLink(EntityModel::Entity *linked) : m_linked(linked) {}

  EntityModel::Entity *getOwnerEntity() override { return owner; }
  const EntityModel::Entity *getOwnerEntity() const override { return owner; }
  EntityModel::AttributePath getAttributePath() const override { return path; }
  bool isEntityLink() const override { return true; }
  EntityModel::EntityLink *asLink() override { return this; }
  EntityModel::Entity *getLinkedEntity() const override { return m_linked; }

  EntityModel::Entity *owner = nullptr;
  EntityModel::AttributePath path;

private:
  EntityModel::Entity *m_linked;
};

/// A list in which places may be null.
class ScriptedList : public SilentAttribute<EntityModel::ListAttribute> {
public:
  explicit ScriptedList(std::vector<EntityModel::Entity *> elements) : m_elements(std::move(elements)) {}

  EntityModel::Entity *getOwnerEntity() override { return owner; }
  const EntityModel::Entity *getOwnerEntity() const override { return owner; }
  EntityModel::AttributePath getAttributePath() const override { return path; }
  bool isEntityLink() const override { return true; }
  bool isEntityList() const override { return true; }
  EntityModel::EntityLink *asLink() override { return this; }
  EntityModel::ListAttribute *asList() override { return this; }
  EntityModel::Entity *getLinkedEntity() const override { return getEntity(0); }
  int getCount() const override { return static_cast<int>(m_elements.size()); }
  EntityModel::Entity *getEntity(int index) const override;
  int indexOf(const EntityModel::Entity *entity) const override;
  bool moveEntity(EntityModel::Entity *, int) override { return false; }

  EntityModel::Entity *owner = nullptr;
  EntityModel::AttributePath path;

private:
  std::vector<EntityModel::Entity *> m_elements;
};

/// An entity with the members that a test gives it, which it owns.
class ScriptedEntity : public SilentAttribute<EntityModel::Entity> {
public:
  explicit ScriptedEntity(std::string name = {});
  ~ScriptedEntity() override;

  bool isEntity() const override { return true; }
  EntityModel::Entity *asEntity() override { return this; }
  EntityModel::Attribute *findAttribute(const EntityModel::AttributePath &path) override;
  EntityModel::Attribute *findAttribute(const EntityModel::TypeRef &type, bool searchMembers) override;
  EntityModel::EntityLink *getOwnerEntityLink() const override { return ownerLink; }
  std::string getName(bool asDisplayed) const override { return asDisplayed ? m_name : "internal name"; }

  /// Gives the entity a member. \return the member
  template <class T> T &add(const EntityModel::AttributePath &path, std::unique_ptr<T> member) {
    T &added = *member;
    m_members[path] = std::move(member);
    return added;
  }

  EntityModel::EntityLink *ownerLink = nullptr;

private:
  std::string m_name;
  std::unordered_map<EntityModel::AttributePath, std::unique_ptr<EntityModel::Attribute>> m_members;
};

/// A variable entity that refers to the attribute at \p path of \p owner; without a link for null.
std::unique_ptr<ScriptedEntity> makeScriptedVariable(EntityModel::Entity *owner, const std::string &path);
/// A group entity that holds these variables, in a list that owns none of them; null places are kept.
std::unique_ptr<ScriptedEntity> makeScriptedGroup(const std::vector<EntityModel::Entity *> &variables);

} // namespace StudyTesting
