#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

// What Ctrl-C, signals, a suspension and a reader who goes away do to a run, and that the same command goes on.

namespace {

using std::chrono::milliseconds;

// A study of four rows whose solver is a script; row x waits until the file "go" is there, unless x is 1.
class InterruptionsTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder.write("in.txt.template", "{{Box.x}}\n");
    m_folder.writeProgram("solve.sh", "#!/bin/sh\nread x < in.txt\necho $x >> \"$STARTED\"\n"
                                      "while [ $x != 1 ] && [ ! -e \"$STARTED.go\" ]; do sleep 0.05; done\n"
                                      "echo \"y = $x\"\n");
    writeStudy("10 min");
  }

  void writeStudy(const std::string &timeLimit) const {
    m_folder.write("box.study.yaml", "version: 1\nmodel: {Box: {x: 1, y: {result: true}}}\n"
                                     "solver:\n  templates: [{from: in.txt.template, to: in.txt}]\n"
                                     "  command: [./solve.sh]\n  timeout: " +
                                         timeLimit +
                                         "\n  results: {Box.y: {pattern: '^y = (.*)$'}}\n"
                                         "study:\n  target: maximise\n  cost: \"%Box.y%\"\n"
                                         "  inputs: [Box.x]\n  outputs: [Box.y]\n"
                                         "  variants: {grid: {Box.x: [2, 3, 4]}}\n");
  }

  std::map<std::string, std::string> environment() const { return {{"STARTED", m_folder.file("started")}}; }
  // Whoever runs the tests may ignore signals, which a program inherits.
  std::unique_ptr<CommandRun> start(const std::vector<std::string> &before = {
                                        "/usr/bin/env", "--default-signal=HUP,INT,TERM"}) const {
    return std::make_unique<CommandRun>(
        m_folder, std::vector<std::string>{"run", "box.study.yaml", "-j", "2"}, environment(), before);
  }
  // The baseline is done, and two rows run.
  bool isBusy() const { return waitForLines(m_folder.path() / "started", 3); }
  void letGo() const { m_folder.write("started.go", ""); }
  bool waitForMessage(const std::string &text) const {
    for (int attempt = 0; attempt < 1000; ++attempt) {
      if (m_folder.read("command.err").find(text) != std::string::npos) {
        return true;
      }
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }
  // The same command goes on, and no row that was finished is solved again.
  void expectResumable(std::size_t starts) const {
    letGo();
    const CommandResult resumed = runCommand(m_folder, {"run", "box.study.yaml"}, environment());
    EXPECT_EQ(resumed.exitCode, 0) << resumed.messages;
    EXPECT_NE(resumed.output.find("* Best: row 3, Variant 3, cost 4 (the baseline: 1)\n4 rows: 4 ok."),
              std::string::npos)
        << resumed.output;
    EXPECT_EQ(linesOf(m_folder.read("started")).size(), starts);
  }

  TemporaryFolder m_folder;
};

TEST_F(InterruptionsTest, CtrlC_FinishesWhatRunsAndSaysSo) {
  const auto command = start();
  ASSERT_TRUE(isBusy());
  command->sendSignal(SIGINT);
  EXPECT_TRUE(waitForMessage("Stopping when the rows that run are finished; Ctrl-C again ends them now.\n"));
  letGo();
  const CommandResult result = command->wait();
  EXPECT_EQ(result.exitCode, 130) << result.messages;
  EXPECT_NE(result.output.find("4 rows: 3 ok, 1 not solved."), std::string::npos) << result.output;
  EXPECT_NE(result.messages.find("Interrupted: run the same command again to go on; solved rows are kept.\n"),
            std::string::npos);
  expectResumable(4);
}

TEST_F(InterruptionsTest, CtrlCTwice_EndsWhatRuns) {
  const auto command = start();
  ASSERT_TRUE(isBusy());
  command->sendSignal(SIGINT);
  ASSERT_TRUE(waitForMessage("Stopping when"));
  command->sendSignal(SIGINT);
  const CommandResult result = command->wait();
  EXPECT_EQ(result.exitCode, 130) << result.messages;
  EXPECT_NE(result.output.find("4 rows: 1 ok, 2 failed, 1 not solved."), std::string::npos) << result.output;
  expectResumable(6);
}

// Somebody reads the project all the time, so that a command has to wait before it can write.
TEST_F(InterruptionsTest, CtrlC_EndsACommandThatStartsNoSolverAtOnce) {
  letGo();
  ASSERT_EQ(runCommand(m_folder, {"run", "box.study.yaml"}, environment()).exitCode, 0);
  const int file = ::open(m_folder.file("box.optstudy").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(file, 0);
  struct flock reading = {};
  reading.l_type = F_RDLCK;
  reading.l_whence = SEEK_SET;
  reading.l_start = 0x40000002; // where SQLite keeps the locks of readers
  reading.l_len = 510;
  ASSERT_EQ(::fcntl(file, F_SETLK, &reading), 0);
  CommandRun command(m_folder, {"cost", "box.optstudy", "%Box.y% * 2.0"}, {},
                     {"/usr/bin/env", "--default-signal=HUP,INT,TERM"});
  for (int attempt = 0; attempt < 1000 && !m_folder.has("box.optstudy-journal"); ++attempt) {
    std::this_thread::sleep_for(milliseconds(10));
  }
  ASSERT_TRUE(m_folder.has("box.optstudy-journal"));
  command.sendSignal(SIGINT);
  const CommandResult result = command.wait();
  EXPECT_EQ(result.signal, SIGINT) << result.exitCode << result.messages;
  ::close(file);
  EXPECT_EQ(runCommand(m_folder, {"cost", "box.optstudy"}).output, "%Box.y%\n");
}

TEST_F(InterruptionsTest, TerminationAndHangUp_EndWhatRunsWith143) {
  for (const int number : {SIGTERM, SIGHUP}) {
    m_folder.write("started", "");
    const auto command = start();
    ASSERT_TRUE(waitForLines(m_folder.path() / "started", number == SIGTERM ? 3 : 2));
    command->sendSignal(number);
    const CommandResult result = command->wait();
    EXPECT_EQ(result.exitCode, 143) << number << ": " << result.messages;
    EXPECT_NE(result.output.find("4 rows: 1 ok, 2 failed, 1 not solved."), std::string::npos)
        << result.output;
  }
  m_folder.write("started", "");
  expectResumable(3);
}

TEST_F(InterruptionsTest, HangUpThatIsIgnored_StaysIgnored) {
  const auto command = start({"/bin/sh", "-c", "trap '' HUP; exec \"$@\"", "sh"});
  ASSERT_TRUE(isBusy());
  command->sendSignal(SIGHUP);
  letGo();
  const CommandResult result = command->wait();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
}

TEST_F(InterruptionsTest, SuspensionLongerThanTheTimeLimit_FailsNoRow) {
  writeStudy("5 s");
  const auto command = start();
  ASSERT_TRUE(isBusy());
  command->sendSignal(SIGSTOP);
  std::this_thread::sleep_for(milliseconds(6000));
  letGo(); // a solver that went on meanwhile had been ended by now
  command->sendSignal(SIGCONT);
  const CommandResult result = command->wait();
  EXPECT_EQ(result.exitCode, 0) << result.output << result.messages;
  EXPECT_NE(result.output.find("4 rows: 4 ok."), std::string::npos) << result.output;
}

// Without a suspension the same time ends the rows, so that the test above can fail.
TEST_F(InterruptionsTest, Control_TimeLimitWithoutASuspension_FailsRows) {
  writeStudy("1 s");
  const CommandResult result = start()->wait();
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_NE(result.output.find("failed: time limit: ended after 1 s"), std::string::npos) << result.output;
}

// The reader has gone before the first line is written.
const char *const kUnread =
    "{ while [ ! -e closed ]; do sleep 0.05; done; \"$@\"; echo $? > code; } | { exec 0<&-; : > "
    "closed; }; while [ ! -e code ]; do sleep 0.05; done";

TEST_F(InterruptionsTest, ResultsThatNobodyReads_EndSilently) {
  letGo();
  ASSERT_EQ(start()->wait().exitCode, 0);
  CommandRun command(m_folder, {"show", "box.study.yaml"}, environment(), {"/bin/sh", "-c", kUnread, "sh"});
  EXPECT_EQ(command.wait().messages, "");
  EXPECT_EQ(m_folder.read("code"), "0\n");
}

TEST_F(InterruptionsTest, MessagesThatNobodyReads_LoseNoRow) {
  letGo();
  const auto command =
      start({"/bin/sh", "-c",
             "{ while [ ! -e closed ]; do sleep 0.05; done; \"$@\" 2>&1; echo $? > code; } | { exec "
             "0<&-; : > closed; }; while [ ! -e code ]; do sleep 0.05; done",
             "sh"});
  command->wait();
  EXPECT_EQ(m_folder.read("code"), "0\n");
  const CommandResult status = runCommand(m_folder, {"status", "box.optstudy"});
  EXPECT_NE(status.output.find("4 rows: 4 ok\n"), std::string::npos) << status.output;
}

TEST_F(InterruptionsTest, ResultsThatCannotBeWritten_AreAnError) {
  letGo();
  ASSERT_EQ(start()->wait().exitCode, 0);
  CommandRun command(m_folder, {"show", "box.study.yaml"}, environment(),
                     {"/bin/sh", "-c", "\"$@\" > /dev/full", "sh"});
  const CommandResult result = command.wait();
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.messages, "The results could not be written to standard output: is the disk full?\n");
}

} // namespace
