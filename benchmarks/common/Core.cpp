#include "benchmarks/common/Core.h"

#include <cerrno>
#include <cstddef>
#include <sched.h>
#include <system_error>
#include <unistd.h>

namespace Benchmarking {

namespace {

[[noreturn]] void fail(const char *call) {
  throw std::system_error(errno, std::generic_category(), call);
}

} // namespace

int runOnOneCore(std::optional<int> wanted, char **arguments) {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) {
    fail("sched_getaffinity");
  }
  int core = 0;
  for (int candidate = 0; candidate < CPU_SETSIZE; ++candidate) {
    if (CPU_ISSET(static_cast<std::size_t>(candidate), &allowed)) {
      core = candidate;
    }
  }
  core = wanted.value_or(core);
  if (CPU_COUNT(&allowed) == 1 && CPU_ISSET(static_cast<std::size_t>(core), &allowed)) {
    return core;
  }
  cpu_set_t chosen;
  CPU_ZERO(&chosen);
  CPU_SET(static_cast<std::size_t>(core), &chosen);
  if (sched_setaffinity(0, sizeof(chosen), &chosen) != 0) {
    fail("sched_setaffinity");
  }
  execv("/proc/self/exe", arguments);
  fail("execv");
}

} // namespace Benchmarking
