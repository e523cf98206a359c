#include "ExpressionBuilder/NumberText.h"

#include <climits>
#include <gtest/gtest.h>

#include <cerrno>
#include <cfloat>
#include <limits>

namespace ExpressionBuilder {
namespace {

void expectDouble(const std::string &text, double value) {
  const LiteralNumber<double> number = readDoubleLiteral(text);
  EXPECT_EQ(number.status, LiteralStatus::Ok) << text;
  EXPECT_EQ(number.value, value) << text;
}

TEST(NumberTextTest, ReadDoubleLiteral_TakesTheLongestPrefix) {
  expectDouble("1.5", 1.5);
  expectDouble(".5", 0.5);
  expectDouble("5.", 5.0);
  expectDouble("+1.5", 1.5);
  expectDouble("-1e-5", -0.00001);
  expectDouble("1E3", 1000.0);
  expectDouble("1e", 1.0);
  expectDouble("1e+", 1.0);
  expectDouble("1e5.2", 100000.0);
  expectDouble("1.7976931348623157e308", DBL_MAX);
  expectDouble("2.2250738585072014e-308", DBL_MIN);
  expectDouble("0.0e-400", 0.0);
}

TEST(NumberTextTest, ReadDoubleLiteral_TooLargeOrTooSmall_IsOutOfRange) {
  EXPECT_EQ(readDoubleLiteral("1e400").status, LiteralStatus::OutOfRange);
  EXPECT_EQ(readDoubleLiteral("-1e400").status, LiteralStatus::OutOfRange);
  EXPECT_EQ(readDoubleLiteral("1e-310").status, LiteralStatus::OutOfRange);
  EXPECT_EQ(readDoubleLiteral("1e-400").status, LiteralStatus::OutOfRange);
}

TEST(NumberTextTest, ReadDoubleLiteral_WithoutDigits_IsNotANumber) {
  for (const char *text : {".", "-.", ".e5", "+e1", ""}) {
    EXPECT_EQ(readDoubleLiteral(text).status, LiteralStatus::NotANumber) << text;
  }
}

TEST(NumberTextTest, ReadDoubleLiteral_KeepsErrno) {
  errno = EDOM;
  readDoubleLiteral("1e400");
  EXPECT_EQ(errno, EDOM);
}

TEST(NumberTextTest, ReadIntLiteral_Range) {
  EXPECT_EQ(readIntLiteral("2147483647").value, INT_MAX);
  EXPECT_EQ(readIntLiteral("-2147483648").value, INT_MIN);
  EXPECT_EQ(readIntLiteral("+5").value, 5);
  EXPECT_EQ(readIntLiteral("007").value, 7);
  EXPECT_EQ(readIntLiteral("2147483647").status, LiteralStatus::Ok);
  EXPECT_EQ(readIntLiteral("-2147483648").status, LiteralStatus::Ok);
  EXPECT_EQ(readIntLiteral("2147483648").status, LiteralStatus::OutOfRange);
  EXPECT_EQ(readIntLiteral("-2147483649").status, LiteralStatus::OutOfRange);
  EXPECT_EQ(readIntLiteral("+2147483648").status, LiteralStatus::OutOfRange);
}

TEST(NumberTextTest, ReadIntLiteral_WithoutDigits_IsNotANumber) {
  for (const char *text : {"", "-", "+", "+-1"}) {
    EXPECT_EQ(readIntLiteral(text).status, LiteralStatus::NotANumber) << text;
  }
}

TEST(NumberTextTest, ShortestText_ReadsBackAsTheSameValue) {
  EXPECT_EQ(shortestText(3.0), "3");
  EXPECT_EQ(shortestText(0.1), "0.1");
  EXPECT_EQ(shortestText(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(shortestText(1e100), "1e+100");
  EXPECT_EQ(shortestText(-0.0), "-0");
  EXPECT_EQ(shortestText(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(shortestText(-std::numeric_limits<double>::infinity()), "-inf");
  EXPECT_EQ(shortestText(-std::numeric_limits<double>::quiet_NaN()), "nan");
}

} // namespace
} // namespace ExpressionBuilder
