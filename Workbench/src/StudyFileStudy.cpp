#include "Workbench/src/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>

namespace Workbench {

namespace {

using EntityModel::ModelVersionStudyType;
using MathematicalUtilities::OptimisationStrategy;

const std::vector<std::string> kTypes{"parametric", "optimality", "calibration"};
const std::vector<std::string> kTargets{"minimise", "maximise", "none"};

} // namespace

void StudyFileReader::readStudy(const YAML::Node &node, StudyFile &file) {
  const auto map = m_yaml.map(node, "the study", {"type", "target", "cost", "inputs", "outputs", "variants"});
  if (!map) {
    return;
  }
  if (const YAML::Node *type = map->find("type")) {
    constexpr ModelVersionStudyType kValues[] = {ModelVersionStudyType::Parametric,
                                                 ModelVersionStudyType::Optimality,
                                                 ModelVersionStudyType::Calibration};
    file.type = kValues[m_yaml.choice(*type, "type", kTypes).value_or(0)];
  }
  if (const YAML::Node *target = map->find("target")) {
    constexpr OptimisationStrategy kValues[] = {OptimisationStrategy::Minimise,
                                                OptimisationStrategy::Maximise, OptimisationStrategy::None};
    file.target = kValues[m_yaml.choice(*target, "target", kTargets).value_or(0)];
  }
  if (const YAML::Node *cost = map->find("cost")) {
    file.cost = m_yaml.text(*cost, "cost").value_or("");
    file.costPlace = YamlReader::place(*cost);
  }
  for (const bool isInput : {true, false}) {
    const char *key = isInput ? "inputs" : "outputs";
    const YAML::Node *groups = map->find(key);
    if (groups == nullptr) {
      m_yaml.report(node, std::string("the study needs ") + key);
    } else {
      (isInput ? file.inputs : file.outputs) = readGroups(*groups, isInput, file);
    }
  }
  checkGroupNames(file);
  if (const YAML::Node *variants = map->find("variants")) {
    readRows(*variants, file);
  }
}

std::vector<StudyGroup> StudyFileReader::readGroups(const YAML::Node &node, bool isInput,
                                                    const StudyFile &file) {
  std::vector<StudyGroup> groups;
  std::set<std::string> taken;
  for (const YAML::Node &item :
       m_yaml.sequence(node, isInput ? "inputs" : "outputs").value_or(std::vector<YAML::Node>())) {
    std::optional<StudyGroup> group = readGroup(item, isInput, file);
    if (!group) {
      continue;
    }
    for (const std::string &attribute : group->attributes) {
      if (!taken.insert(attribute).second) {
        m_yaml.report(item,
                      "\"" + attribute + "\" is already in another group, which would give it another value");
      }
    }
    groups.push_back(std::move(*group));
  }
  if (node.IsSequence() && node.size() == 0) {
    m_yaml.report(node, isInput ? "a study needs at least one input" : "a study needs at least one output");
  }
  return groups;
}

std::optional<StudyGroup> StudyFileReader::readGroup(const YAML::Node &node, bool isInput,
                                                     const StudyFile &file) {
  StudyGroup group;
  group.place = YamlReader::place(node);
  if (node.IsScalar()) {
    const StudyAttribute *attribute = readAttributeName(node, file);
    if (attribute == nullptr) {
      return std::nullopt;
    }
    group.attributes.push_back(attribute->fullName());
    if (attribute->isResult == isInput) {
      m_yaml.report(node, isInput ? "a result cannot be an input" : "an output must be a result");
    }
    return group;
  }
  std::vector<std::string> keys{"name", "attribute", "attributes"};
  if (isInput) {
    keys.insert(keys.end(), {"minimum", "maximum", "step", "low-bound", "high-bound"});
  }
  const auto map = m_yaml.map(node, isInput ? "an input" : "an output", keys);
  if (!map) {
    return std::nullopt;
  }
  if (const YAML::Node *name = map->find("name")) {
    group.name = m_yaml.word(*name, "name").value_or("");
  }
  readGroupAttributes(*map, isInput, file, group);
  if (group.attributes.empty()) {
    return std::nullopt;
  }
  readGroupLimits(*map, *file.findAttribute(group.macro()), group);
  return group;
}

const StudyAttribute *StudyFileReader::readAttributeName(const YAML::Node &node, const StudyFile &file) {
  const std::optional<std::string> name = m_yaml.word(node, "an attribute");
  if (!name) {
    return nullptr;
  }
  const StudyAttribute *attribute = file.findAttribute(*name);
  if (attribute == nullptr) {
    std::vector<std::string> names;
    for (const StudyAttribute &known : file.attributes) {
      names.push_back(known.fullName());
    }
    m_yaml.report(node, "the model has no attribute \"" + *name + "\"" + didYouMean(*name, names));
  }
  return attribute;
}

void StudyFileReader::readGroupAttributes(const YamlReader::Map &map, bool isInput, const StudyFile &file,
                                          StudyGroup &group) {
  const YAML::Node *one = map.find("attribute");
  const YAML::Node *several = map.find("attributes");
  if ((one == nullptr) == (several == nullptr)) {
    m_yaml.report(map.node(), "a group needs either \"attribute\" or \"attributes\"");
    return;
  }
  std::vector<YAML::Node> nodes;
  if (one != nullptr) {
    nodes.push_back(*one);
  } else {
    nodes = m_yaml.sequence(*several, "attributes").value_or(std::vector<YAML::Node>());
  }
  const StudyAttribute *first = nullptr;
  for (const YAML::Node &node : nodes) {
    const StudyAttribute *attribute = readAttributeName(node, file);
    if (attribute == nullptr) {
      continue;
    }
    if (attribute->isResult == isInput) {
      m_yaml.report(node, isInput ? "a result cannot be an input" : "an output must be a result");
    }
    // All attributes of a group take the same value, as the same text.
    first = first == nullptr ? attribute : first;
    if (attribute->kind != first->kind || attribute->options != first->options ||
        attribute->unit != first->unit) {
      m_yaml.report(node, "\"" + attribute->fullName() + "\" has another kind, unit or options than \"" +
                              first->fullName() + "\": they cannot share one value");
    } else if (isInput && hostText(*attribute, attribute->value) != hostText(*first, first->value)) {
      m_yaml.report(node, "\"" + attribute->fullName() + "\" has another value than \"" + first->fullName() +
                              "\": attributes of one input share one value, the baseline's too");
    }
    group.attributes.push_back(attribute->fullName());
  }
  if (several != nullptr && nodes.empty() && several->IsSequence()) {
    m_yaml.report(*several, "a group needs at least one attribute");
  }
}

void StudyFileReader::readGroupLimits(const YamlReader::Map &map, const StudyAttribute &attribute,
                                      StudyGroup &group) {
  const bool isNumber = attribute.kind == AttributeKind::Real || attribute.kind == AttributeKind::Integer;
  const auto read = [&](const char *key, bool isDifference) -> std::optional<double> {
    const YAML::Node *node = map.find(key);
    if (node == nullptr) {
      return std::nullopt;
    }
    if (!isNumber) {
      m_yaml.report(*node, std::string("\"") + attribute.fullName() + "\" is no number and has no " + key);
      return std::nullopt;
    }
    if (attribute.kind == AttributeKind::Integer) {
      const std::optional<long long> whole = m_yaml.whole(*node, key);
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
    m_yaml.report(*map.find("step"), "a step must be greater than 0");
  }
  if (group.minimum && group.maximum && *group.minimum > *group.maximum) {
    m_yaml.report(*map.find("maximum"), "the maximum is below the minimum");
  }
  if (group.lowBound && group.highBound && *group.lowBound > *group.highBound) {
    m_yaml.report(*map.find("high-bound"), "the high bound is below the low bound");
  }
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
      const auto [known, isNew] = names.emplace(group.name, group.place);
      if (!isNew) {
        m_yaml.report(group.place, "the name \"" + group.name + "\" is already taken by the group in line " +
                                       std::to_string(known->second.line));
      }
    }
  }
}

} // namespace Workbench
