#include "ExpressionBuilder/tests/property/LanguageComparison.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <limits>
#include <string>

namespace {

using LanguageOracle::compareWithOracle;
using LanguageOracle::ComparisonReport;
using LanguageOracle::median;
using LanguageOracle::Rules;

constexpr std::uint64_t kSeed = 20240607;
constexpr std::size_t kShortRun = 5'000;
constexpr std::size_t kFullRun = 100'000;
constexpr std::size_t kEnough = std::numeric_limits<std::size_t>::max();

std::uint64_t setting(const char *name, std::uint64_t otherwise) {
  const char *text = std::getenv(name);
  return text == nullptr || *text == '\0' ? otherwise : std::stoull(text);
}

std::string lines(const std::vector<std::string> &texts) {
  std::string result;
  for (const std::string &text : texts) {
    result += text + '\n';
  }
  return result;
}

std::size_t differencesWith(const Rules &rules) {
  return compareWithOracle(kSeed, 2'000, rules, 1).differences;
}

} // namespace

// OPTSTUDY_PROPERTY_CASES and OPTSTUDY_PROPERTY_SEED choose another number of cases and another seed.
TEST(LanguagePropertyTest, GeneratedTexts_AgreeWithTheOracle) {
  const std::size_t cases = setting("OPTSTUDY_PROPERTY_CASES", kShortRun);
  const std::uint64_t seed = setting("OPTSTUDY_PROPERTY_SEED", kSeed);
  const ComparisonReport report = compareWithOracle(seed, cases, Rules{}, kEnough);
  print(std::cout, report);
  EXPECT_EQ(report.cases, cases);
  EXPECT_EQ(report.differences, 0U) << report.firstDifferences;
  EXPECT_LE(report.openNanSigns, cases / 1'000);
  EXPECT_GE(report.errorShare(), 0.20);
  EXPECT_GE(median(report.depths), 5);
  EXPECT_GE(median(report.depthsWithValue), 5);
  EXPECT_EQ(lines(report.coverage.missingFunctions()), "");
  if (cases >= kFullRun) {
    EXPECT_EQ(lines(report.coverage.missing()), "");
    EXPECT_EQ(lines(report.missingErrorTexts()), "");
  }
}

TEST(LanguagePropertyTest, OracleWhoseLeftOperandDecidesTheType_IsFoundOut) {
  Rules rules;
  rules.leftOperandDecides = true;
  EXPECT_EQ(differencesWith(rules), 1U);
}

TEST(LanguagePropertyTest, OracleThatFloorsQuotients_IsFoundOut) {
  Rules rules;
  rules.quotientIsFloored = true;
  EXPECT_EQ(differencesWith(rules), 1U);
}

TEST(LanguagePropertyTest, OracleWithAnotherErrorText_IsFoundOut) {
  Rules rules;
  rules.otherErrorText = true;
  EXPECT_EQ(differencesWith(rules), 1U);
}

TEST(LanguagePropertyTest, OracleThatComputesTheLeftOperandFirst_IsFoundOut) {
  Rules rules;
  rules.leftOperandFirst = true;
  EXPECT_EQ(differencesWith(rules), 1U);
}

TEST(LanguagePropertyTest, OracleWhoseTextsDoNotClamp_IsFoundOut) {
  Rules rules;
  rules.stringsClampToZero = true;
  EXPECT_EQ(differencesWith(rules), 1U);
}
