#include "Workbench/RunInputs.h"

#include "Workbench/ModelDeclaration.h"
#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

class RunInputsTest : public ::testing::Test {
protected:
  std::string load() {
    std::vector<FileProblem> problems;
    const std::unique_ptr<StudyFile> study = m_box.study();
    m_doubts.clear();
    const std::optional<RunInputs> inputs = RunInputs::load(*study, m_units, m_doubts, problems);
    EXPECT_EQ(inputs.has_value(), problems.empty());
    return textOf(problems);
  }
  // One line each, without the study's folder.
  std::string textOf(const std::vector<FileProblem> &problems) const {
    std::string text;
    for (const FileProblem &problem : problems) {
      std::string line = problem.toText();
      const std::string folder = m_box.file("");
      for (std::size_t at = line.find(folder); at != std::string::npos; at = line.find(folder)) {
        line.erase(at, folder.size());
      }
      text += line + "\n";
    }
    return text;
  }

  BoxStudy m_box;
  HostUnits m_units;
  std::vector<FileProblem> m_doubts;
};

TEST_F(RunInputsTest, Load_GoodTemplate_HasNothingToSay) {
  EXPECT_EQ(load(), "");
  EXPECT_EQ(textOf(m_doubts), "");
}

TEST_F(RunInputsTest, Load_PlaceholderThatCannotBeFilled_IsReportedWithItsPlace) {
  m_box.write(
      "in.txt.template",
      "{{Box.w}}\n{{Box.sum}} {{Box.y in s}}\n {{Box.note as %g}} {{Box.y in furlongz}}{{Box.y in C}}");
  const std::string problems = load();
  EXPECT_NE(
      problems.find("in.txt.template:1:1: the model has no attribute \"Box.w\", did you mean \"Box.x\"?\n"),
      std::string::npos)
      << problems;
  EXPECT_NE(problems.find("in.txt.template:2:1: \"Box.sum\" is a result: it has no value before the run\n"),
            std::string::npos);
  EXPECT_NE(problems.find(
                "in.txt.template:2:13: \"Box.y\" is declared in \"m\", which cannot be converted to \"s\"\n"),
            std::string::npos);
  EXPECT_NE(
      problems.find("in.txt.template:3:2: \"Box.note\" is no number and takes neither unit nor format\n"),
      std::string::npos);
  EXPECT_NE(problems.find("in.txt.template:3:21: "), std::string::npos);
  EXPECT_NE(problems.find(
                "in.txt.template:3:42: \"Box.y\" is declared in \"m\", which cannot be converted to \"C\" "
                "(\"C\" is the coulomb; degrees Celsius are \"degC\")\n"),
            std::string::npos)
      << problems;
}

TEST_F(RunInputsTest, Load_MissingFiles_AreReportedAtTheirEntryInTheStudyFile) {
  m_box.edit("{from: in.txt.template, to: in.txt}", "{from: absent, to: in.txt}");
  m_box.edit("  command:", "  copies: [gone]\n  command:");
  EXPECT_EQ(load(), "box.study.yaml:11:15: absent: No such file or directory\n"
                    "box.study.yaml:12:12: gone: No such file or directory\n");
}

TEST_F(RunInputsTest, Load_InputThatNothingUses_IsDoubtful) {
  m_box.write("in.txt.template", "{{Box.x}}\n");
  EXPECT_EQ(load(), "");
  EXPECT_EQ(textOf(m_doubts),
            "box.study.yaml:20:79: no template uses \"Box.y\": the solver never sees this input\n");
}

TEST_F(RunInputsTest, Load_InputThatOnlyTheCostOrTheRuleUses_IsMeantSo) {
  m_box.write("in.txt.template", "{{Box.x}}\n");
  m_box.edit("cost: \"", "cost: \"%Box.y% + ");
  EXPECT_EQ(load(), "");
  EXPECT_EQ(textOf(m_doubts), "");
  m_box.edit("cost: \"%Box.y% + ", "rule: \"%Box.y% > 0.0\"\n  cost: \"");
  EXPECT_EQ(load(), "");
  EXPECT_EQ(textOf(m_doubts), "");
}

TEST_F(RunInputsTest, Load_TemplateWithoutPlaceholders_IsDoubtful) {
  m_box.write("in.txt.template", "1 2\n");
  EXPECT_EQ(load(), "");
  ASSERT_EQ(m_doubts.size(), 3U);
  EXPECT_EQ(
      textOf({m_doubts[0]}),
      "box.study.yaml:11:15: in.txt.template holds no placeholder: every run gets the same file; list it "
      "under copies, or put a placeholder in it\n");
}

TEST_F(RunInputsTest, Render_EveryKindOfValue_IsWrittenForTheSolver) {
  m_box.edit(
      "    note: {kind: text, value: hello}\n",
      "    note: {kind: text, value: hello}\n    n: {kind: integer, value: 7}\n    b: {kind: boolean, value: "
      "true}\n    c: {kind: choice, options: [one, two], value: two}\n");
  m_box.write("in.txt.template",
              "{{Box.x}}|{{Box.y}}|{{Box.y in mm as %.1e}}|{{Box.note}}|{{Box.n}}|{{Box.b}}|{{Box.c}}");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  std::vector<FileProblem> problems;
  const auto files = box.inputs->render(ModelValues(box.session->model()), problems);
  ASSERT_TRUE(files.has_value());
  EXPECT_EQ((*files)[0].name, "in.txt");
  EXPECT_EQ((*files)[0].content, "1|10|1.0e+04|hello|7|1|two");
}

} // namespace
} // namespace Workbench
