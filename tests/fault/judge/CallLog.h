#pragma once

#include <string>
#include <vector>

namespace FaultTests {

/// The system calls that change what is stored, or say that it is to be stored for good.
std::string writeClassCalls();

/// One system call of a session: its name, and how many of that name came before it, counted from 1.
struct CallPoint {
  std::string name;
  int ordinal = 0;

  std::string text() const { return name + " " + std::to_string(ordinal); }
};

/// The points at which a session can be struck, from the log of an undisturbed one. An opening counts only where it
/// creates a file, though all are numbered.
std::vector<CallPoint> pointsOf(const std::string &log);

/// The name of the call that a line of the log shows; "" for any other line.
std::string callOf(const std::string &line);

} // namespace FaultTests
