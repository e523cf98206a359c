#include "OptimizationTool/tests/PricedStudy.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "OptimizationTool/src/CostBlock.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <tuple>
#include <utility>

namespace StudyTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using ExpressionBuilder::ElementConstant;
using OptimizationTool::CostBlock;
using OptimizationTool::OptimizationGroup;
using OptimizationTool::OptimizationGroups;
using OptimizationTool::OptimizationVariant;

bool PricedCell::hasValue() const {
  if (onReading) {
    onReading();
  }
  if (!valueFault.empty()) {
    throw std::runtime_error(valueFault);
  }
  return isThere;
}

std::string PricedCell::getUnits(int) const {
  if (!unitsFault.empty()) {
    throw std::runtime_error(unitsFault);
  }
  return shownUnits;
}

double PricedCell::getValueInUnits(const std::string &units) const {
  return units == "km" ? value / 1000.0 : units == "mm" ? value * 1000.0 : value;
}

std::unique_ptr<Attribute> PricedCell::clone() const {
  auto copy = std::make_unique<PricedCell>(value);
  copy->isThere = isThere;
  copy->isWithUnits = isWithUnits;
  copy->shownUnits = shownUnits;
  copy->valueFault = valueFault;
  copy->unitsFault = unitsFault;
  copy->onReading = onReading;
  return copy;
}

bool PricingResult::operator==(const PricingResult &other) const {
  return std::tie(costs, thrown, variables) == std::tie(other.costs, other.thrown, other.variables);
}

std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

PricedStudy::PricedStudy(std::uint64_t seed, std::size_t rows)
    : m_random(seed), m_inputs(&m_study, true), m_outputs(&m_study, false) {
  m_entities.push_back(std::make_unique<ScriptedEntity>("Fan"));
  m_entities.push_back(std::make_unique<ScriptedEntity>("Pump"));
  makeGroups(true, 1 + draw(6));
  makeGroups(false, draw(4));
  makeCalculator();
  if (isDrawn(0.15)) {
    makeGroups(isDrawn(0.5), 1 + draw(6));
  }
  makeRows(rows);
}

PricedStudy::~PricedStudy() = default;

std::size_t PricedStudy::draw(std::size_t count) {
  return static_cast<std::size_t>(m_random() % count);
}

bool PricedStudy::isDrawn(double probability) {
  return static_cast<double>(m_random() % 1'000'000) < probability * 1e6;
}

// The groups of a side; those that were there before are gone then.
void PricedStudy::makeGroups(bool isInput, std::size_t count) {
  static const std::vector<std::string> paths = {"Speed", "Angle", "Width", "Load", ""};
  static const std::vector<std::string> names = {"Fan", "x", "Speed", "+", "no such text"};
  std::vector<Entity *> groups;
  std::vector<ScriptedEntity *> made;
  for (std::size_t index = 0; index < count; ++index) {
    if (isDrawn(0.03)) {
      groups.push_back(nullptr);
      continue;
    }
    std::vector<Entity *> variables;
    if (!isDrawn(0.05)) {
      Entity *owner = isDrawn(0.1) ? nullptr : m_entities[draw(2)].get();
      m_entities.push_back(makeScriptedVariable(owner, paths[draw(paths.size())]));
      variables.push_back(m_entities.back().get());
    }
    m_entities.push_back(makeScriptedGroup(variables));
    ScriptedEntity &group = *m_entities.back();
    if (isDrawn(0.3)) {
      group.add(AttributePath(EntityModel::Group_Name_t),
                std::make_unique<ScriptedAttribute>(names[draw(names.size())]));
    }
    groups.push_back(&group);
    made.push_back(&group);
  }
  ScriptedList &list = m_study.add(
      AttributePath(isInput ? EntityModel::OptimizationInputs_t : EntityModel::OptimizationOutputs_t),
      std::make_unique<ScriptedList>(groups));
  for (ScriptedEntity *group : made) {
    if (!isDrawn(0.05)) {
      group->ownerLink = &list;
    }
  }
}

void PricedStudy::makeCalculator() {
  ExpressionBuilder::BuilderSingleType<double> builder;
  for (const OptimizationGroups *side : {&m_inputs, &m_outputs}) {
    for (int index = 0; index < side->size(); ++index) {
      const std::string macro = side->getGroup(index).getAttributeMacro();
      if (isDrawn(0.01)) {
        builder.variables().declare(macro, std::make_unique<ElementConstant<int>>(4));
      } else if (!isDrawn(0.01)) {
        builder.variables().declare(macro, std::make_unique<ElementConstant<double>>(0.5));
      }
    }
  }
  std::vector<std::string> names = builder.variables().names();
  const auto operand = [&] {
    return names.empty() || isDrawn(0.2) ? std::string("2.5") : "%" + names[draw(names.size())] + "%";
  };
  static const std::vector<std::string> forms = {
      "A",
      "A + 2.0 * B",
      "1.5",
      "max(A, B) - sqrt(A * A + 1.0) / C",
      "A > B ? A - B : (B > C ? C : 0.25 * A)",
      "100 / (int)(A)",
      "A < 50.0 ? A : 100 / (int)(B - 1.0)",
      "(int)(A) * (int)(B)",
      "(double)((string)(A)) + B",
      "mod((int)(A), (int)(B)) + C",
  };
  for (const char character : forms[draw(forms.size())]) {
    m_costFunction += character >= 'A' && character <= 'C' ? operand() : std::string(1, character);
  }
  m_calculator = builder.buildExpression(m_costFunction);
}

std::unique_ptr<PricedCell> PricedStudy::drawCell() {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  static const std::vector<double> special = {0.0,        -0.0,  1.0,    std::nan(""), kInfinity,
                                              -kInfinity, 1e300, 5e-324, -2147483648.0};
  auto cell = std::make_unique<PricedCell>(static_cast<double>(m_random() % 1'000'000) / 7919.0 + 2.0);
  if (isDrawn(0.01)) {
    cell->value = special[draw(special.size())];
  }
  cell->isThere = !isDrawn(0.02);
  cell->isWithUnits = isDrawn(0.5);
  cell->shownUnits = isDrawn(0.5) ? "km" : isDrawn(0.5) ? "mm" : "";
  if (isDrawn(0.0001)) {
    cell->valueFault = "value fault " + std::to_string(cell->value);
  }
  if (isDrawn(0.05)) {
    cell->unitsFault = "units fault";
  }
  return cell;
}

void PricedStudy::makeRows(std::size_t count) {
  for (std::size_t index = 0; index < count; ++index) {
    if (isDrawn(0.002)) {
      m_matrix.append(nullptr);
      continue;
    }
    auto row = std::make_unique<OptimizationVariant>("Row " + std::to_string(index));
    row->setCost(kUntouched);
    const std::size_t missing = isDrawn(0.02) ? 1 : 0;
    for (int cell = 0; cell + static_cast<int>(missing) < m_inputs.size(); ++cell) {
      row->addInput(isDrawn(0.005) ? nullptr : drawCell().get());
    }
    for (int cell = 0; cell < m_outputs.size(); ++cell) {
      row->addOutput(isDrawn(0.005) ? nullptr : drawCell().get());
    }
    m_matrix.append(std::move(row));
  }
}

PricingResult PricedStudy::resultOf(std::string thrown) const {
  PricingResult result;
  result.thrown = std::move(thrown);
  for (const auto &row : m_matrix) {
    const std::optional<double> cost = row == nullptr ? std::nullopt : row->getCost();
    result.costs.push_back(cost ? std::optional<std::uint64_t>(bitsOf(*cost)) : std::nullopt);
  }
  for (const std::string &name : m_calculator->variables().names()) {
    const auto *value = static_cast<const double *>(
        m_calculator->variables().plainValue(name, ExpressionBuilder::ValueType::Double));
    result.variables.emplace_back(name, value == nullptr ? 0 : bitsOf(*value));
  }
  return result;
}

PricingResult PricedStudy::priceLiterally() {
  return resultOf(thrownBy([this] {
    for (const auto &row : m_matrix) {
      if (row != nullptr) {
        priceRowLiterally(*row);
      }
    }
  }));
}

void PricedStudy::priceRowLiterally(OptimizationVariant &row) {
  bool isComplete = true;
  for (int index = 0; index < m_inputs.size(); ++index) {
    isComplete = setVariableLiterally(row, m_inputs.getGroup(index), true) && isComplete;
  }
  for (int index = 0; index < m_outputs.size(); ++index) {
    isComplete = setVariableLiterally(row, m_outputs.getGroup(index), false) && isComplete;
  }
  if (isComplete) {
    row.setCost(m_calculator->evaluate());
  } else {
    row.setCost(std::nullopt);
  }
}

bool PricedStudy::setVariableLiterally(const OptimizationVariant &row, const OptimizationGroup &group,
                                       bool isInput) {
  const int position = group.getIndex();
  const OptimizationVariant *baseline = m_matrix.get(std::size_t{0});
  const auto cellOf = [&](const OptimizationVariant *variant) -> const Attribute * {
    return variant == nullptr || position < 0
               ? nullptr
               : variant->getAttribute(isInput, static_cast<std::size_t>(position));
  };
  const Attribute *cell = cellOf(&row);
  const Attribute *baselineCell = cellOf(baseline);
  const bool isMissing =
      isVariableInCostFunction(position, isInput) && (cell == nullptr || !cell->hasValue());
  double value = 0.0;
  if (cell != nullptr && cell->hasValue()) {
    value = cell->isQuantity() && baselineCell != nullptr ? cell->getValueInUnits(baselineCell->getUnits(0))
                                                          : cell->getStandardValue();
  }
  m_calculator->variables().replace(group.getAttributeMacro(),
                                    std::make_unique<ElementConstant<double>>(value));
  return !isMissing;
}

bool PricedStudy::isVariableInCostFunction(int position, bool isInput) const {
  const OptimizationGroup group = (isInput ? m_inputs : m_outputs).getGroup(position);
  return group && m_costFunction.find(group.getDisplayName()) != std::string::npos;
}

PricingResult PricedStudy::priceByBlocks() {
  return resultOf(thrownBy([this] {
    CostBlock block(*m_calculator,
                    readCostInputs(
                        m_inputs, m_outputs, [this] { return m_costFunction; }, m_calculator->variables()),
                    m_matrix.size());
    for (const auto &row : m_matrix) {
      if (row == nullptr) {
        continue;
      }
      try {
        block.read(*row, m_matrix);
      } catch (...) {
        block.endBeforeUnreadRow();
        throw;
      }
      if (block.isFull()) {
        block.price();
      }
    }
    block.price();
  }));
}

} // namespace StudyTesting
