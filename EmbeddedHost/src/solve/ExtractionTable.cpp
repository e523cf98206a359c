#include "EmbeddedHost/CsvText.h"
#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/src/solve/ExtractionSearch.h"

#include <cmath>
#include <limits>

namespace EmbeddedHost {

namespace {

using Row = std::vector<CsvCell>;

// Rows of a table, read one at a time.
class TableSearch {
public:
  TableSearch(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found)
      : m_rule(rule), m_found(found), m_reader(text.text, rule.delimiter, text.firstLine) {}

  void search() {
    Row row;
    if (!m_reader.next(row)) {
      reportProblem();
      return;
    }
    const bool isTitled = !m_rule.column.title.empty() ||
                          (m_rule.whereColumn && !m_rule.whereColumn->title.empty()) || looksLikeTitles(row);
    if (!find(m_rule.column, row, m_column) ||
        (m_rule.whereColumn && !find(*m_rule.whereColumn, row, m_where))) {
      return;
    }
    if (!isTitled && !readRow(row)) {
      return;
    }
    while (m_reader.next(row)) {
      if (!readRow(row)) {
        return;
      }
    }
    reportProblem();
  }

private:
  // Columns that are named by number need no titles; where the first row has none it counts.
  bool looksLikeTitles(const Row &row) const {
    const std::size_t index = m_rule.column.number - 1;
    return index < row.size() && !row[index].text.empty() && !readSolverNumber(row[index].text);
  }

  bool find(const TableColumn &column, const Row &titles, std::size_t &index) {
    if (column.title.empty()) {
      index = column.number - 1;
      return true;
    }
    bool isFound = false;
    for (std::size_t at = 0; at < titles.size(); ++at) {
      if (titles[at].text == column.title) {
        if (isFound) {
          return m_found.fail(ExtractionFailure::Ambiguous,
                              "two columns are called " + quotedBeginning(column.title), titles[at].line);
        }
        index = at;
        isFound = true;
      }
    }
    return isFound ||
           m_found.fail(ExtractionFailure::NoMatch, "no column is called " + quotedBeginning(column.title),
                        titles.front().line);
  }

  const CsvCell *cell(const Row &row, std::size_t index) {
    if (index < row.size()) {
      return &row[index];
    }
    m_found.fail(ExtractionFailure::Malformed,
                 "the row has " + std::to_string(row.size()) + " columns, not " + std::to_string(index + 1),
                 row.front().line);
    return nullptr;
  }

  bool readRow(const Row &row) {
    const CsvCell *value = cell(row, m_column);
    const CsvCell *where = value == nullptr || !m_rule.whereColumn ? value : cell(row, m_where);
    if (where == nullptr) {
      return false;
    }
    bool isWanted = true;
    if (m_rule.whereColumn && m_rule.isNearest) {
      const std::optional<double> at = readSolverNumber(where->text);
      if (!at) {
        return m_found.fail(ExtractionFailure::NotANumber, quotedBeginning(where->text) + " is not a number",
                            where->line);
      }
      const double distance = std::fabs(*at - readSolverNumber(m_rule.whereValue).value_or(0.0));
      if (distance < m_distance) {
        m_found.matches.clear();
        m_distance = distance;
      }
      isWanted = distance == m_distance;
    } else if (m_rule.whereColumn) {
      const std::optional<double> at = readSolverNumber(where->text);
      const std::optional<double> wanted = readSolverNumber(m_rule.whereValue);
      isWanted = at && wanted ? *at == *wanted : where->text == m_rule.whereValue;
    }
    if (isWanted) {
      m_found.matches.push_back({value->text, value->line});
    }
    return true;
  }

  void reportProblem() {
    if (!m_reader.problem().empty()) {
      m_found.fail(ExtractionFailure::Malformed, m_reader.problem(), m_reader.line());
    }
  }

  const ExtractionRule &m_rule;
  ExtractionMatches &m_found;
  CsvReader m_reader;
  std::size_t m_column = 0;
  std::size_t m_where = 0;
  double m_distance = std::numeric_limits<double>::infinity();
};

} // namespace

void findTableColumn(const ExtractionRule &rule, ExtractionText text, ExtractionMatches &found) {
  for (std::size_t line = 0; line < rule.skippedLines && !text.text.empty(); ++line) {
    takeLine(text.text);
    ++text.firstLine;
  }
  TableSearch(rule, text, found).search();
}

} // namespace EmbeddedHost
