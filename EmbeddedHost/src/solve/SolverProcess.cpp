#include "EmbeddedHost/SolverProcess.h"

#include "EmbeddedHost/SystemReason.h"
#include "EmbeddedHost/src/solve/CappedStream.h"
#include "EmbeddedHost/src/solve/SpawnSolver.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

// How much one poll() keeps, so that a solver that floods its output cannot hold up the others.
constexpr std::size_t kMostPerPoll = std::size_t{1024} * 1024;
// Without a descriptor to wait on for the end of a process, it is looked for this often.
constexpr std::chrono::milliseconds kBlindInterval{5};

} // namespace

SolverProcess::SolverProcess(SolverCommand command) : m_command(std::move(command)) {}

SolverProcess::~SolverProcess() {
  if (isRunning()) {
    signalGroup(SIGKILL);
    while (::waitpid(m_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  if (m_pidDescriptor >= 0) {
    ::close(m_pidDescriptor);
  }
}

bool SolverProcess::failToStart(std::string problem) {
  m_outcome.end = SolverEnd::NotStarted;
  m_outcome.problem = std::move(problem);
  m_output.reset();
  m_error.reset();
  return false;
}

bool SolverProcess::start() {
  m_output = std::make_unique<CappedStream>(m_command.outputLimit);
  m_error = std::make_unique<CappedStream>(m_command.outputLimit);
  std::string problem;
  if (!m_output->open(m_command.outputFile, problem) || !m_error->open(m_command.errorFile, problem)) {
    return failToStart(problem);
  }
  m_started = Clock::now();
  const int error = spawnSolver(m_command, m_output->writingEnd(), m_error->writingEnd(), m_pid);
  m_output->closeWritingEnd();
  m_error->closeWritingEnd();
  if (error != 0) {
    m_pid = 0;
    return failToStart(m_command.program + ": " + systemReason(error));
  }
#ifdef SYS_pidfd_open
  m_pidDescriptor = static_cast<int>(::syscall(SYS_pidfd_open, m_pid, 0));
#endif
  return true;
}

bool SolverProcess::poll() {
  if (!isRunning()) {
    return m_outcome.end != SolverEnd::Running;
  }
  keepOutput(kMostPerPoll);
  siginfo_t info = {};
  // The process stays a zombie until its group has been swept: its number cannot be given to anybody else
  // meanwhile.
  const int waited = ::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT);
  if (waited == 0 && info.si_pid == 0) {
    enforceLimits(Clock::now());
    return false;
  }
  reap();
  return true;
}

void SolverProcess::enforceLimits(Clock::time_point now) {
  if (m_killAt) {
    if (now >= *m_killAt) {
      signalGroup(SIGKILL);
    }
    return;
  }
  if (m_command.timeLimit.count() > 0 && now - m_started >= m_command.timeLimit) {
    m_endedByUs = SolverEnd::TimedOut;
    signalGroup(SIGTERM);
    m_killAt = now + m_command.graceTime;
  }
}

void SolverProcess::stop() {
  if (isRunning() && !m_killAt) {
    m_endedByUs = SolverEnd::Stopped;
    signalGroup(SIGTERM);
    m_killAt = Clock::now() + m_command.graceTime;
  }
}

void SolverProcess::kill() {
  if (isRunning()) {
    if (m_endedByUs == SolverEnd::Running) {
      m_endedByUs = SolverEnd::Stopped;
    }
    signalGroup(SIGKILL);
    m_killAt = Clock::now();
  }
}

void SolverProcess::signalGroup(int number) const {
  ::kill(-m_pid, number);
  if (number == SIGTERM) {
    ::kill(-m_pid, SIGCONT); // a stopped process would not see the request
  }
}

void SolverProcess::reap() {
  signalGroup(SIGKILL);
  int status = 0;
  int reaped = 0;
  do {
    reaped = ::waitpid(m_pid, &status, 0);
  } while (reaped < 0 && errno == EINTR);
  if (reaped < 0) {
    // Somebody else took the status: a run whose end nobody saw is not a success.
    m_outcome.problem = "how the solver ended is not known: " + systemReason(errno);
  }
  m_pid = 0;
  if (m_pidDescriptor >= 0) {
    ::close(std::exchange(m_pidDescriptor, -1));
  }
  m_outcome.wallTime = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - m_started);
  keepOutput(m_command.outputLimit + kMostPerPoll);
  m_outcome.outputTruncated = m_output->isTruncated() || m_error->isTruncated();
  for (const CappedStream *stream : {m_output.get(), m_error.get()}) {
    if (m_outcome.problem.empty()) {
      m_outcome.problem = stream->problem();
    }
  }
  m_output.reset();
  m_error.reset();
  if (WIFSIGNALED(status)) {
    m_outcome.end = SolverEnd::Signalled;
    m_outcome.signal = WTERMSIG(status);
  } else {
    m_outcome.end = SolverEnd::Exited;
    m_outcome.exitCode = WEXITSTATUS(status);
  }
  if (m_endedByUs != SolverEnd::Running) {
    m_outcome.end = m_endedByUs;
  }
}

void SolverProcess::keepOutput(std::size_t most) {
  m_output->keep(most);
  m_error->keep(most);
  if (!m_output->problem().empty() || !m_error->problem().empty()) {
    kill(); // what cannot be kept cannot be read either
  }
}

std::optional<SolverProcess::Clock::time_point> SolverProcess::nextDeadline() const {
  if (m_killAt) {
    return m_killAt;
  }
  if (m_command.timeLimit.count() > 0) {
    return m_started + m_command.timeLimit;
  }
  return std::nullopt;
}

void SolverProcess::waitForAny(const std::vector<SolverProcess *> &processes,
                               std::chrono::milliseconds longest) {
  std::vector<pollfd> waitedFor;
  const Clock::time_point now = Clock::now();
  std::chrono::milliseconds wait = longest;
  for (const SolverProcess *process : processes) {
    if (process == nullptr || !process->isRunning()) {
      continue;
    }
    for (const int descriptor :
         {process->m_pidDescriptor, process->m_output->readingEnd(), process->m_error->readingEnd()}) {
      waitedFor.push_back({descriptor, POLLIN, 0}); // a negative descriptor is ignored
    }
    if (process->m_pidDescriptor < 0) {
      wait = std::min(wait, kBlindInterval);
    }
    if (const auto deadline = process->nextDeadline()) {
      const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - now);
      // A group that has been sent SIGKILL ends when the kernel gets to it: no use in asking without a pause.
      wait = std::clamp(left, std::chrono::milliseconds(process->m_killAt ? 1 : 0), wait);
    }
  }
  if (!waitedFor.empty()) {
    ::poll(waitedFor.data(), waitedFor.size(), static_cast<int>(std::max<long long>(0, wait.count())));
  }
}

} // namespace EmbeddedHost
