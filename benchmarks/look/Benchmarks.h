#pragma once

#include "benchmarks/common/Report.h"

#include <cstddef>
#include <string>
#include <vector>

namespace LookBenchmark {

/// What all benchmarks are given.
struct Setting {
  std::size_t repetitions = 9;
  /// Numbers of rows of a study, from few to many; the bars are for the last.
  std::vector<std::size_t> rows = {1'000, 10'000};
  /// An empty folder on the disk, which goes with the program.
  std::string folder;
};

/// The commands that look at a matrix or price it anew, each a process of its own that opens the project first; the
/// sqlite3 shell on a table of the same numbers. Prints a table and enters what is judged into the list.
void measureLooking(const Setting &setting, Benchmarking::BarList &bars);

} // namespace LookBenchmark
