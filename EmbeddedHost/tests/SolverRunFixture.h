#pragma once

#include "EmbeddedHost/SolverProcess.h"
#include "EmbeddedHost/SolverSupervisors.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace EmbeddedHost {

/// Runs the misbehaving solver in a temporary folder, and finds what a run has left: everything that a case starts
/// carries a mark in its environment, which nothing that it does takes away.
class SolverRunFixture : public testing::Test {
protected:
  SolverRunFixture();
  ~SolverRunFixture() override;

  /// A run without files for its output, so that it can be repeated.
  /// \param arguments  of the misbehaving solver
  SolverCommand solver(const std::vector<std::string> &arguments) const;
  static SolverOutcome finish(SolverProcess &process);
  SolverOutcome run(const SolverCommand &command);
  /// Runs it with its standard output kept. \return what it wrote
  std::string outputOf(SolverCommand command);

  struct Found {
    pid_t process = 0;
    std::string name;
    char state = '?';
  };
  /// What carries the case's mark and is not dead.
  std::vector<Found> marked() const;
  /// Waits until nothing does. \return what is left after `longest`, one line each; "" when nothing is
  std::string survivorsAfter(std::chrono::milliseconds longest) const;
  /// Waits for something with a name and a state. \return 0 when there is none after five seconds
  pid_t waitFor(const std::string &name, char state = '\0') const;
  void killMarked() const;

  /// A program with solvers of its own: a copy of this process. What it starts carries the mark, it does not.
  static pid_t startProgram(const std::function<int()> &program);
  /// Its exit code, or -1 and the number of the signal below that.
  static int endOf(pid_t program);

  std::filesystem::path folder;
  SolverSupervisors supervisors;
  std::string mark;
};

/// What an environment variable says, with which a slow run makes more or other trials than an ordinary one.
std::size_t numberFrom(const char *variable, std::size_t otherwise);

} // namespace EmbeddedHost
