#include "Workbench/src/VersionRun.h"

#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/SystemReason.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/RunFolder.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <utility>

namespace Workbench {

namespace {

namespace fs = std::filesystem;
using EmbeddedHost::RunStatus;
using EmbeddedHost::SolverEnd;

std::string seconds(std::chrono::milliseconds time) {
  return EmbeddedHost::writeSolverNumber(static_cast<double>(time.count()) / 1000.0) + " s";
}

// The commands of all stages, for people.
std::vector<std::string> joined(const std::vector<std::vector<std::string>> &commands) {
  std::vector<std::string> all;
  for (const std::vector<std::string> &command : commands) {
    if (!all.empty()) {
      all.emplace_back("&&");
    }
    all.insert(all.end(), command.begin(), command.end());
  }
  return all;
}

// Whether a record tells all that the results depend on: of the stages it knows the last one's exit code and the time
// of all.
bool knowsStages(const StudySolver &solver) {
  return std::none_of(solver.extractors.begin(), solver.extractors.end(),
                      [&](const StudyExtractor &extractor) {
                        const bool isLast = extractor.stage && *extractor.stage + 1 == solver.stages.size();
                        const bool isOnly = solver.stages.size() == 1 || !extractor.stage;
                        return (extractor.source == ResultSource::ExitCode && !isLast) ||
                               (extractor.source == ResultSource::WallTime && !isOnly);
                      });
}

} // namespace

VersionRun::VersionRun(const ProjectSession &session, const StudyFile &study, const UnitSystem &units,
                       const StudyExpressions &expressions, std::size_t row,
                       EntityModel::ModelVersion &version)
    : m_session(session), m_study(study), m_units(units), m_expressions(expressions), m_row(row),
      m_version(version) {
  for (const std::string &name : resultNames(study)) {
    const StudyAttribute &attribute = *study.findAttribute(name);
    m_results.push_back({session.model().findEntity(attribute.entity),
                         EntityModel::AttributePath(attribute.name), std::nullopt});
  }
}

void VersionRun::fail(const std::string &reason) {
  m_record.status = RunStatus::Failed;
  m_record.reason = reason;
  for (EmbeddedHost::ResultValue &result : m_results) {
    result.value.reset();
  }
}

std::string VersionRun::folder(const char *name) const {
  const std::string parent = m_session.project().versionFolder(m_version, true);
  return parent.empty() ? "" : parent + "/" + name;
}

AttributeValues VersionRun::inputs() const {
  return [this](const std::string &name) {
    const auto known = m_plan.values.find(name);
    return known == m_plan.values.end() ? std::nullopt : std::optional<double>(known->second);
  };
}

void VersionRun::begin(RunPlan plan) {
  m_plan = std::move(plan);
  m_record.keys = m_plan.keys.texts();
  m_record.command = joined(m_plan.contents.commands);
  m_record.startedAt = static_cast<std::int64_t>(std::time(nullptr));
  m_record.status = RunStatus::Running;
}

void VersionRun::prepare(RunPlan plan) {
  begin(std::move(plan));
  m_folder = folder(EmbeddedHost::kUnfinishedRunFolder);
  const std::string problem =
      m_folder.empty() ? "the version's folder beside " + m_session.project().file() + " cannot be made"
                       : makeRunFolder(m_folder, m_plan.contents.files);
  if (!problem.empty()) {
    fail("start: " + problem);
  }
}

void VersionRun::compute(RunPlan plan) {
  begin(std::move(plan));
  finish(read({}));
}

bool VersionRun::extractAgain(RunPlan plan, const EmbeddedHost::RunRecord &record) {
  const std::string kept = m_session.project().versionFolder(m_version, false);
  std::error_code error;
  const std::vector<std::string> files = resultFiles(solver());
  const bool isAllThere =
      !kept.empty() && std::all_of(files.begin(), files.end(), [&](const std::string &file) {
        return fs::exists(fs::path(kept) / kFinishedRunFolder / file, error);
      });
  if (!isAllThere || !record.exitCode || !knowsStages(solver())) {
    return false;
  }
  EndedRun run{kept + "/" + kFinishedRunFolder, std::vector<StageEnd>(solver().stages.size())};
  run.stages.back() = {*record.exitCode, record.durationSeconds, false};
  m_plan = std::move(plan);
  m_record = record;
  m_record.keys = m_plan.keys.texts();
  m_record.reason.clear();
  finish(read(run));
  return true;
}

void VersionRun::start(const SolverPrograms &programs, EmbeddedHost::SolverSupervisors &supervisors) {
  m_programs = &programs;
  m_supervisors = &supervisors;
  const std::string problem = startStage();
  if (!problem.empty()) {
    fail(problem);
  }
}

// Starts the stage behind those that have ended. "" or why it could not be started.
std::string VersionRun::startStage() {
  const std::size_t index = m_ended.size();
  const StudyStage &stage = solver().stages[index];
  EmbeddedHost::SolverCommand command;
  command.program = m_programs->files()[index];
  command.arguments = m_plan.contents.commands[index];
  command.workingFolder = m_folder;
  command.outputFile = m_folder + "/" + stage.outputLog();
  command.errorFile = m_folder + "/" + stage.errorLog();
  command.environment = solver().environment;
  command.timeLimit = stage.timeLimit;
  command.outputLimit = solver().outputLimit;
  command.fileSizeLimit = solver().fileLimit;
  m_process = std::make_unique<EmbeddedHost::SolverProcess>(std::move(command), *m_supervisors);
  return m_process->start() ? "" : problemOfStage();
}

bool VersionRun::poll() {
  while (m_record.status == RunStatus::Running) {
    if (!m_process->poll()) {
      return false;
    }
    const EmbeddedHost::SolverOutcome &outcome = m_process->outcome();
    std::string problem = problemOfStage();
    m_ended.push_back(
        {outcome.exitCode, static_cast<double>(outcome.wallTime.count()) / 1000.0, outcome.outputTruncated});
    if (outcome.end == SolverEnd::Exited) {
      m_record.exitCode = outcome.exitCode;
    } else {
      m_record.exitCode.reset();
    }
    if (problem.empty() && m_ended.size() < solver().stages.size()) {
      problem = startStage();
      if (problem.empty()) {
        continue;
      }
    }
    finishAttempt(std::move(problem));
  }
  return true;
}

void VersionRun::cancel() {
  m_process.reset();
  fail("cancelled");
  std::error_code ignored;
  if (!m_folder.empty()) {
    fs::remove_all(m_folder, ignored);
  }
}

// Why the stage that has just ended fails the run, and which it is where there are several; "" when it does not.
std::string VersionRun::problemOfStage() const {
  const EmbeddedHost::SolverOutcome &outcome = m_process->outcome();
  const StudyStage &stage = solver().stages[std::min(m_ended.size(), solver().stages.size() - 1)];
  const std::string where = stage.name.empty() ? "" : " in \"" + stage.name + "\"";
  switch (outcome.end) {
  case SolverEnd::TimedOut:
    return "time limit: ended after " + seconds(stage.timeLimit) + where;
  case SolverEnd::Signalled:
    return "signal: " + std::to_string(outcome.signal) + " (" + EmbeddedHost::signalReason(outcome.signal) +
           ")" + where;
  case SolverEnd::Stopped:
    return (outcome.problem.empty() ? "cancelled" : "output: " + outcome.problem) + where;
  case SolverEnd::NotStarted:
    return "start: " + outcome.problem + where;
  case SolverEnd::Lost:
    return "lost: " + outcome.problem + where;
  default:
    break;
  }
  if (!outcome.problem.empty()) {
    return "output: " + outcome.problem + where;
  }
  const bool isAccepted =
      std::find(stage.exitCodes.begin(), stage.exitCodes.end(), outcome.exitCode) != stage.exitCodes.end();
  return isAccepted ? "" : "exit code: " + std::to_string(outcome.exitCode) + where;
}

std::string VersionRun::read(const EndedRun &run) {
  std::vector<double> values;
  std::string problem = readResults(m_study, m_units, m_expressions, run, inputs(), values);
  for (std::size_t index = 0; problem.empty() && index < values.size(); ++index) {
    m_results[index].value = values[index];
  }
  return problem;
}

// Begins the run anew when its failure is one that may pass.
bool VersionRun::tryAgain(const std::string &problem) {
  const std::optional<FailureReason> reason = failureReason(problem);
  const std::size_t which = static_cast<std::size_t>(reason.value_or(FailureReason::ExitCode));
  if (!reason || m_retries.at(which) >= solver().retries.at(which)) {
    return false;
  }
  ++m_retries.at(which);
  ++m_attempts;
  m_ended.clear();
  m_process.reset();
  std::string again = makeRunFolder(m_folder, m_plan.contents.files);
  again = again.empty() ? startStage() : "start: " + again;
  if (!again.empty()) {
    fail(again);
  }
  return true;
}

void VersionRun::finishAttempt(std::string problem) {
  m_record.durationSeconds = 0.0;
  for (const StageEnd &stage : m_ended) {
    m_record.durationSeconds += stage.seconds;
  }
  // It may be why the solver failed, and a file that was cut short may still hold a number.
  const std::string excess = excessOf(m_folder, solver(), m_plan.contents.files);
  if (!excess.empty()) {
    problem = excess + (problem.empty() ? "" : "; " + problem);
  } else if (problem.empty()) {
    problem = read({m_folder, m_ended});
  }
  if (!problem.empty() && tryAgain(problem)) {
    return;
  }
  m_record.logTail = logTails(m_folder, solver());
  if (!excess.empty()) {
    const std::string left = removeWritten(m_folder, solver(), m_plan.contents.files);
    problem += left.empty() ? "" : "; " + left;
  }
  const std::string keepProblem = keepRunFolder(m_folder, solver(), problem.empty());
  if (problem.empty() && !keepProblem.empty()) {
    problem = "output: " + keepProblem;
  }
  if (!problem.empty() && m_attempts > 1) {
    problem += " (" + std::to_string(m_attempts) + " attempts)";
  }
  finish(problem);
}

void VersionRun::finish(const std::string &problem) {
  if (problem.empty()) {
    m_record.status = RunStatus::Ok;
  } else {
    fail(problem);
  }
}

} // namespace Workbench
