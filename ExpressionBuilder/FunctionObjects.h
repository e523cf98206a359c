#pragma once

#include "ExpressionBuilder/Operators.h"

namespace ExpressionBuilder {

/// Functions of the C mathematics library as function objects. Nothing is guarded: outside the domain the
/// library's NaN or infinity is the value.
template <double (*Function)(double)> struct UnaryMath {
  double operator()(double a) const noexcept { return Function(a); }
};

template <double (*Function)(double, double)> struct BinaryMath {
  double operator()(double a, double b) const noexcept { return Function(a, b); }
};

/// Absolute value by negation: the most negative value stays itself.
template <class T> struct WrappingAbsolute {
  T operator()(T a) const noexcept { return a < 0 ? WrappingNegate<T>{}(a) : a; }
};

/// The upper bound is tested first and so wins when the bounds are exchanged. A NaN passes through.
template <class T> struct Clamp {
  T operator()(T value, T low, T high) const noexcept {
    if (value > high) {
      return high;
    }
    return value < low ? low : value;
  }
};

/// The larger one; a when neither is larger, so also when one of them is NaN.
template <class T> struct Maximum {
  T operator()(T a, T b) const noexcept { return b > a ? b : a; }
};

/// The smaller one; a when neither is smaller, so also when one of them is NaN.
template <class T> struct Minimum {
  T operator()(T a, T b) const noexcept { return b < a ? b : a; }
};

} // namespace ExpressionBuilder
