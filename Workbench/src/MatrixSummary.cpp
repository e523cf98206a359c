#include "Workbench/src/MatrixSummary.h"

#include "EmbeddedHost/SolverNumber.h"

namespace Workbench {

RowCounts RowCounts::of(const MatrixTable &table) {
  RowCounts counts;
  counts.rows = table.rows.size();
  for (const MatrixTable::Row &row : table.rows) {
    switch (row.state.status) {
    case RowStatus::Ok:
      ++counts.ok;
      break;
    case RowStatus::Failed:
      ++counts.failed;
      ++counts.reasons[reasonClass(row.state.reason)];
      break;
    case RowStatus::Infeasible:
      ++counts.infeasible;
      break;
    default:
      ++counts.open;
      break;
    }
  }
  return counts;
}

std::string RowCounts::toText() const {
  std::string text = numbered(rows, "row", "rows") + ": " + std::to_string(ok) + " ok";
  const auto add = [&text](std::size_t count, const char *what) {
    if (count > 0) {
      text.append(", ").append(std::to_string(count)).append(what);
    }
  };
  add(failed, " failed");
  add(infeasible, " infeasible");
  add(open, " not solved");
  return text;
}

std::string numbered(std::size_t count, const char *one, const char *several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string shortNumber(double value) {
  std::string problem;
  const auto format = EmbeddedHost::SolverNumberFormat::parse("%.6g", problem);
  const std::optional<std::string> text = format ? format->write(value) : std::nullopt;
  return text ? *text : EmbeddedHost::writeSolverNumber(value);
}

std::string bestLine(const MatrixTable &table) {
  const MatrixTable::Row *best = table.bestNumber ? table.find(*table.bestNumber) : nullptr;
  if (best == nullptr) {
    return "";
  }
  std::string text = "* Best: row " + std::to_string(best->number) + ", " + best->name + ", cost " +
                     shortNumber(*best->cost);
  if (best->number != 0 && table.baseline.cost) {
    text += " (the baseline: " + shortNumber(*table.baseline.cost) + ")";
  }
  return text;
}

} // namespace Workbench
