#include "OptimizationTool/OptimizationData.h"
#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace Workbench {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

// The second row, x = 2, writes the file "big" with `bytes` bytes before its results.
class RunLimitsTest : public ::testing::Test {
protected:
  void writeBig(const std::string &bytes, const std::string &more = "") const {
    m_box.writeSolver("if [ $x = 2 ]; then head -c " + bytes + " /dev/zero > big" + more + "; fi");
  }
  void limit(const std::string &keys) { m_box.edit("  timeout: 20 s\n", keys); }

  static std::string reason(const OpenBox &box, std::size_t row) { return box.session->rowState(row).reason; }

  static fs::path folder(const OpenBox &box, std::size_t row) {
    return box.session->project().versionFolder(*box.session->rowVersion(row), false);
  }
  static Names kept(const OpenBox &box, std::size_t row) {
    Names names;
    for (const fs::directory_entry &entry : fs::directory_iterator(folder(box, row) / "run")) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  BoxStudy m_box;
};

TEST_F(RunLimitsTest, FileThatReachesTheLimit_FailsItsRowAlone) {
  limit("  file-limit: 20 kB\n");
  writeBig("30000");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.solved, 2U);
  EXPECT_EQ(report.failed, 1U);
  EXPECT_EQ(reason(box, 1), "output too large: big has reached the file-limit of 20000 bytes");
}

TEST_F(RunLimitsTest, SolverThatIsEndedAtTheFileLimit_IsSaidSo) {
  limit("  file-limit: 20 kB\n");
  m_box.writeSolver("if [ $x = 2 ]; then exec head -c 30000 /dev/zero > big; fi");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(
      reason(box, 1).find("output too large: big has reached the file-limit of 20000 bytes; signal: 25 ("),
      0U)
      << reason(box, 1);
}

TEST_F(RunLimitsTest, FileBelowTheLimit_IsNoFailure) {
  limit("  file-limit: 20 kB\n");
  writeBig("19999");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(RunLimitsTest, WithoutALimit_AnySizeIsKept) {
  writeBig("3000000");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
  EXPECT_EQ(fs::file_size(folder(box, 1) / "run/big"), 3000000U);
}

TEST_F(RunLimitsTest, FilesThatARunWasGiven_AreNoneThatItHasWritten) {
  m_box.write("table.txt", std::string(30000, 'x'));
  limit("  copies: [table.txt]\n  file-limit: 20 kB\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(RunLimitsTest, FolderAboveTheLimit_FailsItsRowAlone) {
  // 8 bytes of in.txt, 12 of result.txt, 16 of stdout.log, none of stderr.log, 5000 of each file.
  limit("  folder-limit: 10 kB\n");
  writeBig("5000", "; mkdir sub; cp big sub/big");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 2U);
  EXPECT_EQ(reason(box, 1),
            "output too large: the run's files hold 10036 bytes, more than the folder-limit of 10000 bytes");
}

TEST_F(RunLimitsTest, FolderAtTheLimit_IsNoFailure) {
  limit("  folder-limit: 10036\n");
  writeBig("5000", "; mkdir sub; cp big sub/big");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(RunLimitsTest, LinksOutOfTheFolder_AreNotCounted) {
  m_box.write("large", std::string(30000, 'x'));
  limit("  folder-limit: 10 kB\n");
  m_box.writeSolver("ln -s \"" + m_box.file("large") + "\" link");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(RunLimitsTest, RunAboveALimit_KeepsWhatItWasGivenAndWhatItPrinted) {
  limit("  folder-limit: 10 kB\n");
  writeBig("12000");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(kept(box, 1), (Names{"in.txt", "stderr.log", "stdout.log"}));
  EXPECT_EQ(kept(box, 2), (Names{"in.txt", "result.txt", "stderr.log", "stdout.log"}));
}

TEST_F(RunLimitsTest, RowAboveALimit_HasNoResult) {
  limit("  folder-limit: 10 kB\n");
  writeBig("12000");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  const EntityModel::ModelVersion &version = *box.session->rowVersion(1);
  EXPECT_EQ(box.session->project().runRecord(version).status, EmbeddedHost::RunStatus::Failed);
  EXPECT_FALSE(box.session->data().getVariantGroup(false, 1, 0)->hasValue());
}

TEST_F(RunLimitsTest, RunAboveALimit_IsTriedAgainWhenAskedFor) {
  limit("  folder-limit: 10 kB\n  retries: {output-too-large: 1}\n");
  writeBig("12000");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(reason(box, 1).substr(reason(box, 1).size() - 13), " (2 attempts)");
}

} // namespace
} // namespace Workbench
