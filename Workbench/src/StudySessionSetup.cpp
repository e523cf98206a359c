#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/StudySession.h"
#include "Workbench/src/StudyEditing.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace Workbench {

namespace {

using OptimizationTool::OptimizationGroup;
using OptimizationTool::OptimizationGroupVariable;
using OptimizationTool::OptimizationManager;

// What a value is compared by: exactly, and whatever unit somebody has it shown in.
std::string keyOf(const EntityModel::Attribute *attribute, AttributeKind kind) {
  if (attribute == nullptr || !attribute->hasValue()) {
    return "none";
  }
  return kind == AttributeKind::Text ? "=" + attribute->getValueAsString()
                                     : EmbeddedHost::writeSolverNumber(attribute->getStandardValue());
}

std::string keyOf(const StudyValue &value, AttributeKind kind) {
  return kind == AttributeKind::Text ? "=" + value.text : EmbeddedHost::writeSolverNumber(value.number);
}

// A choice by its word, not by its number; a number with its unit.
std::string textOf(const ModelAttribute &declared) {
  return declared.kind == AttributeKind::Choice ? shownText(declared, declared.value)
                                                : declared.value->getValueAsString();
}

std::string orNoLimits(const std::string &limits) {
  return limits.empty() ? "no limits" : limits;
}

std::string joined(const std::vector<std::string> &parts) {
  std::string text;
  for (const std::string &part : parts) {
    text += std::to_string(part.size()) + ":" + part;
  }
  return text;
}

} // namespace

EntityModel::Attribute *StudySession::attributeOf(const std::string &fullName) const {
  const ModelAttribute *attribute = model().find(fullName);
  return attribute == nullptr ? nullptr : attribute->value;
}

void StudySession::markInStudyFile(std::size_t row, bool isInStudyFile) {
  RowState state = rowState(row);
  state.isInStudyFile = isInStudyFile;
  setRowState(row, std::move(state));
}

std::string StudySession::addGroup(bool isInput, const StudyGroup &declared) {
  for (std::size_t index = 0; index < declared.attributes.size(); ++index) {
    EntityModel::Attribute *attribute = attributeOf(declared.attributes[index]);
    if (!OptimizationManager::isItemValid(attribute, isInput, !isInput, m_study.type)) {
      return "\"" + declared.attributes[index] + "\" cannot take part in a study of this type";
    }
    if (index > 0) {
      if (!groupAt(isInput, groupCount(isInput) - 1).appendVariable(attribute)) {
        return "\"" + declared.attributes[index] + "\" could not be added to its group";
      }
    } else if (isInput) {
      OptimizationManager::instance().addInputAttribute(attribute);
    } else {
      OptimizationManager::instance().addOutputAttribute(attribute);
    }
  }
  groupAt(isInput, groupCount(isInput) - 1).setName(declared.name);
  return "";
}

OptimizationGroup StudySession::groupAt(bool isInput, std::size_t index) const {
  return data().getGroup(isInput, static_cast<int>(index));
}

std::vector<std::string> StudySession::attributesOf(bool isInput, std::size_t index) const {
  const OptimizationGroup group = groupAt(isInput, index);
  std::vector<std::string> attributes;
  attributes.reserve(static_cast<std::size_t>(group.size()));
  for (int number = 0; number < group.size(); ++number) {
    attributes.push_back(group.getVariable(number).getAttributeMacro());
  }
  return attributes;
}

std::optional<std::size_t> StudySession::findGroupOf(bool isInput, const StudyGroup &declared) const {
  for (std::size_t index = 0; index < groupCount(isInput); ++index) {
    if (attributesOf(isInput, index) == declared.attributes) {
      return index;
    }
  }
  return std::nullopt;
}

// A group is known by its attributes; one that has others now is another one.
bool StudySession::removeOldGroups(bool isInput) {
  const std::vector<StudyGroup> &declared = isInput ? m_study.inputs : m_study.outputs;
  bool isChanged = false;
  for (std::size_t index = groupCount(isInput); index-- > 0;) {
    const std::vector<std::string> attributes = attributesOf(isInput, index);
    const bool isDeclared =
        std::any_of(declared.begin(), declared.end(),
                    [&attributes](const StudyGroup &group) { return group.attributes == attributes; });
    if (isDeclared) {
      continue;
    }
    const std::string title = groupTitle(*this, {isInput, index});
    if (isInput) {
      takeBaselineValue(*this, index);
    }
    data().removeGroup(isInput, static_cast<int>(index));
    m_changes.push_back(std::string("the ") + (isInput ? "input \"" : "output \"") + title +
                        "\" was removed" + (isInput ? ": every row has the baseline's value now" : ""));
    isChanged = true;
  }
  return isChanged;
}

// Makes the groups those of the study file, in its order.
std::string StudySession::applyGroups(bool isInput) {
  const std::vector<StudyGroup> &declared = isInput ? m_study.inputs : m_study.outputs;
  bool isChanged = removeOldGroups(isInput);
  for (std::size_t index = 0; index < declared.size(); ++index) {
    std::optional<std::size_t> found = findGroupOf(isInput, declared[index]);
    if (!found) {
      std::string problem = addGroup(isInput, declared[index]);
      if (!problem.empty()) {
        return problem;
      }
      found = groupCount(isInput) - 1;
      m_changes.push_back(std::string("the ") + (isInput ? "input \"" : "output \"") +
                          declared[index].title() + "\" was added");
      isChanged = true;
    }
    if (*found != index) {
      data().moveGroup(isInput, static_cast<int>(*found), static_cast<int>(index));
      isChanged = true;
    }
    if (groupAt(isInput, index).getName() != declared[index].name) {
      groupAt(isInput, index).setName(declared[index].name);
      isChanged = true;
    }
  }
  if (isChanged) {
    reloadStudy(*this);
  }
  return "";
}

// Edits the baseline as a user does, so that the study takes the new values into row 0.
std::string StudySession::applyBaselineValues() {
  for (const StudyAttribute &declared : m_study.attributes) {
    const ModelAttribute &attribute = *model().find(declared.fullName());
    if (declared.isResult || keyOf(attribute.value, declared.kind) == keyOf(declared.value, declared.kind)) {
      continue;
    }
    const std::string before = textOf(attribute);
    EmbeddedHost::CommandResult edited;
    tolerateUnpriced([&] {
      edited = commands().edit(model().findEntity(declared.entity), EntityModel::AttributePath(declared.name),
                               hostText(declared, declared.value));
    });
    if (!edited) {
      return declared.fullName() + ": " + edited.problem;
    }
    m_changes.push_back("baseline: " + declared.fullName() + " is now " + textOf(attribute) + ", it was " +
                        before);
  }
  return "";
}

void StudySession::applyLimits() {
  for (std::size_t index = 0; index < m_study.inputs.size(); ++index) {
    const StudyGroup &declared = m_study.inputs[index];
    const StudyAttribute &attribute = *m_study.findAttribute(declared.macro());
    const auto text = [&attribute](const std::optional<double> &number) {
      StudyValue value;
      value.number = number.value_or(0.0);
      return number ? hostText(attribute, value) : std::string();
    };
    const OptimizationGroup group = data().getGroup(true, static_cast<int>(index));
    const std::string before = limitsOf(group.getFrontVariable(), attribute.unit);
    for (int number = 0; number < group.size(); ++number) {
      OptimizationGroupVariable variable = group.getVariable(number);
      variable.setMinimumValue(text(declared.minimum));
      variable.setMaximumValue(text(declared.maximum));
      variable.setStepValue(text(declared.step));
      variable.setLowBound(declared.lowBound ? std::optional<std::string>(text(declared.lowBound))
                                             : std::nullopt);
      variable.setHighBound(declared.highBound ? std::optional<std::string>(text(declared.highBound))
                                               : std::nullopt);
    }
    if (const std::string now = limitsOf(group.getFrontVariable()); !m_isNew && now != before) {
      m_changes.push_back("the input \"" + declared.title() + "\" now has " + orNoLimits(now) + "; it had " +
                          orNoLimits(before));
    }
  }
}

std::string StudySession::applyCost() {
  const std::string before = data().getCostFunction();
  const MathematicalUtilities::OptimisationStrategy targetBefore = data().getOptimisationTarget();
  // The same text again is no waste: it builds the calculator for the groups as they are now.
  tolerateUnpriced([this] { data().setCostFunction(m_study.cost); });
  clearUnreliableCosts();
  const std::string error = data().getLastCostFunctionError();
  if (!error.empty()) {
    const std::optional<std::size_t> offset = data().getLastCostFunctionErrorPosition();
    return m_study.path + ":" + std::to_string(m_study.costPlace.line) + ":" +
           std::to_string(m_study.costPlace.column) + ": the cost: " + error +
           (offset ? " at character " + std::to_string(*offset + 1) + " of its text" : "");
  }
  setTarget(m_study.target);
  if (!m_isNew && before != m_study.cost) {
    m_changes.push_back("the cost is now: " + m_study.cost);
  }
  if (!m_isNew && targetBefore != data().getOptimisationTarget()) {
    m_changes.emplace_back("the target has changed");
  }
  return "";
}

std::vector<std::string> StudySession::rowTexts(const StudyRow &row) const {
  std::vector<std::string> texts;
  for (std::size_t index = 0; index < row.values.size(); ++index) {
    texts.push_back(hostText(*m_study.findAttribute(m_study.inputs[index].macro()), row.values[index]));
  }
  return texts;
}

std::string StudySession::rowKey(const StudyRow &row) const {
  std::vector<std::string> parts;
  for (std::size_t index = 0; index < row.values.size(); ++index) {
    parts.push_back(keyOf(row.values[index], m_study.findAttribute(m_study.inputs[index].macro())->kind));
  }
  return joined(parts);
}

std::string StudySession::rowKey(std::size_t row) const {
  std::vector<std::string> parts;
  for (std::size_t index = 0; index < m_study.inputs.size(); ++index) {
    parts.push_back(keyOf(data().getVariantGroup(true, row, index),
                          m_study.findAttribute(m_study.inputs[index].macro())->kind));
  }
  return joined(parts);
}

std::string StudySession::addRow(const StudyRow &row) {
  const std::string name = row.name.empty() ? freeRowName() : row.name;
  if (project().changeManager().findVersion(name, nullptr) != nullptr) {
    return m_study.path + ":" + std::to_string(row.place.line) + ":" + std::to_string(row.place.column) +
           ": the name \"" + name + "\" belongs to another version of the project";
  }
  if (data().addVariant(rowTexts(row), name, UINT64_MAX) == 0) {
    return "the row \"" + name + "\" could not be added";
  }
  rowWasAdded();
  return "";
}

// A row with a name is found by it, any other by its inputs. Rows that the study file does not have are kept.
std::string StudySession::applyRows() {
  std::unordered_map<std::string, std::size_t> byKey;
  for (std::size_t row = 0; row < rowCount(); ++row) {
    markInStudyFile(row, row == 0);
    byKey.emplace(rowKey(row), row);
  }
  std::size_t added = 0;
  for (const StudyRow &row : m_study.rows) {
    std::optional<std::size_t> found;
    if (!row.name.empty()) {
      found = data().getVariantIndex(row.name);
    } else if (const auto known = byKey.find(rowKey(row)); known != byKey.end()) {
      found = known->second;
    }
    if (!found) {
      std::string problem = addRow(row);
      if (!problem.empty()) {
        return problem;
      }
      ++added;
      continue;
    }
    if (*found == 0) {
      return m_study.path + ":" + std::to_string(row.place.line) + ":" + std::to_string(row.place.column) +
             ": the name \"" + row.name + "\" is the baseline's";
    }
    markInStudyFile(*found, true);
    if (rowKey(*found) != rowKey(row)) {
      tolerateUnpriced([&] { data().setVariantValues(row.name, rowTexts(row)); });
      if (rowKey(*found) != rowKey(row)) {
        return "the inputs of the row \"" + row.name + "\" could not be changed";
      }
      m_changes.push_back("the row \"" + row.name + "\" has new inputs");
    }
  }
  clearUnreliableCosts();
  if (!m_isNew && added > 0) {
    m_changes.push_back(std::to_string(added) + (added == 1 ? " row was added" : " rows were added"));
  }
  return "";
}

} // namespace Workbench
