#pragma once

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/src/model/Value.h"
#include "HostModel/Attribute.h"

#include <memory>
#include <optional>

namespace EmbeddedHost {

class ModelEntity;

/// Limits that replace those of the member.
struct SlotLimits {
  std::optional<double> minimum;
  std::optional<double> maximum;
};

/// The place of one value: in an entity, or in a detached copy.
struct Slot {
  const Member *member = nullptr;
  ModelEntity *owner = nullptr; ///< null for a detached copy
  Value value;
  std::unique_ptr<SlotLimits> limits; ///< null: those of the member
  std::unique_ptr<EntityModel::Attribute>
      attribute; ///< made when it is first asked for; then its address stays
};

/// The lowest and highest value that the slot accepts.
inline const std::optional<double> &minimumOf(const Slot &slot) {
  return slot.limits == nullptr ? slot.member->minimum : slot.limits->minimum;
}
inline const std::optional<double> &maximumOf(const Slot &slot) {
  return slot.limits == nullptr ? slot.member->maximum : slot.limits->maximum;
}

} // namespace EmbeddedHost
