#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

namespace {

// A study of formulas with a grid.
class WordCommandsTest : public ::testing::Test {
protected:
  void write(const std::string &grid) const {
    m_folder.write("p.study.yaml", "version: 1\n"
                                   "model:\n"
                                   "  P:\n"
                                   "    x: 0\n"
                                   "    y: 0\n"
                                   "    sum: {result: true}\n"
                                   "formulas:\n"
                                   "  P.sum: \"%P.x% + %P.y%\"\n"
                                   "study:\n"
                                   "  inputs: [P.x, P.y]\n"
                                   "  outputs: [P.sum]\n"
                                   "  variants: {grid: " +
                                       grid + "}\n");
  }
  CommandResult command(const std::vector<std::string> &arguments) const {
    return runCommand(m_folder, arguments);
  }

  TemporaryFolder m_folder;
};

TEST_F(WordCommandsTest, Grid_ItsRowsAndEqualOnes_AreCountedByCheckAndRun) {
  write("{P.x: [0, 1, 2, 2], P.y: [0, 1, 2]}");
  const std::string notes = "note: the grid has 12 rows\n"
                            "note: 4 of 12 variants equal the baseline or another variant and are left out\n";
  for (const char *name : {"check", "run"}) {
    const CommandResult result = command({name, "p.study.yaml"});
    EXPECT_EQ(result.exitCode, 0) << result.messages;
    EXPECT_EQ(result.messages.find(notes), 0U) << result.messages;
  }
  EXPECT_NE(command({"check", "p.study.yaml"}).output.find("p.study.yaml: 9 rows, 2 inputs, 1 output\n"),
            std::string::npos);
}

TEST_F(WordCommandsTest, Grid_OfMoreThanAHundredThousandRows_IsRefusedWithItsPlace) {
  const std::string axis = "{minimum: 1, maximum: 317, step: 1}";
  write("{P.x: " + axis + ", P.y: " + axis + "}");
  for (const char *name : {"check", "run"}) {
    const CommandResult result = command({name, "p.study.yaml"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.messages, "p.study.yaml:12:20: the grid has 100489 rows, more than 100000\n");
  }
  EXPECT_FALSE(m_folder.has("p.optstudy"));
}

TEST_F(WordCommandsTest, Functions_AreListedWithTypesAndMeaning) {
  const CommandResult result = command({"functions"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.messages, "");
  for (const char *part : {"Operators, tighter binding first.", "\n  a ? b : c  any type",
                           "\n  sqrt(a)         double", "remainder of a / b, with the sign of a\n"}) {
    EXPECT_NE(result.output.find(part), std::string::npos) << part << "\n" << result.output;
  }
  EXPECT_EQ(command({"functions", "sqrt"}).exitCode, 2);
}

TEST_F(WordCommandsTest, CommandThatIsUnknown_ComesWithTheNearestOne) {
  const CommandResult result = command({"--log-file", "log", "-q", "shwo", "p.optstudy"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages, "There is no command \"shwo\", did you mean \"show\"?\n"
                             "Run with --help for more information.\n");
  EXPECT_EQ(command({"group", "renme", "p.optstudy"}).messages,
            "There is no command \"group renme\", did you mean \"group rename\"?\n"
            "Run with --help for more information.\n");
  EXPECT_EQ(command({"banana"}).messages,
            "There is no command \"banana\"\nRun with --help for more information.\n");
}

TEST_F(WordCommandsTest, OptionThatIsUnknown_ComesWithTheNearestOne) {
  const CommandResult result = command({"show", "p.optstudy", "--fromat=csv"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_EQ(result.messages, "There is no option \"--fromat\", did you mean \"--format\"?\n"
                             "Run with --help for more information.\n");
  EXPECT_EQ(command({"show", "--quite", "p.optstudy"}).messages,
            "There is no option \"--quite\", did you mean \"--quiet\"?\n"
            "Run with --help for more information.\n");
}

TEST_F(WordCommandsTest, WordsThatAreMissing_AreAskedForAsBefore) {
  EXPECT_EQ(command({}).messages, "A subcommand is required\nRun with --help for more information.\n");
  EXPECT_EQ(command({"show"}).messages, "PROJECT is required\nRun with --help for more information.\n");
}

TEST_F(WordCommandsTest, Eval_PrintsTypeAndValue) {
  const CommandResult result = command({"eval", "-%x% * 2.0", "--var", "x=-2.5"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "double 5\n");
  EXPECT_EQ(result.messages, "");
}

TEST_F(WordCommandsTest, Eval_ExitCodes) {
  EXPECT_EQ(command({"eval", "1 +"}).exitCode, 3);
  EXPECT_EQ(command({"eval", "1", "--var", "x"}).exitCode, 2);
  EXPECT_EQ(command({"eval", "1", "2"}).exitCode, 2);
  EXPECT_EQ(command({"eval"}).exitCode, 2);
}

// A run that writes more than its study file allows.
TEST_F(WordCommandsTest, Limits_FailTheirRows_WhichAreFoundByTheReason) {
  m_folder.writeProgram("solve.sh", "#!/bin/sh\nhead -c 5000 /dev/zero > big\necho \"r = 1\"\n");
  m_folder.write("in.txt.template", "{{P.x}}\n");
  for (const char *limit : {"file-limit: 4 kB", "folder-limit: 4 kB"}) {
    m_folder.write("q.study.yaml", std::string("version: 1\nmodel: {P: {x: 1, r: {result: true}}}\n"
                                               "solver:\n"
                                               "  templates: [{from: in.txt.template, to: in.txt}]\n"
                                               "  command: [./solve.sh]\n  ") +
                                       limit +
                                       "\n  results: {P.r: {key: r}}\n"
                                       "study: {inputs: [P.x], outputs: [P.r]}\n");
    const CommandResult result = command({"run", "q.study.yaml"});
    EXPECT_EQ(result.exitCode, 5) << result.messages;
    EXPECT_NE(result.output.find("failed: output too large: "), std::string::npos) << result.output;
    EXPECT_NE(command({"status", "q.optstudy"}).output.find("output too large"), std::string::npos);
    for (const char *failed : {"--failed=output-too-large", "--failed"}) {
      const CommandResult again = command({"solve", "q.optstudy", failed});
      EXPECT_EQ(again.exitCode, 5) << again.messages;
      EXPECT_NE(again.messages.find("Solving 1 row"), std::string::npos) << again.messages;
    }
    const CommandResult other = command({"solve", "q.optstudy", "--failed=signal"});
    EXPECT_EQ(other.messages.find("Solving"), std::string::npos) << other.messages;
  }
}

TEST_F(WordCommandsTest, Show_OptionsBeforeTheProject_LeaveItAlone) {
  write("{P.x: [1, 2]}");
  ASSERT_EQ(command({"run", "p.study.yaml"}).exitCode, 0);
  const CommandResult result = command({"show", "--format", "csv", "--status", "ok", "--status", "failed",
                                        "--columns", "P.sum,P.x", "p.optstudy"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_EQ(result.output, "row,name,status,reason,P.x,P.sum\n"
                           ",,,,,\n"
                           "0,Base,ok,,0,0\n"
                           "1,Variant 1,ok,,1,1\n"
                           "2,Variant 2,ok,,2,2\n");
}

} // namespace
