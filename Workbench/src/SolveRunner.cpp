#include "Workbench/SolveRunner.h"

#include "OptimizationTool/OptimizationData.h"
#include "Workbench/src/VersionRun.h"

#include <algorithm>
#include <utility>

namespace Workbench {

namespace {

using EmbeddedHost::RunStatus;

// Switches the versions of a session for as long as it lives; the study takes no notice, and the baseline is current
// again afterwards.
class SolvingScope {
public:
  explicit SolvingScope(StudySession &session)
      : m_session(session), m_run(session.commands()), m_guard(session.data()) {}
  SolvingScope(const SolvingScope &) = delete;
  SolvingScope &operator=(const SolvingScope &) = delete;
  ~SolvingScope() {
    const EmbeddedHost::CommandResult switched = m_session.commands().switchVersion(m_session.baseline());
    static_cast<void>(switched); // the baseline exists as long as the project
  }

private:
  StudySession &m_session;
  EmbeddedHost::Commands::SolverRun m_run;
  OptimizationTool::OptimizationDataSolvingGuard m_guard;
};

constexpr std::chrono::milliseconds kLongestWait{200};

} // namespace

SolveObserver::~SolveObserver() = default;

SolveRunner::SolveRunner(StudySession &session, const RunInputs &inputs, const UnitSystem &units,
                         const std::string &program)
    : m_session(session), m_inputs(inputs), m_units(units), m_program(program) {
  std::string ignored; // a program that may be executed but not read is known by its name alone
  m_fingerprint = fileFingerprint(program, ignored);
}

// Makes the row's version current and fills the templates with its values.
std::string SolveRunner::render(std::size_t row, Rendered &rendered) {
  EntityModel::ModelVersion *version = m_session.rowVersion(row);
  if (version == nullptr) {
    return "the version of \"" + m_session.rowName(row) + "\" is gone";
  }
  const EmbeddedHost::CommandResult switched = m_session.commands().switchVersion(version);
  if (!switched) {
    return switched.problem;
  }
  std::vector<FileProblem> problems;
  const ModelValues values(m_session.study(), m_session.attributes());
  std::optional<std::vector<RunFile>> files = m_inputs.render(values, problems);
  if (!files) {
    return problems.front().toText();
  }
  rendered.files = std::move(*files);
  rendered.keys = runKeys(m_session.study().solver, m_fingerprint, rendered.files);
  return "";
}

void SolveRunner::assess() {
  const SolvingScope scope(m_session);
  const EmbeddedHost::Project::RunRecords records = m_session.project().runRecords();
  for (std::size_t row = 0; row < m_session.rowCount(); ++row) {
    RowState state;
    state.isInStudyFile = m_session.rowState(row).isInStudyFile;
    Rendered rendered;
    const std::string problem = render(row, rendered);
    if (!problem.empty()) {
      state.status = RowStatus::Failed;
      state.reason = "start: " + problem;
      m_session.setRowState(row, state);
      continue;
    }
    const auto found = records.find(m_session.rowVersion(row));
    const EmbeddedHost::RunRecord record = found == records.end() ? EmbeddedHost::RunRecord() : found->second;
    if (record.status == RunStatus::Failed || record.status == RunStatus::Running) {
      state.status = RowStatus::Failed;
      // Nothing runs while rows are assessed.
      state.reason = record.status == RunStatus::Running ? EmbeddedHost::kLostRun : record.reason;
    } else if (record.status == RunStatus::Ok) {
      state.status = record.keys == rendered.keys.texts() ? RowStatus::Ok : RowStatus::Stale;
    }
    m_session.setRowState(row, state);
  }
}

SolveReport SolveRunner::solve(std::size_t parallel, SolveObserver &observer) {
  SolveReport report;
  std::vector<std::size_t> rows;
  for (std::size_t row = 0; row < m_session.rowCount(); ++row) {
    if (m_session.rowState(row).status == RowStatus::Ok) {
      ++report.alreadySolved;
    } else {
      rows.push_back(row);
    }
  }
  if (rows.empty()) {
    return report;
  }
  observer.begun(rows.size(), report.alreadySolved);
  {
    const SolvingScope scope(m_session);
    solveRows(rows, std::max<std::size_t>(1, parallel), observer, report);
  }
  observer.ended();
  return report;
}

// The row has failed for a reason that is not in its record.
void SolveRunner::stopRow(std::size_t row, const std::string &reason, SolveObserver &observer,
                          SolveReport &report) {
  RowState state = m_session.rowState(row);
  state.status = RowStatus::Failed;
  state.reason = reason;
  m_session.setRowState(row, state);
  ++report.failed;
  observer.finished(m_session.rowName(row), state, 0.0);
}

// Null when nothing was started. What cannot be begun in the file could not be recorded there either, so no further
// row is begun then.
std::unique_ptr<VersionRun> SolveRunner::begin(std::size_t row, SolveObserver &observer,
                                               SolveReport &report) {
  Rendered rendered;
  std::string problem = render(row, rendered);
  if (!problem.empty()) {
    stopRow(row, "start: " + problem, observer, report);
    return nullptr;
  }
  auto run = std::make_unique<VersionRun>(m_session, m_units, row, *m_session.rowVersion(row));
  run->prepare(rendered.files, rendered.keys.texts());
  if (!run->isPrepared()) {
    return run; // a record says why
  }
  if (!m_session.project().beginRun(run->version(), run->record(), run->results(), problem)) {
    run->cancel();
    report.problem = "the run of \"" + m_session.rowName(row) + "\" cannot be begun: " + problem;
    stopRow(row, "start: " + problem, observer, report);
    return nullptr;
  }
  run->start(m_program);
  return run;
}

void SolveRunner::record(const VersionRun &run, SolveObserver &observer, SolveReport &report) {
  const EmbeddedHost::RunRecord &record = run.record();
  std::string problem;
  if (!m_session.project().recordRun(run.version(), record, run.results(), problem)) {
    if (report.problem.empty()) {
      report.problem = "the results of \"" + m_session.rowName(run.row()) + "\" cannot be stored: " + problem;
    }
    stopRow(run.row(), "not recorded: " + problem, observer, report);
    return;
  }
  RowState state = m_session.rowState(run.row());
  state.status = record.status == RunStatus::Ok ? RowStatus::Ok : RowStatus::Failed;
  state.reason = record.reason;
  m_session.setRowState(run.row(), state);
  ++(state.status == RowStatus::Ok ? report.solved : report.failed);
  observer.finished(m_session.rowName(run.row()), state, record.durationSeconds);
}

// Records what has ended and waits a while when nothing has.
void SolveRunner::pollAll(Runs &running, SolveObserver &observer, SolveReport &report) {
  std::vector<EmbeddedHost::SolverProcess *> processes;
  bool someEnded = false;
  for (auto &run : running) {
    if (run->poll()) {
      record(*run, observer, report);
      run.reset();
      someEnded = true;
    } else {
      processes.push_back(run->process());
    }
  }
  running.erase(std::remove(running.begin(), running.end(), nullptr), running.end());
  if (!someEnded) {
    EmbeddedHost::SolverProcess::waitForAny(processes, kLongestWait);
  }
}

// Where nothing can be recorded they stay begun in the file, which shows as lost when it is opened next.
void SolveRunner::cancelAll(const Runs &running, SolveObserver &observer, SolveReport &report) {
  for (const auto &run : running) {
    run->cancel();
  }
  for (const auto &run : running) {
    if (report.problem.empty()) {
      record(*run, observer, report);
    }
  }
}

void SolveRunner::solveRows(const std::vector<std::size_t> &rows, std::size_t parallel,
                            SolveObserver &observer, SolveReport &report) {
  Runs running;
  std::size_t next = 0;
  while (true) {
    const int interruptions = observer.interruptions();
    report.isInterrupted = interruptions > 0 && (next < rows.size() || !running.empty());
    if (interruptions > 1) {
      break;
    }
    while (interruptions == 0 && report.problem.empty() && next < rows.size() && running.size() < parallel) {
      if (auto run = begin(rows[next++], observer, report)) {
        running.push_back(std::move(run));
      }
    }
    if (running.empty()) {
      break;
    }
    pollAll(running, observer, report);
  }
  cancelAll(running, observer, report);
}

} // namespace Workbench
