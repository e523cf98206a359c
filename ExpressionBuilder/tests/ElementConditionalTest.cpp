#include "ExpressionBuilder/ElementConditional.h"

#include "ExpressionBuilder/ElementConstant.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace ExpressionBuilder {
namespace {

TEST(ElementConditionalTest, Condition_IsTheNodeThatWasGiven) {
  auto condition = std::make_unique<ElementConstant<bool>>(true);
  const Element<bool> *const given = condition.get();
  const ElementConditional<double> node(std::move(condition), std::make_unique<ElementConstant<double>>(1.0),
                                        std::make_unique<ElementConstant<double>>(2.0));
  EXPECT_EQ(node.condition(), given);
}

TEST(ElementConditionalTest, Condition_Missing_IsNull) {
  const ElementConditional<double> node(nullptr, std::make_unique<ElementConstant<double>>(1.0),
                                        std::make_unique<ElementConstant<double>>(2.0));
  EXPECT_EQ(node.condition(), nullptr);
}

} // namespace
} // namespace ExpressionBuilder
