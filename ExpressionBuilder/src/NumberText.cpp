#include "ExpressionBuilder/NumberText.h"

#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <locale.h>
#include <locale>
#include <sstream>
#include <system_error>

namespace ExpressionBuilder {

namespace {

/// Large enough for every text made here: a sign, 17 digits, a point and an exponent, or 20 digits.
constexpr std::size_t kTextCapacity = 64;

/// A little above the smallest double of full precision.
constexpr double kSurelyInRange = 1e-300;

/// The "C" locale of the C library, which `std::stod` cannot be told to use. Made once and never released:
/// it must outlive every expression, static ones included.
locale_t plainLocale() {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
  return plain;
}

/// Zeros and points only: not too small for a double, and frequent.
bool isPlainZero(std::string_view text) {
  return text.find_first_not_of("0.") == std::string_view::npos;
}

template <class... Arguments> std::string textByToChars(Arguments... arguments) {
  char text[kTextCapacity];
  const std::to_chars_result result = std::to_chars(text, text + kTextCapacity, arguments...);
  return std::string(text, result.ptr);
}

} // namespace

LiteralNumber<double> readDoubleLiteral(std::string_view text) {
  double quick = 0.0;
  const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), quick);
  // Both round correctly. What is small enough for doubts about its range is left to the C library.
  if (read.ec == std::errc() && read.ptr == text.data() + text.size() &&
      (std::fabs(quick) > kSurelyInRange || isPlainZero(text))) {
    return {quick, LiteralStatus::Ok};
  }
  const int errnoBefore = errno;
  errno = 0;
  char *end = nullptr;
  const std::string terminated(text);
  const double value = strtod_l(terminated.c_str(), &end, plainLocale());
  const bool isOutOfRange = errno == ERANGE;
  errno = errnoBefore;
  if (end == terminated.c_str()) {
    return {0.0, LiteralStatus::NotANumber};
  }
  return {value, isOutOfRange ? LiteralStatus::OutOfRange : LiteralStatus::Ok};
}

LiteralNumber<int> readIntLiteral(std::string_view text) {
  const char *begin = text.data();
  const char *const end = begin + text.size();
  // from_chars knows no leading "+", and "+-1" is no number.
  if (begin != end && *begin == '+') {
    ++begin;
    if (begin != end && *begin == '-') {
      return {0, LiteralStatus::NotANumber};
    }
  }
  int value = 0;
  const std::from_chars_result result = std::from_chars(begin, end, value);
  if (result.ec == std::errc::result_out_of_range) {
    return {0, LiteralStatus::OutOfRange};
  }
  return {value, result.ec == std::errc() ? LiteralStatus::Ok : LiteralStatus::NotANumber};
}

template <class T> T numberFromText(const std::string &text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  // The stream leaves the value alone when there is no character to read at all.
  T value{};
  stream >> value;
  return value;
}

template int numberFromText<int>(const std::string &);
template long long numberFromText<long long>(const std::string &);
template double numberFromText<double>(const std::string &);
template bool numberFromText<bool>(const std::string &);

std::string textFromNumber(int value) {
  return textByToChars(value);
}

std::string textFromNumber(long long value) {
  return textByToChars(value);
}

std::string textFromNumber(double value) {
  return textByToChars(value, std::chars_format::general, 6);
}

std::string textFromNumber(bool value) {
  return value ? "1" : "0";
}

std::string shortestText(double value) {
  return std::isnan(value) ? "nan" : textByToChars(value);
}

} // namespace ExpressionBuilder
