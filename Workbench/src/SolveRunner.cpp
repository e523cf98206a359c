#include "Workbench/SolveRunner.h"

#include "OptimizationTool/OptimizationData.h"
#include "Workbench/src/VersionRun.h"

#include <algorithm>

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
    const EmbeddedHost::RunRecord record = m_session.project().runRecord(*m_session.rowVersion(row));
    if (record.status == RunStatus::Failed) {
      state.status = RowStatus::Failed;
      state.reason = record.reason;
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

// A version that is not solved must not show the results of the version that it was made from.
std::string SolveRunner::unsetResults(EntityModel::ModelVersion &version) {
  const EmbeddedHost::CommandResult switched = m_session.commands().switchVersion(&version);
  if (!switched) {
    return switched.problem;
  }
  for (const StudyAttribute &attribute : m_session.study().attributes) {
    if (attribute.isResult) {
      m_session.project().setValue(m_session.attributes().findEntity(attribute.entity), attribute.name, "");
    }
  }
  return "";
}

void SolveRunner::solveRows(const std::vector<std::size_t> &rows, std::size_t parallel,
                            SolveObserver &observer, SolveReport &report) {
  std::vector<std::unique_ptr<VersionRun>> running;
  std::size_t next = 0;
  const auto finish = [&](const VersionRun &run) {
    const EmbeddedHost::RunRecord &record = run.record();
    std::string problem;
    if (!m_session.project().recordRun(run.version(), record, run.results(), problem)) {
      report.problem = "the results of \"" + m_session.rowName(run.row()) + "\" cannot be stored: " + problem;
      return;
    }
    RowState state = m_session.rowState(run.row());
    state.status = record.status == RunStatus::Ok ? RowStatus::Ok : RowStatus::Failed;
    state.reason = record.reason;
    m_session.setRowState(run.row(), state);
    ++(state.status == RowStatus::Ok ? report.solved : report.failed);
    observer.finished(m_session.rowName(run.row()), state, record.durationSeconds);
  };
  while (true) {
    const int interruptions = observer.interruptions();
    report.isInterrupted = interruptions > 0 && (next < rows.size() || !running.empty());
    if (interruptions > 1 || !report.problem.empty()) {
      break;
    }
    while (interruptions == 0 && report.problem.empty() && next < rows.size() && running.size() < parallel) {
      const std::size_t row = rows[next++];
      Rendered rendered;
      const std::string problem = render(row, rendered);
      EntityModel::ModelVersion *version = m_session.rowVersion(row);
      if (!problem.empty() || version == nullptr) {
        ++report.failed; // assessed as failed, with the reason
        observer.finished(m_session.rowName(row), m_session.rowState(row), 0.0);
        continue;
      }
      report.problem = unsetResults(*version);
      auto run = std::make_unique<VersionRun>(m_session, m_units, row, *version);
      run->start(m_program, rendered.files, rendered.keys.texts());
      running.push_back(std::move(run));
    }
    if (running.empty()) {
      break;
    }
    std::vector<EmbeddedHost::SolverProcess *> processes;
    bool someEnded = false;
    for (auto &run : running) {
      if (run->poll()) {
        finish(*run);
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
  for (const auto &run : running) {
    run->cancel();
  }
}

} // namespace Workbench
