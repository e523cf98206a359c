#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/expression/Agreement.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/OwnExpression.h"

#include <array>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace ExpressionBenchmark {

namespace {

constexpr std::size_t kVariables = 20;
constexpr std::array<std::size_t, 3> kTerms = {10'000, 100'000, 1'000'000};

double weight(std::size_t term) {
  return static_cast<double>(term % 10) + 1.5;
}

// 1.5*%x0%+2.5*%x1%+..., the variables in turn.
std::string weightedSum(std::size_t terms) {
  std::string text;
  for (std::size_t term = 0; term < terms; ++term) {
    text += term == 0 ? "" : "+";
    text += fixed(weight(term), 1);
    text += "*%x";
    text += std::to_string(term % kVariables);
    text += '%';
  }
  return text;
}

double nativeSum(std::size_t terms, const std::vector<double> &x) {
  double sum = weight(0) * x[0];
  for (std::size_t term = 1; term < terms; ++term) {
    sum += weight(term) * x[term % kVariables];
  }
  return sum;
}

// The most memory that this process has had at one time, its libraries and the text included.
double peakMebibytes() {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    if (word == "VmHWM:") {
      double kibibytes = 0.0;
      status >> kibibytes;
      return kibibytes / 1024.0;
    }
  }
  throw std::runtime_error("The system does not say how much memory the process has had");
}

// What one process measured.
struct LengthResult {
  double buildSeconds = 0.0;
  double evaluateSeconds = 0.0;
  double destroySeconds = 0.0;
  double totalSeconds = 0.0;
  double mebibytes = 0.0;
};

LengthResult measureSum(std::size_t terms) {
  ExpressionCase variables;
  variables.variableCount = kVariables;
  variables.lowest = 0.05;
  variables.highest = 20.0;
  const std::vector<std::string> names = variables.variableNames("x");
  const std::vector<double> row = variables.drawRows(1);
  Builder builder;
  declareVariables(builder, names);
  const std::string text = weightedSum(terms);

  LengthResult result;
  const double begin = processorSeconds();
  std::optional<OwnExpression> expression(std::in_place, builder, text, names);
  const double built = processorSeconds();
  expression->set(row.data());
  const double value = expression->evaluate();
  const double evaluated = processorSeconds();
  expression.reset();
  const double destroyed = processorSeconds();
  result.buildSeconds = built - begin;
  result.evaluateSeconds = evaluated - built;
  result.destroySeconds = destroyed - evaluated;
  result.totalSeconds = destroyed - begin;
  result.mebibytes = peakMebibytes();
  if (!sameBits(value, nativeSum(terms, row))) {
    throw std::runtime_error("The sum of " + std::to_string(terms) + " terms is wrong");
  }
  return result;
}

LengthResult measureInChild(const std::string &program, std::size_t terms) {
  std::istringstream output(Benchmarking::outputOf({program, "--length-of=" + std::to_string(terms)}));
  LengthResult result;
  output >> result.buildSeconds >> result.evaluateSeconds >> result.destroySeconds >> result.totalSeconds >>
      result.mebibytes;
  if (!output) {
    throw std::runtime_error("The process for " + std::to_string(terms) + " terms gave no figures");
  }
  return result;
}

LengthResult medians(const std::vector<LengthResult> &results) {
  LengthResult middle;
  for (double LengthResult::*const figure :
       {&LengthResult::buildSeconds, &LengthResult::evaluateSeconds, &LengthResult::destroySeconds,
        &LengthResult::totalSeconds, &LengthResult::mebibytes}) {
    std::vector<double> values;
    values.reserve(results.size());
    for (const LengthResult &result : results) {
      values.push_back(result.*figure);
    }
    middle.*figure = median(std::move(values));
  }
  return middle;
}

} // namespace

void runLengthChild(std::size_t terms) {
  const LengthResult result = measureSum(terms);
  std::cout << result.buildSeconds << ' ' << result.evaluateSeconds << ' ' << result.destroySeconds << ' '
            << result.totalSeconds << ' ' << result.mebibytes << '\n';
}

void measureLength(const Setting &setting, BarList &bars) {
  std::cout << "\nWeighted sums over " << kVariables
            << " variables: built, evaluated once, destroyed; each in a new process.\n"
               "Memory is the process's peak, text, program and libraries included\n";
  std::array<std::vector<LengthResult>, kTerms.size()> results;
  for (std::size_t repetition = 0; repetition < setting.effort.repetitions; ++repetition) {
    for (std::size_t size = 0; size < kTerms.size(); ++size) {
      results[size].push_back(measureInChild(setting.program, kTerms[size]));
    }
  }
  Table table({"terms", "build", "evaluate", "destroy", "total", "total / tenth of the terms", "memory"});
  std::array<LengthResult, kTerms.size()> middle;
  for (std::size_t size = 0; size < kTerms.size(); ++size) {
    middle[size] = medians(results[size]);
    table.add({std::to_string(kTerms[size]), duration(middle[size].buildSeconds),
               duration(middle[size].evaluateSeconds), duration(middle[size].destroySeconds),
               duration(middle[size].totalSeconds),
               size == 0 ? "" : fixed(middle[size].totalSeconds / middle[size - 1].totalSeconds, 2),
               fixed(middle[size].mebibytes, 1) + " MiB"});
  }
  table.print();
  std::cout << "  all sums bit-identical to the native loop\n";
  const std::size_t first = bars.size();
  bars.judge("length, 10^5 / 10^4 terms", middle[1].totalSeconds / middle[0].totalSeconds, 14.0, {});
  bars.judge("length, 10^6 / 10^5 terms", middle[2].totalSeconds / middle[1].totalSeconds, 25.0, {});
  bars.judge("length, 10^6 terms, time", middle[2].totalSeconds, 1.0, 0.25, " s");
  bars.judge("length, 10^6 terms, memory", middle[2].mebibytes, 1024.0, 250.0, " MiB");
  bars.print(first);
}

} // namespace ExpressionBenchmark
