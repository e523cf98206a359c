#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <set>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using SolverEndsTest = SolverRunFixture;

// By default the others are ignored, or suspend.
const std::set<int> kHarmless = {SIGCHLD, SIGCONT, SIGURG, SIGWINCH};
const std::set<int> kSuspending = {SIGSTOP, SIGTSTP, SIGTTIN, SIGTTOU};

TEST_F(SolverEndsTest, EverySignal_IsReportedAsItIs) {
  int violations = 0;
  int trials = 0;
  for (int number = 1; number < 32; ++number) {
    if (kSuspending.count(number) > 0) {
      continue;
    }
    const SolverOutcome outcome = run(solver({"signal", std::to_string(number)}));
    const bool isRight = kHarmless.count(number) > 0
                             ? outcome.end == SolverEnd::Exited && outcome.exitCode == 0
                             : outcome.end == SolverEnd::Signalled && outcome.signal == number;
    ++trials;
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << "signal " << number;
  }
  std::printf("%d signals, %d violations\n", trials, violations);
}

TEST_F(SolverEndsTest, EveryExitCode_IsReportedAsItIs) {
  int violations = 0;
  for (int code = 0; code < 256; ++code) {
    const SolverOutcome outcome = run(solver({"exit", std::to_string(code)}));
    const bool isRight = outcome.end == SolverEnd::Exited && outcome.exitCode == code;
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << "exit code " << code;
  }
  std::printf("256 exit codes, %d violations\n", violations);
}

TEST_F(SolverEndsTest, TimeLimits_HoldWithinHalfASecond) {
  struct Case {
    std::vector<std::string> arguments;
    milliseconds atLeast;
  };
  // Who does not listen has the grace time on top.
  const std::vector<Case> cases = {{{"hang"}, milliseconds(300)},   {{"deaf"}, milliseconds(400)},
                                   {{"silent"}, milliseconds(300)}, {{"flood"}, milliseconds(300)},
                                   {{"stop"}, milliseconds(300)},   {{"serve deaf"}, milliseconds(400)}};
  int violations = 0;
  for (const Case &one : cases) {
    SolverCommand command = solver(one.arguments);
    command.timeLimit = milliseconds(300);
    const auto began = std::chrono::steady_clock::now();
    const SolverOutcome outcome = run(command);
    const auto took = std::chrono::steady_clock::now() - began;
    const bool isRight = outcome.end == SolverEnd::TimedOut && outcome.wallTime >= one.atLeast &&
                         took < one.atLeast + milliseconds(500);
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << one.arguments.front() << " took "
                         << std::chrono::duration_cast<milliseconds>(took).count() << " ms";
    // The supervisor itself is marked, too.
    EXPECT_EQ(marked().size(), 2U) << one.arguments.front();
  }
  std::printf("%zu time limits, %d violations\n", cases.size(), violations);
}

TEST_F(SolverEndsTest, TimeLimit_OfARunThatEndsBefore_DoesNotMatter) {
  SolverCommand command = solver({"work", "100"});
  command.timeLimit = milliseconds(2000);
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.end, SolverEnd::Exited);
  EXPECT_GE(outcome.wallTime, milliseconds(100));
}

TEST_F(SolverEndsTest, TimeLimit_HoldsWhileNobodyPolls) {
  SolverCommand command = solver({"hang"});
  command.timeLimit = milliseconds(100);
  SolverProcess process(command, supervisors);
  ASSERT_TRUE(process.start());
  const pid_t running = waitFor("solver");
  ASSERT_GT(running, 0);
  for (int attempt = 0; attempt < 500 && ::kill(running, 0) == 0; ++attempt) {
    ::usleep(10000);
  }
  EXPECT_NE(::kill(running, 0), 0);
  EXPECT_EQ(finish(process).end, SolverEnd::TimedOut);
}

TEST_F(SolverEndsTest, Flood_OfBothStreams_IsKeptUpToTheLimit) {
  SolverCommand command = solver({"flood"});
  command.timeLimit = milliseconds(300);
  command.outputLimit = 100000;
  command.outputFile = (folder / "out").string();
  command.errorFile = (folder / "err").string();
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.end, SolverEnd::TimedOut);
  EXPECT_TRUE(outcome.outputTruncated);
  EXPECT_EQ(fs::file_size(command.outputFile), 100000U);
  EXPECT_EQ(fs::file_size(command.errorFile), 100000U);
}

TEST_F(SolverEndsTest, FileThatASolverWrites_OverTheLimit_EndsTheRun) {
  const std::string file = (folder / "grown").string();
  SolverCommand command = solver({"flood", file});
  command.fileSizeLimit = 1000000;
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.end, SolverEnd::Signalled);
  EXPECT_EQ(outcome.signal, SIGXFSZ);
  EXPECT_EQ(fs::file_size(file), 1000000U);
}

TEST_F(SolverEndsTest, FileThatASolverWrites_InTheRunAfterALimitedOne_IsNotLimited) {
  const std::string file = (folder / "grown").string();
  SolverCommand command = solver({"flood", file});
  command.fileSizeLimit = 1000;
  EXPECT_EQ(run(command).signal, SIGXFSZ);
  command.fileSizeLimit = 0;
  command.timeLimit = milliseconds(200);
  EXPECT_EQ(run(command).end, SolverEnd::TimedOut);
  EXPECT_GT(fs::file_size(file), 1000U);
}

TEST_F(SolverEndsTest, TwoAtATime_EndEachForItself) {
  int violations = 0;
  for (int trial = 0; trial < 20; ++trial) {
    SolverProcess first(solver({"exit", std::to_string(trial)}), supervisors);
    SolverProcess second(solver({"signal", std::to_string(SIGUSR1)}), supervisors);
    ASSERT_TRUE(first.start() && second.start());
    const bool isRight = finish(second).signal == SIGUSR1 && finish(first).exitCode == trial;
    violations += isRight ? 0 : 1;
  }
  EXPECT_EQ(violations, 0);
  EXPECT_EQ(marked().size(), 4U); // two supervisors for all of them
  std::printf("20 pairs, %d violations\n", violations);
}

TEST_F(SolverEndsTest, Stop_OfOneThatDoesNotListen_TakesTheGraceTime) {
  SolverProcess process(solver({"serve deaf"}), supervisors);
  ASSERT_TRUE(process.start());
  ASSERT_GT(waitFor("deaf_solver"), 0);
  process.stop();
  const SolverOutcome outcome = finish(process);
  EXPECT_EQ(outcome.end, SolverEnd::Stopped);
  EXPECT_GE(outcome.wallTime, milliseconds(100));
  EXPECT_EQ(marked().size(), 2U);
}

TEST_F(SolverEndsTest, Kill_TakesNoGraceTime) {
  SolverCommand command = solver({"serve deaf"});
  command.graceTime = milliseconds(20000);
  SolverProcess process(command, supervisors);
  ASSERT_TRUE(process.start());
  process.kill();
  EXPECT_EQ(finish(process).end, SolverEnd::Stopped);
  EXPECT_EQ(marked().size(), 2U);
}

} // namespace
} // namespace EmbeddedHost
