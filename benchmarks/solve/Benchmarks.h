#pragma once

#include "benchmarks/common/Report.h"

#include <cstddef>
#include <string>
#include <vector>

namespace SolveBenchmark {

/// What all benchmarks are given.
struct Setting {
  std::size_t repetitions = 9;
  /// Numbers of rows of a study, from few to many.
  std::vector<std::size_t> rows = {10, 100, 1'000};
  /// Rows of the studies whose solver is busy.
  std::size_t busyRows = 40;
  /// An empty folder on the disk, which goes with the program.
  std::string folder;
};

/// Each prints a table and enters what is judged into the list.
/// \{

/// Our own time for each solved row, for studies of different sizes; the least that it could cost.
void measureRows(const Setting &setting, Benchmarking::BarList &bars);
/// The same in a process that has touched a gigabyte.
void measureLargeProcess(const Setting &setting, Benchmarking::BarList &bars);
/// Two rows at a time; xargs with the same solver.
void measureSideBySide(const Setting &setting, Benchmarking::BarList &bars);
/// Copying the results of a version; cp.
void measureCopying(const Setting &setting, Benchmarking::BarList &bars);
/// \}

} // namespace SolveBenchmark
