#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// Reads one number as solvers write it: the whole text, with white space around it allowed, is one finite
/// decimal number in the C notation ("12", "+1.5", "-3e-7", ".5"). The process locale plays no part.
/// \return
/// the number; empty when the text is empty, holds anything else (hexadecimal, "inf", "nan", "1,5", a unit)
///         or names a number outside the range of a double
std::optional<double> readSolverNumber(std::string_view text);

/// Reads the number that a text begins with, such as "10" of "10 kohm": a sign, digits, one full stop, one exponent.
/// \param length  receives how many bytes of the text belong to it; unchanged when it begins with no number
std::optional<double> readLeadingNumber(std::string_view text, std::size_t &length);

/// Writes a number in the shortest form that reads back as the same double, in the C notation ("0.1",
/// "1e-08").
std::string writeSolverNumber(double value);

/// How a placeholder writes a number: a printf-like conversion such as "%.4e", "%12.5g", "%-8.3f", "%d" or
/// "%05d". Flags "-", "+", " " and "0", a width and a precision are understood. The decimal mark is always a
/// full stop.
class SolverNumberFormat {
public:
  /// The shortest form that reads back as the same double.
  SolverNumberFormat() = default;

  /// \return empty when `text` is no such conversion; `problem` then says why
  static std::optional<SolverNumberFormat> parse(std::string_view text, std::string &problem);

  /// \return empty when the number cannot be written so: no finite number, or "%d" and no whole number
  std::optional<std::string> write(double value) const;

private:
  std::string digits(double magnitude) const;

  char m_conversion = '\0';
  bool m_left = false;
  bool m_plus = false;
  bool m_blank = false;
  bool m_zero = false;
  int m_width = 0;
  int m_precision = 6;
};

} // namespace EmbeddedHost
