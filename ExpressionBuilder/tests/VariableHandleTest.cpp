#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::Value;
using Testing::valueOf;

class VariableHandleTest : public testing::Test {
protected:
  VariableHandleTest() {
    m_variables.declare("x", constant(1.0));
    m_variables.declare("n", constant(2));
    m_variables.declare("flag", constant(false));
    m_variables.declare("text", constant("old"));
    m_variables.declare("big", constant(3LL));
  }

  Value valueOfVariable(const std::string &name) const {
    return valueOf(*m_variables.find(name), m_variables);
  }

  /// The text of the error with which a collection refuses the handle.
  static std::string refusal(SimpleVariableCollection &variables, const VariableHandle<double> &handle) {
    try {
      variables.set(handle, 5.0);
      return "";
    } catch (const std::out_of_range &error) {
      return error.what();
    }
  }

  SimpleVariableCollection m_variables;
};

TEST_F(VariableHandleTest, Set_GivesTheVariableAnotherValue) {
  m_variables.set(m_variables.handle<double>("x"), 2.5);
  m_variables.set(m_variables.handle<int>("n"), 7);
  m_variables.set(m_variables.handle<bool>("flag"), true);
  m_variables.set(m_variables.handle<std::string>("text"), std::string("new"));
  m_variables.set(m_variables.handle<long long>("big"), 1LL << 40);
  EXPECT_EQ(valueOfVariable("x"), Value(2.5));
  EXPECT_EQ(valueOfVariable("n"), Value(7));
  EXPECT_EQ(valueOfVariable("flag"), Value(true));
  EXPECT_EQ(valueOfVariable("text"), Value(std::string("new")));
  EXPECT_EQ(valueOfVariable("big"), Value(1LL << 40));
}

TEST_F(VariableHandleTest, Handle_UnknownName_IsRefused) {
  try {
    m_variables.handle<double>("y");
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::out_of_range &error) {
    EXPECT_STREQ(error.what(), "Variable does not exist");
  }
}

TEST_F(VariableHandleTest, Handle_AnotherType_IsRefused) {
  try {
    m_variables.handle<double>("n");
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::runtime_error &error) {
    EXPECT_STREQ(error.what(), "Invalid Type");
  }
}

TEST_F(VariableHandleTest, DefaultHandle_IsRefused) {
  EXPECT_EQ(refusal(m_variables, VariableHandle<double>()), "Variable does not exist");
}

TEST_F(VariableHandleTest, HandleOfTheOriginal_IsRefusedByACopy) {
  const auto handle = m_variables.handle<double>("x");
  SimpleVariableCollection copy(m_variables);
  EXPECT_EQ(refusal(copy, handle), "Variable does not exist");
  EXPECT_EQ(refusal(m_variables, handle), "");
}

TEST_F(VariableHandleTest, ClearedCollection_RefusesItsHandles) {
  const auto handle = m_variables.handle<double>("x");
  m_variables.clear();
  m_variables.declare("x", constant(1.0));
  EXPECT_EQ(refusal(m_variables, handle), "Variable does not exist");
  EXPECT_EQ(valueOfVariable("x"), Value(1.0));
}

TEST_F(VariableHandleTest, AssignedAndMovedCollections_RefuseTheirHandles) {
  const auto handle = m_variables.handle<double>("x");
  SimpleVariableCollection moved(std::move(m_variables));
  EXPECT_EQ(refusal(moved, handle), "Variable does not exist");
  const auto own = moved.handle<double>("x");
  moved = SimpleVariableCollection(moved);
  EXPECT_EQ(refusal(moved, own), "Variable does not exist");
}

TEST_F(VariableHandleTest, FurtherDeclarations_DoNotHarmAHandle) {
  const auto handle = m_variables.handle<double>("x");
  for (int i = 0; i < 100; ++i) {
    m_variables.declare("more" + std::to_string(i), constant(i));
  }
  EXPECT_EQ(refusal(m_variables, handle), "");
  EXPECT_EQ(valueOfVariable("x"), Value(5.0));
}

TEST_F(VariableHandleTest, ReplacedByAFormula_SetMakesItAConstantAgain) {
  const auto handle = m_variables.handle<double>("x");
  m_variables.replace("x", makeCast(ValueType::Double, makeVariable(ValueType::Int, "n")));
  EXPECT_EQ(valueOfVariable("x"), Value(2.0));
  m_variables.set(handle, 9.0);
  EXPECT_EQ(valueOfVariable("x"), Value(9.0));
  m_variables.set(handle, 10.0);
  EXPECT_EQ(valueOfVariable("x"), Value(10.0));
}

TEST_F(VariableHandleTest, HandleTakenWhileTheVariableIsAFormula_SetsIt) {
  m_variables.replace("x", makeCast(ValueType::Double, makeVariable(ValueType::Int, "n")));
  const auto handle = m_variables.handle<double>("x");
  m_variables.set(handle, 9.0);
  EXPECT_EQ(valueOfVariable("x"), Value(9.0));
}

TEST_F(VariableHandleTest, OtherVariableChangesItsForm_HandlesGoOn) {
  const auto handle = m_variables.handle<double>("x");
  m_variables.replace("n", makeCast(ValueType::Int, makeVariable(ValueType::Double, "x")));
  m_variables.set(handle, 6.5);
  EXPECT_EQ(valueOfVariable("x"), Value(6.5));
  EXPECT_EQ(valueOfVariable("n"), Value(6));
}

TEST_F(VariableHandleTest, SetOfAnotherVariable_LeavesACopyAsItWas) {
  const SimpleVariableCollection copy(m_variables);
  m_variables.set(m_variables.handle<double>("x"), 2.5);
  EXPECT_EQ(valueOf(*copy.find("x"), copy), Value(1.0));
}

TEST_F(VariableHandleTest, DeclareAfterACopyWasMade_IsSeenByOneOnly) {
  SimpleVariableCollection copy(m_variables);
  copy.declare("mine", constant(1));
  m_variables.declare("yours", constant(2));
  EXPECT_EQ(copy.names(), (std::vector<std::string>{"big", "flag", "mine", "n", "text", "x"}));
  EXPECT_EQ(m_variables.names(), (std::vector<std::string>{"big", "flag", "n", "text", "x", "yours"}));
}

TEST_F(VariableHandleTest, ManyNames_AreAllFound) {
  SimpleVariableCollection variables;
  constexpr int kNames = 2000;
  const auto nameOf = [](int i) {
    return std::string(static_cast<std::size_t>(i % 23), 'n') + std::to_string(i);
  };
  for (int i = 0; i < kNames; ++i) {
    EXPECT_TRUE(variables.declare(nameOf(i), constant(i)));
  }
  for (int i = 0; i < kNames; ++i) {
    EXPECT_EQ(valueOf(*variables.find(nameOf(i)), variables), Value(i));
  }
  EXPECT_FALSE(variables.contains("n"));
  EXPECT_FALSE(variables.contains(""));
}

} // namespace
} // namespace ExpressionBuilder
