#include "Workbench/ExchangeCommands.h"

#include "Workbench/EditCommands.h"
#include "Workbench/ExitCode.h"
#include "Workbench/tests/BoxStudy.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Workbench {
namespace {

// Rows Base (1, 10 m), two (2, 10 m) and Variant 2 (3, 10 m), all solved.
class ExchangeCommandsTest : public ::testing::Test {
protected:
  void SetUp() override {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    solve(box);
  }

  std::string project() const { return m_box.projectFile(); }

  std::string exported(OutputFormat format = OutputFormat::Csv) {
    EXPECT_EQ(exportCommand(project(), format, "", m_text.console), ExitCode::kDone);
    return m_text.takeOut();
  }

  int import(const std::string &content, const std::string &name = "rows.csv") {
    m_box.write(name, content);
    return importCommand(project(), m_box.file(name), m_text.console);
  }

  const std::string m_asSolved = "row,name,status,reason,width,Box.y,total,Box.product,cost\n"
                                 ",,,,,m,,m,\n"
                                 "0,Base,ok,,1,10,10001,10,10011\n"
                                 "1,two,ok,,2,10,10002,20,10022\n"
                                 "2,Variant 2,ok,,3,10,10003,30,10033\n";
  BoxStudy m_box;
  ConsoleText m_text;
};

TEST_F(ExchangeCommandsTest, Export_Csv) {
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Export_File_IsWritten) {
  EXPECT_EQ(exportCommand(project(), OutputFormat::Csv, m_box.file("out.csv"), m_text.console),
            ExitCode::kDone);
  EXPECT_EQ(m_box.read("out.csv"), m_asSolved);
  EXPECT_EQ(m_text.takeMessages(), "Wrote 3 rows to " + m_box.file("out.csv") + "\n");
}

TEST_F(ExchangeCommandsTest, Export_FileThatExists_IsReplacedOnlyWhenSomebodyAgrees) {
  m_box.write("out.csv", "mine");
  EXPECT_EQ(exportCommand(project(), OutputFormat::Csv, m_box.file("out.csv"), m_text.console),
            ExitCode::kUsage);
  EXPECT_EQ(m_box.read("out.csv"), "mine");
  m_text.console.confirm = [](const std::string & /*question*/) {
    return true;
  };
  EXPECT_EQ(exportCommand(project(), OutputFormat::Csv, m_box.file("out.csv"), m_text.console),
            ExitCode::kDone);
  EXPECT_EQ(m_box.read("out.csv"), m_asSolved);
}

TEST_F(ExchangeCommandsTest, ExportImportExport_IsTheSameToTheByte) {
  for (const OutputFormat format : {OutputFormat::Csv, OutputFormat::Json}) {
    const std::string before = exported(format);
    EXPECT_EQ(import(before, format == OutputFormat::Csv ? "rows.csv" : "rows.json"), ExitCode::kDone)
        << m_text.takeMessages();
    EXPECT_EQ(m_text.takeMessages(), "Imported 3 rows: 0 added, 0 changed, 3 as they were\n");
    EXPECT_EQ(exported(format), before);
  }
}

TEST_F(ExchangeCommandsTest, Import_IntoAProjectWithoutRows_AddsThem) {
  const std::string csv = exported();
  EXPECT_EQ(removeRowsCommand(project(), {"1", "2"}, false, m_text.console), ExitCode::kDone);
  m_text.takeMessages();
  EXPECT_EQ(import(csv), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Imported 3 rows: 2 added, 0 changed, 1 as they were\n");
  EXPECT_EQ(exported(), "row,name,status,reason,width,Box.y,total,Box.product,cost\n"
                        ",,,,,m,,m,\n"
                        "0,Base,ok,,1,10,10001,10,10011\n"
                        "1,two,not run,,2,10,,,\n"
                        "2,Variant 2,not run,,3,10,,,\n");
}

TEST_F(ExchangeCommandsTest, Import_OtherInputsOfAName_ChangeThatRow) {
  EXPECT_EQ(import("name,width\ntwo,20\n"), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Imported 1 row: 0 added, 1 changed, 0 as they were\n");
  EXPECT_NE(exported().find("1,two,stale,,20,10,,,\n"), std::string::npos);
}

TEST_F(ExchangeCommandsTest, Import_WithoutNames_FindsRowsByTheirInputs) {
  EXPECT_EQ(import("width,Box.y\n3,10\n4,10\n"), ExitCode::kDone);
  EXPECT_EQ(m_text.takeMessages(), "Imported 2 rows: 1 added, 0 changed, 1 as they were\n");
  EXPECT_EQ(exported(), m_asSolved + "3,Variant 3,not run,,4,10,,,\n");
}

TEST_F(ExchangeCommandsTest, Import_Units_AreTakenFromTheirLineOrTheCell) {
  EXPECT_EQ(import("name,Box.y\n,mm\nshort,500\nlong,2 km\n"), ExitCode::kDone) << m_text.takeMessages();
  const std::string csv = exported();
  EXPECT_NE(csv.find("3,short,not run,,1,0.5,,,\n"), std::string::npos) << csv;
  EXPECT_NE(csv.find("4,long,not run,,1,2000,,,\n"), std::string::npos) << csv;
}

TEST_F(ExchangeCommandsTest, Import_AnythingWrong_NamesEveryPlaceAndChangesNothing) {
  EXPECT_EQ(import("name,width,Box.y\nnew,5,10\nbad,x,10\nworse,7,1 kg\n"), ExitCode::kInvalid);
  const std::string file = m_box.file("rows.csv");
  EXPECT_EQ(m_text.takeMessages(),
            file + ":3:2: column 2: Box.x: \"x\" is not a number, alone or with a unit\n" + file +
                ":4:3: column 3: Box.y: \"1 kg\" cannot be converted to \"m\", the declared unit\n"
                "Nothing was imported\n");
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Import_UnknownTitle_NamesTheNearest) {
  EXPECT_EQ(import("name,widht\nnew,5\n"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages().find(m_box.file("rows.csv") +
                                       ":1:2: column 2: There is no input or output \"widht\", did you mean "
                                       "\"width\"?\n"),
            0U);
}

TEST_F(ExchangeCommandsTest, Import_OutsideTheLimits_IsRefused) {
  EXPECT_EQ(import("width\n51\n"), ExitCode::kInvalid);
  EXPECT_EQ(
      m_text.takeMessages().find(m_box.file("rows.csv") + ":2:1: column 1: \"51\" is above the maximum"), 0U);
}

TEST_F(ExchangeCommandsTest, Import_TooFewCells_IsRefused) {
  EXPECT_EQ(import("name,width,Box.y\nnew,5\n"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages().find(m_box.file("rows.csv") +
                                       ":2:1: column 1: the line has 2 cells, the first line 3"),
            0U);
}

TEST_F(ExchangeCommandsTest, Import_OtherBaseline_IsRefused) {
  EXPECT_EQ(import("name,width\nBase,5\n"), ExitCode::kInvalid);
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Import_JsonThatIsNone_IsRefused) {
  EXPECT_EQ(import("{\"rows\": 3}", "rows.json"), ExitCode::kInvalid);
  EXPECT_EQ(import("[", "rows.json"), ExitCode::kInvalid);
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Backup_IsAProjectOfItsOwn) {
  const std::string copy = m_box.file("copy.optstudy");
  EXPECT_EQ(backupCommand(project(), copy, m_text.console), ExitCode::kDone);
  EXPECT_EQ(exportCommand(copy, OutputFormat::Csv, "", m_text.console), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(), m_asSolved);
  EXPECT_EQ(backupCommand(project(), copy, m_text.console), ExitCode::kInvalid);
}

TEST_F(ExchangeCommandsTest, Doctor_SoundProject_AllIsWell) {
  EXPECT_EQ(doctorCommand(project(), m_text.console), ExitCode::kDone);
  const std::string out = m_text.takeOut();
  EXPECT_NE(out.find("All is well.\n"), std::string::npos) << out;
  EXPECT_EQ(out.find("problem"), std::string::npos) << out;
}

TEST_F(ExchangeCommandsTest, Doctor_FilesOfARowAreGone_SaysSo) {
  EXPECT_EQ(folderCommand(project(), "two", m_text.console), ExitCode::kDone);
  std::string folder = m_text.takeOut();
  folder.pop_back();
  ASSERT_EQ(folder.find(std::filesystem::path(project()).parent_path().string()), 0U);
  std::filesystem::rename(folder, folder + ".away");
  EXPECT_EQ(doctorCommand(project(), m_text.console), ExitCode::kInvalid);
  const std::string out = m_text.takeOut();
  EXPECT_NE(out.find("problem  the files of 1 solved row are not there\n"), std::string::npos) << out;
  EXPECT_NE(out.find("\n1 problem\n"), std::string::npos) << out;
}

TEST_F(ExchangeCommandsTest, Doctor_NoProject_SaysHowToRestoreIt) {
  m_box.write("other.optstudy", "no project");
  EXPECT_EQ(doctorCommand(m_box.file("other.optstudy"), m_text.console), ExitCode::kInvalid);
  EXPECT_NE(m_text.takeOut().find("Restore it from a copy made by \"optstudy backup\"."), std::string::npos);
}

TEST_F(ExchangeCommandsTest, Export_OntoTheProject_IsRefused) {
  m_text.console.confirm = [](const std::string &) {
    return true;
  };
  EXPECT_EQ(exportCommand(project(), OutputFormat::Csv, project(), m_text.console), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(), project() + " is the project itself; give another name.\n");
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Export_FileOfJson_IsJson) {
  EXPECT_EQ(exportCommand(project(), OutputFormat::Table, m_box.file("out.json"), m_text.console),
            ExitCode::kDone);
  EXPECT_EQ(m_box.read("out.json"), exported(OutputFormat::Json));
}

TEST_F(ExchangeCommandsTest, Import_TwoRowsOfOneName_AddsNone) {
  EXPECT_EQ(import("name,width\nn,30\nn,31\n"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(), m_box.file("rows.csv") + ":3: there are two rows \"n\" in the table\n");
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Import_NameOfAnotherVersion_AddsNone) {
  EXPECT_EQ(import("name,width\nParametric Copy of Base,30\n"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            m_box.file("rows.csv") +
                ":2: The name \"Parametric Copy of Base\" belongs to another version of the project\n");
  EXPECT_EQ(exported(), m_asSolved);
}

TEST_F(ExchangeCommandsTest, Import_JsonThatIsNone_NamesTheLine) {
  EXPECT_EQ(import("{\n  \"rows\": x\n}\n", "rows.json"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages().find(
                m_box.file("rows.json") +
                ":2:1: the file is no JSON from here on; a table of another ending is read as CSV\n"),
            0U);
  EXPECT_EQ(import("{}", "rows.json"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages().find(
                m_box.file("rows.json") +
                ":1:1: the file is no matrix that \"optstudy export --format json\" wrote\n"),
            0U);
}

} // namespace
} // namespace Workbench
