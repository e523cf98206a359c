#include "ExpressionBuilder/Warnings.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::shown;
using Testing::valueOf;
using namespace std::string_literals;

void declareVariables(BuilderBase &builder) {
  builder.variables().declare("x", constant(2.5));
  builder.variables().declare("n", constant(7));
  builder.variables().declare("b", constant(true));
  builder.variables().declare("s", constant("text"s));
  builder.variables().declare("l", constant(5000000000LL));
}

std::string kindName(WarningKind kind) {
  switch (kind) {
  case WarningKind::NarrowedDouble:
    return "narrowed";
  case WarningKind::ComparisonInArithmetic:
    return "comparison";
  case WarningKind::IntegerDivision:
    return "division";
  }
  return "?";
}

/// "narrowed 0 [%x%] to int", one per warning.
std::vector<std::string> shownWarnings(const BuilderBase &builder, const std::string &text) {
  std::vector<std::string> lines;
  for (const Warning &warning : builder.warnings(text)) {
    const TextRange &place = warning.place;
    lines.push_back(kindName(warning.kind) + " " + std::to_string(place.offset) + " [" +
                    text.substr(place.offset, place.length) + "] to " + valueTypeName(warning.becomes));
  }
  return lines;
}

struct Row {
  std::string text;
  std::vector<std::string> warnings;
};

/// Where constants are computed makes no difference.
void expectWarnings(const std::vector<Row> &rows) {
  for (const bool fold : {true, false}) {
    BuilderBase builder;
    builder.setFoldConstants(fold);
    declareVariables(builder);
    for (const Row &row : rows) {
      SCOPED_TRACE(row.text);
      EXPECT_EQ(shownWarnings(builder, row.text), row.warnings);
    }
  }
}

void expectNone(const std::vector<std::string> &texts) {
  std::vector<Row> rows;
  rows.reserve(texts.size());
  for (const std::string &text : texts) {
    rows.push_back({text, {}});
  }
  expectWarnings(rows);
}

std::vector<std::string> messages(const std::string &text) {
  BuilderBase builder;
  declareVariables(builder);
  std::vector<std::string> lines;
  for (const Warning &warning : builder.warnings(text)) {
    lines.push_back(warningMessage(warning, text));
  }
  return lines;
}

TEST(WarningsTest, LeftDoubleBecomesTheTypeOfTheRightOperand) {
  expectWarnings({{"%x% * 2", {"narrowed 0 [%x%] to int"}},
                  {"2.5 * 2", {"narrowed 0 [2.5] to int"}},
                  {"%x% + %n%", {"narrowed 0 [%x%] to int"}},
                  {"%x% - %l%", {"narrowed 0 [%x%] to long long"}},
                  {"%x% / 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% < 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% <= 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% > 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% >= 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% == 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% != 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% == %b%", {"narrowed 0 [%x%] to bool"}},
                  {"%x% * %b%", {"narrowed 0 [%x%] to bool"}},
                  {"pi * 2", {"narrowed 0 [pi] to int"}}});
}

TEST(WarningsTest, DoubleUsedAsTruth) {
  expectWarnings({{"%x% ? 1 : 2", {"narrowed 0 [%x%] to bool"}},
                  {"!%x%", {"narrowed 1 [%x%] to bool"}},
                  {"! ( %x% )", {"narrowed 2 [( %x% )] to bool"}},
                  {"%x% && %b%", {"narrowed 0 [%x%] to bool"}},
                  {"%b% && %x%", {"narrowed 7 [%x%] to bool"}},
                  {"%n% || %x%", {"narrowed 7 [%x%] to bool"}},
                  {"%x% || 1.5", {"narrowed 0 [%x%] to bool", "narrowed 7 [1.5] to bool"}},
                  {"%x% && 2", {"narrowed 0 [%x%] to int"}},
                  {"%x% || %l%", {"narrowed 0 [%x%] to long long"}}});
}

TEST(WarningsTest, ComparisonInArithmetic) {
  expectWarnings(
      {{"(1 < 2) + 3", {"comparison 0 [(1 < 2)] to int"}},
       {"3 * (1 < 2)", {"comparison 4 [(1 < 2)] to bool"}},
       {"(%x% < 2.0) * 3.5", {"comparison 0 [(%x% < 2.0)] to double"}},
       {"(1 == 2) - 1", {"comparison 0 [(1 == 2)] to int"}},
       {"(1 && 2) / 4", {"comparison 0 [(1 && 2)] to int"}},
       {"!%n% * 2", {"comparison 0 [!%n%] to int"}},
       {"+(1 < 2) * 2", {"comparison 0 [+(1 < 2)] to int"}},
       {"((1 < 2)) * 2", {"comparison 0 [((1 < 2))] to int"}},
       {"(%b% ? 1 < 2 : %b%) * 2", {"comparison 0 [(%b% ? 1 < 2 : %b%)] to int"}},
       {"(%b% ? %b% : 1 < 2) * 2", {"comparison 0 [(%b% ? %b% : 1 < 2)] to int"}},
       {"(1 < 2) * %l%", {"comparison 0 [(1 < 2)] to long long"}},
       {"(1 < 2) + (2 < 3)", {"comparison 0 [(1 < 2)] to bool", "comparison 10 [(2 < 3)] to bool"}},
       {"%s% + (1 < 2)", {"comparison 6 [(1 < 2)] to bool"}}});
}

TEST(WarningsTest, IntegerDivision) {
  expectWarnings({{"7 / 2", {"division 2 [/] to int"}},
                  {"%n%/%l%", {"division 3 [/] to long long"}},
                  {"%l%/%n%", {"division 3 [/] to int"}},
                  {"6 / 2 / 3", {"division 2 [/] to int", "division 6 [/] to int"}},
                  {"(int)%x% / 2", {"division 9 [/] to int"}}});
}

TEST(WarningsTest, SeveralOnes_AreOrderedByTheirPlaces) {
  expectWarnings(
      {{"%x% * (7 / 2)", {"narrowed 0 [%x%] to int", "division 9 [/] to int"}},
       {"2.7 * (1 < 2)", {"narrowed 0 [2.7] to bool", "comparison 6 [(1 < 2)] to bool"}},
       {"max(7 / 2, 1) + sqrt(%x%) * 2", {"division 6 [/] to int", "narrowed 16 [sqrt(%x%)] to int"}},
       {"%x% ? 7 / 2 : !%x% ? 1 : 2",
        {"narrowed 0 [%x%] to bool", "division 8 [/] to int", "narrowed 15 [%x%] to bool"}}});
}

TEST(WarningsTest, Place_IsTheWholeOperandWithoutBlanksAroundIt) {
  expectWarnings({{"   %x%   *   2", {"narrowed 3 [%x%] to int"}},
                  {"1.0 + 2.0 * 3.0   - 4", {"narrowed 0 [1.0 + 2.0 * 3.0] to int"}},
                  {"1.0 + 2.0 * 3", {"narrowed 0 [1.0] to int", "narrowed 6 [2.0] to int"}},
                  {"%n% + - ( %x% ) * 2", {"narrowed 6 [- ( %x% )] to int"}},
                  {"( %x% * 2 )", {"narrowed 2 [%x%] to int"}},
                  {"sqrt( %x% * 2 - 1.0 )", {"narrowed 6 [%x%] to int"}},
                  {"(double)%n% * 2", {"narrowed 0 [(double)%n%] to int"}},
                  {"%b% || %x% + 1.0  ", {"narrowed 7 [%x% + 1.0] to bool"}}});
}

TEST(WarningsTest, WhatIsMeant_IsNotWarnedOf) {
  expectNone({"1", "%x%", "%x% * 2.0", "2 * %x%", "%n% * 2", "%x% / 2.0", "%n% / 2.0", "%x% < 2.0",
              // the text asks for the conversion
              "(int)%x% * 2", "(bool)%x% && %b%", "(bool)%x% ? 1 : 2", "(int)(1 < 2) + 3",
              "(double)(1 < 2) * 2.5", "(int)2.5", "!(bool)%x%",
              // a bool that is no comparison counts
              "%b% * 2", "%b% + %b%", "(bool)1 * 2", "(%b% ? %b% : %b%) * 2",
              // whole numbers and comparisons as truth
              "%n% ? 1 : 2", "!%n%", "%n% && 1", "1 < 2 && 2 < 3", "!(1 < 2)", "1 < 2 ? 1 : 2",
              // comparisons of comparisons
              "(1 < 2) == (2 < 3)", "1 < 2 == 2 < 3",
              // text
              "%s% + \"a\"", "%x% + \"a\"", "(1 < 2) + \"a\"", "\"a\" == \"b\"", "\"7\" * 2",
              // no operator converts
              "1 < 2 ? 1 : 2.5", "(1 < 2 ? 1 < 2 : 3) * 2", "max(1.5, 2.5)", "-%x%", "mod(7, 2)", "-(-5)"});
}

TEST(WarningsTest, ConversionOfTheWholeResult_IsNotWarnedOf) {
  EXPECT_TRUE(BuilderSingleType<int>().warnings("2.5").empty());
  EXPECT_TRUE(BuilderSingleType<bool>().warnings("2.5").empty());
  EXPECT_TRUE(BuilderSingleType<double>().warnings("1 < 2").empty());
  EXPECT_EQ(BuilderSingleType<double>().warnings("7 / 2").size(), 1U);
}

TEST(WarningsTest, Message_NarrowedByTheRightOperand) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(messages("%x% * 2"),
            Lines{"\"%x%\" is a double and becomes an int, the type of the right operand \"2\"."
                  " Write \"2.0\" instead of \"2\""});
  EXPECT_EQ(messages("%x% * -2"),
            Lines{"\"%x%\" is a double and becomes an int, the type of the right operand "
                  "\"-2\". Write \"-2.0\" instead of \"-2\""});
  EXPECT_EQ(messages("%x% - %n%"),
            Lines{"\"%x%\" is a double and becomes an int, the type of the right operand "
                  "\"%n%\". Write \"(double)%n%\" instead of \"%n%\""});
  EXPECT_EQ(messages("%x% < %l%"),
            Lines{"\"%x%\" is a double and becomes a long long, the type of the right operand "
                  "\"%l%\". Write \"(double)%l%\" instead of \"%l%\""});
  EXPECT_EQ(messages("%x% == (1 < 2)"),
            Lines{"\"%x%\" is a double and becomes a bool, the type of the right operand \"(1 < 2)\"."
                  " Write \"(double)(1 < 2)\" instead of \"(1 < 2)\""});
  EXPECT_EQ(messages("%x% < (1) + (2)"),
            Lines{"\"%x%\" is a double and becomes an int, the type of the right operand \"(1) + (2)\"."
                  " Write \"(double)((1) + (2))\" instead of \"(1) + (2)\""});
}

TEST(WarningsTest, Message_UsedAsTruth) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(messages("%x% ? 1 : 2"),
            Lines{"\"%x%\" is a double used as true or false: everything but zero is true."
                  " Write \"(%x% != 0.0)\" instead of \"%x%\""});
  EXPECT_EQ(messages("%x% && 2"),
            Lines{"\"%x%\" is a double used as true or false after its fraction is dropped."
                  " Write \"(%x% != 0.0)\" instead of \"%x%\""});
}

TEST(WarningsTest, Message_ComparisonInArithmetic) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(messages("(1 < 2) * 3"),
            Lines{"\"(1 < 2)\" is true or false and counts as 1 or 0 in arithmetic."
                  " Write \"(int)(1 < 2)\" instead of \"(1 < 2)\" if that is meant"});
  EXPECT_EQ(messages("!%n% * 3.0"), Lines{"\"!%n%\" is true or false and counts as 1 or 0 in arithmetic."
                                          " Write \"(double)(!%n%)\" instead of \"!%n%\" if that is meant"});
}

TEST(WarningsTest, Message_IntegerDivision) {
  EXPECT_EQ(messages("7 / 2"),
            std::vector<std::string>{"\"/\" divides two whole numbers and drops the fraction."
                                     " Write \"2.0\" instead of \"2\" to keep it"});
}

TEST(WarningsTest, Message_CutsLongOperandsBetweenCharacters) {
  // 39 bytes of ASCII and one character of two bytes: the character is not cut in half.
  const std::string operand = "\"" + std::string(38, 'a') + "\xC3\xA4\" == \"b\"";
  const std::string text = "(" + operand + ") * 2";
  ASSERT_EQ(messages(text).size(), 1U);
  EXPECT_EQ(messages(text)[0],
            "\"(\"" + std::string(38, 'a') +
                "...\" is true or false and counts as 1 or 0 in arithmetic. Write \"(int)((\"" +
                std::string(38, 'a') + "...)\" instead of \"(\"" + std::string(38, 'a') +
                "...\" if that is meant");
}

/// Between the quotes that follow the word "Write".
std::string remedyIn(const std::string &message) {
  const std::string begin = "Write \"";
  const std::string end = "\" instead of";
  const std::size_t first = message.find(begin) + begin.size();
  return message.substr(first, message.find(end, first) - first);
}

/// Makes the changes that the warnings ask for until there are none left.
std::string mended(const BuilderBase &builder, std::string text) {
  for (int step = 0; step < 20; ++step) {
    const std::vector<Warning> warnings = builder.warnings(text);
    if (warnings.empty()) {
      return text;
    }
    const Warning &warning = warnings.front();
    const TextRange &changed = warning.rightOperand.length > 0 ? warning.rightOperand : warning.place;
    text.replace(changed.offset, changed.length, remedyIn(warningMessage(warning, text)));
  }
  return "still warned of: " + text;
}

TEST(WarningsTest, ProposedChange_RemovesTheWarningAndGivesWhatWasMeant) {
  struct Mending {
    std::string before;
    std::string after;
    std::string value;
  };
  const std::vector<Mending> rows = {
      {"%x% * 2", "%x% * 2.0", "double 5"},
      {"%x% * %n% / 2", "%x% * (double)%n% / 2.0", "double 8.75"},
      {"%n% / 2", "%n% / 2.0", "double 3.5"},
      {"1.5 < (1 + 2) / 2", "1.5 < (double)((1 + 2) / 2.0)", "bool 0"},
      {"2.5 - max(1, 2)", "2.5 - (double)(max(1, 2))", "double 0.5"},
      {"2 * (1 < 2)", "2 * (int)(1 < 2)", "int 2"},
      {"2.7 * (1 < 2)", "2.7 * (double)(1 < 2)", "double 2.7000000000000002"},
      {"(1 < 2) + (2 < 3)", "(int)(1 < 2) + (int)(2 < 3)", "int 2"},
      {"%l% * (1 < 2)", "%l% * (double)(1 < 2)", "double 5000000000"},
      {"\"a\" + (1 < 2)", "\"a\" + (string)(1 < 2)", "string a1"},
      {"%x% - 2.5 ? 1 : 2", "(%x% - 2.5 != 0.0) ? 1 : 2", "int 2"},
      {"!%x% || %x%", "!(%x% != 0.0) || (%x% != 0.0)", "bool 1"},
      {"0.5 && 1", "(0.5 != 0.0) && 1", "bool 1"},
  };
  BuilderBase builder;
  declareVariables(builder);
  for (const Mending &row : rows) {
    SCOPED_TRACE(row.before);
    EXPECT_EQ(mended(builder, row.before), row.after);
    EXPECT_EQ(shown(valueOf(*builder.build(row.after), builder.variables())), row.value);
  }
}

TEST(WarningsTest, BuildWithWarnings_GivesTheTreeOfBuild) {
  BuilderSingleType<double> builder;
  declareVariables(builder);
  for (const std::string text : {"%x% * 2", "7 / 2", "(1 < 2) + %n%", "%x% ? max(1, 2) : -%x%"}) {
    SCOPED_TRACE(text);
    std::vector<Warning> warnings;
    const auto root = builder.buildWithWarnings(text, warnings);
    EXPECT_TRUE(root->equals(*builder.build(text)));
    EXPECT_EQ(root->type(), ValueType::Double);
    EXPECT_EQ(warnings.size(), builder.warnings(text).size());
  }
}

TEST(WarningsTest, BuildWithWarnings_ReplacesWhatTheListHeld) {
  std::vector<Warning> warnings(3);
  BuilderBase().buildWithWarnings("1 / 2", warnings);
  EXPECT_EQ(warnings.size(), 1U);
  BuilderBase().buildWithWarnings("1", warnings);
  EXPECT_TRUE(warnings.empty());
}

TEST(WarningsTest, WrongText_FailsAsBuildDoesAndLeavesTheListAlone) {
  BuilderSingleType<double> builder;
  declareVariables(builder);
  for (const std::string text : {"", "   ", "1 / 2 +", "%x% * 2)", "7 / 0", "%y%", "1 / 2 ? 1", "!\"a\"",
                                 "mod(7 / 2, 0)", "sqrt(1 / 2)"}) {
    SCOPED_TRACE(text);
    const Testing::Failure expected = Testing::buildFailure(builder, text);
    std::vector<Warning> warnings(3);
    try {
      builder.buildWithWarnings(text, warnings);
      ADD_FAILURE() << "nothing thrown";
    } catch (const ParserError &error) {
      EXPECT_EQ(error.what(), expected.message);
      EXPECT_EQ(error.offset(), expected.offset);
    }
    EXPECT_EQ(warnings.size(), 3U);
    EXPECT_THROW(builder.warnings(text), ParserError);
  }
}

std::string repeated(const std::string &part, std::size_t count) {
  std::string text;
  text.reserve(part.size() * count);
  for (std::size_t i = 0; i < count; ++i) {
    text += part;
  }
  return text;
}

TEST(WarningsTest, LongText_HasAWarningAtEveryOperator) {
  BuilderBase builder;
  declareVariables(builder);
  const std::vector<Warning> warnings = builder.warnings("%n%" + repeated("/2", 100'000));
  ASSERT_EQ(warnings.size(), 100'000U);
  EXPECT_EQ(warnings.back().place.offset, 3U + 2U * 99'999U);
}

// Each of 50,000 levels ends behind the same million blanks: looking for their beginning anew would take hours.
TEST(WarningsTest, DeepNestingThatEndsInBlanks_TakesTimeLinearInTheText) {
  BuilderBase builder;
  declareVariables(builder);
  const std::string text = repeated("!(double)", 50'000) + "%b%" + std::string(1'000'000, ' ');
  const std::vector<Warning> warnings = builder.warnings(text);
  ASSERT_EQ(warnings.size(), 50'000U);
  EXPECT_EQ(warnings.front().place.offset, 1U);
  EXPECT_EQ(warnings.front().place.length, 9U * 50'000U + 2U);
}

} // namespace
} // namespace ExpressionBuilder
