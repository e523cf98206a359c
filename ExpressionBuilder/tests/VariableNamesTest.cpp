#include "ExpressionBuilder/src/VariableNames.h"

#include <gtest/gtest.h>

namespace ExpressionBuilder {
namespace {

TEST(VariableNamesTest, Add_NewNames_NumbersThemFromZero) {
  VariableNames names;
  EXPECT_EQ(names.add("width"), 0U);
  EXPECT_EQ(names.add("height"), 1U);
  EXPECT_EQ(names.size(), 2U);
}

TEST(VariableNamesTest, Add_KnownName_GivesNothingAndChangesNothing) {
  VariableNames names;
  names.add("width");
  EXPECT_EQ(names.add("width"), std::nullopt);
  EXPECT_EQ(names.size(), 1U);
  EXPECT_EQ(names.find("width"), 0U);
}

TEST(VariableNamesTest, At_GivesTheNameWithTheNumber) {
  VariableNames names;
  names.add("width");
  names.add("height");
  EXPECT_EQ(names.at(0), "width");
  EXPECT_EQ(names.at(1), "height");
}

} // namespace
} // namespace ExpressionBuilder
