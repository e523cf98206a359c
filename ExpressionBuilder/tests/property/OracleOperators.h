#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <optional>

namespace LanguageOracle {

enum class Binary {
  Add,
  Subtract,
  Multiply,
  Divide,
  Less,
  LessEqual,
  Greater,
  GreaterEqual,
  Equal,
  NotEqual,
  And,
  Or
};
enum class Prefix { Not, Minus, Plus };

constexpr std::array<Binary, 12> kBinaries = {Binary::Add,      Binary::Subtract,     Binary::Multiply,
                                              Binary::Divide,   Binary::Less,         Binary::LessEqual,
                                              Binary::Greater,  Binary::GreaterEqual, Binary::Equal,
                                              Binary::NotEqual, Binary::And,          Binary::Or};
constexpr std::array<Prefix, 3> kPrefixes = {Prefix::Not, Prefix::Minus, Prefix::Plus};

const char *symbol(Binary op);
const char *symbol(Prefix op);

/// The smaller, the tighter it binds.
int precedence(Binary op);

/// The type of the result for operands of this type; nothing when the operator does not exist for it.
std::optional<Type> resultType(Binary op, Type operand);
std::optional<Type> resultType(Prefix op, Type operand);

/// Both operands have one type, for which the operator exists.
/// \throws Error "Integer division by zero", "Integer overflow"
Value apply(Binary op, const Value &left, const Value &right, const Rules &rules);
Value apply(Prefix op, const Value &operand);

/// The integer remainder with the sign of the first operand.
/// \throws Error "Integer division by zero"
std::int64_t remainderOf(std::int64_t left, std::int64_t right, const Rules &rules);

} // namespace LanguageOracle
