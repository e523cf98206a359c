#include "EmbeddedHost/tests/StoreFixture.h"
#include "HostModel/ProjectStore.h"
#include "HostModel/ToolProgress.h"

#include <filesystem>
#include <stdexcept>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Writes down what it is told.
class NotedProgress final : public Tools::ToolProgress {
public:
  void setText(const std::string &text) override { lines.push_back("text " + text); }
  void finish() override {
    lines.emplace_back("finish");
    isAtWork = false;
  }
  void start() override {
    lines.emplace_back("start");
    isAtWork = true;
  }
  void start(int position) override { lines.push_back("start " + std::to_string(position)); }
  bool isRunning() const override { return isAtWork; }
  void pushLevel(std::uint32_t steps) override {
    lines.push_back("push " + std::to_string(steps));
    stepCounts.push_back(steps);
  }
  void advance(std::uint32_t steps, const Tools::Progress::AdditionalProgressAbstract &) override {
    lines.push_back("advance " + std::to_string(steps));
    if (fails) {
      throw std::runtime_error("cannot be shown");
    }
  }
  void reset() override { lines.emplace_back("reset"); }
  void setNumberOfSteps(int steps) override { lines.push_back("steps " + std::to_string(steps)); }
  void setPosition(int position) override { lines.push_back("position " + std::to_string(position)); }

  Lines lines;
  bool isAtWork = false;
  bool fails = false;
};

class CopyProgressTest : public StoreTest {
protected:
  NotedProgress progress;

  CopyProgressTest() { fs::create_symlink("result.txt", fill(base, "new") + "/link"); }

  bool copyWithProgress() {
    ProjectData::ProjectStore target(file, folderOf(copy));
    return ProjectData::ProjectStore(file, folderOf(base)).copyResults(target, false, &progress, true);
  }
};

TEST_F(CopyProgressTest, Copy_IsATaskWithOneStepPerFile) {
  EXPECT_TRUE(copyWithProgress());
  EXPECT_EQ(progress.lines,
            (Lines{"start", "text Copying results", "push 2", "advance 1", "advance 1", "finish"}));
}

TEST_F(CopyProgressTest, CopyInsideATask_IsARangeOfItsOwn_WhichIsGoneAfterwards) {
  progress.isAtWork = true;
  progress.stepCounts = {10};
  EXPECT_TRUE(copyWithProgress());
  EXPECT_EQ(progress.lines, (Lines{"push 2", "advance 1", "advance 1"}));
  EXPECT_EQ(progress.stepCounts, std::vector<std::uint32_t>{10});
}

TEST_F(CopyProgressTest, ProgressThatFails_IsToldNoMoreAndTheCopyIsMade) {
  progress.fails = true;
  EXPECT_TRUE(copyWithProgress());
  EXPECT_EQ(progress.lines, (Lines{"start", "text Copying results", "push 2", "advance 1", "finish"}));
  EXPECT_EQ(resultOf(copy), "new");
}

TEST_F(CopyProgressTest, NothingToCopy_IsNoTask) {
  fs::remove_all(folderOf(base));
  EXPECT_TRUE(copyWithProgress());
  EXPECT_EQ(progress.lines, Lines{});
}

} // namespace
} // namespace EmbeddedHost
