#pragma once

#include <stdexcept>
#include <string>

namespace ExpressionBuilder {

/// The five value types of the language with their codes. The codes key the overload tables of the
/// functions; a value outside 1..5 can only be made by a cast and is refused by everything that takes one.
enum class ValueType : int {
  Double = 1,
  Int = 2, ///< 32 bits, signed
  Bool = 3,
  String = 4,   ///< bytes, a NUL among them is an ordinary byte
  LongLong = 5, ///< 64 bits, signed
};

/// Names one C++ value type without a value of it.
template <class T> struct ValueTag { using Type = T; };

/// `ValueTypeOf<T>::code` is the code of T; defined for the five types only.
template <class T> struct ValueTypeOf;
template <> struct ValueTypeOf<double> { static constexpr ValueType code = ValueType::Double; };
template <> struct ValueTypeOf<int> { static constexpr ValueType code = ValueType::Int; };
template <> struct ValueTypeOf<bool> { static constexpr ValueType code = ValueType::Bool; };
template <> struct ValueTypeOf<std::string> { static constexpr ValueType code = ValueType::String; };
template <> struct ValueTypeOf<long long> { static constexpr ValueType code = ValueType::LongLong; };

/// True for the codes 1..5.
bool isKnownValueType(ValueType type) noexcept;

/// "double", "int", "bool", "string" or "long long".
/// \throws std::logic_error "Not implemented" for a code outside 1..5
const char *valueTypeName(ValueType type);

/// The type of a conditional whose branches have these two types: the common one, otherwise the first of
/// string, double, int, long long, bool that either of them is. Int before long long is deliberate.
/// \throws std::logic_error "Invalid option" when neither is one of the five
ValueType mergedValueType(ValueType first, ValueType second);

/// Calls `function(ValueTag<T>{})` for the C++ type T of the code and returns what it returns.
/// \throws std::logic_error "Not implemented" for a code outside 1..5
template <class Function> decltype(auto) visitValueType(ValueType type, Function &&function) {
  switch (type) {
  case ValueType::Double:
    return function(ValueTag<double>{});
  case ValueType::Int:
    return function(ValueTag<int>{});
  case ValueType::Bool:
    return function(ValueTag<bool>{});
  case ValueType::String:
    return function(ValueTag<std::string>{});
  case ValueType::LongLong:
    return function(ValueTag<long long>{});
  }
  throw std::logic_error("Not implemented");
}

} // namespace ExpressionBuilder
