#include "ExpressionBuilder/tests/property/EdgeValues.h"

#include <limits>
#include <stdexcept>
#include <utility>

namespace LanguageOracle {
namespace {

const std::vector<double> &doubles() {
  static const double infinity = std::numeric_limits<double>::infinity();
  static const std::vector<double> kValues = {
      0.0,       -0.0,         1.0,
      -1.0,      0.1,          2.5,
      -7.5,      3.0,          0.5,
      -0.5,      1e308,        -1e308,
      1e-320,    123456.789,   infinity,
      -infinity, 2147483647.5, -2147483649.0,
      1e19,      -9.3e18,      9007199254740993.0,
      1e-5,      4294967297.0, 100000.0,
      1234567.0, 2.0,          std::numeric_limits<double>::quiet_NaN()};
  return kValues;
}

const std::vector<std::int32_t> &ints() {
  static const std::vector<std::int32_t> kValues = {0,  1, -1, 2, 3,     -3,    7,         -7,
                                                    10, 5, 6,  4, 12345, 65536, INT32_MAX, INT32_MIN};
  return kValues;
}

const std::vector<std::int64_t> &longs() {
  static const std::vector<std::int64_t> kValues = {
      0,         1,          -1,          2,          7,  -7, 3,        INT64_MAX,
      INT64_MIN, 2147483648, -2147483649, 4294967297, 10, 5,  -2000000, 9007199254740993};
  return kValues;
}

const std::vector<std::string> &strings() {
  static const std::vector<std::string> kValues = {"",
                                                   "text",
                                                   "12abc",
                                                   " 42",
                                                   "+5",
                                                   "-0x10",
                                                   "nan",
                                                   "inf",
                                                   "1e5",
                                                   "2.5",
                                                   "-2.5",
                                                   "0",
                                                   "1",
                                                   "2",
                                                   "true",
                                                   "a:b",
                                                   "\xff",
                                                   "a",
                                                   ".",
                                                   "-",
                                                   "1e999",
                                                   "-1e999",
                                                   "\t7",
                                                   "1e-320",
                                                   "012",
                                                   "1,5",
                                                   "0.1",
                                                   "-0",
                                                   "1e",
                                                   "abc",
                                                   "5eggs",
                                                   "ab c",
                                                   "(1)",
                                                   "99999999999999999999",
                                                   "-99999999999999999999",
                                                   "2147483648",
                                                   std::string("4\0002", 3),
                                                   "1.5.2"};
  return kValues;
}

const std::vector<std::string> &doubleLiterals() {
  static const std::vector<std::string> kTexts = {
      "0.0",
      "1.0",
      "2.5",
      ".5",
      "5.",
      "1e308",
      "-1e308",
      "0.1",
      "1e5",
      "-1e-5",
      "1E+3",
      "1e",
      "1e5.2",
      "1.5e-300",
      "3.9",
      "-3.9",
      "+2.5",
      "2147483648.0",
      "9223372036854775808.0",
      "123456789.125",
      "-0.0",
      "100000.0",
      "0.30000000000000004",
      "3.14159265358979323846264338327950288419716939937510582097494459"};
  return kTexts;
}

const std::vector<std::string> &intLiterals() {
  static const std::vector<std::string> kTexts = {
      "0", "1", "2",  "3",  "5",  "7",  "10",   "-1",         "-7",          "+5",
      "6", "4", "12", "99", "-2", "-3", "0012", "2147483647", "-2147483648", "000000000000000000000000017"};
  return kTexts;
}

// Definitions in terms of the constants, some of which fail for some of their values.
const std::vector<std::string> &definitions(Type type) {
  static const std::vector<std::vector<std::string>> kTexts = {
      {"%d0% + %d1%", "%i0% * %d1%", "sqrt(%d0%)", "%b0% ? %d0% : %d1%", "(double)%s0%", "-%l0% / %d0%"},
      {"%i0% + %i1%", "%d0% / %i1%", "mod(%i0%, %i1%)", "%b0% ? %i0% : %l1%", "(int)%s1%", "%b0% - %b1%"},
      {"%i0% < %d1%", "%b0% && %b1%", "!%l0%", "%s0% == %s1%", "%i0% / %i1% > 1", "(bool)%s0%"},
      {"%s0% + %s1%", "%d0% + %s1%", "(string)%d1%", "%b0% ? %s0% : %l1%", "\"<\" + %i0% + \">\""},
      {"%l0% + %l1%", "%i0% - %l1%", "abs(%l0%)", "%d0% / %l1%", "max(%l0%, %l1%)", "%s0% * %l1%"}};
  return kTexts.at(static_cast<std::size_t>(type) - 1);
}

Binding constant(std::string name, Value value) {
  return {std::move(name), std::move(value), {}, false};
}

Binding defined(std::string name, std::string text, bool replaces) {
  return {std::move(name), {}, std::move(text), replaces};
}

} // namespace

Value edgeValue(Type type, RandomChoice &random) {
  switch (type) {
  case Type::Double:
    return Value::ofDouble(random.of(doubles()));
  case Type::Int:
    return Value::ofInt(random.of(ints()));
  case Type::Bool:
    return Value::ofBool(random.chance(50));
  case Type::String:
    return Value::ofString(random.of(strings()));
  case Type::LongLong:
    return Value::ofLongLong(random.of(longs()));
  }
  throw std::logic_error("no such type");
}

std::string literal(Type type, RandomChoice &random) {
  switch (type) {
  case Type::Double:
    return random.of(doubleLiterals());
  case Type::Int:
    return random.of(intLiterals());
  case Type::String:
    return '"' + random.of(strings()) + '"';
  case Type::Bool:
  case Type::LongLong:
    break;
  }
  throw std::logic_error("no literal of this type");
}

std::string badLiteral(RandomChoice &random) {
  static const std::vector<std::string> kTexts = {"2147483648",
                                                  "-2147483649",
                                                  "1e309",
                                                  "-1e309",
                                                  "1e-310",
                                                  "1e-320",
                                                  "1e-400",
                                                  ".",
                                                  ".e5",
                                                  "1.2.3",
                                                  "1e5e",
                                                  "\"open",
                                                  "0x10",
                                                  "1f",
                                                  "true",
                                                  "nan",
                                                  "12345678901234567890123456789012345678901234567890",
                                                  "0." + std::string(400, '0') + "1",
                                                  std::string(400, '9') + ".0"};
  return random.of(kTexts);
}

const std::vector<std::string> &variableNames(Type type) {
  static const std::vector<std::vector<std::string>> kNames = {{"d0", "d1", "Filter.R-1 \xc3\xa4", "d-text"},
                                                               {"i0", "i1", "c0", "i-text"},
                                                               {"b0", "b1", "(1+", "b-text"},
                                                               {"s0", "s1", "a:", "s-text"},
                                                               {"l0", "l1", "", "l-text"}};
  return kNames.at(static_cast<std::size_t>(type) - 1);
}

std::vector<Binding> randomBindings(RandomChoice &random) {
  std::vector<Binding> bindings;
  for (const Type type : kTypes) {
    const std::vector<std::string> &names = variableNames(type);
    for (std::size_t index = 0; index + 1 < names.size(); ++index) {
      bindings.push_back(constant(names[index], edgeValue(type, random)));
    }
  }
  for (const Type type : kTypes) {
    bindings.push_back(defined(variableNames(type).back(), random.of(definitions(type)), false));
  }
  if (random.chance(4)) {
    bindings.push_back(defined("c0", "%i-text% + 1", true));
    if (random.chance(50)) {
      bindings.push_back(defined("i-text", "%c0% - 1", true));
    }
  }
  return bindings;
}

} // namespace LanguageOracle
