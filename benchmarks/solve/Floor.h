#pragma once

#include "benchmarks/host/BareDatabase.h"

#include <string>

namespace SolveBenchmark {

/// The least that a solved row can cost: starting the solver and waiting for it, one result file that is on the disk
/// under its name, and one transaction that is on the disk.
class Floor {
public:
  /// \param folder       of the result file and the database
  /// \param journalMode  of the database; the product's
  Floor(std::string folder, std::string solver, const std::string &journalMode);

  /// \return seconds for one of `times` rows
  double measure(std::size_t times);

private:
  void runSolver() const;
  void writeResult() const;
  void commit();

  std::string m_folder;
  std::string m_solver;
  HostBenchmark::BareDatabase m_database;
  HostBenchmark::BareStatement m_begin;
  HostBenchmark::BareStatement m_put;
  HostBenchmark::BareStatement m_commit;
  long long m_row = 0;
};

/// The journal mode of a database file.
std::string journalModeOf(const std::string &file);

} // namespace SolveBenchmark
