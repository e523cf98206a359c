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
