#include "EmbeddedHost/Project.h"
#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <map>
#include <sstream>

namespace {

using EmbeddedHost::RunStatus;
using Lines = std::vector<std::string>;

// Four rows, x = 1 to 4, whose solver notes each start in the file "started" and gives x + 10.
class RunRecordsTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder.write("in.txt.template", "{{Box.x}}\n");
    writeSolver("");
    m_folder.write("box.study.yaml", R"yaml(version: 1
title: Box
model:
  Box:
    x: 1
    sum: {result: true}
solver:
  templates: [{from: in.txt.template, to: in.txt}]
  command: [./solve.sh]
  results:
    Box.sum: {file: result.txt, pattern: '^sum = (.*)$'}
study:
  target: maximise
  cost: "%Box.sum%"
  inputs: [Box.x]
  outputs: [Box.sum]
  variants: {grid: {Box.x: [1, 2, 3, 4]}}
)yaml");
  }

  void writeSolver(const std::string &commands) const {
    m_folder.writeProgram("solve.sh", "#!/bin/sh\nread x < in.txt\necho \"$x\" >> \"$STARTED\"\n" + commands +
                                          "\necho \"sum = $((x + 10))\" > result.txt\n");
  }

  std::map<std::string, std::string> environment() const {
    const char *options = std::getenv("ASAN_OPTIONS");
    // Looking for leaks is not possible while something else traces the program.
    return {{"STARTED", m_folder.file("started")},
            {"ASAN_OPTIONS", (options == nullptr ? "" : std::string(options) + ":") + "detect_leaks=0"}};
  }

  CommandResult run() const {
    return runCommand(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
  }
  Lines started() const { return linesOf(m_folder.read("started")); }

  // Solves until that many solvers were started by all, and is killed then.
  void killWhileSolving(const char *parallel, std::size_t starts) const {
    CommandRun command(m_folder, {"run", "box.study.yaml", "-j", parallel}, environment());
    ASSERT_TRUE(waitForLines(m_folder.path() / "started", starts));
    command.sendSignal(SIGKILL);
    EXPECT_EQ(command.wait().signal, SIGKILL);
  }

  struct Stored {
    RunStatus status = RunStatus::None;
    std::string sum;
  };
  // What is in the file for a row, as whoever only reads it sees it.
  Stored stored(const std::string &row) const {
    std::string problem;
    const auto project =
        EmbeddedHost::Project::open(m_folder.file("box.optstudy"), EmbeddedHost::OpenMode::ReadOnly, problem);
    if (project == nullptr) {
      ADD_FAILURE() << problem;
      return {};
    }
    EntityModel::ChangeManager &versions = project->changeManager();
    EntityModel::ModelVersion *version = versions.findVersion(row, nullptr);
    versions.setCurrentVersion(version, nullptr, false, nullptr, true);
    EntityModel::Entity *box = project->attribute(project->rootEntity(), "Entities")->asList()->getEntity(0);
    return {project->runRecord(*version).status, project->attribute(box, "sum")->getValueAsString()};
  }

  TemporaryFolder m_folder;
};

TEST_F(RunRecordsTest, KilledWhileASolverRuns_TheRowIsRunningInTheFile_WithoutItsFormerResult) {
  ASSERT_EQ(run().exitCode, 0);
  EXPECT_EQ(stored("Variant 2").sum, "13");
  writeSolver("if [ $x = 3 ]; then sleep 60; fi");
  killWhileSolving("1", 4 + 3);
  EXPECT_EQ(stored("Variant 1").status, RunStatus::Ok);
  EXPECT_EQ(stored("Variant 1").sum, "12");
  EXPECT_EQ(stored("Variant 2").status, RunStatus::Running);
  EXPECT_EQ(stored("Variant 2").sum, "");
  EXPECT_EQ(stored("Variant 3").status, RunStatus::Ok); // of the first solve
  EXPECT_EQ(stored("Variant 3").sum, "14");
}

TEST_F(RunRecordsTest, SameCommandAfterAKill_RunsOnlyWhatWasNotFinished) {
  writeSolver("if [ $x = 3 ] && [ ! -e \"$STARTED.killed\" ]; then sleep 60; fi");
  killWhileSolving("1", 3);
  m_folder.write("started.killed", "");
  const CommandResult resumed = run();
  EXPECT_EQ(resumed.exitCode, 0) << resumed.messages;
  EXPECT_EQ(started(), (Lines{"1", "2", "3", "3", "4"}));
  EXPECT_NE(resumed.output.find("4 rows: 4 ok."), std::string::npos) << resumed.output;
}

TEST_F(RunRecordsTest, RowThatIsNotSolvedAgainYet_IsShownAsLost) {
  writeSolver("if [ $x -ge 3 ]; then sleep 60; fi");
  killWhileSolving("2", 4);
  m_folder.write("started", "");
  writeSolver("sleep 0.5");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
  // The changed solver has to solve all rows again; the first three are solved or about to be.
  ASSERT_TRUE(waitForLines(m_folder.path() / "started", 3));
  command.sendSignal(SIGINT);
  const CommandResult interrupted = command.wait();
  EXPECT_EQ(interrupted.exitCode, 130) << interrupted.messages;
  EXPECT_NE(interrupted.output.find("failed: lost: the program ended while it ran\n"), std::string::npos)
      << interrupted.output;
  EXPECT_NE(interrupted.output.find("4 rows: 3 ok, 1 failed."), std::string::npos) << interrupted.output;
  EXPECT_EQ(run().exitCode, 0);
  EXPECT_EQ(started(), (Lines{"1", "2", "3", "4"}));
}

TEST_F(RunRecordsTest, EndedByTheUser_IsRecordedAsCancelledWithoutAResult) {
  writeSolver("sleep 60");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
  ASSERT_TRUE(waitForLines(m_folder.path() / "started", 1));
  command.sendSignal(SIGINT);
  command.sendSignal(SIGTERM);
  const CommandResult result = command.wait();
  EXPECT_EQ(result.exitCode, 130) << result.messages;
  EXPECT_NE(result.output.find("failed: cancelled\n"), std::string::npos) << result.output;
  EXPECT_EQ(stored("Base").status, RunStatus::Failed);
  EXPECT_EQ(stored("Base").sum, "");
}

// The system calls of a command and of everything that it starts, in order of their completion.
Lines completedCalls(const std::string &log) {
  Lines calls;
  std::map<std::string, std::string> begun;
  for (const std::string &line : linesOf(log)) {
    const std::string process = line.substr(0, line.find(' '));
    const std::size_t cut = line.find(" <unfinished ...>");
    const std::size_t resumed = line.find(" resumed>");
    if (cut != std::string::npos) {
      begun[process] = line.substr(0, cut);
    } else if (resumed != std::string::npos) {
      calls.push_back(begun[process] + line.substr(resumed + 9));
    } else {
      calls.push_back(line);
    }
  }
  return calls;
}

std::size_t find(const Lines &calls, const std::string &call, const std::string &argument, std::size_t from) {
  for (std::size_t index = from; index < calls.size(); ++index) {
    if (calls[index].find(" " + call + "(") != std::string::npos &&
        calls[index].find(argument) != std::string::npos) {
      return index;
    }
  }
  return calls.size();
}

// How many solvers were started after what the file says of their row had reached the disk, and how many rows were
// recorded after their result had.
struct InOrder {
  int begun = 0;
  int recorded = 0;
};

InOrder inOrder(const Lines &calls) {
  InOrder count;
  std::size_t at = 0;
  while ((at = find(calls, "mkdir", "/run.new\"", at)) < calls.size()) {
    const std::size_t begun = find(calls, "fdatasync", "/box.optstudy>", at);
    const std::size_t unlinked = find(calls, "unlink", "/box.optstudy-journal\"", begun);
    const std::size_t started = find(calls, "execve", "/solve.sh\"", at);
    const std::size_t synced = find(calls, "fsync", "/run/result.txt>", started);
    const std::size_t recorded = find(calls, "fdatasync", "/box.optstudy>", started);
    count.begun += unlinked < started && started < calls.size() ? 1 : 0;
    count.recorded += synced < recorded && recorded < calls.size() ? 1 : 0;
    at = started;
  }
  return count;
}

TEST_F(RunRecordsTest, BegunRun_IsOnTheDiskBeforeItsSolverStarts) {
  const std::string log = m_folder.file("calls");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment(),
                     {"strace", "-f", "-y", "-o", log, "-e", "trace=mkdir,execve,fsync,fdatasync,unlink"});
  const CommandResult result = command.wait();
  ASSERT_EQ(result.exitCode, 0) << result.messages;
  Lines calls = completedCalls(m_folder.read("calls"));
  const InOrder counted = inOrder(calls);
  EXPECT_EQ(counted.begun, 4) << m_folder.read("calls");
  EXPECT_EQ(counted.recorded, 4);

  // Without the commits before the starts the same check finds nothing in order.
  Lines without;
  bool isBeginning = false;
  for (const std::string &call : calls) {
    isBeginning = (isBeginning || call.find("/run.new\"") != std::string::npos) &&
                  call.find(" execve(") == std::string::npos;
    if (!isBeginning || call.find("/box.optstudy>") == std::string::npos) {
      without.push_back(call);
    }
  }
  EXPECT_LT(without.size(), calls.size());
  EXPECT_EQ(inOrder(without).begun, 0);
}

TEST_F(RunRecordsTest, AfterAKill_WhoeverLooksSeesTheRowAsLost) {
  writeSolver("if [ $x = 3 ]; then sleep 60; fi");
  killWhileSolving("1", 3);
  const CommandResult shown = runCommand(m_folder, {"show", "box.optstudy"});
  EXPECT_NE(shown.output.find("failed: lost: the program ended while it ran"), std::string::npos)
      << shown.output;
  EXPECT_EQ(shown.output.find("running"), std::string::npos) << shown.output;
}

TEST_F(RunRecordsTest, WhileASolverRuns_WhoeverLooksSeesTheRowAsRunning) {
  writeSolver("if [ $x = 3 ]; then sleep 60; fi");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
  ASSERT_TRUE(waitForLines(m_folder.path() / "started", 3));
  const CommandResult shown = runCommand(m_folder, {"show", "box.optstudy"});
  EXPECT_NE(shown.output.find("running"), std::string::npos) << shown.output;
  command.sendSignal(SIGTERM);
  EXPECT_EQ(command.wait().exitCode, 143);
}

} // namespace
