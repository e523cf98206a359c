#include "EmbeddedHost/SolverProcess.h"

#include "EmbeddedHost/SolverSupervisors.h"
#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/solve/CappedStream.h"
#include "EmbeddedHost/src/solve/SolverRequest.h"
#include "EmbeddedHost/src/solve/Supervisor.h"

#include <algorithm>
#include <poll.h>
#include <sys/wait.h>
#include <utility>

namespace EmbeddedHost {

using namespace Supervision;

namespace {

// How much one poll() keeps, so that a solver that floods its output cannot hold up the others.
constexpr std::size_t kMostPerPoll = std::size_t{1024} * 1024;
// A program on a slow medium takes its time to start; a supervisor that somebody has suspended never answers.
constexpr std::chrono::milliseconds kLongestStart{60000};

} // namespace

SolverProcess::SolverProcess(SolverCommand command)
    : m_command(std::move(command)), m_ownSupervisors(std::make_unique<SolverSupervisors>()),
      m_supervisors(*m_ownSupervisors) {}

SolverProcess::SolverProcess(SolverCommand command, SolverSupervisors &supervisors)
    : m_command(std::move(command)), m_supervisors(supervisors) {}

// The supervisor goes first, and with it whatever runs.
SolverProcess::~SolverProcess() {
  m_supervisor.reset();
}

bool SolverProcess::failToStart(std::string problem) {
  m_outcome.end = SolverEnd::NotStarted;
  m_outcome.problem = std::move(problem);
  m_output.reset();
  m_error.reset();
  m_supervisor.reset();
  return false;
}

bool SolverProcess::start() {
  std::string problem;
  const FileDescriptor request = makeSolverRequest(m_command, problem);
  if (!request.isOpen()) {
    return failToStart(problem);
  }
  m_output = std::make_unique<CappedStream>(m_command.outputLimit);
  m_error = std::make_unique<CappedStream>(m_command.outputLimit);
  if (!m_output->open(m_command.outputFile, problem) || !m_error->open(m_command.errorFile, problem)) {
    return failToStart(problem);
  }
  m_started = Clock::now();
  const bool isRunning = runRequest(request.get(), problem);
  m_output->closeWritingEnd();
  m_error->closeWritingEnd();
  return isRunning ? true : failToStart(problem);
}

bool SolverProcess::runRequest(int request, std::string &problem) {
  ReportMessage report = {};
  Supervisor::Answer answer = Supervisor::Answer::NeverRead;
  // An idle supervisor may have been ended a moment ago; a new one that never reads is none.
  for (int attempt = 0; attempt < 2 && answer == Supervisor::Answer::NeverRead; ++attempt) {
    m_supervisor = m_supervisors.take(problem);
    if (!m_supervisor) {
      return false;
    }
    if (m_supervisor->order(Order::Start, {request, m_output->writingEnd(), m_error->writingEnd()})) {
      answer = m_supervisor->next(report, kLongestStart);
    }
  }
  if (answer != Supervisor::Answer::Report) {
    problem =
        "the solver's supervisor " +
        (answer == Supervisor::Answer::None ? std::string("does not answer") : m_supervisor->howItEnded());
    return false;
  }
  if (report.report == Report::Started) {
    return true;
  }
  problem = m_command.program + ": " + systemReason(static_cast<int>(report.value));
  m_supervisors.giveBack(std::move(m_supervisor));
  return false;
}

bool SolverProcess::poll() {
  if (!isRunning()) {
    return m_outcome.end != SolverEnd::Running;
  }
  keepOutput(kMostPerPoll);
  ReportMessage report = {};
  switch (m_supervisor->next(report, std::chrono::milliseconds(0))) {
  case Supervisor::Answer::None:
    return false;
  case Supervisor::Answer::Lost:
  case Supervisor::Answer::NeverRead:
    concludeLost();
    return true;
  case Supervisor::Answer::Report:
    break;
  }
  conclude(report);
  return true;
}

void SolverProcess::stop() {
  if (isRunning()) {
    m_supervisor->order(Order::Stop);
  }
}

void SolverProcess::kill() {
  if (isRunning()) {
    m_supervisor->order(Order::Kill);
  }
}

void SolverProcess::conclude(const ReportMessage &report) {
  closeStreams();
  const int status = static_cast<int>(report.value);
  m_outcome.wallTime = std::chrono::milliseconds(report.milliseconds);
  if (WIFSIGNALED(status)) {
    m_outcome.end = SolverEnd::Signalled;
    m_outcome.signal = WTERMSIG(status);
  } else {
    m_outcome.end = SolverEnd::Exited;
    m_outcome.exitCode = WEXITSTATUS(status);
  }
  if (report.endedBy != EndedBy::Itself) {
    m_outcome.end = report.endedBy == EndedBy::TimeLimit ? SolverEnd::TimedOut : SolverEnd::Stopped;
  }
  m_supervisors.giveBack(std::move(m_supervisor));
}

void SolverProcess::concludeLost() {
  closeStreams();
  m_outcome.end = SolverEnd::Lost;
  m_outcome.wallTime = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_started);
  m_outcome.problem = "the solver's supervisor " + m_supervisor->howItEnded();
  m_supervisor.reset();
}

// Whoever could have written is gone.
void SolverProcess::closeStreams() {
  m_output->keep(m_command.outputLimit + kMostPerPoll);
  m_error->keep(m_command.outputLimit + kMostPerPoll);
  m_outcome.outputTruncated = m_output->isTruncated() || m_error->isTruncated();
  m_outcome.problem = m_output->problem().empty() ? m_error->problem() : m_output->problem();
  m_output.reset();
  m_error.reset();
}

void SolverProcess::keepOutput(std::size_t most) {
  m_output->keep(most);
  m_error->keep(most);
  if (!m_output->problem().empty() || !m_error->problem().empty()) {
    kill(); // what cannot be kept cannot be read either
  }
}

void SolverProcess::waitForAny(const std::vector<SolverProcess *> &processes,
                               std::chrono::milliseconds longest) {
  std::vector<pollfd> waitedFor;
  for (const SolverProcess *process : processes) {
    if (process == nullptr || !process->isRunning()) {
      continue;
    }
    for (const int descriptor : {process->m_supervisor->descriptor(), process->m_output->readingEnd(),
                                 process->m_error->readingEnd()}) {
      waitedFor.push_back({descriptor, POLLIN, 0}); // a negative descriptor is ignored
    }
  }
  if (!waitedFor.empty()) {
    ::poll(waitedFor.data(), waitedFor.size(), static_cast<int>(std::max<long long>(0, longest.count())));
  }
}

} // namespace EmbeddedHost
