#include "EmbeddedHost/src/project/UnitChange.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/Model.h"

#include <unordered_set>
#include <vector>

namespace EmbeddedHost {

namespace {

bool hasOtherUnit(const Member &before, const Member &now) {
  return before.standardUnit != now.standardUnit || before.displayUnit != now.displayUnit;
}

std::unordered_set<const Slot *> changedSlots(const ModelSchema &saved, const Model &model) {
  std::unordered_set<const Slot *> changed;
  for (const auto &entity : model.entities()) {
    const auto type = saved.findType(entity->type().label());
    for (const Slot &slot : entity->slots()) {
      const Member *before = type == nullptr ? nullptr : type->findMember(slot.member->path);
      if (before != nullptr && slot.member->display != nullptr && hasOtherUnit(*before, *slot.member)) {
        changed.insert(&slot);
      }
    }
  }
  return changed;
}

} // namespace

void convertChangedUnits(const ModelSchema &saved, Model &model) {
  const std::unordered_set<const Slot *> changed = changedSlots(saved, model);
  for (const auto &[number, version] : model.tree().versions()) {
    std::vector<Edit> converted;
    for (const Edit &edit : version->edits.edits()) {
      const auto *real = std::get_if<RealValue>(&edit.value);
      const Unit *unit = edit.slot->member->display;
      if (changed.count(edit.slot) != 0 && real != nullptr && real->unit != nullptr && real->unit != unit) {
        const double value = convertReadably(real->number, *real->unit, *unit);
        converted.push_back({edit.slot, RealValue{value, unit}});
      }
    }
    for (Edit &edit : converted) {
      model.setValueIn(*version, *edit.slot, std::move(edit.value));
    }
  }
}

} // namespace EmbeddedHost
