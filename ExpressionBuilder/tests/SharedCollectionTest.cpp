#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::Value;
using Testing::valueOf;

constexpr int kThreads = 4;
constexpr int kRounds = 500;

/// Runs the body on several threads at once; the argument is the number of the thread.
template <class Body> void onThreads(Body body) {
  std::atomic<int> waiting{kThreads};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&waiting, &body, i] {
      --waiting;
      while (waiting > 0) {
        std::this_thread::yield();
      }
      body(i);
    });
  }
  for (std::thread &thread : threads) {
    thread.join();
  }
}

/// x is defined by y, y by z: while one thread is inside the definitions the others come along.
SimpleVariableCollection definitions() {
  SimpleVariableCollection variables;
  const auto reference = [](const char *name) {
    return makeVariable(ValueType::Double, name);
  };
  variables.declare("x", makeBinary(BinaryOperator::Add, ValueType::Double, reference("y"), reference("y")));
  variables.declare("y", makeUnary(UnaryOperator::Negate, reference("z")));
  variables.declare("z", constant(1.5));
  return variables;
}

TEST(SharedCollectionTest, ThreadsEvaluatingOverOneCollection_FindNoFalseCircle) {
  BuilderBase builder;
  builder.variables() = definitions();
  const std::unique_ptr<ElementAbstract> roots[] = {builder.build("%x% + %y%"), builder.build("%y% * %x%"),
                                                    builder.build("%x%"), builder.build("%x% < %z%")};
  const Value expected[] = {-4.5, 4.5, -3.0, true};
  std::atomic<int> wrong{0};
  onThreads([&](int thread) {
    const auto index = static_cast<std::size_t>(thread);
    for (int round = 0; round < kRounds; ++round) {
      try {
        roots[index]->validate(builder.variables());
        if (valueOf(*roots[index], builder.variables()) != expected[index]) {
          ++wrong;
        }
      } catch (const std::exception &) {
        ++wrong;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST(SharedCollectionTest, ThreadsEvaluatingOneExpression_AgreeOnItsValue) {
  BuilderSingleType<double> builder;
  builder.variables() = definitions();
  const auto expression = builder.buildExpression("%x% * 2.0 + (%z% > 1.0 ? %y% : 7.0)");
  std::atomic<int> wrong{0};
  onThreads([&](int /*thread*/) {
    for (int round = 0; round < kRounds; ++round) {
      try {
        if (expression->evaluate() != -7.5) {
          ++wrong;
        }
      } catch (const std::exception &) {
        ++wrong;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
}

TEST(SharedCollectionTest, ThreadsEvaluatingOneExpressionOfPlainVariables_AgreeOnItsValue) {
  // The first thread that comes makes the program of the expression; the others wait for it or use it.
  BuilderSingleType<double> builder;
  builder.variables().declare("x", constant(2.5));
  builder.variables().declare("y", constant(-4.0));
  std::atomic<int> wrong{0};
  for (int round = 0; round < kRounds / 10; ++round) {
    const auto expression = builder.buildExpression("%x% * 2.0 + (%y% > 1.0 ? %y% : sqrt(%x% * 10.0))");
    onThreads([&](int /*thread*/) {
      if (expression->evaluate() != 10.0) {
        ++wrong;
      }
    });
  }
  EXPECT_EQ(wrong, 0);
}

TEST(SharedCollectionTest, RealCircle_IsFoundByEveryThread) {
  SimpleVariableCollection variables;
  variables.declare("x", makeVariable(ValueType::Double, "y"));
  variables.declare("y", makeVariable(ValueType::Double, "x"));
  const auto root = makeVariable(ValueType::Double, "x");
  std::atomic<int> found{0};
  onThreads([&](int /*thread*/) {
    for (int round = 0; round < kRounds; ++round) {
      try {
        valueOf(*root, variables);
      } catch (const CircularDependency &) {
        ++found;
      }
    }
  });
  EXPECT_EQ(found, kThreads * kRounds);
}

TEST(SharedCollectionTest, ThreadsBuildingWithOneBuilder_GetTheirTrees) {
  BuilderBase builder;
  builder.variables().declare("x", constant(2));
  std::atomic<int> wrong{0};
  onThreads([&](int thread) {
    const std::string text = "max(%x%, 1) * " + std::to_string(thread);
    for (int round = 0; round < kRounds; ++round) {
      if (valueOf(*builder.build(text), builder.variables()) != Value(2 * thread)) {
        ++wrong;
      }
    }
  });
  EXPECT_EQ(wrong, 0);
}

} // namespace
} // namespace ExpressionBuilder
