#pragma once

#include "ExpressionBuilder/Expression.h"
#include "OptimizationTool/OptimizationGroups.h"
#include "OptimizationTool/OptimizationVariants.h"
#include "OptimizationTool/tests/ScriptedModel.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace StudyTesting {

/// A cell that answers what a test wants. Shown in "km", a quantity of 1500 is 1.5.
class PricedCell final : public SilentAttribute<EntityModel::Attribute> {
public:
  explicit PricedCell(double number) : value(number) {}

  bool hasValue() const override;
  double getStandardValue() const override { return value; }
  bool isQuantity() const override { return isWithUnits; }
  std::string getUnits(int) const override;
  double getValueInUnits(const std::string &units) const override;
  std::unique_ptr<EntityModel::Attribute> clone() const override;

  double value;
  bool isThere = true;
  bool isWithUnits = false;
  std::string shownUnits;
  /// What hasValue() and getUnits() throw; nothing when empty.
  std::string valueFault;
  std::string unitsFault;
  /// What hasValue() does first; nothing when empty.
  std::function<void()> onReading;
};

/// What pricing leaves behind.
struct PricingResult {
  /// One for each row, with the bits of a cost; rows that were not touched still have `kUntouched`.
  std::vector<std::optional<std::uint64_t>> costs;
  /// As thrownBy() gives it.
  std::string thrown;
  /// Names and bits of the calculator's variables.
  std::vector<std::pair<std::string, std::uint64_t>> variables;

  bool operator==(const PricingResult &other) const;
};

constexpr double kUntouched = -77.25;

/// A study that is drawn by a seed: groups of one variable each, of which some have the same macro, some a name, and
/// some no place in their list, null groups, a calculator whose groups may have changed since it was built, and rows
/// of which some lack cells or values. The same seed gives the same study.
class PricedStudy {
public:
  using Calculator = ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>;

  PricedStudy(std::uint64_t seed, std::size_t rows);
  PricedStudy(const PricedStudy &) = delete;
  PricedStudy &operator=(const PricedStudy &) = delete;
  ~PricedStudy();

  /// Prices the rows as the definition of pricing reads: one after the other, each reading everything anew.
  PricingResult priceLiterally();
  /// Prices the rows by blocks.
  PricingResult priceByBlocks();

  const std::string &costFunction() const { return m_costFunction; }
  OptimizationTool::OptimizationVariants &matrix() { return m_matrix; }

private:
  std::size_t draw(std::size_t count);
  bool isDrawn(double probability);
  void makeGroups(bool isInput, std::size_t count);
  void makeCalculator();
  void makeRows(std::size_t count);
  std::unique_ptr<PricedCell> drawCell();
  void priceRowLiterally(OptimizationTool::OptimizationVariant &row);
  bool setVariableLiterally(const OptimizationTool::OptimizationVariant &row,
                            const OptimizationTool::OptimizationGroup &group, bool isInput);
  bool isVariableInCostFunction(int position, bool isInput) const;
  PricingResult resultOf(std::string thrown) const;

  std::mt19937_64 m_random;
  std::vector<std::unique_ptr<ScriptedEntity>> m_entities;
  ScriptedEntity m_study;
  OptimizationTool::OptimizationGroups m_inputs;
  OptimizationTool::OptimizationGroups m_outputs;
  std::string m_costFunction;
  std::unique_ptr<Calculator> m_calculator;
  OptimizationTool::OptimizationVariants m_matrix;
};

/// The bits of a number.
std::uint64_t bitsOf(double value);

} // namespace StudyTesting
