#include "OptimizationTool/src/CostBlock.h"

#include "ExpressionBuilder/ElementShape.h"
#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationVariants.h"

#include <algorithm>
#include <utility>

namespace OptimizationTool {

using EntityModel::Attribute;
using ExpressionBuilder::ElementAbstract;
using ExpressionBuilder::ElementShape;
using ExpressionBuilder::ScalarOperation;

namespace {

// Fewer rows are done before the evaluation of a block has been prepared.
constexpr std::size_t kFewRows = 4;

const Attribute *cellAt(const OptimizationVariant *row, const CostInput &input) {
  return row == nullptr || input.position < 0
             ? nullptr
             : row->getAttribute(input.isInput, static_cast<std::size_t>(input.position));
}

bool isForeign(const ElementShape &shape) {
  return shape.form == ElementShape::Form::Opaque || (shape.form == ElementShape::Form::Functional &&
                                                      shape.operation.code == ScalarOperation::Code::Unknown);
}

// Whether an expression calls only functions of which it is certain that nobody can see when and how often they are
// called. A function of an application may do anything.
bool isOwnThroughout(const ElementAbstract *root) {
  std::vector<const ElementAbstract *> nodes = {root};
  while (!nodes.empty()) {
    const ElementAbstract *node = nodes.back();
    nodes.pop_back();
    if (node == nullptr) {
      continue;
    }
    const ElementShape &shape = node->shape();
    if (isForeign(shape)) {
      return false;
    }
    for (std::size_t child = 0; child < shape.arity; ++child) {
      nodes.push_back(ExpressionBuilder::childrenOf(*node)[child].get());
    }
  }
  return true;
}

// One cache line more than the rows need: else all columns would begin at one and the same place of the processor's
// first cache.
std::size_t columnSize(std::size_t capacity) {
  constexpr std::size_t kLine = 8;
  return capacity + kLine;
}

} // namespace

CostBlock::CostBlock(Calculator &calculator, CostInputs inputs, std::size_t rows)
    : m_calculator(calculator), m_inputs(std::move(inputs)),
      m_capacity(rows < kFewRows || !isOwnThroughout(calculator.root()) ? 1 : std::min(rows, kMostRows)),
      m_units(m_inputs.groups.size()), m_values(m_inputs.groups.size() * columnSize(m_capacity)),
      m_results(m_capacity) {
  m_rows.reserve(m_capacity);
  m_columns.reserve(m_inputs.numBound);
  for (std::size_t group = 0; group < m_inputs.numBound; ++group) {
    m_columns.push_back({m_inputs.groups[group].variable, column(group)});
  }
}

double *CostBlock::column(std::size_t group) {
  return m_values.data() + group * columnSize(m_capacity);
}

void CostBlock::read(OptimizationVariant &row, const OptimizationVariants &matrix) {
  bool isComplete = true;
  m_partialPlace = m_numComplete;
  for (m_partialGroups = 0; m_partialGroups < m_inputs.groups.size(); ++m_partialGroups) {
    isComplete = readValue(row, matrix, m_partialGroups, m_partialPlace) && isComplete;
  }
  if (m_inputs.failure != nullptr) {
    std::rethrow_exception(m_inputs.failure);
  }
  m_rows.push_back({&row, isComplete});
  m_place = m_partialPlace;
  m_numComplete += isComplete ? 1U : 0U;
}

void CostBlock::expect(const OptimizationVariant &row) const {
  for (const CostInput &input : m_inputs.groups) {
    __builtin_prefetch(cellAt(&row, input));
  }
}

void CostBlock::endBeforeUnreadRow() {
  const std::size_t place = m_partialPlace;
  const std::size_t groups = std::min(m_partialGroups, m_inputs.numBound);
  price();
  setVariables(place, groups);
}

// Returns false when the row lacks a value that the cost function needs; 0.0 stands in the column then.
bool CostBlock::readValue(const OptimizationVariant &row, const OptimizationVariants &matrix,
                          std::size_t group, std::size_t place) {
  const CostInput &input = m_inputs.groups[group];
  const Attribute *cell = cellAt(&row, input);
  const bool hasValue = cell != nullptr && cell->hasValue();
  // Written in the end: until then the place may hold the value of the row before, which lasts if this one throws.
  column(group)[place] = hasValue ? valueOf(*cell, group, matrix) : 0.0;
  return hasValue || !input.isNeeded;
}

// A quantity is priced in the units in which the baseline shows it, so that what a user reads there is what the cost
// function calculates with.
double CostBlock::valueOf(const Attribute &cell, std::size_t group, const OptimizationVariants &matrix) {
  if (cell.isQuantity()) {
    if (const Units &shown = units(group, matrix); shown.text) {
      return cell.getValueInUnits(*shown.text);
    }
  }
  return cell.getStandardValue();
}

const CostBlock::Units &CostBlock::units(std::size_t group, const OptimizationVariants &matrix) {
  Units &units = m_units[group];
  if (!units.isRead) {
    const Attribute *cell = cellAt(matrix.get(std::size_t{0}), m_inputs.groups[group]);
    if (cell != nullptr) {
      units.text = cell->getUnits(0);
    }
    units.isRead = true;
  }
  return units;
}

void CostBlock::setVariables(std::size_t place, std::size_t groups) {
  for (std::size_t group = 0; group < groups; ++group) {
    m_calculator.variables().set(m_inputs.groups[group].variable, column(group)[place]);
  }
}

void CostBlock::price() {
  if (m_rows.empty()) {
    return;
  }
  if (m_numComplete >= kFewRows && evaluateTogether()) {
    storeResults();
  } else {
    priceOneByOne();
  }
  // Variables of groups that are removed later go on with these values.
  setVariables(m_place, m_inputs.numBound);
  m_rows.clear();
  m_numComplete = 0;
}

// False when some row throws: which one, only the rows one by one can tell.
bool CostBlock::evaluateTogether() {
  try {
    m_calculator.evaluateRows(m_columns, m_numComplete, m_results.data());
    return true;
  } catch (...) {
    return false;
  }
}

void CostBlock::storeResults() {
  const double *result = m_results.data();
  for (const Row &row : m_rows) {
    row.variant->setCost(row.isComplete ? std::optional<double>(*result++) : std::nullopt);
  }
}

void CostBlock::priceOneByOne() {
  std::size_t place = 0;
  for (const Row &row : m_rows) {
    if (row.isComplete) {
      setVariables(place, m_inputs.numBound);
      row.variant->setCost(m_calculator.evaluate());
      ++place;
    } else {
      row.variant->setCost(std::nullopt);
    }
  }
}

} // namespace OptimizationTool
