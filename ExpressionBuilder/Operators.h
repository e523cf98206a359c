#pragma once

#include <limits>
#include <stdexcept>
#include <type_traits>

namespace ExpressionBuilder {

/// The function objects of operators and functions for which the standard ones do not give the wanted
/// result. The others are `std::plus`, `std::less` and so on.

/// Integer arithmetic wraps around. It is computed in the unsigned type, where that is defined; the way back
/// keeps the low bits.
template <class T> struct WrappingPlus {
  T operator()(T a, T b) const noexcept {
    using Bits = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<Bits>(a) + static_cast<Bits>(b));
  }
};

template <class T> struct WrappingMinus {
  T operator()(T a, T b) const noexcept {
    using Bits = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<Bits>(a) - static_cast<Bits>(b));
  }
};

template <class T> struct WrappingMultiplies {
  T operator()(T a, T b) const noexcept {
    using Bits = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<Bits>(a) * static_cast<Bits>(b));
  }
};

/// The most negative value stays itself.
template <class T> struct WrappingNegate {
  T operator()(T a) const noexcept { return WrappingMinus<T>{}(T{0}, a); }
};

/// Quotient truncated toward zero. The two cases for which the processor has no result are errors.
template <class T> struct CheckedDivides {
  T operator()(T a, T b) const {
    if (b == 0) {
      throw std::runtime_error("Integer division by zero");
    }
    if (b == -1 && a == std::numeric_limits<T>::min()) {
      throw std::runtime_error("Integer overflow");
    }
    return a / b;
  }
};

/// Remainder of the truncating division, with the sign of a. By -1 it is 0 for every a.
template <class T> struct CheckedModulus {
  T operator()(T a, T b) const {
    if (b == 0) {
      throw std::runtime_error("Integer division by zero");
    }
    return b == -1 ? T{0} : static_cast<T>(a % b);
  }
};

/// Arithmetic on bool operands counts: 0 or 1 each, the result is an int.
struct BoolPlus {
  int operator()(bool a, bool b) const noexcept { return static_cast<int>(a) + static_cast<int>(b); }
};

struct BoolMinus {
  int operator()(bool a, bool b) const noexcept { return static_cast<int>(a) - static_cast<int>(b); }
};

struct BoolMultiplies {
  int operator()(bool a, bool b) const noexcept { return static_cast<int>(a) * static_cast<int>(b); }
};

} // namespace ExpressionBuilder
