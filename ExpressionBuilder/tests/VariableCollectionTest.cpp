#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::Value;
using Testing::valueOf;
using namespace std::string_literals;

std::unique_ptr<ElementAbstract> reference(const std::string &name) {
  return makeVariable(ValueType::Double, name);
}

/// Begins and ends one look-up.
void lookUp(const VariableCollectionAbstract &variables, const std::string &name) {
  const VariableLookup lookup(variables, name);
}

/// A definition that notes its destruction.
class WatchedElement : public Element<double> {
public:
  explicit WatchedElement(int &destroyed) : m_destroyed(&destroyed) {}
  ~WatchedElement() override { ++*m_destroyed; }

  ElementKind kind() const override { return ElementKind::Function; }
  bool isConstant() const override { return false; }
  void validate(const VariableCollectionAbstract & /*collection*/) const override {}
  bool equals(const ElementAbstract & /*other*/) const override { return false; }
  double evaluate(const VariableCollectionAbstract & /*collection*/) const override { return 0.0; }
  std::unique_ptr<Element<double>> clone() const override {
    return std::make_unique<WatchedElement>(*m_destroyed);
  }

private:
  int *m_destroyed;
};

TEST(VariableCollectionTest, Declare_MakesTheVariableKnown) {
  SimpleVariableCollection variables;
  EXPECT_TRUE(variables.empty());
  EXPECT_TRUE(variables.declare("x", constant(2.5)));
  EXPECT_TRUE(variables.contains("x"));
  EXPECT_FALSE(variables.contains("y"));
  ASSERT_NE(variables.find("x"), nullptr);
  EXPECT_EQ(variables.find("x")->type(), ValueType::Double);
  EXPECT_EQ(variables.find("y"), nullptr);
  EXPECT_EQ(variables.size(), 1U);
}

TEST(VariableCollectionTest, Declare_NameAlreadyThere_KeepsTheFirst) {
  SimpleVariableCollection variables;
  variables.declare("x", constant(2.5));
  EXPECT_FALSE(variables.declare("x", constant(7)));
  EXPECT_TRUE(valueOf(*variables.find("x")) == Value(2.5));
  EXPECT_EQ(variables.size(), 1U);
}

TEST(VariableCollectionTest, Declare_WithoutDefinition_Throws) {
  SimpleVariableCollection variables;
  EXPECT_EQ(errorOf([&] { variables.declare("x", nullptr); }), "Invalid Type");
  EXPECT_FALSE(variables.contains("x"));
}

TEST(VariableCollectionTest, Names_AnyBytesInByteOrder) {
  SimpleVariableCollection variables;
  variables.declare("b", constant(1));
  variables.declare("", constant(1));
  variables.declare("\xC3\xA4", constant(1));
  variables.declare("a\0b"s, constant(1));
  variables.declare("B", constant(1));
  EXPECT_EQ(variables.names(), (std::vector<std::string>{"", "B", "a\0b"s, "b", "\xC3\xA4"}));
}

TEST(VariableCollectionTest, Replace_ReleasesTheOldDefinition) {
  SimpleVariableCollection variables;
  int destroyed = 0;
  variables.declare("x", std::make_unique<WatchedElement>(destroyed));
  variables.replace("x", constant(3.5));
  EXPECT_EQ(destroyed, 1);
  EXPECT_TRUE(valueOf(*variables.find("x")) == Value(3.5));
}

TEST(VariableCollectionTest, Replace_AnotherType_ThrowsAndKeepsTheOldValue) {
  SimpleVariableCollection variables;
  variables.declare("x", constant(2.5));
  EXPECT_EQ(errorOf([&] { variables.replace("x", constant(7)); }), "Invalid Type");
  EXPECT_EQ(errorOf([&] { variables.replace("x", nullptr); }), "Invalid Type");
  EXPECT_TRUE(valueOf(*variables.find("x")) == Value(2.5));
}

TEST(VariableCollectionTest, Replace_UndeclaredName_ThrowsOutOfRange) {
  SimpleVariableCollection variables;
  try {
    variables.replace("x", constant(2.5));
    FAIL() << "nothing thrown";
  } catch (const std::out_of_range &error) {
    EXPECT_STREQ(error.what(), "Variable does not exist");
  }
  EXPECT_TRUE(variables.empty());
}

TEST(VariableCollectionTest, Clear_RemovesEverything) {
  SimpleVariableCollection variables;
  int destroyed = 0;
  variables.declare("x", std::make_unique<WatchedElement>(destroyed));
  variables.declare("y", constant(1));
  variables.clear();
  EXPECT_EQ(destroyed, 1);
  EXPECT_TRUE(variables.empty());
  EXPECT_TRUE(variables.declare("x", constant(1)));
}

TEST(VariableCollectionTest, Copy_ClonesEveryDefinition) {
  SimpleVariableCollection original;
  original.declare("x", constant(2.5));
  SimpleVariableCollection copy(original);
  original.replace("x", constant(3.5));
  original.declare("y", constant(1));
  EXPECT_TRUE(valueOf(*copy.find("x")) == Value(2.5));
  EXPECT_FALSE(copy.contains("y"));

  copy = original;
  original.replace("x", constant(4.5));
  EXPECT_TRUE(valueOf(*copy.find("x")) == Value(3.5));
  EXPECT_TRUE(copy.contains("y"));
}

TEST(VariableCollectionTest, Move_TakesTheDefinitions) {
  SimpleVariableCollection original;
  original.declare("x", constant(2.5));
  SimpleVariableCollection moved(std::move(original));
  EXPECT_TRUE(moved.contains("x"));
  SimpleVariableCollection assigned;
  assigned = std::move(moved);
  EXPECT_TRUE(valueOf(*assigned.find("x")) == Value(2.5));
}

TEST(VariableCollectionTest, LookupErrors_AreRuntimeErrors) {
  SimpleVariableCollection variables;
  variables.declare("x", reference("x"));
  EXPECT_EQ(errorOf([&] { valueOf(*reference("x"), variables); }), "Circular Dependency");
  EXPECT_EQ(errorOf([&] { valueOf(*reference("y"), variables); }), "Missing Variable");
}

TEST(VariableCollectionTest, BeginLookup_UnknownName_ThrowsMissingVariableEachTime) {
  const SimpleVariableCollection variables;
  const std::string name = "speed";
  for (int i = 0; i < 2; ++i) {
    try {
      variables.beginLookup(name);
      FAIL() << "nothing thrown";
    } catch (const MissingVariable &error) {
      EXPECT_STREQ(error.what(), "Missing Variable");
      EXPECT_EQ(error.name(), "speed");
    }
  }
}

TEST(VariableCollectionTest, BeginLookup_NameInProgress_ThrowsCircularDependency) {
  SimpleVariableCollection variables;
  variables.declare("x", constant(2.5));
  variables.declare("y", constant(2.5));
  const std::string name = "x";
  const std::string sameName = "x";
  {
    const VariableLookup lookup(variables, name);
    EXPECT_EQ(lookup.definition(), variables.find("x"));
    try {
      const VariableLookup again(variables, sameName);
      FAIL() << "nothing thrown";
    } catch (const CircularDependency &error) {
      EXPECT_STREQ(error.what(), "Circular Dependency");
      EXPECT_EQ(error.name(), "x");
    }
    EXPECT_NO_THROW(lookUp(variables, "y"));
  }
  EXPECT_NO_THROW(lookUp(variables, sameName));
}

TEST(VariableCollectionTest, Circle_OfOneVariable_IsFoundByValidationAndEvaluation) {
  SimpleVariableCollection variables;
  variables.declare("x", makeUnary(UnaryOperator::Negate, reference("x")));
  const auto root = reference("x");
  for (int i = 0; i < 2; ++i) {
    EXPECT_THROW(root->validate(variables), CircularDependency);
    EXPECT_THROW(valueOf(*root, variables), CircularDependency);
  }
}

TEST(VariableCollectionTest, Circle_OfTwoVariables_NamesTheVariableMetTwice) {
  SimpleVariableCollection variables;
  variables.declare("x", reference("y"));
  variables.declare("y", reference("x"));
  try {
    valueOf(*reference("y"), variables);
    FAIL() << "nothing thrown";
  } catch (const CircularDependency &error) {
    EXPECT_EQ(error.name(), "y");
  }
}

TEST(VariableCollectionTest, Circle_Ended_LeavesTheVariablesUsable) {
  SimpleVariableCollection variables;
  variables.declare("x", reference("y"));
  variables.declare("y", reference("x"));
  EXPECT_THROW(valueOf(*reference("x"), variables), CircularDependency);
  variables.replace("y", constant(2.5));
  EXPECT_TRUE(valueOf(*reference("x"), variables) == Value(2.5));
}

TEST(VariableCollectionTest, SameVariableTwice_IsNoCircle) {
  SimpleVariableCollection variables;
  variables.declare("x", reference("y"));
  variables.declare("y", constant(2.5));
  const auto sum = makeBinary(BinaryOperator::Add, ValueType::Double, reference("x"), reference("x"));
  EXPECT_NO_THROW(sum->validate(variables));
  EXPECT_TRUE(valueOf(*sum, variables) == Value(5.0));
}

/// Every name has a definition; the next look-up begins another one inside its hook, or fails there.
class HookedCollection : public SimpleVariableCollectionBase {
public:
  void failNext() { m_fails = true; }
  void lookUpInsideNext(const std::string &name) { m_inside = name; }

protected:
  const ElementAbstract *findDefinition(const std::string & /*name*/) const override {
    if (std::exchange(m_fails, false)) {
      throw std::runtime_error("hook failed");
    }
    const std::string inside = std::exchange(m_inside, std::string());
    if (!inside.empty()) {
      const VariableLookup lookup(*this, inside);
    }
    return m_definition.get();
  }

private:
  std::unique_ptr<ElementAbstract> m_definition = constant(1.0);
  mutable std::string m_inside;
  mutable bool m_fails = false;
};

TEST(VariableCollectionTest, Hook_MayLookUpAnotherName) {
  HookedCollection variables;
  variables.lookUpInsideNext("y");
  EXPECT_NO_THROW(lookUp(variables, "x"));
}

TEST(VariableCollectionTest, Hook_ThatLooksUpItsOwnName_IsACircle) {
  HookedCollection variables;
  variables.lookUpInsideNext("x");
  EXPECT_THROW(lookUp(variables, "x"), CircularDependency);
  EXPECT_NO_THROW(lookUp(variables, "x"));
}

TEST(VariableCollectionTest, Hook_ThatThrows_LeavesTheNameFree) {
  HookedCollection variables;
  variables.failNext();
  EXPECT_EQ(errorOf([&] { lookUp(variables, "x"); }), "hook failed");
  EXPECT_NO_THROW(lookUp(variables, "x"));
}

TEST(VariableCollectionTest, EmptyCollection_FindsNothing) {
  const EmptyVariableCollection &empty = EmptyVariableCollection::instance();
  const std::string name = "x";
  EXPECT_EQ(empty.beginLookup(name), nullptr);
  EXPECT_EQ(&empty, &EmptyVariableCollection::instance());
}

} // namespace
} // namespace ExpressionBuilder
