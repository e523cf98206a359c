#include "Workbench/SolveRunner.h"

#include "EmbeddedHost/src/project/ProjectParts.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

namespace Workbench {
namespace {

using OptimizationTool::OptimizationManager;

class SolveRunnerTest : public ::testing::Test {
protected:
  static double output(const OpenBox &box, std::size_t row, std::size_t group) {
    return box.session->data().getVariantGroup(false, row, group)->getStandardValue();
  }

  static bool hasOutput(const OpenBox &box, std::size_t row, std::size_t group) {
    return box.session->data().getVariantGroup(false, row, group)->hasValue();
  }

  BoxStudy m_box;
};

using Names = std::vector<std::string>;

TEST_F(SolveRunnerTest, Solve_EveryRow_GetsItsResultsInDeclaredUnitsAndItsCost) {
  OpenBox box = open(m_box);
  TestObserver observer;
  const SolveReport report = solve(box, observer);
  EXPECT_EQ(report.solved, 3U);
  EXPECT_EQ(report.failed, 0U);
  EXPECT_EQ(report.problem, "");
  EXPECT_EQ(observer.m_toSolve, 3U);
  EXPECT_EQ(observer.m_finished, (Names{"Base", "two", "Variant 2"}));
  EXPECT_EQ(observer.m_ends, 1);
  // x = 1, 2, 3 and y = 10 m = 10000 mm; the product comes in mm and is declared in m.
  EXPECT_EQ(output(box, 0, 0), 10001.0);
  EXPECT_EQ(output(box, 1, 0), 10002.0);
  EXPECT_EQ(output(box, 1, 1), 20.0);
  EXPECT_EQ(output(box, 2, 1), 30.0);
  EXPECT_EQ(box.session->data().getVariantCost(0).value_or(0.0), 10011.0);
  EXPECT_EQ(box.session->data().getVariantCost(2).value_or(0.0), 10033.0);
}

TEST_F(SolveRunnerTest, Solve_RunsUnderAGuardAndEndsWithTheBaselineCurrent) {
  OpenBox box = open(m_box);
  TestObserver observer;
  bool wasSolving = true;
  observer.m_onFinished = [&] {
    wasSolving = wasSolving && OptimizationManager::instance().isSolvingVersions();
  };
  const OptimizationTool::OptimizationData *data = &box.session->data();
  solve(box, observer);
  EXPECT_TRUE(wasSolving);
  EXPECT_FALSE(OptimizationManager::instance().isSolvingVersions());
  EXPECT_EQ(&box.session->data(), data); // never reloaded
  EXPECT_EQ(box.session->project().currentVersion(), box.session->baseline());
}

TEST_F(SolveRunnerTest, Assess_AfterReopening_KnowsWhatIsSolved) {
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  OpenBox box = open(m_box);
  EXPECT_FALSE(box.session->data().getVariantCost(1).has_value()); // not before it is known to be right
  TestObserver observer;
  const SolveReport report = solve(box, observer);
  EXPECT_EQ(report.alreadySolved, 3U);
  EXPECT_EQ(observer.m_finished, Names{});
  EXPECT_EQ(output(box, 1, 1), 20.0);
  EXPECT_EQ(box.session->data().getVariantCost(1).value_or(0.0), 10022.0);
}

TEST_F(SolveRunnerTest, Assess_ChangedSolver_MakesRowsStaleWithoutOutputsAndCost) {
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  m_box.writeSolver("# changed");
  OpenBox box = open(m_box);
  box.runner->assess();
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::Stale);
  EXPECT_EQ(box.session->updateAndPrice(), "");
  EXPECT_FALSE(box.session->data().getVariantCost(1).has_value());
  const MatrixTable table = MatrixTable::of(*box.session);
  EXPECT_FALSE(table.rows[1].outputs[0].has_value());
  EXPECT_FALSE(table.bestNumber.has_value());
  EXPECT_EQ(statusText(table.rows[1].state), "stale");
}

TEST_F(SolveRunnerTest, Solve_RowThatFailsNow_LosesTheResultsOfItsLastRun) {
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  m_box.writeSolver("if [ $x = 2 ]; then exit 7; fi");
  {
    OpenBox box = open(m_box);
    const SolveReport report = solve(box);
    EXPECT_EQ(report.failed, 1U);
    EXPECT_FALSE(hasOutput(box, 1, 0));
    EXPECT_FALSE(box.session->data().getVariantCost(1).has_value());
    EXPECT_TRUE(hasOutput(box, 2, 0));
  }
  OpenBox box = open(m_box);
  box.runner->assess();
  EXPECT_FALSE(hasOutput(box, 1, 0));
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::Failed);
  EXPECT_EQ(box.session->rowState(1).reason, "exit code: 7");
}

TEST_F(SolveRunnerTest, Solve_NewRowOfASolvedStudy_NeverShowsTheBaselinesResults) {
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  m_box.edit("    - {values: {width: 3}}\n",
             "    - {values: {width: 3}}\n    - {name: late, values: {width: 9}}\n");
  OpenBox box = open(m_box);
  TestObserver observer;
  observer.m_stopAfter = 0;
  box.runner->assess();
  const SolveReport report = box.runner->solve({1}, observer);
  EXPECT_TRUE(report.isInterrupted);
  EXPECT_EQ(box.session->updateAndPrice(), "");
  const MatrixTable table = MatrixTable::of(*box.session);
  ASSERT_EQ(table.rows.size(), 4U);
  EXPECT_EQ(table.rows[3].name, "late");
  EXPECT_EQ(statusText(table.rows[3].state), "not run");
  EXPECT_FALSE(table.rows[3].outputs[0].has_value());
  EXPECT_FALSE(table.rows[3].cost.has_value());
  EXPECT_EQ(table.rows[1].outputs[1].value_or(0.0), 20.0);
  EXPECT_EQ(table.bestNumber, std::optional<std::size_t>(2));
}

TEST_F(SolveRunnerTest, Solve_FailedRow_UnsetsTheResultsBeforeItsRun) {
  // The row is made after the baseline was solved, so its version starts with the baseline's results.
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  m_box.edit("    - {values: {width: 3}}\n",
             "    - {values: {width: 3}}\n    - {name: late, values: {width: 9}}\n");
  m_box.writeSolver("if [ $x = 9 ]; then exit 7; fi");
  OpenBox box = open(m_box);
  solve(box);
  EXPECT_FALSE(hasOutput(box, 3, 0));
  ASSERT_TRUE(box.session->commands().switchVersion("late"));
  EXPECT_FALSE(box.session->model().find("Box.sum")->value->hasValue());
  ASSERT_TRUE(box.session->commands().switchVersion(box.session->baseline()));
}

TEST_F(SolveRunnerTest, Solve_RowThatIsEndedInTheMiddle_HasLostItsOldResultsAlready) {
  {
    OpenBox box = open(m_box);
    solve(box);
  }
  m_box.writeSolver("sleep 60");
  OpenBox box = open(m_box);
  TestObserver observer;
  observer.m_endNowAfter = 1; // when the first row has just been started
  const SolveReport report = solve(box, observer);
  EXPECT_TRUE(report.isInterrupted);
  EXPECT_EQ(report.failed, 1U);
  EXPECT_EQ(observer.m_finished, Names{"Base: cancelled"});
  EXPECT_FALSE(box.session->model().find("Box.sum")->value->hasValue()); // the baseline is current
  EXPECT_FALSE(hasOutput(box, 0, 0));
  EXPECT_TRUE(hasOutput(box, 1, 0)); // not begun: stale, and so not shown
  EXPECT_FALSE(MatrixTable::of(*box.session).rows[1].outputs[0].has_value());
  const std::string folder = box.session->project().versionFolder(*box.session->baseline(), false);
  EXPECT_FALSE(std::filesystem::exists(folder + "/run.new"));
}

TEST_F(SolveRunnerTest, Assess_RunThatWasBegunAndNeverRecorded_IsLostAndSolvedAgain) {
  std::string problem;
  {
    OpenBox box = open(m_box);
    solve(box);
    ASSERT_TRUE(box.session->project().beginRun(*box.session->rowVersion(1), {}, {}, problem)) << problem;
  }
  OpenBox box = open(m_box);
  box.runner->assess();
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::Failed);
  EXPECT_EQ(box.session->rowState(1).reason, "lost: the program ended while it ran");
  EXPECT_EQ(box.session->rowState(2).status, RowStatus::Ok);
  EXPECT_EQ(statusText(MatrixTable::of(*box.session).rows[1].state),
            "failed: lost: the program ended while it ran");
  TestObserver observer;
  solve(box, observer);
  EXPECT_EQ(observer.m_finished, Names{"two"});
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::Ok);
}

TEST_F(SolveRunnerTest, Assess_RunOfThisSessionThatNobodyRecorded_IsLost) {
  OpenBox box = open(m_box);
  solve(box);
  std::string problem;
  ASSERT_TRUE(box.session->project().beginRun(*box.session->rowVersion(1), {}, {}, problem)) << problem;
  box.runner->assess();
  EXPECT_EQ(box.session->rowState(1).reason, "lost: the program ended while it ran");
}

TEST_F(SolveRunnerTest, Solve_WhileItRuns_ARowIsRunning) {
  OpenBox box = open(m_box);
  TestObserver observer;
  std::vector<EmbeddedHost::RunStatus> seen;
  m_box.writeSolver("while [ ! -e ../../../seen ]; do sleep 0.01; done");
  observer.m_onAsked = [&] {
    seen.push_back(box.session->project().runRecord(*box.session->baseline()).status);
    if (seen.back() == EmbeddedHost::RunStatus::Running) {
      m_box.write("seen", "");
    }
  };
  EXPECT_EQ(solve(box, observer).solved, 3U);
  EXPECT_EQ(seen.front(), EmbeddedHost::RunStatus::None);
  EXPECT_EQ(seen.at(1), EmbeddedHost::RunStatus::Running);
  EXPECT_EQ(seen.back(), EmbeddedHost::RunStatus::Ok);
}

TEST_F(SolveRunnerTest, Solve_BaselineThatFails_EndsTheSolve) {
  m_box.writeSolver("if [ $x = 1 ]; then exit 7; fi");
  OpenBox box = open(m_box);
  box.runner->assess();
  TestObserver observer;
  const SolveReport report = box.runner->solve({2}, observer);
  EXPECT_EQ(report.givenUp, "the baseline failed: exit code: 7");
  EXPECT_EQ(report.failed, 1U);
  EXPECT_EQ(report.solved, 0U);
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::NotRun);
}

TEST_F(SolveRunnerTest, Solve_NamedRows_AreSolvedWhateverTheyAre) {
  OpenBox box = open(m_box);
  solve(box);
  TestObserver observer;
  SolveOptions options;
  options.rows = {2};
  const SolveReport report = box.runner->solve(options, observer);
  EXPECT_EQ(report.solved, 1U);
  EXPECT_EQ(observer.m_finished, std::vector<std::string>{"Variant 2"});
}

TEST_F(SolveRunnerTest, Extract_ReadsKeptFilesAgainAndStartsNothing) {
  OpenBox box = open(m_box);
  solve(box);
  m_box.writeSolver("exit 1"); // a run would fail
  TestObserver observer;
  SolveOptions options;
  options.rows = {0, 2};
  options.onlyExtracts = true;
  const SolveReport report = box.runner->solve(options, observer);
  EXPECT_EQ(report.extracted, 2U);
  EXPECT_EQ(report.failed, 0U);
}

// Another program that reads the project and does not come to an end.
class LockedProjectTest : public SolveRunnerTest {
protected:
  LockedProjectTest() {
    m_box.writeSolver("touch ../../../started");
    m_open = open(m_box);
  }
  void beginReading() {
    m_open.session->project().parts().file->database().setLongestWaitToWrite(std::chrono::milliseconds(50));
    m_reader = std::make_unique<EmbeddedHost::Database>(m_box.projectFile(),
                                                        EmbeddedHost::Database::Access::ReadOnly);
    m_reader->execute("BEGIN");
    m_reader->number("SELECT count(*) FROM value");
  }
  // Goes without saving, which would be refused as well.
  SolveReport solveOnly(std::size_t parallel, TestObserver &observer) {
    m_open.runner->assess();
    return m_open.runner->solve({parallel, true}, observer);
  }
  std::string refusal() const {
    return "The project " + m_box.projectFile() + " could not be saved: another program keeps it locked.";
  }

  OpenBox m_open;
  std::unique_ptr<EmbeddedHost::Database> m_reader;
};

TEST_F(LockedProjectTest, RowThatCannotBeBegun_IsNotStarted) {
  beginReading();
  TestObserver observer;
  const SolveReport report = solveOnly(1, observer);
  EXPECT_EQ(report.problem, "the run of \"Base\" cannot be begun: " + refusal());
  EXPECT_EQ(report.failed, 1U);
  EXPECT_EQ(observer.m_finished, Names{"Base: start: " + refusal()});
  EXPECT_FALSE(std::filesystem::exists(m_box.file("started")));
  EXPECT_EQ(m_open.session->rowState(0).status, RowStatus::Failed);
  EXPECT_EQ(m_open.session->rowState(1).status, RowStatus::NotRun);
  EXPECT_EQ(m_open.session->project().runRecord(*m_open.session->baseline()).status,
            EmbeddedHost::RunStatus::None);
  const std::string folder = m_open.session->project().versionFolder(*m_open.session->baseline(), false);
  EXPECT_FALSE(std::filesystem::exists(folder + "/run.new"));
  m_reader.reset();
  EXPECT_EQ(solve(m_open).solved, 3U);
}

TEST_F(LockedProjectTest, ResultThatCannotBeRecorded_StopsTheSolve_AndIsSolvedAgainLater) {
  m_open = OpenBox();
  m_box.edit("    - {values: {width: 3}}\n", "    - {values: {width: 3}}\n    - {values: {width: 4}}\n");
  m_open = open(m_box);
  TestObserver observer;
  observer.m_onAsked = [&] {
    if (std::filesystem::exists(m_box.file("started")) && m_reader == nullptr) {
      beginReading();
    }
  };
  m_box.writeSolver("if [ $x != 1 ]; then touch ../../../started; sleep 0.5; fi");
  const SolveReport report = solveOnly(2, observer);
  EXPECT_EQ(report.problem.substr(report.problem.find("cannot")), "cannot be stored: " + refusal());
  EXPECT_EQ(report.solved, 1U);              // the baseline, before anything was locked
  EXPECT_EQ(observer.m_finished.size(), 3U); // what ran was waited for, and nothing further begun
  EXPECT_EQ(m_open.session->rowState(1).reason, "not recorded: " + refusal());
  EXPECT_EQ(m_open.session->rowState(3).status, RowStatus::NotRun);
  m_reader.reset();
  EXPECT_EQ(solve(m_open).solved, 3U);
}

TEST_F(SolveRunnerTest, Interruption_FinishesWhatRunsAndLeavesTheRest) {
  OpenBox box = open(m_box);
  TestObserver observer;
  observer.m_stopAfter = 1;
  const SolveReport report = solve(box, observer);
  EXPECT_TRUE(report.isInterrupted);
  EXPECT_EQ(observer.m_finished, Names{"Base"});
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::NotRun);
}

TEST_F(SolveRunnerTest, Run_KeepsItsFilesInTheFolderOfItsVersion) {
  OpenBox box = open(m_box);
  solve(box);
  const std::filesystem::path folder =
      box.session->project().versionFolder(*box.session->rowVersion(1), false) + "/run";
  EXPECT_EQ(box.session->project().runRecord(*box.session->rowVersion(1)).command, Names{"./solve.sh"});
  EXPECT_TRUE(std::filesystem::exists(folder / "in.txt"));
  EXPECT_TRUE(std::filesystem::exists(folder / "result.txt"));
  EXPECT_TRUE(std::filesystem::exists(folder / "stdout.log"));
  EXPECT_FALSE(std::filesystem::exists(folder.string() + ".new"));
}

TEST_F(SolveRunnerTest, Record_HoldsTheEndOfTheLogs) {
  m_box.writeSolver("echo something is wrong >&2; exit 4");
  OpenBox box = open(m_box);
  solve(box);
  const EmbeddedHost::RunRecord record = box.session->project().runRecord(*box.session->baseline());
  EXPECT_EQ(record.status, EmbeddedHost::RunStatus::Failed);
  EXPECT_EQ(record.exitCode, std::optional<int>(4));
  EXPECT_EQ(record.logTail, "stderr.log:\nsomething is wrong\n");
}

TEST_F(SolveRunnerTest, Extraction_FromATruncatedLog_FailsTheRow) {
  m_box.writeSolver("head -c 20000000 /dev/zero | tr '\\0' 'x'; echo");
  m_box.edit("    - {name: two, values: {width: 2}}\n    - {values: {width: 3}}\n", "    []\n");
  OpenBox box = open(m_box);
  TestObserver observer;
  solve(box, observer);
  EXPECT_EQ(observer.m_finished, Names{"Base: output too large: stdout.log is not complete"});
}

TEST_F(SolveRunnerTest, Copies_KeepTheirPermissionToExecute) {
  m_box.write("tool", "#!/bin/sh\necho 'tool ran' >&2\n");
  std::filesystem::permissions(m_box.file("tool"), std::filesystem::perms::owner_all);
  m_box.edit("  command: [./solve.sh]", "  copies: [tool]\n  command: [./solve.sh]");
  m_box.writeSolver("./tool || exit 8");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

} // namespace
} // namespace Workbench
