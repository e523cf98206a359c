#include "Workbench/src/VersionRun.h"

#include "EmbeddedHost/RunFiles.h"
#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/SystemReason.h"
#include "Workbench/UnitSystem.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <filesystem>

namespace Workbench {

namespace {

namespace fs = std::filesystem;
using EmbeddedHost::RunStatus;
using EmbeddedHost::SolverEnd;

// A run is made in the first folder and moved to the second when it has ended, so that the second never holds half of
// a run.
constexpr const char *kFinished = "run";
constexpr const char *kOutputLog = "stdout.log";
constexpr const char *kErrorLog = "stderr.log";
constexpr std::size_t kLogTail = 2000;
constexpr std::size_t kLargestLog = std::size_t{64} * 1024 * 1024;

std::string seconds(std::chrono::milliseconds time) {
  return EmbeddedHost::writeSolverNumber(static_cast<double>(time.count()) / 1000.0) + " s";
}

// The end of a text, from the beginning of a line where possible and never from the middle of a character.
std::string tailOf(const std::string &text) {
  if (text.size() <= kLogTail) {
    return text;
  }
  std::size_t begin = text.size() - kLogTail;
  const std::size_t line = text.find('\n', begin);
  begin = line == std::string::npos || line + 1 == text.size() ? begin : line + 1;
  while (begin < text.size() && (static_cast<unsigned char>(text[begin]) & 0xC0U) == 0x80U) {
    ++begin;
  }
  return text.substr(begin);
}

} // namespace

VersionRun::VersionRun(const StudySession &session, const UnitSystem &units, std::size_t row,
                       EntityModel::ModelVersion &version)
    : m_session(session), m_units(units), m_row(row), m_version(version) {
  for (const StudyExtractor &extractor : session.study().solver.extractors) {
    const StudyAttribute &attribute = *session.study().findAttribute(extractor.attribute);
    m_results.push_back({session.attributes().findEntity(attribute.entity),
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

std::string VersionRun::makeFolder(const std::vector<RunFile> &files) {
  const std::string parent = m_session.project().versionFolder(m_version, true);
  if (parent.empty()) {
    return "the version's folder beside " + m_session.project().file() + " cannot be made";
  }
  m_folder = parent + "/" + EmbeddedHost::kUnfinishedRunFolder;
  std::error_code error;
  fs::remove_all(m_folder, error); // removes a link itself, never what it points to
  if (error || !fs::create_directory(m_folder, error) || error) {
    return m_folder + ": " + EmbeddedHost::systemReason(error.value());
  }
  for (const RunFile &file : files) {
    std::string problem;
    const std::string target = m_folder + "/" + file.name;
    const bool written = file.copyOf.empty() ? EmbeddedHost::writeNewFile(target, file.content, problem)
                                             : EmbeddedHost::copyToNewFile(file.copyOf, target, problem);
    if (!written) {
      return problem;
    }
  }
  return "";
}

void VersionRun::prepare(const std::vector<RunFile> &files, const std::vector<std::string> &keys) {
  m_record.keys = keys;
  m_record.command = m_session.study().solver.command;
  m_record.startedAt = static_cast<std::int64_t>(std::time(nullptr));
  m_record.status = RunStatus::Running;
  const std::string problem = makeFolder(files);
  if (!problem.empty()) {
    fail("start: " + problem);
  }
}

void VersionRun::start(const std::string &program) {
  const StudySolver &solver = m_session.study().solver;
  EmbeddedHost::SolverCommand command;
  command.program = program;
  command.arguments = solver.command;
  command.workingFolder = m_folder;
  command.outputFile = m_folder + "/" + kOutputLog;
  command.errorFile = m_folder + "/" + kErrorLog;
  command.environment = solver.environment;
  command.timeLimit = solver.timeLimit;
  m_process = std::make_unique<EmbeddedHost::SolverProcess>(std::move(command));
  if (!m_process->start()) {
    fail("start: " + m_process->outcome().problem);
  }
}

bool VersionRun::poll() {
  if (m_record.status != RunStatus::Running) {
    return true;
  }
  if (!m_process->poll()) {
    return false;
  }
  finish();
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

std::string VersionRun::problemOfOutcome() const {
  const EmbeddedHost::SolverOutcome &outcome = m_process->outcome();
  const StudySolver &solver = m_session.study().solver;
  switch (outcome.end) {
  case SolverEnd::TimedOut:
    return "time limit: ended after " + seconds(solver.timeLimit);
  case SolverEnd::Signalled:
    return "signal: " + std::to_string(outcome.signal) + " (" + EmbeddedHost::signalReason(outcome.signal) +
           ")";
  case SolverEnd::Stopped:
    return outcome.problem.empty() ? "cancelled" : "output: " + outcome.problem;
  case SolverEnd::NotStarted:
    return "start: " + outcome.problem;
  default:
    break;
  }
  if (!outcome.problem.empty()) {
    return "output: " + outcome.problem;
  }
  const bool isAccepted =
      std::find(solver.exitCodes.begin(), solver.exitCodes.end(), outcome.exitCode) != solver.exitCodes.end();
  return isAccepted ? "" : "exit code: " + std::to_string(outcome.exitCode);
}

void VersionRun::finish() {
  const EmbeddedHost::SolverOutcome &outcome = m_process->outcome();
  m_record.durationSeconds = static_cast<double>(outcome.wallTime.count()) / 1000.0;
  if (outcome.end == SolverEnd::Exited) {
    m_record.exitCode = outcome.exitCode;
  }
  m_record.logTail = logTail();
  std::string problem = problemOfOutcome();
  if (problem.empty()) {
    problem = extract();
  }
  const std::string keepProblem = keepFolder();
  if (problem.empty() && !keepProblem.empty()) {
    problem = "output: " + keepProblem;
  }
  if (problem.empty()) {
    m_record.status = RunStatus::Ok;
  } else {
    fail(problem);
  }
}

std::string VersionRun::extract() {
  const StudyFile &study = m_session.study();
  for (std::size_t index = 0; index < study.solver.extractors.size(); ++index) {
    const StudyExtractor &extractor = study.solver.extractors[index];
    const StudyAttribute &attribute = *study.findAttribute(extractor.attribute);
    const std::string file = extractor.source == ResultSource::File             ? extractor.file
                             : extractor.source == ResultSource::StandardOutput ? kOutputLog
                                                                                : kErrorLog;
    if (extractor.source != ResultSource::File && m_process->outcome().outputTruncated) {
      return "output too large: " + file + " is not complete";
    }
    const EmbeddedHost::ExtractedResult found =
        extractor.extractor.extractFromFile(m_folder + "/" + file, file);
    if (!found.value) {
      const bool isNoNumber = found.failure == EmbeddedHost::ExtractionFailure::NotANumber;
      return (isNoNumber ? "not a number: " : "extraction: ") + extractor.attribute + ": " + found.reason;
    }
    const std::optional<double> value = m_units.convert(*found.value, extractor.unit, attribute.unit);
    if (!value || (attribute.kind == AttributeKind::Integer && *value != std::trunc(*value))) {
      return "not a number: " + extractor.attribute + ": " + EmbeddedHost::writeSolverNumber(*found.value) +
             (value ? " is no whole number" : " cannot be converted to the declared unit");
    }
    m_results[index].value = value;
  }
  return "";
}

std::string VersionRun::logTail() const {
  std::string tail;
  for (const char *log : {kOutputLog, kErrorLog}) {
    std::string problem;
    const std::optional<std::string> text =
        EmbeddedHost::readWholeFile(m_folder + "/" + log, kLargestLog, problem);
    if (text && !text->empty()) {
      tail += std::string(log) + ":\n" + tailOf(*text);
    }
  }
  return tail;
}

std::string VersionRun::keepFolder() {
  const fs::path finished = fs::path(m_folder).parent_path() / kFinished;
  std::error_code error;
  fs::remove_all(finished, error);
  if (!error) {
    fs::rename(m_folder, finished, error);
  }
  return error ? finished.string() + ": " + EmbeddedHost::systemReason(error.value()) : "";
}

} // namespace Workbench
