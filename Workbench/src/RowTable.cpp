#include "Workbench/src/RowTable.h"

#include "EmbeddedHost/CsvText.h"
#include "EmbeddedHost/SolverNumber.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/NearestWord.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/StudyEditing.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace Workbench {

namespace {

using EmbeddedHost::FileProblem;
using Json = nlohmann::ordered_json;

// One line of a table.
struct CsvLine {
  std::vector<std::string> cells;
  std::size_t line = 1;
};

// What the cells of one column are.
struct TableColumn {
  bool isName = false;
  std::optional<std::size_t> input;
  std::string title;
  std::string unit;
};

class TableReader {
public:
  TableReader(const ProjectSession &session, std::string file, std::vector<FileProblem> &problems)
      : m_session(session), m_file(std::move(file)), m_problems(problems) {}

  void readTitles(const CsvLine &line) {
    std::set<std::size_t> inputs;
    for (std::size_t index = 0; index < line.cells.size(); ++index) {
      TableColumn column = columnOf(line.cells[index], line.line, index);
      if (column.input && !inputs.insert(*column.input).second) {
        report(line.line, index, "the input \"" + line.cells[index] + "\" has two columns");
      }
      m_columns.push_back(std::move(column));
    }
    if (inputs.empty() && m_problems.empty()) {
      report(line.line, 0, "the first line has no title that is an input");
    }
  }

  // Takes the line as that of units when no cell of an input is a number.
  bool readUnits(const CsvLine &line) {
    const HostUnits units;
    bool hasUnit = false;
    for (std::size_t index = 0; index < m_columns.size() && index < line.cells.size(); ++index) {
      const std::string &cell = line.cells[index];
      if (m_columns[index].isName && !cell.empty()) {
        return false;
      }
      if (!m_columns[index].input || cell.empty()) {
        continue;
      }
      if (EmbeddedHost::readSolverNumber(cell) || !units.isUnit(cell) || !isReal(m_columns[index])) {
        return false;
      }
      hasUnit = true;
    }
    const bool isBlank = !line.cells.empty() && line.cells.front().empty();
    if (!hasUnit && !isBlank) {
      return false;
    }
    for (std::size_t index = 0; index < m_columns.size() && index < line.cells.size(); ++index) {
      m_columns[index].unit = m_columns[index].input ? line.cells[index] : "";
    }
    return true;
  }

  TableRow readRow(const CsvLine &line) {
    TableRow row;
    row.line = line.line;
    if (line.cells.size() != m_columns.size()) {
      report(line.line, 0,
             "the line has " + std::to_string(line.cells.size()) + " cells, the first line " +
                 std::to_string(m_columns.size()));
      return row;
    }
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
      readCell(line, index, row);
    }
    return row;
  }

private:
  bool isReal(const TableColumn &column) const {
    const ModelAttribute *declared = m_session.groupAttribute(true, *column.input);
    return declared != nullptr && declared->kind == AttributeKind::Real;
  }

  TableColumn columnOf(const std::string &title, std::size_t line, std::size_t index) {
    TableColumn column;
    column.title = title;
    column.isName = title == "name";
    static const std::set<std::string> kLeading{"row", "name", "status", "reason", "cost"};
    if (kLeading.count(title) != 0) {
      return column;
    }
    const std::optional<GroupPlace> place = findGroup(m_session, title);
    if (!place) {
      report(line, index, unknownGroup(m_session, title));
    } else if (place->isInput) {
      column.input = place->index;
    }
    return column;
  }

  void readCell(const CsvLine &line, std::size_t index, TableRow &row) {
    const TableColumn &column = m_columns[index];
    const std::string &cell = line.cells[index];
    if (column.isName) {
      row.name = cell;
    }
    if (!column.input) {
      return;
    }
    const ModelAttribute *declared = m_session.groupAttribute(true, *column.input);
    if (cell.empty() && (declared == nullptr || declared->kind != AttributeKind::Text)) {
      return; // what is missing is the baseline's
    }
    const bool isPlainNumber = EmbeddedHost::readSolverNumber(cell).has_value();
    const std::string typed = isPlainNumber && !column.unit.empty() ? cell + " " + column.unit : cell;
    std::string problem;
    if (!inputTexts(m_session, 0, {{column.title, typed}}, problem)) {
      report(line.line, index, problem);
    }
    row.values.emplace_back(column.title, typed);
  }

  void report(std::size_t line, std::size_t index, const std::string &message) {
    m_problems.push_back({m_file, line, index + 1, "column " + std::to_string(index + 1) + ": " + message});
  }

  const ProjectSession &m_session;
  std::string m_file;
  std::vector<FileProblem> &m_problems;
  std::vector<TableColumn> m_columns;
};

std::string cellOf(const Json &node) {
  return node.is_string() ? node.get<std::string>() : node.is_null() ? "" : node.dump();
}

// The document as the lines of a table, so that one reader judges both.
std::vector<CsvLine> linesOf(const Json &document) {
  std::vector<CsvLine> lines(2);
  lines[0].cells.emplace_back("name");
  lines[1].cells.emplace_back();
  for (const Json &column : document.at("inputs")) {
    lines[0].cells.push_back(column.at("title").get<std::string>());
    lines[1].cells.push_back(column.at("unit").get<std::string>());
  }
  for (const Json &row : document.at("rows")) {
    CsvLine line;
    line.line = lines.size() - 1; // rows are counted from 1: lines of the file are not known any more
    line.cells.push_back(row.at("name").get<std::string>());
    for (const Json &input : row.at("inputs")) {
      line.cells.push_back(cellOf(input));
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

std::optional<std::vector<TableRow>> readLines(const ProjectSession &session, const std::string &file,
                                               const std::vector<CsvLine> &lines,
                                               std::vector<FileProblem> &problems) {
  if (lines.empty()) {
    problems.push_back({file, 1, 1, "the table is empty"});
    return std::nullopt;
  }
  const std::size_t before = problems.size();
  TableReader reader(session, file, problems);
  reader.readTitles(lines.front());
  if (problems.size() != before) {
    return std::nullopt;
  }
  const bool hasUnits = lines.size() > 1 && reader.readUnits(lines[1]);
  std::vector<TableRow> rows;
  for (std::size_t index = hasUnits ? 2 : 1; index < lines.size(); ++index) {
    rows.push_back(reader.readRow(lines[index]));
  }
  return problems.size() == before ? std::optional(std::move(rows)) : std::nullopt;
}

} // namespace

std::optional<std::vector<TableRow>> readRowTable(const ProjectSession &session, const std::string &file,
                                                  const std::string &text,
                                                  std::vector<FileProblem> &problems) {
  EmbeddedHost::CsvReader reader(text, ',');
  std::vector<CsvLine> lines;
  std::vector<EmbeddedHost::CsvCell> row;
  while (reader.next(row)) {
    CsvLine line;
    line.line = row.empty() ? reader.line() : row.front().line;
    for (EmbeddedHost::CsvCell &cell : row) {
      line.cells.push_back(std::move(cell.text));
    }
    lines.push_back(std::move(line));
  }
  if (!reader.problem().empty()) {
    problems.push_back({file, reader.line(), 1, reader.problem()});
    return std::nullopt;
  }
  return readLines(session, file, lines, problems);
}

std::optional<std::vector<TableRow>> readRowJson(const ProjectSession &session, const std::string &file,
                                                 const std::string &text,
                                                 std::vector<FileProblem> &problems) {
  try {
    return readLines(session, file, linesOf(Json::parse(text)), problems);
  } catch (const Json::exception &error) {
    // A syntax error tells where it is; of anything else it is enough to know that the file is another one.
    const auto *syntax = dynamic_cast<const Json::parse_error *>(&error);
    const auto offset =
        static_cast<std::ptrdiff_t>(std::min(syntax == nullptr ? 0 : syntax->byte, text.size()));
    const auto line = static_cast<std::size_t>(std::count(text.begin(), text.begin() + offset, '\n')) + 1;
    problems.push_back({file, line, 1,
                        syntax == nullptr
                            ? "the file is no matrix that \"optstudy export --format json\" wrote"
                            : "the file is no JSON from here on; a table of another ending is read as CSV"});
    return std::nullopt;
  }
}

} // namespace Workbench
