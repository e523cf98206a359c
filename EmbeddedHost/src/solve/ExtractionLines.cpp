#include "EmbeddedHost/src/solve/ExtractionSearch.h"

#include <algorithm>

namespace EmbeddedHost {

namespace {

bool isBlank(char character) {
  return character == ' ' || character == '\t';
}

// A letter before or after a key makes it another key: "T" is not found in "T2" or "dT".
bool isOfWord(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         byte == '_' || byte >= 0x80;
}

std::size_t skipBlanks(std::string_view line, std::size_t at) {
  while (at < line.size() && isBlank(line[at])) {
    ++at;
  }
  return at;
}

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// Where a value ends: at a blank, and at a comma or semicolon after which something else begins. Between two digits they
// belong to the number, of another locale or with its thousands apart, which is refused later: half of it would be a
// wrong number.
std::size_t endOfValue(std::string_view line, std::size_t begin, const std::string &separators) {
  std::size_t end = line.find_first_of(" \t,;", begin);
  while (end != std::string_view::npos && !isBlank(line[end]) && end > begin && isDigit(line[end - 1]) &&
         end + 1 < line.size() && isDigit(line[end + 1]) && separators.find(line[end]) == std::string::npos) {
    end = line.find_first_of(" \t,;", end + 1);
  }
  return end;
}

// What follows the separator behind `at`; empty when no separator is there.
std::optional<std::string> valueBehind(std::string_view line, std::size_t at, const std::string &separators) {
  const std::size_t behindBlanks = skipBlanks(line, at);
  const bool isSeparator = behindBlanks < line.size() && !isBlank(line[behindBlanks]) &&
                           separators.find(line[behindBlanks]) != std::string::npos;
  const bool isBlankEnough = behindBlanks > at && separators.find(' ') != std::string::npos;
  if (!isSeparator && !isBlankEnough) {
    return std::nullopt;
  }
  const std::size_t begin = isSeparator ? skipBlanks(line, behindBlanks + 1) : behindBlanks;
  const std::size_t end = endOfValue(line, begin, separators);
  return std::string(
      line.substr(std::min(begin, line.size()), end == std::string_view::npos ? end : end - begin));
}

template <class Visit> void forEachLine(ExtractionText text, const Visit &visit) {
  for (std::size_t number = text.firstLine; !text.text.empty(); ++number) {
    visit(takeLine(text.text), number);
  }
}

} // namespace

void findPattern(const ExtractionRule &rule, const LinePattern &pattern, ExtractionText text,
                 ExtractionMatches &found) {
  forEachLine(text, [&](std::string_view line, std::size_t number) {
    for (std::string &match : pattern.find(line, rule.group)) {
      found.matches.push_back({std::move(match), number});
    }
  });
}

void findKey(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found) {
  forEachLine(text, [&](std::string_view line, std::size_t number) {
    for (std::size_t at = line.find(rule.key); at != std::string_view::npos;
         at = line.find(rule.key, at + 1)) {
      const std::size_t end = at + rule.key.size();
      const bool goesOn = end < line.size() && isOfWord(rule.key.back()) && isOfWord(line[end]);
      const bool beganBefore = at > 0 && isOfWord(rule.key.front()) && isOfWord(line[at - 1]);
      std::optional<std::string> value =
          goesOn || beganBefore ? std::nullopt : valueBehind(line, end, rule.separators);
      if (value) {
        found.matches.push_back({std::move(*value), number});
      }
    }
  });
}

void findFixedColumns(const ExtractionRule &rule, const LinePattern *pattern, ExtractionText text,
                      ExtractionMatches &found) {
  const std::size_t wantedLine = text.firstLine + rule.lineNumber - 1;
  forEachLine(text, [&](std::string_view line, std::size_t number) {
    if (pattern == nullptr ? number == wantedLine : pattern->isIn(line)) {
      const std::size_t begin = std::min(rule.firstColumn - 1, line.size());
      found.matches.push_back(
          {std::string(line.substr(begin, rule.lastColumn - rule.firstColumn + 1)), number});
    }
  });
}

// White space around the number does not matter; nothing but white space is a value that is not there.
void findWholeText(ExtractionText text, ExtractionMatches &found) {
  constexpr const char *kWhite = " \t\r\n\f\v";
  const std::size_t first = text.text.find_first_not_of(kWhite);
  if (first == std::string_view::npos) {
    found.matches.push_back({"", text.firstLine});
    return;
  }
  std::size_t line = text.firstLine;
  for (const char character : text.text.substr(0, first)) {
    line += character == '\n' ? 1U : 0U;
  }
  const std::size_t last = text.text.find_last_not_of(kWhite);
  found.matches.push_back({std::string(text.text.substr(first, last - first + 1)), line});
}

} // namespace EmbeddedHost
