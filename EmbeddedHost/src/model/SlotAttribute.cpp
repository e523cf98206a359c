#include "EmbeddedHost/src/model/SlotAttribute.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/ModelEntity.h"
#include "EmbeddedHost/src/model/ValueText.h"

#include <limits>
#include <stdexcept>

namespace EmbeddedHost {

SlotHolder::SlotHolder(Slot &slot) : m_slot(&slot) {}

SlotHolder::SlotHolder(std::unique_ptr<DetachedSlot> detached)
    : m_detached(std::move(detached)), m_slot(&m_detached->slot) {}

SlotHolder::~SlotHolder() = default;

const Model *SlotHolder::model() const {
  if (m_detached == nullptr) {
    return &m_slot->owner->model();
  }
  // Expires with the model, and never outlives this call: all use is on one thread.
  return m_detached->model.lock().get();
}

bool SlotHolder::entitiesLive() const {
  return model() != nullptr;
}

EntityModel::Entity *SlotHolder::owner() const {
  return m_slot->owner;
}

bool SlotHolder::isReadOnlySlot(bool includeVersion) const {
  if (member().isResult) {
    return true;
  }
  if (!includeVersion || m_slot->owner == nullptr || Model::isProjectLevel(*m_slot)) {
    return false;
  }
  const Version *current = m_slot->owner->model().tree().current();
  return current != nullptr && current->marks().isReadOnly;
}

void SlotHolder::setText(const std::string &text) {
  Value value = readValue(*m_slot, text, model());
  if (m_detached == nullptr) {
    m_slot->owner->model().setValue(*m_slot, std::move(value));
  } else {
    m_slot->value = std::move(value);
  }
}

void SlotHolder::assign(const EntityModel::Attribute &other) {
  const Slot *that = slotOf(other);
  if (that == nullptr || that->member->kind != member().kind) {
    throw std::invalid_argument(member().label +
                                ": the value of an attribute of another kind cannot be assigned");
  }
  if (m_detached != nullptr) {
    m_slot->value = deepCopy(that->value);
  } else if (member().kind != MemberKind::EntityList && member().kind != MemberKind::Composite) {
    m_slot->owner->model().setValue(*m_slot, deepCopy(that->value));
  }
}

std::string SlotHolder::text() const {
  const bool namesEntities = member().kind == MemberKind::EntityLink ||
                             member().kind == MemberKind::EntityList ||
                             member().kind == MemberKind::AttributeReference;
  return namesEntities && !entitiesLive() ? std::string() : valueText(*m_slot, m_slot->value);
}

double SlotHolder::convertedValue() const {
  return standardNumber(member(), m_slot->value);
}

std::string SlotHolder::units() const {
  const Unit *unit = displayUnit(member(), m_slot->value);
  return unit == nullptr ? std::string() : unit->text();
}

double SlotHolder::valueInUnits(const std::string &units) const {
  const auto *real = std::get_if<RealValue>(&m_slot->value);
  if (units.empty() || real == nullptr || real->unit == nullptr) {
    return standardValue();
  }
  if (units == real->unit->text()) {
    return real->number;
  }
  const std::optional<double> number = UnitSystem::process().convertTo(real->number, *real->unit, units);
  return number ? *number : standardValue();
}

bool SlotHolder::isNumber() const {
  return isNumberKind(member().kind) && holdsValue(m_slot->value);
}

int SlotHolder::intValue() const {
  constexpr int kLowest = std::numeric_limits<int>::min();
  constexpr int kHighest = std::numeric_limits<int>::max();
  if (const auto *number = std::get_if<std::int64_t>(&m_slot->value)) {
    return *number < kLowest ? kLowest : *number > kHighest ? kHighest : static_cast<int>(*number);
  }
  const double number = standardValue();
  if (!(number > kLowest)) {
    return number != number ? 0 : kLowest;
  }
  return number >= kHighest ? kHighest : static_cast<int>(number);
}

SlotLimits &SlotHolder::ownLimits() {
  if (m_slot->limits == nullptr) {
    m_slot->limits = std::make_unique<SlotLimits>(SlotLimits{member().minimum, member().maximum});
  }
  return *m_slot->limits;
}

std::string SlotHolder::description() const {
  std::string text;
  switch (member().kind) {
  case MemberKind::Real:
    return "real " + member().standardUnit;
  case MemberKind::Integer:
    return "integer";
  case MemberKind::Boolean:
    return "boolean";
  case MemberKind::Text:
    return "text";
  case MemberKind::EntityLink:
    return "link " + member().targetType;
  case MemberKind::EntityList:
    return "list " + member().targetType;
  case MemberKind::AttributeReference:
    return "reference";
  case MemberKind::Composite:
    return "composite " + member().label;
  case MemberKind::Choice:
    text = "choice";
    break;
  case MemberKind::TypeReference:
    text = "type";
    break;
  }
  for (const std::string &option : member().options) {
    // With its length, so that no two lists of options read the same.
    text += " " + std::to_string(option.size()) + ":" + option;
  }
  return text;
}

std::unique_ptr<EntityModel::Attribute> SlotHolder::makeClone() const {
  return m_detached == nullptr ? makeDetachedAttribute(*m_slot, m_slot->value)
                               : makeDetachedAttribute(*m_detached);
}

} // namespace EmbeddedHost
