#include "ExpressionBuilder/BuilderBase.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

// What the generator does not make: texts at the limits, and functions that are declared and no more.

namespace {

using ExpressionBuilder::BuilderBase;
using ExpressionBuilder::ValueType;

std::string errorOf(const BuilderBase &builder, const std::string &text) {
  try {
    builder.build(text);
  } catch (const std::runtime_error &error) {
    return error.what();
  }
  return "";
}

std::string nested(std::size_t levels) {
  return std::string(levels, '(') + "1" + std::string(levels, ')');
}

} // namespace

TEST(LanguageLimitsTest, TextOfMoreThanSixteenMebibytes_IsASyntaxError) {
  const BuilderBase builder;
  const std::size_t limit = std::size_t{16} * 1024 * 1024;
  EXPECT_EQ(errorOf(builder, std::string(limit - 1, ' ') + "1"), "");
  EXPECT_EQ(errorOf(builder, std::string(limit, ' ') + "1"), "Syntax error");
}

TEST(LanguageLimitsTest, NestingOfAMillionLevels_IsASyntaxError) {
  const BuilderBase builder;
  // The text as a whole is the first level.
  EXPECT_EQ(errorOf(builder, nested(999'999)), "");
  EXPECT_EQ(errorOf(builder, nested(1'000'000)), "Syntax error");
}

TEST(LanguageLimitsTest, OverloadWithoutConstructor_IsNoOverload) {
  BuilderBase builder;
  builder.registerOverload("nothing", {ValueType::Double}, nullptr);
  EXPECT_EQ(errorOf(builder, "nothing(1.0)"), "Syntax Error : No Overload");
  EXPECT_EQ(errorOf(builder, "nothing(1)"), "Function does not support the current argument types");
}
