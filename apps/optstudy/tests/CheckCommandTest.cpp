#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

namespace {

// What is wrong with a study of a script is said with its place in the study file.
class CheckCommandTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder.write("in.txt.template", "{{Box.x}}\n");
    m_folder.writeProgram("solve.sh", "#!/bin/sh\nread x < in.txt\necho \"y = $x\"\necho \"z = one\"\n");
  }
  void write(const std::string &result, const std::string &inputs = "Box.x") const {
    m_folder.write("box.study.yaml", "version: 1\nmodel: {Box: {x: 7, w: 1, y: {result: true}}}\n"
                                     "solver:\n  templates: [{from: in.txt.template, to: in.txt}]\n"
                                     "  command: [./solve.sh]\n  results:\n    Box.y: {" +
                                         result +
                                         "}\n"
                                         "study:\n  inputs: [" +
                                         inputs +
                                         "]\n  outputs: [Box.y]\n"
                                         "  variants: {grid: {Box.x: [8]}}\n");
  }
  CommandResult check(const std::vector<std::string> &options = {}) const {
    std::vector<std::string> words{"check", "box.study.yaml"};
    words.insert(words.end(), options.begin(), options.end());
    return runCommand(m_folder, words);
  }

  TemporaryFolder m_folder;
};

TEST_F(CheckCommandTest, StudyThatIsRight_ShowsWhatTheBaselineGivesAndWhatIsNext) {
  write("pattern: '^y = (.*)$'");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("  in.txt:1: -7\n  in.txt:1: +8\n"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("The baseline gives\n  Box.y = 7  (stdout.log:1)\n"), std::string::npos)
      << result.output;
  EXPECT_NE(result.messages.find("Next: optstudy run box.study.yaml\n"), std::string::npos);
  EXPECT_FALSE(m_folder.has("box.optstudy"));
}

TEST_F(CheckCommandTest, ResultThatIsNotFound_NamesTheExtractorAndTheFile) {
  write("pattern: '^q = (.*)$'");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_NE(result.messages.find(
                "\nbox.study.yaml:7:5: the baseline failed: extraction: Box.y: stdout.log: no line "
                "matches \"^q = (.*)$\"\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(CheckCommandTest, ResultThatIsFoundTwice_NamesTheExtractorAndBothLines) {
  write("pattern: '^y = (.*)$'");
  m_folder.writeProgram("solve.sh", "#!/bin/sh\necho 'y = 1'\necho 'y = 2'\n");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_NE(
      result.messages.find("\nbox.study.yaml:7:5: the baseline failed: extraction: Box.y: stdout.log:2: a "
                           "second, different number \"2\" after the one in line 1\n"),
      std::string::npos)
      << result.messages;
}

TEST_F(CheckCommandTest, ResultThatIsNoNumber_NamesTheExtractorAndTheLine) {
  write("key: z");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_NE(result.messages.find("\nbox.study.yaml:7:5: the baseline failed: not a number: Box.y: "
                                 "stdout.log:2: \"one\" is not a number\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(CheckCommandTest, InputThatNothingUses_IsAnErrorOfCheckAndAWarningOfRun) {
  write("pattern: '^y = (.*)$'", "Box.x, Box.w");
  const std::string text =
      "box.study.yaml:9:19: no template uses \"Box.w\": the solver never sees this input\n";
  for (const std::vector<std::string> &options : {std::vector<std::string>{}, {"--no-run"}}) {
    const CommandResult result = check(options);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.messages.find(text), std::string::npos) << result.messages;
    EXPECT_EQ(result.messages.find("Next:"), std::string::npos) << result.messages;
  }
  const CommandResult run = runCommand(m_folder, {"run", "box.study.yaml"});
  EXPECT_EQ(run.exitCode, 0) << run.messages;
  EXPECT_NE(run.messages.find("warning: " + text), std::string::npos) << run.messages;
}

TEST_F(CheckCommandTest, TemplateWithoutAPlaceholder_IsAnError) {
  write("pattern: '^y = (.*)$'");
  m_folder.write("in.txt.template", "7\n");
  const CommandResult result = check({"--no-run"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(result.messages.find(
                "box.study.yaml:4:15: in.txt.template holds no placeholder: every run gets the same "
                "file; list it under copies, or put a placeholder in it\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(CheckCommandTest, RowThatDiffersInNoFile_IsShownByItsInputs) {
  m_folder.write("box.study.yaml", "version: 1\nmodel: {Box: {x: 7 mm, y: {result: true}}}\n"
                                   "formulas: {Box.y: \"%Box.x% * 2.0\"}\n"
                                   "study:\n  inputs: [Box.x]\n  outputs: [Box.y]\n"
                                   "  variants: {grid: {Box.x: [8 mm]}}\n");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("Row 1, Variant 1, differs from the baseline in\n  Box.x: 7 mm -> 8 mm\n"),
            std::string::npos)
      << result.output;
}

TEST_F(CheckCommandTest, ScriptThatCannotBeStarted_SaysWhatIsWrongWithIt) {
  write("key: y");
  m_folder.writeProgram("solve.sh", "#!/bin/sh\r\necho y = 1\r\n");
  EXPECT_EQ(check().messages,
            "box.study.yaml:5:12: ./solve.sh has the line ends of Windows, which no interpreter "
            "takes: \"sed -i 's/\\r$//' ./solve.sh\" mends that\n");
  m_folder.writeProgram("solve.sh", "#! /no/such/shell -e\necho y = 1\n");
  EXPECT_EQ(check().messages,
            "box.study.yaml:5:12: ./solve.sh names an interpreter in its first line that is not "
            "there: \"/no/such/shell\"\n");
  m_folder.writeProgram("solve.sh", "echo y = 1\n");
  const CommandResult result = check();
  EXPECT_EQ(result.messages,
            "box.study.yaml:5:12: ./solve.sh is a text without \"#!\" in its first line; write "
            "\"#!/bin/sh\" there\n");
  EXPECT_EQ(result.exitCode, 3);
}

TEST_F(CheckCommandTest, ValueAtItsLimitInAnotherUnit_IsWithinIt) {
  m_folder.write("box.study.yaml",
                 "version: 1\n"
                 "model: {Box: {x: {value: 2 mm, maximum: 0.3 cm, unit: cm}, y: {result: true}}}\n"
                 "formulas: {Box.y: \"%Box.x% * 2.0\"}\n"
                 "study:\n  inputs: [Box.x]\n  outputs: [Box.y]\n"
                 "  variants: {grid: {Box.x: [3 mm]}}\n");
  const CommandResult result = check();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("  Box.x: 0.2 cm -> 0.3 cm\n"), std::string::npos) << result.output;
}

} // namespace
