#include "ExpressionBuilder/src/Literals.h"

#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/NumberText.h"
#include "ExpressionBuilder/src/Characters.h"

#include <string_view>
#include <utility>

namespace ExpressionBuilder {

namespace {

bool isSign(char c) noexcept {
  return c == '+' || c == '-';
}

struct NumberScan {
  std::string_view text;
  bool isWhole;
};

/// One "." and one exponent mark at most, in any order; a sign first and right behind the exponent mark.
/// What the scan takes need not be a number as a whole.
NumberScan scanNumber(TextPosition &position, TextPosition end) {
  const TextPosition begin = position;
  bool hasPoint = false;
  bool hasExponent = false;
  bool isSignAllowed = true;
  for (; position != end; ++position) {
    const char c = *position;
    const bool isPoint = c == '.' && !hasPoint;
    const bool isExponentMark = (c == 'e' || c == 'E') && !hasExponent;
    if (!isDigit(c) && !isPoint && !isExponentMark && !(isSign(c) && isSignAllowed)) {
      break;
    }
    hasPoint = hasPoint || isPoint;
    hasExponent = hasExponent || isExponentMark;
    isSignAllowed = isExponentMark;
  }
  return {std::string_view(&*begin, static_cast<std::size_t>(position - begin)), !hasPoint && !hasExponent};
}

template <class T> Literal literalOf(const LiteralNumber<T> &number) {
  switch (number.status) {
  case LiteralStatus::Ok:
    return {makeConstant<T>(number.value), nullptr};
  case LiteralStatus::OutOfRange:
    return {nullptr, "Number out of range"};
  case LiteralStatus::NotANumber:
    break;
  }
  return {nullptr, "Syntax error"};
}

Literal readText(TextPosition &position, TextPosition end, bool allowEscapes) {
  ++position;
  std::string content;
  if (readDelimited(position, end, '"', allowEscapes, content) == DelimitedEnd::TextEnd) {
    return {nullptr, nullptr};
  }
  return {makeConstant<std::string>(std::move(content)), nullptr};
}

Literal readWord(TextPosition &position, TextPosition end) {
  TextPosition wordEnd = position;
  while (wordEnd != end && isNameByte(*wordEnd)) {
    ++wordEnd;
  }
  const std::string word(position, wordEnd);
  if (word != "true" && word != "false") {
    return {nullptr, nullptr};
  }
  position = wordEnd;
  return {makeConstant<bool>(word == "true"), nullptr};
}

} // namespace

DelimitedEnd readDelimited(TextPosition &position, TextPosition end, char delimiter, bool allowEscapes,
                           std::string &content) {
  const TextPosition begin = position;
  while (position != end) {
    const char c = *position;
    if (c == delimiter || (c == '\\' && allowEscapes)) {
      content = std::string(begin, position);
      ++position;
      if (c == delimiter) {
        return DelimitedEnd::Delimiter;
      }
      content.append(position, end);
      position = end;
      return DelimitedEnd::Escape;
    }
    ++position;
  }
  content.assign(begin, end);
  return DelimitedEnd::TextEnd;
}

Literal readLiteral(TextPosition &position, TextPosition end, bool allowEscapes) {
  if (position == end) {
    return {nullptr, nullptr};
  }
  const char c = *position;
  if (c == '"') {
    return readText(position, end, allowEscapes);
  }
  if (isDigit(c) || c == '.' || isSign(c)) {
    const NumberScan number = scanNumber(position, end);
    return number.isWhole ? literalOf(readIntLiteral(number.text))
                          : literalOf(readDoubleLiteral(number.text));
  }
  return readWord(position, end);
}

} // namespace ExpressionBuilder
