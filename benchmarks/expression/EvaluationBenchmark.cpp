#include "benchmarks/expression/Agreement.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"
#include "benchmarks/expression/OwnExpression.h"
#include "benchmarks/expression/RivalExpression.h"
#include "benchmarks/expression/RowLoop.h"

#include <iostream>

namespace ExpressionBenchmark {

void measureEvaluation(const Setting &setting, BarList &bars) {
  std::cout << "\nevaluate() of a built expression, all variables set through handles before each\n";
  Table table({"", "own", "muparser", "native", "own/muparser", "own/native"});
  Agreement agreement;
  Ratios toRival;
  Ratios toNative;
  for (const ExpressionCase &expression : setting.cases) {
    const std::vector<std::string> names = expression.variableNames("x");
    OwnExpression own(expression.text, names);
    RivalExpression rival(names);
    rival.setText(expression.rivalText());
    const NativeExpression::Single native = nativeExpression(expression.name).single;

    const std::size_t width = expression.variableCount;
    const std::vector<double> rows = expression.drawRows(rowsFor(expression));
    const auto evaluateOwn = [&own](const double *row) {
      own.set(row);
      return own.evaluate();
    };
    const auto evaluateRival = [&rival](const double *row) {
      rival.set(row);
      return rival.evaluate();
    };
    for (std::size_t row = 0; row < rows.size() / width; ++row) {
      const double *values = rows.data() + row * width;
      agreement.expect(expression.name, row, evaluateOwn(values), native(values), evaluateRival(values));
    }
    const std::vector<double> seconds =
        measureInterleaved({overRows(rows, width, evaluateOwn), overRows(rows, width, evaluateRival),
                            overRows(rows, width, native)},
                           setting.effort);
    toRival.add(expression.name, seconds[0] / seconds[1]);
    toNative.add(expression.name, seconds[0] / seconds[2]);
    table.add({expression.name, duration(seconds[0]), duration(seconds[1]), duration(seconds[2]),
               fixed(seconds[0] / seconds[1], 3), fixed(seconds[0] / seconds[2], 2)});
  }
  table.add(
      {"geometric mean", "", "", "", fixed(toRival.geometricMean(), 3), fixed(toNative.geometricMean(), 2)});
  table.print();
  std::cout << "  " << agreement.summary() << '\n';
  const std::size_t first = bars.size();
  bars.judge("evaluate / muparser, geometric mean", toRival.geometricMean(), 0.60, 0.40);
  bars.judge("evaluate / native, geometric mean", toNative.geometricMean(), 4.8, 3.2);
  bars.judge("evaluate / muparser, worst: " + toRival.worstName(), toRival.worst(), 1.4, {});
  bars.print(first);
}

} // namespace ExpressionBenchmark
