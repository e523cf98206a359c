#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::buildFailure;
using Testing::constant;
using Testing::Failure;
using namespace std::string_literals;

struct Row {
  std::string text;
  std::string message;
  std::size_t offset;
};

void expectFailures(const BuilderBase &builder, const std::vector<Row> &rows) {
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    const Failure failure = buildFailure(builder, row.text);
    EXPECT_EQ(failure.message, row.message);
    EXPECT_EQ(failure.offset, row.offset);
  }
}

/// The rows fail alike with and without folding.
void expectFailures(const std::vector<Row> &rows) {
  for (const bool fold : {true, false}) {
    BuilderBase builder;
    builder.setFoldConstants(fold);
    builder.variables().declare("x", constant(2.5));
    builder.variables().declare("i", constant(7));
    builder.variables().declare("a:", constant(1));
    expectFailures(builder, rows);
  }
}

const std::string kSyntax = "Syntax error";
const std::string kScanner = "Syntax Error";
const std::string kUnexpectedLeft = "Syntax error - Unexpected left hand side";
const std::string kNoLeft = "Syntax error - No left hand side expected";
const std::string kRight = "Syntax error - Right hand side invalid";
const std::string kUnary = "No right hand side of unary operator";
const std::string kBrackets = "Syntax error : unbalanced brackets";
const std::string kCondition = "Syntax error - Condition";
const std::string kTrue = "Syntax error - True expression";
const std::string kFalse = "Syntax error - False expression";
const std::string kUnsupported = "Unsupported Operator";
const std::string kRange = "Number out of range";
const std::string kOverload = "Function does not support the current argument types";

TEST(ParserErrorTest, EmptyText) {
  expectFailures({{"", "Empty expression", 0}, {"   ", "Empty expression", 3}});
}

TEST(ParserErrorTest, NothingParsed) {
  expectFailures({{"=", kSyntax, 0},
                  {"\t", kSyntax, 0},
                  {"\t1", kSyntax, 0},
                  {"  #", kSyntax, 2},
                  {"_x", kSyntax, 0},
                  {"\xC3\xA4", kSyntax, 0},
                  {"\0"s, kSyntax, 0},
                  {"~1", kSyntax, 0},
                  {"&", kSyntax, 0}});
}

TEST(ParserErrorTest, LeftOver) {
  expectFailures({{"1 =", kSyntax, 2},
                  {"1 = 2", kSyntax, 2},
                  {"1\t+ 2", kSyntax, 1},
                  {"1 & 2", kSyntax, 2},
                  {"1 | 2", kSyntax, 2},
                  {"1 ^ 2", kSyntax, 2},
                  {"1\n", kSyntax, 1},
                  {"1 + 2 ]", kSyntax, 6},
                  {"1\0"s, kSyntax, 1}});
}

TEST(ParserErrorTest, OperandAfterOperand) {
  expectFailures({{"1 2", kSyntax, 2},
                  {"1 \"a\"", kSyntax, 2},
                  {"1.2.3", kSyntax, 3},
                  {"1 .5", kSyntax, 2},
                  {"1 %x%", kSyntax, 2},
                  {"7 % 3", kSyntax, 2},
                  {"1 pi", kSyntax, 2},
                  {"2pi", kSyntax, 1},
                  {"0x10", kSyntax, 1},
                  {"1e5e3", kSyntax, 3},
                  {"1 sqrt(4.0)", kSyntax, 2},
                  {"1 (2)", kSyntax, 2},
                  {"2 (int)3", kSyntax, 2},
                  {"pi(1)", kSyntax, 0},
                  {"(1)(2)", kSyntax, 3}});
}

TEST(ParserErrorTest, UnknownNames) {
  expectFailures({{"Pi", kSyntax, 0},
                  {"true", kSyntax, 0},
                  {"false", kSyntax, 0},
                  {"x", kSyntax, 0},
                  {"pi-1", kSyntax, 0},
                  {"1 + pi-1", kSyntax, 4},
                  {"pi_2", kSyntax, 0},
                  {"sqrt", kSyntax, 0},
                  {"sqrt (4.0)", kSyntax, 0},
                  {"Sqrt(4.0)", kSyntax, 0},
                  {"1 + foo(", kSyntax, 4},
                  {"foo(1 +)", kSyntax, 0},
                  {"foo(", kSyntax, 0}});
}

TEST(ParserErrorTest, UndefinedVariables) {
  expectFailures({{"%y%", "Undefined variable : y", 0},
                  {"1 + %y% + %z%", "Undefined variable : y", 4},
                  {"%%", "Undefined variable : ", 0},
                  {"%", "Undefined variable : ", 0},
                  {"%X%", "Undefined variable : X", 0},
                  {"%x + 1", "Undefined variable : x + 1", 0},
                  {"% x%", "Undefined variable :  x", 0},
                  {"%a\0b%"s, "Undefined variable : a", 0}});
}

TEST(ParserErrorTest, NumbersOutOfRange) {
  expectFailures({{"2147483648", kRange, 0},
                  {"-2147483649", kRange, 0},
                  {"1 + 99999999999999999999", kRange, 4},
                  {"1e400", kRange, 0},
                  {"1e-310", kRange, 0},
                  {"-1e400", kRange, 0}});
}

TEST(ParserErrorTest, TextsThatAreNoLiteral) {
  expectFailures({{".", kSyntax, 0},
                  {"1 + .", kSyntax, 4},
                  {".e5", kSyntax, 0},
                  {"..5", kSyntax, 0},
                  {"\"abc", kSyntax, 0},
                  {"\"", kSyntax, 0},
                  {"1 + \"abc", kSyntax, 4},
                  {"max(1, \"abc", kSyntax, 7}});
}

TEST(ParserErrorTest, MissingLeftOperand) {
  expectFailures({{"* 2", kUnexpectedLeft, 0},
                  {"/ 2", kUnexpectedLeft, 0},
                  {"< 2", kUnexpectedLeft, 0},
                  {"<= 2", kUnexpectedLeft, 0},
                  {"> 2", kUnexpectedLeft, 0},
                  {">= 2", kUnexpectedLeft, 0},
                  {"== 2", kUnexpectedLeft, 0},
                  {"!= 2", kUnexpectedLeft, 0},
                  {"&& 2", kUnexpectedLeft, 0},
                  {"|| 2", kUnexpectedLeft, 0},
                  {"2 + * 3", kUnexpectedLeft, 4},
                  {"(* 2)", kUnexpectedLeft, 1},
                  {"max(* 2, 1)", kUnexpectedLeft, 4},
                  {"1 < 2 ? * 2 : 1", kUnexpectedLeft, 8}});
}

TEST(ParserErrorTest, MissingRightOperand) {
  expectFailures({{"2 *", kRight, 3},
                  {"2 +", kRight, 3},
                  {"2 -  ", kRight, 5},
                  {"2 /", kRight, 3},
                  {"2 <", kRight, 3},
                  {"2 ==", kRight, 4},
                  {"2 &&", kRight, 4},
                  {"2 ||", kRight, 4},
                  {"2 * * 3", kRight, 4},
                  {"2 * + ", kUnary, 6},
                  {"2 < == 3", kRight, 4},
                  {"2 == && 3", kRight, 5},
                  {"(1+)", kRight, 3},
                  {"max(1+,2)", kRight, 6},
                  {"1 + ? 2 : 3", kRight, 4},
                  {"2 + )", kRight, 4},
                  {"2 = = 2", kSyntax, 2},
                  {"2 === 2", kRight, 4}});
}

TEST(ParserErrorTest, MissingOperandOfPrefix) {
  expectFailures({{"!", kUnary, 1},
                  {"-", kUnary, 1},
                  {"+", kUnary, 1},
                  {"- -", kUnary, 3},
                  {"! * 2", kUnary, 2},
                  {"(!)", kUnary, 2},
                  {"(int)", kUnary, 5},
                  {"(int) * 2", kUnary, 6},
                  {"((int))", kUnary, 6}});
}

TEST(ParserErrorTest, ExclamationMarkAfterOperand) {
  expectFailures({{"1 ! 2", kNoLeft, 2}, {"1!", kNoLeft, 1}, {"(1 !)", kNoLeft, 3}});
}

TEST(ParserErrorTest, Brackets) {
  expectFailures({{"(1+2", kSyntax, 4},
                  {"((1)", kSyntax, 4},
                  {"(", kSyntax, 1},
                  {"(1 = 2)", kSyntax, 3},
                  {"(=)", kSyntax, 1},
                  {"1+2)", kBrackets, 3},
                  {")", kBrackets, 0},
                  {"()", kBrackets, 1},
                  {"(1))", kBrackets, 3},
                  {"1,2", kBrackets, 1},
                  {",", kBrackets, 0},
                  {"(1,2)", kBrackets, 2},
                  {"max((1,2))", kBrackets, 6},
                  {"1 < 2 ? 1 : 2)", kBrackets, 13}});
}

TEST(ParserErrorTest, WordsThatAreNoCast) {
  expectFailures({{"(long long)1", kSyntax, 1},
                  {"(long)1", kSyntax, 1},
                  {"(float)1", kSyntax, 1},
                  {"(Int)1", kSyntax, 1},
                  {"( int)1", kSyntax, 2},
                  {"(int )1", kSyntax, 1},
                  {"(int", kSyntax, 1}});
}

TEST(ParserErrorTest, FunctionCalls) {
  expectFailures({{"max()", kBrackets, 4},
                  {"max(1,)", kBrackets, 6},
                  {"max(,1)", kSyntax, 4},
                  {"max(1,,2)", kSyntax, 6},
                  {"max(1, 2", kScanner, 8},
                  {"max(1", kScanner, 5},
                  {"max(", kScanner, 4},
                  {"max(  ", kScanner, 6},
                  {"max(1,", kScanner, 6},
                  {"max(1;2)", kScanner, 5},
                  {"max(;2)", kScanner, 4},
                  {"max(1 = 2)", kScanner, 6},
                  {"max(1:2)", kSyntax, 5},
                  {"max(1 2)", kSyntax, 6},
                  {"1 + sqrt(2)", kOverload, 4},
                  {"max(1, 2.0)", kOverload, 0},
                  {"max(1)", kOverload, 0},
                  {"max(sqrt(1), 2)", kOverload, 4}});
}

TEST(ParserErrorTest, Conditionals) {
  expectFailures({{"? 1 : 2", kCondition, 0},
                  {"(? 1 : 2)", kCondition, 1},
                  {"1 < 2 ?", kTrue, 7},
                  {"1 < 2 ? : 2", kTrue, 8},
                  {"1 < 2 ? )", kTrue, 8},
                  {"1 < 2 ? 1", kSyntax, 9},
                  {"1 < 2 ? 1 = 2", kSyntax, 10},
                  {"(1 < 2 ? 1) : 2", kSyntax, 10},
                  {"1 < 2 ? 1 :", kFalse, 11},
                  {"1 < 2 ? 1 : : 2", kFalse, 12},
                  {"1 < 2 ? 1 : )", kFalse, 12},
                  {"2 > 1 ? 10 : 20 : 30", kSyntax, 16},
                  {"(2 > 1 ? 10 : 20 : 30)", kSyntax, 17},
                  {":", kSyntax, 0},
                  {"1 : 2", kSyntax, 2},
                  {"1 + 2 : 3", kSyntax, 6},
                  {"1 < 2 ? 1 ? 2 : 3", kSyntax, 17}});
}

TEST(ParserErrorTest, Conditional_NameThatEndsWithAColon_CountsAsTheColon) {
  expectFailures({{"1 < 2 ? %a:", kFalse, 11}, {"1 < 2 ? %a:%", kSyntax, 12}});
}

TEST(ParserErrorTest, UnsupportedOperators) {
  expectFailures({{"(1 < 2) / (1 < 2)", kUnsupported, 8},
                  {"\"a\" - \"b\"", kUnsupported, 4},
                  {"1 * \"b\"", kUnsupported, 2},
                  {"1 / \"b\"", kUnsupported, 2},
                  {"1 && \"b\"", kUnsupported, 2},
                  {"1 || \"b\"", kUnsupported, 2},
                  {"! \"b\"", kUnsupported, 0},
                  {"1 + -\"b\"", kUnsupported, 4},
                  {"-(1 < 2)", kUnsupported, 0}});
}

TEST(ParserErrorTest, FaultsInConstantParts_AreErrorsOfTheBuild) {
  BuilderBase builder;
  expectFailures(builder, {{"1 / 0", "Integer division by zero", 2},
                           {"1.0 / 0", "Integer division by zero", 4},
                           {"1 < 2 ? 3 : 1 / 0", "Integer division by zero", 14},
                           {"1 + mod(7, 0)", "Integer division by zero", 2},
                           {"-2147483648 / -1", "Integer overflow", 12}});
}

TEST(ParserErrorTest, AllErrors_AreRuntimeErrorsWithNothingAdded) {
  const BuilderBase builder;
  try {
    builder.build("1 + foo");
    FAIL() << "nothing thrown";
  } catch (const std::runtime_error &error) {
    EXPECT_STREQ(error.what(), "Syntax error");
    EXPECT_NE(dynamic_cast<const ParserError *>(&error), nullptr);
  }
}

TEST(ParserErrorTest, TextOverTheLimit_IsRefused) {
  const BuilderBase builder;
  std::string text(BuilderBase::kMaximumTextBytes, ' ');
  text[0] = '1';
  EXPECT_NO_THROW(builder.build(text));
  text.push_back(' ');
  EXPECT_EQ(buildFailure(builder, text).message, kSyntax);
}

} // namespace
} // namespace ExpressionBuilder
