#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <climits>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::builtValue;
using Testing::constant;
using Testing::shown;
using Testing::Value;
using namespace std::string_literals;

struct Row {
  std::string text;
  Value expected;
};

void declareVariables(BuilderBase &builder) {
  builder.variables().declare("x", constant(2.5));
  builder.variables().declare("i", constant(7));
  builder.variables().declare("b", constant(true));
  builder.variables().declare("s", constant("text"s));
  builder.variables().declare("l", constant(5000000000LL));
  builder.variables().declare("", constant(11));
  builder.variables().declare("Wing.span + (1", constant(12));
  builder.variables().declare("\xC3\xA4\xFF", constant(13));
  builder.variables().declare("a\0b"s, constant(14));
  builder.variables().declare("tail", constant(15));
  builder.variables().declare("back\\slash", constant(16));
}

void expectRows(const BuilderBase &builder, const std::vector<Row> &rows) {
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    Value value;
    ASSERT_NO_THROW(value = builtValue(builder, row.text));
    EXPECT_TRUE(value == row.expected) << shown(value) << " instead of " << shown(row.expected);
  }
}

/// The same rows with and without folding: where a part is computed must not change its value.
void expectValues(const std::vector<Row> &rows) {
  for (const bool fold : {true, false}) {
    SCOPED_TRACE(fold ? "folding" : "not folding");
    BuilderBase builder;
    builder.setFoldConstants(fold);
    declareVariables(builder);
    expectRows(builder, rows);
  }
}

TEST(ParserTest, Literals) {
  expectValues({
      {"7", 7},
      {"007", 7},
      {"-5", -5},
      {"+5", 5},
      {"2147483647", INT_MAX},
      {"-2147483648", INT_MIN},
      {"2.5", 2.5},
      {".5", 0.5},
      {"5.", 5.0},
      {"-0.5", -0.5},
      {"+0.5", 0.5},
      {"1e3", 1000.0},
      {"1E3", 1000.0},
      {"1e+3", 1000.0},
      {"1e-3", 0.001},
      {"-1e-5", -0.00001},
      {"1e", 1.0},
      {"1e5.2", 100000.0},
      {"1.e2", 100.0},
      {"\"abc\"", "abc"s},
      {"\"\"", ""s},
      {"\"a\\b\"", "a\\b"s},
      {"\"%x% (1\"", "%x% (1"s},
      {"\"a\0b\""s, "a\0b"s},
      {"\"\xC3\xA4\xFF\"", "\xC3\xA4\xFF"s},
  });
}

TEST(ParserTest, Blanks_AreSkipped) {
  expectValues({
      {"   7", 7},
      {"7   ", 7},
      {" 1  +   2 ", 3},
      {"( 1 + 2 )", 3},
      {"max( 1 , 2 )", 2},
      {"! 0", true},
      {"- 5", -5},
      {"1 < 2 ?1: 2", 1},
      {"(int) 2.5", 2},
  });
}

TEST(ParserTest, SignsAndNegation) {
  expectValues({
      {"2-5", -3},
      {"2 -5", -3},
      {"2 - -5", 7},
      {"2--5", 7},
      {"2+-5", -3},
      {"2 + +5", 7},
      {"-.5", -0.5},
      {"--5", 5},
      {"- -5", 5},
      {"-(5)", -5},
      {"-%i%", -7},
      {"+%i%", 7},
      {"+\"a\"", "a"s},
      {"-%i% * 2", -14},
      {"-2147483648", INT_MIN},
      {"-(-2147483648)", INT_MIN},
      {"!!%i%", true},
      {"!-%i%", false},
  });
}

TEST(ParserTest, PrefixPlus_GivesItsOperandUnchanged) {
  BuilderBase builder;
  declareVariables(builder);
  EXPECT_TRUE(builder.build("+%i%")->equals(*builder.build("%i%")));
  EXPECT_TRUE(builder.build("+(1 < 2)")->equals(*constant(true)));
}

TEST(ParserTest, PrefixMinus_OfABool_IsUnsupported) {
  BuilderBase builder;
  EXPECT_EQ(Testing::buildFailure(builder, "-(1 < 2)").message, "Unsupported Operator");
}

TEST(ParserTest, Names) {
  expectValues({
      {"pi", 3.141592653589793},
      {"e", 2.718281828459045},
      {"pi - 1.0", 2.141592653589793},
      {"e+0.0", 2.718281828459045},
  });
}

TEST(ParserTest, Variables) {
  expectValues({
      {"%x%", 2.5},
      {"%i%", 7},
      {"%b%", true},
      {"%s%", "text"s},
      {"%l%", 5000000000LL},
      {"%%", 11},
      {"%Wing.span + (1%", 12},
      {"%\xC3\xA4\xFF%", 13},
      {"%a\0b%"s, 14},
      {"%back\\slash%", 16},
      {"%i%-1", 6},
      {"%i%-%i%", 0},
      {"1+%tail", 16},
  });
}

TEST(ParserTest, Precedence) {
  expectValues({
      {"1 + 2 * 3", 7},
      {"2 * 3 + 1", 7},
      {"(1 + 2) * 3", 9},
      {"10 - 4 - 3", 3},
      {"100 / 10 / 5", 2},
      {"100 / 10 * 5", 50},
      {"10 - 4 + 3", 9},
      {"1 + 2 < 2 + 2", true},
      {"1 < 2 == 2 < 3", true},
      {"3 > 2 == 2 > 3", false},
      {"1 != 1 == 0", true},
      {"5 == 2 + 3", true},
      {"0 == 1 && 0", false},
      {"1 || 1 && 0", true},
      {"1 && 0 || 1", true},
      {"0 || 0 && 1", false},
      {"1 < 2 && 3 < 2 || 5 >= 5", true},
      {"!0 && 0", false},
      {"!(0 && 0)", true},
      {"!1 == 0", true},
      {"1 <= 1", true},
      {"2 >= 3", false},
      {"1 || 0 ? 2 : 3", 2},
      {"3 > 2 > 1", false},
      {"3 > 2 > 0", true},
      {"2 == 2 == 1", true},
      {"2 * -3", -6},
      {"6 / (1 + 2)", 2},
      {"((((7))))", 7},
  });
}

TEST(ParserTest, Types_TheRightOperandDecides) {
  expectValues({
      {"2 * pi + 1", 7},
      {"1.5 * 2", 2},
      {"2 * 1.5", 3.0},
      {"7/2", 3},
      {"7/2.0", 3.5},
      {"7.0/2", 3},
      {"2.5 == 2", true},
      {"2 == 2.5", false},
      {"2.5 != 2", false},
      {"0.5 > 0", false},
      {"0 < 0.5", true},
      {"0.5 && 1", false},
      {"1 && 0.5", true},
      {"%l% + 1", 705032705},
      {"1 + %l%", 5000000001LL},
      {"1e19 * 1 + %l% * 0", INT_MIN},
      {"1e19 + (%l% - %l%)", LLONG_MIN},
      {"2 + (1 < 2)", 2},
      {"\"5\" + 2", 7},
      {"\"5.5\" * 2.0", 11.0},
      {"2 + \"5\"", "25"s},
      {"0.1234567 + \"\"", "0.123457"s},
      {"(1 < 2) + \"\"", "1"s},
      {"1.0 / 0.0", std::numeric_limits<double>::infinity()},
      {"1.0 / 0.5", 2.0},
  });
}

TEST(ParserTest, Bools_ComeFromComparisonsAndCount) {
  expectValues({
      {"(1 < 2) + (2 < 3)", 2},
      {"(1 < 2) * (3 < 2)", 0},
      {"(1 < 2) - (1 < 2)", 0},
      {"!0.0", true},
      {"!0.5", false},
      {"\"b\" > \"abc\"", true},
      {"\"ab\" + \"c\"", "abc"s},
      {"\"ab\" + \"c\" == \"abc\"", true},
  });
}

TEST(ParserTest, Conditional) {
  expectValues({
      {"1 < 2 ? 10 : 20", 10},
      {"2 < 1 ? 10 : 20", 20},
      {"2 < 1 ? 1 : 2 < 1 ? 2 : 3", 3},
      {"2 < 1 ? 1 : 1 < 2 ? 2 : 3", 2},
      {"1 < 2 ? 2 < 1 ? 1 : 2 : 3", 2},
      {"2 < 1 ? 2 < 1 ? 1 : 2 : 3", 3},
      {"1 < 2 ? 1 < 2 ? 1 < 2 ? 1 : 2 : 3 : 4", 1},
      {"1 < 2 ? 1 + 1 : 3", 2},
      {"2 < 1 ? 1 : 3 + 4", 7},
      {"(1 < 2 ? 1 : 2) + 5", 6},
      {"1 + (2 < 1 ? 1 : 2)", 3},
      {"1 ? 2 : 3", 2},
      {"0.0 ? 2 : 3", 3},
      {"\"1\" ? 2 : 3", 2},
      {"\"x\" ? 2 : 3", 3},
      {"max(1 < 2 ? 5 : 6, 3)", 5},
      {"%b% ? %i% : 0", 7},
      {"1<2?1:2", 1},
  });
}

TEST(ParserTest, Conditional_TypeIsTheMergeOfTheBranches) {
  expectValues({
      {"1 < 2 ? 1 : 2.5", 1.0},
      {"2 < 1 ? 2.5 : 1", 1.0},
      {"1 < 2 ? 1 : \"a\"", "1"s},
      {"1 < 2 ? 0.1234567 : \"a\"", "0.123457"s},
      {"1 < 2 ? 1 : %l%", 1},
      {"2 < 1 ? 1 : %l%", 705032704},
      {"1 < 2 ? %l% : 2.5", 5000000000.0},
      {"1 < 2 ? 1 < 2 : 5", 1},
      {"1 < 2 ? 1 < 2 : %l%", 1LL},
      {"1 < 2 ? 1 < 2 : 2 < 1", true},
  });
}

TEST(ParserTest, Casts) {
  expectValues({
      {"(int)3.9", 3},
      {"(int)-3.9", -3},
      {"(double)(1 < 2)", 1.0},
      {"(int)(2 < 1)", 0},
      {"(bool)0.5", true},
      {"(bool)0", false},
      {"(string)2.5", "2.5"s},
      {"(string)1.0", "1"s},
      {"(string)0.1234567", "0.123457"s},
      {"(int)\"42\"", 42},
      {"(double)\"2.5\"", 2.5},
      {"(int)2.9 + 1", 3},
      {"(int)2.9 * 2", 4},
      {"(double)7 / 2.0", 3.5},
      {"(int)(double)(int)2.5", 2},
      {"-(int)2.5", -2},
      {"(int)!0", 1},
      {"(int)-%x%", -2},
      {"(int)%x%", 2},
      {"(double)%l%", 5000000000.0},
      {"sqrt((double)4)", 2.0},
      {"(pi)", 3.141592653589793},
      {"(e) * 1.0", 2.718281828459045},
  });
}

TEST(ParserTest, FunctionCalls) {
  expectValues({
      {"sqrt(4.0)", 2.0},
      {"max(1, 2)", 2},
      {"max(max(1, 5), max(3, 4))", 5},
      {"clamp(1 + 1, 0, 2 * 4)", 2},
      {"max((1), -(2))", 1},
      {"max(1,-2)", 1},
      {"sqrt(4.0) + sqrt(9.0)", 5.0},
      {"-sqrt(4.0)", -2.0},
      {"abs(%x% - 3.0)", 0.5},
      {"abs(%l%)", 5000000000LL},
      {"max(1 < 2 ? 1 : 2, 0 || 1 ? 3 : 4)", 3},
  });
}

TEST(ParserTest, Chains_OfManyTerms) {
  BuilderBase builder;
  std::string text = "1";
  for (int i = 0; i < 1000; ++i) {
    text += i % 2 == 0 ? "+2" : "-1";
  }
  EXPECT_TRUE(builtValue(builder, text) == Value(501));
}

} // namespace
} // namespace ExpressionBuilder
