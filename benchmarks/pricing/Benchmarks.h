#pragma once

#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/expression/ExpressionCase.h"

#include <cstddef>
#include <vector>

namespace PricingBenchmark {

/// What all benchmarks are given.
struct Setting {
  Benchmarking::Effort effort;
  std::vector<ExpressionBenchmark::ExpressionCase> cases;
  /// Numbers of rows, the last of which is judged.
  std::vector<std::size_t> rows = {100, 1'000, 10'000, 100'000};
};

/// Each prints a table and enters what is judged into the list.
/// \{

/// Pricing all rows of numbers without units; one pass over the cells.
void measureNumbers(const Setting &setting, Benchmarking::BarList &bars);
/// The same for quantities.
void measureQuantities(const Setting &setting, Benchmarking::BarList &bars);
/// Pricing one row of many.
void measureOneRow(const Setting &setting, Benchmarking::BarList &bars);
/// Building the calculator; reading the groups and muparser.
void measureBuilding(const Setting &setting, Benchmarking::BarList &bars);
/// Building the calculator in studies of more and more groups.
void measureGroups(const Setting &setting, Benchmarking::BarList &bars);
/// \}

} // namespace PricingBenchmark
