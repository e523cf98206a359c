#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <random>
#include <thread>
#include <unistd.h>

// Whatever a solver has started is gone when its run has ended, and when the program or a supervisor has died.

namespace EmbeddedHost {
namespace {

using std::chrono::milliseconds;

class SolverSurvivorsTest : public SolverRunFixture {
protected:
  // Runs a pair of solvers again and again until somebody ends it.
  int runPairsForEver() const {
    SolverSupervisors own;
    const std::vector<std::vector<std::string>> kinds = {{"serve", "5"}, {"serve deaf"}, {"leave"}, {"hang"}};
    std::vector<std::unique_ptr<SolverProcess>> pair(2);
    for (std::size_t round = 0;; ++round) {
      std::unique_ptr<SolverProcess> &process = pair[round % 2];
      if (process && process->outcome().end == SolverEnd::Running) {
        process->kill();
        finish(*process);
      }
      process = std::make_unique<SolverProcess>(solver(kinds[round % kinds.size()]), own);
      if (!process->start()) {
        return 1;
      }
      SolverProcess::waitForAny({pair[0].get(), pair[1].get()}, milliseconds(3));
    }
  }

  // The worker is the guard's child; both have the same name, and the guard is the older one.
  pid_t supervisorProcess(bool isGuard) const {
    pid_t chosen = 0;
    for (const Found &process : marked()) {
      if (process.name == "optstudy-superv" &&
          (chosen == 0 || (isGuard ? process.process < chosen : process.process > chosen))) {
        chosen = process.process;
      }
    }
    return chosen;
  }

  void checkLoss(bool ofGuard, const std::string &how) {
    SolverProcess process(solver({"serve deaf"}), supervisors);
    ASSERT_TRUE(process.start());
    ASSERT_GT(waitFor("solver"), 0);
    const pid_t victim = supervisorProcess(ofGuard);
    ASSERT_GT(victim, 0);
    ASSERT_EQ(::kill(victim, SIGKILL), 0);
    const SolverOutcome outcome = finish(process);
    EXPECT_EQ(outcome.end, SolverEnd::Lost);
    EXPECT_EQ(outcome.problem, how);
    EXPECT_EQ(survivorsAfter(milliseconds(0)), "");
    EXPECT_EQ(run(solver({"exit", "3"})).exitCode, 3); // by a new one
  }
};

TEST_F(SolverSurvivorsTest, Run_WhateverItLeaves_IsGoneWhenItHasEnded) {
  const std::vector<std::vector<std::string>> kinds = {{"leave"}, {"serve", "0"}, {"serve", "20"}};
  int violations = 0;
  constexpr int kTrials = 60;
  for (int trial = 0; trial < kTrials; ++trial) {
    const SolverOutcome outcome = run(solver(kinds[static_cast<std::size_t>(trial) % kinds.size()]));
    const std::size_t left = marked().size();
    const bool isRight = outcome.end == SolverEnd::Exited && outcome.exitCode == 0 && left == 2;
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << "trial " << trial << ": " << left << " processes, two of them supervisors";
  }
  std::printf("%d runs that leave something, %d violations\n", kTrials, violations);
}

TEST_F(SolverSurvivorsTest, Run_ThatKeepsReplacingItself_IsCaught) {
  int violations = 0;
  constexpr int kTrials = 10;
  for (int trial = 0; trial < kTrials; ++trial) {
    const bool isRight = run(solver({"generations", "10"})).exitCode == 0 && marked().size() == 2;
    violations += isRight ? 0 : 1;
  }
  EXPECT_EQ(violations, 0);
  std::printf("%d runs that keep replacing themselves, %d violations\n", kTrials, violations);
}

TEST_F(SolverSurvivorsTest, Destruction_OfARunningProcess_LeavesNothing) {
  {
    SolverProcess process(solver({"serve deaf"}), supervisors);
    ASSERT_TRUE(process.start());
    ASSERT_GT(waitFor("solver"), 0);
  }
  EXPECT_EQ(survivorsAfter(milliseconds(0)), "");
}

TEST_F(SolverSurvivorsTest, ProgramKilledAtAnyInstant_LeavesNothingAfterASecond) {
  const std::size_t trials = numberFrom("OPTSTUDY_KILL_TRIALS", 25);
  std::mt19937 random(static_cast<std::mt19937::result_type>(numberFrom("OPTSTUDY_KILL_SEED", 1)));
  std::uniform_int_distribution<int> microseconds(0, 60000);
  int violations = 0;
  for (std::size_t trial = 0; trial < trials; ++trial) {
    const pid_t program = startProgram([this] { return runPairsForEver(); });
    ASSERT_GT(program, 0);
    ::usleep(static_cast<useconds_t>(microseconds(random)));
    ASSERT_EQ(::kill(program, SIGKILL), 0);
    ASSERT_EQ(endOf(program), -1 - SIGKILL);
    const std::string survivors = survivorsAfter(milliseconds(1000));
    violations += survivors.empty() ? 0 : 1;
    EXPECT_EQ(survivors, "") << "trial " << trial;
    killMarked();
  }
  std::printf("%zu programs killed with two solvers each, %d violations\n", trials, violations);
}

TEST_F(SolverSurvivorsTest, ProgramKilled_WhileAForkedCopyOfItLives_LeavesNothing) {
  const pid_t program = startProgram([this] {
    SolverProcess process(solver({"serve deaf"}), supervisors);
    if (!process.start() || ::fork() < 0) { // the copy has the socket, too
      return 1;
    }
    for (int second = 0; second < 5; ++second) {
      ::sleep(1);
    }
    return 0;
  });
  ASSERT_GT(waitFor("solver"), 0);
  ::usleep(50000);
  ::kill(program, SIGKILL);
  endOf(program);
  EXPECT_EQ(survivorsAfter(milliseconds(1000)), "");
}

// Without a supervisor the same program leaves what it has started, and this is how the suite would see it.
TEST_F(SolverSurvivorsTest, Control_ProgramWithoutASupervisor_LeavesSurvivors) {
  const pid_t program = startProgram([] {
    const pid_t child = ::fork();
    if (child == 0) {
      ::execl(OPTSTUDY_MISBEHAVING_SOLVER, "solver", "serve deaf", nullptr);
      ::_exit(1);
    }
    return endOf(child);
  });
  ASSERT_GT(waitFor("solver"), 0);
  ::usleep(50000);
  ::kill(program, SIGKILL);
  endOf(program);
  EXPECT_NE(survivorsAfter(milliseconds(300)), "");
}

TEST_F(SolverSurvivorsTest, SupervisorKilled_FailsTheRunAndLeavesNothing) {
  checkLoss(false, "the solver's supervisor was ended by signal 9 (Killed)");
}

TEST_F(SolverSurvivorsTest, GuardKilled_FailsTheRunAndLeavesNothing) {
  checkLoss(true, "the solver's supervisor was ended by signal 9 (Killed)");
}

TEST_F(SolverSurvivorsTest, SupervisorKilledAtAnyInstant_FailsNoMoreThanItsRun) {
  std::mt19937 random(static_cast<std::mt19937::result_type>(numberFrom("OPTSTUDY_KILL_SEED", 1)));
  std::uniform_int_distribution<int> microseconds(0, 20000);
  const std::size_t trials = numberFrom("OPTSTUDY_KILL_TRIALS", 25);
  int violations = 0;
  int lost = 0;
  for (std::size_t trial = 0; trial < trials; ++trial) {
    SolverProcess process(solver({"serve", "10"}), supervisors);
    ASSERT_TRUE(process.start()) << process.outcome().problem;
    ::usleep(static_cast<useconds_t>(microseconds(random)));
    // There may be none any more: the one that was killed after the run before was taking its time to die.
    const pid_t victim = supervisorProcess(trial % 2 == 0);
    if (victim > 0) {
      ::kill(victim, SIGKILL);
    }
    const SolverOutcome outcome = finish(process);
    const bool isLost = outcome.end == SolverEnd::Lost;
    lost += isLost ? 1 : 0;
    // A run that had ended before keeps its result, and its supervisor is found dead by the next.
    const bool isRight = isLost ? survivorsAfter(milliseconds(0)).empty() : outcome.exitCode == 0;
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << "trial " << trial << " " << outcome.problem;
  }
  EXPECT_GT(lost, 0);
  std::printf("%zu supervisors killed, %d runs lost, %d violations\n", trials, lost, violations);
}

TEST_F(SolverSurvivorsTest, SupervisorTerminated_EndsItsRun) {
  SolverProcess process(solver({"serve deaf"}), supervisors);
  ASSERT_TRUE(process.start());
  ASSERT_GT(waitFor("solver"), 0);
  const pid_t guard = supervisorProcess(true);
  ASSERT_GT(guard, 0);
  ::kill(guard, SIGTERM);
  EXPECT_EQ(finish(process).end, SolverEnd::Lost);
  EXPECT_EQ(survivorsAfter(milliseconds(0)), "");
}

TEST_F(SolverSurvivorsTest, End_OfTheSupervisors_LeavesNone) {
  {
    SolverSupervisors own;
    std::string problem;
    ASSERT_TRUE(own.prepare(3, problem)) << problem;
    for (int attempt = 0; attempt < 500 && marked().size() < 6; ++attempt) {
      ::usleep(10000);
    }
    EXPECT_EQ(marked().size(), 6U); // each is two processes
  }
  EXPECT_EQ(survivorsAfter(milliseconds(0)), "");
}

} // namespace
} // namespace EmbeddedHost
