#include "apps/optstudy/Interruptions.h"

#include "Workbench/ExitCode.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t g_interruptions = 0;
volatile std::sig_atomic_t g_firstSignal = 0;

// The default action of a signal, which is delivered when its handler has returned.
void endBy(int number) {
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  ::sigemptyset(&action.sa_mask);
  ::sigaction(number, &action, nullptr);
  ::raise(number);
}

void onSignal(int number) {
  if (number == SIGINT && g_interruptions >= 2) {
    endBy(number);
    return;
  }
  if (g_interruptions == 0) {
    g_firstSignal = number;
  }
  const int weight = number == SIGINT ? 1 : 2;
  g_interruptions = g_interruptions + weight;
}

bool isIgnored(int number) {
  struct sigaction present = {};
  return ::sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

} // namespace

void outliveReaders() {
  struct sigaction ignoring = {};
  ignoring.sa_handler = SIG_IGN;
  ::sigemptyset(&ignoring.sa_mask);
  ::sigaction(SIGPIPE, &ignoring, nullptr);
}

void countInterruptions() {
  struct sigaction action = {};
  action.sa_handler = onSignal;
  // One at a time, so that the count is right.
  ::sigemptyset(&action.sa_mask);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    ::sigaddset(&action.sa_mask, number);
  }
  action.sa_flags = 0; // a wait is to be cut short
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (number != SIGHUP || !isIgnored(number)) {
      ::sigaction(number, &action, nullptr);
    }
  }
}

int interruptions() {
  return g_interruptions;
}

int exitCodeAfterInterruptions(int code) {
  const bool isSignal = g_firstSignal == SIGTERM || g_firstSignal == SIGHUP;
  return code == Workbench::ExitCode::kInterrupted && isSignal ? Workbench::ExitCode::kTerminated : code;
}
