#include "EmbeddedHost/SolverProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class SolverProcessTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder = fs::temp_directory_path() / ("solver process." + std::to_string(::getpid()));
    fs::create_directories(m_folder / "run");
  }
  void TearDown() override { fs::remove_all(m_folder); }

  SolverCommand shell(const std::string &script) const {
    SolverCommand command;
    command.program = "/bin/sh";
    command.arguments = {"sh", "-c", script};
    command.workingFolder = (m_folder / "run").string();
    command.outputFile = (m_folder / "out").string();
    command.errorFile = (m_folder / "err").string();
    command.timeLimit = milliseconds(20000);
    command.graceTime = milliseconds(200);
    return command;
  }

  static SolverOutcome finish(SolverProcess &process) {
    while (!process.poll()) {
      SolverProcess::waitForAny({&process}, milliseconds(10000));
    }
    return process.outcome();
  }

  static SolverOutcome run(SolverCommand command) {
    SolverProcess process(std::move(command));
    process.start();
    return finish(process);
  }

  std::string read(const std::string &name) const {
    std::ifstream file(m_folder / name);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
  }

  // Whether the process with the number that the script wrote to `file` is gone, looking for up to two
  // seconds.
  bool isGone(const std::string &file) const {
    const int pid = std::atoi(read(file).c_str());
    for (int attempt = 0; pid > 0 && attempt < 200; ++attempt) {
      if (::kill(pid, 0) != 0 && errno == ESRCH) {
        return true;
      }
      std::ifstream status("/proc/" + std::to_string(pid) + "/stat");
      std::string number;
      std::string name;
      std::string state;
      status >> number >> name >> state;
      if (state == "Z") { // dead, and left to whoever adopts it
        return true;
      }
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }

  fs::path m_folder;
};

TEST_F(SolverProcessTest, Run_ThatSucceeds_KeepsBothStreams) {
  const SolverOutcome outcome = run(shell("echo result; echo warning >&2; exit 0"));
  EXPECT_EQ(outcome.end, SolverEnd::Exited);
  EXPECT_EQ(outcome.exitCode, 0);
  EXPECT_EQ(outcome.problem, "");
  EXPECT_FALSE(outcome.outputTruncated);
  EXPECT_EQ(read("out"), "result\n");
  EXPECT_EQ(read("err"), "warning\n");
}

TEST_F(SolverProcessTest, Run_ExitCodeAndSignal_AreReported) {
  const SolverOutcome failed = run(shell("exit 42"));
  EXPECT_EQ(failed.end, SolverEnd::Exited);
  EXPECT_EQ(failed.exitCode, 42);
  SolverCommand crash = shell("kill -SEGV $$");
  crash.outputFile.clear();
  crash.errorFile.clear();
  const SolverOutcome crashed = run(crash);
  EXPECT_EQ(crashed.end, SolverEnd::Signalled);
  EXPECT_EQ(crashed.signal, SIGSEGV);
}

TEST_F(SolverProcessTest, Run_Arguments_ReachTheProgramUntouched) {
  SolverCommand command = shell("");
  command.arguments = {"sh", "-c",   "printf '%s|' \"$@\"", "sh", "a b", "", "$(touch x)",
                       "*",  "it's", "; rm -rf /"};
  run(command);
  EXPECT_EQ(read("out"), "a b||$(touch x)|*|it's|; rm -rf /|");
}

TEST_F(SolverProcessTest, Run_WorkingFolder_IsTheOneGiven) {
  run(shell("pwd; touch here"));
  EXPECT_EQ(read("out"), (m_folder / "run").string() + "\n");
  EXPECT_TRUE(fs::exists(m_folder / "run" / "here"));
}

TEST_F(SolverProcessTest, Run_Environment_IsInheritedAndReplaced) {
  ::setenv("SOLVER_TEST_A", "inherited", 1);
  ::setenv("SOLVER_TEST_B", "inherited", 1);
  ::unsetenv("OMP_NUM_THREADS");
  SolverCommand command = shell("echo $SOLVER_TEST_A $SOLVER_TEST_B $OMP_NUM_THREADS");
  command.environment = {{"SOLVER_TEST_B", "replaced"}};
  run(command);
  EXPECT_EQ(read("out"), "inherited replaced 1\n");
}

TEST_F(SolverProcessTest, Run_NumberOfThreadsGivenOrInherited_IsLeftAlone) {
  ::setenv("OMP_NUM_THREADS", "3", 1);
  run(shell("echo $OMP_NUM_THREADS"));
  EXPECT_EQ(read("out"), "3\n");
  fs::remove(m_folder / "out");
  fs::remove(m_folder / "err");
  SolverCommand command = shell("echo $OMP_NUM_THREADS");
  command.environment = {{"OMP_NUM_THREADS", "4"}};
  run(command);
  ::unsetenv("OMP_NUM_THREADS");
  EXPECT_EQ(read("out"), "4\n");
}

// Solvers, and scripts that make their input, write and read numbers as the locale tells them.
TEST_F(SolverProcessTest, Run_LocaleOfOurs_DoesNotReachTheSolver) {
  const char *const before = ::getenv("LC_ALL");
  const std::string kept = before == nullptr ? "" : before;
  ::setenv("LC_ALL", "de_DE.UTF-8", 1);
  run(shell("echo $LC_ALL"));
  before == nullptr ? ::unsetenv("LC_ALL") : ::setenv("LC_ALL", kept.c_str(), 1);
  EXPECT_EQ(read("out"), "C.UTF-8\n");
}

TEST_F(SolverProcessTest, Run_LocaleGiven_IsLeftAlone) {
  SolverCommand command = shell("echo $LC_ALL");
  command.environment = {{"LC_ALL", "tr_TR.UTF-8"}};
  run(command);
  EXPECT_EQ(read("out"), "tr_TR.UTF-8\n");
}

TEST_F(SolverProcessTest, Run_StandardInput_IsEmpty) {
  EXPECT_EQ(run(shell("cat; exit 5")).exitCode, 5);
  EXPECT_EQ(read("out"), "");
}

TEST_F(SolverProcessTest, Run_OpenFilesOfOurs_AreNotInherited) {
  const int leaked = ::dup2(STDIN_FILENO, 77); // without the mark that would close it by itself
  run(shell("if [ -e /proc/$$/fd/77 ]; then echo open; else echo closed; fi"));
  ::close(leaked);
  EXPECT_EQ(leaked, 77);
  EXPECT_EQ(read("out"), "closed\n");
}

TEST_F(SolverProcessTest, Run_SignalIgnoredByUs_ReachesTheSolver) {
  ::signal(SIGTERM, SIG_IGN);
  const SolverOutcome outcome = run(shell("kill -TERM $$; echo survived"));
  ::signal(SIGTERM, SIG_DFL);
  EXPECT_EQ(outcome.end, SolverEnd::Signalled);
  EXPECT_EQ(outcome.signal, SIGTERM);
}

TEST_F(SolverProcessTest, Run_SignalBlockedByUs_ReachesTheSolver) {
  sigset_t blocked;
  sigset_t before;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGUSR1);
  ::sigprocmask(SIG_BLOCK, &blocked, &before);
  const SolverOutcome outcome = run(shell("kill -USR1 $$; echo survived"));
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  EXPECT_EQ(outcome.signal, SIGUSR1);
}

TEST_F(SolverProcessTest, Run_ProcessGroup_IsItsOwn) {
  run(shell("ps -o pgid= -p $$ | tr -d ' '; echo $$"));
  const std::string output = read("out");
  const std::size_t half = output.find('\n') + 1;
  EXPECT_EQ(output.substr(0, half), output.substr(half));
}

TEST_F(SolverProcessTest, Run_OverTheTimeLimit_IsEndedInTime) {
  SolverCommand command = shell("sleep 60");
  command.timeLimit = milliseconds(300);
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.end, SolverEnd::TimedOut);
  EXPECT_GE(outcome.wallTime, milliseconds(300));
  EXPECT_LT(outcome.wallTime, milliseconds(800));
}

TEST_F(SolverProcessTest, Run_ThatIgnoresTheRequest_IsKilledAfterTheGraceTime) {
  SolverCommand command = shell("trap '' TERM; while true; do sleep 60; done");
  command.timeLimit = milliseconds(200);
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.end, SolverEnd::TimedOut);
  EXPECT_GE(outcome.wallTime, milliseconds(400));
  EXPECT_LT(outcome.wallTime, milliseconds(900));
}

TEST_F(SolverProcessTest, Run_ThatIsSuspended_IsEndedAtTheTimeLimit) {
  SolverCommand command = shell("kill -STOP $$");
  command.timeLimit = milliseconds(200);
  EXPECT_EQ(run(command).end, SolverEnd::TimedOut);
}

TEST_F(SolverProcessTest, TimeLimit_EndsTheChildrenOfTheSolverToo) {
  SolverCommand command = shell("sleep 60 & echo $! > ../child; wait");
  command.timeLimit = milliseconds(300);
  EXPECT_EQ(run(command).end, SolverEnd::TimedOut);
  EXPECT_TRUE(isGone("child"));
}

TEST_F(SolverProcessTest, Run_ThatLeavesAChild_EndsWithTheSolverAndSweepsTheChild) {
  const SolverOutcome outcome = run(shell("sleep 60 & echo $! > ../child; exit 0"));
  EXPECT_EQ(outcome.end, SolverEnd::Exited);
  EXPECT_LT(outcome.wallTime, milliseconds(5000));
  EXPECT_TRUE(isGone("child"));
}

TEST_F(SolverProcessTest, Stop_EndsTheRunAsStopped) {
  SolverProcess process(shell("sleep 60"));
  ASSERT_TRUE(process.start());
  EXPECT_FALSE(process.poll());
  process.stop();
  EXPECT_EQ(finish(process).end, SolverEnd::Stopped);
}

TEST_F(SolverProcessTest, Destruction_OfARunningProcess_LeavesNoSurvivor) {
  {
    SolverProcess process(shell("sleep 60 & echo $! > ../child; wait"));
    ASSERT_TRUE(process.start());
    while (read("child").find('\n') == std::string::npos) {
      process.poll();
      std::this_thread::sleep_for(milliseconds(5));
    }
  }
  EXPECT_TRUE(isGone("child"));
}

TEST_F(SolverProcessTest, Output_BeyondTheLimit_IsDiscardedAndSaid) {
  SolverCommand command = shell("head -c 3000000 /dev/zero | tr '\\0' x; exit 3");
  command.outputLimit = 1000;
  const SolverOutcome outcome = run(command);
  EXPECT_EQ(outcome.exitCode, 3);
  EXPECT_TRUE(outcome.outputTruncated);
  EXPECT_EQ(read("out"), std::string(1000, 'x'));
}

TEST_F(SolverProcessTest, Output_OfExactlyTheLimit_IsNotTruncated) {
  SolverCommand command = shell("printf 1234567890");
  command.outputLimit = 10;
  EXPECT_FALSE(run(command).outputTruncated);
  EXPECT_EQ(read("out"), "1234567890");
}

TEST_F(SolverProcessTest, Output_ThatCannotBeKept_IsAProblem) {
  SolverCommand command = shell("while true; do echo x; done");
  command.outputFile = (m_folder / "full").string();
  SolverProcess missing(command);
  fs::create_symlink("/dev/full", m_folder / "full");
  EXPECT_FALSE(missing.start()); // a link is never followed into a file that exists
  EXPECT_EQ(missing.outcome().problem, (m_folder / "full").string() + ": File exists");
}

TEST_F(SolverProcessTest, Start_WithoutProgramOrFolder_SaysWhy) {
  SolverCommand command = shell("");
  command.program = (m_folder / "absent").string();
  SolverProcess process(command);
  EXPECT_FALSE(process.start());
  EXPECT_TRUE(process.poll());
  EXPECT_EQ(process.outcome().end, SolverEnd::NotStarted);
  EXPECT_EQ(process.outcome().problem, (m_folder / "absent").string() + ": No such file or directory");
  SolverCommand homeless = shell("");
  homeless.workingFolder = (m_folder / "nowhere").string();
  homeless.outputFile.clear();
  homeless.errorFile.clear();
  EXPECT_EQ(run(homeless).end, SolverEnd::NotStarted);
}

TEST_F(SolverProcessTest, TwoProcesses_RunSideBySide) {
  SolverCommand first = shell("sleep 0.4; exit 1");
  SolverCommand second = shell("sleep 0.4; exit 2");
  second.outputFile.clear();
  second.errorFile.clear();
  const auto began = std::chrono::steady_clock::now();
  SolverProcess one(first);
  SolverProcess two(second);
  ASSERT_TRUE(one.start() && two.start());
  bool oneEnded = false;
  bool twoEnded = false;
  while (!oneEnded || !twoEnded) {
    SolverProcess::waitForAny({&one, nullptr, &two}, milliseconds(10000));
    oneEnded = one.poll();
    twoEnded = two.poll();
  }
  EXPECT_LT(std::chrono::steady_clock::now() - began, milliseconds(750));
  EXPECT_EQ(one.outcome().exitCode, 1);
  EXPECT_EQ(two.outcome().exitCode, 2);
}

TEST_F(SolverProcessTest, WaitForAny_WithNothingRunning_ReturnsAtOnce) {
  const auto began = std::chrono::steady_clock::now();
  SolverProcess::waitForAny({nullptr}, milliseconds(5000));
  EXPECT_LT(std::chrono::steady_clock::now() - began, milliseconds(1000));
}

TEST_F(SolverProcessTest, FindProgram_LooksWhereItIsTold) {
  std::ofstream(m_folder / "run" / "tool") << "#!/bin/sh\n";
  std::ofstream(m_folder / "run" / "data") << "x";
  fs::permissions(m_folder / "run" / "tool", fs::perms::owner_all);
  const std::string run = (m_folder / "run").string();
  EXPECT_EQ(findProgram("tool", "/", "/nowhere::" + run).value_or(""), run + "/tool");
  EXPECT_EQ(findProgram("run/tool", m_folder.string(), "").value_or(""), m_folder.string() + "/run/tool");
  EXPECT_EQ(findProgram(run + "/tool", "/", "").value_or(""), run + "/tool");
  EXPECT_FALSE(findProgram("data", "/", run).has_value());
  EXPECT_FALSE(findProgram("run", "/", m_folder.string()).has_value());
  EXPECT_FALSE(findProgram("tool", run, ":").has_value());
  EXPECT_FALSE(findProgram("", run, run).has_value());
}

} // namespace
} // namespace EmbeddedHost
