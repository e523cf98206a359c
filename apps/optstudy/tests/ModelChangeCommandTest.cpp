#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

namespace {

// A study of formulas whose file changes between two runs.
class ModelChangeCommandTest : public ::testing::Test {
protected:
  void SetUp() override {
    write("width: {value: 40 mm, minimum: 10 mm, maximum: 200 mm}", "");
    ASSERT_EQ(run().exitCode, 0);
  }

  void write(const std::string &width, const std::string &more,
             const std::string &input = "Beam.width") const {
    m_folder.write("beam.study.yaml", "version: 1\nmodel:\n  Beam:\n    " + width + "\n" + more +
                                          "    area: {result: true, unit: mm2}\n"
                                          "formulas:\n  Beam.area: \"%Beam.width% * 2.0\"\n"
                                          "study:\n  target: minimise\n  cost: \"%Beam.area%\"\n"
                                          "  inputs: [" +
                                          input +
                                          "]\n  outputs: [Beam.area]\n"
                                          "  variants: {grid: {Beam.width: [20 mm, 30 mm]}}\n");
  }

  CommandResult run(const std::string &option = "-q") const {
    return runCommand(m_folder, {"run", "beam.study.yaml", option});
  }

  TemporaryFolder m_folder;
};

TEST_F(ModelChangeCommandTest, Run_ChangesTheProjectAndSaysWhat) {
  write("width: {value: 40 mm, minimum: 5 mm, maximum: 200 mm}", "    height: 3 mm\n");
  const CommandResult result = run("-v");
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.messages.find(
                "note: the limits of Beam.width are now 5 mm to 200 mm, they were 10 mm to 200 mm\n"
                "note: the attribute \"Beam.height\" was added\n"
                "Nothing to solve: 3 rows are solved already.\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(ModelChangeCommandTest, Run_OtherLimitsOfAnInput_AreSaid) {
  const std::string width = "width: {value: 40 mm, minimum: 10 mm, maximum: 200 mm}";
  write(width, "", "{attribute: Beam.width, minimum: 15 mm, maximum: 60 mm, step: 5 mm}");
  EXPECT_NE(
      run("-v").messages.find("note: the input \"Beam.width\" now has minimum 15 mm, maximum 60 mm, step 5 "
                              "mm; it had no limits\n"),
      std::string::npos);
  EXPECT_EQ(run("-v").messages.find("now has"), std::string::npos);
  write(width, "", "{attribute: Beam.width, maximum: 60 mm}");
  EXPECT_NE(
      run("-v").messages.find("note: the input \"Beam.width\" now has maximum 60 mm; it had minimum 15 mm, "
                              "maximum 60 mm, step 5 mm\n"),
      std::string::npos);
}

TEST_F(ModelChangeCommandTest, Run_OtherUnit_ComputesFormulasInIt) {
  write("width: {value: 4 cm, minimum: 1 cm, maximum: 20 cm}", "");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("* Best: row 1, Variant 1, cost 4 (the baseline: 8)\n"), std::string::npos)
      << result.output;
}

TEST_F(ModelChangeCommandTest, Solve_SaysThatRunBringsTheProjectInLine) {
  write("width: {value: 40 mm, minimum: 5 mm, maximum: 200 mm}", "");
  const CommandResult result = runCommand(m_folder, {"solve", "beam.optstudy"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(
      result.messages,
      "note: the grid has 2 rows\n"
      "The project beam.optstudy was made for another model than beam.study.yaml declares: the limits of "
      "Beam.width are now 5 mm to 200 mm, they were 10 mm to 200 mm. \"optstudy run\" brings the project "
      "in line with the study file.\n");
}

TEST_F(ModelChangeCommandTest, Run_AttributeThatIsGone_IsRefusedWithWhatToDo) {
  const std::string width = "width: {value: 40 mm, minimum: 10 mm, maximum: 200 mm}";
  write(width, "    height: 3 mm\n");
  ASSERT_EQ(run().exitCode, 0);
  const std::string before = m_folder.read("beam.optstudy");
  write(width, "");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.messages,
            "the project beam.optstudy was made for another model: the study file does not declare "
            "the attribute \"Beam.height\", whose values its rows have. Put it back, or give the "
            "study file another name, which makes a new project\n");
  EXPECT_TRUE(m_folder.read("beam.optstudy") == before);
}

TEST_F(ModelChangeCommandTest, Run_OtherUnit_ChangesNoLimitAndNoValue) {
  const std::string input = "{attribute: Beam.width, minimum: 10 mm, maximum: 200 mm, step: 3 mm}";
  write("width: {value: 3 mm, minimum: 3 mm, maximum: 200 mm}", "", input);
  ASSERT_EQ(run().exitCode, 0);
  write("width: {value: 0.3 cm, minimum: 0.3 cm, maximum: 20 cm, unit: cm}", "", input);
  const CommandResult result = run("-v");
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.messages.find("the unit of Beam.width is now \"cm\", it was \"mm\""), std::string::npos)
      << result.messages;
  EXPECT_EQ(result.messages.find("it had"), std::string::npos) << result.messages;
  EXPECT_EQ(result.messages.find("baseline:"), std::string::npos) << result.messages;
}

} // namespace
