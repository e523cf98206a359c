#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/tests/property/OracleValueText.h"
#include "ExpressionBuilder/tests/property/RandomChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ExpressionBuilder::BuilderBase;
using ExpressionBuilder::Element;
using ExpressionBuilder::ElementAbstract;
using ExpressionBuilder::ElementConstant;
using ExpressionBuilder::EmptyVariableCollection;
using LanguageOracle::Outcome;
using LanguageOracle::RandomChoice;
using LanguageOracle::Value;
using LanguageOracle::ValueText;

constexpr std::uint64_t kSeed = 20240608;
constexpr std::size_t kCases = 20'000;
const std::string kVariable = "d";

Value valueOf(const ElementAbstract &element) {
  const EmptyVariableCollection none;
  if (const auto *real = dynamic_cast<const Element<double> *>(&element)) {
    return Value::ofDouble(real->evaluate(none));
  }
  if (const auto *whole = dynamic_cast<const Element<int> *>(&element)) {
    return Value::ofInt(whole->evaluate(none));
  }
  if (const auto *truth = dynamic_cast<const Element<bool> *>(&element)) {
    return Value::ofBool(truth->evaluate(none));
  }
  return Value::ofString(dynamic_cast<const Element<std::string> &>(element).evaluate(none));
}

std::string describe(const ValueText &read) {
  if (!read.outcome) {
    return "nothing";
  }
  // Where an error leaves the reader is nobody's business.
  const bool isValue = read.outcome->kind == Outcome::Kind::Value;
  return LanguageOracle::describe(*read.outcome) +
         (isValue ? ", " + std::to_string(read.length) + " bytes" : "");
}

std::string describeLibrary(const BuilderBase &builder, const std::string &text) {
  ValueText read;
  std::unique_ptr<ElementAbstract> element;
  ExpressionBuilder::TextPosition position = text.begin();
  try {
    builder.parseLiteral(element, position, text.end());
    if (element != nullptr) {
      read.outcome = Outcome::ofValue(valueOf(*element));
      read.length = static_cast<std::size_t>(position - text.begin());
    }
  } catch (const std::runtime_error &error) {
    read.outcome = Outcome::ofBuildError(error.what());
  }
  return describe(read);
}

std::string generated(RandomChoice &random, const std::vector<std::string> &starts) {
  static const std::vector<std::string> kPieces = {
      "0",       "1",    "9", "5", "12", "2147483647", "2147483648", "308",  ".",   ".",
      "e",       "E",    "+", "-", "\"", "\"",         "\\",         "\\",   "%",   "%",
      kVariable, "true", "_", "x", "\t", "e-0320",     " ",          "e400", "0.0", "-"};
  std::string text = random.of(starts);
  for (std::size_t pieces = random.below(6); pieces > 0; --pieces) {
    text += random.of(kPieces);
  }
  return text;
}

/// How often each kind of outcome came.
using Tally = std::map<std::string, std::size_t>;

std::string kindOf(const std::string &description) {
  return description.substr(0, description.find_first_of(" ,"));
}

/// The number of texts that the library reads otherwise than the oracle, which is told `oracleEscapes`.
std::size_t differences(bool allowEscapes, bool oracleEscapes, Tally &tally) {
  BuilderBase builder;
  builder.setAllowEscapes(allowEscapes);
  RandomChoice random(kSeed);
  std::size_t count = 0;
  for (std::size_t number = 0; number < kCases; ++number) {
    const std::string text =
        generated(random, {"", "\"", "\"", "\"a", "0", "1", "7", ".", "+", "-", "true", "false", "tru"});
    const std::string expected = describe(LanguageOracle::readValueText(text, oracleEscapes));
    const std::string actual = describeLibrary(builder, text);
    ++tally[kindOf(expected)];
    if (expected != actual && ++count <= 5) {
      std::cout << "  text " << describe({Outcome::ofValue(Value::ofString(text)), 0}) << "\n    oracle  "
                << expected << "\n    library " << actual << '\n';
    }
  }
  return count;
}

} // namespace

TEST(ValueTextPropertyTest, GeneratedTexts_AgreeWithTheOracle) {
  Tally tally;
  EXPECT_EQ(differences(false, false, tally), 0U);
  EXPECT_EQ(differences(true, true, tally), 0U);
  std::cout << "seed " << kSeed << ", " << 2 * kCases << " cases\n";
  std::size_t least = kCases;
  for (const auto &[kind, times] : tally) {
    std::cout << "  " << kind << ' ' << times << '\n';
    least = std::min(least, times);
  }
  // double, int, bool and string, nothing, and errors.
  EXPECT_EQ(tally.size(), 6U);
  EXPECT_GE(least, 1000U);
}

TEST(ValueTextPropertyTest, OracleWithoutEscapes_IsFoundOut) {
  Tally tally;
  EXPECT_GE(differences(true, false, tally), 100U);
}

TEST(ValueTextPropertyTest, GeneratedVariableReferences_AgreeWithTheOracle) {
  RandomChoice random(kSeed);
  std::size_t found = 0;
  std::size_t undefined = 0;
  for (std::size_t number = 0; number < kCases; ++number) {
    const bool allowEscapes = random.chance(50);
    const std::string text = generated(random, {"%", "%d", "%\\", "%\\d", "%d%"});
    std::size_t length = 0;
    const std::string name = LanguageOracle::readName(text, allowEscapes, length);
    if (length < text.size()) {
      continue; // what follows is not for this test
    }
    BuilderBase builder;
    builder.setAllowEscapes(allowEscapes);
    builder.variables().declare(kVariable, std::make_unique<ElementConstant<double>>(1.5));
    std::string actual = "found";
    try {
      builder.build(text);
    } catch (const std::runtime_error &error) {
      actual = error.what();
    }
    const bool isFound = name == kVariable;
    ++(isFound ? found : undefined);
    EXPECT_EQ(actual, isFound ? "found" : "Undefined variable : " + name) << text;
  }
  EXPECT_GE(found, 500U);
  EXPECT_GE(undefined, 500U);
}
