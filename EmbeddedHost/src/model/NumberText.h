#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace EmbeddedHost {

// Text of numbers, independent of every locale.

/// The shortest text that reads back as the same double: "0.1", "1e+30", "-0", "inf", "nan".
std::string numberText(double value);
std::string numberText(std::int64_t value);

/// A number at the start of a text.
struct LeadingNumber {
  double value = 0.0;
  std::size_t length = 0; ///< characters that it takes
};

/// Reads the longest number that the text starts with: digits with an optional full stop, exponent and sign ("+"
/// too), or "inf", "nan". Empty when there is none, or when it is too large or too small for a double.
std::optional<LeadingNumber> readLeadingNumber(std::string_view text);

/// Reads a whole number that makes up the text, an optional sign included; empty otherwise.
std::optional<std::int64_t> readInteger(std::string_view text);

/// The text without blanks, tabs and line ends around it.
std::string_view trimmed(std::string_view text);

} // namespace EmbeddedHost
