#include "EmbeddedHost/RoundingNoise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace EmbeddedHost {
namespace {

TEST(RoundingNoiseTest, DecimalThatWasRounded_IsThatDecimal) {
  EXPECT_EQ(withoutRoundingNoise(0.30000000000000004, 0.3), 0.3);
  EXPECT_EQ(withoutRoundingNoise(3.0000000000000004, 3.0), 3.0);
  EXPECT_EQ(withoutRoundingNoise(-0.7999999999999999, 0.8), -0.8);
}

TEST(RoundingNoiseTest, DifferenceOfLargerNumbers_IsRoundedByTheirSize) {
  const double difference = 300.1 - 273.15;
  ASSERT_NE(difference, 26.95);
  EXPECT_EQ(withoutRoundingNoise(difference, 300.1), 26.95);
  EXPECT_EQ(withoutRoundingNoise(difference, difference), difference);
}

TEST(RoundingNoiseTest, WhatIsLeftOfEqualNumbers_IsZero) {
  EXPECT_EQ(withoutRoundingNoise(-0.3 + 3 * 0.1, 0.3), 0.0);
}

TEST(RoundingNoiseTest, NumberOfManyDigits_StaysBitForBit) {
  EXPECT_EQ(withoutRoundingNoise(1.0 / 3.0, 1.0), 1.0 / 3.0);
  EXPECT_EQ(withoutRoundingNoise(1.2345678901234567, 1.0), 1.2345678901234567);
  EXPECT_EQ(withoutRoundingNoise(9.8765432109876543, 1.0), 9.8765432109876543);
}

TEST(RoundingNoiseTest, SmallAndLargeNumbers_AreTakenByTheirDigits) {
  EXPECT_EQ(withoutRoundingNoise(1e-300, 1e-300), 1e-300);
  EXPECT_EQ(withoutRoundingNoise(1.7e308, 1.7e308), 1.7e308);
  EXPECT_EQ(withoutRoundingNoise(5e-324, 5e-324), 5e-324);
  EXPECT_EQ(withoutRoundingNoise(0.0, 1.0), 0.0);
}

TEST(RoundingNoiseTest, NoNumber_StaysNone) {
  EXPECT_TRUE(std::isnan(withoutRoundingNoise(std::nan(""), 1.0)));
  EXPECT_EQ(withoutRoundingNoise(std::numeric_limits<double>::infinity(), 1.0),
            std::numeric_limits<double>::infinity());
}

} // namespace
} // namespace EmbeddedHost
