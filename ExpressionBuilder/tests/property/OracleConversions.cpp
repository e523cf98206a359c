#include "ExpressionBuilder/tests/property/OracleConversions.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>

namespace LanguageOracle {
namespace {

// Compared as doubles: the bounds are powers of two and so exact. A NaN fails both comparisons.
template <class Whole> Whole truncated(double value) {
  const double limit = std::ldexp(1.0, std::numeric_limits<Whole>::digits);
  const double whole = std::trunc(value);
  return whole >= -limit && whole < limit ? static_cast<Whole>(whole) : std::numeric_limits<Whole>::min();
}

std::int32_t lowBits(std::int64_t value) {
  const auto bits = static_cast<std::uint32_t>(static_cast<std::uint64_t>(value));
  std::int32_t result = 0;
  std::memcpy(&result, &bits, sizeof result);
  return result;
}

template <class T> std::string written(T value) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << value;
  return stream.str();
}

template <class T> T read(const std::string &text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  T value{};
  stream >> value;
  return value;
}

std::int32_t toInt(const Value &value, const Rules &rules) {
  switch (value.type) {
  case Type::Double:
    return truncated<std::int32_t>(value.real);
  case Type::Int:
    return value.whole;
  case Type::Bool:
    return value.truth ? 1 : 0;
  case Type::String: {
    const auto number = read<std::int32_t>(value.text);
    const bool clamped = number == std::numeric_limits<std::int32_t>::max();
    return rules.stringsClampToZero && clamped ? 0 : number;
  }
  case Type::LongLong:
    return lowBits(value.wide);
  }
  throw std::logic_error("no such type");
}

std::int64_t toLongLong(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return truncated<std::int64_t>(value.real);
  case Type::Int:
    return value.whole;
  case Type::Bool:
    return value.truth ? 1 : 0;
  case Type::String:
    return read<std::int64_t>(value.text);
  case Type::LongLong:
    return value.wide;
  }
  throw std::logic_error("no such type");
}

double toDouble(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return value.real;
  case Type::Int:
    return static_cast<double>(value.whole);
  case Type::Bool:
    return value.truth ? 1.0 : 0.0;
  case Type::String:
    return read<double>(value.text);
  case Type::LongLong:
    return static_cast<double>(value.wide);
  }
  throw std::logic_error("no such type");
}

bool toBool(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return value.real != 0.0;
  case Type::Int:
    return value.whole != 0;
  case Type::Bool:
    return value.truth;
  case Type::String:
    return read<bool>(value.text);
  case Type::LongLong:
    return value.wide != 0;
  }
  throw std::logic_error("no such type");
}

std::string toString(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return written(value.real);
  case Type::Int:
    return written(value.whole);
  case Type::Bool:
    return written(value.truth);
  case Type::String:
    return value.text;
  case Type::LongLong:
    return written(value.wide);
  }
  throw std::logic_error("no such type");
}

} // namespace

Value convert(const Value &value, Type type, const Rules &rules) {
  switch (type) {
  case Type::Double:
    return Value::ofDouble(toDouble(value));
  case Type::Int:
    return Value::ofInt(toInt(value, rules));
  case Type::Bool:
    return Value::ofBool(toBool(value));
  case Type::String:
    return Value::ofString(toString(value));
  case Type::LongLong:
    return Value::ofLongLong(toLongLong(value));
  }
  throw std::logic_error("no such type");
}

} // namespace LanguageOracle
