#include "ExpressionBuilder/ValueType.h"

#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

namespace ExpressionBuilder {
namespace {

using Testing::errorOf;

constexpr auto kZero = static_cast<ValueType>(0);
constexpr auto kSix = static_cast<ValueType>(6);

TEST(ValueTypeTest, Codes_AreOneToFive) {
  EXPECT_EQ(static_cast<int>(ValueType::Double), 1);
  EXPECT_EQ(static_cast<int>(ValueType::Int), 2);
  EXPECT_EQ(static_cast<int>(ValueType::Bool), 3);
  EXPECT_EQ(static_cast<int>(ValueType::String), 4);
  EXPECT_EQ(static_cast<int>(ValueType::LongLong), 5);
}

TEST(ValueTypeTest, ValueTypeName_NamesEachType) {
  EXPECT_STREQ(valueTypeName(ValueType::Double), "double");
  EXPECT_STREQ(valueTypeName(ValueType::Int), "int");
  EXPECT_STREQ(valueTypeName(ValueType::Bool), "bool");
  EXPECT_STREQ(valueTypeName(ValueType::String), "string");
  EXPECT_STREQ(valueTypeName(ValueType::LongLong), "long long");
}

TEST(ValueTypeTest, ValueTypeName_UnknownCode_Throws) {
  EXPECT_EQ(errorOf([] { valueTypeName(kZero); }), "logic_error: Not implemented");
  EXPECT_EQ(errorOf([] { valueTypeName(kSix); }), "logic_error: Not implemented");
}

TEST(ValueTypeTest, IsKnownValueType_OneToFiveOnly) {
  EXPECT_FALSE(isKnownValueType(kZero));
  EXPECT_TRUE(isKnownValueType(ValueType::Double));
  EXPECT_TRUE(isKnownValueType(ValueType::LongLong));
  EXPECT_FALSE(isKnownValueType(kSix));
  EXPECT_FALSE(isKnownValueType(static_cast<ValueType>(-1)));
}

TEST(ValueTypeTest, MergedValueType_EveryPair) {
  using V = ValueType;
  struct Row {
    V first, second, merged;
  };
  const Row rows[] = {
      {V::Double, V::Double, V::Double},
      {V::Double, V::Int, V::Double},
      {V::Double, V::Bool, V::Double},
      {V::Double, V::String, V::String},
      {V::Double, V::LongLong, V::Double},
      {V::Int, V::Int, V::Int},
      {V::Int, V::Bool, V::Int},
      {V::Int, V::String, V::String},
      {V::Int, V::LongLong, V::Int},
      {V::Bool, V::Bool, V::Bool},
      {V::Bool, V::String, V::String},
      {V::Bool, V::LongLong, V::LongLong},
      {V::String, V::String, V::String},
      {V::String, V::LongLong, V::String},
      {V::LongLong, V::LongLong, V::LongLong},
  };
  for (const Row &row : rows) {
    EXPECT_EQ(mergedValueType(row.first, row.second), row.merged)
        << valueTypeName(row.first) << " and " << valueTypeName(row.second);
    EXPECT_EQ(mergedValueType(row.second, row.first), row.merged)
        << valueTypeName(row.second) << " and " << valueTypeName(row.first);
  }
}

TEST(ValueTypeTest, MergedValueType_NoKnownType_Throws) {
  EXPECT_EQ(errorOf([] { mergedValueType(kZero, kSix); }), "logic_error: Invalid option");
  EXPECT_EQ(errorOf([] { mergedValueType(kZero, kZero); }), "logic_error: Invalid option");
}

} // namespace
} // namespace ExpressionBuilder
