#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/src/CostBlock.h"
#include "OptimizationTool/src/CostInputs.h"

namespace OptimizationTool {

using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using MathematicalUtilities::OptimisationStrategy;

namespace {

bool isBlank(const std::string &text) {
  return text.find_first_not_of(" \t") == std::string::npos;
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
  std::vector<OptimizationVariant *> rows;
  rows.reserve(m_variants.size());
  for (const auto &variant : m_variants) {
    rows.push_back(variant.get());
  }
  priceRows(rows);
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
  priceRows({variant});
}

// Prices the rows in this order; null rows are skipped. What the rows have in common is read once, before the first
// one, and kept in no form that a call to the host could harm.
void OptimizationData::priceRows(const std::vector<OptimizationVariant *> &rows) {
  const QPointer<OptimizationData> self(this);
  const RowsInUseScope rowsInUse(*this);
  const std::shared_ptr<CostFunctionBuilder::CostExpression> calculator = m_costCalculator;
  // Who replaces the calculator meanwhile prices every row anew.
  const auto isOver = [&self, &calculator] {
    return !self || self->m_costCalculator != calculator;
  };
  std::optional<CostBlock> block;
  for (std::size_t index = 0; index < rows.size(); ++index) {
    OptimizationVariant *row = rows[index];
    if (calculator == nullptr || row == nullptr || isTaken(row)) {
      continue;
    }
    if (!block) {
      block.emplace(
          *calculator,
          readCostInputs(
              m_inputGroups, m_outputGroups, [this] { return getCostFunction(); }, calculator->variables()),
          rows.size());
      if (isOver()) {
        return;
      }
    }
    // Rows that are removed meanwhile stay allocated.
    if (index + 1 < rows.size() && rows[index + 1] != nullptr) {
      block->expect(*rows[index + 1]);
    }
    try {
      block->read(*row, m_variants);
    } catch (...) {
      if (!isOver()) {
        block->endBeforeUnreadRow();
      }
      throw;
    }
    if (isOver()) {
      return;
    }
    if (block->isFull()) {
      block->price();
    }
  }
  if (block) {
    block->price();
  }
}

bool OptimizationData::isVariableInCostFunction(int group, bool isInput) {
  const OptimizationGroup found = getGroup(isInput, group);
  return found && isMentioned(found, getCostFunction());
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
