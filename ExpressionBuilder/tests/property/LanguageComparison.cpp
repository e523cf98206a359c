#include "ExpressionBuilder/tests/property/LanguageComparison.h"

#include "ExpressionBuilder/tests/TextErrors.h"
#include "ExpressionBuilder/tests/property/ExpressionGenerator.h"
#include "ExpressionBuilder/tests/property/OracleRun.h"
#include "ExpressionBuilder/tests/property/ProductRun.h"

#include <algorithm>
#include <exception>
#include <iomanip>
#include <iterator>
#include <set>
#include <sstream>

namespace LanguageOracle {
namespace {

constexpr std::size_t kDifferencesPrinted = 10;
const std::string kUndefined = "Undefined variable : ";

std::string describe(const LanguageCase &languageCase) {
  std::ostringstream text;
  text << "  text " << describe(Value::ofString(languageCase.text)) << "\n  target "
       << typeName(languageCase.target) << '\n';
  for (const Binding &binding : languageCase.bindings) {
    const std::string placeholder = '%' + binding.name + '%';
    const bool isMet = languageCase.text.find(placeholder) != std::string::npos ||
                       std::any_of(languageCase.bindings.begin(), languageCase.bindings.end(),
                                   [&placeholder](const Binding &other) {
                                     return other.text && other.text->find(placeholder) != std::string::npos;
                                   });
    if (isMet) {
      text << "  " << placeholder << " = " << (binding.text ? *binding.text : describe(binding.value))
           << '\n';
    }
  }
  if (languageCase.disturbance) {
    text << "  disturbed: %" << languageCase.disturbance->name << "% "
         << (languageCase.disturbance->value ? describe(*languageCase.disturbance->value) : "missing")
         << '\n';
  }
  return text.str();
}

// Empty when the library made the same observations as the oracle, or here and there the other allowed ones.
std::string difference(const std::vector<Observation> &expected, const std::vector<Observation> &allowed,
                       const std::vector<Observation> &actual) {
  std::ostringstream text;
  for (std::size_t index = 0; index < std::max(expected.size(), actual.size()); ++index) {
    if (index >= expected.size() || index >= actual.size() || expected[index].what != actual[index].what) {
      text << "  other observations from number " << index << " on\n";
      break;
    }
    if (!same(expected[index].outcome, actual[index].outcome) &&
        (index >= allowed.size() || !same(allowed[index].outcome, actual[index].outcome))) {
      text << "  " << expected[index].what << "\n    oracle  " << describe(expected[index].outcome)
           << "\n    library " << describe(actual[index].outcome) << '\n';
    }
  }
  return text.str();
}

std::string differenceOf(const LanguageCase &languageCase, const std::vector<Observation> &expected,
                         const Rules &rules, ComparisonReport &report) {
  try {
    const std::vector<Observation> actual = observeProduct(languageCase);
    std::string found = difference(expected, expected, actual);
    if (!found.empty()) {
      Rules others = rules;
      others.secondNanCounts = true;
      found = difference(expected, observeOracle(languageCase, others, nullptr), actual);
      report.openNanSigns += found.empty() ? 1 : 0;
    }
    return found;
  } catch (const std::exception &error) {
    return std::string("  the library threw ") + error.what() + '\n';
  }
}

void count(ComparisonReport &report, const std::vector<Observation> &observations, int depth) {
  ++report.cases;
  report.depths.push_back(depth);
  std::set<std::string> messages;
  for (const Observation &observation : observations) {
    ++report.observations[observation.what];
    if (observation.outcome.kind != Outcome::Kind::Value) {
      const std::string &message = observation.outcome.message;
      const bool isUndefined = message.compare(0, kUndefined.size(), kUndefined) == 0;
      messages.insert(isUndefined ? kUndefined : message);
    }
  }
  for (const std::string &message : messages) {
    ++report.errorTexts[message];
  }
  const Outcome &outcome = observations.front().outcome;
  if (outcome.kind == Outcome::Kind::Value) {
    report.depthsWithValue.push_back(depth);
    return;
  }
  ++(outcome.kind == Outcome::Kind::BuildError ? report.buildErrors : report.runtimeErrors);
}

} // namespace

double ComparisonReport::errorShare() const {
  return static_cast<double>(buildErrors + runtimeErrors) /
         static_cast<double>(std::max<std::size_t>(cases, 1));
}

std::vector<std::string> ComparisonReport::missingErrorTexts() const {
  const std::set<std::string> texts =
      ExpressionBuilder::textErrorsAnd({kUndefined, "Invalid expression", "Missing Variable",
                                        "Variable is of wrong type", "Circular Dependency"});
  std::vector<std::string> missing;
  std::copy_if(texts.begin(), texts.end(), std::back_inserter(missing),
               [this](const std::string &text) { return errorTexts.count(text) == 0; });
  return missing;
}

int median(std::vector<int> depths) {
  if (depths.empty()) {
    return 0;
  }
  const auto middle = depths.begin() + static_cast<std::ptrdiff_t>((depths.size() - 1) / 2);
  std::nth_element(depths.begin(), middle, depths.end());
  return *middle;
}

ComparisonReport compareWithOracle(std::uint64_t seed, std::size_t count, const Rules &rules,
                                   std::size_t stopAt) {
  ComparisonReport report;
  report.seed = seed;
  for (std::size_t number = 0; number < count && report.differences < stopAt; ++number) {
    const LanguageCase languageCase = ExpressionGenerator(seed, number).make();
    const std::vector<Observation> expected = observeOracle(languageCase, rules, &report.coverage);
    LanguageOracle::count(report, expected, languageCase.depth);
    const std::string found = differenceOf(languageCase, expected, rules, report);
    if (!found.empty()) {
      if (++report.differences <= kDifferencesPrinted) {
        report.firstDifferences += "seed " + std::to_string(seed) + ", case " + std::to_string(number) +
                                   '\n' + describe(languageCase) + found;
      }
    }
  }
  return report;
}

void print(std::ostream &stream, const ComparisonReport &report) {
  stream << "seed " << report.seed << ", " << report.cases << " cases, " << report.differences
         << " differences, " << report.openNanSigns << " texts that show which of two NaNs counted\n"
         << std::fixed << std::setprecision(1) << "errors " << 100.0 * report.errorShare() << " % ("
         << report.buildErrors << " building, " << report.runtimeErrors << " evaluating), median depth "
         << median(report.depths) << ", of the " << report.depthsWithValue.size() << " texts with a value "
         << median(report.depthsWithValue) << '\n';
  stream << "asked of both:\n";
  for (const auto &[what, times] : report.observations) {
    stream << std::setw(8) << times << "  " << what << '\n';
  }
  stream << "cases with the error text:\n";
  for (const auto &[message, times] : report.errorTexts) {
    stream << std::setw(8) << times << "  " << message << '\n';
  }
  report.coverage.print(stream);
}

} // namespace LanguageOracle
