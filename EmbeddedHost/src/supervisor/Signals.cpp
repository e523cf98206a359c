#include "EmbeddedHost/src/supervisor/Signals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

int openSignals() {
  sigset_t all;
  sigset_t awaited;
  sigfillset(&all);
  sigprocmask(SIG_SETMASK, &all, nullptr);
  sigemptyset(&awaited);
  sigaddset(&awaited, SIGCHLD);
  sigaddset(&awaited, SIGTERM);
  return signalfd(-1, &awaited, SFD_CLOEXEC | SFD_NONBLOCK);
}

bool takeSignals(int signals) {
  bool isTerminated = false;
  signalfd_siginfo received = {};
  while (read(signals, &received, sizeof(received)) == static_cast<ssize_t>(sizeof(received))) {
    isTerminated = isTerminated || received.ssi_signo == SIGTERM;
  }
  return isTerminated;
}
