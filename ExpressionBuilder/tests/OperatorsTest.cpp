#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <climits>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::errorOf;
using Testing::shown;
using Testing::Value;
using Testing::valueOf;
using namespace std::string_literals;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct BinaryRow {
  BinaryOperator operation;
  Value left;
  Value right;
  Value expected;
};

ValueType codeOf(const Value &value) {
  return constant(value)->type();
}

std::unique_ptr<ElementAbstract> binary(BinaryOperator operation, const Value &left, const Value &right) {
  return makeBinary(operation, codeOf(right), constant(left), constant(right));
}

void expectRows(const std::vector<BinaryRow> &rows) {
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE("row " + std::to_string(i) + ": " + shown(rows[i].left) + ", " + shown(rows[i].right));
    const auto node = binary(rows[i].operation, rows[i].left, rows[i].right);
    EXPECT_EQ(node->type(), codeOf(rows[i].expected));
    const Value value = valueOf(*node);
    EXPECT_TRUE(value == rows[i].expected) << shown(value) << " instead of " << shown(rows[i].expected);
  }
}

TEST(OperatorsTest, Int_EveryBinaryOperator) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, 7, 3, 10},
      {B::Subtract, 7, 3, 4},
      {B::Multiply, 7, 3, 21},
      {B::Divide, 7, 3, 2},
      {B::Divide, -7, 3, -2},
      {B::Divide, 7, -3, -2},
      {B::Equal, 7, 7, true},
      {B::Equal, 7, 3, false},
      {B::NotEqual, 7, 7, false},
      {B::NotEqual, 7, 3, true},
      {B::Less, 3, 7, true},
      {B::Less, 7, 7, false},
      {B::Less, 7, 3, false},
      {B::LessEqual, 3, 7, true},
      {B::LessEqual, 7, 7, true},
      {B::LessEqual, 7, 3, false},
      {B::Greater, 7, 3, true},
      {B::Greater, 7, 7, false},
      {B::Greater, 3, 7, false},
      {B::GreaterEqual, 7, 3, true},
      {B::GreaterEqual, 7, 7, true},
      {B::GreaterEqual, 3, 7, false},
      {B::And, 7, -3, true},
      {B::And, 7, 0, false},
      {B::And, 0, 7, false},
      {B::Or, 0, 7, true},
      {B::Or, 7, 0, true},
      {B::Or, 0, 0, false},
  });
}

TEST(OperatorsTest, LongLong_EveryBinaryOperator) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, 5000000000LL, 3LL, 5000000003LL},
      {B::Subtract, 3LL, 5000000000LL, -4999999997LL},
      {B::Multiply, 5000000000LL, 3LL, 15000000000LL},
      {B::Divide, 15000000001LL, 3LL, 5000000000LL},
      {B::Divide, -7LL, 2LL, -3LL},
      {B::Equal, 5000000000LL, 5000000000LL, true},
      {B::Equal, 5000000000LL, 705032704LL, false},
      {B::NotEqual, 5000000000LL, 705032704LL, true},
      {B::NotEqual, 1LL, 1LL, false},
      {B::Less, 705032704LL, 5000000000LL, true},
      {B::Less, 1LL, 1LL, false},
      {B::LessEqual, 1LL, 1LL, true},
      {B::LessEqual, 2LL, 1LL, false},
      {B::Greater, 5000000000LL, 705032704LL, true},
      {B::Greater, 1LL, 1LL, false},
      {B::GreaterEqual, 1LL, 1LL, true},
      {B::GreaterEqual, 1LL, 2LL, false},
      {B::And, 4294967296LL, 1LL, true},
      {B::And, 0LL, 1LL, false},
      {B::Or, 0LL, 4294967296LL, true},
      {B::Or, 0LL, 0LL, false},
  });
}

TEST(OperatorsTest, Double_EveryBinaryOperator) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, 7.5, 2.0, 9.5},        {B::Subtract, 7.5, 2.0, 5.5},      {B::Multiply, 7.5, 2.0, 15.0},
      {B::Divide, 7.5, 2.0, 3.75},    {B::Divide, 1.0, 0.0, kInfinity},  {B::Divide, -1.0, 0.0, -kInfinity},
      {B::Equal, 0.5, 0.5, true},     {B::Equal, kNaN, kNaN, false},     {B::NotEqual, 0.5, 0.25, true},
      {B::NotEqual, 0.5, 0.5, false}, {B::Less, 0.25, 0.5, true},        {B::Less, 0.5, 0.5, false},
      {B::LessEqual, 0.5, 0.5, true}, {B::LessEqual, 0.5, 0.25, false},  {B::Greater, 0.5, 0.25, true},
      {B::Greater, 0.5, 0.5, false},  {B::GreaterEqual, 0.5, 0.5, true}, {B::GreaterEqual, 0.25, 0.5, false},
      {B::And, 0.5, -0.5, true},      {B::And, 0.5, 0.0, false},         {B::And, kNaN, 1.0, true},
      {B::Or, 0.0, 0.5, true},        {B::Or, 0.0, -0.0, false},         {B::Or, 0.0, kNaN, true},
  });
  EXPECT_TRUE(std::isnan(std::get<double>(valueOf(*binary(B::Divide, 0.0, 0.0)))));
}

TEST(OperatorsTest, Bool_ArithmeticCountsAsInt) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, true, true, 2},
      {B::Add, false, true, 1},
      {B::Subtract, true, true, 0},
      {B::Subtract, false, true, -1},
      {B::Multiply, true, true, 1},
      {B::Multiply, true, false, 0},
  });
}

TEST(OperatorsTest, Bool_ComparisonAndLogic) {
  using B = BinaryOperator;
  expectRows({
      {B::Equal, true, true, true},
      {B::Equal, true, false, false},
      {B::NotEqual, true, false, true},
      {B::NotEqual, false, false, false},
      {B::Less, false, true, true},
      {B::Less, true, false, false},
      {B::LessEqual, true, true, true},
      {B::LessEqual, true, false, false},
      {B::Greater, true, false, true},
      {B::Greater, false, true, false},
      {B::GreaterEqual, false, false, true},
      {B::GreaterEqual, false, true, false},
      {B::And, true, true, true},
      {B::And, true, false, false},
      {B::And, false, true, false},
      {B::Or, false, true, true},
      {B::Or, true, false, true},
      {B::Or, false, false, false},
  });
}

TEST(OperatorsTest, String_ConcatenationAndBytewiseComparison) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, "ab"s, "c"s, "abc"s},
      {B::Add, "a\0b"s, ""s, "a\0b"s},
      {B::Equal, "ab"s, "ab"s, true},
      {B::Equal, "a\0b"s, "a\0c"s, false},
      {B::NotEqual, "ab"s, "AB"s, true},
      {B::NotEqual, "ab"s, "ab"s, false},
      {B::Less, "abc"s, "b"s, true},
      {B::Less, "b"s, "abc"s, false},
      {B::Less, "z"s, "\xC3\xA4"s, true},
      {B::LessEqual, "ab"s, "ab"s, true},
      {B::LessEqual, "ab"s, "a"s, false},
      {B::Greater, "b"s, "abc"s, true},
      {B::Greater, "ab"s, "ab"s, false},
      {B::GreaterEqual, "ab"s, "ab"s, true},
      {B::GreaterEqual, "a"s, "ab"s, false},
  });
}

TEST(OperatorsTest, MissingCellsOfTheTable_AreUnsupported) {
  using B = BinaryOperator;
  EXPECT_EQ(errorOf([] { binary(B::Divide, true, true); }), "Unsupported Operator");
  for (const B operation : {B::Subtract, B::Multiply, B::Divide, B::And, B::Or}) {
    EXPECT_EQ(errorOf([operation] { binary(operation, "a"s, "b"s); }), "Unsupported Operator");
  }
  EXPECT_EQ(errorOf([] { makeUnary(UnaryOperator::Negate, constant(true)); }), "Unsupported Operator");
  EXPECT_EQ(errorOf([] { makeUnary(UnaryOperator::Negate, constant("a"s)); }), "Unsupported Operator");
  EXPECT_EQ(errorOf([] { makeUnary(UnaryOperator::LogicalNot, constant("a"s)); }), "Unsupported Operator");
}

TEST(OperatorsTest, UnaryOperators_EveryType) {
  struct Row {
    UnaryOperator operation;
    Value operand;
    Value expected;
  };
  using U = UnaryOperator;
  const std::vector<Row> rows = {
      {U::Negate, 7, -7},
      {U::Negate, 5000000000LL, -5000000000LL},
      {U::Negate, 0.5, -0.5},
      {U::LogicalNot, 0, true},
      {U::LogicalNot, -7, false},
      {U::LogicalNot, 0LL, true},
      {U::LogicalNot, 4294967296LL, false},
      {U::LogicalNot, 0.0, true},
      {U::LogicalNot, -0.0, true},
      {U::LogicalNot, 0.5, false},
      {U::LogicalNot, kNaN, false},
      {U::LogicalNot, false, true},
      {U::LogicalNot, true, false},
  };
  for (const Row &row : rows) {
    const auto node = makeUnary(row.operation, constant(row.operand));
    EXPECT_EQ(node->type(), codeOf(row.expected)) << shown(row.operand);
    const Value value = valueOf(*node);
    EXPECT_TRUE(value == row.expected) << shown(row.operand) << " gives " << shown(value);
  }
}

TEST(OperatorsTest, IntegerArithmetic_WrapsAround) {
  using B = BinaryOperator;
  expectRows({
      {B::Add, INT_MAX, 1, INT_MIN},
      {B::Subtract, INT_MIN, 1, INT_MAX},
      {B::Multiply, 65536, 65536, 0},
      {B::Multiply, INT_MAX, 2, -2},
      {B::Multiply, INT_MIN, -1, INT_MIN},
      {B::Add, LLONG_MAX, 1LL, LLONG_MIN},
      {B::Subtract, LLONG_MIN, 1LL, LLONG_MAX},
      {B::Multiply, LLONG_MAX, 2LL, -2LL},
  });
  EXPECT_TRUE(valueOf(*makeUnary(UnaryOperator::Negate, constant(INT_MIN))) == Value(INT_MIN));
  EXPECT_TRUE(valueOf(*makeUnary(UnaryOperator::Negate, constant(LLONG_MIN))) == Value(LLONG_MIN));
}

TEST(OperatorsTest, IntegerDivision_ByZero_Throws) {
  const auto intNode = binary(BinaryOperator::Divide, 1, 0);
  const auto longNode = binary(BinaryOperator::Divide, 0LL, 0LL);
  EXPECT_EQ(errorOf([&] { valueOf(*intNode); }), "Integer division by zero");
  EXPECT_EQ(errorOf([&] { valueOf(*longNode); }), "Integer division by zero");
}

TEST(OperatorsTest, IntegerDivision_MostNegativeByMinusOne_Throws) {
  const auto intNode = binary(BinaryOperator::Divide, INT_MIN, -1);
  const auto longNode = binary(BinaryOperator::Divide, LLONG_MIN, -1LL);
  EXPECT_EQ(errorOf([&] { valueOf(*intNode); }), "Integer overflow");
  EXPECT_EQ(errorOf([&] { valueOf(*longNode); }), "Integer overflow");
  EXPECT_TRUE(valueOf(*binary(BinaryOperator::Divide, INT_MIN + 1, -1)) == Value(INT_MAX));
}

} // namespace
} // namespace ExpressionBuilder
