#include "Workbench/MatrixSelection.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/NearestWord.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>

namespace Workbench {

namespace {

using Row = MatrixTable::Row;
using Column = MatrixTable::Column;

constexpr std::array<RowStatus, 6> kStatuses{RowStatus::NotRun, RowStatus::Running, RowStatus::Ok,
                                             RowStatus::Stale,  RowStatus::Failed,  RowStatus::Infeasible};

std::vector<std::string> statusWords() {
  std::vector<std::string> words;
  words.reserve(kStatuses.size());
  for (const RowStatus status : kStatuses) {
    words.emplace_back(statusWord(status));
  }
  return words;
}

std::optional<std::size_t> findColumn(const std::vector<Column> &columns, const std::string &name) {
  const auto found = std::find_if(columns.begin(), columns.end(), [&name](const Column &column) {
    return column.title == name || column.attribute == name;
  });
  return found == columns.end()
             ? std::nullopt
             : std::optional<std::size_t>(static_cast<std::size_t>(found - columns.begin()));
}

std::vector<std::string> columnNames(const MatrixTable &table) {
  std::vector<std::string> names;
  for (const auto *columns : {&table.inputs, &table.outputs}) {
    for (const Column &column : *columns) {
      names.push_back(column.title);
      names.push_back(column.attribute);
    }
  }
  return names;
}

std::string unknownColumn(const MatrixTable &table, const std::string &name,
                          std::vector<std::string> others) {
  const std::vector<std::string> names = columnNames(table);
  others.insert(others.end(), names.begin(), names.end());
  return "there is no column \"" + name + "\"" + didYouMean(name, others);
}

// What rows are ordered by: a number where there is one, else a text; nothing comes last.
struct SortKey {
  bool isMissing = false;
  std::optional<double> number;
  std::string text;
};

// A cost may be no number, which stands in no order.
SortKey keyOf(const std::optional<double> &number) {
  const bool isMissing = !number.has_value() || std::isnan(*number);
  return {isMissing, isMissing ? std::nullopt : number, ""};
}

SortKey keyOfText(const std::string &text) {
  return {text.empty(), EmbeddedHost::readSolverNumber(text), text};
}

bool isLess(const SortKey &left, const SortKey &right) {
  if (left.number && right.number) {
    return *left.number < *right.number;
  }
  return left.number.has_value() != right.number.has_value() ? left.number.has_value()
                                                             : left.text < right.text;
}

using KeyOfRow = std::function<SortKey(const Row &)>;

KeyOfRow sortingBy(const MatrixTable &table, const std::string &sort) {
  if (sort == "row") {
    return [](const Row &row) {
      return keyOf(static_cast<double>(row.number));
    };
  }
  if (sort == "name") {
    return [](const Row &row) {
      return SortKey{false, std::nullopt, row.name};
    };
  }
  if (sort == "status") {
    return [](const Row &row) {
      return keyOfText(statusText(row.state));
    };
  }
  if (sort == "cost") {
    return [](const Row &row) {
      return keyOf(row.cost);
    };
  }
  if (const auto input = findColumn(table.inputs, sort)) {
    return [index = *input](const Row &row) {
      return keyOfText(row.inputs[index]);
    };
  }
  if (const auto output = findColumn(table.outputs, sort)) {
    return [index = *output](const Row &row) {
      return keyOf(row.outputs[index]);
    };
  }
  return {};
}

void sortRows(std::vector<Row> &rows, const KeyOfRow &keyOfRow, bool isDescending) {
  std::vector<std::pair<SortKey, std::size_t>> order;
  order.reserve(rows.size());
  for (std::size_t index = 0; index < rows.size(); ++index) {
    order.emplace_back(keyOfRow(rows[index]), index);
  }
  std::stable_sort(order.begin(), order.end(), [isDescending](const auto &left, const auto &right) {
    if (left.first.isMissing || right.first.isMissing) {
      return !left.first.isMissing && right.first.isMissing;
    }
    return isDescending ? isLess(right.first, left.first) : isLess(left.first, right.first);
  });
  std::vector<Row> sorted;
  sorted.reserve(rows.size());
  for (const auto &entry : order) {
    sorted.push_back(std::move(rows[entry.second]));
  }
  rows = std::move(sorted);
}

template <class Cell> void keep(std::vector<Cell> &cells, const std::vector<std::size_t> &kept) {
  std::vector<Cell> selected;
  selected.reserve(kept.size());
  for (const std::size_t index : kept) {
    selected.push_back(std::move(cells[index]));
  }
  cells = std::move(selected);
}

std::string selectColumns(MatrixTable &table, const std::vector<std::string> &columns) {
  std::vector<std::size_t> inputs;
  std::vector<std::size_t> outputs;
  for (const std::string &name : columns) {
    if (const auto input = findColumn(table.inputs, name)) {
      inputs.push_back(*input);
    } else if (const auto output = findColumn(table.outputs, name)) {
      outputs.push_back(*output);
    } else {
      return unknownColumn(table, name, {});
    }
  }
  keep(table.inputs, inputs);
  keep(table.outputs, outputs);
  keep(table.baseline.inputs, inputs);
  keep(table.baseline.outputs, outputs);
  for (Row &row : table.rows) {
    keep(row.inputs, inputs);
    keep(row.outputs, outputs);
  }
  return "";
}

} // namespace

std::string MatrixSelection::apply(MatrixTable &table) const {
  const std::vector<std::string> words = statusWords();
  for (const std::string &status : statuses) {
    if (std::find(words.begin(), words.end(), status) == words.end()) {
      return "there is no status \"" + status + "\"" + didYouMean(status, words);
    }
  }
  const KeyOfRow keyOfRow = sortingBy(table, sort);
  if (!sort.empty() && !keyOfRow) {
    return unknownColumn(table, sort, {"row", "name", "status", "cost"});
  }
  MatrixTable selected = table;
  if (!statuses.empty()) {
    const auto isLeftOut = [this](const Row &row) {
      return std::find(statuses.begin(), statuses.end(), statusWord(row.state.status)) == statuses.end();
    };
    selected.rows.erase(std::remove_if(selected.rows.begin(), selected.rows.end(), isLeftOut),
                        selected.rows.end());
  }
  if (keyOfRow) {
    sortRows(selected.rows, keyOfRow, isDescending);
  }
  if (most > 0 && selected.rows.size() > most) {
    selected.rows.resize(most);
  }
  std::string problem = columns.empty() ? "" : selectColumns(selected, columns);
  if (problem.empty()) {
    table = std::move(selected);
  }
  return problem;
}

} // namespace Workbench
