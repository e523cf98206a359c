#pragma once

#include <cstdint>

// What a program and its supervisors say to each other, over a socket that keeps messages apart. Both are built from
// one tree; a supervisor of another version refuses to start.

namespace EmbeddedHost::Supervision {

// Given to the supervisor as its only argument. Changes with everything below.
constexpr const char *kVersion = "1";

// The descriptor that a supervisor finds its socket at.
constexpr int kSocket = 0;

enum class Order : std::uint32_t {
  Start = 1, // with three descriptors: the request, and where standard output and standard error go
  Stop,      // SIGTERM now, SIGKILL after the grace time
  Kill       // SIGKILL now
};

enum class Report : std::uint32_t {
  Started = 1, // `value` is the number of the process and of its group
  NotStarted,  // `value` is the number of the system's error
  Ended        // `value` is the status as waitpid() gives it; nothing that the run has left is alive
};

enum class EndedBy : std::uint32_t { Itself = 0, TimeLimit, Order };

struct OrderMessage {
  Order order;
};

struct ReportMessage {
  Report report;
  EndedBy endedBy;
  std::int64_t value;
  std::int64_t milliseconds; // that the run has taken, without those in which it was suspended
};

// The beginning of a request, which is a file in memory because arguments and environment can be larger than a
// message. Texts follow, each with its zero: the program, the working folder, the arguments, the environment.
struct RequestHeader {
  std::int64_t timeLimit;     // milliseconds, 0: none
  std::int64_t graceTime;     // milliseconds
  std::int64_t fileSizeLimit; // bytes, 0: none
  std::uint32_t argumentCount;
  std::uint32_t variableCount;
};

} // namespace EmbeddedHost::Supervision
