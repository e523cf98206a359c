#include "ExpressionBuilder/tests/property/OracleLiterals.h"

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <limits>
#include <locale.h>

namespace LanguageOracle {
namespace {

// What the C library reads in the locale "C", whatever the locale of the process is.
double readDouble(const std::string &digits) {
  static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
  char *end = nullptr;
  errno = 0;
  const double value = strtod_l(digits.c_str(), &end, classic);
  if (end == digits.c_str()) {
    throw Error("Syntax error");
  }
  if (errno == ERANGE) {
    throw Error("Number out of range");
  }
  return value;
}

std::int32_t readInt(const std::string &digits) {
  errno = 0;
  const long value = std::strtol(digits.c_str(), nullptr, 10);
  if (errno == ERANGE || value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    throw Error("Number out of range");
  }
  return static_cast<std::int32_t>(value);
}

Value readString(const std::string &text, std::size_t &position) {
  const std::size_t close = text.find('"', position + 1);
  if (close == std::string::npos) {
    throw Error("Syntax error");
  }
  Value value = Value::ofString(text.substr(position + 1, close - position - 1));
  position = close + 1;
  return value;
}

} // namespace

bool isDigit(char byte) {
  return byte >= '0' && byte <= '9';
}
bool isLetter(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

Value readLiteral(const std::string &text, std::size_t &position) {
  if (text[position] == '"') {
    return readString(text, position);
  }
  const std::size_t begin = position;
  bool hasPoint = false;
  bool hasExponent = false;
  while (position < text.size()) {
    const char byte = text[position];
    const char before = position == begin ? 'e' : text[position - 1];
    const bool isFirstPoint = byte == '.' && !hasPoint;
    const bool isFirstMark = (byte == 'e' || byte == 'E') && !hasExponent;
    const bool isSign = (byte == '+' || byte == '-') && (before == 'e' || before == 'E');
    if (!isDigit(byte) && !isFirstPoint && !isFirstMark && !isSign) {
      break;
    }
    hasPoint = hasPoint || isFirstPoint;
    hasExponent = hasExponent || isFirstMark;
    ++position;
  }
  const std::string digits = text.substr(begin, position - begin);
  return hasPoint || hasExponent ? Value::ofDouble(readDouble(digits)) : Value::ofInt(readInt(digits));
}

} // namespace LanguageOracle
