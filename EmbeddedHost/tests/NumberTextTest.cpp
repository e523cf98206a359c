#include "EmbeddedHost/src/model/NumberText.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace EmbeddedHost {
namespace {

TEST(NumberTextTest, Doubles_AreWrittenInTheirShortestLosslessForm) {
  const struct {
    double value;
    const char *text;
  } rows[] = {
      {0.1, "0.1"},
      {0.1 + 0.2, "0.30000000000000004"},
      {100.0, "100"},
      {-0.0, "-0"},
      {1e300, "1e+300"},
      {5e-324, "5e-324"},
      {std::numeric_limits<double>::infinity(), "inf"},
      {-std::numeric_limits<double>::infinity(), "-inf"},
      {std::numeric_limits<double>::quiet_NaN(), "nan"},
      {1234567.5, "1234567.5"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(numberText(row.value), row.text);
  }
}

TEST(NumberTextTest, LeadingNumber_TakesTheLongestNumber) {
  const struct {
    const char *text;
    double value;
    std::size_t length;
  } rows[] = {
      {"12.5mm", 12.5, 4},   {"+3", 3.0, 2},  {".5 m", 0.5, 2}, {"1.", 1.0, 2},
      {"-1e-3s", -0.001, 5}, {"1,5", 1.0, 1}, {"2e", 2.0, 1},   {"inf", INFINITY, 3},
  };
  for (const auto &row : rows) {
    const auto number = readLeadingNumber(row.text);
    ASSERT_TRUE(number.has_value()) << row.text;
    EXPECT_EQ(number->value, row.value) << row.text;
    EXPECT_EQ(number->length, row.length) << row.text;
  }
}

TEST(NumberTextTest, LeadingNumber_NoNumber_IsEmpty) {
  for (const char *text : {"", "mm", "+-3", "++3", "-", ".", "1e999", "1e-999", "+"}) {
    EXPECT_FALSE(readLeadingNumber(text).has_value()) << text;
  }
}

TEST(NumberTextTest, Integer_ReadsWholeTextOnly) {
  EXPECT_EQ(readInteger("-42"), -42);
  EXPECT_EQ(readInteger("+7"), 7);
  EXPECT_EQ(readInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  for (const char *text : {"", "5.0", "5 ", "0x10", "9223372036854775808", "+-5"}) {
    EXPECT_FALSE(readInteger(text).has_value()) << text;
  }
}

TEST(NumberTextTest, Trimmed_TakesBlanksFromBothEnds) {
  EXPECT_EQ(trimmed(" \t a b\r\n"), "a b");
  EXPECT_EQ(trimmed(" \n "), "");
}

} // namespace
} // namespace EmbeddedHost
