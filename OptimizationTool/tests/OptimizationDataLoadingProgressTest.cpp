// A progress object that keeps no levels of its own is given one each time that the number of steps is told.

#include "HostModel/ToolProgress.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using StudyTesting::RecordedStudy;

// Ends the study when it is given its second level: by then the number of alternates is known.
class LevelEndingProgress final : public Tools::ToolProgress {
public:
  explicit LevelEndingProgress(RecordedStudy &study) : m_study(&study) {}

  void setText(const std::string & /*text*/) override {}
  void finish() override {}
  void start() override {}
  void start(int /*position*/) override {}
  bool isRunning() const override { return false; }
  void pushLevel(std::uint32_t steps) override {
    levels.push_back(steps);
    if (levels.size() == 2) {
      m_study->drop();
    }
  }
  void advance(std::uint32_t /*steps*/,
               const Tools::Progress::AdditionalProgressAbstract & /*additional*/) override {
    ++advanced;
  }
  void reset() override {}
  void setNumberOfSteps(int /*steps*/) override {}
  void setPosition(int /*position*/) override {}

  std::vector<std::uint32_t> levels;
  int advanced = 0;

private:
  RecordedStudy *m_study;
};

TEST(OptimizationDataLoadingProgressTest, StudyEndsWhenTheNumberOfAlternatesIsTold_LoadingStopsQuietly) {
  RecordedStudy study;
  study.begin();
  study.addRow("A", "11", "21");
  study.reopen();
  LevelEndingProgress progress(study);

  EXPECT_NO_THROW(study.data().initializeVariants(&progress));

  EXPECT_FALSE(study.isAlive());
  ASSERT_EQ(progress.levels.size(), 2U);
  EXPECT_EQ(progress.levels[0], 0U);
  EXPECT_EQ(progress.levels[1], 1U);
  EXPECT_EQ(progress.advanced, 0);
}

} // namespace
} // namespace OptimizationTool
