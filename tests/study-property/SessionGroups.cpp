#include "HostModel/AttributePath.h"
#include "tests/study-property/Session.h"

#include <utility>

// Steps on groups and their variables.

namespace StudyProperty {

using EntityModel::AttributePath;

bool Session::actOnGroups(const Step &step, Draws &draws) {
  const bool isInput = !draws.oneIn(3);
  const std::string side = isInput ? "inputs" : "outputs";
  const Place place = anyPlace(draws, isInput);
  const std::string name = "P" + std::to_string(place.part) + "." + place.path;
  const int group = anyGroup(draws, isInput, 2);
  const std::string index = std::to_string(group);
  switch (step.operation) {
  case Operation::AddAttribute:
    bothDo(
        "addAttribute(" + side + ", " + name + ")",
        [&] { m_reference.addAttribute(isInput, place.part, place.path); },
        [&] {
          isInput ? manager().addInputAttribute(attribute(place))
                  : manager().addOutputAttribute(attribute(place));
        });
    return true;
  case Operation::AddGroup: {
    const Place added = {place.part, draws.oneIn(6) ? "Nowhere" : place.path};
    both(
        "addGroup(" + side + ", " + name + (added.path == place.path ? "" : ", no such path") + ")",
        [&] { return std::to_string(m_reference.addGroup(isInput, added.part, added.path)); },
        [&] {
          return std::to_string(data().addGroup(isInput, part(added.part), AttributePath(added.path)));
        });
    return true;
  }
  case Operation::AddGroupFromGroup:
    both(
        "addGroupFromGroup(" + side + ", " + index + ")",
        [&] { return std::to_string(m_reference.addGroupFromGroup(isInput, group)); },
        [&] { return std::to_string(data().addGroupFromGroup(isInput, group)); });
    return true;
  case Operation::RemoveGroup:
    bothDo(
        "removeGroup(" + side + ", " + index + ")", [&] { m_reference.removeGroup(isInput, group); },
        [&] { data().removeGroup(isInput, group); });
    return true;
  case Operation::RemoveFromGroup: {
    const bool usesManager = draws.oneIn(2);
    bothDo(
        "removeFromGroup(" + side + ", " + name + ")",
        [&] { m_reference.removeFromGroup(isInput, place.part, place.path); },
        [&] {
          if (!usesManager) {
            data().removeFromGroup(isInput, attribute(place));
          } else if (isInput) {
            manager().removeInputAttribute(attribute(place));
          } else {
            manager().removeOutputAttribute(attribute(place));
          }
        });
    return true;
  }
  case Operation::RemoveFromAnyGroup:
    m_tally["an output that stays"] +=
        m_reference.groupContaining(false, place.part, place.path) >= 0 ? 1 : 0;
    bothDo(
        "removeFromGroup(" + name + ")", [&] { m_reference.removeFromGroup(place.part, place.path); },
        [&] { data().removeFromGroup(attribute(place)); });
    return true;
  case Operation::RemoveAttribute: {
    const int flat = draws.below(7) - 1;
    bothDo(
        "removeAttributeFromGroup(" + side + ", " + std::to_string(flat) + ")",
        [&] { m_reference.removeAttributeFromGroup(isInput, flat); },
        [&] { data().removeAttributeFromGroup(isInput, flat); });
    return true;
  }
  case Operation::MoveAttribute: {
    const int to = anyGroup(draws, isInput, 1);
    const int position = draws.oneIn(4) ? draws.below(3) : 0;
    bothDo(
        "moveAttribute(" + side + ", " + index + ", " + std::to_string(position) + ", " + std::to_string(to) +
            ")",
        [&] { m_reference.moveAttribute(isInput, group, position, to); },
        [&] { data().moveAttribute(isInput, group, position, to); });
    return true;
  }
  case Operation::MoveGroup: {
    const int to = anyGroup(draws, isInput, 1);
    bothDo(
        "moveGroup(" + side + ", " + index + ", " + std::to_string(to) + ")",
        [&] { m_reference.moveGroup(isInput, group, to); }, [&] { data().moveGroup(isInput, group, to); });
    return true;
  }
  case Operation::SetGroupName: {
    const Texts names = {"", "A", "X", "P0", "Wind", "Wind"};
    const std::string &text = names[static_cast<std::size_t>(draws.below(names.size()))];
    bothDo(
        "setGroupName(" + side + ", " + index + ", \"" + text + "\")",
        [&] { m_reference.setGroupName(isInput, group, text); },
        [&] { data().setGroupName(isInput, group, text); });
    return true;
  }
  case Operation::SetLimits:
    setLimits(draws);
    return true;
  default:
    return false;
  }
}

// Texts that a load has to repair are welcome.
void Session::setLimits(Draws &draws) {
  const bool isInput = !draws.oneIn(4);
  const int group = anyGroup(draws, isInput, 0);
  const int count = m_reference.numGroups(isInput);
  const bool isGroup = group >= 0 && group < count;
  const std::size_t size =
      isGroup ? m_reference.groups(isInput)[static_cast<std::size_t>(group)].variables.size() : 0;
  if (size == 0) {
    return;
  }
  const int position = draws.below(size);
  const Texts numbers = {"", "1", "3", "5", "9", "junk"};
  const auto any = [&] {
    return numbers[static_cast<std::size_t>(draws.below(numbers.size()))];
  };
  const std::string minimum = any();
  const std::string maximum = any();
  const std::string step = any();
  const std::optional<std::string> low = draws.oneIn(2) ? std::nullopt : std::optional<std::string>(any());
  const std::optional<std::string> high = draws.oneIn(2) ? std::nullopt : std::optional<std::string>(any());
  bothDo(
      "limits of variable " + std::to_string(position) + " of " + (isInput ? "input" : "output") + " group " +
          std::to_string(group) + ": " + minimum + " to " + maximum + " by " + step + ", " +
          low.value_or("none") + " to " + high.value_or("none"),
      [&] {
        ReferenceStudy::Variable &variable = m_reference.groups(isInput)[static_cast<std::size_t>(group)]
                                                 .variables[static_cast<std::size_t>(position)];
        variable.minimum = minimum;
        variable.maximum = maximum;
        variable.step = step;
        variable.isLowBoundOn = low.has_value();
        variable.lowBound = low.value_or(variable.lowBound);
        variable.isHighBoundOn = high.has_value();
        variable.highBound = high.value_or(variable.highBound);
      },
      [&] {
        OptimizationTool::OptimizationGroupVariable variable =
            data().getGroup(isInput, group).getVariable(position);
        variable.setMinimumValue(minimum);
        variable.setMaximumValue(maximum);
        variable.setStepValue(step);
        variable.setLowBound(low);
        variable.setHighBound(high);
      });
}

} // namespace StudyProperty
