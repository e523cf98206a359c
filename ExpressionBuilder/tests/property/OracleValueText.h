#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <cstddef>
#include <optional>
#include <string>

namespace LanguageOracle {

/// What stands at the beginning of a text.
struct ValueText {
  /// Nothing when the text does not begin with a value, or not with a whole one.
  std::optional<Outcome> outcome;
  /// Number of bytes that belong to the value; 0 without one.
  std::size_t length = 0;
};

/// Reads the number, string or truth value that a text begins with. With escapes the first backslash of a string
/// goes, and all that follows belongs to the string.
ValueText readValueText(const std::string &text, bool allowEscapes);

/// The name behind the "%" that a text begins with, and the number of bytes up to its end.
std::string readName(const std::string &text, bool allowEscapes, std::size_t &length);

} // namespace LanguageOracle
