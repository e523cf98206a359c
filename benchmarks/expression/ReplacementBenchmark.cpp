#include "benchmarks/expression/Agreement.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"
#include "benchmarks/expression/OwnExpression.h"
#include "benchmarks/expression/RivalExpression.h"
#include "benchmarks/expression/RowLoop.h"

#include <iostream>

namespace ExpressionBenchmark {

namespace {

constexpr std::size_t kMostVariables = 20;
// With the number behind it longer than what a std::string keeps within itself.
const char *const kLongPrefix = "assembly.component.parameter";

// An expression whose variables the caller knows by name only.
class NamedExpression {
public:
  NamedExpression(const ExpressionCase &expression, const std::string &prefix)
      : m_names(expression.variableNames(prefix)), m_expression(expression.textWithNames(prefix), m_names) {}

  double evaluate(const double *row) {
    for (const std::string &name : m_names) {
      m_expression.replace(name, *row);
      ++row;
    }
    return m_expression.evaluate();
  }

private:
  std::vector<std::string> m_names;
  OwnExpression m_expression;
};

} // namespace

void measureReplacement(const Setting &setting, BarList &bars) {
  std::cout
      << "\nThe plain way: each variable's definition replaced by name with a new constant, then evaluate();"
      << "\nup to " << kMostVariables << " variables, named \"x0\" or \"" << kLongPrefix << "0\"\n";
  Table table({"", "short names", "long names", "muparser", "short/muparser", "long/muparser"});
  Agreement agreement;
  Ratios withShortNames;
  Ratios withLongNames;
  for (const ExpressionCase &expression : setting.cases) {
    if (expression.variableCount > kMostVariables) {
      continue;
    }
    NamedExpression shortNames(expression, "x");
    NamedExpression longNames(expression, kLongPrefix);
    RivalExpression rival(expression.variableNames("x"));
    rival.setText(expression.rivalText());
    const NativeExpression::Single native = nativeExpression(expression.name).single;

    const std::size_t width = expression.variableCount;
    const std::vector<double> rows = expression.drawRows(rowsFor(expression));
    const auto evaluateShort = [&shortNames](const double *row) {
      return shortNames.evaluate(row);
    };
    const auto evaluateLong = [&longNames](const double *row) {
      return longNames.evaluate(row);
    };
    const auto evaluateRival = [&rival](const double *row) {
      rival.set(row);
      return rival.evaluate();
    };
    for (std::size_t row = 0; row < rows.size() / width; ++row) {
      const double *values = rows.data() + row * width;
      agreement.expect(expression.name, row, evaluateShort(values), native(values), evaluateRival(values));
      agreement.expect(expression.name, row, evaluateLong(values), native(values), evaluateRival(values));
    }
    const std::vector<double> seconds =
        measureInterleaved({overRows(rows, width, evaluateShort), overRows(rows, width, evaluateLong),
                            overRows(rows, width, evaluateRival)},
                           setting.effort);
    withShortNames.add(expression.name, seconds[0] / seconds[2]);
    withLongNames.add(expression.name, seconds[1] / seconds[2]);
    table.add({expression.name, duration(seconds[0]), duration(seconds[1]), duration(seconds[2]),
               fixed(seconds[0] / seconds[2], 2), fixed(seconds[1] / seconds[2], 2)});
  }
  table.add({"geometric mean", "", "", "", fixed(withShortNames.geometricMean(), 2),
             fixed(withLongNames.geometricMean(), 2)});
  table.print();
  std::cout << "  " << agreement.summary() << '\n';
  const std::size_t first = bars.size();
  bars.judge("replace by short name / muparser, geometric mean", withShortNames.geometricMean(), 3.0, 2.3);
  bars.judge("replace by long name / muparser, geometric mean", withLongNames.geometricMean(), 3.0, 2.3);
  bars.print(first);
}

} // namespace ExpressionBenchmark
