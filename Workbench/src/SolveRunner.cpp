#include "Workbench/SolveRunner.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/src/BestCost.h"
#include "Workbench/src/RunResults.h"
#include "Workbench/src/VersionRun.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Workbench {

namespace {

using EmbeddedHost::RunStatus;

constexpr std::chrono::milliseconds kLongestWait{200};

// What results depend on; the key of the inputs is for those who look without the study file.
constexpr std::ptrdiff_t kDecidingKeys = 2;

bool isCurrent(const std::vector<std::string> &recorded, const std::vector<std::string> &keys) {
  return recorded.size() >= kDecidingKeys && recorded.size() <= keys.size() &&
         std::equal(keys.begin(), keys.begin() + kDecidingKeys, recorded.begin());
}

std::string whatChanged(const EmbeddedHost::RunRecord &record, const RunKeys &keys) {
  const std::vector<std::string> now = keys.texts();
  const auto isSame = [&](std::size_t index) {
    return index >= record.keys.size() || record.keys[index] == now[index];
  };
  if (!isSame(2)) {
    return "its inputs have changed";
  }
  return isSame(0) ? kReadAnew : "what the solver is given, or the solver, has changed";
}

// The attributes, apart from results, that formulas use.
std::set<std::string> formulaInputsOf(const StudyFile &study) {
  std::set<std::string> names;
  for (const StudyFormula &formula : study.formulas) {
    for (const std::string &name : formula.variables) {
      if (!study.findAttribute(name)->isResult) {
        names.insert(name);
      }
    }
  }
  return names;
}

void addNew(const std::vector<FileProblem> &found, std::vector<FileProblem> &known) {
  for (const FileProblem &warning : found) {
    const auto isSamePlace = [&warning](const FileProblem &other) {
      return other.file == warning.file && other.line == warning.line && other.column == warning.column;
    };
    if (std::none_of(known.begin(), known.end(), isSamePlace)) {
      known.push_back(warning);
    }
  }
}

// Whether the row was run for what it is now, and the run has come to its end.
bool isOfThisRun(const EmbeddedHost::RunRecord &record, const RunKeys &keys) {
  const std::optional<FailureReason> reason = failureReason(record.reason);
  const bool hasEnded = record.status == RunStatus::Ok ||
                        (record.status == RunStatus::Failed &&
                         (reason == FailureReason::Extraction || reason == FailureReason::NotANumber));
  return hasEnded && record.keys.size() >= 2 && record.keys[0] == keys.run;
}

} // namespace

SolveObserver::~SolveObserver() = default;

void SolveObserver::progressed(const SolveProgress & /*progress*/) {}

SolveRunner::SolveRunner(ProjectSession &session, const StudyFile &study, const RunInputs &inputs,
                         const UnitSystem &units, const SolverPrograms &programs)
    : m_session(session), m_study(study), m_inputs(inputs), m_units(units), m_programs(programs),
      m_expressions(study) {}

SolveRunner::~SolveRunner() = default;

// "Entity.Attribute=value" for the current version; a number goes into `values` besides.
std::string SolveRunner::exactText(const std::string &name, std::map<std::string, double> &values) const {
  const ModelAttribute &declared = *m_session.model().find(name);
  if (declared.kind == AttributeKind::Text) {
    return name + "=" + declared.value->getValueAsString();
  }
  if (!declared.value->hasValue()) {
    return name + "=";
  }
  values[name] = declared.value->getStandardValue();
  return name + "=" + EmbeddedHost::writeSolverNumber(values[name]);
}

// Makes the row's version current and collects what a run of it is given.
std::string SolveRunner::plan(std::size_t row, RunPlan &plan, std::vector<FileProblem> *warnings) {
  EntityModel::ModelVersion *version = m_session.rowVersion(row);
  if (version == nullptr) {
    return "the version of \"" + m_session.rowName(row) + "\" is gone";
  }
  const EmbeddedHost::CommandResult switched = m_session.commands().switchVersion(version);
  if (!switched) {
    return switched.problem;
  }
  std::vector<FileProblem> problems;
  const ModelValues values(m_session.model());
  std::optional<std::vector<RunFile>> files = m_inputs.render(values, problems, warnings);
  auto commands = files ? m_inputs.renderCommands(values, problems, warnings) : std::nullopt;
  if (!commands) {
    return problems.front().toText();
  }
  plan.contents.files = std::move(*files);
  plan.contents.commands = std::move(*commands);
  for (const std::string &name : formulaInputsOf(m_study)) {
    plan.contents.constants.push_back(exactText(name, plan.values));
  }
  for (const std::string &name : m_study.rule.variables) {
    exactText(name, plan.values);
  }
  plan.keys = runKeys(m_study, m_programs.identities(), plan.contents);
  plan.keys.inputs = m_session.inputsKey();
  return "";
}

void SolveRunner::assessRow(std::size_t row, const EmbeddedHost::RunRecord &record, RowState &state) {
  RunPlan planned;
  const std::string problem = plan(row, planned);
  if (!problem.empty()) {
    state.status = RowStatus::Failed;
    state.reason = "start: " + problem;
    return;
  }
  const std::string infeasibility = m_expressions.infeasibility([&planned](const std::string &name) {
    const auto known = planned.values.find(name);
    return known == planned.values.end() ? std::nullopt : std::optional<double>(known->second);
  });
  if (!infeasibility.empty()) {
    state.status = RowStatus::Infeasible;
    state.reason = infeasibility;
  } else if (record.status == RunStatus::Failed || record.status == RunStatus::Running) {
    state.status = RowStatus::Failed;
    // Nothing runs while rows are assessed.
    state.reason = record.status == RunStatus::Running ? EmbeddedHost::kLostRun : record.reason;
  } else if (record.status == RunStatus::Ok) {
    const std::vector<std::string> keys = planned.keys.texts();
    state.status = isCurrent(record.keys, keys) ? RowStatus::Ok : RowStatus::Stale;
    if (state.status == RowStatus::Stale) {
      state.reason = whatChanged(record, planned.keys);
    }
    if (state.status == RowStatus::Ok && record.keys != keys) {
      m_newKeys[row] = keys;
    }
  }
}

// What the current version has, one per result of the study.
std::vector<EmbeddedHost::ResultValue> SolveRunner::currentResults() const {
  std::vector<EmbeddedHost::ResultValue> results;
  for (const std::string &name : resultNames(m_study)) {
    const ModelAttribute &declared = *m_session.model().find(name);
    results.push_back(
        {declared.owner, EntityModel::AttributePath(declared.name), m_session.currentValue(name)});
  }
  return results;
}

std::string SolveRunner::renewRecords() {
  if (m_newKeys.empty()) {
    return "";
  }
  const VersionTour tour(m_session);
  for (const auto &[row, keys] : m_newKeys) {
    EntityModel::ModelVersion *version = m_session.rowVersion(row);
    if (version == nullptr || !m_session.commands().switchVersion(version)) {
      continue;
    }
    EmbeddedHost::RunRecord record = m_session.project().runRecord(*version);
    record.keys = keys;
    std::string problem;
    if (!m_session.project().recordRun(*version, record, currentResults(), problem)) {
      return "the record of \"" + m_session.rowName(row) + "\" cannot be stored: " + problem;
    }
  }
  m_newKeys.clear();
  return "";
}

void SolveRunner::assess() {
  m_newKeys.clear();
  const VersionTour tour(m_session);
  const EmbeddedHost::Project::RunRecords records = m_session.project().runRecords();
  for (std::size_t row = 0; row < m_session.rowCount(); ++row) {
    RowState state;
    state.isInStudyFile = m_session.rowState(row).isInStudyFile;
    const auto found = records.find(m_session.rowVersion(row));
    assessRow(row, found == records.end() ? EmbeddedHost::RunRecord() : found->second, state);
    m_session.setRowState(row, state);
  }
}

SolveReport SolveRunner::solve(const SolveOptions &options, SolveObserver &observer) {
  SolveReport report;
  std::vector<std::size_t> rows = options.rows;
  for (std::size_t row = 0; row < m_session.rowCount(); ++row) {
    const RowStatus status = m_session.rowState(row).status;
    if (status == RowStatus::Ok) {
      ++report.alreadySolved;
    } else if (status == RowStatus::Infeasible) {
      ++report.infeasible;
    } else if (options.rows.empty()) {
      rows.push_back(row);
    }
  }
  report.problem = renewRecords();
  if (rows.empty() || !report.problem.empty()) {
    return report;
  }
  m_onlyExtracts = options.onlyExtracts;
  observer.begun(rows.size(), report.alreadySolved);
  {
    const VersionTour tour(m_session);
    findBestCost(rows);
    solveBaselineFirst(rows, options.keepsGoing, observer, report);
    solveRows(rows, std::max<std::size_t>(1, options.parallel), observer, report);
  }
  observer.ended();
  return report;
}

// Of the rows that need not be solved.
void SolveRunner::findBestCost(const std::vector<std::size_t> &rowsToSolve) {
  m_bestCost = std::make_unique<BestCost>(m_session);
  const std::set<std::size_t> unsolved(rowsToSolve.begin(), rowsToSolve.end());
  for (std::size_t row = 0; row < m_session.rowCount(); ++row) {
    EntityModel::ModelVersion *version =
        m_session.rowState(row).status == RowStatus::Ok && unsolved.count(row) == 0
            ? m_session.rowVersion(row)
            : nullptr;
    if (version != nullptr) {
      takeCost(*version);
    }
  }
}

void SolveRunner::takeCost(EntityModel::ModelVersion &version) {
  if (m_bestCost->isWanted() && m_session.commands().switchVersion(&version)) {
    m_bestCost->takeCurrent();
  }
}

void SolveRunner::tell(std::size_t running, SolveObserver &observer, const SolveReport &report) const {
  SolveProgress progress;
  progress.running = running;
  progress.bestCost = m_bestCost->value();
  progress.isStopping = observer.interruptions() > 0 || !report.problem.empty() || !report.givenUp.empty();
  observer.progressed(progress);
}

void SolveRunner::solveBaselineFirst(std::vector<std::size_t> &rows, bool keepsGoing, SolveObserver &observer,
                                     SolveReport &report) {
  if (rows.size() < 2 || rows.front() != 0) {
    return;
  }
  rows.erase(rows.begin());
  solveRows({0}, 1, observer, report);
  const RowState &state = m_session.rowState(0);
  const bool isLeftAlone = report.withoutFiles > 0;
  if (state.status != RowStatus::Ok && !report.isInterrupted && !keepsGoing && report.givenUp.empty() &&
      !isLeftAlone) {
    report.givenUp = "the baseline failed: " + state.reason;
  }
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
  RunPlan planned;
  std::vector<FileProblem> warnings;
  std::string problem = plan(row, planned, &warnings);
  addNew(warnings, report.warnings);
  if (!problem.empty()) {
    stopRow(row, "start: " + problem, observer, report);
    return nullptr;
  }
  auto run = std::make_unique<VersionRun>(m_session, m_study, m_units, m_expressions, row,
                                          *m_session.rowVersion(row));
  if (m_study.solver.stages.empty()) {
    run->compute(std::move(planned));
    return run;
  }
  const EmbeddedHost::RunRecord last = m_session.project().runRecord(run->version());
  // Results are read again when only the way of reading them has changed, or when somebody asks for it.
  const bool mayExtract =
      isOfThisRun(last, planned.keys) && (m_onlyExtracts || last.keys[1] != planned.keys.extract);
  if (mayExtract && run->extractAgain(planned, last)) {
    ++report.extracted;
    return run;
  }
  if (m_onlyExtracts) {
    ++report.withoutFiles;
    return nullptr;
  }
  run->prepare(std::move(planned));
  if (!run->isPrepared()) {
    return run; // a record says why
  }
  if (!m_session.project().beginRun(run->version(), run->record(), run->results(), problem)) {
    run->cancel();
    report.problem = "the run of \"" + m_session.rowName(row) + "\" cannot be begun: " + problem;
    stopRow(row, "start: " + problem, observer, report);
    return nullptr;
  }
  run->start(m_programs, m_supervisors);
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
  const bool isSame = state.status == RowStatus::Failed && state.reason == m_lastFailure;
  m_equalFailures = state.status == RowStatus::Ok ? 0 : isSame ? m_equalFailures + 1 : 1;
  m_lastFailure = state.reason;
  const std::size_t limit = m_study.stopAfter;
  if (limit > 0 && m_equalFailures >= limit && report.givenUp.empty()) {
    report.givenUp = std::to_string(limit) + " equal failures in a row: " + state.reason;
  }
  ++(state.status == RowStatus::Ok ? report.solved : report.failed);
  if (state.status == RowStatus::Ok) {
    takeCost(run.version());
  }
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
    report.isInterrupted =
        report.isInterrupted || (interruptions > 0 && (next < rows.size() || !running.empty()));
    if (interruptions > 1) {
      break;
    }
    while (interruptions == 0 && report.problem.empty() && report.givenUp.empty() && next < rows.size() &&
           running.size() < parallel) {
      if (auto run = begin(rows[next++], observer, report)) {
        running.push_back(std::move(run));
      }
    }
    tell(running.size(), observer, report);
    if (running.empty()) {
      break;
    }
    pollAll(running, observer, report);
  }
  cancelAll(running, observer, report);
}

} // namespace Workbench
