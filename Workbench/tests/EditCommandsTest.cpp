#include "Workbench/EditCommands.h"

#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LookCommands.h"
#include "Workbench/tests/BoxStudy.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

using MathematicalUtilities::OptimisationStrategy;

// Rows Base (1, 10 m), two (2, 10 m) and Variant 2 (3, 10 m); the cost is x + y in mm + x * y in m, to be maximised.
class EditCommandsTest : public ::testing::Test {
protected:
  void SetUp() override {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    solve(box);
  }

  std::string project() const { return m_box.projectFile(); }

  // The matrix as it is in the file.
  std::string csv() {
    ShowOptions options;
    options.project = project();
    options.format = OutputFormat::Csv;
    EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone) << m_text.takeMessages();
    const std::string text = m_text.takeOut();
    return text.substr(text.find('\n', text.find('\n') + 1) + 1);
  }

  std::string titles() {
    ShowOptions options;
    options.project = project();
    options.format = OutputFormat::Csv;
    EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone) << m_text.takeMessages();
    const std::string text = m_text.takeOut();
    return text.substr(0, text.find('\n'));
  }

  const std::string m_asSolved = "0,Base,ok,,1,10,10001,10,10011\n"
                                 "1,two,ok,,2,10,10002,20,10022\n"
                                 "2,Variant 2,ok,,3,10,10003,30,10033\n";
  BoxStudy m_box;
  ConsoleText m_text;
};

TEST_F(EditCommandsTest, Cost_Another_PricesEveryRowAnew) {
  EXPECT_EQ(costCommand(project(), "2.0 * %Box.product%", m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("* Best: row 2, Variant 2, cost 60 (the baseline: 20)\n"),
            std::string::npos);
  EXPECT_EQ(csv(),
            "0,Base,ok,,1,10,10001,10,20\n1,two,ok,,2,10,10002,20,40\n2,Variant 2,ok,,3,10,10003,30,60\n");
}

TEST_F(EditCommandsTest, Cost_ThatCannotBeBuilt_LeavesTheOldOne) {
  EXPECT_EQ(costCommand(project(), "2.0 * * 3", m_text.console), ExitCode::kInvalid);
  const std::string messages = m_text.takeMessages();
  EXPECT_EQ(messages.find("The cost cannot be built, and the old one stays: "), 0U) << messages;
  EXPECT_NE(messages.find("2.0 * ^* 3"), std::string::npos) << messages;
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, Cost_ThatIsSeldomMeant_IsTakenWithAWarning) {
  EXPECT_EQ(costCommand(project(), "%Box.sum% - 1", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(),
            "warning: the cost: \"%Box.sum%\" is a double and becomes an int, the type of the right operand "
            "\"1\". Write \"1.0\" instead of \"1\"; at character 1: ^%Box.sum% - 1\n");
  m_text.takeOut();
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10000\n"
                   "1,two,ok,,2,10,10002,20,10001\n"
                   "2,Variant 2,ok,,3,10,10003,30,10002\n");
}

TEST_F(EditCommandsTest, Cost_ThatCannotBeBuilt_HasItsErrorAndNoWarning) {
  EXPECT_EQ(costCommand(project(), "%Box.sum% - 1 +", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            "The cost cannot be built, and the old one stays: Syntax error - Right hand side invalid at "
            "character 16: %Box.sum% - 1 +^\n");
}

TEST_F(EditCommandsTest, Cost_NameThatIsUnknown_ComesWithTheNearestOne) {
  EXPECT_EQ(costCommand(project(), "%Box.prodct% * 1.0", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            "The cost cannot be built, and the old one stays: Undefined variable : Box.prodct, did you mean "
            "\"Box.product\"? at character 1: ^%Box.prodct% * 1.0\n");
}

TEST_F(EditCommandsTest, Cost_NameWithoutItsSigns_ComesWithThem) {
  EXPECT_EQ(costCommand(project(), "Box.product * 1.0", m_text.console), ExitCode::kInvalid);
  const std::string messages = m_text.takeMessages();
  EXPECT_NE(messages.find("; names stand between %, as in \"%Box.product%\" at character "),
            std::string::npos)
      << messages;
}

TEST_F(EditCommandsTest, Cost_PlaceOfAnError_CountsCharactersAndNotBytes) {
  EXPECT_EQ(costCommand(project(), "\"\u00e4\u00f6\u00fc\" + * 3", m_text.console), ExitCode::kInvalid);
  EXPECT_NE(m_text.takeMessages().find(" at character 9: \"\u00e4\u00f6\u00fc\" + ^* 3\n"),
            std::string::npos);
}

TEST_F(EditCommandsTest, Cost_WithoutText_IsPrinted) {
  EXPECT_EQ(costCommand(project(), std::nullopt, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "%Box.sum% + %Box.product%\n");
}

TEST_F(EditCommandsTest, Cost_ThatThrowsForSomeRow_PricesTheOthers) {
  EXPECT_EQ(costCommand(project(), "1 / ((int) %Box.x% - 2)", m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeMessages().find("the cost of \"two\" cannot be computed: "), std::string::npos);
  m_text.takeOut();
  EXPECT_EQ(csv(),
            "0,Base,ok,,1,10,10001,10,-1\n1,two,ok,,2,10,10002,20,\n2,Variant 2,ok,,3,10,10003,30,1\n");
}

TEST_F(EditCommandsTest, Target_Minimise_FindsAnotherBest) {
  EXPECT_EQ(targetCommand(project(), OptimisationStrategy::Minimise, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "* Best: row 0, Base, cost 10011\n");
  EXPECT_EQ(targetCommand(project(), std::nullopt, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "minimise\n");
}

TEST_F(EditCommandsTest, Add_TakesOtherInputsFromTheBaseline) {
  EXPECT_EQ(addRowCommand(project(), {{"Box.y", "2000 mm"}}, "short", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Added row 3, short; \"optstudy solve\" or \"optstudy run\" solves it\n");
  EXPECT_EQ(csv(), m_asSolved + "3,short,not run,,1,2,,,\n");
}

TEST_F(EditCommandsTest, Add_WithoutName_MakesOneUp) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "5"}}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), m_asSolved + "3,Variant 3,not run,,5,10,,,\n");
}

TEST_F(EditCommandsTest, Add_SameInputs_SaysSo) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "2"}}, "again", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages().find("note: the row \"two\" has the same inputs\n"), 0U);
}

TEST_F(EditCommandsTest, Add_OutsideTheLimits_IsRefused) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "51"}}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "\"51\" is above the maximum of the input \"width\", 50\n");
  EXPECT_EQ(addRowCommand(project(), {{"width", "101"}}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "Box.x: \"101\" is above the maximum, 100\n");
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, Add_NameThatIsTaken_IsRefused) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "5"}}, "two", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The name \"two\" belongs to another version of the project\n");
}

TEST_F(EditCommandsTest, Add_Output_IsRefused) {
  EXPECT_EQ(addRowCommand(project(), {{"total", "5"}}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "\"total\" is an output, which the solver computes\n");
}

TEST_F(EditCommandsTest, Set_MakesASolvedRowStale) {
  EXPECT_EQ(setRowCommand(project(), "two", {{"width", "7"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Row 1, two, is now stale\n");
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10011\n"
                   "1,two,stale,,7,10,,,\n"
                   "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(EditCommandsTest, Set_BackAgain_MakesItOkAgain) {
  EXPECT_EQ(setRowCommand(project(), "two", {{"width", "7"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(setRowCommand(project(), "1", {{"width", "2"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, Set_Baseline_LeavesTheOtherRows) {
  EXPECT_EQ(setRowCommand(project(), "0", {{"Box.y", "20"}}, m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,stale,,1,20,,,\n"
                   "1,two,ok,,2,10,10002,20,10022\n"
                   "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(EditCommandsTest, Rename_KeepsResults) {
  EXPECT_EQ(renameRowCommand(project(), "two", "double", m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10011\n"
                   "1,double,ok,,2,10,10002,20,10022\n"
                   "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(EditCommandsTest, Rename_BaselineOrTakenName_IsRefused) {
  EXPECT_EQ(renameRowCommand(project(), "0", "x", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "Row 0 is the baseline, whose name ties its rows to it\n");
  EXPECT_EQ(renameRowCommand(project(), "two", "Variant 2", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(renameRowCommand(project(), "two", "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, Remove_TakesTheRowsAway) {
  EXPECT_EQ(removeRowsCommand(project(), {"two", "2"}, false, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Removed row 2, Variant 2\nRemoved row 1, two\n");
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10011\n");
  EXPECT_EQ(versionsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut().find("two"), std::string::npos);
}

TEST_F(EditCommandsTest, Remove_KeepVersion_LeavesTheVersion) {
  EXPECT_EQ(removeRowsCommand(project(), {"two"}, true, m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10011\n1,Variant 2,ok,,3,10,10003,30,10033\n");
  EXPECT_EQ(versionsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("two"), std::string::npos);
}

TEST_F(EditCommandsTest, Remove_Baseline_RemovesNothing) {
  EXPECT_EQ(removeRowsCommand(project(), {"two", "0"}, false, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            "Row 0 is the baseline, which cannot be removed; \"optstudy end\" ends the study\n");
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, InputRemove_RowsGetTheBaselinesValue) {
  EXPECT_EQ(removeGroupCommand(project(), true, "width", m_text.console), ExitCode::kDone);
  EXPECT_EQ(titles(), "row,name,status,reason,Box.y,total,Box.product,cost");
  EXPECT_EQ(csv(), "0,Base,ok,,10,10001,10,10011\n1,two,stale,,10,,,\n2,Variant 2,stale,,10,,,\n");
}

TEST_F(EditCommandsTest, InputAdd_RowsKeepTheirResults) {
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.note"}, "remark", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Added the input \"remark\"\n");
  EXPECT_EQ(titles(), "row,name,status,reason,width,Box.y,remark,total,Box.product,cost");
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,hello,10001,10,10011\n"
                   "1,two,ok,,2,10,hello,10002,20,10022\n"
                   "2,Variant 2,ok,,3,10,hello,10003,30,10033\n");
}

TEST_F(EditCommandsTest, InputAdd_WhatCannotBeOne_IsRefused) {
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.sum"}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "\"Box.sum\" cannot be an input: only values that somebody sets can\n");
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.x"}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "\"Box.x\" is in a group already\n");
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.nte"}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The model has no attribute \"Box.nte\", did you mean \"Box.note\"?\n");
  EXPECT_EQ(csv(), m_asSolved);
}

TEST_F(EditCommandsTest, OutputRemoveAndAdd_FindsTheResultsAgain) {
  EXPECT_EQ(costCommand(project(), "", m_text.console), ExitCode::kDone);
  m_text.takeOut();
  EXPECT_EQ(removeGroupCommand(project(), false, "total", m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10\n1,two,ok,,2,10,20\n2,Variant 2,ok,,3,10,30\n");
  EXPECT_EQ(addGroupCommand(project(), false, {"Box.sum"}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10,10001\n1,two,ok,,2,10,20,10002\n2,Variant 2,ok,,3,10,30,10003\n");
}

TEST_F(EditCommandsTest, GroupMove_ChangesTheOrderOfColumns) {
  EXPECT_EQ(moveGroupCommand(project(), "width", 1, m_text.console), ExitCode::kDone);
  EXPECT_EQ(titles(), "row,name,status,reason,Box.y,width,total,Box.product,cost");
  EXPECT_EQ(csv(), "0,Base,ok,,10,1,10001,10,10011\n"
                   "1,two,ok,,10,2,10002,20,10022\n"
                   "2,Variant 2,ok,,10,3,10003,30,10033\n");
  EXPECT_EQ(moveGroupCommand(project(), "width", 0, m_text.console), ExitCode::kDone);
  EXPECT_EQ(titles(), "row,name,status,reason,width,Box.y,total,Box.product,cost");
  EXPECT_EQ(moveGroupCommand(project(), "width", 2, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The places of inputs are 0 to 1\n");
}

TEST_F(EditCommandsTest, GroupRename_GivesTheColumnAnotherTitle) {
  EXPECT_EQ(renameGroupCommand(project(), "width", "breadth", m_text.console), ExitCode::kDone);
  EXPECT_EQ(titles(), "row,name,status,reason,breadth,Box.y,total,Box.product,cost");
  EXPECT_EQ(renameGroupCommand(project(), "breadth", "total", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "There is a group \"total\" already\n");
}

TEST_F(EditCommandsTest, InputSet_LimitsAreKeptAndShown) {
  TypedLimits limits;
  limits.minimum = "500 mm";
  limits.step = "250 mm";
  EXPECT_EQ(limitGroupCommand(project(), "Box.y", limits, m_text.console), ExitCode::kDone);
  EXPECT_EQ(groupsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "inputs:\n"
                              "  width: Box.x  minimum 0, maximum 50, step 1\n"
                              "  Box.y: Box.y  minimum 0.5 m, step 0.25 m\n"
                              "outputs:\n"
                              "  total: Box.sum\n"
                              "  Box.product: Box.product\n");
  EXPECT_EQ(addRowCommand(project(), {{"Box.y", "0.4"}}, "", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "\"0.4 m\" is below the minimum of the input \"Box.y\", 0.5 m\n");
}

TEST_F(EditCommandsTest, InputSet_WrongUnit_ChangesNothing) {
  TypedLimits limits;
  limits.minimum = "1 m";
  limits.maximum = "3 kg";
  EXPECT_EQ(limitGroupCommand(project(), "Box.y", limits, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(groupsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("  Box.y: Box.y\n"), std::string::npos);
}

TEST_F(EditCommandsTest, End_KeepsTheVersions) {
  EXPECT_EQ(endCommand(project(), false, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Ended the study; 2 rows were kept as versions of the project\n");
  EXPECT_EQ(versionsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("two"), std::string::npos);
  EXPECT_EQ(statusCommand(project(), OutputFormat::Table, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The project " + project() + " has no study: \"optstudy begin '" +
                                       project() + "'\" begins one.\n");
}

TEST_F(EditCommandsTest, End_DeleteVersions_LeavesTheBaseline) {
  EXPECT_EQ(endCommand(project(), true, m_text.console), ExitCode::kDone);
  EXPECT_EQ(versionsCommand(project(), m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "Base <- current\n");
}

TEST_F(EditCommandsTest, Begin_AfterTheEnd_BeginsAnew) {
  EXPECT_EQ(endCommand(project(), true, m_text.console), ExitCode::kDone);
  EXPECT_EQ(beginCommand(project(), EntityModel::ModelVersionStudyType::Parametric, m_text.console),
            ExitCode::kDone);
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.x"}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(addGroupCommand(project(), false, {"Box.sum"}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10001\n");
  EXPECT_EQ(beginCommand(project(), EntityModel::ModelVersionStudyType::Parametric, m_text.console),
            ExitCode::kInvalid);
}

TEST_F(EditCommandsTest, ProjectHeldByAnother_IsSaidSo) {
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session);
  EXPECT_EQ(targetCommand(project(), OptimisationStrategy::Minimise, m_text.console), ExitCode::kHeld);
  EXPECT_NE(m_text.takeMessages().find("until it is closed there it can be opened for reading only"),
            std::string::npos);
}

TEST_F(EditCommandsTest, End_DeletingVersions_LeavesThoseOfAnEarlierStudy) {
  EXPECT_EQ(endCommand(project(), false, m_text.console), ExitCode::kDone);
  EXPECT_EQ(beginCommand(project(), EntityModel::ModelVersionStudyType::Parametric, m_text.console),
            ExitCode::kDone);
  EXPECT_EQ(addGroupCommand(project(), true, {"Box.x"}, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(addRowCommand(project(), {{"Box.x", "7"}}, "seven", m_text.console), ExitCode::kDone);
  m_text.takeMessages();
  EXPECT_EQ(endCommand(project(), true, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Ended the study; 1 row was deleted\n"
                                   "note: the version \"Parametric Copy of Base\" is no row of it and stays\n"
                                   "note: the version \"two\" is no row of it and stays\n"
                                   "note: the version \"Variant 2\" is no row of it and stays\n");
  EXPECT_EQ(versionsCommand(project(), m_text.console), ExitCode::kDone);
  const std::string versions = m_text.takeOut();
  EXPECT_NE(versions.find("two"), std::string::npos) << versions;
  EXPECT_EQ(versions.find("seven"), std::string::npos) << versions;
}

TEST_F(EditCommandsTest, Row_NamedLikeTheNumberOfAnother_IsNotGuessed) {
  EXPECT_EQ(renameRowCommand(project(), "Variant 2", "1", m_text.console), ExitCode::kDone);
  m_text.takeMessages();
  EXPECT_EQ(removeRowsCommand(project(), {"1"}, false, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages().find("\"1\" is the number of the row \"two\" and the name of row 2.\n"),
            0U);
  EXPECT_EQ(removeRowsCommand(project(), {"2"}, false, m_text.console), ExitCode::kDone);
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10011\n1,two,ok,,2,10,10002,20,10022\n");
}

TEST_F(EditCommandsTest, RemovedGroupThatTheCostNames_IsWarnedOf) {
  EXPECT_EQ(removeGroupCommand(project(), false, "total", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(),
            "Removed the output \"total\"\n"
            "warning: the cost names %Box.sum%: no row has a cost until \"optstudy cost\" "
            "sets another one\n");
  EXPECT_EQ(bestCommand(project(), OutputFormat::Table, m_text.console), ExitCode::kNoRowSolved);
  EXPECT_EQ(m_text.takeMessages().find("No row has a cost, because it cannot be built: Undefined variable"),
            0U);
  EXPECT_EQ(statusCommand(project(), OutputFormat::Table, m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("        which cannot be built: Undefined variable"), std::string::npos);
}

TEST_F(EditCommandsTest, GroupName_ThatIsAColumnOfEveryTable_IsRefused) {
  EXPECT_EQ(renameGroupCommand(project(), "width", "cost", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            "the name \"cost\" is that of a column that every table has; give another name\n");
  EXPECT_EQ(renameGroupCommand(project(), "width", "a\nb", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "the name of a group has to be UTF-8 text without control characters\n");
}

TEST_F(EditCommandsTest, RowName_ThatIsNoText_IsRefused) {
  EXPECT_EQ(addRowCommand(project(), {{"width", "7"}}, "bad\xff", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "A row's name has to be UTF-8 text\n");
}

TEST_F(EditCommandsTest, Limits_ThatContradictThoseThatAreThere_AreRefused) {
  TypedLimits minimum;
  minimum.minimum = "20";
  EXPECT_EQ(limitGroupCommand(project(), "width", minimum, m_text.console), ExitCode::kDone);
  TypedLimits maximum;
  maximum.maximum = "10";
  m_text.takeMessages();
  EXPECT_EQ(limitGroupCommand(project(), "width", maximum, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The maximum is below the minimum\n");
  TypedLimits bounds;
  bounds.lowBound = "8";
  bounds.highBound = "7";
  EXPECT_EQ(limitGroupCommand(project(), "width", bounds, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The high bound is below the low bound\n");
}

TEST_F(EditCommandsTest, Status_AsCsv_IsRefused) {
  EXPECT_EQ(statusCommand(project(), OutputFormat::Csv, m_text.console), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(),
            "The status is no table: \"--format json\" is for programs, \"optstudy export\" writes CSV.\n");
}

} // namespace
} // namespace Workbench
