#include "EmbeddedHost/src/supervisor/ActiveClock.h"

#include <ctime>

namespace {

constexpr std::int64_t kLongestGap = 400000000;

std::int64_t nanoseconds() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1000000000 + now.tv_nsec;
}

} // namespace

void ActiveClock::start() {
  m_active = 0;
  m_last = nanoseconds();
}

void ActiveClock::look(bool isSuspended) {
  const std::int64_t now = nanoseconds();
  if (!isSuspended) {
    m_active += now - m_last < kLongestGap ? now - m_last : kLongestGap;
  }
  m_last = now;
}
