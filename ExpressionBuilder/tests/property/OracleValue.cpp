#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

namespace LanguageOracle {

const char *typeName(Type type) {
  switch (type) {
  case Type::Double:
    return "double";
  case Type::Int:
    return "int";
  case Type::Bool:
    return "bool";
  case Type::String:
    return "string";
  case Type::LongLong:
    return "long long";
  }
  throw std::logic_error("no such type");
}

Value Value::ofDouble(double value) {
  Value result;
  result.type = Type::Double;
  result.real = value;
  return result;
}

Value Value::ofInt(std::int32_t value) {
  Value result;
  result.type = Type::Int;
  result.whole = value;
  return result;
}

Value Value::ofBool(bool value) {
  Value result;
  result.type = Type::Bool;
  result.truth = value;
  return result;
}

Value Value::ofString(std::string value) {
  Value result;
  result.type = Type::String;
  result.text = std::move(value);
  return result;
}

Value Value::ofLongLong(std::int64_t value) {
  Value result;
  result.type = Type::LongLong;
  result.wide = value;
  return result;
}

namespace {

std::string quoted(const std::string &bytes) {
  std::string result = "\"";
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (code >= 0x20 && code < 0x7F) {
      result += byte;
    } else {
      std::array<char, 8> hexadecimal{};
      std::snprintf(hexadecimal.data(), hexadecimal.size(), "\\x%02x", static_cast<unsigned>(code));
      result += hexadecimal.data();
    }
  }
  return result + '"';
}

} // namespace

std::string describe(const Value &value) {
  const std::string name = std::string(typeName(value.type)) + " ";
  switch (value.type) {
  case Type::Double: {
    std::array<char, 64> digits{};
    std::snprintf(digits.data(), digits.size(), "%.17g (%a)", value.real, value.real);
    return name + digits.data();
  }
  case Type::Int:
    return name + std::to_string(value.whole);
  case Type::Bool:
    return name + (value.truth ? "1" : "0");
  case Type::String:
    return name + quoted(value.text);
  case Type::LongLong:
    return name + std::to_string(value.wide);
  }
  throw std::logic_error("no such type");
}

bool same(const Value &left, const Value &right) {
  if (left.type != right.type) {
    return false;
  }
  switch (left.type) {
  case Type::Double: {
    std::uint64_t leftBits = 0;
    std::uint64_t rightBits = 0;
    std::memcpy(&leftBits, &left.real, sizeof leftBits);
    std::memcpy(&rightBits, &right.real, sizeof rightBits);
    return leftBits == rightBits || (std::isnan(left.real) && std::isnan(right.real));
  }
  case Type::Int:
    return left.whole == right.whole;
  case Type::Bool:
    return left.truth == right.truth;
  case Type::String:
    return left.text == right.text;
  case Type::LongLong:
    return left.wide == right.wide;
  }
  throw std::logic_error("no such type");
}

Outcome Outcome::ofValue(Value value) {
  Outcome result;
  result.value = std::move(value);
  return result;
}

Outcome Outcome::ofBuildError(std::string message) {
  Outcome result;
  result.kind = Kind::BuildError;
  result.message = std::move(message);
  return result;
}

Outcome Outcome::ofRuntimeError(std::string message) {
  Outcome result;
  result.kind = Kind::RuntimeError;
  result.message = std::move(message);
  return result;
}

std::string describe(const Outcome &outcome) {
  switch (outcome.kind) {
  case Outcome::Kind::Value:
    return describe(outcome.value);
  case Outcome::Kind::BuildError:
    return "build error " + quoted(outcome.message);
  case Outcome::Kind::RuntimeError:
    return "runtime error " + quoted(outcome.message);
  }
  throw std::logic_error("no such outcome");
}

bool same(const Outcome &left, const Outcome &right) {
  if (left.kind != right.kind) {
    return false;
  }
  return left.kind == Outcome::Kind::Value ? same(left.value, right.value) : left.message == right.message;
}

} // namespace LanguageOracle
