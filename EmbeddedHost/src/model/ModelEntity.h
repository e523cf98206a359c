#pragma once

#include "EmbeddedHost/src/model/Slot.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace EmbeddedHost {

class Model;

/// One entity over all versions.
class ModelEntity final : public EntityModel::Entity {
public:
  ModelEntity(Model &model, std::shared_ptr<const EntityType> type, std::int64_t number, std::string name,
              bool isProjectLevel);
  ~ModelEntity() override;

  /// The entity as one of this project; null when it is another host's or another project's.
  static ModelEntity *from(EntityModel::Entity *entity, const Model &model);
  static const ModelEntity *from(const EntityModel::Entity *entity, const Model &model);

  Model &model() const { return m_model; }
  const EntityType &type() const { return *m_type; }
  const std::shared_ptr<const EntityType> &sharedType() const { return m_type; }
  std::int64_t number() const { return m_number; }
  const std::string &name() const { return m_name; }
  void setName(const std::string &name) { m_name = name; }
  /// The entity is the same in every version.
  bool isProjectLevel() const { return m_isProjectLevel; }
  /// Whether the current version has the entity.
  bool exists() const;
  /// Whether the entity is \p other or is owned by it over any number of links.
  bool isInside(const ModelEntity &other) const;

  /// The list or link that owns the entity in the shown version; null when none does. Where a version's edits and
  /// later ones of a version before it put the entity into different places, it is where the later version has it.
  Slot *ownerSlot() const { return m_otherOwners.empty() ? m_ownerSlot : latestOwner(); }
  /// A list or link shows the entity as its own from now on, or does so no more.
  void addOwner(Slot &slot);
  void removeOwner(const Slot &slot);

  std::vector<Slot> &slots() { return m_slots; }
  /// The slot of a member; null when the type has no such member.
  Slot *findSlot(const EntityModel::AttributePath &path);
  const Slot *findSlot(const EntityModel::AttributePath &path) const;
  /// The attribute object of a slot, made on first use.
  static EntityModel::Attribute &attributeOf(Slot &slot);

  /// Where the entity was found last in its list, so that its position is seldom searched.
  mutable std::size_t positionHint = 0;

  using EntityModel::CompositeAttribute::findAttribute;
  EntityModel::Attribute *findAttribute(const EntityModel::AttributePath &path) override;
  EntityModel::Attribute *findAttribute(const EntityModel::TypeRef &type, bool searchMembers) override;
  EntityModel::EntityLink *getOwnerEntityLink() const override;
  std::string getName(bool asDisplayed) const override;

  EntityModel::Entity *getOwnerEntity() override;
  const EntityModel::Entity *getOwnerEntity() const override;
  EntityModel::AttributePath getAttributePath() const override;
  EntityModel::Type getType() const override;
  bool isReadOnly(bool includeVersion) const override;
  bool isLocked() const override;
  bool isMonitor() const override;
  bool isInternal() const override;
  bool isInteger() const override;
  bool isReal() const override;
  bool isChoice() const override;
  bool isBoolean() const override;
  bool isEntityLink() const override;
  bool isTypeReference() const override;
  bool isEntityList() const override;
  bool isText() const override;
  bool isAttributeReference() const override;
  bool isEntity() const override;
  EntityModel::Entity *asEntity() override;
  bool hasValue() const override;
  std::string getValueAsString() const override;
  void setValueFromString(const std::string &text) override;
  void assignValue(const EntityModel::Attribute &other) override;
  double getStandardValue() const override;
  bool isQuantity() const override;
  std::string getUnits(int form) const override;
  double getValueInUnits(const std::string &units) const override;
  bool isNumeric() const override;
  double getNumericValue() const override;
  int getIntValue() const override;
  int getUpperIndex() const override;
  void setOptionalMinimum(const std::optional<double> &minimum) override;
  void setOptionalMaximum(const std::optional<double> &maximum) override;
  std::string getTypeDescription() const override;
  std::unique_ptr<EntityModel::Attribute> clone() const override;

private:
  Slot *latestOwner() const;

  Model &m_model;
  std::shared_ptr<const EntityType> m_type;
  std::int64_t m_number;
  std::string m_name;
  bool m_isProjectLevel;
  Slot *m_ownerSlot = nullptr;
  std::vector<Slot *> m_otherOwners;
  std::vector<Slot> m_slots;
};

/// Kind code of a type of values; see EntityModel::Type.
int kindCode(MemberKind kind);
/// Kind code of types of entities.
constexpr int kEntityKindCode = 100;

} // namespace EmbeddedHost
