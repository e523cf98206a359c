#include "ExpressionBuilder/tests/property/OracleValueText.h"

#include "ExpressionBuilder/tests/property/OracleLiterals.h"

namespace LanguageOracle {
namespace {

bool isWordByte(char byte) {
  return isDigit(byte) || isLetter(byte) || byte == '_' || byte == '-';
}

std::string wordOf(const std::string &text) {
  std::size_t length = 0;
  while (length < text.size() && isWordByte(text[length])) {
    ++length;
  }
  return text.substr(0, length);
}

/// A sign with nothing behind it that could be part of a number.
bool isBareSign(const std::string &text) {
  const bool isSign = text.front() == '+' || text.front() == '-';
  return isSign &&
         (text.size() == 1 || (!isDigit(text[1]) && text[1] != '.' && text[1] != 'e' && text[1] != 'E'));
}

} // namespace

ValueText readValueText(const std::string &text, bool allowEscapes) {
  ValueText result;
  if (text.empty()) {
    return result;
  }
  const char first = text.front();
  if (first == '"') {
    const std::size_t close = text.find('"', 1);
    const std::size_t escape = allowEscapes ? text.find('\\', 1) : std::string::npos;
    if (escape < close) {
      result.outcome =
          Outcome::ofValue(Value::ofString(text.substr(1, escape - 1) + text.substr(escape + 1)));
      result.length = text.size();
    } else if (close != std::string::npos) {
      result.outcome = Outcome::ofValue(Value::ofString(text.substr(1, close - 1)));
      result.length = close + 1;
    }
    return result;
  }
  if (isDigit(first) || first == '.' || first == '+' || first == '-') {
    if (isBareSign(text)) {
      result.outcome = Outcome::ofBuildError("Syntax error");
      return result;
    }
    try {
      result.outcome = Outcome::ofValue(readLiteral(text, result.length));
    } catch (const Error &error) {
      result.outcome = Outcome::ofBuildError(error.what());
    }
    return result;
  }
  const std::string word = wordOf(text);
  if (word == "true" || word == "false") {
    result.outcome = Outcome::ofValue(Value::ofBool(word == "true"));
    result.length = word.size();
  }
  return result;
}

std::string readName(const std::string &text, bool allowEscapes, std::size_t &length) {
  std::string name;
  for (length = 1; length < text.size(); ++length) {
    if (text[length] == '%') {
      ++length;
      return name;
    }
    if (allowEscapes && text[length] == '\\') {
      name += text.substr(length + 1);
      length = text.size();
      return name;
    }
    name += text[length];
  }
  return name;
}

} // namespace LanguageOracle
