#include "EmbeddedHost/JsonText.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace EmbeddedHost {

namespace {

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

// The value of a hexadecimal digit, -1 for anything else.
int hexadecimal(char character) {
  if (isDigit(character)) {
    return character - '0';
  }
  const char lower = static_cast<char>(character | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

void appendUtf8(std::uint32_t code, std::string &text) {
  const auto append = [&text](std::uint32_t byte) {
    text += static_cast<char>(byte);
  };
  if (code < 0x80U) {
    append(code);
  } else if (code < 0x800U) {
    append(0xC0U | (code >> 6U));
    append(0x80U | (code & 0x3FU));
  } else if (code < 0x10000U) {
    append(0xE0U | (code >> 12U));
    append(0x80U | ((code >> 6U) & 0x3FU));
    append(0x80U | (code & 0x3FU));
  } else {
    append(0xF0U | (code >> 18U));
    append(0x80U | ((code >> 12U) & 0x3FU));
    append(0x80U | ((code >> 6U) & 0x3FU));
    append(0x80U | (code & 0x3FU));
  }
}

class Parser {
public:
  Parser(std::string_view text, JsonHandler &handler, JsonProblem &problem)
      : m_text(text), m_handler(handler), m_problem(problem) {}

  bool parse();

private:
  char next() const { return m_offset < m_text.size() ? m_text[m_offset] : '\0'; }
  bool atEnd() const { return m_offset >= m_text.size(); }
  TextPlace placeOf(std::size_t offset) const { return {m_line, offset - m_lineStart + 1}; }
  TextPlace place() const { return placeOf(m_offset); }
  bool fail(std::string message);
  bool failAtEndOr(std::string message);
  void skipBlanks();
  bool readValue();
  bool readKey();
  bool afterValue();
  bool readText(std::string &text);
  bool readEscape(std::string &text);
  bool readCodeUnit(std::uint32_t &unit);
  bool readNumber();
  bool readWord(std::string_view word, JsonKind kind);
  bool skipDigits();
  bool open(char bracket);
  void close();

  std::string_view m_text;
  JsonHandler &m_handler;
  JsonProblem &m_problem;
  std::vector<char> m_open; // '[' or '{' for each level
  std::size_t m_offset = 0;
  std::size_t m_line = 1;
  std::size_t m_lineStart = 0;
  bool m_isDone = false;
};

bool Parser::fail(std::string message) {
  m_problem = {place(), std::move(message)};
  return false;
}

bool Parser::failAtEndOr(std::string message) {
  return fail(atEnd() ? "the text ends too early" : std::move(message));
}

void Parser::skipBlanks() {
  for (; !atEnd(); ++m_offset) {
    const char character = m_text[m_offset];
    if (character == '\n') {
      ++m_line;
      m_lineStart = m_offset + 1;
    } else if (character != ' ' && character != '\t' && character != '\r') {
      return;
    }
  }
}

bool Parser::parse() {
  if (m_text.substr(0, 3) == "\xEF\xBB\xBF") {
    m_text.remove_prefix(3);
  }
  skipBlanks();
  while (!m_isDone) {
    if (!readValue()) {
      return false;
    }
  }
  skipBlanks();
  return atEnd() || fail("nothing may follow the end of the JSON text");
}

bool Parser::open(char bracket) {
  if (m_open.size() == kDeepestJson) {
    return fail("more than " + std::to_string(kDeepestJson) + " levels of nesting");
  }
  const TextPlace at = place();
  bracket == '{' ? m_handler.beginObject(at) : m_handler.beginArray(at);
  m_open.push_back(bracket);
  ++m_offset;
  skipBlanks();
  if (next() == (bracket == '{' ? '}' : ']')) {
    close();
    return afterValue();
  }
  return bracket == '[' || readKey();
}

void Parser::close() {
  m_open.back() == '{' ? m_handler.endObject() : m_handler.endArray();
  m_open.pop_back();
  ++m_offset;
}

bool Parser::readKey() {
  if (next() != '"') {
    return failAtEndOr("a name in double quotes is expected here");
  }
  const TextPlace at = place();
  std::string name;
  if (!readText(name)) {
    return false;
  }
  m_handler.key(std::move(name), at);
  skipBlanks();
  if (next() != ':') {
    return failAtEndOr("\":\" is expected here");
  }
  ++m_offset;
  skipBlanks();
  return true;
}

// Closes what ends here and stops before the next value.
bool Parser::afterValue() {
  while (!m_open.empty()) {
    skipBlanks();
    const bool isObject = m_open.back() == '{';
    if (next() == ',') {
      ++m_offset;
      skipBlanks();
      return !isObject || readKey();
    }
    if (next() != (isObject ? '}' : ']')) {
      return failAtEndOr(isObject ? "\",\" or \"}\" is expected here" : "\",\" or \"]\" is expected here");
    }
    close();
  }
  m_isDone = true;
  return true;
}

// Reads a value, or the beginning of one that holds others.
bool Parser::readValue() {
  const char first = next();
  if (first == '{' || first == '[') {
    return open(first);
  }
  bool isRead = false;
  if (first == '"') {
    const TextPlace at = place();
    std::string text;
    isRead = readText(text);
    if (isRead) {
      m_handler.value(JsonKind::Text, std::move(text), at);
    }
  } else if (first == '-' || isDigit(first)) {
    isRead = readNumber();
  } else if (first == 't') {
    isRead = readWord("true", JsonKind::Boolean);
  } else if (first == 'f') {
    isRead = readWord("false", JsonKind::Boolean);
  } else if (first == 'n') {
    isRead = readWord("null", JsonKind::Null);
  } else {
    failAtEndOr("a value is expected here");
  }
  return isRead && afterValue();
}

bool Parser::readWord(std::string_view word, JsonKind kind) {
  if (m_text.substr(m_offset, word.size()) != word) {
    return fail("a value is expected here; a text stands in double quotes");
  }
  m_handler.value(kind, std::string(word), place());
  m_offset += word.size();
  return true;
}

bool Parser::skipDigits() {
  const std::size_t begin = m_offset;
  while (isDigit(next())) {
    ++m_offset;
  }
  return m_offset > begin || failAtEndOr("a digit is expected here");
}

bool Parser::readNumber() {
  const std::size_t begin = m_offset;
  if (next() == '-') {
    ++m_offset;
  }
  if (next() == '0') {
    ++m_offset;
    if (isDigit(next())) {
      return fail("a number does not begin with 0");
    }
  } else if (!skipDigits()) {
    return false;
  }
  if (next() == '.') {
    ++m_offset;
    if (!skipDigits()) {
      return false;
    }
  }
  if (next() == 'e' || next() == 'E') {
    ++m_offset;
    if (next() == '+' || next() == '-') {
      ++m_offset;
    }
    if (!skipDigits()) {
      return false;
    }
  }
  m_handler.value(JsonKind::Number, std::string(m_text.substr(begin, m_offset - begin)), placeOf(begin));
  return true;
}

bool Parser::readText(std::string &text) {
  ++m_offset;
  while (!atEnd()) {
    const char character = m_text[m_offset];
    if (character == '"') {
      ++m_offset;
      return true;
    }
    if (static_cast<unsigned char>(character) < 0x20) {
      return fail("a line feed or another control character in a text is written as an escape, such as \\n");
    }
    if (character == '\\') {
      if (!readEscape(text)) {
        return false;
      }
    } else {
      text += character;
      ++m_offset;
    }
  }
  return fail("the text ends too early");
}

bool Parser::readEscape(std::string &text) {
  constexpr std::string_view kNames = "\"\\/bfnrt";
  constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
  ++m_offset;
  const std::size_t which = atEnd() ? std::string_view::npos : kNames.find(next());
  if (which != std::string_view::npos) {
    text += kMeanings[which];
    ++m_offset;
    return true;
  }
  std::uint32_t code = 0;
  if (next() != 'u') {
    return failAtEndOr("this is no escape that JSON knows");
  }
  if (!readCodeUnit(code)) {
    return false;
  }
  if (code >= 0xD800U && code < 0xE000U) {
    std::uint32_t low = 0;
    const bool isFirst = code < 0xDC00U && next() == '\\';
    if (isFirst) {
      ++m_offset;
    }
    if (!isFirst || next() != 'u' || !readCodeUnit(low) || low < 0xDC00U || low >= 0xE000U) {
      return fail("half a character: this escape needs a second one beside it");
    }
    code = 0x10000U + ((code - 0xD800U) << 10U) + (low - 0xDC00U);
  }
  appendUtf8(code, text);
  return true;
}

// Reads the "u" and four hexadecimal digits.
bool Parser::readCodeUnit(std::uint32_t &unit) {
  ++m_offset;
  for (int count = 0; count < 4; ++count, ++m_offset) {
    const int digit = hexadecimal(next());
    if (digit < 0) {
      return failAtEndOr("\\u is followed by four hexadecimal digits");
    }
    unit = unit * 16U + static_cast<std::uint32_t>(digit);
  }
  return true;
}

} // namespace

JsonHandler::~JsonHandler() = default;

bool parseJson(std::string_view text, JsonHandler &handler, JsonProblem &problem) {
  return Parser(text, handler, problem).parse();
}

} // namespace EmbeddedHost
