#pragma once

#include "ExpressionBuilder/Expression.h"
#include "OptimizationTool/src/CostInputs.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace EntityModel {
class Attribute;
}

namespace OptimizationTool {

class OptimizationVariant;
class OptimizationVariants;

// Prices rows by blocks: the values of the rows of a block are gathered into columns, and the calculator is evaluated
// over the columns. What comes out is what rows priced one after the other would have: the same costs bit for bit, and
// where a row throws, the rows before it priced, the row itself and those after it untouched, and in the calculator's
// variables the values of the last row at which it arrived.
class CostBlock {
public:
  using Calculator = ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>;

  // Rows in a block: enough for the preparation of an evaluation to count little, and few enough for the columns to
  // stay in the processor's caches.
  static constexpr std::size_t kMostRows = 1024;

  // \param calculator  not owned
  // \param rows        how many will be read at most; one row is priced without a block
  CostBlock(Calculator &calculator, CostInputs inputs, std::size_t rows);

  // Reads the values of a row, which must stay allocated until it is priced.
  // \param matrix  whose first row gives the units
  // Throws what the reading of the row throws. Then end with endBeforeUnreadRow() if the rows still exist.
  void read(OptimizationVariant &row, const OptimizationVariants &matrix);
  // Fetches the cells of a row that is read soon into the processor's caches, while another one is read: they lie
  // apart, and to wait for them is most of what pricing costs. Changes nothing.
  void expect(const OptimizationVariant &row) const;
  bool isFull() const noexcept { return m_rows.size() == m_capacity; }
  // Prices the rows that have been read and begins with none again. Throws what the first row throws for which the
  // calculator does.
  void price();
  // After read() has thrown: prices the rows before that one, and gives the variables the values that were read of
  // it. Throws as price(), and that then is what the rows one after the other would have thrown.
  void endBeforeUnreadRow();

private:
  struct Row {
    OptimizationVariant *variant = nullptr;
    bool isComplete = false;
  };
  // The units in which the baseline shows a group, read when they are first needed.
  struct Units {
    bool isRead = false;
    std::optional<std::string> text;
  };

  bool readValue(const OptimizationVariant &row, const OptimizationVariants &matrix, std::size_t group,
                 std::size_t place);
  double valueOf(const EntityModel::Attribute &cell, std::size_t group, const OptimizationVariants &matrix);
  const Units &units(std::size_t group, const OptimizationVariants &matrix);
  double *column(std::size_t group);
  void setVariables(std::size_t place, std::size_t groups);
  bool evaluateTogether();
  void storeResults();
  void priceOneByOne();

  Calculator &m_calculator;
  CostInputs m_inputs;
  std::size_t m_capacity;
  std::vector<Units> m_units;
  std::vector<Row> m_rows;
  // The values of complete rows, side by side in columns, and behind those the values of the row that was read last
  // if that is not complete.
  std::vector<double> m_values;
  std::vector<ExpressionBuilder::VariableColumn> m_columns;
  std::vector<double> m_results;
  std::size_t m_numComplete = 0;
  // Where the values of the row stand that was read last.
  std::size_t m_place = 0;
  // Where those of the row stand that is being read, and of how many groups they are there.
  std::size_t m_partialPlace = 0;
  std::size_t m_partialGroups = 0;
};

} // namespace OptimizationTool
