#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/RunKeys.h"
#include "Workbench/StudySession.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;
class VersionRun;

/// What a solve tells whoever shows it, and asks of them.
class SolveObserver {
public:
  SolveObserver() = default;
  SolveObserver(const SolveObserver &) = delete;
  SolveObserver &operator=(const SolveObserver &) = delete;
  virtual ~SolveObserver();

  /// \param toSolve  rows that will be solved
  /// \param alreadySolved  rows that need not be
  virtual void begun(std::size_t toSolve, std::size_t alreadySolved) = 0;
  virtual void finished(const std::string &rowName, const RowState &state, double seconds) = 0;
  virtual void ended() = 0;
  /// How often a person has asked to stop: once finishes what runs, twice ends it now.
  virtual int interruptions() const = 0;
};

/// How many rows became what.
struct SolveReport {
  std::size_t solved = 0; ///< by this solve
  std::size_t failed = 0; ///< by this solve
  std::size_t alreadySolved = 0;
  bool isInterrupted = false;
  std::string problem; ///< why the solve could not go on; "" otherwise
};

/// Solves the rows of a session that are not solved, or not for what they are now: each version in an empty folder of
/// its own, several at a time. That a row is begun, and how it ended, is recorded durably at once, and nothing starts
/// that was not; once something cannot be recorded no further row is begun, but what runs is finished. The baseline is
/// current again afterwards, and rows still have to be updated from their versions.
class SolveRunner {
public:
  /// \param program  the solver's program file
  /// Everything is kept by reference.
  SolveRunner(StudySession &session, const RunInputs &inputs, const UnitSystem &units,
              const std::string &program);

  /// Compares every row with the record of its last run and sets its state. Starts nothing.
  void assess();

  /// \param parallel  how many solvers run at a time, at least 1
  SolveReport solve(std::size_t parallel, SolveObserver &observer);

private:
  using Runs = std::vector<std::unique_ptr<VersionRun>>;
  struct Rendered {
    std::vector<RunFile> files;
    RunKeys keys;
  };

  std::string render(std::size_t row, Rendered &rendered);
  void stopRow(std::size_t row, const std::string &reason, SolveObserver &observer, SolveReport &report);
  std::unique_ptr<VersionRun> begin(std::size_t row, SolveObserver &observer, SolveReport &report);
  void record(const VersionRun &run, SolveObserver &observer, SolveReport &report);
  void pollAll(Runs &running, SolveObserver &observer, SolveReport &report);
  void cancelAll(const Runs &running, SolveObserver &observer, SolveReport &report);
  void solveRows(const std::vector<std::size_t> &rows, std::size_t parallel, SolveObserver &observer,
                 SolveReport &report);

  StudySession &m_session;
  const RunInputs &m_inputs;
  const UnitSystem &m_units;
  std::string m_program;
  std::string m_fingerprint;
};

} // namespace Workbench
