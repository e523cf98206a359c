#include "Workbench/UnitSystem.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

TEST(HostUnitsTest, Units_AreThoseOfTheHost) {
  const HostUnits units;
  EXPECT_TRUE(units.isUnit("kohm"));
  EXPECT_TRUE(units.isUnit(""));
  EXPECT_FALSE(units.isUnit("kohmm"));
  EXPECT_NE(units.problemOf("kohmm"), "");
}

TEST(HostUnitsTest, Value_IsConvertedWithOffset) {
  const HostUnits units;
  EXPECT_DOUBLE_EQ(units.convert(20.0, "degC", "K").value_or(0.0), 293.15);
  EXPECT_DOUBLE_EQ(units.convert(10.0, "kohm", "ohm").value_or(0.0), 10000.0);
  EXPECT_EQ(units.convert(0.1, "mm", "mm").value_or(0.0), 0.1);
  EXPECT_DOUBLE_EQ(units.convert(50.0, "%", "").value_or(0.0), 0.5);
}

TEST(HostUnitsTest, Difference_IsConvertedWithoutOffset) {
  const HostUnits units;
  EXPECT_DOUBLE_EQ(units.convertDifference(5.0, "degC", "K").value_or(0.0), 5.0);
  EXPECT_NEAR(units.convertDifference(9.0, "degF", "degC").value_or(0.0), 5.0, 1e-12);
  EXPECT_DOUBLE_EQ(units.convertDifference(2.0, "mm", "m").value_or(0.0), 0.002);
}

TEST(HostUnitsTest, UnitsOfOtherThings_AreNotConverted) {
  const HostUnits units;
  EXPECT_FALSE(units.convert(1.0, "m", "s").has_value());
  EXPECT_FALSE(units.convert(1.0, "", "m").has_value());
  EXPECT_FALSE(units.convert(1.0, "nonsense", "m").has_value());
  EXPECT_FALSE(units.convertDifference(1.0, "m", "s").has_value());
}

TEST(HostUnitsTest, Value_IsThatWhichAPersonWouldWrite) {
  const HostUnits units;
  EXPECT_EQ(units.convert(3.0, "mm", "cm"), 0.3);
  EXPECT_EQ(units.convert(0.3, "cm", "mm"), 3.0);
  EXPECT_EQ(units.convert(300.1, "K", "degC"), 26.95);
  EXPECT_EQ(units.convert(12.0, "mm", "m"), 0.012);
  EXPECT_EQ(units.convertDifference(0.3, "cm", "mm"), 3.0);
}

} // namespace
} // namespace Workbench
