#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/Exceptions.h"
#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace ExpressionBuilder {
namespace {

/// A collection of an application's own, with one variable and nothing to do when a look-up has ended.
class OneVariable : public VariableCollectionAbstract {
public:
  const ElementAbstract *beginLookup(const std::string &name) const override {
    static const ElementConstant<double> value(2.5);
    return name == "x" ? &value : nullptr;
  }
};

/// A guarded collection of an application's own: of the one name "x".
class GuardedVariable : public SimpleVariableCollectionBase {
public:
  explicit GuardedVariable(const ElementAbstract &definition) : m_definition(&definition) {}

private:
  const ElementAbstract *findDefinition(const std::string &name) const override {
    return name == "x" ? m_definition : nullptr;
  }

  const ElementAbstract *m_definition;
};

TEST(ApplicationCollectionTest, EndedLookup_OfACollectionThatDoesNotCare_CanBeginAgain) {
  const OneVariable variables;
  const std::string name = "x";
  for (int time = 0; time < 2; ++time) {
    const VariableLookup lookup(variables, name);
    EXPECT_NE(lookup.definition(), nullptr) << time;
  }
}

TEST(ApplicationCollectionTest, Assignment_DoesNotTakeOverLookUpsInProgress) {
  const ElementConstant<double> first(1.0);
  const ElementConstant<double> second(2.0);
  const GuardedVariable source(first);
  GuardedVariable target(second);
  const std::string name = "x";
  const VariableLookup inProgress(source, name);
  target = source;
  EXPECT_EQ(VariableLookup(target, name).definition(), &first);
  EXPECT_THROW(VariableLookup(source, name), CircularDependency);
}

TEST(ApplicationCollectionTest, Assignment_KeepsItsOwnLookUpsInProgress) {
  const ElementConstant<double> first(1.0);
  const ElementConstant<double> second(2.0);
  const GuardedVariable source(first);
  GuardedVariable target(second);
  const std::string name = "x";
  const VariableLookup inProgress(target, name);
  target = source;
  EXPECT_THROW(VariableLookup(target, name), CircularDependency);
}

TEST(ApplicationCollectionTest, EvaluateRows_OverAnApplicationsOwnCollection_IsAnInvalidCast) {
  const Expression<double, OneVariable> expression(std::make_unique<ElementConstant<double>>(1.0));
  double result = 7.0;
  try {
    expression.evaluateRows({}, 1, &result);
    ADD_FAILURE() << "nothing thrown";
  } catch (const std::logic_error &error) {
    EXPECT_STREQ(error.what(), "Invalid Cast");
  }
  EXPECT_EQ(result, 7.0);
}

} // namespace
} // namespace ExpressionBuilder
