// optstudy-supervisor: a small process between a program and the solvers that it runs, which sees to it that nothing
// a solver has started outlives its run, or the program. It is two processes: a worker, which carries out runs, and a
// guard, which ends what a worker that was killed has left; whichever of them dies, the other one cleans up.
//
// It is started once and small, so that starting a solver from it is cheap however large the program is. Of the
// standard library it uses headers only, and so needs nothing but the C library.

#include "EmbeddedHost/src/solve/SupervisorProtocol.h"
#include "EmbeddedHost/src/supervisor/Guard.h"
#include "EmbeddedHost/src/supervisor/Worker.h"

#include <csignal>
#include <cstdio>
#include <cstring>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace EmbeddedHost::Supervision;

namespace {

bool isSocket(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode);
}

// Adopts what its descendants leave, and keeps no folder busy.
bool becomeSupervisor() {
  return prctl(PR_SET_CHILD_SUBREAPER, 1) == 0 && chdir("/") == 0;
}

[[noreturn]] void runWorker(pid_t guardian) {
  // The guard's death reaches the worker as the request to end.
  const bool isReady = prctl(PR_SET_PDEATHSIG, SIGTERM) == 0 && becomeSupervisor() && getppid() == guardian;
  if (isReady) {
    work(kSocket);
  }
  _exit(isReady ? 0 : 1);
}

} // namespace

int main(int count, char **arguments) {
  if (count != 2 || strcmp(arguments[1], kVersion) != 0 || !isSocket(kSocket)) {
    fputs("optstudy-supervisor is started by a program that runs solvers, and by one of its own version "
          "only.\n",
          stderr);
    return 2;
  }
  sigset_t all;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
  if (!becomeSupervisor()) {
    return 1;
  }
  const pid_t guardian = getpid();
  const pid_t worker = fork();
  if (worker < 0) {
    return 1;
  }
  if (worker == 0) {
    runWorker(guardian);
  }
  _exit(guard(kSocket, worker));
}
