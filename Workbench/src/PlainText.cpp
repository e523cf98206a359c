#include "Workbench/src/PlainText.h"

#include <algorithm>

namespace Workbench {

namespace {

bool isPlain(char character) {
  const bool isLetter = (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
  const bool isDigit = character >= '0' && character <= '9';
  return isLetter || isDigit || std::string("_-./:=@%+,").find(character) != std::string::npos ||
         static_cast<unsigned char>(character) >= 0x80;
}

} // namespace

std::size_t utf8Length(const std::string &text, std::size_t offset) {
  const auto byte = [&text](std::size_t index) {
    return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U;
  };
  const auto continues = [&](std::size_t index) {
    return (byte(index) & 0xC0U) == 0x80U;
  };
  const unsigned first = byte(offset);
  if (first < 0x80U) {
    return first == 0 ? 0 : 1;
  }
  const unsigned second = byte(offset + 1);
  if (first >= 0xC2U && first <= 0xDFU) {
    return continues(offset + 1) ? 2 : 0;
  }
  if (first >= 0xE0U && first <= 0xEFU) {
    const bool isOverlong = first == 0xE0U && second < 0xA0U;
    const bool isSurrogate = first == 0xEDU && second > 0x9FU;
    return continues(offset + 1) && continues(offset + 2) && !isOverlong && !isSurrogate ? 3 : 0;
  }
  if (first >= 0xF0U && first <= 0xF4U) {
    const bool isOverlong = first == 0xF0U && second < 0x90U;
    const bool isTooLarge = first == 0xF4U && second > 0x8FU;
    const bool isComplete = continues(offset + 1) && continues(offset + 2) && continues(offset + 3);
    return isComplete && !isOverlong && !isTooLarge ? 4 : 0;
  }
  return 0;
}

bool isUtf8Text(const std::string &text) {
  std::size_t length = 1;
  for (std::size_t offset = 0; offset < text.size() && length > 0; offset += length) {
    length = utf8Length(text, offset);
  }
  return length > 0;
}

std::string inOneLine(std::string text) {
  for (std::size_t index = 0; index < text.size(); ++index) {
    const auto code = static_cast<unsigned char>(text[index]);
    if (code < 0x20 || code == 0x7f) {
      text[index] = '?';
    }
    // U+0080 to U+009F, which some terminals obey as well.
    const bool hasNext = code == 0xc2 && index + 1 < text.size();
    if (hasNext && static_cast<unsigned char>(text[index + 1]) < 0xa0) {
      text.replace(index, 2, "?");
    }
  }
  return text;
}

std::string joinedWords(const std::vector<std::string> &words) {
  std::string text;
  for (const std::string &word : words) {
    text.append(text.empty() ? "" : " ").append(word);
  }
  return text;
}

std::string shellWord(const std::string &text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) {
    return text;
  }
  std::string word = "'";
  for (const char character : text) {
    word += character == '\'' ? std::string("'\\''") : std::string(1, character);
  }
  return word + "'";
}

} // namespace Workbench
