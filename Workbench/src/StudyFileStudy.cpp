#include "Workbench/NearestWord.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>
#include <array>

namespace Workbench {

namespace {

using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;

const std::vector<std::string> kTypes{"parametric", "optimality", "calibration"};
const std::vector<std::string> kTargets{"minimise", "maximise", "none"};

} // namespace

void StudyFileReader::readStudy(const StudyNode &node, StudyFile &file) {
  const auto map = m_nodes.map(
      node, "the study", {"type", "target", "cost", "rule", "stop-after", "inputs", "outputs", "variants"});
  if (!map) {
    return;
  }
  if (const StudyNode *type = map->find("type")) {
    constexpr ModelVersionStudyType kValues[] = {ModelVersionStudyType::Parametric,
                                                 ModelVersionStudyType::Optimality,
                                                 ModelVersionStudyType::Calibration};
    file.type = kValues[m_nodes.choice(*type, "type", kTypes).value_or(0)];
  }
  if (const StudyNode *target = map->find("target")) {
    constexpr OptimisationStrategy kValues[] = {OptimisationStrategy::Minimise,
                                                OptimisationStrategy::Maximise, OptimisationStrategy::None};
    file.target = kValues[m_nodes.choice(*target, "target", kTargets).value_or(0)];
  }
  if (const StudyNode *cost = map->find("cost")) {
    file.cost = onOneLine(m_nodes.text(*cost, "cost").value_or(""));
    file.costPlace = cost->place();
  }
  const std::size_t problemsBefore = m_nodes.problems().size();
  for (const bool isInput : {true, false}) {
    const char *key = isInput ? "inputs" : "outputs";
    const StudyNode *groups = map->find(key);
    if (groups == nullptr) {
      m_nodes.report(node, std::string("the study needs ") + key);
    } else {
      (isInput ? file.inputs : file.outputs) = readGroups(*groups, isInput, file);
    }
  }
  checkGroupNames(file);
  const StudyNode *cost = map->find("cost");
  if (cost != nullptr && m_nodes.problems().size() == problemsBefore) {
    checkCost(*cost, file);
  }
  if (const StudyNode *rule = map->find("rule")) {
    readRule(*rule, file);
  }
  if (const StudyNode *stop = map->find("stop-after")) {
    const std::optional<long long> count = m_nodes.whole(*stop, "stop-after");
    if (count && *count < 0) {
      m_nodes.report(*stop, "stop-after counts failures from 1; 0 is for never");
    }
    file.stopAfter = static_cast<std::size_t>(std::max(0LL, count.value_or(0)));
  }
  if (const StudyNode *variants = map->find("variants")) {
    readRows(*variants, file);
  }
}

std::vector<StudyGroup> StudyFileReader::readGroups(const StudyNode &node, bool isInput,
                                                    const StudyFile &file) {
  std::vector<StudyGroup> groups;
  std::set<std::string> taken;
  for (const StudyNode &item : m_nodes.sequence(node, isInput ? "inputs" : "outputs")) {
    std::optional<StudyGroup> group = readGroup(item, isInput, file);
    if (!group) {
      continue;
    }
    for (const std::string &attribute : group->attributes) {
      if (!taken.insert(attribute).second) {
        m_nodes.report(item, "\"" + attribute +
                                 "\" is already in another group, which would give it another value");
      }
    }
    groups.push_back(std::move(*group));
  }
  if (node.isList() && node.items().size() == 0) {
    m_nodes.report(node, isInput ? "a study needs at least one input" : "a study needs at least one output");
  }
  return groups;
}

std::optional<StudyGroup> StudyFileReader::readGroup(const StudyNode &node, bool isInput,
                                                     const StudyFile &file) {
  StudyGroup group;
  group.place = node.place();
  if (node.isScalar()) {
    const StudyAttribute *attribute = readAttributeName(node, file);
    if (attribute == nullptr) {
      return std::nullopt;
    }
    group.attributes.push_back(attribute->fullName());
    if (attribute->isResult == isInput) {
      m_nodes.report(node, isInput ? "a result cannot be an input" : "an output must be a result");
    }
    return group;
  }
  std::vector<std::string> keys{"name", "attribute", "attributes"};
  if (isInput) {
    keys.insert(keys.end(), {"minimum", "maximum", "step", "low-bound", "high-bound"});
  }
  const auto map = m_nodes.map(node, isInput ? "an input" : "an output", keys);
  if (!map) {
    return std::nullopt;
  }
  if (const StudyNode *name = map->find("name")) {
    group.name = m_nodes.word(*name, "name").value_or("");
  }
  readGroupAttributes(*map, isInput, file, group);
  if (group.attributes.empty()) {
    return std::nullopt;
  }
  readGroupLimits(*map, *file.findAttribute(group.macro()), group);
  return group;
}

const StudyAttribute *StudyFileReader::readAttributeName(const StudyNode &node, const StudyFile &file) {
  const std::optional<std::string> name = m_nodes.word(node, "an attribute");
  if (!name) {
    return nullptr;
  }
  const StudyAttribute *attribute = file.findAttribute(*name);
  if (attribute == nullptr) {
    std::vector<std::string> names;
    for (const StudyAttribute &known : file.attributes) {
      names.push_back(known.fullName());
    }
    m_nodes.report(node, "the model has no attribute \"" + *name + "\"" + didYouMean(*name, names));
  }
  return attribute;
}

void StudyFileReader::readGroupAttributes(const NodeReader::Map &map, bool isInput, const StudyFile &file,
                                          StudyGroup &group) {
  const StudyNode *one = map.find("attribute");
  const StudyNode *several = map.find("attributes");
  if ((one == nullptr) == (several == nullptr)) {
    m_nodes.report(map.node(), "a group needs either \"attribute\" or \"attributes\"");
    return;
  }
  std::vector<StudyNode> nodes;
  if (one != nullptr) {
    nodes.push_back(*one);
  } else {
    nodes = m_nodes.sequence(*several, "attributes");
  }
  const StudyAttribute *first = nullptr;
  for (const StudyNode &node : nodes) {
    const StudyAttribute *attribute = readAttributeName(node, file);
    if (attribute == nullptr) {
      continue;
    }
    if (attribute->isResult == isInput) {
      m_nodes.report(node, isInput ? "a result cannot be an input" : "an output must be a result");
    }
    // All attributes of a group take the same value, as the same text.
    first = first == nullptr ? attribute : first;
    if (attribute->kind != first->kind || attribute->options != first->options ||
        attribute->unit != first->unit) {
      m_nodes.report(node, "\"" + attribute->fullName() + "\" has another kind, unit or options than \"" +
                               first->fullName() + "\": they cannot share one value");
    } else if (isInput && hostText(*attribute, attribute->value) != hostText(*first, first->value)) {
      m_nodes.report(node, "\"" + attribute->fullName() + "\" has another value than \"" + first->fullName() +
                               "\": attributes of one input share one value, the baseline's too");
    }
    group.attributes.push_back(attribute->fullName());
  }
  if (several != nullptr && nodes.empty() && several->isList()) {
    m_nodes.report(*several, "a group needs at least one attribute");
  }
}

void StudyFileReader::readGroupLimits(const NodeReader::Map &map, const StudyAttribute &attribute,
                                      StudyGroup &group) {
  const bool isNumber = attribute.kind == AttributeKind::Real || attribute.kind == AttributeKind::Integer;
  const auto read = [&](const char *key, bool isDifference) -> std::optional<double> {
    const StudyNode *node = map.find(key);
    if (node == nullptr) {
      return std::nullopt;
    }
    if (!isNumber) {
      m_nodes.report(*node, std::string("\"") + attribute.fullName() + "\" is no number and has no " + key);
      return std::nullopt;
    }
    if (attribute.kind == AttributeKind::Integer) {
      const std::optional<long long> whole = m_nodes.whole(*node, key);
      return whole ? std::optional<double>(static_cast<double>(*whole)) : std::nullopt;
    }
    return readReal(*node, attribute, isDifference);
  };
  group.minimum = read("minimum", false);
  group.maximum = read("maximum", false);
  group.step = read("step", true);
  group.lowBound = read("low-bound", false);
  group.highBound = read("high-bound", false);
  if (group.step && *group.step <= 0.0) {
    m_nodes.report(*map.find("step"), "a step must be greater than 0");
  }
  if (group.minimum && group.maximum && *group.minimum > *group.maximum) {
    m_nodes.report(*map.find("maximum"), "the maximum is below the minimum");
  }
  if (group.lowBound && group.highBound && *group.lowBound > *group.highBound) {
    m_nodes.report(*map.find("high-bound"), "the high bound is below the low bound");
  }
}

std::string groupTitleProblem(const std::string &name) {
  constexpr std::array<const char *, 5> kColumns{"row", "name", "status", "reason", "cost"};
  if (std::find(kColumns.begin(), kColumns.end(), name) != kColumns.end()) {
    return "the name \"" + name + "\" is that of a column that every table has; give another name";
  }
  return !isUtf8Text(name) || name != inOneLine(name)
             ? "the name of a group has to be UTF-8 text without control characters"
             : "";
}

// Rows find an input by its name or by its first attribute, so that no name may mean two groups.
void StudyFileReader::checkGroupNames(const StudyFile &file) {
  std::map<std::string, FilePlace> names;
  for (const auto *groups : {&file.inputs, &file.outputs}) {
    for (const StudyGroup &group : *groups) {
      names.emplace(group.macro(), group.place);
    }
  }
  for (const auto *groups : {&file.inputs, &file.outputs}) {
    for (const StudyGroup &group : *groups) {
      if (group.name.empty() || group.name == group.macro()) {
        continue;
      }
      if (const std::string problem = groupTitleProblem(group.name); !problem.empty()) {
        m_nodes.report(group.place, problem);
      }
      const auto [known, isNew] = names.emplace(group.name, group.place);
      if (!isNew) {
        m_nodes.report(group.place, "the name \"" + group.name + "\" is already taken by the group in line " +
                                        std::to_string(known->second.line));
      }
    }
  }
}

} // namespace Workbench
