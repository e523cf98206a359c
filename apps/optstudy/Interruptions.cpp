#include "apps/optstudy/Interruptions.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t g_interruptions = 0;

void onSignal(int number) {
  const int weight = number == SIGINT ? 1 : 2;
  g_interruptions = g_interruptions + weight;
}

} // namespace

void countInterruptions() {
  struct sigaction action = {};
  action.sa_handler = onSignal;
  ::sigemptyset(&action.sa_mask);
  action.sa_flags = 0; // a wait is to be cut short
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    ::sigaction(number, &action, nullptr);
  }
}

int interruptions() {
  return g_interruptions;
}
