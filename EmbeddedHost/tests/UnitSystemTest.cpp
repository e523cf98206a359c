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
      {0.0, "degC", "K", 273.15},
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

TEST(UnitSystemTest, ConvertTo_GivesWhatConvertGives) {
  const Unit &from = unit("degC");
  for (const char *to : {"K", "degF", "K", "K", " K ", "degC"}) {
    EXPECT_EQ(UnitSystem::process().convertTo(21.3, from, to), converted(21.3, "degC", to)) << to;
  }
}

TEST(UnitSystemTest, ConvertTo_WhatIsNoUnitOrAnotherQuantity_GivesNothing) {
  for (const char *to : {"m", "m", "K", "no unit", "", "m"}) {
    EXPECT_EQ(UnitSystem::process().convertTo(1.0, unit("degC"), to).has_value(), std::string(to) == "K")
        << to;
  }
}

TEST(UnitSystemTest, Parse_SpellingsOfEngineers_MeanWhatTheyMean) {
  const struct {
    const char *written;
    const char *meant;
    double inMeant;
  } rows[] = {
      {"kWh", "J", 3.6e6},
      {"Wh", "J", 3600.0},
      {"Nm", "J", 1.0},
      {"Ah", "C", 3600.0},
      {"kvar", "W", 1000.0},
      {"rev/min", "rad/s", 0.10471975511965977},
      {"RPM", "rad/s", 0.10471975511965977},
      {"U/min", "rad/s", 0.10471975511965977},
      {"deg", "rad", 0.017453292519943295},
      {"deg/s", "rad/s", 0.017453292519943295},
      {"kOhm", "V/A", 1000.0},
      {"\u03a9", "V/A", 1.0},
      {"m\u00b2", "m2", 1.0},
      {"W/(m\u00b2\u00b7K)", "W/(m2.K)", 1.0},
      {"s\u207b\u00b9", "Hz", 1.0},
      {"1/kWh", "1/J", 1.0 / 3.6e6},
      {"kWh/m2", "J/m2", 3.6e6},
      {"kWh.m-2", "J/m2", 3.6e6},
      {"g.kWh-1", "kg/J", 0.001 / 3.6e6},
      {"Nm/rad", "J/rad", 1.0},
      {"mm/rev", "m/rad", 0.00015915494309189535},
      {"m2K/W", "m2.K/W", 1.0},
      {"W/(m2K)", "W/(m2.K)", 1.0},
      {"kgm2", "kg.m2", 1.0},
      {"kg m2", "kg.m2", 1.0},
      {"kg m^2", "kg.m2", 1.0},
      {"sq in", "m2", 6.4516e-4},
      {"psi/sq in", "Pa/m2", 6894.757293168361 / 6.4516e-4},
      {"mmH2O", "Pa", 9.80665},
      {"10-3 m", "m", 0.001},
      {"2*3 m", "m", 6.0},
      {"1000rpm", "rad/s", 104.71975511965977},
      {"-", "1", 1.0},
      {"[-]", "1", 1.0},
      {"[mm]", "m", 0.001},
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
      {"W/m2K", "The unit \"W/m2K\" is ambiguous: W/(m2.K) or W.K/m2; write the one that is meant."},
      {"J/kg K", "The unit \"J/kg K\" is ambiguous: J/(kg.K) or J.K/kg; write the one that is meant."},
      {"J/kg*K", "The unit \"J/kg*K\" is ambiguous: J/(kg.K) or J.K/kg; write the one that is meant."},
      {"J/kgK", "The unit \"J/kgK\" is ambiguous: J/(kg.K) or J.K/kg; write the one that is meant."},
      {"W/m\u00b2K",
       "The unit \"W/m\u00b2K\" is ambiguous: W/(m2.K) or W.K/m2; write the one that is meant."},
      {"W/m/s.K", "The unit \"W/m/s.K\" is ambiguous: W/(m.s.K) or W.K/(m.s); write the one that is meant."},
      {"1/(W/m2K)",
       "The unit \"1/(W/m2K)\" is ambiguous: 1/(W/(m2.K)) or 1/(W.K/m2); write the one that is meant."},
      {"1/2 m", "The unit \"1/2 m\" is ambiguous: 1/(2.m) or m/2; write the one that is meant."},
  };
  for (const auto &row : rows) {
    const UnitResult result = UnitSystem::process().parse(row.text);
    EXPECT_EQ(result.unit, nullptr) << row.text;
    EXPECT_EQ(result.problem, row.problem);
  }
}

TEST(UnitSystemTest, Parse_OtherReading_IsRefusedWithBoth) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {
      {"mph", "The unit \"mph\" is ambiguous: mile/h or milliphot; write the one that is meant."},
      {"PS", "The unit \"PS\" is ambiguous: metric_horsepower or petasiemens; write the one that is meant."},
      {"W/mK", "The unit \"W/mK\" is ambiguous: W/(m.K) or W/millikelvin; write the one that is meant."},
      {"W/(mK)",
       "The unit \"W/(mK)\" is ambiguous: W/(m.K) or W/(millikelvin); write the one that is meant."},
      {"degree C",
       "The unit \"degree C\" is ambiguous: degC or degree.coulomb; write the one that is meant."},
      {"W/deg C",
       "The unit \"W/deg C\" is ambiguous: W/degC or W/(degree.coulomb); write the one that is meant."},
      {"W/m2 deg C",
       "The unit \"W/m2 deg C\" is ambiguous: W/(m2.degC) or W.degC/m2; write the one that is meant."},
      {"\"", "The unit \"\"\" is ambiguous: inch or arcsec; write the one that is meant."},
      {"kWh/a", "The unit \"kWh/a\" is ambiguous: kWh/year or kWh/are; write the one that is meant."},
      {"ft-lb", "The unit \"ft-lb\" is ambiguous: ft.lbf or foot.pound; write the one that is meant."},
      {"Nm2", "The unit \"Nm2\" is ambiguous: (N.m)2 or N.m2; write the one that is meant."},
      {"K (kelvin)", "The unit \"K (kelvin)\" is ambiguous: K or K.(kelvin); write the one that is meant."},
  };
  for (const auto &row : rows) {
    const UnitResult result = UnitSystem::process().parse(row.text);
    EXPECT_EQ(result.unit, nullptr) << row.text;
    EXPECT_EQ(result.problem, row.problem);
  }
}

TEST(UnitSystemTest, Parse_ClearDivisions_AreAccepted) {
  for (const char *text : {"W/m2", "W/(m2.K)", "J/kg/K", "m3/h", "W.m-2.K-1", "1/s", "m / s", "kg/m^3",
                           "m.s-2", "mN/m", "C", "F", "F/m", "mK", "K @ 273.15", "lg(re 1 mW)"}) {
    EXPECT_EQ(UnitSystem::process().parse(text).problem, "") << text;
  }
}

TEST(UnitSystemTest, Parse_NoUnit_IsRefusedWithTheReason) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {
      {"", "The unit is empty."},
      {"\u00a0", "The unit is empty."},
      {"EUR", "The unit \"EUR\" is refused: a currency is no unit of measurement; declare a plain number and "
              "name the "
              "currency in its label."},
      {"EUR/kg",
       "The unit \"EUR/kg\" is refused: a currency is no unit of measurement; declare a plain number and "
       "name the currency in its label."},
      {"dB", "The unit \"dB\" is refused: decibels are a logarithmic ratio; declare a plain number and name "
             "them in its label."},
      {"barg",
       "The unit \"barg\" is refused: it counts from the pressure of the surroundings; name that in the "
       "label; write bar."},
      {"delta_degC", "The unit \"delta_degC\" is refused: a difference of temperatures has a unit without an "
                     "offset; write K."},
      {"W/delta_degC",
       "The unit \"W/delta_degC\" is refused: a difference of temperatures has a unit without an "
       "offset; write W/K."},
      {"m^0.5", "The unit \"m^0.5\" is refused: powers are whole numbers; declare the square of the value."},
      {"m2.5", "The unit \"m2.5\" is refused: powers are whole numbers; declare the square of the value."},
      {"s^1/2", "The unit \"s^1/2\" is refused: powers are whole numbers; declare the square of the value."},
      {"blah", "The unit \"blah\" is unknown; products are written as in N.m, powers as in m2."},
  };
  for (const auto &row : rows) {
    const UnitResult result = UnitSystem::process().parse(row.text);
    EXPECT_EQ(result.unit, nullptr) << row.text;
    EXPECT_EQ(result.problem, row.problem);
  }
}

TEST(UnitSystemTest, Parse_LongText_IsRefusedAtOnce) {
  const std::string text(100000, '(');
  EXPECT_EQ(UnitSystem::process().parse(text).problem,
            "The unit \"" + text.substr(0, 40) + "\" is too long or holds a zero byte.");
}

TEST(UnitSystemTest, Parse_ZeroByte_IsRefused) {
  const std::string text("mm\0K", 4);
  EXPECT_EQ(UnitSystem::process().parse(text).problem,
            "The unit \"" + text + "\" is too long or holds a zero byte.");
}

TEST(UnitSystemTest, Parse_AnyFewSigns_GivesAUnitOrAProblem) {
  const std::string signs = "mK2 /.()^-+";
  const std::size_t count = signs.size();
  for (std::size_t number = 0; number < count * count * count * count; ++number) {
    const std::string text = {signs[number % count], signs[number / count % count],
                              signs[number / count / count % count], signs[number / count / count / count]};
    const UnitResult result = UnitSystem::process().parse(text);
    EXPECT_EQ(result.unit == nullptr, !result.problem.empty()) << text;
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

TEST(UnitSystemTest, ConversionHint_LettersThatMeanSomethingElse_NameTheTemperatureScale) {
  EXPECT_EQ(conversionHint("C", "K"), " (\"C\" is the coulomb; degrees Celsius are \"degC\")");
  EXPECT_EQ(conversionHint("K", "C"), " (\"C\" is the coulomb; degrees Celsius are \"degC\")");
  EXPECT_EQ(conversionHint("F", "K"), " (\"F\" is the farad; degrees Fahrenheit are \"degF\")");
  EXPECT_EQ(conversionHint("degC", "m"), "");
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
