#include "ExpressionBuilder/Expression.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <string>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;

using DoubleExpression = Expression<double, SimpleVariableCollection>;

struct Fixture {
  BuilderSingleType<double> builder;

  Fixture() {
    builder.variables().declare("x", constant(2.5));
    builder.variables().declare("i", constant(7));
  }
};

TEST(ExpressionTest, WithoutRoot_IsNothing) {
  const DoubleExpression expression(nullptr);
  EXPECT_FALSE(expression.isValid());
  EXPECT_FALSE(expression.isConstantRoot());
  EXPECT_FALSE(expression.isConstant());
  EXPECT_EQ(expression.root(), nullptr);
}

TEST(ExpressionTest, Evaluate_WithoutRoot_Throws) {
  const DoubleExpression expression(nullptr);
  EXPECT_EQ(errorOf([&] { expression.evaluate(); }), "Invalid expression");
}

TEST(ExpressionTest, Clone_WithoutRoot_HasNone) {
  const DoubleExpression expression(nullptr);
  EXPECT_FALSE(expression.clone()->isValid());
}

TEST(ExpressionTest, Evaluate_UsesTheVariablesValues) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  EXPECT_TRUE(expression->isValid());
  EXPECT_EQ(expression->evaluate(), 5.0);
  expression->variables().replace("x", constant(4.0));
  EXPECT_EQ(expression->evaluate(), 8.0);
}

TEST(ExpressionTest, Evaluate_WholeNumberRoot_IsConverted) {
  const Fixture f;
  EXPECT_EQ(f.builder.buildExpression("%i% / 2")->evaluate(), 3.0);
}

TEST(ExpressionTest, MissingVariable_MakesItInvalid) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  expression->variables().clear();
  EXPECT_FALSE(expression->isValid());
  EXPECT_EQ(errorOf([&] { expression->evaluate(); }), "Invalid expression");
}

TEST(ExpressionTest, VariableOfAnotherType_MakesItInvalid) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  expression->variables().clear();
  expression->variables().declare("x", constant(1));
  EXPECT_FALSE(expression->isValid());
  EXPECT_EQ(errorOf([&] { expression->evaluate(); }), "Invalid expression");
}

TEST(ExpressionTest, CircularVariables_MakeItInvalid) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  expression->variables().replace("x", makeVariable(ValueType::Double, "x"));
  EXPECT_FALSE(expression->isValid());
  EXPECT_EQ(errorOf([&] { expression->evaluate(); }), "Invalid expression");
}

TEST(ExpressionTest, FaultWhileEvaluating_PassesThrough) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("1 / %i%");
  expression->variables().replace("i", constant(0));
  EXPECT_TRUE(expression->isValid());
  EXPECT_EQ(errorOf([&] { expression->evaluate(); }), "Integer division by zero");
}

TEST(ExpressionTest, IsConstantRoot_ConstantNodeOnly) {
  const Fixture f;
  EXPECT_TRUE(f.builder.buildExpression("1 + 2")->isConstantRoot());
  EXPECT_FALSE(f.builder.buildExpression("sqrt(4.0)")->isConstantRoot());
  EXPECT_FALSE(f.builder.buildExpression("%x%")->isConstantRoot());
}

TEST(ExpressionTest, IsConstant_AnyRootWithoutVariables) {
  const Fixture f;
  EXPECT_TRUE(f.builder.buildExpression("1 + 2")->isConstant());
  EXPECT_TRUE(f.builder.buildExpression("sqrt(4.0)")->isConstant());
  EXPECT_FALSE(f.builder.buildExpression("%x%")->isConstant());
}

TEST(ExpressionTest, Clone_IsIndependent) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  const auto copy = expression->clone();
  expression->variables().replace("x", constant(4.0));
  EXPECT_EQ(copy->evaluate(), 5.0);
  EXPECT_EQ(expression->evaluate(), 8.0);
  auto *const typed = dynamic_cast<DoubleExpression *>(copy.get());
  ASSERT_NE(typed, nullptr);
  EXPECT_NE(typed->root(), expression->root());
  EXPECT_TRUE(typed->root()->equals(*expression->root()));
  typed->variables().replace("x", constant(1.0));
  EXPECT_EQ(copy->evaluate(), 2.0);
  EXPECT_EQ(expression->evaluate(), 8.0);
}

TEST(ExpressionTest, Copy_IsAClone) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x% * 2.0");
  const DoubleExpression copy(*expression);
  expression->variables().replace("x", constant(4.0));
  EXPECT_EQ(copy.evaluate(), 5.0);
}

TEST(ExpressionTest, Variables_ThroughTheBase_AreTheEmbeddedOnes) {
  const Fixture f;
  const auto expression = f.builder.buildExpression("%x%");
  ExpressionBase<double> &base = *expression;
  const ExpressionBase<double> &constBase = base;
  EXPECT_EQ(&base.variables(), &expression->variables());
  EXPECT_EQ(&constBase.variables(), &expression->variables());
}

TEST(ExpressionTest, OtherCollections_CanBeEmbedded) {
  const Expression<int, EmptyVariableCollection> expression(makeConstant<int>(7));
  EXPECT_EQ(expression.evaluate(), 7);
  EXPECT_EQ(expression.clone()->evaluate(), 7);
}

template <class T> T builtAndEvaluated(const std::string &text) {
  return BuilderSingleType<T>().buildExpression(text)->evaluate();
}

TEST(ExpressionTest, EveryValueType) {
  EXPECT_EQ(builtAndEvaluated<double>("5 / 2"), 2.0);
  EXPECT_EQ(builtAndEvaluated<int>("2.5"), 2);
  EXPECT_EQ(builtAndEvaluated<bool>("2.5"), true);
  EXPECT_EQ(builtAndEvaluated<std::string>("2.5"), "2.5");
  EXPECT_EQ(builtAndEvaluated<long long>("2.5"), 2LL);
}

/// A collection whose look-ups fail in a way that is no std::exception.
class RudeCollection : public VariableCollectionAbstract {
public:
  const ElementAbstract *beginLookup(const std::string & /*name*/) const override { throw 7; }
};

TEST(ExpressionTest, IsValid_SwallowsEveryException) {
  const Expression<double, RudeCollection> expression(
      elementAs<double>(makeVariable(ValueType::Double, "x")));
  EXPECT_FALSE(expression.isValid());
  EXPECT_EQ(errorOf([&] { expression.evaluate(); }), "Invalid expression");
}

} // namespace
} // namespace ExpressionBuilder
