#pragma once

#include "EmbeddedHost/SolverSupervisors.h"
#include "Workbench/ProjectSession.h"
#include "Workbench/RunInputs.h"
#include "Workbench/RunKeys.h"
#include "Workbench/SolverPrograms.h"
#include "Workbench/StudyExpression.h"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

class BestCost;
class UnitSystem;
class VersionRun;
struct RunPlan;

/// How far a solve is, besides what is finished.
struct SolveProgress {
  std::size_t running = 0; ///< solvers at this moment
  /// The best cost of all rows that are ok, also of those that were before, by the cost and the target of the study;
  /// empty without one.
  std::optional<double> bestCost;
  bool isStopping = false; ///< no further row is begun
};

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
  /// Told whenever something may have changed, and several times a second while solvers run.
  virtual void progressed(const SolveProgress &progress);
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
  std::size_t withoutFiles =
      0; ///< were to be read from kept files that are not there, and were left as they are
  std::size_t extracted = 0;  ///< read again from the files of their last run, without a run
  std::size_t infeasible = 0; ///< break the rule and are never run
  bool isInterrupted = false;
  std::string problem; ///< why the solve could not go on; "" otherwise
  std::string givenUp; ///< why nothing more was begun, though rows are left; "" otherwise
  /// What a solver may read otherwise than it is written, each place once.
  std::vector<FileProblem> warnings;
};

struct SolveOptions {
  std::size_t parallel = 1; ///< how many solvers run at a time, at least 1
  bool keepsGoing = false;  ///< goes on when the baseline fails
  /// The rows to solve, whatever their states; empty for those that need it.
  std::vector<std::size_t> rows = {};
  bool onlyExtracts = false; ///< reads results again from kept files; rows without them are left as they are
};

/// Solves the rows of a session that are not solved, or not for what they are now: each version in an empty folder of
/// its own, several at a time. That a row is begun, and how it ended, is recorded durably at once, and nothing starts
/// that was not; once something cannot be recorded no further row is begun, but what runs is finished. The baseline is
/// current again afterwards, and rows still have to be updated from their versions.
class SolveRunner {
public:
  /// Everything is kept by reference.
  SolveRunner(ProjectSession &session, const StudyFile &study, const RunInputs &inputs,
              const UnitSystem &units, const SolverPrograms &programs);
  SolveRunner(const SolveRunner &) = delete;
  SolveRunner &operator=(const SolveRunner &) = delete;
  ~SolveRunner();

  /// Compares every row with the record of its last run and sets its state. Starts nothing.
  void assess();

  /// Brings the records of rows up to date whose inputs have changed in nothing that their results depend on, such as
  /// an attribute that no template uses: whoever looks without the study file would take them for stale. solve() does
  /// it too. \return "" or why a record could not be stored
  std::string renewRecords();

  /// The baseline first, and alone: what fails there would fail everywhere.
  SolveReport solve(const SolveOptions &options, SolveObserver &observer);

private:
  using Runs = std::vector<std::unique_ptr<VersionRun>>;

  std::string plan(std::size_t row, RunPlan &plan, std::vector<FileProblem> *warnings = nullptr);
  void assessRow(std::size_t row, const EmbeddedHost::RunRecord &record, RowState &state);
  std::vector<EmbeddedHost::ResultValue> currentResults() const;
  std::string exactText(const std::string &name, std::map<std::string, double> &values) const;
  void stopRow(std::size_t row, const std::string &reason, SolveObserver &observer, SolveReport &report);
  std::unique_ptr<VersionRun> begin(std::size_t row, SolveObserver &observer, SolveReport &report);
  void record(const VersionRun &run, SolveObserver &observer, SolveReport &report);
  void pollAll(Runs &running, SolveObserver &observer, SolveReport &report);
  void findBestCost(const std::vector<std::size_t> &rowsToSolve);
  void takeCost(EntityModel::ModelVersion &version);
  void tell(std::size_t running, SolveObserver &observer, const SolveReport &report) const;
  void cancelAll(const Runs &running, SolveObserver &observer, SolveReport &report);
  void solveRows(const std::vector<std::size_t> &rows, std::size_t parallel, SolveObserver &observer,
                 SolveReport &report);
  void solveBaselineFirst(std::vector<std::size_t> &rows, bool keepsGoing, SolveObserver &observer,
                          SolveReport &report);

  ProjectSession &m_session;
  const StudyFile &m_study;
  const RunInputs &m_inputs;
  const UnitSystem &m_units;
  const SolverPrograms &m_programs;
  StudyExpressions m_expressions;
  std::map<std::size_t, std::vector<std::string>> m_newKeys; // of rows whose records are to be renewed
  std::unique_ptr<BestCost> m_bestCost;                      // of the solve that is going on
  std::string m_lastFailure;
  std::size_t m_equalFailures = 0;
  bool m_onlyExtracts = false;
  EmbeddedHost::SolverSupervisors m_supervisors; // one for each solver that runs at a time
};

} // namespace Workbench
