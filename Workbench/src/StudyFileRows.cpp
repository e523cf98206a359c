#include "EmbeddedHost/RoundingNoise.h"
#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

// The input group of that name or first attribute; the number of groups when there is none.
std::size_t findInput(const StudyFile &file, const std::string &name) {
  const auto found = std::find_if(file.inputs.begin(), file.inputs.end(), [&name](const StudyGroup &group) {
    return group.name == name || group.macro() == name;
  });
  return static_cast<std::size_t>(found - file.inputs.begin());
}

std::vector<std::string> inputNames(const StudyFile &file) {
  std::vector<std::string> names;
  for (const StudyGroup &group : file.inputs) {
    names.push_back(group.title());
  }
  return names;
}

std::vector<StudyValue> baselineValues(const StudyFile &file) {
  std::vector<StudyValue> values;
  for (const StudyGroup &group : file.inputs) {
    values.push_back(file.findAttribute(group.macro())->value);
  }
  return values;
}

// What makes two rows the same row: the exact value of every input.
std::vector<std::string> keyOf(const StudyFile &file, const std::vector<StudyValue> &values) {
  std::vector<std::string> key;
  for (std::size_t index = 0; index < values.size(); ++index) {
    key.push_back(hostText(*file.findAttribute(file.inputs[index].macro()), values[index]));
  }
  return key;
}

} // namespace

void StudyFileReader::readRows(const StudyNode &node, StudyFile &file) {
  if (node.isList()) {
    readRowList(node, file);
    dropEqualRows(file);
    return;
  }
  const auto map = m_nodes.map(node, "variants", {"list", "grid", "csv"});
  if (!map) {
    return;
  }
  if (const StudyNode *list = map->find("list")) {
    readRowList(*list, file);
  }
  if (const StudyNode *grid = map->find("grid")) {
    readGrid(*grid, file);
  }
  if (const StudyNode *table = map->find("csv")) {
    readTable(*table, file);
  }
  dropEqualRows(file);
}

void StudyFileReader::readRowList(const StudyNode &node, StudyFile &file) {
  for (const StudyNode &item : m_nodes.sequence(node, "the list of variants")) {
    const auto map = m_nodes.map(item, "a variant", {"name", "values"});
    if (!map) {
      continue;
    }
    StudyRow row;
    row.place = item.place();
    row.values = baselineValues(file);
    if (const StudyNode *name = map->find("name")) {
      row.name = m_nodes.word(*name, "name").value_or("");
      checkRowName(*name, row);
    }
    const StudyNode *values = map->find("values");
    if (values == nullptr) {
      m_nodes.report(item, "a variant needs values; those of inputs it does not name are the baseline's");
      continue;
    }
    for (const NodeReader::Entry &entry : m_nodes.entries(*values, "values")) {
      const std::size_t index = findInput(file, entry.key);
      if (index == file.inputs.size()) {
        m_nodes.report(entry.keyNode,
                       "there is no input \"" + entry.key + "\"" + didYouMean(entry.key, inputNames(file)));
        continue;
      }
      const StudyAttribute &attribute = *file.findAttribute(file.inputs[index].macro());
      const std::optional<StudyValue> value = readValue(entry.value, attribute);
      if (value && checkGroupLimits(entry.value, file.inputs[index], file, *value)) {
        row.values[index] = *value;
      }
    }
    file.rows.push_back(std::move(row));
  }
}

// Rows are found again by their names.
void StudyFileReader::checkRowName(const StudyNode &node, const StudyRow &row) {
  const auto [known, isNew] = m_rowNames.emplace(row.name, row.place);
  if (!isNew && !row.name.empty()) {
    m_nodes.report(node, "the name \"" + row.name + "\" is already taken by the variant in line " +
                             std::to_string(known->second.line));
  }
}

// A value has to suit the input and every attribute that takes it.
bool StudyFileReader::checkGroupLimits(const StudyNode &node, const StudyGroup &group, const StudyFile &file,
                                       const StudyValue &value) {
  for (std::size_t index = 1; index < group.attributes.size(); ++index) {
    if (!checkLimits(node, *file.findAttribute(group.attributes[index]), value.number)) {
      return false;
    }
  }
  const bool isBelow = group.minimum && value.number < *group.minimum;
  const bool isAbove = group.maximum && value.number > *group.maximum;
  if (isBelow || isAbove) {
    StudyValue limit;
    limit.number = isBelow ? *group.minimum : *group.maximum;
    m_nodes.report(node, "\"" + value.text + "\" is " +
                             (isBelow ? "below the minimum" : "above the maximum") + " of the input \"" +
                             group.title() + "\", " + hostText(*file.findAttribute(group.macro()), limit));
  }
  return !isBelow && !isAbove;
}

void StudyFileReader::readGrid(const StudyNode &node, StudyFile &file) {
  std::vector<std::vector<StudyValue>> axes(file.inputs.size());
  const std::vector<StudyValue> baseline = baselineValues(file);
  for (std::size_t index = 0; index < axes.size(); ++index) {
    axes[index].push_back(baseline[index]);
  }
  std::set<std::size_t> named;
  double count = 1.0;
  for (const NodeReader::Entry &entry : m_nodes.entries(node, "the grid")) {
    const std::size_t index = findInput(file, entry.key);
    if (index == file.inputs.size()) {
      m_nodes.report(entry.keyNode,
                     "there is no input \"" + entry.key + "\"" + didYouMean(entry.key, inputNames(file)));
      continue;
    }
    if (!named.insert(index).second) {
      m_nodes.report(entry.keyNode, "the input \"" + entry.key + "\" is in the grid twice");
      continue;
    }
    const StudyGroup &group = file.inputs[index];
    axes[index] = readGridAxis(entry.value, group, file);
    count *= static_cast<double>(axes[index].size());
  }
  if (count > static_cast<double>(kLargestGrid)) {
    m_nodes.report(node, "the grid has " + EmbeddedHost::writeSolverNumber(count) + " rows, more than " +
                             std::to_string(kLargestGrid));
    return;
  }
  file.gridRows = static_cast<std::size_t>(count);
  appendGridRows(node, axes, file);
}

std::vector<StudyValue> StudyFileReader::readGridAxis(const StudyNode &node, const StudyGroup &group,
                                                      const StudyFile &file) {
  const StudyAttribute &attribute = *file.findAttribute(group.macro());
  std::vector<StudyValue> values;
  if (node.isList()) {
    for (const StudyNode &item : node.items()) {
      const std::optional<StudyValue> value = readValue(item, attribute);
      if (value && checkGroupLimits(item, group, file, *value)) {
        values.push_back(*value);
      }
    }
    if (node.items().size() == 0) {
      m_nodes.report(node, "an axis of a grid needs at least one value");
    }
    return values;
  }
  StudyGroup limits = group;
  if (node.isScalar() && !node.isNothing()) {
    m_nodes.report(node, "an axis of a grid is a list of values, or a map of minimum, maximum and step");
    return values;
  }
  if (!node.isNothing()) {
    const auto map = m_nodes.map(node, "an axis of a grid", {"minimum", "maximum", "step"});
    if (!map) {
      return values;
    }
    StudyGroup own;
    readGroupLimits(*map, attribute, own);
    limits.minimum = own.minimum ? own.minimum : group.minimum;
    limits.maximum = own.maximum ? own.maximum : group.maximum;
    limits.step = own.step ? own.step : group.step;
  }
  values = stepsOf(node, limits, attribute);
  for (const StudyValue &value : values) {
    if (!checkLimits(node, attribute, value.number) || !checkGroupLimits(node, limits, file, value)) {
      break; // once says enough
    }
  }
  return values;
}

// min, min + step, min + 2 step and so on; the maximum is included when a step ends on it within rounding.
std::vector<StudyValue> StudyFileReader::stepsOf(const StudyNode &node, const StudyGroup &limits,
                                                 const StudyAttribute &attribute) {
  std::vector<StudyValue> values;
  if (!limits.minimum || !limits.maximum || !limits.step) {
    m_nodes.report(node, "the input \"" + limits.title() +
                             "\" needs minimum, maximum and step to be an axis of a grid");
    return values;
  }
  if (*limits.step <= 0.0 || *limits.maximum < *limits.minimum) {
    return values; // already reported
  }
  const double steps = (*limits.maximum - *limits.minimum) / *limits.step;
  if (!(steps < static_cast<double>(kLargestGrid))) {
    m_nodes.report(node, "an axis of more than " + std::to_string(kLargestGrid) + " values is not allowed");
    return values;
  }
  const auto last = static_cast<std::size_t>(std::floor(steps + 1e-9));
  for (std::size_t index = 0; index <= last; ++index) {
    StudyValue value;
    const double distance = static_cast<double>(index) * *limits.step;
    value.number = std::min(EmbeddedHost::withoutRoundingNoise(*limits.minimum + distance,
                                                               std::max(std::abs(*limits.minimum), distance)),
                            *limits.maximum);
    value.text = hostText(attribute, value);
    value.place = node.place();
    values.push_back(std::move(value));
  }
  return values;
}

// The first input varies slowest.
void StudyFileReader::appendGridRows(const StudyNode &node, const std::vector<std::vector<StudyValue>> &axes,
                                     StudyFile &file) {
  std::size_t count = 1;
  for (const std::vector<StudyValue> &axis : axes) {
    count *= axis.size();
  }
  for (std::size_t number = 0; number < count; ++number) {
    StudyRow row;
    row.place = node.place();
    row.values.resize(axes.size());
    std::size_t rest = number;
    for (std::size_t index = axes.size(); index-- > 0;) {
      row.values[index] = axes[index][rest % axes[index].size()];
      rest /= axes[index].size();
    }
    file.rows.push_back(std::move(row));
  }
}

// A row without a name is known by its inputs alone: one that equals the baseline or another row is not solved twice.
void StudyFileReader::dropEqualRows(StudyFile &file) {
  std::set<std::vector<std::string>> known{keyOf(file, baselineValues(file))};
  for (const StudyRow &row : file.rows) {
    if (!row.name.empty()) {
      known.insert(keyOf(file, row.values));
    }
  }
  const std::size_t count = file.rows.size();
  const auto isKnown = [&](const StudyRow &row) {
    return row.name.empty() && !known.insert(keyOf(file, row.values)).second;
  };
  file.rows.erase(std::remove_if(file.rows.begin(), file.rows.end(), isKnown), file.rows.end());
  const std::size_t dropped = count - file.rows.size();
  if (dropped > 0) {
    file.notes.push_back(std::to_string(dropped) + " of " + std::to_string(count) +
                         " variants equal the baseline or another variant and are left out");
  }
}

} // namespace Workbench
