#include "Workbench/tests/SourceMessages.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <sstream>

namespace Workbench {

namespace {

constexpr const char *kAnything = "...";

bool isWordCharacter(char character) {
  return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

// Reads a source from one statement to the next.
class SourceReader {
public:
  SourceReader(const std::string &file, const std::string &source) : m_file(file), m_source(source) {}

  std::vector<SourceStatement> read() {
    while (m_at < m_source.size()) {
      readNext();
    }
    endStatement();
    return std::move(m_statements);
  }

private:
  bool startsWith(const char *text) const {
    return m_source.compare(m_at, std::char_traits<char>::length(text), text) == 0;
  }

  void skipTo(const std::string &end) {
    const std::size_t found = m_source.find(end, m_at);
    const std::size_t next = found == std::string::npos ? m_source.size() : found + end.size();
    m_line +=
        static_cast<std::size_t>(std::count(m_source.begin() + static_cast<std::ptrdiff_t>(m_at),
                                            m_source.begin() + static_cast<std::ptrdiff_t>(next), '\n'));
    m_at = next;
  }

  bool isAtLineStart() const {
    const std::size_t before = m_at == 0 ? std::string::npos : m_source.find_last_not_of(" \t", m_at - 1);
    return before == std::string::npos || m_source[before] == '\n';
  }

  void readNext() {
    const char character = m_source[m_at];
    if (startsWith("//") || (character == '#' && isAtLineStart())) {
      skipTo("\n");
    } else if (startsWith("/*")) {
      skipTo("*/");
    } else if (startsWith("R\"")) {
      readRaw();
    } else if (character == '"') {
      append(readQuoted('"'));
    } else if (character == '\'' && (m_at == 0 || !isWordCharacter(m_source[m_at - 1]))) {
      readQuoted('\'');
    } else if (character == ';' || character == '{' || character == '}') {
      endStatement();
      ++m_at;
    } else {
      m_line += character == '\n' ? 1 : 0;
      m_statement.code += character == '\n' ? ' ' : character;
      ++m_at;
    }
  }

  std::string readQuoted(char quote) {
    std::string text;
    for (++m_at; m_at < m_source.size() && m_source[m_at] != quote; ++m_at) {
      if (m_source[m_at] == '\\' && m_at + 1 < m_source.size()) {
        ++m_at;
        text += m_source[m_at] == 'n' ? '\n' : m_source[m_at] == 't' ? '\t' : m_source[m_at];
      } else {
        text += m_source[m_at];
      }
    }
    ++m_at;
    return text;
  }

  void readRaw() {
    const std::size_t open = m_source.find('(', m_at);
    const std::string end = ")" + m_source.substr(m_at + 2, open - m_at - 2) + "\"";
    m_at = open + 1;
    const std::size_t begin = m_at;
    skipTo(end);
    append(m_source.substr(begin, m_at - end.size() - begin));
  }

  void append(const std::string &literal) {
    const std::size_t last = m_statement.code.find_last_not_of(" \t");
    if (last != std::string::npos && m_statement.code[last] == '"') {
      m_statement.literals.back() += literal;
      return;
    }
    m_statement.literals.push_back(literal);
    m_statement.code += '"';
  }

  void endStatement() {
    if (!m_statement.literals.empty()) {
      m_statement.file = m_file;
      m_statement.line = m_line;
      m_statements.push_back(std::move(m_statement));
    }
    m_statement = SourceStatement();
  }

  const std::string &m_file;
  const std::string &m_source;
  std::size_t m_at = 0;
  std::size_t m_line = 1;
  SourceStatement m_statement;
  std::vector<SourceStatement> m_statements;
};

// A place in the literals of a statement.
struct Place {
  std::size_t literal = 0;
  std::size_t offset = 0;
};

// Where the piece ends when it begins at the place, with the literals that it goes through.
std::optional<Place> follow(const std::string &piece, std::size_t from,
                            const std::vector<std::string> &literals, Place place,
                            std::set<std::size_t> &through) {
  through.insert(place.literal);
  for (; from < piece.size(); ++from, ++place.offset) {
    if (place.offset < literals[place.literal].size()) {
      if (literals[place.literal][place.offset] != piece[from]) {
        return std::nullopt;
      }
      continue;
    }
    for (std::size_t next = place.literal + 1; next < literals.size(); ++next) {
      std::set<std::size_t> others = through;
      if (const auto end = follow(piece, from, literals, {next, 0}, others)) {
        through = others;
        return end;
      }
    }
    return std::nullopt;
  }
  return place;
}

std::optional<Place> findPiece(const std::string &piece, const std::vector<std::string> &literals, Place from,
                               std::set<std::size_t> &through) {
  for (; from.literal < literals.size(); ++from.literal, from.offset = 0) {
    for (; from.offset < literals[from.literal].size(); ++from.offset) {
      std::set<std::size_t> others;
      if (const auto end = follow(piece, 0, literals, from, others)) {
        through.insert(others.begin(), others.end());
        return end;
      }
    }
  }
  return std::nullopt;
}

// What stands between the dots, without blanks around; what has no letter says nothing.
std::vector<std::string> piecesOf(const std::string &message) {
  std::vector<std::string> pieces;
  for (std::size_t begin = 0; begin <= message.size();) {
    const std::size_t end = std::min(message.find(kAnything, begin), message.size());
    std::string piece = message.substr(begin, end - begin);
    piece.erase(piece.find_last_not_of(' ') + 1);
    piece.erase(0, piece.find_first_not_of(' '));
    if (std::any_of(piece.begin(), piece.end(), isWordCharacter)) {
      pieces.push_back(piece);
    }
    begin = end + std::char_traits<char>::length(kAnything);
  }
  return pieces;
}

} // namespace

std::vector<SourceStatement> statementsOf(const std::string &file, const std::string &source) {
  return SourceReader(file, source).read();
}

std::vector<std::string> messagesOf(const std::string &page) {
  std::vector<std::string> items;
  std::istringstream stream(page);
  bool isInside = false;
  for (std::string line; std::getline(stream, line);) {
    if (line.compare(0, 3, "- `") == 0) {
      isInside = true;
      items.push_back(line);
    } else if (isInside && line.compare(0, 2, "  ") == 0) {
      items.back().append(line, 1);
    } else {
      isInside = false;
    }
  }
  std::vector<std::string> messages;
  for (const std::string &item : items) {
    const std::string shown = item.substr(0, item.find(" — "));
    for (std::size_t open = shown.find('`'); open != std::string::npos;) {
      const std::size_t close = shown.find('`', open + 1);
      messages.push_back(shown.substr(open + 1, close - open - 1));
      open = close == std::string::npos ? close : shown.find('`', close + 1);
    }
  }
  return messages;
}

std::set<std::size_t> literalsOf(const std::string &message, const SourceStatement &statement) {
  std::set<std::size_t> through;
  Place place;
  for (const std::string &piece : piecesOf(message)) {
    const std::optional<Place> end = findPiece(piece, statement.literals, place, through);
    if (!end) {
      return {};
    }
    place = *end;
  }
  return through;
}

} // namespace Workbench
