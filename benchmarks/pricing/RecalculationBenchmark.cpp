#include "ExpressionBuilder/Expression.h"
#include "HostModel/Attribute.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "benchmarks/pricing/Benchmarks.h"
#include "benchmarks/pricing/PricedStudy.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <memory>
#include <stdexcept>

// Pricing all rows of a study, beside what reading its cells alone costs.

namespace PricingBenchmark {

using namespace Benchmarking;
using EntityModel::Attribute;
using ExpressionBenchmark::ExpressionCase;

namespace {

constexpr std::size_t kInputs = 20;
constexpr std::size_t kOutputs = 10;
constexpr std::array<const char *, 3> kExpressions = {"e05_mass4pen", "e12_wsum20", "e16_mix100"};

template <class Function> Way repeated(Function function) {
  return [function](std::size_t times) {
    for (std::size_t time = 0; time < times; ++time) {
      function();
      benchmark::ClobberMemory();
    }
  };
}

// Of every cell what a price needs to know, in the order of the rows.
double readCells(const std::vector<Attribute *> &cells) {
  double sum = 0.0;
  for (const Attribute *cell : cells) {
    if (cell->hasValue()) {
      sum += cell->isQuantity() ? 1.0 : 0.0;
      sum += cell->getStandardValue();
    }
  }
  return sum;
}

// Two calls of each cell that do nothing.
std::size_t callCells(const std::vector<Attribute *> &cells) {
  std::size_t sum = 0;
  for (Attribute *cell : cells) {
    sum += cell->isEntity() ? 1U : 0U;
    sum += cell->asEntity() != nullptr ? 1U : 0U;
  }
  return sum;
}

const ExpressionCase &caseNamed(const Setting &setting, const std::string &name) {
  const auto found = std::find_if(setting.cases.begin(), setting.cases.end(),
                                  [&name](const ExpressionCase &each) { return each.name == name; });
  if (found == setting.cases.end()) {
    throw std::runtime_error("There is no expression " + name);
  }
  return *found;
}

// Bit for bit.
bool isSame(double a, double b) {
  std::uint64_t bitsOfA = 0;
  std::uint64_t bitsOfB = 0;
  std::memcpy(&bitsOfA, &a, sizeof a);
  std::memcpy(&bitsOfB, &b, sizeof b);
  return bitsOfA == bitsOfB;
}

// How many rows have the cost that an expression gives of which all variables were set for the row. The values are
// asked for in the units of the first row.
std::size_t numRightCosts(PricedStudy &study, const std::vector<Attribute *> &cells) {
  OptimizationTool::OptimizationData &data = study.data();
  const auto expression = OptimizationTool::CostFunctionBuilder(data).create(data.getCostFunction());
  auto &variables = expression->variables();
  std::vector<ExpressionBuilder::VariableHandle<double>> handles;
  for (std::size_t group = 0; group < kInputs; ++group) {
    handles.push_back(variables.handle<double>(PricedStudy::kInputPrefix + std::to_string(group)));
  }
  std::size_t right = 0;
  for (std::size_t row = 0; row < data.getNumVariants(); ++row) {
    const Attribute *const *first = cells.data() + row * (kInputs + kOutputs);
    for (std::size_t group = 0; group < kInputs; ++group) {
      const Attribute &cell = *first[group];
      variables.set(handles[group], cell.isQuantity() ? cell.getValueInUnits(cells[group]->getUnits(0))
                                                      : cell.getStandardValue());
    }
    const std::optional<double> cost = data.getVariantCost(row);
    right += cost && isSame(*cost, expression->evaluate()) ? 1U : 0U;
  }
  return right;
}

// What came out for the largest study.
struct Outcome {
  Ratios pricing;
  std::vector<double> single;
  double reading = 0.0;
};

Outcome measure(const Setting &setting, ValueKind kind, std::size_t rows, Table &table) {
  PricedStudy study(kInputs, kOutputs, rows, kind);
  const std::vector<Attribute *> cells = study.cells();
  Outcome outcome;
  std::vector<double> readings;
  for (const char *name : kExpressions) {
    study.data().setCostFunction(caseNamed(setting, name).textWithNames(PricedStudy::kInputPrefix));
    const std::vector<double> seconds =
        measureInterleaved({repeated([&] { study.data().recalculateCosts(); }),
                            repeated([&] { benchmark::DoNotOptimize(readCells(cells)); }),
                            repeated([&] { benchmark::DoNotOptimize(callCells(cells)); })},
                           setting.effort);
    const std::size_t right = numRightCosts(study, cells);
    const auto perRow = static_cast<double>(rows);
    table.add({std::to_string(rows) + " rows, " + name, duration(seconds[0] / perRow),
               duration(seconds[1] / perRow), duration(seconds[2] / perRow),
               fixed(seconds[0] / seconds[1], 2), fixed(seconds[1] / seconds[2], 2),
               right == rows ? "all" : std::to_string(right)});
    outcome.pricing.add(name, seconds[0] / seconds[1]);
    outcome.single.push_back(seconds[0] / seconds[1]);
    readings.push_back(seconds[1] / seconds[2]);
  }
  outcome.reading = median(readings);
  return outcome;
}

Outcome measureSizes(const Setting &setting, ValueKind kind) {
  Table table({"", "priced", "cells read", "two calls", "priced/read", "read/calls", "right costs"});
  Outcome outcome;
  for (const std::size_t rows : setting.rows) {
    outcome = measure(setting, kind, rows, table);
  }
  table.print();
  return outcome;
}

} // namespace

void measureNumbers(const Setting &setting, BarList &bars) {
  std::cout
      << "\n1  recalculateCosts() over " << kInputs << " inputs and " << kOutputs
      << " outputs without units; time for one row. Beside it the\nvalue test, the quantity test and the "
         "standard value of every cell, and two calls of every cell that do nothing\n";
  const Outcome outcome = measureSizes(setting, ValueKind::Number);
  const std::size_t first = bars.size();
  const std::string rows = ", " + std::to_string(setting.rows.back()) + " rows";
  bars.judge("priced / cells read, geometric mean" + rows, outcome.pricing.geometricMean(), 1.8, 1.35);
  bars.judge("priced / cells read, e16" + rows, outcome.single.back(), 2.5, 1.7);
  bars.judge("cells read / two calls" + rows, outcome.reading, 3.0, {});
  bars.print(first);
}

void measureQuantities(const Setting &setting, BarList &bars) {
  const std::size_t first = bars.size();
  for (const ValueKind kind : {ValueKind::Quantity, ValueKind::OtherQuantities}) {
    const std::string which = kind == ValueKind::Quantity ? "in the baseline's unit" : "in another unit";
    std::cout << "\n2  The same for quantities, " << which << '\n';
    const Outcome outcome = measureSizes(setting, kind);
    bars.judge("quantities " + which + ", priced / cells read, geometric mean, " +
                   std::to_string(setting.rows.back()) + " rows",
               outcome.pricing.geometricMean(), 2.0, {});
  }
  bars.print(first);
}

void measureOneRow(const Setting &setting, BarList &bars) {
  std::cout << "\n3  recalculateCost() of the last row, e12\n";
  Table table({"", "one row"});
  // All studies at once, so that they can take turns; the last one is the first to go.
  std::vector<std::unique_ptr<PricedStudy>> studies;
  std::vector<Way> ways;
  for (const std::size_t rows : setting.rows) {
    studies.push_back(std::make_unique<PricedStudy>(kInputs, kOutputs, rows, ValueKind::Number));
    OptimizationTool::OptimizationData &data = studies.back()->data();
    data.setCostFunction(caseNamed(setting, "e12_wsum20").textWithNames(PricedStudy::kInputPrefix));
    ways.push_back(repeated([&data, rows] { data.recalculateCost(rows - 1); }));
  }
  const std::vector<double> seconds = measureInterleaved(ways, setting.effort);
  for (std::size_t study = 0; study < studies.size(); ++study) {
    table.add({std::to_string(setting.rows[study]) + " rows", duration(seconds[study])});
  }
  while (!studies.empty()) {
    studies.pop_back();
  }
  table.print();
  const std::size_t first = bars.size();
  bars.judge("one row of " + std::to_string(setting.rows.back()) + " / one of " +
                 std::to_string(setting.rows.front()),
             seconds.back() / seconds.front(), 1.5, {});
  bars.print(first);
}

} // namespace PricingBenchmark
