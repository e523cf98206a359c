#include "ExpressionBuilder/ElementConditional.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementFunctional.h"
#include "ExpressionBuilder/ElementVariable.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/Operators.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::Value;
using Testing::valueOf;

using Sum = ElementFunctional<std::plus<double>, double, double>;

std::unique_ptr<Element<double>> number(double value) {
  return std::make_unique<ElementConstant<double>>(value);
}

std::unique_ptr<Element<double>> variable(const std::string &name) {
  return std::make_unique<ElementVariable<double>>(name);
}

std::unique_ptr<Element<bool>> truth(bool value) {
  return std::make_unique<ElementConstant<bool>>(value);
}

/// An application's own node: notes each evaluation.
class NotingElement : public Element<double> {
public:
  NotingElement(std::string name, std::vector<std::string> &notes, std::shared_ptr<int> token = nullptr)
      : m_name(std::move(name)), m_notes(&notes), m_token(std::move(token)) {}

  ElementKind kind() const override { return static_cast<ElementKind>(100); }
  bool isConstant() const override { return false; }
  void validate(const VariableCollectionAbstract & /*collection*/) const override {
    m_notes->push_back("validate " + m_name);
  }
  bool equals(const ElementAbstract &other) const override {
    const auto *const noting = dynamic_cast<const NotingElement *>(&other);
    return noting != nullptr && noting->m_name == m_name;
  }
  double evaluate(const VariableCollectionAbstract & /*collection*/) const override {
    m_notes->push_back(m_name);
    return 1.0;
  }
  std::unique_ptr<Element<double>> clone() const override {
    return std::make_unique<NotingElement>(m_name, *m_notes);
  }

private:
  std::string m_name;
  std::vector<std::string> *m_notes;
  /// Lives as long as the node, for a test that watches it.
  std::shared_ptr<int> m_token;
};

using Notes = std::vector<std::string>;

std::unique_ptr<Element<double>> noting(const std::string &name, Notes &notes) {
  return std::make_unique<NotingElement>(name, notes);
}

/// Claims to be a double and is no Element of any type.
class LyingElement : public ElementAbstract {
public:
  ValueType type() const override { return ValueType::Double; }
  ElementKind kind() const override { return ElementKind::Function; }
  std::unique_ptr<ElementAbstract> cloneAbstract() const override { return std::make_unique<LyingElement>(); }
  bool isConstant() const override { return false; }
  void validate(const VariableCollectionAbstract & /*collection*/) const override {}
  bool equals(const ElementAbstract & /*other*/) const override { return false; }
};

TEST(ElementTest, Kind_CodesOfTheNodeClasses) {
  EXPECT_EQ(static_cast<int>(number(1.0)->kind()), 1);
  EXPECT_EQ(static_cast<int>(Sum(number(1.0), number(2.0)).kind()), 2);
  EXPECT_EQ(static_cast<int>(variable("x")->kind()), 3);
  EXPECT_EQ(static_cast<int>(ElementConditional<double>(truth(true), number(1.0), number(2.0)).kind()), 4);
}

TEST(ElementTest, Type_IsTheCodeOfTheValueType) {
  EXPECT_EQ(ElementConstant<double>(1.0).type(), ValueType::Double);
  EXPECT_EQ(ElementConstant<int>(1).type(), ValueType::Int);
  EXPECT_EQ(ElementConstant<bool>(true).type(), ValueType::Bool);
  EXPECT_EQ(ElementConstant<std::string>("a").type(), ValueType::String);
  EXPECT_EQ(ElementConstant<long long>(1).type(), ValueType::LongLong);
  EXPECT_EQ(ElementVariable<long long>("x").type(), ValueType::LongLong);
  EXPECT_EQ((ElementFunctional<std::less<double>, double, double>(number(1.0), number(2.0)).type()),
            ValueType::Bool);
  EXPECT_EQ(ElementConditional<std::string>(nullptr, nullptr, nullptr).type(), ValueType::String);
}

TEST(ElementTest, IsConstant_FunctionOfConstantsOnly) {
  EXPECT_TRUE(number(1.0)->isConstant());
  EXPECT_FALSE(variable("x")->isConstant());
  EXPECT_TRUE(Sum(number(1.0), number(2.0)).isConstant());
  EXPECT_FALSE(Sum(variable("x"), number(2.0)).isConstant());
  EXPECT_FALSE(Sum(number(1.0), variable("x")).isConstant());
  EXPECT_FALSE(Sum(nullptr, number(1.0)).isConstant());
}

TEST(ElementTest, IsConstant_ConditionalByItsSelectedBranch) {
  using If = ElementConditional<double>;
  EXPECT_TRUE(If(truth(true), number(1.0), variable("x")).isConstant());
  EXPECT_FALSE(If(truth(false), number(1.0), variable("x")).isConstant());
  EXPECT_TRUE(If(truth(false), variable("x"), number(1.0)).isConstant());
  EXPECT_FALSE(If(truth(true), variable("x"), number(1.0)).isConstant());
  EXPECT_FALSE(If(std::make_unique<ElementVariable<bool>>("b"), number(1.0), number(2.0)).isConstant());
  EXPECT_FALSE(If(truth(true), nullptr, number(1.0)).isConstant());
  EXPECT_FALSE(If(nullptr, number(1.0), number(1.0)).isConstant());
}

std::unique_ptr<Element<bool>> conditionDividingByZero() {
  return elementAs<bool>(
      makeBinary(BinaryOperator::Equal, ValueType::Int,
                 makeBinary(BinaryOperator::Divide, ValueType::Int, constant(1), constant(0)), constant(0)));
}

TEST(ElementTest, IsConstant_ConditionThatCannotBeComputed_IsFalse) {
  const ElementConditional<double> conditional(conditionDividingByZero(), number(1.0), number(2.0));
  EXPECT_FALSE(conditional.isConstant());
}

TEST(ElementTest, Validate_ConditionThatCannotBeComputed_ThrowsItsError) {
  const ElementConditional<double> conditional(conditionDividingByZero(), number(1.0), number(2.0));
  EXPECT_EQ(errorOf([&] { conditional.validate(EmptyVariableCollection::instance()); }),
            "Integer division by zero");
  EXPECT_EQ(errorOf([&] { valueOf(conditional); }), "Integer division by zero");
}

TEST(ElementTest, Evaluate_RightOperandBeforeLeft) {
  Notes notes;
  EXPECT_TRUE(valueOf(Sum(noting("left", notes), noting("right", notes))) == Value(2.0));
  EXPECT_EQ(notes, (Notes{"right", "left"}));
}

struct AddThree {
  double operator()(double a, double b, double c) const { return 100.0 * a + 10.0 * b + c; }
};

TEST(ElementTest, Evaluate_FunctionArgumentsLastToFirst) {
  Notes notes;
  const ElementFunctional<AddThree, double, double, double> call(noting("a", notes), noting("b", notes),
                                                                 noting("c", notes));
  EXPECT_TRUE(valueOf(call) == Value(111.0));
  EXPECT_EQ(notes, (Notes{"c", "b", "a"}));
}

TEST(ElementTest, Evaluate_FunctionArgumentsReachTheirParameters) {
  const ElementFunctional<AddThree, double, double, double> call(number(1.0), number(2.0), number(3.0));
  EXPECT_TRUE(valueOf(call) == Value(123.0));
}

TEST(ElementTest, Evaluate_LogicalOperators_ComputeBothOperands) {
  for (const BinaryOperator operation : {BinaryOperator::And, BinaryOperator::Or}) {
    for (const double left : {0.0, 1.0}) {
      Notes notes;
      const auto leftNode = Sum(noting("left", notes), number(left - 1.0)).clone();
      const auto node = makeBinary(operation, ValueType::Double, leftNode->clone(), noting("right", notes));
      valueOf(*node);
      EXPECT_EQ(notes, (Notes{"right", "left"}));
    }
  }
}

TEST(ElementTest, Evaluate_Conditional_ComputesTheSelectedBranchOnly) {
  Notes notes;
  SimpleVariableCollection variables;
  variables.declare("b", constant(true));
  const ElementConditional<double> conditional(std::make_unique<ElementVariable<bool>>("b"),
                                               noting("true", notes), noting("false", notes));
  valueOf(conditional, variables);
  EXPECT_EQ(notes, (Notes{"true"}));
  notes.clear();
  variables.replace("b", constant(false));
  valueOf(conditional, variables);
  EXPECT_EQ(notes, (Notes{"false"}));
}

TEST(ElementTest, Evaluate_ConstantCondition_ComputesTheSelectedBranchOnly) {
  Notes notes;
  valueOf(ElementConditional<double>(truth(false), noting("true", notes), noting("false", notes)));
  EXPECT_EQ(notes, (Notes{"false"}));
}

TEST(ElementTest, Evaluate_MissingVariable_Throws) {
  try {
    valueOf(*variable("speed"));
    FAIL() << "nothing thrown";
  } catch (const MissingVariable &error) {
    EXPECT_STREQ(error.what(), "Missing Variable");
    EXPECT_EQ(error.name(), "speed");
  }
}

TEST(ElementTest, Evaluate_VariableOfAnotherType_Throws) {
  SimpleVariableCollection variables;
  variables.declare("x", constant(1));
  EXPECT_EQ(errorOf([&] { valueOf(*variable("x"), variables); }), "Variable is of wrong type");
}

TEST(ElementTest, Evaluate_VariableWithLyingDefinition_Throws) {
  SimpleVariableCollection variables;
  variables.declare("x", std::make_unique<LyingElement>());
  EXPECT_EQ(errorOf([&] { valueOf(*variable("x"), variables); }), "logic_error: Invalid Cast");
}

TEST(ElementTest, Evaluate_VariableOfEveryType_GivesItsDefinition) {
  SimpleVariableCollection variables;
  variables.declare("d", constant(2.5));
  variables.declare("i", constant(2));
  variables.declare("b", constant(true));
  variables.declare("s", constant(std::string("text")));
  variables.declare("l", constant(5000000000LL));
  EXPECT_TRUE(valueOf(ElementVariable<double>("d"), variables) == Value(2.5));
  EXPECT_TRUE(valueOf(ElementVariable<int>("i"), variables) == Value(2));
  EXPECT_TRUE(valueOf(ElementVariable<bool>("b"), variables) == Value(true));
  EXPECT_TRUE(valueOf(ElementVariable<std::string>("s"), variables) == Value(std::string("text")));
  EXPECT_TRUE(valueOf(ElementVariable<long long>("l"), variables) == Value(5000000000LL));
}

TEST(ElementTest, Evaluate_DefinitionUsedTwice_IsComputedOnce) {
  Notes notes;
  SimpleVariableCollection variables;
  variables.declare("x", std::make_unique<Sum>(noting("x", notes), number(1.0)));
  EXPECT_TRUE(valueOf(Sum(variable("x"), variable("x")), variables) == Value(4.0));
  EXPECT_EQ(notes, (Notes{"x"}));
  EXPECT_TRUE(valueOf(Sum(variable("x"), variable("x")), variables) == Value(4.0));
  EXPECT_EQ(notes, (Notes{"x", "x"}));
}

TEST(ElementTest, Evaluate_DefinitionsOfEveryTypeUsedTwice_KeepTheirValues) {
  SimpleVariableCollection variables;
  variables.declare("text", makeBinary(BinaryOperator::Add, ValueType::String, constant(std::string("a")),
                                       constant(std::string("b"))));
  variables.declare(
      "whole", makeBinary(BinaryOperator::Add, ValueType::LongLong, constant(4000000000LL), constant(1LL)));
  variables.declare("truth", makeUnary(UnaryOperator::LogicalNot, constant(1)));
  variables.declare("count", makeUnary(UnaryOperator::Negate, constant(3)));
  const auto twice = [](BinaryOperator operation, ValueType type, const char *name) {
    return makeBinary(operation, type, makeVariable(type, name), makeVariable(type, name));
  };
  EXPECT_TRUE(valueOf(*twice(BinaryOperator::Add, ValueType::String, "text"), variables) ==
              Value(std::string("abab")));
  EXPECT_TRUE(valueOf(*twice(BinaryOperator::Add, ValueType::LongLong, "whole"), variables) ==
              Value(8000000002LL));
  EXPECT_TRUE(valueOf(*twice(BinaryOperator::Add, ValueType::Bool, "truth"), variables) == Value(0));
  EXPECT_TRUE(valueOf(*twice(BinaryOperator::Multiply, ValueType::Int, "count"), variables) == Value(9));
}

TEST(ElementTest, Evaluate_MissingChild_Throws) {
  EXPECT_EQ(errorOf([] { valueOf(Sum(nullptr, number(1.0))); }), "No Element in container");
  EXPECT_EQ(errorOf([] { valueOf(Sum(number(1.0), nullptr)); }), "No Element in container");
  EXPECT_EQ(errorOf([] { valueOf(ElementConditional<double>(nullptr, number(1.0), number(2.0))); }),
            "No Element in container");
  EXPECT_EQ(errorOf([] { valueOf(ElementConditional<double>(truth(true), nullptr, number(2.0))); }),
            "No Element in container");
}

TEST(ElementTest, Validate_MissingChildOfConditional_Throws) {
  using If = ElementConditional<double>;
  const auto &empty = EmptyVariableCollection::instance();
  const std::string message = "No Element in container";
  EXPECT_EQ(errorOf([&] { If(nullptr, number(1.0), number(2.0)).validate(empty); }), message);
  EXPECT_EQ(errorOf([&] { If(truth(true), nullptr, number(2.0)).validate(empty); }), message);
  EXPECT_EQ(errorOf([&] { If(truth(true), number(1.0), nullptr).validate(empty); }), message);
  EXPECT_EQ(errorOf([&] { Sum(number(1.0), nullptr).validate(empty); }), message);
}

TEST(ElementTest, Validate_MissingVariable_Throws) {
  EXPECT_THROW(Sum(number(1.0), variable("x")).validate(EmptyVariableCollection::instance()),
               MissingVariable);
  EXPECT_THROW(variable("x")->validate(SimpleVariableCollection()), MissingVariable);
}

TEST(ElementTest, Validate_VariableOfAnotherType_Throws) {
  SimpleVariableCollection variables;
  variables.declare("x", constant(1));
  EXPECT_EQ(errorOf([&] { variable("x")->validate(variables); }), "Variable has invalid Return Type");
}

TEST(ElementTest, Validate_DescendsIntoDefinitions) {
  SimpleVariableCollection variables;
  variables.declare("x", std::make_unique<Sum>(variable("y"), number(1.0)));
  try {
    variable("x")->validate(variables);
    FAIL() << "nothing thrown";
  } catch (const MissingVariable &error) {
    EXPECT_EQ(error.name(), "y");
  }
  variables.declare("y", constant(2.0));
  EXPECT_NO_THROW(variable("x")->validate(variables));
}

TEST(ElementTest, Validate_ComputesNothing) {
  Notes notes;
  Sum(noting("left", notes), noting("right", notes)).validate(EmptyVariableCollection::instance());
  EXPECT_EQ(notes, (Notes{"validate right", "validate left"}));
}

TEST(ElementTest, Validate_ConstantCondition_ChecksTheSelectedBranchOnly) {
  using If = ElementConditional<double>;
  const auto &empty = EmptyVariableCollection::instance();
  EXPECT_NO_THROW(If(truth(true), number(1.0), variable("x")).validate(empty));
  EXPECT_NO_THROW(If(truth(false), variable("x"), number(1.0)).validate(empty));
  EXPECT_THROW(If(truth(false), number(1.0), variable("x")).validate(empty), MissingVariable);
  EXPECT_THROW(If(truth(true), variable("x"), number(1.0)).validate(empty), MissingVariable);
}

TEST(ElementTest, Validate_VariableCondition_ChecksConditionAndBothBranches) {
  using If = ElementConditional<double>;
  SimpleVariableCollection variables;
  const auto condition = [] {
    return std::make_unique<ElementVariable<bool>>("b");
  };
  EXPECT_THROW(If(condition(), number(1.0), number(2.0)).validate(variables), MissingVariable);
  variables.declare("b", constant(true));
  EXPECT_NO_THROW(If(condition(), number(1.0), number(2.0)).validate(variables));
  EXPECT_THROW(If(condition(), variable("x"), number(2.0)).validate(variables), MissingVariable);
  EXPECT_THROW(If(condition(), number(1.0), variable("x")).validate(variables), MissingVariable);
}

TEST(ElementTest, Equals_Constants_CompareValues) {
  EXPECT_TRUE(number(1.5)->equals(*number(1.5)));
  EXPECT_FALSE(number(1.5)->equals(*number(2.5)));
  EXPECT_FALSE(number(1.0)->equals(*constant(1)));
  EXPECT_TRUE(constant(std::string("a"))->equals(*constant(std::string("a"))));
  EXPECT_FALSE(constant(std::string("a"))->equals(*constant(std::string("b"))));
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_FALSE(number(nan)->equals(*number(nan)));
}

TEST(ElementTest, Equals_Variables_CompareNamesAndTypes) {
  EXPECT_TRUE(variable("x")->equals(*variable("x")));
  EXPECT_FALSE(variable("x")->equals(*variable("y")));
  EXPECT_FALSE(variable("x")->equals(ElementVariable<int>("x")));
}

TEST(ElementTest, Equals_Functions_CompareClassAndChildren) {
  const Sum sum(variable("x"), number(1.0));
  EXPECT_TRUE(sum.equals(Sum(variable("x"), number(1.0))));
  EXPECT_FALSE(sum.equals(Sum(number(1.0), variable("x"))));
  EXPECT_FALSE(sum.equals(Sum(variable("x"), number(2.0))));
  EXPECT_FALSE(sum.equals(Sum(variable("x"), nullptr)));
  EXPECT_TRUE(Sum(nullptr, nullptr).equals(Sum(nullptr, nullptr)));
  EXPECT_FALSE(sum.equals(ElementFunctional<std::minus<double>, double, double>(variable("x"), number(1.0))));
}

TEST(ElementTest, Equals_Conditionals_CompareAllChildren) {
  using If = ElementConditional<double>;
  const If conditional(truth(true), number(1.0), number(2.0));
  EXPECT_TRUE(conditional.equals(If(truth(true), number(1.0), number(2.0))));
  EXPECT_FALSE(conditional.equals(If(truth(false), number(1.0), number(2.0))));
  EXPECT_FALSE(conditional.equals(If(truth(true), number(3.0), number(2.0))));
  EXPECT_FALSE(conditional.equals(If(truth(true), number(1.0), number(3.0))));
}

TEST(ElementTest, Equals_ApplicationsOwnNode_IsAsked) {
  Notes notes;
  EXPECT_TRUE(Sum(noting("a", notes), number(1.0)).equals(Sum(noting("a", notes), number(1.0))));
  EXPECT_FALSE(Sum(noting("a", notes), number(1.0)).equals(Sum(noting("b", notes), number(1.0))));
}

TEST(ElementTest, Clone_IsADeepCopy) {
  Notes notes;
  auto original = std::make_unique<ElementConditional<double>>(
      std::make_unique<ElementVariable<bool>>("b"), std::make_unique<Sum>(noting("a", notes), number(1.0)),
      nullptr);
  const std::unique_ptr<Element<double>> copy = original->clone();
  EXPECT_TRUE(copy->equals(*original));
  const auto *const typed = dynamic_cast<const ElementConditional<double> *>(copy.get());
  ASSERT_NE(typed, nullptr);
  EXPECT_NE(typed->trueBranch(), original->trueBranch());
  EXPECT_EQ(typed->falseBranch(), nullptr);
  original.reset();
  SimpleVariableCollection variables;
  variables.declare("b", constant(true));
  EXPECT_TRUE(valueOf(*copy, variables) == Value(2.0));
}

TEST(ElementTest, Destruction_ReleasesEveryChild) {
  Notes notes;
  const auto token = std::make_shared<int>(0);
  const auto watched = [&] {
    return std::make_unique<NotingElement>("a", notes, token);
  };
  std::unique_ptr<ElementAbstract> root = std::make_unique<ElementConditional<double>>(
      truth(true), std::make_unique<Sum>(watched(), watched()), watched());
  EXPECT_EQ(token.use_count(), 4);
  root.reset();
  EXPECT_EQ(token.use_count(), 1);
}

TEST(ElementTest, Clone_KeepsWhatIsConstant) {
  const Sum sum(number(1.0), number(2.0));
  EXPECT_TRUE(sum.clone()->isConstant());
  const ElementConditional<double> conditional(truth(false), variable("x"), number(3.0));
  const auto copy = conditional.clone();
  EXPECT_TRUE(copy->isConstant());
  EXPECT_TRUE(valueOf(*copy) == Value(3.0));
}

TEST(ElementTest, CloneAbstract_GivesTheSameAsClone) {
  const Sum sum(variable("x"), number(2.0));
  const std::unique_ptr<ElementAbstract> copy = sum.cloneAbstract();
  EXPECT_TRUE(copy->equals(sum));
}

TEST(ElementTest, ElementAs_ElementThatIsNotWhatItReports_Throws) {
  EXPECT_EQ(errorOf([] { elementAs<double>(std::make_unique<LyingElement>()); }),
            "logic_error: Invalid Cast");
  EXPECT_EQ(errorOf([] { elementAs<double>(constant(1)); }), "logic_error: Invalid Cast");
  EXPECT_EQ(errorOf([] { elementAs<double>(nullptr); }), "logic_error: Invalid Cast");
}

} // namespace
} // namespace ExpressionBuilder
