#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/UnitDatabase.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace EmbeddedHost {
namespace {

const Unit &unit(const char *text) {
  const UnitResult result = UnitSystem::process().parse(text);
  if (result.unit == nullptr) {
    throw std::runtime_error(result.problem);
  }
  return *result.unit;
}

double converted(double value, const char *from, const char *to) {
  return UnitSystem::process().convert(value, unit(from), unit(to));
}

TEST(UnitSystemTest, Convert_KnownUnits) {
  const struct {
    double value;
    const char *from;
    const char *to;
    double expected;
  } rows[] = {
      {100.0, "mm", "m", 0.1},
      {25.0, "degC", "K", 298.15},
      {273.15, "K", "degC", 0.0},
      {1.0, "kW.h", "J", 3.6e6},
      {3.6, "km/h", "m/s", 1.0},
      {180.0, "degree", "rad", 3.14159265358979312},
      {1.0, "W/(m2.K)", "mW/(mm2.K)", 0.001},
  };
  for (const auto &row : rows) {
    EXPECT_NEAR(converted(row.value, row.from, row.to), row.expected, 1e-12 * std::abs(row.expected) + 1e-12)
        << row.from;
  }
}

TEST(UnitSystemTest, Parse_SpellingsOfEngineers_MeanWhatTheyMean) {
  const struct {
    const char *written;
    const char *meant;
    double inMeant;
  } rows[] = {
      {"kWh", "J", 3.6e6},
      {"Nm", "N.m", 1.0},
      {"Ah", "C", 3600.0},
      {"rev/min", "rpm", 1.0},
      {"RPM", "rpm", 1.0},
      {"deg", "degree", 1.0},
      {"deg/s", "degree/s", 1.0},
      {"kOhm", "ohm", 1000.0},
      {"\u03a9", "ohm", 1.0},
      {"m\u00b2", "m2", 1.0},
      {"W/(m\u00b2\u00b7K)", "W/(m2.K)", 1.0},
      {"s\u207b\u00b9", "Hz", 1.0},
      {"1/kWh", "1/J", 1.0 / 3.6e6},
      {"kWh/m2", "J/m2", 3.6e6},
      {" mm ", "m", 0.001},
  };
  for (const auto &row : rows) {
    EXPECT_NEAR(converted(1.0, row.written, row.meant), row.inMeant, 1e-12 * row.inMeant) << row.written;
  }
}

TEST(UnitSystemTest, Parse_ProductAfterDivision_IsRefusedAsAmbiguous) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {
      {"W/m2K", "The unit \"W/m2K\" is ambiguous: use brackets, for example W/(m2.K)."},
      {"W/m2.K", "The unit \"W/m2.K\" is ambiguous: use brackets, for example W/(m2.K)."},
      {"J/kg K", "The unit \"J/kg K\" is ambiguous: use brackets, for example J/(kg.K)."},
      {"J/kg*K", "The unit \"J/kg*K\" is ambiguous: use brackets, for example J/(kg.K)."},
      {"J/kg-K", "The unit \"J/kg-K\" is ambiguous: use brackets, for example J/(kg.K)."},
      {"W/m\u00b2K", "The unit \"W/m\u00b2K\" is ambiguous: use brackets, for example W/(m2.K)."},
      {"W/m/s.K", "The unit \"W/m/s.K\" is ambiguous: use brackets."},
  };
  for (const auto &row : rows) {
    const UnitResult result = UnitSystem::process().parse(row.text);
    EXPECT_EQ(result.unit, nullptr) << row.text;
    EXPECT_EQ(result.problem, row.problem);
  }
}

TEST(UnitSystemTest, Parse_ClearDivisions_AreAccepted) {
  for (const char *text :
       {"W/m2", "W/(m2.K)", "J/kg/K", "m3/h", "W.m-2.K-1", "1/s", "m / s", "kg/m^3", "m.s-2"}) {
    EXPECT_EQ(UnitSystem::process().parse(text).problem, "") << text;
  }
}

TEST(UnitSystemTest, Parse_NoUnit_IsRefusedWithTheReason) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {
      {"", "The unit is empty."},
      {"EUR", "The unit \"EUR\" is refused: a currency is no unit of measurement; declare a plain number and "
              "name the "
              "currency in its label."},
      {"EUR/kg",
       "The unit \"EUR/kg\" is refused: a currency is no unit of measurement; declare a plain number and "
       "name the currency in its label."},
      {"dB", "The unit \"dB\" is refused: decibels are a logarithmic ratio; declare a plain number and name "
             "them in "
             "its label."},
      {"delta_degC", "The unit \"delta_degC\" is refused: write K for a difference of temperatures."},
      {"blah", "The unit \"blah\" is unknown; products are written as in N.m, powers as in m2."},
  };
  for (const auto &row : rows) {
    const UnitResult result = UnitSystem::process().parse(row.text);
    EXPECT_EQ(result.unit, nullptr) << row.text;
    EXPECT_EQ(result.problem, row.problem);
  }
}

TEST(UnitSystemTest, Parse_SameText_GivesTheSameUnit) {
  EXPECT_EQ(&unit("mm"), &unit("mm"));
  EXPECT_EQ(unit("kWh").text(), "kWh");
}

TEST(UnitSystemTest, Convert_OtherQuantity_IsNoNumber) {
  EXPECT_FALSE(UnitSystem::process().areConvertible(unit("m"), unit("s")));
  EXPECT_TRUE(std::isnan(converted(1.0, "m", "s")));
}

TEST(UnitSystemTest, Convert_SameUnit_KeepsEveryBit) {
  const double value = converted(-0.0, "mm", "mm");
  EXPECT_TRUE(std::signbit(value));
  EXPECT_EQ(converted(0.1 + 0.2, "degC", "degC"), 0.1 + 0.2);
}

TEST(UnitSystemTest, MissingDatabase_IsSaidWithWhatToInstall) {
  UnitDatabase units("/no/such/database.xml");

  const UnitResult result = units.parse("mm");

  EXPECT_EQ(result.unit, nullptr);
  EXPECT_EQ(result.problem,
            "The unit database udunits2.xml was not found: install the package libudunits2-data, or "
            "name the file in UDUNITS2_XML_PATH.");
}

} // namespace
} // namespace EmbeddedHost
