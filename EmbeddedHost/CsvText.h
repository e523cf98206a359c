#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

/// One cell of a table, with the place where it begins. Lines and columns count from 1; a column counts bytes.
struct CsvCell {
  std::string text; ///< without quotes, and without blanks around it unless they are quoted
  std::size_t line = 0;
  std::size_t column = 0;
};

/// Reads a table row by row from a text. A cell may stand in double quotes, in which the delimiter and line feeds are
/// text and `""` is a quote. Empty lines are no rows, and a byte order mark is skipped.
class CsvReader {
public:
  /// \param delimiter  what separates cells; a blank stands for any number of blanks and tabs
  /// \param firstLine  the number of the text's first line
  CsvReader(std::string_view text, char delimiter, std::size_t firstLine = 1);

  /// Reads the next row.
  /// \return false at the end of the text, and when the row is malformed; problem() then says why
  bool next(std::vector<CsvCell> &row);

  /// Why the last row could not be read; "" when nothing is wrong.
  const std::string &problem() const { return m_problem; }
  /// The line where the next row begins, or where the problem is.
  std::size_t line() const { return m_line; }

private:
  bool atEnd() const { return m_offset >= m_text.size(); }
  bool isBlank() const { return m_text[m_offset] == ' ' || m_text[m_offset] == '\t'; }
  bool isDelimiter() const;
  bool isLineEnd() const;
  void skipLineEnd();
  void skipBlanks();
  bool readCell(CsvCell &cell);
  bool readQuoted(CsvCell &cell);

  std::string_view m_text;
  char m_delimiter;
  std::size_t m_offset = 0;
  std::size_t m_line;
  std::size_t m_lineStart = 0;
  std::string m_problem;
};

} // namespace EmbeddedHost
