#include "HostModel/NullProgress.h"
#include "HostModel/ToolProgress.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tools {
namespace {

using Progress::AdditionalProgressAbstract;
using Progress::AdditionalProgressNone;
using Progress::None;
using Progress::ProgressAbstract;

// Additional progress with chosen answers, which knows how often isNothing() was asked, and of what.
class ScriptedAdditional final : public AdditionalProgressAbstract {
public:
  ScriptedAdditional(bool inProgress, bool nothing) : m_isInProgress(inProgress), m_isNothing(nothing) {}

  bool isInProgress() const override { return m_isInProgress; }
  std::unique_ptr<AdditionalProgressAbstract> clone() const override { return nullptr; }
  bool equals(const AdditionalProgressAbstract & /*other*/) const override { return !m_isNothing; }
  bool continues(const AdditionalProgressAbstract & /*other*/) const override { return !m_isNothing; }
  bool isNothing(const AdditionalProgressAbstract &other) const override {
    asked.push_back(&other);
    return m_isNothing;
  }

  mutable std::vector<const AdditionalProgressAbstract *> asked;

private:
  bool m_isInProgress;
  bool m_isNothing;
};

class ScriptedProgress final : public ProgressAbstract {
public:
  ScriptedProgress(int steps, bool nothing) : m_steps(steps), m_isNothing(nothing) {}

  int stepsInProgress() const override { return m_steps; }
  std::unique_ptr<ProgressAbstract> clone() const override { return nullptr; }
  bool isRunning() const override { return true; }
  bool isFinished() const override { return true; }
  bool equals(const ProgressAbstract & /*other*/) const override { return !m_isNothing; }
  bool continues(const ProgressAbstract & /*other*/) const override { return !m_isNothing; }
  bool isNothing(const ProgressAbstract &other) const override {
    asked.push_back(&other);
    return m_isNothing;
  }

  mutable std::vector<const ProgressAbstract *> asked;

private:
  int m_steps;
  bool m_isNothing;
};

TEST(AdditionalProgressNoneTest, IsInProgress_IsFalse) {
  EXPECT_FALSE(AdditionalProgressNone().isInProgress());
  EXPECT_FALSE(AdditionalProgressNone::shared().isInProgress());
}

TEST(AdditionalProgressNoneTest, Clone_IsANewObjectOfItsClass) {
  const AdditionalProgressNone none;
  const std::unique_ptr<AdditionalProgressAbstract> copy = none.clone();
  EXPECT_NE(copy.get(), &none);
  EXPECT_NE(dynamic_cast<const AdditionalProgressNone *>(copy.get()), nullptr);
}

TEST(AdditionalProgressNoneTest, EqualsAndContinues_HandTheArgumentOnToItself) {
  const AdditionalProgressNone none;
  for (const bool answer : {false, true}) {
    const ScriptedAdditional other(true, answer);
    EXPECT_EQ(none.equals(other), answer);
    EXPECT_EQ(none.continues(other), answer);
    EXPECT_EQ(other.asked, std::vector<const AdditionalProgressAbstract *>({&other, &other}));
  }
}

TEST(AdditionalProgressNoneTest, IsNothing_IsTheNegationOfTheArgumentsProgress) {
  const AdditionalProgressNone none;
  EXPECT_TRUE(none.isNothing(ScriptedAdditional(false, false)));
  EXPECT_FALSE(none.isNothing(ScriptedAdditional(true, true)));
}

TEST(AdditionalProgressNoneTest, TwoOfThem_AreEqualAndContinueEachOther) {
  const AdditionalProgressNone none;
  EXPECT_TRUE(none.equals(AdditionalProgressNone::shared()));
  EXPECT_TRUE(none.continues(AdditionalProgressNone::shared()));
  EXPECT_TRUE(none.isNothing(AdditionalProgressNone::shared()));
}

TEST(AdditionalProgressNoneTest, Shared_IsOneObject) {
  EXPECT_EQ(&AdditionalProgressNone::shared(), &AdditionalProgressNone::shared());
}

TEST(ProgressNoneTest, Queries_NothingIsInProgress) {
  const None none;
  EXPECT_EQ(none.stepsInProgress(), 0);
  EXPECT_FALSE(none.isRunning());
  EXPECT_FALSE(none.isFinished());
}

TEST(ProgressNoneTest, Clone_IsANewObjectOfItsClass) {
  const None none;
  const std::unique_ptr<ProgressAbstract> copy = none.clone();
  EXPECT_NE(copy.get(), &none);
  EXPECT_NE(dynamic_cast<const None *>(copy.get()), nullptr);
}

TEST(ProgressNoneTest, EqualsAndContinues_HandTheArgumentOnToItself) {
  const None none;
  for (const bool answer : {false, true}) {
    const ScriptedProgress other(3, answer);
    EXPECT_EQ(none.equals(other), answer);
    EXPECT_EQ(none.continues(other), answer);
    EXPECT_EQ(other.asked, std::vector<const ProgressAbstract *>({&other, &other}));
  }
}

TEST(ProgressNoneTest, IsNothing_IsTheNegationOfTheArgumentsSteps) {
  const None none;
  EXPECT_TRUE(none.isNothing(ScriptedProgress(0, false)));
  EXPECT_FALSE(none.isNothing(ScriptedProgress(2, true)));
  EXPECT_FALSE(none.isNothing(ScriptedProgress(-1, true)));
}

TEST(ProgressNoneTest, TwoOfThem_AreEqualAndContinueEachOther) {
  EXPECT_TRUE(None().equals(None()));
  EXPECT_TRUE(None().continues(None()));
}

class PlainProgress final : public ToolProgress {
public:
  void setText(const std::string & /*text*/) override {}
  void finish() override {
    ++finishes;
    if (throwsFromFinish) {
      throw std::runtime_error("cannot be shown");
    }
    running = false;
  }
  void start() override { running = true; }
  void start(int /*position*/) override { running = true; }
  bool isRunning() const override { return running; }
  void pushLevel(std::uint32_t steps) override {
    ++pushes;
    stepCounts.push_back(steps);
  }
  void advance(std::uint32_t /*steps*/, const AdditionalProgressAbstract & /*additional*/) override {}
  void reset() override {}
  void setNumberOfSteps(int /*steps*/) override {}
  void setPosition(int /*position*/) override {}

  bool running = false;
  bool throwsFromFinish = false;
  int finishes = 0;
  int pushes = 0;
};

using Counts = std::vector<std::uint32_t>;

TEST(InnermostStepCountTest, NoLevel_PushesExactlyOne) {
  PlainProgress progress;
  setInnermostStepCount(progress, 7);
  EXPECT_EQ(progress.stepCounts, Counts({7}));
  EXPECT_EQ(progress.pushes, 1);
}

TEST(InnermostStepCountTest, Levels_OverwritesTheLast) {
  PlainProgress progress;
  progress.stepCounts = {4, 5};
  setInnermostStepCount(progress, 0);
  EXPECT_EQ(progress.stepCounts, Counts({4, 0}));
  EXPECT_EQ(progress.pushes, 0);
}

TEST(InnermostStepCountTest, LargestCount_IsKept) {
  PlainProgress progress;
  setInnermostStepCount(progress, 4294967295U);
  EXPECT_EQ(progress.stepCounts, Counts({4294967295U}));
}

TEST(ProgressScopeTest, BegunInside_IsFinishedAtItsEnd) {
  PlainProgress progress;
  {
    const ProgressScope scope(&progress);
    progress.start();
    EXPECT_EQ(progress.finishes, 0);
  }
  EXPECT_EQ(progress.finishes, 1);
  EXPECT_FALSE(progress.running);
}

TEST(ProgressScopeTest, RanBefore_IsLeftAlone) {
  PlainProgress progress;
  progress.start();
  { const ProgressScope scope(&progress); }
  EXPECT_EQ(progress.finishes, 0);
  EXPECT_TRUE(progress.running);
}

TEST(ProgressScopeTest, NeverBegun_IsNotFinished) {
  PlainProgress progress;
  { const ProgressScope scope(&progress); }
  EXPECT_EQ(progress.finishes, 0);
}

TEST(ProgressScopeTest, AlreadyFinishedInside_IsNotFinishedAgain) {
  PlainProgress progress;
  {
    const ProgressScope scope(&progress);
    progress.start();
    progress.finish();
  }
  EXPECT_EQ(progress.finishes, 1);
}

TEST(ProgressScopeTest, FinishThrows_IsSwallowed) {
  PlainProgress progress;
  progress.throwsFromFinish = true;
  EXPECT_NO_THROW({
    const ProgressScope scope(&progress);
    progress.start();
  });
  EXPECT_EQ(progress.finishes, 1);
}

TEST(ProgressScopeTest, LeftByAnException_FinishesAndLetsItPass) {
  PlainProgress progress;
  progress.throwsFromFinish = true;
  std::string caught;
  try {
    const ProgressScope scope(&progress);
    progress.start();
    throw std::logic_error("from inside");
  } catch (const std::logic_error &error) {
    caught = error.what();
  }
  EXPECT_EQ(caught, "from inside");
  EXPECT_EQ(progress.finishes, 1);
}

TEST(ProgressScopeTest, Null_DoesNothing) {
  EXPECT_NO_THROW({ const ProgressScope scope(nullptr); });
}

} // namespace
} // namespace Tools
