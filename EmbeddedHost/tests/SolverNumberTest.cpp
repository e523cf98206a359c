#include "EmbeddedHost/SolverNumber.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <locale>

namespace EmbeddedHost {
namespace {

TEST(SolverNumberTest, Read_PlainForms_GiveTheNumber) {
  const struct {
    const char *text;
    double value;
  } rows[] = {{"12", 12.0},    {"010", 10.0}, {"+1.5", 1.5},          {"-3e-7", -3e-7},
              {".5", 0.5},     {"5.", 5.0},   {" 7\t", 7.0},          {"1.12285e+03", 1122.85},
              {"1E3", 1000.0}, {"-0", 0.0},   {"4.9e-324", 4.9e-324}, {"\r8\n", 8.0}};
  for (const auto &row : rows) {
    const std::optional<double> value = readSolverNumber(row.text);
    ASSERT_TRUE(value.has_value()) << row.text;
    EXPECT_EQ(*value, row.value) << row.text;
  }
}

TEST(SolverNumberTest, Read_AnythingElse_GivesNothing) {
  for (const char *text : {"", " ", "1,5", "10k", "0x10", "inf", "nan", "-inf", "+-1", "--1", "1 2", "failed",
                           "1e", "1e999", "-1e999", ".", "1.5.", "10,000", "+"}) {
    EXPECT_FALSE(readSolverNumber(text).has_value()) << text;
  }
}

TEST(SolverNumberTest, ReadLeading_NumberWithSomethingBehind_TellsItsLength) {
  const struct {
    const char *text;
    double value;
    std::size_t length;
  } rows[] = {
      {"10 kohm", 10.0, 2}, {"+1.5e3m", 1500.0, 6}, {"5eV", 5.0, 1}, {"10,000", 10.0, 2}, {"-2", -2.0, 2}};
  for (const auto &row : rows) {
    std::size_t length = 99;
    EXPECT_EQ(readLeadingNumber(row.text, length).value_or(0.0), row.value) << row.text;
    EXPECT_EQ(length, row.length) << row.text;
  }
}

TEST(SolverNumberTest, ReadLeading_NoNumber_LeavesTheLengthAlone) {
  for (const char *text : {"", "ohm", " 1", "+-1", "infinite", "nano"}) {
    std::size_t length = 99;
    EXPECT_FALSE(readLeadingNumber(text, length).has_value()) << text;
    EXPECT_EQ(length, 99U) << text;
  }
}

TEST(SolverNumberTest, Write_AnyNumber_IsTheShortestThatReadsBack) {
  EXPECT_EQ(writeSolverNumber(0.1), "0.1");
  EXPECT_EQ(writeSolverNumber(0.1 + 0.2), "0.30000000000000004");
  EXPECT_EQ(writeSolverNumber(1e-8), "1e-08");
  EXPECT_EQ(writeSolverNumber(12000.0), "12000");
  EXPECT_EQ(writeSolverNumber(-0.0), "-0");
}

class GermanNumbers : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(SolverNumberTest, GermanLocale_ChangesNothing) {
  const std::locale before = std::locale::global(std::locale(std::locale::classic(), new GermanNumbers));
  const std::optional<double> read = readSolverNumber("1234.5");
  const std::string written = writeSolverNumber(1234.5);
  std::string problem;
  const std::optional<std::string> formatted = SolverNumberFormat::parse("%.2f", problem)->write(1234.5);
  std::locale::global(before);
  EXPECT_EQ(read.value_or(0.0), 1234.5);
  EXPECT_EQ(written, "1234.5");
  EXPECT_EQ(formatted.value_or(""), "1234.50");
}

TEST(SolverNumberTest, Format_EveryConversion_WritesLikePrintf) {
  const struct {
    const char *format;
    double value;
    const char *text;
  } rows[] = {{"%.4e", 12345.678, "1.2346e+04"},
              {"%12.5g", 3.14159265, "      3.1416"},
              {"%-8.3f|", 0.0, ""},
              {"%-8.3f", 2.5, "2.500   "},
              {"%08.2f", -3.14159, "-0003.14"},
              {"%+d", 7.0, "+7"},
              {"%d", -0.0, "0"},
              {"%05d", 42.0, "00042"},
              {"% g", 0.5, " 0.5"},
              {"%E", 1.0, "1.000000E+00"},
              {"%G", 1e-10, "1E-10"},
              {"%f", 1e20, "100000000000000000000.000000"},
              {"%g", 1e300, "1e+300"},
              {"%.0f", 0.5, "0"}};
  for (const auto &row : rows) {
    std::string problem;
    const std::optional<SolverNumberFormat> format = SolverNumberFormat::parse(row.format, problem);
    if (*row.text == '\0') {
      EXPECT_FALSE(format.has_value()) << row.format;
      EXPECT_EQ(problem, "a number format ends with one of e, E, f, g, G and d");
      continue;
    }
    ASSERT_TRUE(format.has_value()) << row.format;
    EXPECT_EQ(format->write(row.value).value_or("none"), row.text) << row.format;
  }
}

TEST(SolverNumberTest, Format_LargestNumberWithLargestPrecision_IsWrittenInFull) {
  std::string problem;
  const auto format = SolverNumberFormat::parse("%.60f", problem);
  ASSERT_TRUE(format.has_value());
  EXPECT_EQ(format->write(std::numeric_limits<double>::max()).value_or("").size(), 309U + 1U + 60U);
}

TEST(SolverNumberTest, Format_Malformed_SaysWhy) {
  const struct {
    const char *text;
    const char *problem;
  } rows[] = {{"", "a number format begins with \"%\""},
              {"4e", "a number format begins with \"%\""},
              {"%s", "a number format ends with one of e, E, f, g, G and d"},
              {"%", "a number format ends with one of e, E, f, g, G and d"},
              {"%ld", "a number format ends with one of e, E, f, g, G and d"},
              {"%*d", "a number format ends with one of e, E, f, g, G and d"},
              {"%n", "a number format ends with one of e, E, f, g, G and d"},
              {"%.2d", "the format d takes no precision"},
              {"%999f", "the width is limited to 200 and the precision to 60"},
              {"%.99f", "the width is limited to 200 and the precision to 60"},
              {"%99999999999999999999f", "the width is limited to 200 and the precision to 60"}};
  for (const auto &row : rows) {
    std::string problem;
    EXPECT_FALSE(SolverNumberFormat::parse(row.text, problem).has_value()) << row.text;
    EXPECT_EQ(problem, row.problem) << row.text;
  }
}

TEST(SolverNumberTest, Format_NumberThatDoesNotFit_GivesNothing) {
  std::string problem;
  EXPECT_FALSE(SolverNumberFormat::parse("%d", problem)->write(1.5).has_value());
  EXPECT_FALSE(SolverNumberFormat::parse("%e", problem)->write(std::nan("")).has_value());
  EXPECT_FALSE(SolverNumberFormat().write(std::numeric_limits<double>::infinity()).has_value());
}

} // namespace
} // namespace EmbeddedHost
