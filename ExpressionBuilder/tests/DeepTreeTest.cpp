#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <exception>
#include <functional>
#include <pthread.h>
#include <string>

namespace ExpressionBuilder {
namespace {

using Testing::buildFailure;
using Testing::builtValue;
using Testing::constant;
using Testing::Value;
using Testing::valueOf;

constexpr std::size_t kSmallStack = std::size_t{1024} * 1024;

/// Runs the body on a thread with a stack of 1 MiB; what escapes it fails the test.
void onSmallStack(const std::function<void()> &body) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
  pthread_t thread{};
  const auto run = [](void *argument) -> void * {
    try {
      (*static_cast<const std::function<void()> *>(argument))();
    } catch (const std::exception &error) {
      ADD_FAILURE() << "thrown: " << error.what();
    }
    return nullptr;
  };
  void *const argument = const_cast<std::function<void()> *>(&body);
  ASSERT_EQ(pthread_create(&thread, &attributes, run, argument), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

std::string repeated(const std::string &piece, int count) {
  std::string text;
  text.reserve(piece.size() * static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    text += piece;
  }
  return text;
}

/// Builds, validates, evaluates, copies, compares and destroys.
void expectWholeLife(const std::string &text, double expected) {
  onSmallStack([&] {
    BuilderSingleType<double> builder;
    builder.variables().declare("x", constant(1.0));
    auto expression = builder.buildExpression(text);
    EXPECT_TRUE(expression->isValid());
    EXPECT_EQ(expression->evaluate(), expected);
    const auto copy = expression->root()->clone();
    EXPECT_TRUE(copy->equals(*expression->root()));
    EXPECT_FALSE(copy->isConstant());
    expression.reset();
    EXPECT_TRUE(valueOf(*copy, builder.variables()) == Value(expected));
  });
}

TEST(DeepTreeTest, LeftDeepChain_OfAMillionTerms) {
  expectWholeLife("%x%" + repeated("+%x%*%x%", 500000), 500001.0);
}

TEST(DeepTreeTest, LeftDeepChain_WithConstants_IsLinear) {
  expectWholeLife("%x%" + repeated("+1.0", 200000), 200001.0);
}

TEST(DeepTreeTest, RightDeepBrackets) {
  expectWholeLife(repeated("%x%+(", 100000) + "%x%" + repeated(")", 100000), 100001.0);
}

TEST(DeepTreeTest, NestedBrackets) {
  expectWholeLife(repeated("(", 100000) + "%x%" + repeated(")", 100000), 1.0);
}

TEST(DeepTreeTest, NestedPrefixOperators) {
  expectWholeLife(repeated("-", 100000) + "%x%", 1.0);
}

TEST(DeepTreeTest, NestedCasts) {
  expectWholeLife(repeated("(double)(int)", 50000) + "%x%", 1.0);
}

TEST(DeepTreeTest, NestedCalls) {
  expectWholeLife(repeated("max(0.5,", 100000) + "%x%" + repeated(")", 100000), 1.0);
}

TEST(DeepTreeTest, NestedConditionals_InTheFalseBranch) {
  expectWholeLife(repeated("%x%<0.5?2.0:", 30000) + "%x%", 1.0);
}

TEST(DeepTreeTest, NestedConditionals_InTheTrueBranch) {
  expectWholeLife(repeated("%x%>0.5?", 30000) + "%x%" + repeated(":2.0", 30000), 1.0);
}

TEST(DeepTreeTest, NestedConditionals_InTheCondition) {
  expectWholeLife(repeated("(", 20000) + "%x%" + repeated("?1.0:0.0)", 20000), 1.0);
}

TEST(DeepTreeTest, ConstantConditionals_NotFolded_AreLinear) {
  onSmallStack([] {
    BuilderBase builder;
    builder.setFoldConstants(false);
    const std::string text = repeated("(", 50000) + "1" + repeated("?1:0)", 50000);
    const auto root = builder.build(text);
    EXPECT_TRUE(root->isConstant());
    EXPECT_NO_THROW(root->validate(builder.variables()));
    EXPECT_TRUE(valueOf(*root) == Value(1));
    EXPECT_TRUE(root->cloneAbstract()->equals(*root));
  });
}

TEST(DeepTreeTest, ConstantChain_NotFolded) {
  onSmallStack([] {
    BuilderBase builder;
    builder.setFoldConstants(false);
    const auto root = builder.build("1" + repeated("+1", 200000));
    EXPECT_TRUE(root->isConstant());
    EXPECT_TRUE(valueOf(*root) == Value(200001));
  });
}

TEST(DeepTreeTest, LongTexts_Concatenated) {
  onSmallStack([] {
    BuilderBase builder;
    builder.variables().declare("s", constant(std::string("ab")));
    const Value value = builtValue(builder, "%s%" + repeated("+%s%", 2000));
    EXPECT_EQ(std::get<std::string>(value).size(), 4002U);
  });
}

TEST(DeepTreeTest, UnclosedBrackets_FailWithoutRecursion) {
  onSmallStack([] {
    const BuilderBase builder;
    EXPECT_EQ(buildFailure(builder, repeated("(", 100000)).message, "Syntax error");
    EXPECT_EQ(buildFailure(builder, repeated("-", 100000)).message, "No right hand side of unary operator");
    EXPECT_EQ(buildFailure(builder, repeated("max(", 100000)).message, "Syntax Error");
  });
}

TEST(DeepTreeTest, NestingOverTheLimit_IsRefused) {
  onSmallStack([] {
    const BuilderBase builder;
    // The call for the whole text is the first level.
    const int limit = static_cast<int>(BuilderBase::kMaximumNesting) - 1;
    EXPECT_TRUE(builtValue(builder, repeated("(", limit) + "1" + repeated(")", limit)) == Value(1));
    const Testing::Failure failure =
        buildFailure(builder, repeated("(", limit + 1) + "1" + repeated(")", limit + 1));
    EXPECT_EQ(failure.message, "Syntax error");
    EXPECT_EQ(failure.offset, BuilderBase::kMaximumNesting);
  });
}

std::string variableName(int index) {
  return "v" + std::to_string(index);
}

/// v0 is defined by v1, and so on; the last one as given.
SimpleVariableCollection chainOfDefinitions(int length, std::unique_ptr<ElementAbstract> last) {
  SimpleVariableCollection variables;
  for (int i = 0; i + 1 < length; ++i) {
    variables.declare(variableName(i),
                      makeBinary(BinaryOperator::Add, ValueType::Double,
                                 makeVariable(ValueType::Double, variableName(i + 1)), constant(1.0)));
  }
  variables.declare(variableName(length - 1), std::move(last));
  return variables;
}

TEST(DeepTreeTest, ChainOfDefinitions_GivesItsValue) {
  onSmallStack([] {
    const SimpleVariableCollection variables = chainOfDefinitions(100000, constant(1.0));
    const auto root = makeVariable(ValueType::Double, variableName(0));
    EXPECT_NO_THROW(root->validate(variables));
    EXPECT_TRUE(valueOf(*root, variables) == Value(100000.0));
  });
}

TEST(DeepTreeTest, CircleOfDefinitions_IsFound) {
  onSmallStack([] {
    for (const int length : {1, 2, 3, 1000, 100000}) {
      SCOPED_TRACE(length);
      const SimpleVariableCollection variables =
          chainOfDefinitions(length, makeVariable(ValueType::Double, variableName(0)));
      const auto root = makeVariable(ValueType::Double, variableName(0));
      EXPECT_THROW(root->validate(variables), CircularDependency);
      EXPECT_THROW(valueOf(*root, variables), CircularDependency);
    }
  });
}

TEST(DeepTreeTest, DefinitionsThatUseTheNextTwice_TakeLinearTime) {
  SimpleVariableCollection variables;
  constexpr int kLevels = 40;
  for (int i = 0; i < kLevels; ++i) {
    const auto next = [i] {
      return makeVariable(ValueType::Double, variableName(i + 1));
    };
    variables.declare(variableName(i), makeBinary(BinaryOperator::Add, ValueType::Double, next(), next()));
  }
  variables.declare(variableName(kLevels), constant(1.0));
  const auto root = makeVariable(ValueType::Double, variableName(0));
  EXPECT_NO_THROW(root->validate(variables));
  EXPECT_TRUE(valueOf(*root, variables) == Value(1099511627776.0));
}

} // namespace
} // namespace ExpressionBuilder
