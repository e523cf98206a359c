#pragma once

#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"

#include <cstddef>
#include <string>

namespace HostBenchmark {

/// What all benchmarks are given.
struct Setting {
  Benchmarking::Effort effort;
  /// Repetitions of what takes seconds.
  std::size_t longRepetitions = 9;
  /// Numbers of versions: few and many.
  std::size_t few = 1'000;
  std::size_t some = 10'000;
  std::size_t many = 100'000;
  /// The file of this program, for what has to run in a process of its own.
  std::string program;
  /// An empty folder on the disk, which goes with the program.
  std::string folder;
};

/// Each prints a table and enters what is judged into the list.
/// \{

/// Switching between alternates; the same values copied from plain vectors.
void measureSwitching(const Setting &setting, Benchmarking::BarList &bars);
/// findVersion() and findEditOperation(); a hash table of the same keys.
void measureLookUp(const Setting &setting, Benchmarking::BarList &bars);
/// Saving after one edit; one transaction of the bare database with the same row.
void measureSaving(const Setting &setting, Benchmarking::BarList &bars);
/// Opening a project; checking and reading the same rows with the bare database.
void measureOpening(const Setting &setting, Benchmarking::BarList &bars);
/// Bytes for each edit, after opening and in the session that made them.
void measureMemory(const Setting &setting, Benchmarking::BarList &bars);
/// Making alternates.
void measureCreation(const Setting &setting, Benchmarking::BarList &bars);
/// \}

/// What measureMemory() runs as a process of its own. Prints what it measured.
/// \param file        the project to be opened; "" to make one
/// \param alternates  how many to make then
void runMemoryChild(const std::string &file, std::size_t alternates);

} // namespace HostBenchmark
