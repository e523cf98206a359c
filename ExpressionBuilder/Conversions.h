#pragma once

#include "ExpressionBuilder/NumberText.h"

#include <cmath>
#include <limits>
#include <string>
#include <type_traits>

namespace ExpressionBuilder {

/// Truncates toward zero; NaN and values whose truncation does not fit give the most negative value, as the
/// processor's own conversion does.
template <class To> To truncated(double value) noexcept {
  // Both limits are exact doubles: the lowest value, and the highest plus one.
  constexpr double kLowest = static_cast<double>(std::numeric_limits<To>::min());
  const double whole = std::trunc(value);
  return whole >= kLowest && whole < -kLowest ? static_cast<To>(whole) : std::numeric_limits<To>::min();
}

/// Converts a value of From into To; defined for all 25 pairs of the value types. Never throws for want of a
/// number: see NumberText.h for text.
template <class To, class From> struct Cast {
  To operator()(const From &value) const {
    if constexpr (std::is_same_v<To, From>) {
      return value;
    } else if constexpr (std::is_same_v<From, std::string>) {
      return numberFromText<To>(value);
    } else if constexpr (std::is_same_v<To, std::string>) {
      return textFromNumber(value);
    } else if constexpr (std::is_same_v<To, bool>) {
      return value != From{};
    } else if constexpr (std::is_same_v<From, double>) {
      return truncated<To>(value);
    } else {
      // Widening, low 32 bits, nearest double, 0 or 1.
      return static_cast<To>(value);
    }
  }
};

} // namespace ExpressionBuilder
