#include "Workbench/MatrixTable.h"

#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ProjectModel.h"
#include "Workbench/ProjectSession.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

MatrixTable::Column columnOf(const ProjectSession &session, bool isInput, std::size_t group) {
  const ModelAttribute *attribute = session.groupAttribute(isInput, group);
  const std::string name = session.data().getGroup(isInput, static_cast<int>(group)).getName();
  MatrixTable::Column column;
  column.attribute = attribute == nullptr ? "" : attribute->fullName();
  column.title = name.empty() ? column.attribute : name;
  column.unit = attribute == nullptr ? "" : attribute->unit;
  return column;
}

// What is read of every row. To find a group's attribute goes through the model, and a matrix has many cells.
struct ReadCells {
  std::vector<const ModelAttribute *> inputs; ///< null where the cells cannot be told
  std::size_t outputs = 0;
  bool areOutputsKnown = true;
};

// The cells of a side belong to the groups at their places only while every group has an attribute.
ReadCells readCells(const ProjectSession &session) {
  ReadCells cells;
  const bool areInputsKnown = session.hasAllAttributes(true);
  cells.inputs.reserve(session.groupCount(true));
  for (std::size_t group = 0; group < session.groupCount(true); ++group) {
    cells.inputs.push_back(areInputsKnown ? session.groupAttribute(true, group) : nullptr);
  }
  cells.outputs = session.groupCount(false);
  cells.areOutputsKnown = session.hasAllAttributes(false);
  return cells;
}

MatrixTable::Row rowOf(const ProjectSession &session, const ReadCells &cells, std::size_t number) {
  OptimizationTool::OptimizationData &data = session.data();
  MatrixTable::Row row;
  row.number = number;
  row.name = session.rowName(number);
  row.state = session.rowState(number);
  row.inputs.reserve(cells.inputs.size());
  for (std::size_t group = 0; group < cells.inputs.size(); ++group) {
    const ModelAttribute *declared = cells.inputs[group];
    row.inputs.push_back(
        declared == nullptr ? "" : shownText(*declared, data.getVariantGroup(true, number, group)));
  }
  row.outputs.reserve(cells.outputs);
  for (std::size_t group = 0; group < cells.outputs; ++group) {
    const EntityModel::Attribute *cell = data.getVariantGroup(false, number, group);
    const bool isKnown = row.isOk() && cells.areOutputsKnown && cell != nullptr && cell->hasValue();
    row.outputs.push_back(isKnown ? std::optional<double>(cell->getStandardValue()) : std::nullopt);
  }
  row.cost = row.isOk() ? data.getVariantCost(number) : std::nullopt;
  return row;
}

std::optional<std::size_t> bestOf(const std::vector<MatrixTable::Row> &rows,
                                  MathematicalUtilities::OptimisationStrategy target) {
  using MathematicalUtilities::OptimisationStrategy;
  std::optional<std::size_t> best;
  for (std::size_t index = 0; index < rows.size() && target != OptimisationStrategy::None; ++index) {
    const MatrixTable::Row &row = rows[index];
    if (!row.isOk() || !row.cost || !std::isfinite(*row.cost)) {
      continue;
    }
    const bool isBetter = !best || (target == OptimisationStrategy::Minimise ? *row.cost < *rows[*best].cost
                                                                             : *row.cost > *rows[*best].cost);
    if (isBetter) {
      best = index;
    }
  }
  return best;
}

} // namespace

const MatrixTable::Row *MatrixTable::find(std::size_t number) const {
  const auto found =
      std::find_if(rows.begin(), rows.end(), [number](const Row &row) { return row.number == number; });
  return found == rows.end() ? nullptr : &*found;
}

MatrixTable MatrixTable::of(const ProjectSession &session) {
  MatrixTable table;
  table.title = session.title();
  if (!session.hasStudy()) {
    return table;
  }
  table.hasCost = session.data().getCostFunction().find_first_not_of(" \t") != std::string::npos;
  for (std::size_t group = 0; group < session.groupCount(true); ++group) {
    table.inputs.push_back(columnOf(session, true, group));
  }
  for (std::size_t group = 0; group < session.groupCount(false); ++group) {
    table.outputs.push_back(columnOf(session, false, group));
  }
  const ReadCells cells = readCells(session);
  table.rows.reserve(session.rowCount());
  for (std::size_t number = 0; number < session.rowCount(); ++number) {
    table.rows.push_back(rowOf(session, cells, number));
  }
  if (!table.rows.empty()) {
    table.baseline = table.rows.front();
  }
  table.bestNumber = bestOf(table.rows, session.data().getOptimisationTarget());
  return table;
}

} // namespace Workbench
