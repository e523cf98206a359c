#include "EmbeddedHost/src/supervisor/Guard.h"

#include "EmbeddedHost/src/supervisor/Descendants.h"
#include "EmbeddedHost/src/supervisor/ProgramWatch.h"
#include "EmbeddedHost/src/supervisor/Signals.h"

#include <array>
#include <csignal>
#include <poll.h>
#include <sys/wait.h>

namespace {

constexpr int kPatience = 300; // milliseconds that a worker has for its end when the program is gone

} // namespace

int guard(int socket, pid_t worker) {
  const ProgramWatch program(socket);
  const int signals = openSignals();
  bool isProgramGone = signals < 0;
  while (!reapAllBut(worker)) {
    // No events of the socket are asked for but its end, because its messages are the worker's.
    std::array<pollfd, 3> awaited = {{{signals, POLLIN, 0},
                                      {isProgramGone ? -1 : socket, 0, 0},
                                      {isProgramGone ? -1 : program.endDescriptor(), POLLIN, 0}}};
    const int count = poll(awaited.data(), awaited.size(), isProgramGone ? kPatience : -1);
    if (isProgramGone && count == 0) {
      kill(worker, SIGKILL);
    }
    isProgramGone = isProgramGone || awaited[1].revents != 0 || awaited[2].revents != 0;
    if (takeSignals(signals)) {
      kill(worker, SIGTERM);
    }
  }
  int status = 0;
  waitpid(worker, &status, 0);
  sweepDescendants();
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
