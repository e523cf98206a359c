#include "tests/study-property/ReferenceStudy.h"

#include <algorithm>
#include <cmath>

// Groups and variables, and how a new study data object repairs them.

namespace StudyProperty {

std::string ReferenceStudy::macro(const Variable &variable) const {
  const ReferenceModel::Part &part = model.parts[static_cast<std::size_t>(variable.part)];
  return part.isThere ? part.name + "." + variable.path : variable.path;
}

std::string ReferenceStudy::macro(const Group &group) const {
  return group.variables.empty() ? "" : macro(group.variables.front());
}

std::string ReferenceStudy::displayName(const Group &group) const {
  return group.name.empty() ? macro(group) : group.name;
}

std::optional<Value> ReferenceStudy::shown(const Variable &variable) const {
  if (!resolves(variable)) {
    return std::nullopt;
  }
  return model.value(model.current, variable.part, variable.path);
}

std::optional<Value> ReferenceStudy::firstShown(const Group &group) const {
  return group.variables.empty() ? std::nullopt : shown(group.variables.front());
}

bool ReferenceStudy::contains(const Group &group, int part, const std::string &path) const {
  return std::any_of(group.variables.begin(), group.variables.end(), [&](const Variable &variable) {
    return model.has(part, path) && variable.part == part && variable.path == path;
  });
}

int ReferenceStudy::groupContaining(bool isInput, int part, const std::string &path) const {
  for (int index = 0; index < numGroups(isInput); ++index) {
    if (contains(groups(isInput)[static_cast<std::size_t>(index)], part, path)) {
      return index;
    }
  }
  return -1;
}

int ReferenceStudy::addGroup(bool isInput, int part, const std::string &path) {
  Group group;
  Variable variable;
  variable.part = part;
  variable.path = path;
  group.variables.push_back(variable);
  for (Row &row : held->rows) {
    std::optional<Value> value = firstShown(group);
    const int version = model.find(row.name);
    if (mistake == Mistake::NewColumnsAreTheRowsOwn && version != ReferenceModel::kNone &&
        value.has_value()) {
      value = model.value(version, part, path);
    }
    row.cells[isInput ? 1 : 0].push_back(value);
  }
  groups(isInput).push_back(group);
  return numGroups(isInput) - 1;
}

int ReferenceStudy::addGroupFromGroup(bool isInput, int source) {
  groups(isInput).emplace_back();
  for (Row &row : held->rows) {
    std::vector<std::optional<Value>> &cells = row.cells[isInput ? 1 : 0];
    const bool isThere = source >= 0 && source < static_cast<int>(cells.size());
    cells.push_back(isThere ? cells[static_cast<std::size_t>(source)] : std::nullopt);
  }
  return numGroups(isInput) - 1;
}

void ReferenceStudy::removeGroup(bool isInput, int index) {
  const int count = numGroups(isInput);
  if (index > count || (mistake == Mistake::RemovingChecksTheIndex && index == count)) {
    throw Refusal("out_of_range: OptimizationData::removeGroup: Group index out of range");
  }
  if (index >= 0 && index < count) {
    groups(isInput).erase(groups(isInput).begin() + index);
  }
  for (Row &row : held->rows) {
    std::vector<std::optional<Value>> &cells = row.cells[isInput ? 1 : 0];
    if (index >= 0 && index < static_cast<int>(cells.size())) {
      cells.erase(cells.begin() + index);
    }
  }
}

void ReferenceStudy::removeFromGroup(bool isInput, int part, const std::string &path) {
  const int index = groupContaining(isInput, part, path);
  if (index >= 0) {
    std::vector<Variable> &variables = groups(isInput)[static_cast<std::size_t>(index)].variables;
    variables.erase(std::find_if(variables.begin(), variables.end(), [&](const Variable &variable) {
      return variable.part == part && variable.path == path;
    }));
    if (!variables.empty()) {
      return;
    }
  }
  removeGroup(isInput, index);
}

void ReferenceStudy::removeFromGroup(int part, const std::string &path) {
  if (groupContaining(true, part, path) >= 0) {
    removeFromGroup(true, part, path);
  }
  if (groupContaining(false, part, path) >= 0) {
    removeFromGroup(mistake != Mistake::RemovingFromAnySide, part, path);
  }
}

void ReferenceStudy::removeAttributeFromGroup(bool isInput, int flatIndex) {
  int place = flatIndex;
  for (int index = 0; index < numGroups(isInput); ++index) {
    std::vector<Variable> &variables = groups(isInput)[static_cast<std::size_t>(index)].variables;
    const auto count = static_cast<int>(variables.size());
    if (place < count) {
      if (place >= 0) {
        variables.erase(variables.begin() + place);
      }
      if (variables.empty()) {
        removeGroup(isInput, index);
      }
      return;
    }
    place -= count;
  }
}

void ReferenceStudy::moveAttribute(bool isInput, int from, int position, int to) {
  if (from == to) {
    throw Refusal("logic_error: OptimizationData::moveAttribute: Can't move attribute to same group");
  }
  const int count = numGroups(isInput);
  const auto isGroup = [count](int index) {
    return index >= 0 && index < count;
  };
  if (isGroup(from)) {
    std::vector<Variable> &source = groups(isInput)[static_cast<std::size_t>(from)].variables;
    if (position >= 0 && position < static_cast<int>(source.size()) && isGroup(to)) {
      Variable moved = source[static_cast<std::size_t>(position)];
      std::vector<Variable> &target = groups(isInput)[static_cast<std::size_t>(to)].variables;
      if (!target.empty()) {
        const Variable &first = target.front();
        moved.minimum = first.minimum;
        moved.maximum = first.maximum;
        moved.step = first.step;
        moved.isHighBoundOn = first.isHighBoundOn;
        moved.highBound = first.isHighBoundOn ? first.highBound : moved.highBound;
        moved.isLowBoundOn = first.isLowBoundOn;
        moved.lowBound = first.isLowBoundOn ? first.lowBound : moved.lowBound;
      }
      source.erase(source.begin() + position);
      target.push_back(moved);
    }
    if (!source.empty()) {
      return;
    }
  }
  removeGroup(isInput, from);
}

void ReferenceStudy::moveGroup(bool isInput, int from, int to) {
  const int count = numGroups(isInput);
  if (from == to || from < 0 || from >= count || to < 0 || to > count) {
    return;
  }
  std::vector<Group> &all = groups(isInput);
  const Group moved = all[static_cast<std::size_t>(from)];
  all.erase(all.begin() + from);
  const int place = to > from ? to - 1 : to;
  all.insert(all.begin() + place, moved);
  if (mistake != Mistake::MovedGroupsTakeTheirCells) {
    return;
  }
  for (Row &row : held->rows) {
    std::vector<std::optional<Value>> &cells = row.cells[isInput ? 1 : 0];
    if (static_cast<int>(cells.size()) == count) {
      const std::optional<Value> cell = cells[static_cast<std::size_t>(from)];
      cells.erase(cells.begin() + from);
      cells.insert(cells.begin() + place, cell);
    }
  }
}

void ReferenceStudy::setGroupName(bool isInput, int index, const std::string &name) {
  if (index < 0 || index >= numGroups(isInput)) {
    throw Refusal("out_of_range: OptimizationData::setGroupName: Group index out of range");
  }
  groups(isInput)[static_cast<std::size_t>(index)].name = name;
}

bool ReferenceStudy::isGroupSameValue(bool isInput, std::size_t a, std::size_t b) const {
  for (const Row &row : held->rows) {
    const std::vector<std::optional<Value>> &cells = row.cells[isInput ? 1 : 0];
    const bool areThere =
        a < cells.size() && b < cells.size() && cells[a].has_value() && cells[b].has_value();
    if (areThere && cells[a]->text() != cells[b]->text()) {
      return false;
    }
  }
  return true;
}

void ReferenceStudy::fix(Study &repaired) const {
  for (const std::size_t side : {1U, 0U}) {
    for (Group &group : repaired.groups[side]) {
      for (Variable &variable : group.variables) {
        fix(variable);
      }
    }
  }
}

void ReferenceStudy::fix(Variable &variable) const {
  const std::optional<Value> attribute = shown(variable);
  if (!attribute.has_value()) {
    return;
  }
  const auto number = [&attribute](const std::string &text) -> std::optional<double> {
    try {
      return attribute->assigned(text).standard();
    } catch (const Refusal &) {
      return std::nullopt;
    }
  };
  const bool isBounded = !variable.lowBound.empty() || !variable.highBound.empty();
  const std::optional<double> minimum = number(variable.minimum);
  if (isBounded || !variable.step.empty()) {
    if (minimum.has_value() && number(variable.maximum).has_value() && *minimum > *number(variable.maximum)) {
      variable.maximum = variable.minimum;
    }
    const std::optional<double> maximum = number(variable.maximum);
    if (minimum.has_value() && maximum.has_value() && attribute->kind == Kind::Integer) {
      variable.step = variable.step.empty() ? "1" : variable.step;
      if (const std::optional<double> step = number(variable.step);
          step.has_value() && *minimum + *step > *maximum) {
        variable.step = std::to_string(std::lround(*maximum - *minimum));
      }
    }
  }
  if (isBounded) {
    const std::optional<double> low = number(variable.lowBound);
    const std::optional<double> high = number(variable.highBound);
    if (low.has_value() && high.has_value() && *low > *high) {
      variable.highBound = variable.lowBound;
    }
  }
}

} // namespace StudyProperty
