#pragma once

#include <array>
#include <cstddef>

namespace ExpressionBuilder {

/// Classes of bytes, the same in every locale: bytes above 0x7F are none of them.

constexpr bool isDigit(char c) noexcept {
  return c >= '0' && c <= '9';
}

constexpr bool isLetter(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// What a name consists of after its first letter. The hyphen belongs to names: "x-1" is one name.
constexpr bool isNameByte(char c) noexcept {
  return isLetter(c) || isDigit(c) || c == '_' || c == '-';
}

/// What the parser tells apart where an operand or an operator may begin.
enum class ByteClass : unsigned char {
  Other,
  Literal, ///< a digit, a point or a double quote
  Percent,
  Letter,
  Plus,
  Minus,
  Star,
  Slash,
  Exclamation,
  Equals,
  Greater,
  Less,
  Ampersand,
  Bar,
  OpeningBracket,
  ClosingBracket,
  Comma,
  Question,
  Colon,
};

/// By a table: the parser asks for each byte, once per operator that waits for its right operand.
constexpr std::array<ByteClass, 256> makeByteClasses() noexcept {
  std::array<ByteClass, 256> classes{};
  for (std::size_t i = 0; i < classes.size(); ++i) {
    const char c = static_cast<char>(i);
    classes[i] = isDigit(c) ? ByteClass::Literal : isLetter(c) ? ByteClass::Letter : ByteClass::Other;
  }
  classes['"'] = ByteClass::Literal;
  classes['.'] = ByteClass::Literal;
  classes['%'] = ByteClass::Percent;
  classes['+'] = ByteClass::Plus;
  classes['-'] = ByteClass::Minus;
  classes['*'] = ByteClass::Star;
  classes['/'] = ByteClass::Slash;
  classes['!'] = ByteClass::Exclamation;
  classes['='] = ByteClass::Equals;
  classes['>'] = ByteClass::Greater;
  classes['<'] = ByteClass::Less;
  classes['&'] = ByteClass::Ampersand;
  classes['|'] = ByteClass::Bar;
  classes['('] = ByteClass::OpeningBracket;
  classes[')'] = ByteClass::ClosingBracket;
  classes[','] = ByteClass::Comma;
  classes['?'] = ByteClass::Question;
  classes[':'] = ByteClass::Colon;
  return classes;
}

inline ByteClass byteClassOf(char c) noexcept {
  static constexpr std::array<ByteClass, 256> kClasses = makeByteClasses();
  return kClasses[static_cast<unsigned char>(c)];
}

} // namespace ExpressionBuilder
