#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using MathematicalUtilities::OptimisationStrategy;

namespace {

bool isBlank(const std::string &text) {
  return text.find_first_not_of(" \t") == std::string::npos;
}

const Attribute *cellAt(const OptimizationVariant *variant, bool isInput, int position) {
  return variant == nullptr || position < 0
             ? nullptr
             : variant->getAttribute(isInput, static_cast<std::size_t>(position));
}

// A quantity is priced in the units in which the baseline shows it, so that what a user reads there is what
// the cost function calculates with.
double pricedValue(const Attribute *cell, const Attribute *baselineCell) {
  if (cell == nullptr || !cell->hasValue()) {
    return 0.0;
  }
  if (cell->isQuantity() && baselineCell != nullptr) {
    return cell->getValueInUnits(baselineCell->getUnits(0));
  }
  return cell->getStandardValue();
}

} // namespace

std::string OptimizationData::getCostFunction() const {
  return EntityModel::getStringValue(m_studyEntity, AttributePath(EntityModel::CostFunction_t), "");
}

void OptimizationData::setCostFunction(const std::string &text) {
  const QPointer<OptimizationData> self(this);
  if (!EntityEditor::setValue(m_studyEntity, AttributePath(EntityModel::CostFunction_t), text, false, nullptr,
                              true, true)) {
    return;
  }
  EntityGUI::EntityManager::setNeedsSave(true);
  if (!self) {
    return;
  }
  updateCostCalculator();
  Q_EMIT costFunctionChanged();
}

void OptimizationData::updateCostCalculator() {
  try {
    const std::string text = getCostFunction();
    if (isBlank(text)) {
      m_costFunctionBuilder.clearLastError();
      m_costCalculator.reset();
    } else {
      m_costCalculator = m_costFunctionBuilder.create(text);
    }
  } catch (...) {
    m_costCalculator.reset();
  }
  recalculateCosts();
}

void OptimizationData::recalculateCost(std::size_t variant) {
  OptimizationVariant *row = getVariant(variant);
  if (m_costCalculator == nullptr && row != nullptr) {
    do_clearCost(row);
  }
  do_recalculateCost(row);
}

void OptimizationData::recalculateCosts() {
  if (m_costCalculator == nullptr) {
    clearCosts();
    return;
  }
  for (const auto &variant : m_variants) {
    do_recalculateCost(variant.get());
  }
}

void OptimizationData::clearCosts() {
  for (const auto &variant : m_variants) {
    do_clearCost(variant.get());
  }
}

void OptimizationData::clearCosts(std::size_t variant) {
  do_clearCost(getVariant(variant));
}

void OptimizationData::do_clearCost(OptimizationVariant *variant) {
  if (variant != nullptr) {
    variant->setCost(std::nullopt);
  }
}

void OptimizationData::do_recalculateCost(OptimizationVariant *variant) {
  if (m_costCalculator == nullptr || variant == nullptr) {
    return;
  }
  bool isComplete = true;
  for (int index = 0; index < getNumInputs(); ++index) {
    isComplete = setCostVariable(*variant, getGroup(true, index), true) && isComplete;
  }
  for (int index = 0; index < getNumOutputs(); ++index) {
    isComplete = setCostVariable(*variant, getGroup(false, index), false) && isComplete;
  }
  if (isComplete) {
    variant->setCost(m_costCalculator->evaluate());
  } else {
    do_clearCost(variant);
  }
}

// Returns false when the row lacks a value that the cost function needs; the variable is set all the same.
bool OptimizationData::setCostVariable(const OptimizationVariant &variant, const OptimizationGroup &group,
                                       bool isInput) {
  const int position = group.getIndex();
  const Attribute *cell = cellAt(&variant, isInput, position);
  const Attribute *baselineCell = cellAt(m_variants.get(std::size_t{0}), isInput, position);
  const bool isMissing =
      isVariableInCostFunction(position, isInput) && (cell == nullptr || !cell->hasValue());
  m_costCalculator->variables().replace(
      group.getAttributeMacro(),
      std::make_unique<ExpressionBuilder::ElementConstant<double>>(pricedValue(cell, baselineCell)));
  return !isMissing;
}

bool OptimizationData::isVariableInCostFunction(int group, bool isInput) {
  const OptimizationGroup found = getGroup(isInput, group);
  if (!found) {
    return false;
  }
  // A plain search in the text, which an empty name always passes: a group counts as used rather too often
  // than too seldom, so that no row is priced without a value that it needs.
  return getCostFunction().find(found.getDisplayName()) != std::string::npos;
}

void OptimizationData::setOptimisationTarget(OptimisationStrategy target) {
  if (target != OptimisationStrategy::Minimise && target != OptimisationStrategy::Maximise) {
    return;
  }
  const EntityModel::TypeRef &type =
      target == OptimisationStrategy::Minimise ? EntityModel::Minimise_t : EntityModel::Maximise_t;
  EntityEditor::setValueNoThrow(m_studyEntity, AttributePath(EntityModel::OptimisationTarget_t),
                                std::string(type.getLabel()), false, nullptr, true);
  EntityGUI::EntityManager::setNeedsSave(true);
}

OptimisationStrategy OptimizationData::getOptimisationTarget() const {
  const EntityModel::TypeRef target =
      EntityModel::getTypeValue(m_studyEntity, AttributePath(EntityModel::OptimisationTarget_t),
                                EntityModel::TypeRef(EntityModel::TypeFactory::emptyType));
  if (target == EntityModel::Minimise_t) {
    return OptimisationStrategy::Minimise;
  }
  return target == EntityModel::Maximise_t ? OptimisationStrategy::Maximise : OptimisationStrategy::None;
}

const std::string &OptimizationData::getLastCostFunctionError() const {
  return m_costFunctionBuilder.getLastBuildError();
}

std::optional<std::size_t> OptimizationData::getLastCostFunctionErrorPosition() const {
  return m_costFunctionBuilder.getLastBuildErrorPosition();
}

std::vector<std::string> OptimizationData::getAvailableFunctionsInCostFunctionBuilder() const {
  return m_costFunctionBuilder.getFunctionNames();
}

} // namespace OptimizationTool
