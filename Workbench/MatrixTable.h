#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

class StudySession;

/// The matrix of a study as people see it. A row that is not ok has no outputs and no cost in it.
struct MatrixTable {
  struct Column {
    std::string title;
    std::string unit;
  };
  struct Row {
    std::size_t number = 0; ///< 0 is the baseline
    std::string name;
    bool isOk = false;
    std::string status;
    std::vector<std::string> inputs;            ///< as they are shown, without unit
    std::vector<std::optional<double>> outputs; ///< in the unit of the column
    std::optional<double> cost;
  };

  std::string title;
  bool hasCost = false;
  std::vector<Column> inputs;
  std::vector<Column> outputs;
  std::vector<Row> rows;
  std::optional<std::size_t> best; ///< position in rows; none without target or when no row has a cost

  /// The matrix of a session, with the best row found.
  static MatrixTable of(const StudySession &session);

  /// The table as text: one line a row, differences to the baseline in per cent behind every output and the cost, the
  /// best row marked with an asterisk, a line of units under the titles.
  std::string toText() const;
};

} // namespace Workbench
