#pragma once

#include "EmbeddedHost/src/model/Slot.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace EmbeddedHost {

class Model;

/// What a detached copy keeps alive and refers to.
struct DetachedSlot {
  Slot slot;
  std::shared_ptr<const EntityType> type; ///< declares the slot's member
  std::weak_ptr<Model> model;             ///< in which texts of links find their entities
};

/// The one implementation behind the attribute classes: a view of a slot that belongs to an entity or to the
/// view itself.
class SlotHolder {
public:
  explicit SlotHolder(Slot &slot);
  explicit SlotHolder(std::unique_ptr<DetachedSlot> detached);
  SlotHolder(const SlotHolder &) = delete;
  SlotHolder &operator=(const SlotHolder &) = delete;
  virtual ~SlotHolder();

  Slot &slot() { return *m_slot; }
  const Slot &slot() const { return *m_slot; }
  /// What a detached copy owns; null for an entity's attribute.
  DetachedSlot *detached() { return m_detached.get(); }

protected:
  const Member &member() const { return *m_slot->member; }
  /// Whether entities that the value names still exist as objects.
  bool entitiesLive() const;
  EntityModel::Entity *owner() const;
  bool isReadOnlySlot(bool includeVersion) const;
  void setText(const std::string &text);
  void assign(const EntityModel::Attribute &other);
  // These two are what a study asks of every cell of its matrix for every price: no call, no visit.
  bool isValueHeld() const {
    return member().kind == MemberKind::EntityList ? entitiesLive() : holdsValue(m_slot->value);
  }
  std::string text() const;
  double standardValue() const {
    const auto *real = std::get_if<RealValue>(&m_slot->value);
    return real != nullptr && (real->unit == nullptr || real->unit == member().standard) ? real->number
                                                                                         : convertedValue();
  }
  std::string units() const;
  double valueInUnits(const std::string &units) const;
  bool isNumber() const;
  int intValue() const;
  SlotLimits &ownLimits();
  std::string description() const;
  std::unique_ptr<EntityModel::Attribute> makeClone() const;

private:
  double convertedValue() const;
  const Model *model() const;

  std::unique_ptr<DetachedSlot> m_detached;
  Slot *m_slot;
};

/// An attribute class of the host interface, answered by a slot.
template <class Base> class SlotAttribute : public Base, public SlotHolder {
public:
  using SlotHolder::SlotHolder;

  EntityModel::Entity *getOwnerEntity() override { return owner(); }
  const EntityModel::Entity *getOwnerEntity() const override { return owner(); }
  EntityModel::AttributePath getAttributePath() const override { return member().path; }
  EntityModel::Type getType() const override { return {member().type, static_cast<int>(member().kind)}; }
  bool isReadOnly(bool includeVersion) const override { return isReadOnlySlot(includeVersion); }
  bool isLocked() const override { return member().isLocked; }

  bool isMonitor() const override { return member().isMonitor; }
  bool isInternal() const override {
    return member().isInternal || member().isStudyStorage || member().kind == MemberKind::Composite;
  }
  bool isInteger() const override { return member().kind == MemberKind::Integer; }
  bool isReal() const override { return member().kind == MemberKind::Real; }
  bool isChoice() const override { return member().kind == MemberKind::Choice; }
  bool isBoolean() const override { return member().kind == MemberKind::Boolean; }
  bool isEntityLink() const override {
    return member().kind == MemberKind::EntityLink || member().kind == MemberKind::EntityList;
  }
  bool isTypeReference() const override { return member().kind == MemberKind::TypeReference; }
  bool isEntityList() const override { return member().kind == MemberKind::EntityList; }
  bool isText() const override { return member().kind == MemberKind::Text; }
  bool isAttributeReference() const override { return member().kind == MemberKind::AttributeReference; }
  bool isEntity() const override { return false; }

  bool hasValue() const override { return isValueHeld(); }
  std::string getValueAsString() const override { return text(); }
  void setValueFromString(const std::string &text) override { setText(text); }
  void assignValue(const EntityModel::Attribute &other) override { assign(other); }
  double getStandardValue() const override { return standardValue(); }
  bool isQuantity() const override { return member().standard != nullptr; }
  std::string getUnits(int /*form*/) const override { return units(); }
  double getValueInUnits(const std::string &units) const override { return valueInUnits(units); }
  bool isNumeric() const override { return isNumber(); }
  double getNumericValue() const override { return standardValue(); }
  int getIntValue() const override { return intValue(); }
  int getUpperIndex() const override {
    return member().kind == MemberKind::Choice ? static_cast<int>(member().options.size()) - 1 : 0;
  }
  void setOptionalMinimum(const std::optional<double> &minimum) override { ownLimits().minimum = minimum; }
  void setOptionalMaximum(const std::optional<double> &maximum) override { ownLimits().maximum = maximum; }
  std::string getTypeDescription() const override { return description(); }
  std::unique_ptr<EntityModel::Attribute> clone() const override { return makeClone(); }
};

} // namespace EmbeddedHost
