#include "Workbench/LookCommands.h"

#include "Workbench/ExitCode.h"
#include "Workbench/tests/BoxStudy.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace Workbench {
namespace {

// Rows Base (1, 10 m), two (2, 10 m) and Variant 2 (3, 10 m); the cost is x + y in mm + x * y in m, to be maximised.
class LookCommandsTest : public ::testing::Test {
protected:
  void solveAll() {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    solve(box);
  }

  // The row "two" fails.
  void solveAllButOne() {
    m_box.writeSolver("if [ $x = 2 ]; then echo bad thing; exit 7; fi");
    solveAll();
  }

  ShowOptions shown() const {
    ShowOptions options;
    options.project = m_box.projectFile();
    return options;
  }

  BoxStudy m_box;
  ConsoleText m_text;
};

TEST_F(LookCommandsTest, Show_Table_MarksTheBestAndCounts) {
  solveAllButOne();
  EXPECT_EQ(showCommand(shown(), m_text.console), ExitCode::kDone);
  const std::string out = m_text.takeOut();
  EXPECT_NE(out.find("\n* 2  Variant 2"), std::string::npos) << out;
  EXPECT_NE(out.find("\n  1  two"), std::string::npos) << out;
  EXPECT_NE(out.find("failed: exit code: 7"), std::string::npos) << out;
  EXPECT_NE(out.find("* Best: row 2, Variant 2, cost 10033 (the baseline: 10011)\n"), std::string::npos)
      << out;
  EXPECT_NE(out.find("3 rows: 2 ok, 1 failed\n"), std::string::npos) << out;
  EXPECT_EQ(m_text.takeMessages(), "");
}

TEST_F(LookCommandsTest, Show_Csv_HasUnitsAndExactNumbers) {
  solveAllButOne();
  ShowOptions options = shown();
  options.format = OutputFormat::Csv;
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "row,name,status,reason,width,Box.y,total,Box.product,cost\n"
                              ",,,,,m,,m,\n"
                              "0,Base,ok,,1,10,10001,10,10011\n"
                              "1,two,failed,exit code: 7,2,10,,,\n"
                              "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(LookCommandsTest, Show_Json_HasNullForWhatIsMissing) {
  solveAllButOne();
  ShowOptions options = shown();
  options.format = OutputFormat::Json;
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone);
  const auto document = nlohmann::json::parse(m_text.takeOut());
  EXPECT_EQ(document["best"], 2);
  EXPECT_EQ(document["outputs"][1]["unit"], "m");
  EXPECT_EQ(document["rows"][1]["status"], "failed");
  EXPECT_TRUE(document["rows"][1]["outputs"][0].is_null());
  EXPECT_TRUE(document["rows"][1]["cost"].is_null());
  EXPECT_EQ(document["rows"][2]["cost"], 10033.0);
}

TEST_F(LookCommandsTest, Show_StudyFile_StandsForItsProject) {
  solveAll();
  ShowOptions options = shown();
  options.project = m_box.file("box.study.yaml");
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone);
}

TEST_F(LookCommandsTest, Show_NoProjectYet_SaysWhatMakesIt) {
  ShowOptions options = shown();
  options.project = m_box.file("box.study.yaml");
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "There is no project " + m_box.projectFile() + " yet: \"optstudy run '" +
                                       options.project + "'\" makes it.\n");
}

TEST_F(LookCommandsTest, Show_UnknownColumn_IsWrongUsage) {
  solveAll();
  ShowOptions options = shown();
  options.selection.sort = "totl";
  EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(), "there is no column \"totl\", did you mean \"total\"?\n");
  EXPECT_EQ(m_text.takeOut(), "");
}

TEST_F(LookCommandsTest, Best_PrintsTheRowBesideTheBaseline) {
  solveAll();
  EXPECT_EQ(bestCommand(m_box.projectFile(), OutputFormat::Csv, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), "row,name,status,reason,width,Box.y,total,Box.product,cost\n"
                              ",,,,,m,,m,\n"
                              "0,Base,ok,,1,10,10001,10,10011\n"
                              "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(LookCommandsTest, Best_NothingSolved_SaysSo) {
  open(m_box).session.reset();
  EXPECT_EQ(bestCommand(m_box.projectFile(), OutputFormat::Table, m_text.console), ExitCode::kNoRowSolved);
  EXPECT_EQ(m_text.takeMessages(), "No row has a cost: \"optstudy status\" says why rows are not solved.\n");
}

TEST_F(LookCommandsTest, Status_CountsFailuresByReason) {
  solveAllButOne();
  EXPECT_EQ(statusCommand(m_box.projectFile(), OutputFormat::Table, m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), m_box.projectFile() +
                                  ": Box\n3 rows: 2 ok, 1 failed\n"
                                  "  1 failed: exit code\n"
                                  "cost:   %Box.sum% + %Box.product%\n"
                                  "target: maximise\n"
                                  "* Best: row 2, Variant 2, cost 10033 (the baseline: 10011)\n");
}

TEST_F(LookCommandsTest, Status_Json) {
  solveAllButOne();
  EXPECT_EQ(statusCommand(m_box.projectFile(), OutputFormat::Json, m_text.console), ExitCode::kDone);
  const auto document = nlohmann::json::parse(m_text.takeOut());
  EXPECT_EQ(document["ok"], 2);
  EXPECT_EQ(document["failures"]["exit code"], 1);
  EXPECT_EQ(document["target"], "maximise");
}

TEST_F(LookCommandsTest, Versions_PrintsTheTree) {
  open(m_box).session.reset();
  EXPECT_EQ(versionsCommand(m_box.projectFile(), m_text.console), ExitCode::kDone);
  const std::string out = m_text.takeOut();
  EXPECT_EQ(out.find("Base (the baseline) <- current\n  "), 0U) << out;
  EXPECT_NE(out.find("two (a row's)\n"), std::string::npos) << out;
}

TEST_F(LookCommandsTest, Log_PrintsRecordAndOutput) {
  solveAllButOne();
  EXPECT_EQ(logCommand(m_box.projectFile(), "two", m_text.console), ExitCode::kDone);
  const std::string out = m_text.takeOut();
  EXPECT_EQ(out.find("row 1, two: failed: exit code: 7\ncommand:   ./solve.sh\nduration:  "), 0U) << out;
  EXPECT_NE(out.find("exit code: 7\nstdout.log:\nbad thing\n"), std::string::npos) << out;
}

TEST_F(LookCommandsTest, Log_UnknownRow_NamesTheNearest) {
  open(m_box).session.reset();
  EXPECT_EQ(logCommand(m_box.projectFile(), "tow", m_text.console), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(),
            "There is no row \"tow\", did you mean \"two\"?\n"
            "A row is given by its name or its number, 0 to 2; \"optstudy show\" lists them.\n");
}

TEST_F(LookCommandsTest, Folder_HoldsTheFilesOfTheRun) {
  solveAll();
  EXPECT_EQ(folderCommand(m_box.projectFile(), "2", m_text.console), ExitCode::kDone);
  std::string folder = m_text.takeOut();
  ASSERT_FALSE(folder.empty());
  folder.pop_back();
  EXPECT_TRUE(std::filesystem::exists(folder + "/result.txt")) << folder;
}

TEST_F(LookCommandsTest, Folder_RowWithoutRun_SaysSo) {
  open(m_box).session.reset();
  EXPECT_EQ(folderCommand(m_box.projectFile(), "two", m_text.console), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), "The row \"two\" has no files: it was not run, or they were not kept.\n");
}

TEST_F(LookCommandsTest, DamagedProject_IsRefused) {
  m_box.write("box.optstudy", "no project");
  EXPECT_EQ(showCommand(shown(), m_text.console), ExitCode::kInvalid);
  EXPECT_NE(m_text.takeMessages(), "");
}

TEST_F(LookCommandsTest, Log_ControlCharacters_DoNotReachTheTerminal) {
  m_box.edit("command: [./solve.sh]", "command: [./solve.sh, \"{{Box.note}}\"]");
  m_box.edit("value: hello", "value: \"a\\e[31m\\nb\"");
  solveAll();
  EXPECT_EQ(logCommand(m_box.projectFile(), "0", m_text.console), ExitCode::kDone);
  EXPECT_NE(m_text.takeOut().find("command:   ./solve.sh a?[31m?b\n"), std::string::npos);
}

TEST_F(LookCommandsTest, Best_WithoutACost_SaysSo) {
  m_box.edit("  cost: \"%Box.sum% + %Box.product%\"\n", "");
  solveAll();
  EXPECT_EQ(bestCommand(m_box.projectFile(), OutputFormat::Table, m_text.console), ExitCode::kNoRowSolved);
  EXPECT_EQ(m_text.takeMessages(), "The study has no cost: \"optstudy cost PROJECT TEXT\" sets one.\n");
}

TEST_F(LookCommandsTest, Best_CostThatIsNoNumberAnywhere_SaysSo) {
  m_box.edit("\"%Box.sum% + %Box.product%\"", "\"sqrt(0.0 - %Box.sum%)\"");
  solveAll();
  EXPECT_EQ(bestCommand(m_box.projectFile(), OutputFormat::Table, m_text.console), ExitCode::kNoRowSolved);
  EXPECT_EQ(m_text.takeMessages(),
            "No row has a cost that is a number: \"optstudy show\" shows what they have.\n");
}

} // namespace
} // namespace Workbench
