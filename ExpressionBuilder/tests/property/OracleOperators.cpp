#include "ExpressionBuilder/tests/property/OracleOperators.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

namespace LanguageOracle {
namespace {

[[noreturn]] void failDivisionByZero(const Rules &rules) {
  throw Error(rules.otherErrorText ? "Division by zero" : "Integer division by zero");
}

// Unsigned arithmetic of the same width has the bits of what wraps around.
template <class Whole> Whole wrapped(Binary op, Whole left, Whole right) {
  using Bits = std::make_unsigned_t<Whole>;
  const auto a = static_cast<Bits>(left);
  const auto b = static_cast<Bits>(right);
  const Bits bits = op == Binary::Add        ? static_cast<Bits>(a + b)
                    : op == Binary::Subtract ? static_cast<Bits>(a - b)
                                             : static_cast<Bits>(a * b);
  Whole result = 0;
  std::memcpy(&result, &bits, sizeof result);
  return result;
}

template <class Whole> Whole quotient(Whole left, Whole right, const Rules &rules) {
  if (right == 0) {
    failDivisionByZero(rules);
  }
  if (left == std::numeric_limits<Whole>::min() && right == -1) {
    throw Error("Integer overflow");
  }
  const auto result = static_cast<Whole>(left / right);
  const bool isRoundedUp = left % right != 0 && (left < 0) != (right < 0);
  return rules.quotientIsFloored && isRoundedUp ? static_cast<Whole>(result - 1) : result;
}

template <class Whole> Whole arithmetic(Binary op, Whole left, Whole right, const Rules &rules) {
  return op == Binary::Divide ? quotient(left, right, rules) : wrapped(op, left, right);
}

double arithmetic(Binary op, double left, double right, const Rules &rules) {
  if (std::isnan(left) && std::isnan(right)) {
    const bool isExchangeable = op == Binary::Add || op == Binary::Multiply;
    return isExchangeable && rules.secondNanCounts ? right : left;
  }
  switch (op) {
  case Binary::Add:
    return left + right;
  case Binary::Subtract:
    return left - right;
  case Binary::Multiply:
    return left * right;
  default:
    return left / right;
  }
}

template <class T> bool compared(Binary op, const T &left, const T &right) {
  switch (op) {
  case Binary::Less:
    return left < right;
  case Binary::LessEqual:
    return left <= right;
  case Binary::Greater:
    return left > right;
  case Binary::GreaterEqual:
    return left >= right;
  case Binary::Equal:
    return left == right;
  default:
    return left != right;
  }
}

bool compared(Binary op, const Value &left, const Value &right) {
  switch (left.type) {
  case Type::Double:
    return compared(op, left.real, right.real);
  case Type::Int:
    return compared(op, left.whole, right.whole);
  case Type::Bool:
    return compared(op, left.truth ? 1 : 0, right.truth ? 1 : 0);
  case Type::String:
    return compared(op, left.text.compare(right.text), 0);
  case Type::LongLong:
    return compared(op, left.wide, right.wide);
  }
  throw std::logic_error("no such type");
}

bool isTrue(const Value &value) {
  switch (value.type) {
  case Type::Double:
    return !(value.real == 0.0);
  case Type::Int:
    return value.whole != 0;
  case Type::Bool:
    return value.truth;
  case Type::LongLong:
    return value.wide != 0;
  case Type::String:
    break;
  }
  throw std::logic_error("a string has no truth");
}

bool isArithmetic(Binary op) {
  return precedence(op) <= 2;
}
bool isLogical(Binary op) {
  return op == Binary::And || op == Binary::Or;
}

} // namespace

const char *symbol(Binary op) {
  constexpr std::array<const char *, 12> kSymbols = {
      "+", "-", "*", "/", "<", "<=", ">", ">=", "==", "!=", "&&", "||"};
  return kSymbols.at(static_cast<std::size_t>(op));
}

const char *symbol(Prefix op) {
  constexpr std::array<const char *, 3> kSymbols = {"!", "-", "+"};
  return kSymbols.at(static_cast<std::size_t>(op));
}

int precedence(Binary op) {
  constexpr std::array<int, 12> kPrecedences = {2, 2, 1, 1, 3, 3, 3, 3, 4, 4, 8, 9};
  return kPrecedences.at(static_cast<std::size_t>(op));
}

std::optional<Type> resultType(Binary op, Type operand) {
  if (isLogical(op)) {
    return operand == Type::String ? std::nullopt : std::optional(Type::Bool);
  }
  if (!isArithmetic(op)) {
    return Type::Bool;
  }
  if (operand == Type::String) {
    return op == Binary::Add ? std::optional(Type::String) : std::nullopt;
  }
  if (operand == Type::Bool) {
    return op == Binary::Divide ? std::nullopt : std::optional(Type::Int);
  }
  return operand;
}

std::optional<Type> resultType(Prefix op, Type operand) {
  if (op == Prefix::Plus) {
    return operand;
  }
  if (operand == Type::String || (op == Prefix::Minus && operand == Type::Bool)) {
    return std::nullopt;
  }
  return op == Prefix::Not ? Type::Bool : operand;
}

Value apply(Binary op, const Value &left, const Value &right, const Rules &rules) {
  if (isLogical(op)) {
    return Value::ofBool(op == Binary::And ? isTrue(left) && isTrue(right) : isTrue(left) || isTrue(right));
  }
  if (!isArithmetic(op)) {
    return Value::ofBool(compared(op, left, right));
  }
  switch (left.type) {
  case Type::Double:
    return Value::ofDouble(arithmetic(op, left.real, right.real, rules));
  case Type::Int:
    return Value::ofInt(arithmetic(op, left.whole, right.whole, rules));
  case Type::Bool:
    return Value::ofInt(arithmetic<std::int32_t>(op, left.truth ? 1 : 0, right.truth ? 1 : 0, rules));
  case Type::String:
    return Value::ofString(left.text + right.text);
  case Type::LongLong:
    return Value::ofLongLong(arithmetic(op, left.wide, right.wide, rules));
  }
  throw std::logic_error("no such type");
}

Value apply(Prefix op, const Value &operand) {
  if (op == Prefix::Not) {
    return Value::ofBool(!isTrue(operand));
  }
  switch (operand.type) {
  case Type::Double:
    return Value::ofDouble(-operand.real);
  case Type::Int:
    return Value::ofInt(wrapped<std::int32_t>(Binary::Subtract, 0, operand.whole));
  case Type::LongLong:
    return Value::ofLongLong(wrapped<std::int64_t>(Binary::Subtract, 0, operand.wide));
  case Type::Bool:
  case Type::String:
    break;
  }
  throw std::logic_error("no negation of this type");
}

std::int64_t remainderOf(std::int64_t left, std::int64_t right, const Rules &rules) {
  if (right == 0) {
    failDivisionByZero(rules);
  }
  return right == -1 ? 0 : left % right;
}

} // namespace LanguageOracle
