#pragma once

#include <string>
#include <string_view>

namespace ExpressionBuilder {

/// Numbers to text and back, the same in every process locale: a decimal point is ".", digits are never
/// grouped.

/// How the reading of a literal ended.
enum class LiteralStatus { Ok, NotANumber, OutOfRange };

template <class T> struct LiteralNumber {
  T value;
  LiteralStatus status;
};

/// A literal with "." or an exponent, read as `std::stod` reads in the "C" locale: the longest prefix that is
/// a number counts. Out of range are also numbers too small for full precision, such as "1e-310".
LiteralNumber<double> readDoubleLiteral(std::string_view text);

/// A whole-number literal, decimal, read as `std::stoi` does.
LiteralNumber<int> readIntLiteral(std::string_view text);

/// The value that a stream in the classic locale extracts from the text: white space first is skipped, the
/// characters that can belong to a number are taken. Without a number 0 (false); beyond the range of T the
/// largest or smallest value. A bool is true for every number except 0.
template <class T> T numberFromText(const std::string &text);

extern template int numberFromText<int>(const std::string &);
extern template long long numberFromText<long long>(const std::string &);
extern template double numberFromText<double>(const std::string &);
extern template bool numberFromText<bool>(const std::string &);

/// The text that a stream writes by default: whole numbers in decimal, a double with six significant digits
/// in the shorter of fixed and scientific notation, a bool as "0" or "1".
std::string textFromNumber(int value);
std::string textFromNumber(long long value);
std::string textFromNumber(double value);
std::string textFromNumber(bool value);

/// The shortest text that reads back as the same double: "3", "0.1", "1e+100", "inf", "-inf", "nan".
std::string shortestText(double value);

} // namespace ExpressionBuilder
