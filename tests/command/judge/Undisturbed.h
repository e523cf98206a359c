#pragma once

#include "tests/command/judge/Box.h"

#include <chrono>

namespace CommandTests {

/// What a study gives when nothing happens to it, and how long that takes.
struct Undisturbed {
  Table table;
  std::chrono::milliseconds time{0};
  std::string problem;

  /// \param script  what the solver does
  static Undisturbed of(const Product &product, int rows, const std::string &script);
};

/// What is wrong with a project after it was struck: something is left running, or what it shows of rows that are ok
/// is not what the undisturbed one shows. "" for nothing.
/// \param shown  receives what it shows; nothing when the project was not made yet
std::string problemAfterStrike(const Box &box, const Undisturbed &undisturbed, Table &shown);

/// What is wrong with going on: the same command does not end well, runs again what was solved, runs something twice,
/// gives another table, or leaves something running. "" for nothing.
/// \param shown  what problemAfterStrike() found
std::string problemOfGoingOn(const Box &box, const Undisturbed &undisturbed, const Table &shown);

} // namespace CommandTests
