#include "ExpressionBuilder/Functions.h"

#include "ExpressionBuilder/tests/TestValue.h"

#include <climits>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
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

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// A builder with the variables that no literal can give: most negative integers, long long values, NaN.
struct Fixture {
  BuilderBase builder;

  Fixture() {
    builder.variables().declare("imin", constant(INT_MIN));
    builder.variables().declare("lmin", constant(LLONG_MIN));
    builder.variables().declare("l7", constant(7LL));
    builder.variables().declare("l3", constant(3LL));
    builder.variables().declare("l5", constant(5000000000LL));
    builder.variables().declare("l1", constant(-1LL));
    builder.variables().declare("l0", constant(0LL));
    builder.variables().declare("nan", constant(kNaN));
  }

  void expect(const std::string &text, const Value &expected) const {
    const Value value = builtValue(builder, text);
    EXPECT_TRUE(value == expected) << text << " is " << shown(value) << ", not " << shown(expected);
  }
};

TEST(FunctionsTest, MathLibrary_OneArgument) {
  const BuilderBase builder;
  struct Row {
    const char *text;
    double expected;
  };
  const std::vector<Row> rows = {
      {"sin(0.5)", 0.479425538604203},
      {"cos(0.5)", 0.8775825618903728},
      {"tan(0.5)", 0.5463024898437905},
      {"asin(0.5)", 0.5235987755982989},
      {"acos(0.5)", 1.0471975511965979},
      {"atan(0.5)", 0.4636476090008061},
      {"sinh(0.5)", 0.5210953054937474},
      {"cosh(0.5)", 1.1276259652063807},
      {"tanh(0.5)", 0.46211715726000973},
      {"asinh(0.5)", 0.48121182505960347},
      {"acosh(2.0)", 1.3169578969248166},
      {"atanh(0.5)", 0.5493061443340549},
      {"sqrt(2.25)", 1.5},
      {"cbrt(27.0)", 3.0},
      {"exp(1.0)", 2.718281828459045},
      {"log(10.0)", 2.302585092994046},
      {"log10(1000.0)", 3.0},
      {"abs(-3.0)", 3.0},
      {"abs(3.0)", 3.0},
  };
  for (const Row &row : rows) {
    const Value value = builtValue(builder, row.text);
    ASSERT_TRUE(std::holds_alternative<double>(value)) << row.text;
    EXPECT_DOUBLE_EQ(std::get<double>(value), row.expected) << row.text;
  }
}

TEST(FunctionsTest, MathLibrary_TwoArguments) {
  const Fixture f;
  f.expect("hypot(3.0, 4.0)", 5.0);
  f.expect("pow(2.0, 10.0)", 1024.0);
  f.expect("atan2(1.0, 0.0)", 1.5707963267948966);
  f.expect("atan2(0.0, 1.0)", 0.0);
  f.expect("mod(7.5, 2.0)", 1.5);
  f.expect("mod(-7.5, 2.0)", -1.5);
}

TEST(FunctionsTest, DomainErrors_GiveTheLibrarysValue) {
  const BuilderBase builder;
  EXPECT_TRUE(std::isnan(std::get<double>(builtValue(builder, "sqrt(-1.0)"))));
  EXPECT_TRUE(std::isnan(std::get<double>(builtValue(builder, "mod(1.0, 0.0)"))));
  EXPECT_EQ(std::get<double>(builtValue(builder, "log(0.0)")), -std::numeric_limits<double>::infinity());
}

TEST(FunctionsTest, Mod_Integers) {
  const Fixture f;
  f.expect("mod(7, 3)", 1);
  f.expect("mod(-7, 3)", -1);
  f.expect("mod(7, -3)", 1);
  f.expect("mod(%l7%, %l3%)", 1LL);
  f.expect("mod(-%l7%, %l3%)", -1LL);
}

TEST(FunctionsTest, Mod_ByZero_ThrowsWhenEvaluated) {
  const Fixture f;
  const auto intCall = f.builder.build("mod(7, 0)");
  const auto longCall = f.builder.build("mod(%l7%, %l0%)");
  EXPECT_EQ(errorOf([&] { valueOf(*intCall); }), "Integer division by zero");
  EXPECT_EQ(errorOf([&] { valueOf(*longCall, f.builder.variables()); }), "Integer division by zero");
}

TEST(FunctionsTest, Mod_MostNegativeByMinusOne_IsZero) {
  const Fixture f;
  f.expect("mod(%imin%, -1)", 0);
  f.expect("mod(%lmin%, %l1%)", 0LL);
}

TEST(FunctionsTest, Abs_Integers_MostNegativeStaysItself) {
  const Fixture f;
  f.expect("abs(-3)", 3);
  f.expect("abs(3)", 3);
  f.expect("abs(%imin%)", INT_MIN);
  f.expect("abs(%l1%)", 1LL);
  f.expect("abs(%l5%)", 5000000000LL);
  f.expect("abs(%lmin%)", LLONG_MIN);
}

TEST(FunctionsTest, Clamp_TestsTheUpperBoundFirst) {
  const Fixture f;
  f.expect("clamp(5, 0, 3)", 3);
  f.expect("clamp(-1, 0, 3)", 0);
  f.expect("clamp(2, 0, 3)", 2);
  f.expect("clamp(2, 3, 1)", 1);
  f.expect("clamp(0, 3, 1)", 3);
  f.expect("clamp(1, 3, 1)", 3);
  f.expect("clamp(5.5, 0.0, 3.5)", 3.5);
  f.expect("clamp(-1.5, 0.5, 3.5)", 0.5);
  f.expect("clamp(2.0, 3.0, 1.0)", 1.0);
  f.expect("clamp(0.0, 3.0, 1.0)", 3.0);
  f.expect("clamp(%l5%, %l3%, %l7%)", 7LL);
  f.expect("clamp(%l1%, %l3%, %l7%)", 3LL);
}

TEST(FunctionsTest, Clamp_NaN_PassesThrough) {
  const Fixture f;
  EXPECT_TRUE(std::isnan(std::get<double>(builtValue(f.builder, "clamp(%nan%, 0.0, 1.0)"))));
}

TEST(FunctionsTest, MaxAndMin_EveryType) {
  const Fixture f;
  f.expect("max(2, 3)", 3);
  f.expect("max(3, 2)", 3);
  f.expect("min(2, 3)", 2);
  f.expect("min(3, 2)", 2);
  f.expect("max(2.5, 3.5)", 3.5);
  f.expect("max(3.5, 2.5)", 3.5);
  f.expect("min(2.5, 3.5)", 2.5);
  f.expect("min(3.5, 2.5)", 2.5);
  f.expect("max(%l5%, %l7%)", 5000000000LL);
  f.expect("max(%l7%, %l5%)", 5000000000LL);
  f.expect("min(%l5%, %l7%)", 7LL);
  f.expect("min(%l7%, %l5%)", 7LL);
}

TEST(FunctionsTest, MaxAndMin_NaN_GiveTheFirstArgument) {
  const Fixture f;
  f.expect("max(1.0, %nan%)", 1.0);
  f.expect("min(1.0, %nan%)", 1.0);
  EXPECT_TRUE(std::isnan(std::get<double>(builtValue(f.builder, "max(%nan%, 1.0)"))));
  EXPECT_TRUE(std::isnan(std::get<double>(builtValue(f.builder, "min(%nan%, 1.0)"))));
}

TEST(FunctionsTest, NoOverload_ConvertsItsArguments) {
  const Fixture f;
  const std::string message = "Function does not support the current argument types";
  for (const char *text : {"sqrt(2)", "sqrt(1 < 2)", "sqrt(\"4\")", "sqrt(%l7%)", "max(1)", "max(1, 2, 3)",
                           "max(2, 3.0)", "max(2.0, 3)", "max(%l7%, 3)", "max(1 < 2, 1 < 2)", "abs(\"1\")",
                           "clamp(1, 2)", "pow(2, 3)", "hypot(3.0)", "mod(7, %l3%)"}) {
    EXPECT_EQ(buildFailure(f.builder, text).message, message) << text;
  }
}

TEST(FunctionsTest, FunctionTable_HasEveryNameWithItsOverloads) {
  FunctionTable table;
  enterDefaultFunctions<double>(table);
  EXPECT_EQ(table.size(), 25U);
  const std::vector<ValueType> one(1, ValueType::Double);
  const std::vector<ValueType> two(2, ValueType::Double);
  const std::vector<ValueType> three(3, ValueType::Double);
  for (const char *name : {"sin", "cos", "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh", "asinh",
                           "acosh", "atanh", "sqrt", "cbrt", "exp", "log", "log10", "abs"}) {
    EXPECT_EQ(table[name].size(), 1U) << name;
    EXPECT_EQ(table[name].count(one), 1U) << name;
  }
  for (const char *name : {"hypot", "atan2", "pow", "mod", "max", "min"}) {
    EXPECT_EQ(table[name].size(), 1U) << name;
    EXPECT_EQ(table[name].count(two), 1U) << name;
  }
  EXPECT_EQ(table["clamp"].count(three), 1U);
  EXPECT_EQ(table.size(), 25U);

  enterDefaultFunctions<int>(table);
  enterDefaultFunctions<long long>(table);
  EXPECT_EQ(table.size(), 25U);
  for (const char *name : {"mod", "abs", "clamp", "max", "min"}) {
    EXPECT_EQ(table[name].size(), 3U) << name;
  }
  EXPECT_EQ(table["abs"].count({ValueType::LongLong}), 1U);
  EXPECT_EQ(table["clamp"].count({ValueType::Int, ValueType::Int, ValueType::Int}), 1U);
}

TEST(FunctionsTest, Construct_GivesAFunctionNodeThatOwnsTheArguments) {
  const BuilderBase builder;
  const ElementFunctionConstructorOverload<Maximum<int>, int, int> overload;
  FunctionArguments arguments;
  arguments.push_back(constant(1));
  arguments.push_back(constant(2));
  const ElementAbstract *const first = arguments[0].get();
  const ElementAbstract *const second = arguments[1].get();
  std::unique_ptr<ElementAbstract> node;
  overload.construct(node, builder, arguments);
  using Call = ElementFunctional<Maximum<int>, int, int>;
  const auto *const call = dynamic_cast<const Call *>(node.get());
  ASSERT_NE(call, nullptr);
  EXPECT_EQ(call->argument<0>(), first);
  EXPECT_EQ(call->argument<1>(), second);
  EXPECT_EQ(arguments[0], nullptr);
  EXPECT_EQ(arguments[1], nullptr);
}

TEST(FunctionsTest, Construct_WrongNumberOfArguments_Throws) {
  const BuilderBase builder;
  const ElementFunctionConstructorOverload<Maximum<int>, int, int> overload;
  FunctionArguments arguments;
  arguments.push_back(constant(1));
  std::unique_ptr<ElementAbstract> node;
  EXPECT_EQ(errorOf([&] { overload.construct(node, builder, arguments); }), "Invalid number of arguments");
  EXPECT_EQ(node, nullptr);
}

TEST(FunctionsTest, Construct_WrongArgumentType_Throws) {
  const BuilderBase builder;
  const ElementFunctionConstructorOverload<Maximum<int>, int, int> overload;
  FunctionArguments arguments;
  arguments.push_back(constant(1));
  arguments.push_back(constant(1.0));
  std::unique_ptr<ElementAbstract> node;
  EXPECT_EQ(errorOf([&] { overload.construct(node, builder, arguments); }), "logic_error: Invalid Cast");
}

} // namespace
} // namespace ExpressionBuilder
