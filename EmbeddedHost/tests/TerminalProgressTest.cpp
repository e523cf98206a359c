#include "EmbeddedHost/TerminalProgress.h"

#include "HostModel/NullProgress.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

class TerminalProgressTest : public testing::Test {
protected:
  std::string output;
  double now = 0.0;
  const Tools::Progress::AdditionalProgressNone &none = Tools::Progress::AdditionalProgressNone::shared();

  TerminalProgress::Surroundings surroundings(int columns = 80) {
    return {[this](std::string_view text) { output += text; }, [this] { return now; }, columns};
  }
};

TEST_F(TerminalProgressTest, Bar_ShowsCountRateAndTimeLeft) {
  TerminalProgress progress(ProgressStyle::Bar, surroundings());
  progress.start();
  progress.setNumberOfSteps(4);
  output.clear();
  now = 2.0;
  progress.advance(1, none);
  EXPECT_EQ(output, "\r\033[K[#####---------------] 1/4  0.5/s  6 s left");
}

TEST_F(TerminalProgressTest, Bar_IsNotRedrawnTooOften_ButAtTheEnd) {
  TerminalProgress progress(ProgressStyle::Bar, surroundings());
  progress.start();
  progress.setNumberOfSteps(1000);
  output.clear();
  now = 0.05;
  progress.advance(1, none);
  EXPECT_EQ(output, "");
  now = 100.0;
  progress.setPosition(1000);
  output.clear();
  progress.finish();
  EXPECT_EQ(output, "\r\033[K[####################] 1000/1000  10.0/s  0 s left\n");
  EXPECT_FALSE(progress.isRunning());
}

TEST_F(TerminalProgressTest, Bar_IsCutToTheTerminal_NotInsideACharacter) {
  TerminalProgress progress(ProgressStyle::Bar, surroundings(6));
  progress.start();
  progress.setText("abcd\u00e9fgh");
  EXPECT_EQ(output, "\r\033[Kabcd");
}

TEST_F(TerminalProgressTest, Lines_ShowTextsAndCountsOnceASecond) {
  TerminalProgress progress(ProgressStyle::Lines, surroundings());
  progress.start();
  progress.setText("Solving");
  progress.setNumberOfSteps(3);
  now = 0.5;
  progress.advance(1, none);
  now = 2.0;
  progress.advance(1, none);
  EXPECT_EQ(output, "Solving\nSolving  2/3  1.0/s  1 s left\n");
}

TEST_F(TerminalProgressTest, Quiet_ShowsNothing) {
  {
    TerminalProgress progress(ProgressStyle::Quiet, surroundings());
    progress.start();
    progress.setText("Solving");
    progress.setNumberOfSteps(3);
    progress.advance(3, none);
    progress.finish();
  }
  EXPECT_EQ(output, "");
}

// What a task shows on a standard error of its own, with the style that fits it.
std::string shownOn(int end, int otherEnd, const char *terminal) {
  const pid_t child = fork();
  if (child == 0) {
    setenv("TERM", terminal, 1);
    dup2(end, STDERR_FILENO);
    TerminalProgress progress(ProgressStyle::Automatic);
    progress.start();
    progress.setText("Solving");
    progress.setNumberOfSteps(2);
    progress.setPosition(2);
    progress.finish();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  close(end);
  char text[4096] = {};
  const ssize_t size = read(otherEnd, text, sizeof text);
  close(otherEnd);
  return size < 0 ? "nothing" : std::string(text, static_cast<std::size_t>(size));
}

std::string shownOnTerminal(const char *terminal) {
  int master = -1;
  int slave = -1;
  const winsize size = {24, 30, 0, 0};
  EXPECT_EQ(openpty(&master, &slave, nullptr, nullptr, &size), 0);
  return shownOn(slave, master, terminal);
}

TEST_F(TerminalProgressTest, Automatic_OnATerminal_IsABarCutToItsWidth) {
  const std::string shown = shownOnTerminal("xterm");
  EXPECT_EQ(shown.substr(0, 11), "\r\033[KSolving");
  const std::string last = shown.substr(shown.rfind("\033[K") + 3);
  EXPECT_EQ(last.substr(0, 26), "[####################] 2/2");
  EXPECT_LE(last.find('\r'), 30U);
  EXPECT_EQ(last.substr(last.size() - 2), "\r\n");
}

TEST_F(TerminalProgressTest, Automatic_OnATerminalThatCannotRedraw_IsLines) {
  EXPECT_EQ(shownOnTerminal("dumb").substr(0, 9), "Solving\r\n");
}

TEST_F(TerminalProgressTest, Automatic_OnAPipe_IsLines) {
  int ends[2] = {};
  ASSERT_EQ(pipe(ends), 0);
  const std::string shown = shownOn(ends[1], ends[0], "xterm");
  EXPECT_EQ(shown.substr(0, 8), "Solving\n");
  EXPECT_EQ(shown.find_first_of("\r\033"), std::string::npos);
  EXPECT_NE(shown.find("Solving  2/2"), std::string::npos);
}

TEST_F(TerminalProgressTest, NestedRanges_DivideAStepOfTheRangeAround) {
  TerminalProgress progress(ProgressStyle::Quiet, surroundings());
  progress.start();
  progress.pushLevel(4);
  progress.setPosition(2);
  progress.pushLevel(2);
  EXPECT_DOUBLE_EQ(progress.fraction(), 0.5);
  progress.setPosition(1);
  EXPECT_DOUBLE_EQ(progress.fraction(), 0.625);
}

TEST_F(TerminalProgressTest, StepCountsSetByTheLibrary_AreUsed) {
  TerminalProgress progress(ProgressStyle::Quiet, surroundings());
  progress.start();
  progress.start(0);
  EXPECT_TRUE(progress.stepCounts.empty());
  Tools::setInnermostStepCount(progress, 0);
  EXPECT_DOUBLE_EQ(progress.fraction(), 0.0);
  Tools::setInnermostStepCount(progress, 8);
  ASSERT_EQ(progress.stepCounts.size(), 1U);
  progress.advance(2, none);
  EXPECT_DOUBLE_EQ(progress.fraction(), 0.25);
}

TEST_F(TerminalProgressTest, Reset_ForgetsRangesAndGoesOnRunning) {
  TerminalProgress progress(ProgressStyle::Quiet, surroundings());
  progress.start();
  progress.pushLevel(4);
  progress.advance(4, none);
  progress.reset();
  EXPECT_TRUE(progress.isRunning());
  EXPECT_TRUE(progress.stepCounts.empty());
  EXPECT_DOUBLE_EQ(progress.fraction(), 0.0);
}

TEST_F(TerminalProgressTest, LongTimes_AreShownInMinutesAndHours) {
  TerminalProgress progress(ProgressStyle::Lines, surroundings());
  progress.start();
  progress.setNumberOfSteps(100);
  now = 10.0;
  progress.advance(10, none);
  now = 100.0;
  progress.setPosition(1);
  EXPECT_EQ(output, "0/100\n10/100  1.0/s  1 min 30 s left\n1/100  0.0/s  2 h 45 min left\n");
}

TEST_F(TerminalProgressTest, DestructionOfARunningTask_EndsItsLine) {
  {
    TerminalProgress progress(ProgressStyle::Bar, surroundings());
    progress.start();
    progress.setText("Solving");
  }
  EXPECT_EQ(output, "\r\033[KSolving\r\033[KSolving\n");
}

} // namespace
} // namespace EmbeddedHost
