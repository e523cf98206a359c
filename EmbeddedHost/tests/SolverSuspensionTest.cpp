#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <unistd.h>

// A program that is suspended, as by Ctrl-Z at the terminal, takes its solvers along, and their time limits wait.

namespace EmbeddedHost {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

struct Report {
  int end = -1;
  long long wallTime = -1;
};

class SolverSuspensionTest : public SolverRunFixture {
protected:
  pid_t startProgramWith(const SolverCommand &command) const {
    return startProgram([this, command] {
      // In a group of its own, as a shell starts it, so that SIGTSTP suspends it.
      ::setpgid(0, 0);
      SolverSupervisors own;
      SolverProcess process(command, own);
      process.start();
      const SolverOutcome outcome = finish(process);
      std::ofstream(folder / "report") << static_cast<int>(outcome.end) << " " << outcome.wallTime.count();
      return 0;
    });
  }
  Report reportOf(pid_t program) const {
    EXPECT_EQ(endOf(program), 0);
    Report report;
    std::ifstream(folder / "report") >> report.end >> report.wallTime;
    return report;
  }
  static void pauseFor(milliseconds time) { ::usleep(static_cast<useconds_t>(time.count() * 1000)); }
  // Suspends the program for so long, and checks that its solver is suspended with it.
  // \return how long it was, which on a busy machine is longer
  Clock::duration suspendFor(milliseconds time, pid_t program, int number) const {
    const auto began = Clock::now();
    EXPECT_EQ(::kill(program, number), 0);
    EXPECT_GT(waitFor("solver", 'T'), 0) << "the solver goes on";
    pauseFor(time);
    EXPECT_EQ(::kill(program, SIGCONT), 0);
    return Clock::now() - began;
  }
};

TEST_F(SolverSuspensionTest, TimeLimit_DoesNotCountTheTimeOfASuspension) {
  for (const int number : {SIGTSTP, SIGSTOP}) {
    SolverCommand command = solver({"hang"});
    command.timeLimit = milliseconds(500);
    const auto began = Clock::now();
    const pid_t program = startProgramWith(command);
    ASSERT_GT(waitFor("solver", 'S'), 0);
    const auto suspended = suspendFor(milliseconds(800), program, number);
    EXPECT_GT(waitFor("solver", 'S'), 0) << "the solver does not go on";
    const Report report = reportOf(program);
    const auto active = Clock::now() - began - suspended;
    EXPECT_EQ(report.end, static_cast<int>(SolverEnd::TimedOut));
    EXPECT_GE(report.wallTime, 500);
    EXPECT_LT(report.wallTime, 1000);
    // The first and the last tenth of a second of a suspension may count.
    EXPECT_GE(active, milliseconds(350));
    EXPECT_LT(active, milliseconds(1300)); // with the start of the program and of its supervisor
  }
}

TEST_F(SolverSuspensionTest, Suspension_LongerThanTheTimeLimit_EndsNothing) {
  SolverCommand command = solver({"work", "300"});
  command.timeLimit = milliseconds(1000);
  const pid_t program = startProgramWith(command);
  ASSERT_GT(waitFor("solver", 'S'), 0);
  static_cast<void>(suspendFor(milliseconds(1100), program, SIGTSTP));
  const Report report = reportOf(program);
  EXPECT_EQ(report.end, static_cast<int>(SolverEnd::Exited));
  EXPECT_LT(report.wallTime, 1000);
}

TEST_F(SolverSuspensionTest, Suspension_ReachesServicesOfTheSolver) {
  const pid_t program = startProgramWith(solver({"serve deaf"}));
  ASSERT_GT(waitFor("solver", 'S'), 0);
  pauseFor(milliseconds(100));
  ASSERT_EQ(::kill(program, SIGSTOP), 0);
  ASSERT_GT(waitFor("solver", 'T'), 0);
  pauseFor(milliseconds(100));
  int running = 0;
  int suspended = 0;
  for (const Found &process : marked()) {
    if (process.name != "optstudy-superv") {
      ++(process.state == 'T' ? suspended : running);
    }
  }
  EXPECT_EQ(running, 0);
  EXPECT_EQ(suspended, 2);
  ::kill(program, SIGKILL);
  endOf(program);
  EXPECT_EQ(survivorsAfter(milliseconds(1000)), "");
}

TEST_F(SolverSuspensionTest, ProgramKilled_WhileItIsSuspended_LeavesNothing) {
  const pid_t program = startProgramWith(solver({"hang"}));
  ASSERT_GT(waitFor("solver", 'S'), 0);
  ::kill(program, SIGSTOP);
  ASSERT_GT(waitFor("solver", 'T'), 0);
  ::kill(program, SIGKILL);
  endOf(program);
  EXPECT_EQ(survivorsAfter(milliseconds(1000)), "");
}

// A solver that nobody supervises goes on while whoever started it is suspended, and this is how the suite would see it.
TEST_F(SolverSuspensionTest, Control_SolverWithoutASupervisor_GoesOn) {
  const pid_t program = startProgram([] {
    const pid_t child = ::fork();
    if (child == 0) {
      ::setpgid(0, 0);
      ::execl(OPTSTUDY_MISBEHAVING_SOLVER, "solver", "hang", nullptr);
      ::_exit(1);
    }
    return endOf(child);
  });
  ASSERT_GT(waitFor("solver", 'S'), 0);
  ::kill(program, SIGSTOP);
  pauseFor(milliseconds(300));
  ASSERT_EQ(marked().size(), 1U);
  EXPECT_EQ(marked().front().state, 'S');
  ::kill(program, SIGKILL);
  endOf(program);
}

} // namespace
} // namespace EmbeddedHost
