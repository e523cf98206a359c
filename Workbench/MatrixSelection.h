#pragma once

#include "Workbench/MatrixTable.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Workbench {

/// Which part of a matrix is shown, and in which order.
struct MatrixSelection {
  std::string sort; ///< "row", "name", "status", "cost" or a column; "" leaves the order
  bool isDescending = false;
  std::vector<std::string> statuses; ///< words such as "ok" or "not run"; empty for all
  std::vector<std::string> columns;  ///< titles or attributes of inputs and outputs; empty for all
  std::size_t most = 0;              ///< rows, after sorting; 0 for all

  /// Leaves in the table what is selected. Rows without a value come last whichever way they are sorted.
  /// \return "" or one sentence saying what the table does not have; it is as it was then
  std::string apply(MatrixTable &table) const;
};

} // namespace Workbench
