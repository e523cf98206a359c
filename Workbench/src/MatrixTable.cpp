#include "Workbench/MatrixTable.h"

#include "EmbeddedHost/SolverNumber.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/StudySession.h"

#include <algorithm>
#include <cmath>

namespace Workbench {

namespace {

std::string statusText(const RowState &state) {
  std::string text;
  switch (state.status) {
  case RowStatus::NotRun:
    text = "not run";
    break;
  case RowStatus::Ok:
    text = "ok";
    break;
  case RowStatus::Stale:
    text = "stale";
    break;
  case RowStatus::Failed:
    text = "failed: " + state.reason;
    break;
  }
  return state.isInStudyFile ? text : text + " (not in the study file)";
}

std::string inputText(const StudyAttribute &declared, const EntityModel::Attribute *attribute) {
  if (attribute == nullptr || !attribute->hasValue()) {
    return "";
  }
  const double number = attribute->getStandardValue();
  switch (declared.kind) {
  case AttributeKind::Text:
    return attribute->getValueAsString();
  case AttributeKind::Boolean:
    return number == 0.0 ? "false" : "true";
  case AttributeKind::Choice: {
    const auto ordinal = static_cast<std::size_t>(std::max(1.0, number));
    return declared.options[std::min(ordinal, declared.options.size()) - 1];
  }
  default:
    return EmbeddedHost::writeSolverNumber(number);
  }
}

std::optional<std::size_t> bestOf(const std::vector<MatrixTable::Row> &rows,
                                  MathematicalUtilities::OptimisationStrategy target) {
  using MathematicalUtilities::OptimisationStrategy;
  std::optional<std::size_t> best;
  for (std::size_t index = 0; index < rows.size() && target != OptimisationStrategy::None; ++index) {
    const MatrixTable::Row &row = rows[index];
    if (!row.isOk || !row.cost || !std::isfinite(*row.cost)) {
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

MatrixTable MatrixTable::of(const StudySession &session) {
  const StudyFile &study = session.study();
  OptimizationTool::OptimizationData &data = session.data();
  MatrixTable table;
  table.title = study.title;
  table.hasCost = study.cost.find_first_not_of(" \t") != std::string::npos;
  for (const StudyGroup &group : study.inputs) {
    table.inputs.push_back({group.title(), study.findAttribute(group.macro())->unit});
  }
  for (const StudyGroup &group : study.outputs) {
    table.outputs.push_back({group.title(), study.findAttribute(group.macro())->unit});
  }
  for (std::size_t number = 0; number < session.rowCount(); ++number) {
    const RowState &state = session.rowState(number);
    Row row;
    row.number = number;
    row.name = session.rowName(number);
    row.isOk = state.status == RowStatus::Ok;
    row.status = statusText(state);
    for (std::size_t index = 0; index < study.inputs.size(); ++index) {
      row.inputs.push_back(inputText(*study.findAttribute(study.inputs[index].macro()),
                                     data.getVariantGroup(true, number, index)));
    }
    for (std::size_t index = 0; index < study.outputs.size(); ++index) {
      const EntityModel::Attribute *cell = data.getVariantGroup(false, number, index);
      const bool isKnown = row.isOk && cell != nullptr && cell->hasValue();
      row.outputs.push_back(isKnown ? std::optional<double>(cell->getStandardValue()) : std::nullopt);
    }
    row.cost = row.isOk ? data.getVariantCost(number) : std::nullopt;
    table.rows.push_back(std::move(row));
  }
  table.best = bestOf(table.rows, data.getOptimisationTarget());
  return table;
}

} // namespace Workbench
