#include "ExpressionBuilder/Expression.h"
#include "HostModel/Attribute.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "benchmarks/expression/RivalExpression.h"
#include "benchmarks/pricing/Benchmarks.h"
#include "benchmarks/pricing/PricedStudy.h"

#include <benchmark/benchmark.h>

#include <iostream>
#include <stdexcept>

// Building a calculator, beside the reading of the groups and the same text in muparser.

namespace PricingBenchmark {

using namespace Benchmarking;
using ExpressionBenchmark::ExpressionCase;
using ExpressionBenchmark::RivalExpression;
using OptimizationTool::CostFunctionBuilder;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroup;

namespace {

// Name, macro, attribute and value of every group.
double readGroups(const OptimizationData &data) {
  double sum = 0.0;
  const int count = data.getNumInputs();
  for (int index = 0; index < count; ++index) {
    const OptimizationGroup group = data.getGroup(true, index);
    const std::string name = group.getName();
    const std::string macro = group.getAttributeMacro();
    const EntityModel::Attribute *attribute = group.getFrontAttribute();
    sum += static_cast<double>(name.size() + macro.size());
    sum += attribute != nullptr && attribute->isNumeric() ? attribute->getNumericValue() : 0.0;
  }
  return sum;
}

double build(const CostFunctionBuilder &builder, const std::string &text) {
  const auto expression = builder.create(text);
  if (expression == nullptr) {
    throw std::runtime_error(builder.getLastBuildError());
  }
  return static_cast<double>(expression->variables().size());
}

template <class Function> Way repeated(Function function) {
  return [function](std::size_t times) {
    for (std::size_t time = 0; time < times; ++time) {
      benchmark::DoNotOptimize(function());
    }
  };
}

} // namespace

void measureBuilding(const Setting &setting, BarList &bars) {
  std::cout << "\n4  CostFunctionBuilder::create() in a study with a group for each variable; one reading of "
               "every group's\nname, macro, attribute and value; muparser's setting of the text and first "
               "evaluation\n";
  Table table({"", "create", "groups read", "muparser", "allowed", "create/allowed"});
  Ratios ratios;
  for (const ExpressionCase &expression : setting.cases) {
    PricedStudy study(expression.variableCount, 0, 1, ValueKind::Number);
    const CostFunctionBuilder builder(study.data());
    const std::string text = expression.textWithNames(PricedStudy::kInputPrefix);
    RivalExpression rival(expression.variableNames("x"));
    const std::string rivalText = expression.rivalText();
    const std::vector<double> row = expression.drawRows(1);
    rival.set(row.data());
    const std::vector<double> seconds =
        measureInterleaved({repeated([&] { return build(builder, text); }),
                            repeated([&] { return readGroups(study.data()); }), repeated([&] {
                              rival.setText(rivalText);
                              return rival.evaluate();
                            })},
                           setting.effort);
    constexpr std::size_t kManyVariables = 200;
    const double share = expression.variableCount >= kManyVariables ? 0.5 : 0.2;
    const double allowed = 1.5 * seconds[1] + share * seconds[2];
    ratios.add(expression.name, seconds[0] / allowed);
    table.add({expression.name, duration(seconds[0]), duration(seconds[1]), duration(seconds[2]),
               duration(allowed), fixed(seconds[0] / allowed, 2)});
  }
  table.add({"geometric mean", "", "", "", "", fixed(ratios.geometricMean(), 2)});
  table.print();
  const std::size_t first = bars.size();
  bars.judge("create() / (1.5 readings + 0.20 or, of 200 variables, 0.5 muparser), worst: " +
                 ratios.worstName(),
             ratios.worst(), 1.0, {});
  bars.print(first);
}

void measureGroups(const Setting &setting, BarList &bars) {
  std::cout << "\n5  CostFunctionBuilder::create() of a short text in studies of more and more groups\n";
  Table table({"", "create", "for each group", "groups read", "for each group", "create/read"});
  // Beside the reading, which alone takes longer for each group as soon as the groups outgrow a cache.
  std::vector<double> toReading;
  for (const std::size_t groups : {10U, 100U, 1000U, 3000U}) {
    PricedStudy study(groups, 0, 1, ValueKind::Number);
    const CostFunctionBuilder builder(study.data());
    const std::string text = std::string("%") + PricedStudy::kInputPrefix + "0% + 1.0";
    const std::vector<double> seconds = measureInterleaved(
        {repeated([&] { return build(builder, text); }), repeated([&] { return readGroups(study.data()); })},
        setting.effort);
    const auto count = static_cast<double>(groups);
    toReading.push_back(seconds[0] / seconds[1]);
    table.add({std::to_string(groups) + " groups", duration(seconds[0]), duration(seconds[0] / count),
               duration(seconds[1]), duration(seconds[1] / count), fixed(toReading.back(), 2)});
  }
  table.print();
  const std::size_t first = bars.size();
  bars.judge("create()/read of 3000 groups / the same of 10", toReading.back() / toReading.front(), 1.5, {});
  bars.print(first);
}

} // namespace PricingBenchmark
