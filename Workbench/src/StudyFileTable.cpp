#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"
#include "Workbench/src/StudyFileReader.h"

#include <algorithm>

namespace Workbench {

namespace {

constexpr std::size_t kLargestTable = std::size_t{256} * 1024 * 1024;
constexpr const char *kNameTitle = "name";

using Cells = std::vector<EmbeddedHost::CsvCell>;

// Reads the rows of a table as variants.
class TableReader {
public:
  using ReadValue = std::function<std::optional<StudyValue>(const StudyNode &, const StudyGroup &)>;

  TableReader(NodeReader &nodes, const UnitSystem &units, StudyFile &file, ReadValue readValue)
      : m_nodes(nodes), m_units(units), m_file(file), m_readValue(std::move(readValue)) {}

  // Finds the input of each column.
  bool readTitles(const Cells &cells);
  // The second row, when it holds units instead of values.
  bool readUnits(const Cells &cells);
  std::optional<StudyRow> readRow(const Cells &cells, std::size_t number);
  std::optional<std::size_t> nameColumn() const { return m_nameColumn; }

private:
  struct Column {
    std::optional<std::size_t> input; ///< empty: the names of the rows
    std::string title;
    std::string unit;
  };

  const StudyAttribute &attributeOf(const Column &column) const {
    return *m_file.findAttribute(m_file.inputs[*column.input].macro());
  }
  static FilePlace placeOf(const EmbeddedHost::CsvCell &cell) { return {cell.line, cell.column}; }

  NodeReader &m_nodes;
  const UnitSystem &m_units;
  StudyFile &m_file;
  ReadValue m_readValue;
  std::vector<Column> m_columns;
  std::optional<std::size_t> m_nameColumn;
};

bool TableReader::readTitles(const Cells &cells) {
  std::vector<std::string> known;
  for (const StudyGroup &group : m_file.inputs) {
    known.push_back(group.title());
  }
  bool isGood = true;
  for (const EmbeddedHost::CsvCell &cell : cells) {
    Column column;
    column.title = cell.text;
    const auto input =
        std::find_if(m_file.inputs.begin(), m_file.inputs.end(), [&cell](const StudyGroup &group) {
          return group.name == cell.text || group.macro() == cell.text;
        });
    if (input != m_file.inputs.end()) {
      column.input = static_cast<std::size_t>(input - m_file.inputs.begin());
    } else if (cell.text == kNameTitle) {
      m_nameColumn = m_columns.size();
    } else {
      m_nodes.report(placeOf(cell), "there is no input \"" + cell.text + "\"" + didYouMean(cell.text, known));
      isGood = false;
      continue;
    }
    for (const Column &other : m_columns) {
      if (other.input == column.input) {
        m_nodes.report(placeOf(cell), "two columns are for \"" + column.title + "\"");
        isGood = false;
      }
    }
    m_columns.push_back(std::move(column));
  }
  return isGood;
}

bool TableReader::readUnits(const Cells &cells) {
  bool isUnits = false;
  for (std::size_t index = 0; index < cells.size() && index < m_columns.size(); ++index) {
    const std::string &text = cells[index].text;
    const bool isReal = m_columns[index].input && attributeOf(m_columns[index]).kind == AttributeKind::Real;
    std::size_t length = 0;
    if (!text.empty() && (!isReal || EmbeddedHost::readLeadingNumber(text, length))) {
      return false;
    }
    isUnits = isUnits || !text.empty();
  }
  for (std::size_t index = 0; isUnits && index < cells.size() && index < m_columns.size(); ++index) {
    Column &column = m_columns[index];
    column.unit = cells[index].text;
    if (column.unit.empty()) {
      continue;
    }
    m_nodes.setContext("row 2, column \"" + column.title + "\": ");
    const std::string problem = m_units.problemOf(column.unit);
    const std::string &declared = attributeOf(column).unit;
    if (!problem.empty()) {
      m_nodes.report(placeOf(cells[index]), problem);
    } else if (!m_units.convert(1.0, column.unit, declared)) {
      m_nodes.report(placeOf(cells[index]), "\"" + column.unit + "\" cannot be converted to \"" + declared +
                                                "\", in which \"" + column.title + "\" is declared" +
                                                UnitSystem::conversionHint(column.unit, declared));
    }
  }
  m_nodes.setContext("");
  return isUnits;
}

std::optional<StudyRow> TableReader::readRow(const Cells &cells, std::size_t number) {
  const std::string rowText = "row " + std::to_string(number);
  StudyRow row;
  row.place = placeOf(cells.front());
  for (const StudyGroup &group : m_file.inputs) {
    row.values.push_back(m_file.findAttribute(group.macro())->value);
  }
  if (cells.size() != m_columns.size()) {
    m_nodes.report(row.place, rowText + " has " + std::to_string(cells.size()) +
                                  " cells; the first row has " + std::to_string(m_columns.size()));
    return std::nullopt;
  }
  bool isGood = true;
  for (std::size_t index = 0; index < cells.size(); ++index) {
    const Column &column = m_columns[index];
    if (!column.input) {
      row.name = cells[index].text;
      continue;
    }
    if (cells[index].text.empty()) {
      continue; // the baseline's value
    }
    // A number takes the unit of its column unless it has one of its own.
    std::string text = cells[index].text;
    const bool isBare = EmbeddedHost::readSolverNumber(text).has_value();
    text += isBare && !column.unit.empty() ? " " + column.unit : "";
    m_nodes.setContext(rowText + ", column \"" + column.title + "\": ");
    const std::optional<StudyValue> value =
        m_readValue(StudyNode::scalar(text, false, placeOf(cells[index])), m_file.inputs[*column.input]);
    isGood = isGood && value;
    if (value) {
      row.values[*column.input] = *value;
    }
  }
  m_nodes.setContext("");
  return isGood ? std::optional<StudyRow>(std::move(row)) : std::nullopt;
}

} // namespace

// A file name, or a map that says how the table is written.
void StudyFileReader::readTable(const StudyNode &node, StudyFile &file) {
  const StudyNode *name = &node;
  char delimiter = ',';
  bool isOutside = false;
  if (!node.isScalar()) {
    const auto map = m_nodes.map(node, "csv", {"file", "delimiter", "outside"});
    name = map ? map->find("file") : nullptr;
    if (name == nullptr) {
      if (map) {
        m_nodes.report(node, "csv needs a file");
      }
      return;
    }
    if (const StudyNode *character = map->find("delimiter")) {
      delimiter = readDelimiter(*character).value_or(',');
    }
    const StudyNode *outside = map->find("outside");
    isOutside = outside != nullptr && m_nodes.truth(*outside, "outside").value_or(false);
  }
  const std::optional<std::string> path = m_nodes.word(*name, "file");
  if (!path) {
    return;
  }
  const std::size_t before = m_nodes.problems().size();
  if (!isOutside) {
    checkPath(*name, *path, "a file of the study");
  }
  if (m_nodes.problems().size() != before) {
    return;
  }
  std::string problem;
  const std::optional<std::string> text =
      EmbeddedHost::readWholeFile(file.pathOf(*path), kLargestTable, problem);
  if (!text) {
    m_nodes.report(*name, problem);
    return;
  }
  readTableText(file.pathOf(*path), *text, delimiter, file);
}

void StudyFileReader::readTableText(const std::string &path, const std::string &text, char delimiter,
                                    StudyFile &file) {
  NodeReader nodes(path, text, m_nodes.problems());
  if (!nodes.checkText()) {
    return;
  }
  StudyFileReader values(nodes, m_units);
  TableReader table(nodes, m_units, file, [&](const StudyNode &cell, const StudyGroup &group) {
    std::optional<StudyValue> value = values.readValue(cell, *file.findAttribute(group.macro()));
    return value && values.checkGroupLimits(cell, group, file, *value) ? value : std::nullopt;
  });
  EmbeddedHost::CsvReader reader(text, delimiter);
  Cells cells;
  if (!reader.next(cells) || !table.readTitles(cells)) {
    if (cells.empty() && reader.problem().empty()) {
      nodes.report(FilePlace{1, 1}, "the table is empty: its first row names the inputs");
    }
  } else {
    for (std::size_t number = 2; reader.next(cells); ++number) {
      if (number == 2 && table.readUnits(cells)) {
        continue;
      }
      std::optional<StudyRow> row = table.readRow(cells, number);
      if (row && !row->name.empty()) {
        nodes.setContext("row " + std::to_string(number) + ", column \"name\": ");
        const EmbeddedHost::CsvCell &cell = cells[*table.nameColumn()];
        m_rowNames.swap(values.m_rowNames);
        values.checkRowName(StudyNode(StudyNode::Kind::Scalar, {cell.line, cell.column}), *row);
        m_rowNames.swap(values.m_rowNames);
        nodes.setContext("");
      }
      if (row) {
        file.rows.push_back(std::move(*row));
      }
    }
  }
  if (!reader.problem().empty()) {
    nodes.report(FilePlace{reader.line(), 1}, reader.problem());
  }
}

} // namespace Workbench
