#include "benchmarks/expression/Agreement.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"
#include "benchmarks/expression/OwnExpression.h"
#include "benchmarks/expression/RivalExpression.h"

#include <benchmark/benchmark.h>

#include <iostream>

namespace ExpressionBenchmark {

namespace {

constexpr std::size_t kRows = 100'000;

// The columns lie one behind the other.
std::vector<double> asColumns(const std::vector<double> &values, std::size_t width) {
  std::vector<double> columns(values.size());
  for (std::size_t at = 0; at < values.size(); ++at) {
    columns[at % width * kRows + at / width] = values[at];
  }
  return columns;
}

// Also that a matrix gives what its rows give one by one.
void expectSameResults(const ExpressionCase &expression, OwnExpression &own, const std::vector<double> &rows,
                       const std::vector<double> &ownResults, const std::vector<double> &nativeResults,
                       const std::vector<double> &rivalResults, Agreement &agreement,
                       std::size_t &sameAsSingle) {
  for (std::size_t row = 0; row < kRows; ++row) {
    agreement.expect(expression.name, row, ownResults[row], nativeResults[row], rivalResults[row]);
    own.set(rows.data() + row * expression.variableCount);
    sameAsSingle += sameBits(own.evaluate(), ownResults[row]) ? 1U : 0U;
  }
}

} // namespace

void measureMatrix(const Setting &setting, BarList &bars) {
  std::cout << "\nevaluateRows() over " << kRows << " rows given as columns; time for one row\n";
  Table table({"", "own", "muparser bulk", "native loop", "own/muparser", "own/native"});
  Agreement agreement;
  Ratios toRival;
  Ratios toNative;
  std::size_t sameAsSingle = 0;
  for (const ExpressionCase &expression : setting.cases) {
    const std::vector<std::string> names = expression.variableNames("x");
    const std::vector<double> rows = expression.drawRows(kRows);
    std::vector<double> values = asColumns(rows, expression.variableCount);
    std::vector<double *> columns;
    for (std::size_t variable = 0; variable < expression.variableCount; ++variable) {
      columns.push_back(values.data() + variable * kRows);
    }
    const std::vector<const double *> readColumns(columns.begin(), columns.end());
    OwnExpression own(expression.text, names);
    RivalMatrix rival(names, expression.rivalText(), columns);
    const NativeExpression::Loop native = nativeExpression(expression.name).loop;

    std::vector<double> ownResults(kRows);
    std::vector<double> rivalResults(kRows);
    std::vector<double> nativeResults(kRows);
    const auto repeated = [](auto evaluate) {
      return [evaluate](std::size_t times) {
        for (std::size_t time = 0; time < times; ++time) {
          evaluate();
          benchmark::ClobberMemory();
        }
      };
    };
    const Way evaluateOwn = repeated([&] { own.evaluateRows(readColumns.data(), kRows, ownResults.data()); });
    const Way evaluateRival = repeated([&] { rival.evaluateRows(kRows, rivalResults.data()); });
    const Way evaluateNative = repeated([&] { native(readColumns.data(), kRows, nativeResults.data()); });
    evaluateOwn(1);
    evaluateRival(1);
    evaluateNative(1);
    expectSameResults(expression, own, rows, ownResults, nativeResults, rivalResults, agreement,
                      sameAsSingle);

    const std::vector<double> seconds =
        measureInterleaved({evaluateOwn, evaluateRival, evaluateNative}, setting.effort);
    toRival.add(expression.name, seconds[0] / seconds[1]);
    toNative.add(expression.name, seconds[0] / seconds[2]);
    table.add({expression.name, duration(seconds[0] / kRows), duration(seconds[1] / kRows),
               duration(seconds[2] / kRows), fixed(seconds[0] / seconds[1], 3),
               fixed(seconds[0] / seconds[2], 2)});
  }
  table.add(
      {"geometric mean", "", "", "", fixed(toRival.geometricMean(), 3), fixed(toNative.geometricMean(), 2)});
  table.print();
  std::cout << "  " << agreement.summary() << "\n  " << sameAsSingle << " of " << kRows * setting.cases.size()
            << " values bit-identical to evaluate() row by row\n";
  const std::size_t first = bars.size();
  bars.judge("matrix / native loop, geometric mean", toNative.geometricMean(), 1.4, 1.0);
  bars.judge("matrix / muparser bulk, geometric mean", toRival.geometricMean(), 0.20, 0.125);
  bars.judge("matrix / native loop, worst: " + toNative.worstName(), toNative.worst(), 5.0, {});
  bars.judge("matrix / muparser bulk, worst: " + toRival.worstName(), toRival.worst(), 0.85, {});
  bars.print(first);
}

} // namespace ExpressionBenchmark
