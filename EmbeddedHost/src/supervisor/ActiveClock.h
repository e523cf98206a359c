#pragma once

#include <cstdint>

// Counts the time that passes while nothing is suspended. Whoever uses it looks at it often, and a look after a long
// gap counts a little only: nobody but a suspended process looks that late.
class ActiveClock {
public:
  static constexpr std::int64_t kLookEvery = 100; // milliseconds

  void start();
  // \param isSuspended  since the last look
  void look(bool isSuspended);
  std::int64_t milliseconds() const { return m_active / 1000000; }

private:
  std::int64_t m_active = 0;
  std::int64_t m_last = 0;
};
