#include "EmbeddedHost/Project.h"
#include "HostModel/EntityEditor.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ExchangeCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LookCommands.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/tests/BoxStudy.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>

// The study library keeps some ways of its own that leave numbers of another state in its matrix. Whatever it does, what
// a person or a file gets to see is right, or is not there.

namespace Workbench {
namespace {

using EmbeddedHost::OpenMode;
using MathematicalUtilities::OptimisationStrategy;

// Rows Base (1, 10 m), two (2, 10 m) and Variant 2 (3, 10 m); the cost is x + y in mm + x * y in m, to be maximised. The
// cost does not mention the output "total" by its name.
class KeptQuirksTest : public ::testing::Test {
protected:
  void SetUp() override { solveAll(); }

  // What "run" does, apart from printing.
  SolveReport solveAll() {
    OpenBox box = open(m_box);
    EXPECT_TRUE(box.session) << box.problem;
    return solve(box);
  }

  std::string project() const { return m_box.projectFile(); }

  std::string exported() {
    EXPECT_EQ(exportCommand(project(), OutputFormat::Csv, "", m_text.console), ExitCode::kDone);
    return m_text.takeOut();
  }

  // The rows of the exported table; what is shown is the same.
  std::string rows() {
    const std::string text = exported();
    ShowOptions options;
    options.project = project();
    options.format = OutputFormat::Csv;
    EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone);
    EXPECT_EQ(m_text.takeOut(), text);
    return text.substr(text.find('\n', text.find('\n') + 1) + 1);
  }

  int bestRow() {
    const int code = bestCommand(project(), OutputFormat::Table, m_text.console);
    m_best = m_text.takeOut();
    m_text.takeMessages();
    return code;
  }

  // The session as a command that changes something has it, saved afterwards.
  void inSession(const std::function<void(ProjectSession &)> &action) const {
    OpenFailure failure;
    const auto session = ProjectSession::open(project(), OpenMode::ReadWrite, failure);
    ASSERT_TRUE(session) << failure.problem;
    action(*session);
    EXPECT_EQ(session->save(), "");
  }

  const std::string m_asSolved = "0,Base,ok,,1,10,10001,10,10011\n"
                                 "1,two,ok,,2,10,10002,20,10022\n"
                                 "2,Variant 2,ok,,3,10,10003,30,10033\n";
  BoxStudy m_box;
  ConsoleText m_text;
  std::string m_best;
};

// The calculator goes on knowing a removed group with the last value that it had.
TEST_F(KeptQuirksTest, RemovedOutput_IsNotPricedWithItsLastValue) {
  EXPECT_EQ(removeGroupCommand(project(), false, "Box.product", m_text.console), ExitCode::kDone);
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,\n1,two,ok,,2,10,10002,\n2,Variant 2,ok,,3,10,10003,\n");
  EXPECT_EQ(bestRow(), ExitCode::kNoRowSolved);
  EXPECT_EQ(m_best, "");
}

// A group that was added after the calculator was built is not in it, and pricing throws.
TEST_F(KeptQuirksTest, AddedInput_CanBePricedAtOnce) {
  EXPECT_EQ(removeGroupCommand(project(), true, "Box.y", m_text.console), ExitCode::kDone);
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.y"}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(rows(), m_asSolved);
  EXPECT_EQ(costCommand(project(), "%Box.y% * %Box.x%", m_text.console), ExitCode::kDone);
  m_text.takeOut();
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,10,10\n1,two,ok,,2,10,10002,20,20\n"
                    "2,Variant 2,ok,,3,10,10003,30,30\n");
}

// Setting an input writes the outputs that the matrix holds back into the version.
TEST_F(KeptQuirksTest, EditedRow_NeverShowsTheOutputsOfItsOldInputs) {
  EXPECT_EQ(setRowCommand(project(), "two", {{"width", "7"}}, m_text.console), ExitCode::kDone);
  const std::string stale = "0,Base,ok,,1,10,10001,10,10011\n1,two,stale,,7,10,,,\n"
                            "2,Variant 2,ok,,3,10,10003,30,10033\n";
  EXPECT_EQ(rows(), stale);
  EXPECT_EQ(bestRow(), ExitCode::kDone);
  EXPECT_NE(m_best.find("row 2, Variant 2, cost 10033"), std::string::npos) << m_best;
  EXPECT_EQ(renameRowCommand(project(), "two", "seven", m_text.console), ExitCode::kDone);
  m_box.edit("name: two, values: {width: 2}", "name: seven, values: {width: 7}");
  EXPECT_EQ(solveAll().solved, 1U);
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,10,10011\n1,seven,ok,,7,10,10007,70,10077\n"
                    "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(KeptQuirksTest, RowThatFailsForItsNewInputs_HasNoOutputsWhenItsOldOnesAreBack) {
  EXPECT_EQ(setRowCommand(project(), "two", {{"width", "7"}}, m_text.console), ExitCode::kDone);
  m_box.edit("values: {width: 2}", "values: {width: 7}");
  m_box.writeSolver("if [ $x = 7 ]; then exit 9; fi");
  solveAll();
  EXPECT_EQ(setRowCommand(project(), "two", {{"width", "2"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,10,10011\n1,two,failed,exit code: 9,2,10,,,\n"
                    "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

// A missing value of a group whose name the cost does not mention counts as 0.
TEST_F(KeptQuirksTest, MissingOutputOfASolvedRow_IsNotPricedAsZero) {
  inSession([](ProjectSession &session) {
    const EmbeddedHost::CommandResult switched = session.commands().switchVersion("two");
    ASSERT_TRUE(switched) << switched.problem;
    session.project().setValue(session.model().find("Box.sum")->owner, "sum", "");
    const EmbeddedHost::CommandResult back = session.commands().switchVersion(session.baseline());
    ASSERT_TRUE(back) << back.problem;
  });
  inSession([](ProjectSession &session) {
    ASSERT_EQ(session.rowState(1).status, RowStatus::Ok);
    session.data().recalculateCosts();
    EXPECT_EQ(session.data().getVariantCost(1).value_or(0.0), 20.0); // what the library makes of it
    session.clearUnreliableCosts();
    EXPECT_FALSE(session.data().getVariantCost(1).has_value());
  });
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,10,10011\n1,two,ok,,2,10,,20,\n"
                    "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(KeptQuirksTest, MissingOutput_ThatTheCostDoesNotName_LeavesTheCost) {
  EXPECT_EQ(costCommand(project(), "2.0 * %Box.product%", m_text.console), ExitCode::kDone);
  m_text.takeOut();
  inSession([](ProjectSession &session) {
    const EmbeddedHost::CommandResult switched = session.commands().switchVersion("two");
    ASSERT_TRUE(switched) << switched.problem;
    session.project().setValue(session.model().find("Box.sum")->owner, "sum", "");
    const EmbeddedHost::CommandResult back = session.commands().switchVersion(session.baseline());
    ASSERT_TRUE(back) << back.problem;
  });
  EXPECT_EQ(rows(), "0,Base,ok,,1,10,10001,10,20\n1,two,ok,,2,10,,20,40\n2,Variant 2,ok,,3,10,10003,30,60\n");
}

// Cells move up past a group whose attribute is gone, and stand under the titles of others.
TEST_F(KeptQuirksTest, GroupWithoutAttribute_HidesWhatWouldStandUnderOtherTitles) {
  m_box.edit("solver:\n", "  Lid: {mass: {result: true}}\nsolver:\n");
  m_box.edit("    Box.sum: {file", "    Lid.mass: {pattern: '^product = (.*)$'}\n    Box.sum: {file");
  m_box.edit("outputs: [", "outputs: [Lid.mass, ");
  solveAll();
  inSession([](ProjectSession &session) {
    EXPECT_TRUE(EntityModel::EntityEditor::deleteEntity(session.model().findEntity("Lid"), false, true));
  });
  OpenFailure failure;
  const auto session = ProjectSession::open(project(), OpenMode::ReadOnly, failure);
  ASSERT_TRUE(session) << failure.problem;
  const EntityModel::Attribute *moved = session->data().getVariantGroup(false, 1, 0);
  ASSERT_NE(moved, nullptr);
  EXPECT_EQ(moved->getStandardValue(), 10002.0); // the sum in the place of the mass
  for (const MatrixTable::Row &row : MatrixTable::of(*session).rows) {
    ASSERT_EQ(row.outputs.size(), 3U);
    for (const std::optional<double> &output : row.outputs) {
      EXPECT_FALSE(output.has_value()) << row.name;
    }
    EXPECT_FALSE(row.cost.has_value()) << row.name;
  }
}

// Moving a group leaves the cells of the matrix where they are.
TEST_F(KeptQuirksTest, MovedGroups_TakeTheirValuesAlong) {
  EXPECT_EQ(moveGroupCommand(project(), "total", 1, m_text.console), ExitCode::kDone);
  EXPECT_EQ(moveGroupCommand(project(), "Box.y", 0, m_text.console), ExitCode::kDone);
  EXPECT_EQ(exported(), "row,name,status,reason,Box.y,width,Box.product,total,cost\n"
                        ",,,,m,,m,,\n"
                        "0,Base,ok,,10,1,10,10001,10011\n"
                        "1,two,ok,,10,2,20,10002,10022\n"
                        "2,Variant 2,ok,,10,3,30,10003,10033\n");
  EXPECT_EQ(bestRow(), ExitCode::kDone);
  EXPECT_NE(m_best.find("row 2, Variant 2, cost 10033"), std::string::npos) << m_best;
}

// A new row is not priced, and its version begins with a copy of the baseline's results.
TEST_F(KeptQuirksTest, NewRow_ShowsNeitherTheBaselinesOutputsNorACost) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "50"}}, "big", m_text.console), ExitCode::kDone);
  const std::string expected = m_asSolved + "3,big,not run,,50,10,,,\n";
  EXPECT_EQ(rows(), expected);
  EXPECT_EQ(costCommand(project(), "%Box.sum% + %Box.product%", m_text.console), ExitCode::kDone);
  m_text.takeOut();
  EXPECT_EQ(rows(), expected);
  EXPECT_EQ(bestRow(), ExitCode::kDone);
  EXPECT_NE(m_best.find("row 2, Variant 2"), std::string::npos) << m_best;
}

// An edit of the baseline pushes its whole row, outputs too.
TEST_F(KeptQuirksTest, EditedBaseline_HasNoOutputsAndNothingIsComparedWithThem) {
  EXPECT_EQ(setRowCommand(project(), "0", {{"width", "5"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(rows(), "0,Base,stale,,5,10,,,\n1,two,ok,,2,10,10002,20,10022\n"
                    "2,Variant 2,ok,,3,10,10003,30,10033\n");
  ShowOptions options;
  options.project = project();
  options.differences = Differences::Absolute;
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone);
  const std::string table = m_text.takeOut();
  EXPECT_EQ(table.find("+20"), std::string::npos) << table; // 10022 - 10002
  EXPECT_EQ(table.find("+11"), std::string::npos) << table; // to the cost that the baseline had, 10011
  EXPECT_EQ(table.find("the baseline:"), std::string::npos) << table;
  // A row that is made now begins with the results that were pushed.
  EXPECT_EQ(addRowCommand(project(), {{"width", "6"}}, "six", m_text.console), ExitCode::kDone);
  EXPECT_EQ(rows(), "0,Base,stale,,5,10,,,\n1,two,ok,,2,10,10002,20,10022\n"
                    "2,Variant 2,ok,,3,10,10003,30,10033\n3,six,not run,,6,10,,,\n");
}

// A target that was set once is kept by the library when none is set.
TEST_F(KeptQuirksTest, NoTarget_RanksNothingAnyMore) {
  EXPECT_EQ(targetCommand(project(), OptimisationStrategy::None, m_text.console), ExitCode::kDone)
      << m_text.takeMessages();
  EXPECT_EQ(bestRow(), ExitCode::kNoRowSolved);
  EXPECT_EQ(rows(), m_asSolved);
  EXPECT_EQ(targetCommand(project(), OptimisationStrategy::Minimise, m_text.console), ExitCode::kDone);
  EXPECT_EQ(bestRow(), ExitCode::kDone);
}

TEST_F(KeptQuirksTest, TargetThatLeftTheStudyFile_RanksNothingAnyMore) {
  m_box.edit("  target: maximise\n", "");
  EXPECT_EQ(solveAll().alreadySolved, 3U);
  EXPECT_EQ(bestRow(), ExitCode::kNoRowSolved);
}

} // namespace
} // namespace Workbench
