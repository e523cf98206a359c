#include "EmbeddedHost/SolverNumber.h"
#include "HostModel/ChangeManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/StudySession.h"

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

std::string joined(const std::vector<std::string> &parts) {
  std::string text;
  for (const std::string &part : parts) {
    text += std::to_string(part.size()) + ":" + part;
  }
  return text;
}

} // namespace

std::string StudySession::addGroups(bool isInput) {
  for (const StudyGroup &declared : isInput ? m_study.inputs : m_study.outputs) {
    for (std::size_t index = 0; index < declared.attributes.size(); ++index) {
      EntityModel::Attribute *attribute = m_attributes->find(declared.attributes[index]);
      if (!OptimizationManager::isItemValid(attribute, isInput, !isInput, m_study.type)) {
        return "\"" + declared.attributes[index] + "\" cannot take part in a study of this type";
      }
      if (index > 0) {
        const int last = (isInput ? data().getNumInputs() : data().getNumOutputs()) - 1;
        if (!data().getGroup(isInput, last).appendVariable(attribute)) {
          return "\"" + declared.attributes[index] + "\" could not be added to its group";
        }
      } else if (isInput) {
        OptimizationManager::instance().addInputAttribute(attribute);
      } else {
        OptimizationManager::instance().addOutputAttribute(attribute);
      }
    }
    const int last = (isInput ? data().getNumInputs() : data().getNumOutputs()) - 1;
    data().getGroup(isInput, last).setName(declared.name);
  }
  return "";
}

std::string StudySession::compareGroups(bool isInput) const {
  const std::vector<StudyGroup> &declared = isInput ? m_study.inputs : m_study.outputs;
  const int count = isInput ? data().getNumInputs() : data().getNumOutputs();
  if (static_cast<std::size_t>(count) != declared.size()) {
    return "it has " + std::to_string(count) + ", the study file " + std::to_string(declared.size());
  }
  for (int index = 0; index < count; ++index) {
    const StudyGroup &expected = declared[static_cast<std::size_t>(index)];
    OptimizationGroup group = data().getGroup(isInput, index);
    std::vector<std::string> attributes;
    attributes.reserve(static_cast<std::size_t>(group.size()));
    for (int number = 0; number < group.size(); ++number) {
      attributes.push_back(group.getVariable(number).getAttributeMacro());
    }
    if (attributes != expected.attributes) {
      return "number " + std::to_string(index + 1) + " is \"" + group.getDisplayName() +
             "\", in the study file \"" + expected.title() + "\"";
    }
    if (group.getName() != expected.name) {
      group.setName(expected.name);
    }
  }
  return "";
}

// Edits the baseline as a user does, so that the study takes the new values into row 0.
std::string StudySession::applyBaselineValues() {
  for (const StudyAttribute &declared : m_study.attributes) {
    const EntityModel::Attribute *attribute = m_attributes->find(declared.fullName());
    if (declared.isResult || keyOf(attribute, declared.kind) == keyOf(declared.value, declared.kind)) {
      continue;
    }
    const std::string before = attribute->getValueAsString();
    EmbeddedHost::CommandResult edited;
    tolerateUnpriced([&] {
      edited = m_commands.edit(m_attributes->findEntity(declared.entity),
                               EntityModel::AttributePath(declared.name), hostText(declared, declared.value));
    });
    if (!edited) {
      return declared.fullName() + ": " + edited.problem;
    }
    m_changes.push_back("baseline: " + declared.fullName() + " is now " + attribute->getValueAsString() +
                        ", it was " + before);
  }
  return "";
}

std::string StudySession::applyLimits() {
  for (std::size_t index = 0; index < m_study.inputs.size(); ++index) {
    const StudyGroup &declared = m_study.inputs[index];
    const StudyAttribute &attribute = *m_study.findAttribute(declared.macro());
    const auto text = [&attribute](const std::optional<double> &number) {
      StudyValue value;
      value.number = number.value_or(0.0);
      return number ? hostText(attribute, value) : std::string();
    };
    const OptimizationGroup group = data().getGroup(true, static_cast<int>(index));
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
  }
  return "";
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
  data().setOptimisationTarget(m_study.target);
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

// A row is named by its number, unless some version has that name already.
std::string StudySession::freeRowName() const {
  for (std::size_t number = data().getNumVariants();; ++number) {
    std::string name = "Variant " + std::to_string(number);
    if (m_project->changeManager().findVersion(name, nullptr) == nullptr) {
      return name;
    }
  }
}

std::string StudySession::addRow(const StudyRow &row) {
  const std::string name = row.name.empty() ? freeRowName() : row.name;
  if (m_project->changeManager().findVersion(name, nullptr) != nullptr) {
    return m_study.path + ":" + std::to_string(row.place.line) + ":" + std::to_string(row.place.column) +
           ": the name \"" + name + "\" belongs to another version of the project";
  }
  if (data().addVariant(rowTexts(row), name, UINT64_MAX) == 0) {
    return "the row \"" + name + "\" could not be added";
  }
  m_states.emplace_back();
  return "";
}

// A row with a name is found by it, any other by its inputs. Rows that the study file does not have are kept.
std::string StudySession::applyRows() {
  std::unordered_map<std::string, std::size_t> byKey;
  for (std::size_t row = 0; row < rowCount(); ++row) {
    m_states[row].isInStudyFile = row == 0;
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
    m_states[*found].isInStudyFile = true;
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
