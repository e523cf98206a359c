#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementFunctional.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::filled;

// An expression is evaluated by a program into which its tree has been lowered; the tree itself, evaluated
// against the same variables, says what must come out.

using Names = std::vector<std::string>;

/// Values on both sides of every comparison below, zeros of both signs, a NaN and an infinity.
const std::vector<std::vector<double>> kRows = {
    {1.5, -2.25, 3.0, 0.5},      {-1.5, 2.25, -3.0, 7.0},        {0.0, -0.0, 0.0, -0.0},
    {4.0, 4.0, 4.0, 4.0},        {1e300, 1e300, -1e300, 1e-300}, {0.25, 1.0 / 0.0, 2.0, 3.0},
    {2.0, 0.0 / 0.0, 1.0, -1.0},
};

template <class T> class Case {
public:
  explicit Case(const std::string &text, bool fold = true) {
    BuilderSingleType<T> builder;
    builder.setFoldConstants(fold);
    for (const char *name : {"a", "b", "c", "d"}) {
      builder.variables().declare(name, constant(1.0));
    }
    builder.variables().declare("i", constant(7));
    builder.variables().declare("j", constant(-3));
    builder.variables().declare("t", constant(true));
    builder.variables().declare("l", constant(4000000000LL));
    m_expression = builder.buildExpression(text);
    for (const char *name : {"a", "b", "c", "d"}) {
      m_handles.push_back(m_expression->variables().template handle<double>(name));
    }
  }

  Expression<T, SimpleVariableCollection> &expression() { return *m_expression; }
  const std::vector<VariableHandle<double>> &handles() const { return m_handles; }

  void set(const std::vector<double> &row) {
    for (std::size_t i = 0; i < m_handles.size(); ++i) {
      m_expression->variables().set(m_handles[i], row[i]);
    }
  }

private:
  std::unique_ptr<Expression<T, SimpleVariableCollection>> m_expression;
  std::vector<VariableHandle<double>> m_handles;
};

/// The value's bytes or the error's text; every NaN is the same, because processors may choose which of two
/// they pass on.
template <class T, class Function> std::string outcome(Function function) {
  try {
    const T value = function();
    if constexpr (std::is_same_v<T, double>) {
      if (std::isnan(value)) {
        return "nan";
      }
    }
    return std::string(reinterpret_cast<const char *>(&value), sizeof value);
  } catch (const std::exception &error) {
    return error.what();
  }
}

/// The number of rows in which the program and the tree disagree.
template <class T> int disagreements(const std::string &text, bool fold = true) {
  Case<T> test(text, fold);
  int count = 0;
  for (const std::vector<double> &row : kRows) {
    test.set(row);
    const auto &variables = test.expression().variables();
    const std::string lowered = outcome<T>([&] { return test.expression().evaluate(); });
    const std::string plain = outcome<T>([&] { return test.expression().root()->evaluate(variables); });
    count += lowered == plain ? 0 : 1;
  }
  return count;
}

/// Operands in every state in which the lowering may hold one.
const Names kOperands = {
    "%a%",
    "2.5",
    "(%a%*%b%)",
    "(%b%-%c%)",
    "(%a%*%b%-%c%)",
    "(%d%/(%a%+%b%))",
    "((%a%-%b%)*(%c%+%d%))",
    "abs(%b%)",
    "(abs(%a%)*abs(%b%)*sin(%c%))",
    "(%a%>%b%?%c%:%d%)",
    "(%a%*%b%<%c%?%d%*2.0:abs(%a%))",
    "((double)(int)%d%)",
    "max(%a%,%b%)",
    "-%c%",
};

const Names kOperators = {"+", "-", "*", "/"};
const Names kFunctions = {"min", "max", "pow", "atan2"};
const Names kComparisons = {"==", "!=", "<", "<=", ">", ">="};

TEST(LoweredEvaluationTest, TwoOperandsInEveryState_GiveTheTreesValue) {
  for (const std::string &x : kOperands) {
    for (const std::string &y : kOperands) {
      for (const std::string &op : kOperators) {
        const std::string text = filled("@@@", {x, op, y});
        EXPECT_EQ(disagreements<double>(text), 0) << text;
      }
      for (const std::string &function : kFunctions) {
        const std::string text = filled("@(@,@)", {function, x, y});
        EXPECT_EQ(disagreements<double>(text), 0) << text;
      }
    }
  }
}

TEST(LoweredEvaluationTest, ThreeOperandsInEveryState_GiveTheTreesValue) {
  const Names operands = {"%a%", "(%b%*%c%)", "(%a%*%b%+%d%)", "abs(%b%)", "(%a%<%b%?%c%:abs(%d%))"};
  for (const std::string &x : operands) {
    for (const std::string &y : operands) {
      for (const std::string &z : operands) {
        for (const std::string &op : kOperators) {
          const std::string right = filled("abs(%c%)@(@-@*@)", {op, x, y, z});
          EXPECT_EQ(disagreements<double>(right), 0) << right;
          const std::string left = filled("(@@@)/@", {x, op, y, z});
          EXPECT_EQ(disagreements<double>(left), 0) << left;
        }
      }
    }
  }
}

TEST(LoweredEvaluationTest, ComparisonsOfOperandsInEveryState_SelectTheTreesBranch) {
  for (const std::string &x : kOperands) {
    for (const std::string &y : kOperands) {
      for (const std::string &comparison : kComparisons) {
        const std::string text = filled("abs(%d%)+((@@@)?@:@)", {x, comparison, y, x, y});
        EXPECT_EQ(disagreements<double>(text), 0) << text;
      }
    }
  }
}

TEST(LoweredEvaluationTest, ComparisonsAsValues_AreTheTrees) {
  for (const std::string &x : kOperands) {
    for (const std::string &comparison : kComparisons) {
      const std::string text = filled("abs(%b%) < 2.0 && (@@%c%) || !(abs(%a%)@@) && (@@abs(%d%))",
                                      {x, comparison, comparison, x, x, comparison});
      EXPECT_EQ(disagreements<bool>(text), 0) << text;
      EXPECT_EQ(disagreements<double>(filled("(double)(@) + abs(%a%)", {text})), 0) << text;
    }
  }
}

TEST(LoweredEvaluationTest, NestedConditionals_GiveTheTreesValue) {
  const Names branches = {
      "%c%", "1.5", "%c%*%d%", "abs(%a%)", "(%b%<1.0?%a%:%d%)", "(%a%>=%b%?abs(%b%):2.0)"};
  for (const std::string &yes : branches) {
    for (const std::string &no : branches) {
      for (const std::string &condition : Names{"%a%<%b%", "abs(%a%)>1.0", "%t%", "!%t%", "%a%<%b%&&%t%"}) {
        const std::string text = filled("%d%*%a%-(@?@:@)*%b%", {condition, yes, no});
        EXPECT_EQ(disagreements<double>(text), 0) << text;
      }
    }
  }
}

TEST(LoweredEvaluationTest, OtherTypes_GiveTheTreesValue) {
  for (const char *text :
       {"%i%*%j%+2", "%i%/%j%", "mod(%i%,%j%)", "%i%-(int)%a%", "%t%+%t%", "%t%*%t%-%t%", "(%a%<%b%?%i%:%j%)",
        "clamp(%i%,-1,%j%+5)", "abs(%j%)", "-%j%", "%i%<%j%", "(%i%<%j%?%i%:2)", "max(%i%,%j%)", "%t%"}) {
    EXPECT_EQ(disagreements<int>(text), 0) << text;
    EXPECT_EQ(disagreements<double>(text), 0) << text;
    EXPECT_EQ(disagreements<bool>(text), 0) << text;
    EXPECT_EQ(disagreements<long long>(text), 0) << text;
  }
  for (const char *text :
       {"%l%", "%l%*%l%", "%i%*%l%", "-%l%", "mod(%l%,%l%-%l%)", "(%a%<%b%?%l%:%l%*%l%)"}) {
    EXPECT_EQ(disagreements<long long>(text), 0) << text;
    EXPECT_EQ(disagreements<double>(text), 0) << text;
  }
}

TEST(LoweredEvaluationTest, FunctionsOfTheLibrary_GiveTheTreesValue) {
  for (const char *function : {"sin", "cos", "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh", "asinh",
                               "acosh", "atanh", "sqrt", "cbrt", "exp", "log", "log10", "abs"}) {
    for (const char *argument : {"%a%", "(%a%*%b%)", "(%a%*%b%+%c%)", "abs(%d%)", "(%a%<%b%?%c%:%d%)"}) {
      const std::string call = filled("@(@)", {function, argument});
      EXPECT_EQ(disagreements<double>(call), 0) << call;
      EXPECT_EQ(disagreements<double>("abs(%b%)-" + call), 0) << call;
    }
  }
  for (const std::string &bounds : Names{"-1.0,1.0", "%b%,%c%", "abs(%b%),%c%*2.0", "2.0,-2.0"}) {
    for (const std::string &value : Names{"%a%", "(%a%*%d%)", "abs(%a%)"}) {
      const std::string text = filled("abs(%d%)+clamp(@,@)", {value, bounds});
      EXPECT_EQ(disagreements<double>(text), 0) << text;
    }
  }
}

TEST(LoweredEvaluationTest, SeveralFaults_TheTreesOneIsReported) {
  // The right operand is computed first, so its fault is the one that counts.
  Case<int> test("mod(%i%,%i%-7) + (-2147483647-1)/(%j%+2)");
  EXPECT_EQ(outcome<int>([&] { return test.expression().evaluate(); }), "Integer overflow");
  Case<int> other("(-2147483647-1)/(%j%+2) + mod(%i%,%i%-7)");
  EXPECT_EQ(outcome<int>([&] { return other.expression().evaluate(); }), "Integer division by zero");
}

TEST(LoweredEvaluationTest, FaultInTheBranchNotTaken_IsNotMet) {
  Case<int> test("%t% ? 5 : %i%/(%i%-7)");
  EXPECT_EQ(test.expression().evaluate(), 5);
}

TEST(LoweredEvaluationTest, UnfoldedConstants_GiveTheTreesValue) {
  for (const char *text : {"(1.0 < 2.0) ? %a% : %b%", "(1 < 2 && 2 < 1) ? %a% : %b%*%c%",
                           "((bool)1) ? %a% : %b%", "%a%*(2.0*3.0-(1.0/4.0))"}) {
    EXPECT_EQ(disagreements<double>(text, false), 0) << text;
  }
}

TEST(LoweredEvaluationTest, ConstantConditionThatCannotBeComputed_IsAnInvalidExpression) {
  // Even in a branch that is not taken: validation looks at both.
  Case<double> test("(%a% < 100.0) ? %c% : ((1/0 == 1) ? %a% : %b%)", false);
  EXPECT_EQ(outcome<double>([&] { return test.expression().evaluate(); }), "Invalid expression");
}

TEST(LoweredEvaluationTest, DefinitionBecomesAFormulaAndAConstantAgain_TheValueFollows) {
  Case<double> test("%a% * 2.0 + %b%");
  auto &variables = test.expression().variables();
  test.set({1.0, 10.0, 0.0, 0.0});
  EXPECT_EQ(test.expression().evaluate(), 12.0);
  variables.replace("a", makeBinary(BinaryOperator::Add, ValueType::Double,
                                    makeVariable(ValueType::Double, "b"), constant(1.0)));
  EXPECT_EQ(test.expression().evaluate(), 32.0);
  variables.replace("a", constant(3.0));
  EXPECT_EQ(test.expression().evaluate(), 16.0);
}

TEST(LoweredEvaluationTest, VariablesClearedAndDeclaredAgain_TheValueFollows) {
  Case<double> test("%a% * 2.0");
  auto &variables = test.expression().variables();
  EXPECT_EQ(test.expression().evaluate(), 2.0);
  variables.clear();
  EXPECT_EQ(outcome<double>([&] { return test.expression().evaluate(); }), "Invalid expression");
  variables.declare("a", constant(true));
  EXPECT_EQ(outcome<double>([&] { return test.expression().evaluate(); }), "Invalid expression");
  variables.clear();
  variables.declare("z", constant(1.0));
  variables.declare("a", constant(8.0));
  EXPECT_EQ(test.expression().evaluate(), 16.0);
}

TEST(LoweredEvaluationTest, Clone_HasItsOwnVariables) {
  Case<double> test("%a% * 2.0");
  EXPECT_EQ(test.expression().evaluate(), 2.0);
  const auto clone = test.expression().clone();
  test.set({5.0, 0.0, 0.0, 0.0});
  EXPECT_EQ(clone->evaluate(), 2.0);
  EXPECT_EQ(test.expression().evaluate(), 10.0);
}

/// An application's own node, of which the library knows only what its operations answer.
class TwiceA : public Element<double> {
public:
  ElementKind kind() const override { return static_cast<ElementKind>(100); }
  bool isConstant() const override { return false; }
  void validate(const VariableCollectionAbstract & /*collection*/) const override {}
  bool equals(const ElementAbstract &other) const override {
    return dynamic_cast<const TwiceA *>(&other) != nullptr;
  }
  double evaluate(const VariableCollectionAbstract &collection) const override {
    return 2.0 * makeVariableOfA()->evaluate(collection);
  }
  std::unique_ptr<Element<double>> clone() const override { return std::make_unique<TwiceA>(); }

private:
  static std::unique_ptr<Element<double>> makeVariableOfA() {
    return elementAs<double>(makeVariable(ValueType::Double, "a"));
  }
};

using DoubleExpression = Expression<double, SimpleVariableCollection>;

DoubleExpression sumWithB(std::unique_ptr<ElementAbstract> left) {
  SimpleVariableCollection variables;
  variables.declare("a", constant(1.5));
  variables.declare("b", constant(10.0));
  using Sum = ElementFunctional<std::plus<double>, double, double>;
  auto right = elementAs<double>(makeVariable(ValueType::Double, "b"));
  return DoubleExpression(
      std::make_unique<Sum>(left == nullptr ? nullptr : elementAs<double>(std::move(left)), std::move(right)),
      std::move(variables));
}

TEST(LoweredEvaluationTest, NodeOfAnApplication_IsAskedForItsValue) {
  DoubleExpression expression = sumWithB(std::make_unique<TwiceA>());
  EXPECT_EQ(expression.evaluate(), 13.0);
  expression.variables().replace("a", constant(3.0));
  EXPECT_EQ(expression.evaluate(), 16.0);
}

TEST(LoweredEvaluationTest, RowsOverANodeOfAnApplication_HaveItsValues) {
  const DoubleExpression expression = sumWithB(std::make_unique<TwiceA>());
  const std::vector<double> values = {0.0, 1.0, 2.0, 3.0, 4.0};
  std::vector<double> results(values.size(), -1.0);
  expression.evaluateRows({{expression.variables().handle<double>("a"), values.data()}}, values.size(),
                          results.data());
  EXPECT_EQ(results, (std::vector<double>{10.0, 12.0, 14.0, 16.0, 18.0}));
}

TEST(LoweredEvaluationTest, MissingOperand_IsAnInvalidExpression) {
  const DoubleExpression expression = sumWithB(nullptr);
  EXPECT_EQ(outcome<double>([&] { return expression.evaluate(); }), "Invalid expression");
  const std::vector<double> values(5, 1.0);
  std::vector<double> results(5, -1.0);
  EXPECT_EQ(outcome<double>([&] {
              expression.evaluateRows({{expression.variables().handle<double>("a"), values.data()}}, 5,
                                      results.data());
              return 0.0;
            }),
            "Invalid expression");
  EXPECT_EQ(results, std::vector<double>(5, -1.0));
}

TEST(LoweredEvaluationTest, LongSum_NeedsNoDeepStack) {
  std::string text = "abs(%a%)";
  for (int i = 0; i < 5000; ++i) {
    text += "+sin(%b%)*%c%";
  }
  EXPECT_EQ(disagreements<double>(text), 0);
}

TEST(LoweredEvaluationTest, DeepBrackets_UseTemporariesOnTheHeap) {
  std::string text;
  for (int i = 0; i < 500; ++i) {
    text += "abs(%a%)-(sin(%b%)*";
  }
  text += "%c%" + std::string(500, ')');
  EXPECT_EQ(disagreements<double>(text), 0);
}

} // namespace
} // namespace ExpressionBuilder
