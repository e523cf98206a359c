#pragma once

#include "ExpressionBuilder/tests/property/LanguageCoverage.h"
#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace LanguageOracle {

/// What comparing the library with the oracle over a number of generated cases has shown.
struct ComparisonReport {
  std::uint64_t seed = 0;
  std::size_t cases = 0;
  std::size_t differences = 0;
  /// The first few, each with seed, number, text and both outcomes.
  std::string firstDifferences;
  /// Cases that agree only when "+" or "*" pass on the second one of two NaN operands.
  std::size_t openNanSigns = 0;
  std::size_t buildErrors = 0;
  std::size_t runtimeErrors = 0;
  /// What was asked of both, and how often.
  std::map<std::string, std::size_t> observations;
  /// Cases in which an error text was met, the name of an undefined variable left out.
  std::map<std::string, std::size_t> errorTexts;
  std::vector<int> depths;
  /// Of the texts that have a value.
  std::vector<int> depthsWithValue;
  LanguageCoverage coverage;

  double errorShare() const;
  /// The texts of the language's errors that no case has met.
  std::vector<std::string> missingErrorTexts() const;
};

/// The median; of an even number the lower one of the two in the middle.
int median(std::vector<int> depths);

/// Makes cases 0..count-1 of the seed and compares every observation.
/// \param stopAt  ends early after so many cases with differences
ComparisonReport compareWithOracle(std::uint64_t seed, std::size_t count, const Rules &rules,
                                   std::size_t stopAt);

void print(std::ostream &stream, const ComparisonReport &report);

} // namespace LanguageOracle
