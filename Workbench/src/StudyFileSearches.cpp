#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/StudyFileReader.h"

namespace Workbench {

using EmbeddedHost::ExtractionKind;
using EmbeddedHost::ExtractionRule;
using EmbeddedHost::Reduction;

namespace {

const std::vector<std::string> kReductions{"single", "first", "last", "min", "max", "sum", "mean", "count"};

std::optional<ExtractionKind> kindOf(const std::string &way) {
  const std::map<std::string, ExtractionKind> kinds{
      {"pattern", ExtractionKind::Pattern},      {"key", ExtractionKind::KeyValue},
      {"column", ExtractionKind::TableColumn},   {"pointer", ExtractionKind::JsonPointer},
      {"columns", ExtractionKind::FixedColumns}, {"whole", ExtractionKind::WholeText}};
  const auto found = kinds.find(way);
  return found == kinds.end() ? std::nullopt : std::optional<ExtractionKind>(found->second);
}

} // namespace

bool StudyFileReader::readSearchText(const StudyNode &node, const std::string &what, std::string &text) {
  const std::optional<std::string> found = m_nodes.word(node, what);
  text = found.value_or("");
  return found.has_value();
}

bool StudyFileReader::readCount(const StudyNode &node, const std::string &what, std::size_t least,
                                std::size_t &number) {
  const std::optional<long long> count = m_nodes.whole(node, what);
  if (count && *count < static_cast<long long>(least)) {
    m_nodes.report(node, what + " counts from " + std::to_string(least));
    return false;
  }
  number = static_cast<std::size_t>(count.value_or(0));
  return count.has_value();
}

// What is looked for, in the way that the result names.
bool StudyFileReader::readSearch(const std::string &way, const NodeReader::Map &map, ExtractionRule &rule) {
  bool isRead = true;
  if (const StudyNode *reduce = map.find("reduce")) {
    const std::optional<std::size_t> word = m_nodes.choice(*reduce, "reduce", kReductions);
    rule.reduction = static_cast<Reduction>(word.value_or(0));
    isRead = word.has_value();
  }
  for (const bool isAfter : {true, false}) {
    const StudyNode *node = map.find(isAfter ? "after" : "until");
    if (node != nullptr) {
      isRead =
          readSearchText(*node, isAfter ? "after" : "until", isAfter ? rule.after : rule.until) && isRead;
    }
  }
  const StudyNode &node = *map.find(way);
  const std::optional<ExtractionKind> kind = kindOf(way);
  if (!kind || *kind == ExtractionKind::WholeText) {
    const std::optional<bool> isWanted = m_nodes.truth(node, way);
    if (isWanted && !*isWanted) {
      m_nodes.report(node, way + " can only be true");
    }
    rule.kind = ExtractionKind::WholeText;
    return isRead && isWanted.value_or(false);
  }
  rule.kind = *kind;
  switch (*kind) {
  case ExtractionKind::Pattern:
    return readPatternSearch(map, rule) && isRead;
  case ExtractionKind::KeyValue: {
    isRead = readSearchText(node, "key", rule.key) && isRead;
    const StudyNode *separators = map.find("separators");
    return (separators == nullptr || readSearchText(*separators, "separators", rule.separators)) && isRead;
  }
  case ExtractionKind::TableColumn:
    return readColumnSearch(map, rule) && isRead;
  case ExtractionKind::FixedColumns:
    return readFixedSearch(map, rule) && isRead;
  default: {
    const std::optional<std::string> pointer = m_nodes.text(node, "pointer");
    rule.pointer = pointer.value_or("");
    return pointer && isRead;
  }
  }
}

bool StudyFileReader::readPatternSearch(const NodeReader::Map &map, ExtractionRule &rule) {
  const StudyNode *group = map.find("group");
  if (group != nullptr) {
    const std::optional<long long> number = m_nodes.whole(*group, "group");
    if (number && *number < 0) {
      m_nodes.report(*group, "a group is counted from 0, the whole match");
    }
    if (!number || *number < 0) {
      return false;
    }
    rule.group = static_cast<std::size_t>(*number);
  }
  return readSearchText(*map.find("pattern"), "pattern", rule.pattern);
}

// A number means the column's number, anything else its title.
bool StudyFileReader::readTableColumn(const StudyNode &node, EmbeddedHost::TableColumn &column) {
  if (node.isScalar() && node.isPlain() && EmbeddedHost::readSolverNumber(node.text())) {
    return readCount(node, "column", 1, column.number);
  }
  return readSearchText(node, "column", column.title);
}

std::optional<char> StudyFileReader::readDelimiter(const StudyNode &node) {
  const std::optional<std::string> text = m_nodes.text(node, "delimiter");
  if (!text) {
    return std::nullopt;
  }
  if (*text == "tab" || *text == "blank") {
    return *text == "tab" ? '\t' : ' ';
  }
  if (text->size() != 1 || *text == "\"" || *text == "\n") {
    m_nodes.report(node, "delimiter must be one character, tab or blank, not \"" + *text + "\"");
    return std::nullopt;
  }
  return text->front();
}

bool StudyFileReader::readColumnSearch(const NodeReader::Map &map, ExtractionRule &rule) {
  bool isRead = readTableColumn(*map.find("column"), rule.column);
  if (const StudyNode *delimiter = map.find("delimiter")) {
    const std::optional<char> character = readDelimiter(*delimiter);
    rule.delimiter = character.value_or(',');
    isRead = character && isRead;
  }
  if (const StudyNode *skip = map.find("skip")) {
    isRead = readCount(*skip, "skip", 0, rule.skippedLines) && isRead;
  }
  if (const StudyNode *where = map.find("where")) {
    isRead = readWhere(*where, rule) && isRead;
  }
  return isRead;
}

bool StudyFileReader::readWhere(const StudyNode &node, ExtractionRule &rule) {
  const auto map = m_nodes.map(node, "where", {"column", "equals", "nearest"});
  if (!map) {
    return false;
  }
  const StudyNode *column = map->find("column");
  const StudyNode *equals = map->find("equals");
  const StudyNode *nearest = map->find("nearest");
  if (column == nullptr || (equals == nullptr) == (nearest == nullptr)) {
    m_nodes.report(node, "where needs \"column\", and either \"equals\" or \"nearest\"");
    return false;
  }
  rule.whereColumn.emplace();
  rule.isNearest = nearest != nullptr;
  const StudyNode &value = nearest != nullptr ? *nearest : *equals;
  const std::optional<std::string> text = m_nodes.text(value, rule.isNearest ? "nearest" : "equals");
  rule.whereValue = text.value_or("");
  if (text && rule.isNearest && !EmbeddedHost::readSolverNumber(*text)) {
    m_nodes.report(value, "nearest must be a number, not \"" + *text + "\"");
    return false;
  }
  return readTableColumn(*column, *rule.whereColumn) && text;
}

bool StudyFileReader::readFixedSearch(const NodeReader::Map &map, ExtractionRule &rule) {
  const StudyNode &columns = *map.find("columns");
  const StudyNode *line = map.find("line");
  const StudyNode *lines = map.find("lines");
  if (!columns.isList() || columns.items().size() != 2) {
    m_nodes.report(columns, "columns are two numbers, the first and the last column of the number, [13, 24]");
    return false;
  }
  bool isRead = readCount(columns.items()[0], "a column", 1, rule.firstColumn) &&
                readCount(columns.items()[1], "a column", 1, rule.lastColumn);
  if ((line == nullptr) == (lines == nullptr)) {
    m_nodes.report(columns, "columns need either \"line\", a line's number, or \"lines\", a pattern");
    return false;
  }
  if (line != nullptr) {
    return readCount(*line, "line", 1, rule.lineNumber) && isRead;
  }
  return readSearchText(*lines, "lines", rule.pattern) && isRead;
}

} // namespace Workbench
