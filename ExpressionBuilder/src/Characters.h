#pragma once

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

} // namespace ExpressionBuilder
