#pragma once

#include "EmbeddedHost/src/solve/SupervisorProtocol.h"
#include "EmbeddedHost/src/supervisor/ActiveClock.h"
#include "EmbeddedHost/src/supervisor/RunRequest.h"

#include <sys/types.h>

// The one run that a supervisor carries out at a time.
class Run {
public:
  bool isActive() const { return m_solver > 0; }

  // \return what the program is told
  EmbeddedHost::Supervision::ReportMessage start(const RunRequest &request);

  // SIGTERM now, SIGKILL after the grace time.
  void stop(EmbeddedHost::Supervision::EndedBy reason);
  void kill();

  // Does what is due. Call it often, see wait().
  // \param isSuspended  whether the program is, whose solver is then suspended, too
  void look(bool isSuspended);

  // Milliseconds until look() is to be called at the latest; -1 while nothing runs.
  int wait() const;

  // Whether the solver itself has ended; conclude() then ends and reaps whatever is left of the run.
  bool hasEnded() const;
  EmbeddedHost::Supervision::ReportMessage conclude();

private:
  void suspend(bool isSuspended);

  pid_t m_solver = 0;
  ActiveClock m_clock;
  EmbeddedHost::Supervision::EndedBy m_endedBy = EmbeddedHost::Supervision::EndedBy::Itself;
  std::int64_t m_timeLimit = 0;
  std::int64_t m_graceTime = 0;
  std::int64_t m_killAt = -1;
  bool m_isSuspended = false;
};
