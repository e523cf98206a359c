#include "EmbeddedHost/src/supervisor/Run.h"

#include "EmbeddedHost/src/supervisor/Descendants.h"
#include "EmbeddedHost/src/supervisor/StartSolver.h"

#include <cerrno>
#include <csignal>
#include <sys/wait.h>

using EmbeddedHost::Supervision::EndedBy;
using EmbeddedHost::Supervision::Report;
using EmbeddedHost::Supervision::ReportMessage;

namespace {

constexpr std::int64_t kKillEvery = 100; // milliseconds, for what has come into the group meanwhile

} // namespace

ReportMessage Run::start(const RunRequest &request) {
  m_clock.start();
  m_endedBy = EndedBy::Itself;
  m_timeLimit = request.header().timeLimit;
  m_graceTime = request.header().graceTime;
  m_killAt = -1;
  m_isSuspended = false;
  m_solver = startSolver(request);
  return isActive() ? ReportMessage{Report::Started, EndedBy::Itself, m_solver, 0}
                    : ReportMessage{Report::NotStarted, EndedBy::Itself, errno, 0};
}

void Run::stop(EndedBy reason) {
  if (m_killAt >= 0) {
    return;
  }
  m_endedBy = reason;
  m_killAt = m_clock.milliseconds() + m_graceTime;
  ::kill(-m_solver, SIGTERM);
  ::kill(-m_solver, SIGCONT); // a stopped process would not see the request
}

void Run::kill() {
  if (m_endedBy == EndedBy::Itself) {
    m_endedBy = EndedBy::Order;
  }
  m_killAt = m_clock.milliseconds() + kKillEvery;
  ::kill(-m_solver, SIGKILL);
}

void Run::suspend(bool isSuspended) {
  m_isSuspended = isSuspended;
  signalDescendants(isSuspended ? SIGSTOP : SIGCONT);
}

void Run::look(bool isSuspended) {
  if (!isActive()) {
    return;
  }
  m_clock.look(m_isSuspended);
  if (isSuspended != m_isSuspended) {
    suspend(isSuspended);
  }
  if (m_isSuspended) {
    return;
  }
  const std::int64_t now = m_clock.milliseconds();
  if (m_killAt >= 0) {
    if (now >= m_killAt) {
      kill();
    }
  } else if (m_timeLimit > 0 && now >= m_timeLimit) {
    stop(EndedBy::TimeLimit);
  }
}

int Run::wait() const {
  if (!isActive()) {
    return -1;
  }
  const std::int64_t due = m_killAt >= 0 ? m_killAt : m_timeLimit;
  const std::int64_t left = due - m_clock.milliseconds() + 1;
  const bool isSooner = due > 0 && !m_isSuspended && left < ActiveClock::kLookEvery;
  return static_cast<int>(isSooner ? (left > 1 ? left : 1) : ActiveClock::kLookEvery);
}

bool Run::hasEnded() const {
  return isActive() && reapAllBut(m_solver);
}

ReportMessage Run::conclude() {
  // Until it is reaped its number belongs to it, and so does its group's.
  ::kill(-m_solver, SIGKILL);
  int status = 0;
  while (waitpid(m_solver, &status, 0) < 0 && errno == EINTR) {
  }
  m_clock.look(m_isSuspended);
  m_solver = 0;
  sweepDescendants();
  return {Report::Ended, m_endedBy, status, m_clock.milliseconds()};
}
