#include "testing/RecordingProgress.h"

#include "HostModel/NullProgress.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace HostTesting {
namespace {

using Lines = std::vector<std::string>;
using Counts = std::vector<std::uint32_t>;
using Tools::Progress::AdditionalProgressNone;

TEST(RecordingProgressTest, EveryCall_IsRecordedInOrder) {
  RecordingProgress progress;
  progress.start();
  progress.start(0);
  progress.setText("Loading");
  progress.pushLevel(3);
  progress.advance(1, AdditionalProgressNone::shared());
  progress.advance(2, AdditionalProgressNone());
  progress.setNumberOfSteps(-4);
  progress.setPosition(5);
  progress.isRunning();
  progress.reset();
  progress.finish();
  EXPECT_EQ(progress.texts(), Lines({"start()", "start(0)", "setText(\"Loading\")", "pushLevel(3)",
                                     "advance(1, none)", "advance(2, other)", "setNumberOfSteps(-4)",
                                     "setPosition(5)", "isRunning()", "reset()", "finish()"}));
}

TEST(RecordingProgressTest, Actions_LeaveOutTheQuery) {
  RecordingProgress progress;
  progress.isRunning();
  progress.start();
  progress.isRunning();
  EXPECT_EQ(progress.actions(), Lines({"start()"}));
}

TEST(RecordingProgressTest, Running_FromStartToFinish) {
  RecordingProgress progress;
  EXPECT_FALSE(progress.isRunning());
  progress.start();
  EXPECT_TRUE(progress.isRunning());
  progress.finish();
  EXPECT_FALSE(progress.isRunning());
  progress.start(7);
  EXPECT_TRUE(progress.isRunning());
}

TEST(RecordingProgressTest, StepCounts_AreThoseBeforeTheCall) {
  RecordingProgress progress;
  progress.pushLevel(4);
  progress.stepCounts.back() = 9;
  progress.setText("a");
  progress.reset();
  progress.setText("b");
  ASSERT_EQ(progress.calls().size(), 4U);
  EXPECT_EQ(progress.calls()[0].stepCounts, Counts());
  EXPECT_EQ(progress.calls()[1].stepCounts, Counts({9}));
  EXPECT_EQ(progress.calls()[2].stepCounts, Counts({9}));
  EXPECT_EQ(progress.calls()[3].stepCounts, Counts());
}

TEST(RecordingProgressTest, ThrowFromFinish_ThrowsAndStillRuns) {
  RecordingProgress progress;
  progress.start();
  progress.throwFromFinish(true);
  std::string message;
  try {
    progress.finish();
  } catch (const std::runtime_error &error) {
    message = error.what();
  }
  EXPECT_EQ(message, "injected fault");
  EXPECT_TRUE(progress.isRunning());
  progress.throwFromFinish(false);
  progress.finish();
  EXPECT_FALSE(progress.isRunning());
}

TEST(RecordingProgressTest, Clear_ForgetsTheCallsOnly) {
  RecordingProgress progress;
  progress.start();
  progress.clear();
  EXPECT_TRUE(progress.calls().empty());
  EXPECT_TRUE(progress.isRunning());
}

} // namespace
} // namespace HostTesting
