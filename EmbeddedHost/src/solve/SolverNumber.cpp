#include "EmbeddedHost/SolverNumber.h"

#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

namespace EmbeddedHost {

namespace {

constexpr int kLargestWidth = 200;
constexpr int kLargestPrecision = 60;
// A double written without an exponent has up to 309 digits before its decimal mark.
constexpr std::size_t kLongestNumber = 512;

std::string_view withoutBlanksAround(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Reads an unsigned decimal number at `position`; -1 when it exceeds `largest`.
int readCount(std::string_view text, std::size_t &position, int largest) {
  int count = 0;
  while (position < text.size() && isDigit(text[position])) {
    count = count * 10 + (text[position] - '0');
    if (count > largest) {
      return -1;
    }
    ++position;
  }
  return count;
}

} // namespace

std::optional<double> readLeadingNumber(std::string_view text, std::size_t &length) {
  // The library takes no plus sign; with one removed, a minus sign must not follow.
  const bool hasPlus = !text.empty() && text.front() == '+';
  const std::string_view digits = text.substr(hasPlus ? 1 : 0);
  if (hasPlus && !digits.empty() && digits.front() == '-') {
    return std::nullopt;
  }
  double value = 0.0;
  const std::from_chars_result result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec != std::errc() || !std::isfinite(value)) {
    return std::nullopt;
  }
  length = static_cast<std::size_t>(result.ptr - text.data());
  return value;
}

std::optional<double> readSolverNumber(std::string_view text) {
  text = withoutBlanksAround(text);
  std::size_t length = 0;
  const std::optional<double> value = readLeadingNumber(text, length);
  return length == text.size() ? value : std::nullopt;
}

std::string writeSolverNumber(double value) {
  std::array<char, kLongestNumber> buffer{};
  const std::to_chars_result result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return std::string(buffer.data(), result.ptr);
}

std::optional<SolverNumberFormat> SolverNumberFormat::parse(std::string_view text, std::string &problem) {
  SolverNumberFormat format;
  if (text.empty() || text.front() != '%') {
    problem = "a number format begins with \"%\"";
    return std::nullopt;
  }
  std::size_t position = 1;
  for (; position < text.size(); ++position) {
    const char flag = text[position];
    if (flag == '-') {
      format.m_left = true;
    } else if (flag == '+') {
      format.m_plus = true;
    } else if (flag == ' ') {
      format.m_blank = true;
    } else if (flag == '0') {
      format.m_zero = true;
    } else {
      break;
    }
  }
  format.m_width = readCount(text, position, kLargestWidth);
  bool hasPrecision = false;
  if (position < text.size() && text[position] == '.') {
    hasPrecision = true;
    ++position;
    format.m_precision = readCount(text, position, kLargestPrecision);
  }
  if (format.m_width < 0 || format.m_precision < 0) {
    problem = "the width is limited to 200 and the precision to 60";
    return std::nullopt;
  }
  if (position + 1 != text.size() ||
      std::string_view("eEfFgGd").find(text[position]) == std::string_view::npos) {
    problem = "a number format ends with one of e, E, f, g, G and d";
    return std::nullopt;
  }
  format.m_conversion = text[position];
  if (format.m_conversion == 'd' && hasPrecision) {
    problem = "the format d takes no precision";
    return std::nullopt;
  }
  return format;
}

std::string SolverNumberFormat::digits(double magnitude) const {
  std::array<char, kLongestNumber> buffer{};
  char *const end = buffer.data() + buffer.size();
  std::to_chars_result result{buffer.data(), std::errc()};
  switch (m_conversion) {
  case 'e':
  case 'E':
    result = std::to_chars(buffer.data(), end, magnitude, std::chars_format::scientific, m_precision);
    break;
  case 'g':
  case 'G':
    result = std::to_chars(buffer.data(), end, magnitude, std::chars_format::general, m_precision);
    break;
  case 'd':
    result = std::to_chars(buffer.data(), end, magnitude, std::chars_format::fixed, 0);
    break;
  default:
    result = std::to_chars(buffer.data(), end, magnitude, std::chars_format::fixed, m_precision);
    break;
  }
  std::string text(buffer.data(), result.ptr);
  if (m_conversion == 'E' || m_conversion == 'G') {
    for (char &character : text) {
      if (character == 'e') {
        character = 'E';
      }
    }
  }
  return text;
}

std::optional<std::string> SolverNumberFormat::write(double value) const {
  if (!std::isfinite(value)) {
    return std::nullopt;
  }
  if (m_conversion == '\0') {
    return writeSolverNumber(value);
  }
  if (m_conversion == 'd' && value != std::trunc(value)) {
    return std::nullopt;
  }
  std::string sign;
  if (std::signbit(value) && !(m_conversion == 'd' && value == 0.0)) {
    sign = "-";
  } else if (m_plus) {
    sign = "+";
  } else if (m_blank) {
    sign = " ";
  }
  std::string text = digits(std::fabs(value));
  const std::size_t used = sign.size() + text.size();
  const auto width = static_cast<std::size_t>(m_width);
  const std::string padding(width > used ? width - used : 0, m_zero && !m_left ? '0' : ' ');
  if (m_left) {
    return sign + text + padding;
  }
  return m_zero ? sign + padding + text : padding + sign + text;
}

} // namespace EmbeddedHost
