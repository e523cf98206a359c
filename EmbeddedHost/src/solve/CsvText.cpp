#include "EmbeddedHost/CsvText.h"

namespace EmbeddedHost {

CsvReader::CsvReader(std::string_view text, char delimiter, std::size_t firstLine)
    : m_text(text), m_delimiter(delimiter), m_line(firstLine) {
  if (m_text.substr(0, 3) == "\xEF\xBB\xBF") {
    m_text.remove_prefix(3);
  }
}

bool CsvReader::isDelimiter() const {
  return m_delimiter == ' ' ? isBlank() : m_text[m_offset] == m_delimiter;
}

bool CsvReader::isLineEnd() const {
  return m_text[m_offset] == '\n' || (m_text[m_offset] == '\r' && m_text.substr(m_offset, 2) == "\r\n");
}

void CsvReader::skipLineEnd() {
  m_offset += m_text[m_offset] == '\r' ? 2 : 1;
  ++m_line;
  m_lineStart = m_offset;
}

// Blanks that are no cell; a tab may be what separates cells.
void CsvReader::skipBlanks() {
  while (!atEnd() && isBlank() && (m_delimiter == ' ' || !isDelimiter())) {
    ++m_offset;
  }
}

bool CsvReader::readQuoted(CsvCell &cell) {
  const std::size_t begin = m_line;
  ++m_offset;
  while (!atEnd()) {
    const char character = m_text[m_offset];
    if (character == '"' && m_text.substr(m_offset, 2) != "\"\"") {
      ++m_offset;
      return true;
    }
    m_offset += character == '"' ? 2 : 1;
    cell.text += character;
    if (character == '\n') {
      ++m_line;
      m_lineStart = m_offset;
    }
  }
  m_line = begin;
  m_problem = "a double quote that is not closed";
  return false;
}

bool CsvReader::readCell(CsvCell &cell) {
  skipBlanks();
  cell = {"", m_line, m_offset - m_lineStart + 1};
  if (!atEnd() && m_text[m_offset] == '"') {
    if (!readQuoted(cell)) {
      return false;
    }
    const std::size_t end = m_offset;
    skipBlanks();
    if (!atEnd() && !isLineEnd() && !isDelimiter() && (m_delimiter != ' ' || m_offset == end)) {
      m_problem = "text behind a closing double quote";
      return false;
    }
    return true;
  }
  const std::size_t begin = m_offset;
  while (!atEnd() && !isLineEnd() && !isDelimiter()) {
    ++m_offset;
  }
  const std::string_view text = m_text.substr(begin, m_offset - begin);
  const std::size_t last = text.find_last_not_of(" \t");
  cell.text = last == std::string_view::npos ? "" : text.substr(0, last + 1);
  return true;
}

bool CsvReader::next(std::vector<CsvCell> &row) {
  row.clear();
  // Lines without anything on them are no rows.
  for (skipBlanks(); !atEnd() && isLineEnd(); skipBlanks()) {
    skipLineEnd();
  }
  while (!atEnd()) {
    CsvCell cell;
    if (!readCell(cell)) {
      return false;
    }
    row.push_back(std::move(cell));
    if (m_delimiter == ' ') {
      skipBlanks();
    }
    if (atEnd() || isLineEnd()) {
      break;
    }
    if (m_delimiter != ' ') {
      ++m_offset;
      if (atEnd() || (skipBlanks(), !atEnd() && isLineEnd())) {
        row.push_back({"", m_line, m_offset - m_lineStart + 1});
        break;
      }
    }
  }
  if (!atEnd()) {
    skipLineEnd();
  }
  return !row.empty();
}

} // namespace EmbeddedHost
