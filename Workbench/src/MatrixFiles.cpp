#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/src/CsvText.h"
#include "Workbench/src/JsonText.h"

#include <cmath>

namespace Workbench {

namespace {

std::string numberText(const std::optional<double> &value) {
  return value ? EmbeddedHost::writeSolverNumber(*value) : "";
}

// JSON knows neither infinities nor NaN; a text keeps them apart from what is missing.
Json numberNode(const std::optional<double> &value) {
  if (!value) {
    return nullptr;
  }
  return std::isfinite(*value) ? Json(*value) : Json(EmbeddedHost::writeSolverNumber(*value));
}

Json columnsNode(const std::vector<MatrixTable::Column> &columns) {
  Json nodes = Json::array();
  for (const MatrixTable::Column &column : columns) {
    nodes.push_back({{"title", column.title}, {"attribute", column.attribute}, {"unit", column.unit}});
  }
  return nodes;
}

Json rowNode(const MatrixTable::Row &row, bool hasCost) {
  Json node;
  node["row"] = row.number;
  node["name"] = row.name;
  node["status"] = statusWord(row.state.status);
  node["reason"] = row.state.reason;
  node["inStudyFile"] = row.state.isInStudyFile;
  node["inputs"] = Json::array();
  for (const std::string &input : row.inputs) {
    node["inputs"].push_back(input);
  }
  node["outputs"] = Json::array();
  for (const std::optional<double> &output : row.outputs) {
    node["outputs"].push_back(numberNode(output));
  }
  if (hasCost) {
    node["cost"] = numberNode(row.cost);
  }
  return node;
}

} // namespace

std::string MatrixTable::toCsv() const {
  std::vector<std::string> titles{"row", "name", "status", "reason"};
  std::vector<std::string> units{"", "", "", ""};
  for (const auto *columns : {&inputs, &outputs}) {
    for (const Column &column : *columns) {
      titles.push_back(column.title);
      units.push_back(column.unit);
    }
  }
  if (hasCost) {
    titles.emplace_back("cost");
    units.emplace_back();
  }
  std::string text;
  appendCsvLine(text, titles);
  appendCsvLine(text, units);
  for (const Row &row : rows) {
    std::vector<std::string> cells{std::to_string(row.number), row.name, statusWord(row.state.status),
                                   row.state.reason};
    cells.insert(cells.end(), row.inputs.begin(), row.inputs.end());
    for (const std::optional<double> &output : row.outputs) {
      cells.push_back(numberText(output));
    }
    if (hasCost) {
      cells.push_back(numberText(row.cost));
    }
    appendCsvLine(text, cells);
  }
  return text;
}

std::string MatrixTable::toJson() const {
  Json document;
  document["version"] = kJsonVersion;
  document["title"] = title;
  document["inputs"] = columnsNode(inputs);
  document["outputs"] = columnsNode(outputs);
  document["best"] = bestNumber ? Json(*bestNumber) : Json(nullptr);
  document["rows"] = Json::array();
  for (const Row &row : rows) {
    document["rows"].push_back(rowNode(row, hasCost));
  }
  return jsonText(document);
}

} // namespace Workbench
