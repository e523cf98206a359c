#pragma once

#include "Workbench/RowState.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

class ProjectSession;

/// How an output or a cost is compared with the baseline's.
enum class Differences { None, Absolute, Percent };

/// The matrix of a study as people see it. A row that is not ok has no outputs and no cost in it.
struct MatrixTable {
  struct Column {
    std::string title;     ///< the group's name, or its first attribute's
    std::string attribute; ///< full name of the group's first attribute
    std::string unit;
  };
  struct Row {
    std::size_t number = 0; ///< 0 is the baseline
    std::string name;
    RowState state;
    std::vector<std::string> inputs;            ///< as they are shown, without unit
    std::vector<std::optional<double>> outputs; ///< in the unit of the column
    std::optional<double> cost;

    bool isOk() const { return state.status == RowStatus::Ok; }
  };

  std::string title;
  bool hasCost = false;
  std::vector<Column> inputs;
  std::vector<Column> outputs;
  std::vector<Row> rows;
  Row baseline;                          ///< what differences are to, whichever rows are shown
  std::optional<std::size_t> bestNumber; ///< of a row; none without target or when no row has a cost

  /// The matrix of a session, with the best row found; without rows when it has no study.
  static MatrixTable of(const ProjectSession &session);

  /// The row of that number, or null.
  const Row *find(std::size_t number) const;

  /// The table as text: one line a row, differences to the baseline behind every output and the cost, the best row
  /// marked with an asterisk, a line of units under the titles.
  std::string toText(Differences differences = Differences::Percent) const;
  /// As a file for other programs: a line of titles, one of units, one a row. The leading columns are row, name, status
  /// and reason; then inputs, outputs and the cost. Every number is in its shortest exact form; nothing stands for a
  /// missing value.
  std::string toCsv() const;
  /// The same as JSON, numbers as numbers and null for what is missing.
  std::string toJson() const;
};

} // namespace Workbench
