#pragma once

#include <type_traits>

namespace ExpressionBuilder {

/// Eight bytes for one value of a scalar type of the language, without a note of the type: what was stored as T
/// must be read as T.
union ScalarCell {
  double asDouble;
  int asInt;
  bool asBool;
  long long asLongLong;

  template <class T> static constexpr bool holds() noexcept {
    return std::is_same_v<T, double> || std::is_same_v<T, int> || std::is_same_v<T, bool> ||
           std::is_same_v<T, long long>;
  }

  template <class T> T get() const noexcept {
    static_assert(holds<T>());
    if constexpr (std::is_same_v<T, double>) {
      return asDouble;
    } else if constexpr (std::is_same_v<T, int>) {
      return asInt;
    } else if constexpr (std::is_same_v<T, bool>) {
      return asBool;
    } else {
      return asLongLong;
    }
  }

  template <class T> void set(T value) noexcept {
    static_assert(holds<T>());
    if constexpr (std::is_same_v<T, double>) {
      asDouble = value;
    } else if constexpr (std::is_same_v<T, int>) {
      asInt = value;
    } else if constexpr (std::is_same_v<T, bool>) {
      asBool = value;
    } else {
      asLongLong = value;
    }
  }
};

} // namespace ExpressionBuilder
