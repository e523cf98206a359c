#include "Workbench/src/ProgressText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

ProgressState busy() {
  ProgressState state;
  state.total = 50;
  state.done = 12;
  state.failures = {{"exit code", 1}, {"time limit", 2}};
  state.running = 2;
  state.seconds = 4.0;
  state.bestCost = 21.5;
  return state;
}

TEST(ProgressTextTest, Text_SaysEverything) {
  EXPECT_EQ(progressText(busy()),
            "12/50, 3 failed (1 exit code, 2 time limit), 2 running, 3.0/s, 13 s left, best 21.5");
}

TEST(ProgressTextTest, NothingFinished_HasNeitherRateNorTimeLeft) {
  ProgressState state;
  state.total = 50;
  state.running = 2;
  state.seconds = 4.0;
  EXPECT_EQ(progressText(state), "0/50, 2 running");
}

TEST(ProgressTextTest, Stopping_HasNoTimeLeft) {
  ProgressState state = busy();
  state.failures.clear();
  state.isStopping = true;
  EXPECT_EQ(progressText(state), "12/50, stopping, 2 running, 3.0/s, best 21.5");
  state.running = 0;
  EXPECT_EQ(progressText(state), "12/50, stopping, 3.0/s, best 21.5");
}

TEST(ProgressTextTest, RatesAndTimes_ReadWell) {
  const struct {
    double seconds; // for 12 of 50 rows
    const char *text;
  } rows[] = {{0.01, "12/50, 1200/s, 1 s left"},      {1.0, "12/50, 12/s, 4 s left"},
              {12.0, "12/50, 1.0/s, 38 s left"},      {24.0, "12/50, 30/min, 2 min left"},
              {720.0, "12/50, 1.0/min, 38 min left"}, {7200.0, "12/50, 6.0/h, 6 h 20 min left"}};
  for (const auto &row : rows) {
    ProgressState state;
    state.total = 50;
    state.done = 12;
    state.seconds = row.seconds;
    EXPECT_EQ(progressText(state), row.text);
  }
}

TEST(ProgressTextTest, Bar_FitsTheWidthAndLeavesTheLeastUsefulOutFirst) {
  const struct {
    std::size_t width;
    const char *text;
  } rows[] = {
      {140,
       "[#########...............................] 12/50, 3 failed (1 exit code, 2 time limit), 2 running, "
       "3.0/s, 13 s left, best 21.5"},
      {80, "[#####................] 12/50, 3 failed, 2 running, 3.0/s, 13 s left, best 21.5"},
      {66, "[###...........] 12/50, 3 failed, 2 running, 13 s left, best 21.5"},
      {55, "[###...........] 12/50, 3 failed, 13 s left, best 21.5"},
      {42, "[##..........] 12/50, 3 failed, best 21.5"},
      {30, "[##.........] 12/50, 3 failed"},
      {20, "12/50, 3 failed"},
      {6, "12/50"},
      {3, "12"},
  };
  for (const auto &row : rows) {
    const std::string bar = progressBar(busy(), row.width);
    EXPECT_EQ(bar, row.text) << row.width;
    EXPECT_LT(bar.size(), row.width);
  }
}

TEST(ProgressTextTest, Bar_NothingToSolve_IsNone) {
  EXPECT_EQ(progressBar(ProgressState(), 80), "0/0");
}

} // namespace
} // namespace Workbench
