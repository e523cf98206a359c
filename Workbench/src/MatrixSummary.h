#pragma once

#include "Workbench/MatrixTable.h"

#include <cstddef>
#include <map>
#include <string>

namespace Workbench {

// How many rows are what.
struct RowCounts {
  std::size_t rows = 0;
  std::size_t ok = 0;
  std::size_t failed = 0;
  std::size_t infeasible = 0;
  std::size_t open = 0;                       // not run, running or stale
  std::map<std::string, std::size_t> reasons; // of failed rows, by what the reason begins with

  static RowCounts of(const MatrixTable &table);
  // "30 rows: 28 ok, 2 failed"
  std::string toText() const;
};

// "1 row", "2 rows"
std::string numbered(std::size_t count, const char *one, const char *several);

// A number as tables show it.
std::string shortNumber(double value);

// "* Best: row 19, Variant 19, cost 0.659532 (the baseline: 1.24513)"; "" when no row is the best.
std::string bestLine(const MatrixTable &table);

} // namespace Workbench
