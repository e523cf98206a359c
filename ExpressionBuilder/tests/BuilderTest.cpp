#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementVariable.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::buildFailure;
using Testing::builtValue;
using Testing::constant;
using Testing::errorOf;
using Testing::shown;
using Testing::Value;
using Testing::valueOf;
using namespace std::string_literals;

struct Parsed {
  std::unique_ptr<ElementAbstract> element;
  std::size_t consumed;
};

Parsed parse(const BuilderInterface &builder, const std::string &text, int level, bool sameLevel,
             ParseMode mode) {
  Parsed parsed{nullptr, 0};
  TextPosition position = text.begin();
  builder.parseExpression(parsed.element, position, text.end(), level, sameLevel, mode);
  parsed.consumed = static_cast<std::size_t>(position - text.begin());
  return parsed;
}

Parsed parseLiteral(const BuilderInterface &builder, const std::string &text) {
  Parsed parsed{nullptr, 0};
  TextPosition position = text.begin();
  builder.parseLiteral(parsed.element, position, text.end());
  parsed.consumed = static_cast<std::size_t>(position - text.begin());
  return parsed;
}

void expectParsed(const Parsed &parsed, const Value &value, std::size_t consumed) {
  ASSERT_NE(parsed.element, nullptr);
  EXPECT_TRUE(valueOf(*parsed.element) == value) << shown(valueOf(*parsed.element));
  EXPECT_EQ(parsed.consumed, consumed);
}

TEST(BuilderTest, NewBuilder_FoldsAndAllowsNoEscapes) {
  const BuilderBase builder;
  EXPECT_TRUE(builder.foldConstants());
  EXPECT_FALSE(builder.allowEscapes());
  EXPECT_TRUE(builder.variables().empty());
}

TEST(BuilderTest, FunctionNames_InByteOrder) {
  const BuilderBase builder;
  EXPECT_EQ(
      builder.functionNames(),
      (std::vector<std::string>{"abs",   "acos", "acosh", "asin", "asinh", "atan", "atan2", "atanh", "cbrt",
                                "clamp", "cos",  "cosh",  "exp",  "hypot", "log",  "log10", "max",   "min",
                                "mod",   "pow",  "sin",   "sinh", "sqrt",  "tan",  "tanh"}));
}

TEST(BuilderTest, ParseExpression_LevelGatesOperators) {
  const BuilderBase builder;
  expectParsed(parse(builder, "1 * 2", 1, true, ParseMode::Whole), 2, 5);
  expectParsed(parse(builder, "1 * 2", 1, false, ParseMode::Whole), 1, 2);
  expectParsed(parse(builder, "1 * 2 + 3", 1, true, ParseMode::Whole), 2, 6);
  expectParsed(parse(builder, "1 * 2 + 3", 2, false, ParseMode::Whole), 2, 6);
  expectParsed(parse(builder, "1 + 2 < 4", 2, true, ParseMode::Whole), 3, 6);
  expectParsed(parse(builder, "1 < 2 == 2", 3, true, ParseMode::Whole), true, 6);
  expectParsed(parse(builder, "1 == 1 && 0", 4, true, ParseMode::Whole), true, 7);
  expectParsed(parse(builder, "1 == 1 && 0", 7, true, ParseMode::Whole), true, 7);
  expectParsed(parse(builder, "1 && 0 || 1", 8, true, ParseMode::Whole), false, 7);
  expectParsed(parse(builder, "1 || 0 ? 1 : 2", 9, true, ParseMode::Whole), true, 7);
  expectParsed(parse(builder, "1 ? 2 : 3", 10, false, ParseMode::Whole), 1, 2);
  expectParsed(parse(builder, "1 ? 2 : 3", 10, true, ParseMode::Whole), 2, 9);
  expectParsed(parse(builder, "1 ? 2 : 3)", 10, true, ParseMode::Whole), 2, 9);
}

TEST(BuilderTest, ParseExpression_PrefixAtLevelZero) {
  const BuilderBase builder;
  expectParsed(parse(builder, "!0 * 2", 0, true, ParseMode::Whole), true, 3);
  const Parsed nothing = parse(builder, "!0", 0, false, ParseMode::Whole);
  EXPECT_EQ(nothing.element, nullptr);
  EXPECT_EQ(nothing.consumed, 0U);
}

TEST(BuilderTest, ParseExpression_BracketIsTakenAtEveryLevel) {
  const BuilderBase builder;
  expectParsed(parse(builder, "(1 + 2) * 3", 0, false, ParseMode::Whole), 3, 8);
}

TEST(BuilderTest, ParseExpression_NothingParsed_IsEmpty) {
  const BuilderBase builder;
  const Parsed parsed = parse(builder, "  = 1", 11, true, ParseMode::Whole);
  EXPECT_EQ(parsed.element, nullptr);
  EXPECT_EQ(parsed.consumed, 2U);
}

TEST(BuilderTest, ParseExpression_ModeBracket_EndsBehindTheBracket) {
  const BuilderBase builder;
  expectParsed(parse(builder, "1 + 2) * 3", 11, true, ParseMode::Bracket), 3, 6);
}

TEST(BuilderTest, ParseExpression_ModeArgument_EndsOnCommaOrBracket) {
  const BuilderBase builder;
  expectParsed(parse(builder, "1 + 2, 3", 11, true, ParseMode::Argument), 3, 5);
  expectParsed(parse(builder, "1 + 2) * 3", 11, true, ParseMode::Argument), 3, 5);
}

TEST(BuilderTest, ParseExpression_AtLevelTen_ConsumesTheColon) {
  const BuilderBase builder;
  expectParsed(parse(builder, "1 + 2 : 3", 10, true, ParseMode::Whole), 3, 7);
  expectParsed(parse(builder, "1 + 2 : 3", 10, false, ParseMode::Whole), 3, 6);
  expectParsed(parse(builder, "1 + 2 : 3", 9, true, ParseMode::Whole), 3, 6);
}

TEST(BuilderTest, ParseExpression_OffsetsCountFromTheBeginningOfTheCall) {
  const BuilderBase builder;
  const std::string text = "1 + 2 +";
  TextPosition position = text.begin() + 4;
  std::unique_ptr<ElementAbstract> result;
  try {
    builder.parseExpression(result, position, text.end(), 11, true, ParseMode::Whole);
    FAIL() << "nothing thrown";
  } catch (const ParserError &error) {
    EXPECT_EQ(error.offset(), 3U);
  }
}

TEST(BuilderTest, ParseLiteral_EveryKind) {
  const BuilderBase builder;
  expectParsed(parseLiteral(builder, "42 + 1"), 42, 2);
  expectParsed(parseLiteral(builder, "-42"), -42, 3);
  expectParsed(parseLiteral(builder, "+2.5"), 2.5, 4);
  expectParsed(parseLiteral(builder, "-1e-5x"), -0.00001, 5);
  expectParsed(parseLiteral(builder, "\"a b\" c"), "a b"s, 5);
  expectParsed(parseLiteral(builder, "true"), true, 4);
  expectParsed(parseLiteral(builder, "false "), false, 5);
}

TEST(BuilderTest, ParseLiteral_AnythingElse_YieldsNothing) {
  const BuilderBase builder;
  for (const char *text : {"", "True", "truely", "true-1", "t", " 1", "%x%", "(1)", "!", "\xC3\xA4"}) {
    const Parsed parsed = parseLiteral(builder, text);
    EXPECT_EQ(parsed.element, nullptr) << text;
    EXPECT_EQ(parsed.consumed, 0U) << text;
  }
}

TEST(BuilderTest, ParseLiteral_UnterminatedString_YieldsNothing) {
  const BuilderBase builder;
  EXPECT_EQ(parseLiteral(builder, "\"abc").element, nullptr);
}

TEST(BuilderTest, ParseLiteral_NoNumber_Throws) {
  const BuilderBase builder;
  for (const char *text : {".", "-", "+", "-.", "+e5"}) {
    EXPECT_EQ(errorOf([&] { parseLiteral(builder, text); }), "Syntax error") << text;
  }
  EXPECT_EQ(errorOf([&] { parseLiteral(builder, "2147483648"); }), "Number out of range");
}

TEST(BuilderTest, Escapes_Off_BackslashIsAnOrdinaryByte) {
  BuilderBase builder;
  builder.variables().declare("a\\", constant(5));
  EXPECT_TRUE(builtValue(builder, "\"a\\\" + \"b\"") == Value("a\\b"s));
  EXPECT_TRUE(builtValue(builder, "%a\\% + 1") == Value(6));
}

TEST(BuilderTest, Escapes_On_BackslashCarriesTheLiteralToTheEnd) {
  BuilderBase builder;
  builder.setAllowEscapes(true);
  EXPECT_TRUE(builtValue(builder, "\"a\\\" + \\\"b\"") == Value("a\" + \\\"b\""s));
  EXPECT_TRUE(builtValue(builder, "\"a\\") == Value("a"s));
  EXPECT_TRUE(builtValue(builder, "\"a\" + \"b\"") == Value("ab"s));
  EXPECT_EQ(buildFailure(builder, "\"abc").message, "Syntax error");
}

TEST(BuilderTest, Escapes_On_BackslashCarriesTheNameToTheEnd) {
  BuilderBase builder;
  builder.setAllowEscapes(true);
  builder.variables().declare("ab% + 1", constant(5));
  builder.variables().declare("x", constant(7));
  EXPECT_TRUE(builtValue(builder, "%a\\b% + 1") == Value(5));
  EXPECT_TRUE(builtValue(builder, "%x% + 1") == Value(8));
}

TEST(BuilderTest, Fold_On_ConstantPartsBecomeConstants) {
  const BuilderBase builder;
  for (const char *text : {"1 + 2", "2 * pi + 1", "-(5)", "!0", "(int)2.5", "1 < 2 ? 1 : 2", "-sqrt(4.0)"}) {
    EXPECT_EQ(builder.build(text)->kind(), ElementKind::Constant) << text;
  }
}

TEST(BuilderTest, Fold_On_FunctionCallItself_StaysACall) {
  const BuilderBase builder;
  const auto root = builder.build("sqrt(4.0)");
  EXPECT_EQ(root->kind(), ElementKind::Function);
  EXPECT_TRUE(root->isConstant());
}

TEST(BuilderTest, Fold_On_PartsWithVariablesStay) {
  BuilderBase builder;
  builder.variables().declare("x", constant(2));
  EXPECT_EQ(builder.build("%x% + 1")->kind(), ElementKind::Function);
  EXPECT_EQ(builder.build("%x%")->kind(), ElementKind::Variable);
  EXPECT_EQ(builder.build("%x% ? 1 : 2")->kind(), ElementKind::Conditional);
}

TEST(BuilderTest, Fold_On_ConstantConditionWithConstantBranch_DropsTheVariable) {
  BuilderBase builder;
  builder.variables().declare("x", constant(2));
  EXPECT_EQ(builder.build("1 < 2 ? 1 : %x%")->kind(), ElementKind::Constant);
  EXPECT_EQ(builder.build("1 < 2 ? %x% : 1")->kind(), ElementKind::Conditional);
}

TEST(BuilderTest, Fold_Off_KeepsTheNodesAndTheirErrors) {
  BuilderBase builder;
  builder.setFoldConstants(false);
  EXPECT_EQ(builder.build("1 + 2")->kind(), ElementKind::Function);
  EXPECT_EQ(builder.build("(int)2.5")->kind(), ElementKind::Function);
  EXPECT_EQ(builder.build("1 < 2 ? 1 : 2")->kind(), ElementKind::Conditional);
  const auto root = builder.build("1 / 0");
  EXPECT_EQ(errorOf([&] { valueOf(*root); }), "Integer division by zero");
}

TEST(BuilderTest, Fold_Off_BranchNotTaken_DoesNoHarm) {
  BuilderBase builder;
  builder.setFoldConstants(false);
  EXPECT_TRUE(builtValue(builder, "1 < 2 ? 3 : 1 / 0") == Value(3));
}

TEST(BuilderTest, Conditional_TrueBranchDividingByAVariable_DoesNoHarmWhenNotTaken) {
  BuilderBase builder;
  builder.variables().declare("zero", constant(0));
  EXPECT_TRUE(builtValue(builder, "%zero% ? 1 / %zero% : 5") == Value(5));
}

TEST(BuilderTest, LogicalAnd_MissingRightVariable_ThrowsAlthoughTheLeftIsFalse) {
  BuilderBase builder;
  builder.variables().declare("x", constant(1));
  const auto andNode = builder.build("0 && %x%");
  const auto orNode = builder.build("1 || %x%");
  const SimpleVariableCollection without;
  EXPECT_THROW(valueOf(*andNode, without), MissingVariable);
  EXPECT_THROW(valueOf(*orNode, without), MissingVariable);
}

TEST(BuilderTest, Variable_TakesTheTypeThatItHasWhileParsing) {
  BuilderBase builder;
  builder.variables().declare("x", constant(2.5));
  const auto root = builder.build("%x%");
  builder.variables().clear();
  builder.variables().declare("x", constant(2));
  EXPECT_EQ(root->type(), ValueType::Double);
  EXPECT_EQ(errorOf([&] { valueOf(*root, builder.variables()); }), "Variable is of wrong type");
}

TEST(BuilderTest, RegisterConstant_IsCopiedAtEveryUse) {
  BuilderBase builder;
  builder.registerConstant("answer", constant(42));
  EXPECT_TRUE(builtValue(builder, "answer + answer") == Value(84));
  builder.registerConstant("answer", constant(43));
  EXPECT_TRUE(builtValue(builder, "answer") == Value(43));
  EXPECT_EQ(errorOf([&] { builder.registerConstant("none", nullptr); }), "logic_error: Invalid Cast");
}

struct Twice {
  int operator()(int a) const { return 2 * a; }
};

TEST(BuilderTest, RegisterOverload_MakesAFunctionKnown) {
  BuilderBase builder;
  builder.registerOverload("twice", {ValueType::Int},
                           std::make_unique<ElementFunctionConstructorOverload<Twice, int>>());
  EXPECT_TRUE(builtValue(builder, "twice(21)") == Value(42));
  const std::vector<std::string> names = builder.functionNames();
  EXPECT_NE(std::find(names.begin(), names.end(), "twice"), names.end());
}

TEST(BuilderTest, RegisterOverload_WithoutConstructor_FailsTheCall) {
  BuilderBase builder;
  builder.registerOverload("hollow", {ValueType::Int}, nullptr);
  const Testing::Failure failure = buildFailure(builder, "1 + hollow(1)");
  EXPECT_EQ(failure.message, "Syntax Error : No Overload");
  EXPECT_EQ(failure.offset, 4U);
}

TEST(BuilderTest, RegisterOverload_InconsistentTable_FailsTheCall) {
  BuilderBase builder;
  builder.registerOverload("twice", {ValueType::Int, ValueType::Int},
                           std::make_unique<ElementFunctionConstructorOverload<Twice, int>>());
  EXPECT_EQ(buildFailure(builder, "twice(1, 2)").message, "Invalid number of arguments");
}

TEST(BuilderTest, CastTo_SameType_GivesTheElementItself) {
  const BuilderBase builder;
  auto element = constant(2.5);
  const ElementAbstract *const before = element.get();
  const std::unique_ptr<Element<double>> same = builder.castTo<double>(std::move(element));
  EXPECT_EQ(same.get(), before);
}

TEST(BuilderTest, CastTo_AnotherType_FoldsConstants) {
  BuilderBase builder;
  EXPECT_EQ(builder.castTo<int>(constant(2.5))->kind(), ElementKind::Constant);
  EXPECT_TRUE(valueOf(*builder.castTo<int>(constant(2.5))) == Value(2));
  EXPECT_EQ(builder.castTo<int>(makeVariable(ValueType::Double, "x"))->kind(), ElementKind::Function);
  builder.setFoldConstants(false);
  EXPECT_EQ(builder.castTo<int>(constant(2.5))->kind(), ElementKind::Function);
}

TEST(BuilderTest, CastTo_EveryType) {
  const BuilderBase builder;
  EXPECT_TRUE(valueOf(*builder.castTo<double>(constant(2))) == Value(2.0));
  EXPECT_TRUE(valueOf(*builder.castTo<int>(constant(2.5))) == Value(2));
  EXPECT_TRUE(valueOf(*builder.castTo<bool>(constant(2))) == Value(true));
  EXPECT_TRUE(valueOf(*builder.castTo<std::string>(constant(2))) == Value("2"s));
  EXPECT_TRUE(valueOf(*builder.castTo<long long>(constant(2))) == Value(2LL));
}

/// Reports a type code that its class does not have.
class LyingElement : public ElementVariable<double> {
public:
  explicit LyingElement(ValueType type) : ElementVariable<double>("x"), m_type(type) {}
  ValueType type() const override { return m_type; }

private:
  ValueType m_type;
};

TEST(BuilderTest, CastTo_InconsistentElement_Throws) {
  const BuilderBase builder;
  const std::string message = "logic_error: Invalid Cast";
  const auto lying = [](int code) {
    return std::make_unique<LyingElement>(static_cast<ValueType>(code));
  };
  EXPECT_EQ(errorOf([&] { builder.castTo<int>(lying(2)); }), message);
  EXPECT_EQ(errorOf([&] { builder.castTo<double>(lying(2)); }), message);
  EXPECT_EQ(errorOf([&] { builder.castTo<double>(lying(0)); }), message);
  EXPECT_EQ(errorOf([&] { builder.castTo<double>(lying(6)); }), message);
  EXPECT_EQ(errorOf([&] { builder.castTo<double>(nullptr); }), message);
}

template <class T> std::string singleTypeValue(const std::string &text) {
  const BuilderSingleType<T> builder;
  return shown(valueOf(*builder.build(text)));
}

TEST(BuilderTest, BuilderSingleType_ConvertsTheRootOnly) {
  EXPECT_EQ(singleTypeValue<double>("7/2"), "double 3");
  EXPECT_EQ(singleTypeValue<double>("2 * pi + 1"), "double 7");
  EXPECT_EQ(singleTypeValue<int>("7/2.0"), "int 3");
  EXPECT_EQ(singleTypeValue<bool>("7/2"), "bool 1");
  EXPECT_EQ(singleTypeValue<std::string>("7/2"), "string 3");
  EXPECT_EQ(singleTypeValue<long long>("7/2.0"), "long long 3");
}

TEST(BuilderTest, BuilderSingleType_PartsKeepTheirTypes) {
  const BuilderSingleType<double> builder;
  EXPECT_EQ(buildFailure(builder, "sqrt(4)").message, "Function does not support the current argument types");
  EXPECT_TRUE(builtValue(builder, "(7/2) + (1 < 2 ? 1 : 2)") == Value(4.0));
}

TEST(BuilderTest, BuilderSingleType_ParseExpression_ConvertsItsResult) {
  const BuilderSingleType<double> builder;
  expectParsed(parse(builder, "7/2 + 1", 1, true, ParseMode::Whole), 3.0, 4);
  EXPECT_EQ(parse(builder, "=", 11, true, ParseMode::Whole).element, nullptr);
}

TEST(BuilderTest, BuilderSingleType_ParseLiteral_ConvertsItsResult) {
  const BuilderSingleType<int> builder;
  expectParsed(parseLiteral(builder, "2.5"), 2, 3);
  expectParsed(parseLiteral(builder, "true"), 1, 4);
  EXPECT_EQ(parseLiteral(builder, "\"abc").element, nullptr);
}

TEST(BuilderTest, BuilderSingleType_EmptyRoot_IsNeverCast) {
  const BuilderSingleType<double> builder;
  for (const char *text : {"=", "\t", ".", "\"abc"}) {
    EXPECT_EQ(buildFailure(builder, text).message, "Syntax error") << text;
  }
  EXPECT_EQ(buildFailure(builder, " ").message, "Empty expression");
}

TEST(BuilderTest, BuilderSingleType_FaultWhileTheRootIsConverted_HasItsPlace) {
  BuilderSingleType<double> builder;
  const Testing::Failure failure = buildFailure(builder, "  mod(7, 0)");
  EXPECT_EQ(failure.message, "Integer division by zero");
  EXPECT_EQ(failure.offset, 2U);
  try {
    parse(builder, " mod(7, 0) + 1.0", 1, true, ParseMode::Whole);
    FAIL() << "nothing thrown";
  } catch (const ParserError &error) {
    EXPECT_STREQ(error.what(), "Integer division by zero");
    EXPECT_EQ(error.offset(), 1U);
  }
  builder.setFoldConstants(false);
  EXPECT_NO_THROW(builder.build("mod(7, 0)"));
}

TEST(BuilderTest, Associativity_OfLogicalOperators_NestsToTheLeft) {
  BuilderBase builder;
  builder.variables().declare("x", constant(1));
  EXPECT_TRUE(builder.build("%x% && %x% && %x%")->equals(*builder.build("(%x% && %x%) && %x%")));
  EXPECT_FALSE(builder.build("%x% && %x% && %x%")->equals(*builder.build("%x% && (%x% && %x%)")));
  EXPECT_TRUE(builder.build("%x% || %x% || %x%")->equals(*builder.build("(%x% || %x%) || %x%")));
  EXPECT_FALSE(builder.build("%x% || %x% || %x%")->equals(*builder.build("%x% || (%x% || %x%)")));
}

TEST(BuilderTest, BuildExpression_HasItsOwnVariables) {
  BuilderSingleType<double> builder;
  builder.variables().declare("x", constant(2.5));
  const auto expression = builder.buildExpression("%x% * 2.0");
  builder.variables().clear();
  EXPECT_EQ(expression->evaluate(), 5.0);
  expression->variables().replace("x", constant(3.0));
  EXPECT_EQ(expression->evaluate(), 6.0);
}

TEST(BuilderTest, Build_SameBuilderForManyTexts_KeepsNoState) {
  const BuilderBase builder;
  EXPECT_THROW(builder.build("max(1, (2"), ParserError);
  EXPECT_TRUE(builtValue(builder, "max(1, 2)") == Value(2));
}

} // namespace
} // namespace ExpressionBuilder
