#pragma once

#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"

#include <cstddef>
#include <string>
#include <vector>

namespace StudyBenchmark {

/// What all benchmarks are given.
struct Setting {
  Benchmarking::Effort effort;
  /// Repetitions of what takes seconds.
  std::size_t longRepetitions = 9;
  /// Numbers of groups on one side.
  std::vector<std::size_t> groups = {10, 100, 1'000};
  /// Numbers of rows, and the one that only loading and the matrix are measured with.
  std::vector<std::size_t> rows = {100, 1'000, 10'000};
  std::size_t mostRows = 100'000;
  /// The file of this program, for what has to run in a process of its own.
  std::string program;
};

/// Each prints a table and enters what is judged into the list.
/// \{

/// Flat index, containsAttribute() and getGroupContainingAttribute(), by the number of groups; the same handles once
/// through by hand, with the memory that both ask for.
void measureGroups(const Setting &setting, Benchmarking::BarList &bars);
/// Appending, a column of standard values and erasing; a vector of attribute pointers. Memory for each cell.
void measureMatrix(const Setting &setting, Benchmarking::BarList &bars);
/// initializeVariants(); one look-up in a hash table and one copy of an attribute for each cell.
void measureLoading(const Setting &setting, Benchmarking::BarList &bars);
/// updateAlternates() of all rows, in both directions.
void measureUpdating(const Setting &setting, Benchmarking::BarList &bars);
/// addVariant() without a name, the first and the last thousand of ten thousand rows.
void measureAdding(const Setting &setting, Benchmarking::BarList &bars);
/// setVariantValue() on one row.
void measureEditing(const Setting &setting, Benchmarking::BarList &bars);
/// \}

/// What measureMatrix() runs as a process of its own. Prints the bytes of all cells of a matrix, allocated and resident.
void runMemoryChild(std::size_t rows);

} // namespace StudyBenchmark
