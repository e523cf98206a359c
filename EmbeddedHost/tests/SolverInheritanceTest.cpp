#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <random>
#include <sstream>
#include <unistd.h>

// What a solver is given is what was meant for it, and nothing else.

namespace EmbeddedHost {
namespace {

using std::chrono::milliseconds;

class SolverInheritanceTest : public SolverRunFixture {
protected:
  // Texts that end in a zero each.
  static std::vector<std::string> divide(const std::string &output) {
    std::vector<std::string> texts;
    std::size_t begin = 0;
    for (std::size_t end = output.find('\0'); end != std::string::npos; end = output.find('\0', begin)) {
      texts.push_back(output.substr(begin, end - begin));
      begin = end + 1;
    }
    return texts;
  }
  bool arriveUnchanged(const std::vector<std::string> &arguments) {
    SolverCommand command = solver({"arguments"});
    command.arguments.insert(command.arguments.end(), arguments.begin(), arguments.end());
    return divide(outputOf(command)) == command.arguments;
  }
};

TEST_F(SolverInheritanceTest, Files_AreTheThreeStandardStreams) {
  const int leaked = ::dup2(STDIN_FILENO, 77); // without the mark that would close it by itself
  ASSERT_EQ(leaked, 77);
  EXPECT_EQ(outputOf(solver({"files"})), "0\n1\n2\n");
  ::close(leaked);
}

// The control of the case above: this is what a leak looks like.
TEST_F(SolverInheritanceTest, Control_FilesOfAProcessThatInheritsMore_AreSeen) {
  SolverCommand command = solver({});
  command.program = "/bin/sh";
  command.arguments = {"sh", "-c", "exec 5</dev/null; exec \"$0\" files", OPTSTUDY_MISBEHAVING_SOLVER};
  EXPECT_EQ(outputOf(command), "0\n1\n2\n5\n");
}

TEST_F(SolverInheritanceTest, Arguments_OfHostileTexts_ArriveUnchanged) {
  const std::vector<std::string> hostile = {"",
                                            " ",
                                            "a b",
                                            "$(touch x)",
                                            "`touch x`",
                                            "; rm -rf x",
                                            "* ? [a]",
                                            "'",
                                            "\"",
                                            "\\",
                                            "\n",
                                            "\t\r",
                                            "--help",
                                            "-",
                                            "%s%n",
                                            "\xC3\xA4\xE2\x82\xAC",
                                            "\xFF\xFE",
                                            "\x1B[2J",
                                            "a=b",
                                            "${HOME}",
                                            std::string(100000, 'x')};
  int violations = 0;
  for (const std::string &text : hostile) {
    const bool isRight = arriveUnchanged({text}) && arriveUnchanged({text, text, ""});
    violations += isRight ? 0 : 1;
    EXPECT_TRUE(isRight) << text.substr(0, 20);
  }
  EXPECT_TRUE(arriveUnchanged(hostile));
  std::printf("%zu hostile texts, %d violations\n", hostile.size(), violations);
}

TEST_F(SolverInheritanceTest, Arguments_OfAnyBytes_ArriveUnchanged) {
  std::mt19937 random(1);
  std::uniform_int_distribution<int> bytes(1, 255);
  std::uniform_int_distribution<std::size_t> sizes(0, 30);
  int violations = 0;
  constexpr int kTrials = 200;
  for (int trial = 0; trial < kTrials; ++trial) {
    std::vector<std::string> arguments(sizes(random));
    for (std::string &argument : arguments) {
      argument.resize(sizes(random));
      std::generate(argument.begin(), argument.end(), [&] { return static_cast<char>(bytes(random)); });
    }
    violations += arriveUnchanged(arguments) ? 0 : 1;
  }
  EXPECT_EQ(violations, 0);
  std::printf("%d argument vectors of any bytes, %d violations\n", kTrials, violations);
}

TEST_F(SolverInheritanceTest, Arguments_LargerThanAMessage_ArriveUnchanged) {
  EXPECT_TRUE(arriveUnchanged(std::vector<std::string>(10, std::string(120000, 'y'))));
}

TEST_F(SolverInheritanceTest, Arguments_LargerThanTheSystemTakes_AreAProblem) {
  SolverCommand command = solver({std::string(1000000, 'z')});
  SolverProcess process(command, supervisors);
  EXPECT_FALSE(process.start());
  EXPECT_EQ(process.outcome().end, SolverEnd::NotStarted);
  EXPECT_EQ(process.outcome().problem, command.program + ": Argument list too long");
  EXPECT_EQ(run(solver({"exit", "4"})).exitCode, 4);
}

TEST_F(SolverInheritanceTest, ArgumentWithAZeroByte_IsAProblem) {
  const SolverCommand command = solver({"arguments", std::string("a\0b", 3)});
  EXPECT_EQ(run(command).problem,
            command.program + ": a program, folder, argument or variable cannot hold a zero byte");
}

TEST_F(SolverInheritanceTest, Environment_IsOursOfTheMomentAndTheOneGiven) {
  EXPECT_EQ(run(solver({"exit", "0"})).exitCode, 0); // the supervisor has an older environment
  ::setenv("SOLVER_TEST_LATER", "a b\n$(x)", 1);
  SolverCommand command = solver({"environment"});
  command.environment = {{"SOLVER_TEST_GIVEN", "=;\""}, {"OPTSTUDY_TEST_MARK", mark}};
  std::vector<std::string> seen = divide(outputOf(command));
  std::vector<std::string> expected = {"SOLVER_TEST_GIVEN==;\"", "OPTSTUDY_TEST_MARK=" + mark};
  expected.emplace_back("LC_ALL=C.UTF-8");
  if (std::getenv("OMP_NUM_THREADS") == nullptr) {
    expected.emplace_back("OMP_NUM_THREADS=1");
  }
  for (char **variable = environ; *variable != nullptr; ++variable) {
    const std::string text = *variable;
    if (text.rfind("OPTSTUDY_TEST_MARK=", 0) != 0 && text.rfind("LC_ALL=", 0) != 0) {
      expected.emplace_back(*variable);
    }
  }
  ::unsetenv("SOLVER_TEST_LATER");
  std::sort(seen.begin(), seen.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(seen, expected);
}

TEST_F(SolverInheritanceTest, WorkingFolder_GivenRelatively_IsTakenFromOurs) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory(folder / "inner");
  std::filesystem::current_path(folder);
  SolverCommand command = solver({});
  command.program = "/bin/pwd";
  command.arguments = {"pwd", "-P"};
  command.workingFolder = "inner";
  const std::string output = outputOf(command);
  std::filesystem::current_path(before);
  EXPECT_EQ(output, (folder / "inner").string() + "\n");
}

TEST_F(SolverInheritanceTest, Supervisor_IsUsedAgain) {
  const std::string first = outputOf(solver({"supervisor"}));
  int violations = 0;
  for (int trial = 0; trial < 20; ++trial) {
    violations += outputOf(solver({"supervisor"})) == first ? 0 : 1;
  }
  EXPECT_EQ(violations, 0);
  EXPECT_EQ(marked().size(), 2U);
}

TEST_F(SolverInheritanceTest, Supervisor_HasNoFileOfOurs) {
  const int leaked = ::dup2(STDIN_FILENO, 77);
  EXPECT_EQ(run(solver({"exit", "0"})).exitCode, 0);
  ::close(leaked);
  for (const Found &process : marked()) {
    const std::string files = "/proc/" + std::to_string(process.process) + "/fd";
    for (const auto &entry : std::filesystem::directory_iterator(files)) {
      const std::string target = std::filesystem::read_symlink(entry.path()).string();
      const bool isItsOwn = target == "/dev/null" || target.rfind("socket:", 0) == 0 ||
                            target.rfind("anon_inode:", 0) == 0 || target.rfind("/proc/", 0) == 0;
      EXPECT_TRUE(isItsOwn) << entry.path().filename() << " is " << target;
    }
  }
}

TEST_F(SolverInheritanceTest, Supervisor_ThatIsMissing_SaysWhere) {
  const std::string absent = (folder / "absent").string();
  ::setenv("OPTSTUDY_SUPERVISOR", absent.c_str(), 1);
  SolverProcess process(solver({"exit", "0"}));
  const bool isStarted = process.start();
  ::unsetenv("OPTSTUDY_SUPERVISOR");
  EXPECT_FALSE(isStarted);
  EXPECT_EQ(process.outcome().end, SolverEnd::NotStarted);
  EXPECT_EQ(process.outcome().problem, "optstudy-supervisor, which runs solvers, is not at " + absent +
                                           ", where the environment variable OPTSTUDY_SUPERVISOR says");
}

TEST_F(SolverInheritanceTest, Supervisor_IsFoundBesideTheRunningProgram) {
  std::string problem;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe");
  EXPECT_EQ(SolverSupervisors::findProgram(problem), (self.parent_path() / "optstudy-supervisor").string());
  EXPECT_EQ(problem, "");
}

TEST_F(SolverInheritanceTest, Supervisor_OfAnotherKind_IsAProblem) {
  SolverSupervisors wrong("/bin/true");
  SolverProcess process(solver({"exit", "0"}), wrong);
  EXPECT_FALSE(process.start());
  EXPECT_EQ(process.outcome().problem, "the solver's supervisor ended with exit code 0");
  SolverSupervisors absent((folder / "absent").string());
  SolverProcess other(solver({"exit", "0"}), absent);
  EXPECT_FALSE(other.start());
  EXPECT_EQ(other.outcome().problem,
            (folder / "absent").string() +
                ", which runs solvers, cannot be started: No such file or directory");
}

} // namespace
} // namespace EmbeddedHost
