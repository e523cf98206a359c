#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

// A study whose solver is a script: it notes each start in the file "started", and its results are x + y and x * y.
class RunCommandTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder.write("in.txt.template", "{{Box.x}} {{Box.y}}\n");
    writeSolver("");
    writeStudy("x + y", "[1, 2, 3, 4]");
  }

  // `commands` run before the results are written; $x and $y are the inputs.
  void writeSolver(const std::string &commands) const {
    m_folder.writeProgram("solve.sh", "#!/bin/sh\nread x y < in.txt\necho \"$x $y\" >> \"$STARTED\"\n" +
                                          commands +
                                          "\necho \"sum = $((x + y))\" > result.txt\n"
                                          "echo \"product = $((x * y))\"\n");
  }

  void writeStudy(const std::string &title, const std::string &values,
                  const std::string &timeout = "20 s") const {
    m_folder.write("box.study.yaml", "version: 1\n"
                                     "title: " +
                                         title +
                                         "\n"
                                         "model:\n"
                                         "  Box:\n"
                                         "    x: 1\n"
                                         "    y: 10\n"
                                         "    sum: {result: true}\n"
                                         "    product: {result: true}\n"
                                         "solver:\n"
                                         "  templates: [{from: in.txt.template, to: in.txt}]\n"
                                         "  command: [./solve.sh]\n"
                                         "  timeout: " +
                                         timeout +
                                         "\n"
                                         "  results:\n"
                                         "    Box.sum: {file: result.txt, pattern: '^sum = (.*)$'}\n"
                                         "    Box.product: {pattern: '^product = (.*)$'}\n"
                                         "study:\n"
                                         "  target: maximise\n"
                                         "  cost: \"" +
                                         m_cost +
                                         "\"\n"
                                         "  inputs: [Box.x]\n"
                                         "  outputs: [{name: total, attribute: Box.sum}, Box.product]\n"
                                         "  variants: {grid: {Box.x: " +
                                         values + "}}\n");
  }

  CommandResult run(const std::vector<std::string> &more = {}) const {
    std::vector<std::string> arguments{"run", "box.study.yaml"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runCommand(m_folder, arguments, environment());
  }

  std::map<std::string, std::string> environment() const { return {{"STARTED", m_folder.file("started")}}; }

  std::vector<std::string> started() const { return linesOf(m_folder.read("started")); }

  // The lines of the matrix, from the baseline on.
  static std::vector<std::string> matrix(const CommandResult &result) {
    std::vector<std::string> lines = linesOf(result.output);
    lines.erase(lines.begin(), std::find_if(lines.begin(), lines.end(), [](const std::string &line) {
                  return line.compare(0, 2, "--") == 0;
                }));
    if (!lines.empty()) {
      lines.erase(lines.begin());
    }
    lines.erase(std::find(lines.begin(), lines.end(), ""), lines.end());
    return lines;
  }

  static std::string withSingleBlanks(const std::string &line) {
    std::string text;
    for (const char character : line) {
      if (character != ' ' || (!text.empty() && text.back() != ' ')) {
        text += character;
      }
    }
    return text;
  }

  TemporaryFolder m_folder;
  std::string m_cost = "%Box.sum% + %Box.product%";
};

using Lines = std::vector<std::string>;

TEST_F(RunCommandTest, Matrix_IsPrintedAsATable) {
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_EQ(result.output, "x + y\n"
                           "\n"
                           "row  name       Box.x  total   diff  Box.product    diff  cost    diff  status\n"
                           "                                  %                    %             %\n"
                           "---  ---------  -----  -----  -----  -----------  ------  ----  ------  ------\n"
                           "  0  Base           1     11   +0.0           10    +0.0    21    +0.0  ok\n"
                           "  1  Variant 1      2     12   +9.1           20  +100.0    32   +52.4  ok\n"
                           "  2  Variant 2      3     13  +18.2           30  +200.0    43  +104.8  ok\n"
                           "* 3  Variant 3      4     14  +27.3           40  +300.0    54  +157.1  ok\n"
                           "\n"
                           "* Best: row 3, Variant 3, cost 54 (the baseline: 21)\n"
                           "4 rows: 4 ok. Kept in box.optstudy\n");
}

TEST_F(RunCommandTest, VerboseMessages_HaveOneLineForEachRow) {
  const CommandResult result = run({"-j", "1", "-v"});
  const Lines lines = linesOf(result.messages);
  ASSERT_GE(lines.size(), 10U) << result.messages;
  EXPECT_EQ(lines[0], "note: the grid has 4 rows");
  EXPECT_EQ(lines[1], "note: 1 of 4 variants equal the baseline or another variant and are left out");
  EXPECT_EQ(lines[2], "Created box.optstudy with 4 rows");
  EXPECT_EQ(lines[3], "Solving 4 rows");
  EXPECT_EQ(lines[4].rfind("[1/4] Base: ok, ", 0), 0U) << lines[4];
  EXPECT_NE(result.messages.find("[4/4] Variant 3: ok, "), std::string::npos) << result.messages;
  EXPECT_EQ(lines[lines.size() - 2].rfind("4/4, ", 0), 0U) << result.messages;
  EXPECT_EQ(lines.back(),
            "Next: change the variants or the cost in box.study.yaml and run the same command again; "
            "only what is new is solved.");
}

TEST_F(RunCommandTest, Progress_EndsWithTheBestCostOfTheMatrix) {
  writeSolver("if [ $x = 4 ]; then exit 3; fi");
  const CommandResult result = run();
  EXPECT_NE(result.messages.find("\n4/4, 1 failed (1 exit code), "), std::string::npos) << result.messages;
  EXPECT_NE(result.messages.find(", best 43\n"), std::string::npos) << result.messages;
  EXPECT_NE(result.output.find("* Best: row 2, Variant 2, cost 43"), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, Progress_KnowsTheBestCostOfRowsThatWereSolvedBefore) {
  run();
  writeStudy("x + y", "[1, 2, 3, 4, 0]");
  EXPECT_NE(run().messages.find(", best 54\n"), std::string::npos);
}

TEST_F(RunCommandTest, SecondRun_StartsNoSolver) {
  const CommandResult first = run();
  const std::size_t starts = started().size();
  const CommandResult second = run();
  EXPECT_EQ(starts, 4U);
  EXPECT_EQ(started().size(), 4U);
  EXPECT_EQ(second.exitCode, 0);
  EXPECT_EQ(second.output, first.output);
}

TEST_F(RunCommandTest, MovedProject_IsStillSolved) {
  run();
  fs::create_directory(m_folder.path() / "elsewhere");
  for (const auto &entry : fs::directory_iterator(m_folder.path())) {
    if (entry.path().filename() != "elsewhere" && entry.path().filename() != "started") {
      fs::rename(entry.path(), m_folder.path() / "elsewhere" / entry.path().filename());
    }
  }
  const CommandResult result = runCommand(m_folder, {"run", "elsewhere/box.study.yaml"}, environment());
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_EQ(started().size(), 4U);
}

TEST_F(RunCommandTest, NewRow_IsTheOnlyOneSolved) {
  run();
  writeStudy("x + y", "[1, 2, 3, 4, 9]");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(started().size(), 5U);
  EXPECT_EQ(started().back(), "9 10");
  EXPECT_NE(result.messages.find("note: 1 row was added\nSolving 1 row; 4 are solved already\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(RunCommandTest, RowThatLeftTheStudyFile_IsKeptAndMarked) {
  run();
  writeStudy("x + y", "[1, 2, 3]");
  const CommandResult result = run();
  EXPECT_EQ(started().size(), 4U);
  ASSERT_EQ(matrix(result).size(), 4U);
  EXPECT_NE(matrix(result)[3].find("ok (not in the study file)"), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, ChangedCost_PricesWithoutSolving) {
  run();
  m_cost = "0.0 - %Box.sum%";
  writeStudy("x + y", "[1, 2, 3, 4]");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_EQ(started().size(), 4U);
  EXPECT_NE(result.output.find("* Best: row 0, Base, cost -11\n"), std::string::npos) << result.output;
  EXPECT_NE(result.messages.find("note: the cost is now: 0.0 - %Box.sum%\n"), std::string::npos);
}

TEST_F(RunCommandTest, CostThatDoesNotBuild_LeavesTheProjectAlone) {
  run();
  m_cost = "%Box.sum% +";
  writeStudy("x + y", "[1, 2, 3, 4]");
  const CommandResult broken = run();
  EXPECT_EQ(broken.exitCode, 3);
  EXPECT_NE(broken.messages.find(
                "box.study.yaml:18:21: the cost: Syntax error - Right hand side invalid at character 12 "
                "of its text"),
            std::string::npos)
      << broken.messages;
  m_cost = "%Box.sum% + %Box.product%";
  writeStudy("x + y", "[1, 2, 3, 4]");
  const CommandResult mended = run();
  EXPECT_EQ(mended.exitCode, 0);
  EXPECT_EQ(started().size(), 4U);
}

TEST_F(RunCommandTest, CostThatDoesNotBuild_InANewProject_LeavesNoFile) {
  m_cost = "%Box.volume%";
  writeStudy("x + y", "[1, 2]");
  EXPECT_EQ(run().exitCode, 3);
  EXPECT_FALSE(m_folder.has("box.optstudy"));
  EXPECT_EQ(started().size(), 0U);
}

TEST_F(RunCommandTest, ChangedTemplate_MakesEveryRowStale) {
  run();
  m_folder.write("in.txt.template", "{{Box.x}} {{Box.y}}\nmore\n");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(started().size(), 8U);
}

TEST_F(RunCommandTest, ChangedBaselineValue_SolvesWhatItChanges) {
  run();
  std::string study = m_folder.read("box.study.yaml");
  study.replace(study.find("y: 10"), 5, "y: 20");
  m_folder.write("box.study.yaml", study);
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.messages.find("note: baseline: Box.y is now 20, it was 10\n"), std::string::npos)
      << result.messages;
  EXPECT_EQ(started().size(), 8U);
  EXPECT_NE(result.output.find("* Best: row 3, Variant 3, cost 104 (the baseline: 41)\n"), std::string::npos)
      << result.output;
}

TEST_F(RunCommandTest, ChangedModel_IsRefused) {
  run();
  std::string study = m_folder.read("box.study.yaml");
  study.replace(study.find("y: 10"), 5, "y: 10 m");
  m_folder.write("box.study.yaml", study);
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_NE(
      result.messages.find("the project box.optstudy was made for another model: the attribute \"Box.y\" is "
                           "declared in \"\" there"),
      std::string::npos)
      << result.messages;
}

TEST_F(RunCommandTest, FailedRow_HasNeitherOutputsNorCostAndIsNotBest) {
  writeSolver("if [ $x = 4 ]; then echo 'sum = 999' > result.txt; exit 3; fi");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 4);
  ASSERT_EQ(matrix(result).size(), 4U);
  EXPECT_EQ(withSingleBlanks(matrix(result)[2]), "* 2 Variant 2 3 13 +18.2 30 +200.0 43 +104.8 ok");
  EXPECT_EQ(withSingleBlanks(matrix(result)[3]), "3 Variant 3 4 failed: exit code: 3");
  EXPECT_NE(result.output.find("* Best: row 2, Variant 2, cost 43"), std::string::npos) << result.output;
  EXPECT_NE(result.output.find("4 rows: 3 ok, 1 failed."), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, CostThatNamesNoFailedOutput_StillLeavesTheRowWithoutCost) {
  m_cost = "1.0 * 7.0"; // every row could be priced with this, results or not
  writeStudy("x + y", "[1, 2]");
  writeSolver("if [ $x = 2 ]; then exit 1; fi");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 4);
  ASSERT_EQ(matrix(result).size(), 2U);
  EXPECT_NE(matrix(result)[0].find(" 7 "), std::string::npos) << result.output;
  EXPECT_EQ(matrix(result)[1].find(" 7 "), std::string::npos) << result.output;
  const CommandResult again = run();
  EXPECT_EQ(matrix(again)[1].find(" 7 "), std::string::npos) << again.output;
}

TEST_F(RunCommandTest, FailedRow_IsTriedAgainAndNoOther) {
  writeSolver("if [ $x = 3 ] && [ ! -e \"$STARTED.mended\" ]; then exit 1; fi");
  EXPECT_EQ(run().exitCode, 4);
  m_folder.write("started.mended", "");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_EQ(started().size(), 5U);
  EXPECT_EQ(started().back(), "3 10");
}

TEST_F(RunCommandTest, RowThatHangs_IsEndedAtTheTimeLimit) {
  writeStudy("x + y", "[1, 2]", "500 ms");
  writeSolver("if [ $x = 2 ]; then sleep 60; fi");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_LT(result.time, milliseconds(5000));
  EXPECT_NE(matrix(result)[1].find("failed: time limit: ended after 0.5 s"), std::string::npos)
      << result.output;
}

TEST_F(RunCommandTest, EveryFailure_HasItsReason) {
  const struct {
    const char *commands;
    const char *reason;
  } rows[] = {
      {"kill -SEGV $$", "failed: signal: 11"},
      {"echo 'product = nonsense'; echo 'sum = 1' > result.txt; exit 0",
       "failed: not a number: Box.product: stdout.log:1: \"nonsense\" is not a number"},
      {"echo 'product = 1'; exit 0", "failed: extraction: Box.sum: result.txt was not written"},
      {"echo 'product = 1'; : > result.txt; exit 0", "failed: extraction: Box.sum: result.txt is empty"},
      {"echo 'product = 1'; echo 'sum = ' > result.txt; exit 0",
       "failed: extraction: Box.sum: result.txt:1: nothing stands where the number should"},
      {"echo 'product = 1'; echo 'product = 2'; echo 'sum = 1' > result.txt; exit 0",
       "failed: extraction: Box.product: stdout.log:2: a second, different number \"2\" after the one in "
       "line 1"},
      {"echo 'product = nan'; echo 'sum = 1' > result.txt; exit 0",
       "failed: not a number: Box.product: stdout.log:1: \"nan\" is not a number"}};
  for (const auto &row : rows) {
    writeSolver(row.commands);
    const CommandResult result = run();
    EXPECT_EQ(result.exitCode, 5) << row.commands;
    EXPECT_NE(result.output.find(row.reason), std::string::npos) << row.reason << "\n" << result.output;
    EXPECT_EQ(result.output.find("Best"), std::string::npos) << row.commands;
  }
}

TEST_F(RunCommandTest, EveryRun_StartsInAnEmptyFolder) {
  writeSolver("ls > listing; if [ \"$(cat listing | tr '\\n' ' ')\" != 'in.txt listing stderr.log stdout.log "
              "' ]; then "
              "cat listing >&2; exit 9; fi");
  EXPECT_EQ(run().exitCode, 0);
  m_folder.write("in.txt.template", "{{Box.x}} {{Box.y}}\nagain\n");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 0) << result.output;
}

TEST_F(RunCommandTest, Jobs_RunSideBySide) {
  // Every row but the baseline ends when all have begun, which they never do one after the other.
  writeSolver("n=0\nwhile [ $x != 1 ] && [ $(wc -l < \"$STARTED\") -lt 4 ]; do\n"
              "  n=$((n + 1)); if [ $n = 150 ]; then exit 9; fi; sleep 0.1\ndone");
  const CommandResult result = run({"-j", "4"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
}

TEST_F(RunCommandTest, OneInterruption_FinishesWhatRunsAndCanBeResumed) {
  writeSolver("sleep 0.5");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
  ASSERT_TRUE(waitForLines(m_folder.path() / "started", 1));
  command.sendSignal(SIGINT);
  const CommandResult interrupted = command.wait();
  EXPECT_EQ(interrupted.exitCode, 130) << interrupted.messages;
  EXPECT_NE(interrupted.output.find("4 rows: 1 ok, 3 not solved."), std::string::npos) << interrupted.output;
  const CommandResult resumed = run();
  EXPECT_EQ(resumed.exitCode, 0);
  EXPECT_EQ(started().size(), 4U);
}

TEST_F(RunCommandTest, TwoInterruptions_EndWhatRuns) {
  writeSolver("if [ $x != 1 ]; then sleep 60; fi");
  CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "2"}, environment());
  ASSERT_TRUE(waitForLines(m_folder.path() / "started", 3));
  command.sendSignal(SIGINT);
  command.sendSignal(SIGTERM);
  const CommandResult result = command.wait();
  EXPECT_EQ(result.exitCode, 130) << result.messages;
  EXPECT_LT(result.time, milliseconds(20000));
  EXPECT_NE(result.output.find("4 rows: 1 ok, 2 failed, 1 not solved."), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, KilledInTheMiddle_KeepsWhatWasFinished) {
  writeSolver("if [ $x = 3 ] && [ ! -e \"$STARTED.killed\" ]; then sleep 60; fi");
  {
    CommandRun command(m_folder, {"run", "box.study.yaml", "-j", "1"}, environment());
    ASSERT_TRUE(waitForLines(m_folder.path() / "started", 3)); // the two rows before are recorded by then
    command.sendSignal(SIGKILL);
    EXPECT_EQ(command.wait().signal, SIGKILL);
  }
  m_folder.write("started.killed", "");
  const CommandResult resumed = run({"-j", "1"});
  EXPECT_EQ(resumed.exitCode, 0) << resumed.messages;
  EXPECT_EQ(started(), (Lines{"1 10", "2 10", "3 10", "3 10", "4 10"}));
}

TEST_F(RunCommandTest, StudyFileWithMistakes_EndsWithThreeAndTheirPlaces) {
  m_folder.write("box.study.yaml", "version: 1\nmodle: {}\n");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.output, "");
  EXPECT_NE(result.messages.find(
                "box.study.yaml:2:1: the study file has no key \"modle\", did you mean \"model\"?\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(RunCommandTest, TemplateWithMistakes_EndsWithThreeAndTheirPlaces) {
  m_folder.write("in.txt.template", "{{Box.x}}\n  {{Box.z}} {{Box.sum}} {{Box.y in kohm}}\n");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.messages,
            "./in.txt.template:2:3: the model has no attribute \"Box.z\", did you mean \"Box.x\"?\n"
            "./in.txt.template:2:13: \"Box.sum\" is a result: it has no value before the run\n"
            "./in.txt.template:2:25: \"Box.y\" is declared without a unit, which cannot be converted "
            "to \"kohm\"\n");
  EXPECT_FALSE(m_folder.has("box.optstudy"));
}

TEST_F(RunCommandTest, ProjectThatIsNone_EndsWithThreeAndIsLeftAlone) {
  m_folder.write("box.optstudy", "this is no project");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(m_folder.read("box.optstudy"), "this is no project");
  EXPECT_NE(result.messages, "");
}

TEST_F(RunCommandTest, Usage_IsChecked) {
  EXPECT_EQ(runCommand(m_folder, {}).exitCode, 2);
  EXPECT_EQ(runCommand(m_folder, {"run"}).exitCode, 2);
  EXPECT_EQ(runCommand(m_folder, {"rum", "box.study.yaml"}).exitCode, 2);
  EXPECT_EQ(run({"-j", "0"}).exitCode, 2);
  EXPECT_EQ(run({"-j", "two"}).exitCode, 2);
  EXPECT_EQ(run({"--unknown"}).exitCode, 2);
}

TEST_F(RunCommandTest, Help_ShowsAnExampleAndExitCodes) {
  const CommandResult help = runCommand(m_folder, {"--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.output.find("optstudy run demo/beam.study.yaml"), std::string::npos);
  const CommandResult runHelp = runCommand(m_folder, {"run", "--help"});
  EXPECT_EQ(runHelp.exitCode, 0);
  EXPECT_NE(runHelp.output.find("Exit codes: 0 all is well"), std::string::npos);
}

TEST_F(RunCommandTest, Version_IsPrinted) {
  const CommandResult result = runCommand(m_folder, {"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "optstudy " OPTSTUDY_VERSION "\n");
}

TEST_F(RunCommandTest, WholeNumberThatIsTooLarge_FailsItsRowAndNoOther) {
  m_folder.write("box.study.yaml",
                 "version: 1\nmodel:\n  Box: {x: 1, sum: {kind: integer, result: true}}\n"
                 "solver:\n  command: [sh, -c, 'if [ $0 = 2 ]; then echo n=1e20; else echo n=$0; fi', "
                 "\"{{Box.x}}\"]\n  results: {Box.sum: {key: n}}\n"
                 "study:\n  inputs: [Box.x]\n  outputs: [Box.sum]\n"
                 "  variants: {grid: {Box.x: [2, 3]}}\n");
  const CommandResult result = run();
  EXPECT_EQ(result.exitCode, 4) << result.messages;
  EXPECT_NE(result.output.find("failed: not a number: Box.sum: 1e+20 is more than a whole number can "
                               "be, 9007199254740992\n"),
            std::string::npos)
      << result.output;
  EXPECT_NE(result.output.find("3 rows: 2 ok, 1 failed."), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, FreshRunThatStops_LeavesTheOtherRowsWhatTheyWere) {
  ASSERT_EQ(run().exitCode, 0);
  writeSolver("if [ -e \"$STARTED.broken\" ]; then exit 9; fi");
  ASSERT_EQ(run().exitCode, 0);
  m_folder.write("started.broken", "");
  const CommandResult result = run({"--fresh", "--yes"});
  EXPECT_EQ(result.exitCode, 4) << result.messages;
  EXPECT_NE(result.output.find("4 rows: 3 ok, 1 failed."), std::string::npos) << result.output;
  const CommandResult shown = runCommand(m_folder, {"status", "box.study.yaml"});
  EXPECT_NE(shown.output.find("4 rows: 3 ok, 1 failed\n"), std::string::npos) << shown.output;
}

TEST_F(RunCommandTest, DryRun_SaysWhatHasChanged) {
  ASSERT_EQ(run().exitCode, 0);
  writeSolver("true");
  EXPECT_NE(
      run({"--dry-run"})
          .output.find("row 1, Variant 1: stale: what the solver is given, or the solver, has changed\n"),
      std::string::npos);
  ASSERT_EQ(run().exitCode, 0);
  const std::string study = m_folder.read("box.study.yaml");
  const std::size_t at = study.find("'^product = (.*)$'");
  ASSERT_NE(at, std::string::npos);
  m_folder.write("box.study.yaml", std::string(study).replace(at, 18, "'product = (.*)'"));
  const std::string plan = run({"--dry-run"}).output;
  EXPECT_NE(plan.find("4 rows of 4 would be read again from kept files, and run only where they are gone\n"
                      "0 rows of 4 would be run\n"),
            std::string::npos)
      << plan;
}

TEST_F(RunCommandTest, ExtractWithoutKeptFiles_SaysSo) {
  m_folder.write("box.study.yaml",
                 "version: 1\nmodel: {Box: {x: 1, sum: {result: true}}}\n"
                 "solver:\n  command: [echo, n=1]\n  keep: failed\n  results: {Box.sum: {key: n}}\n"
                 "study:\n  inputs: [Box.x]\n  outputs: [Box.sum]\n"
                 "  variants: {grid: {Box.x: [2]}}\n");
  ASSERT_EQ(run().exitCode, 0);
  const CommandResult result = runCommand(m_folder, {"extract", "box.study.yaml"});
  EXPECT_EQ(result.exitCode, 5) << result.messages;
  EXPECT_NE(
      result.messages.find("2 rows have no kept files of a run with the present inputs, and nothing was read "
                           "there: \"optstudy solve\" runs what has to be run.\n"),
      std::string::npos)
      << result.messages;
  EXPECT_NE(result.output.find("2 rows: 2 ok; now solved 0, failed 0\n"), std::string::npos) << result.output;
}

TEST_F(RunCommandTest, FailedRowsOfAReasonThatThereIsNot_AreNotLookedFor) {
  ASSERT_EQ(run().exitCode, 0);
  const CommandResult result = runCommand(m_folder, {"solve", "box.study.yaml", "--failed=tired"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.messages.find(
                "There is no reason \"tired\" that rows fail for; \"optstudy status\" counts those of "
                "this project.\n"),
            std::string::npos)
      << result.messages;
}

TEST_F(RunCommandTest, FormulasAlone_AreNoProblemToTheDoctor) {
  m_folder.write("box.study.yaml", "version: 1\nmodel: {Box: {x: 1, sum: {result: true}}}\n"
                                   "formulas: {Box.sum: \"%Box.x% * 2.0\"}\n"
                                   "study:\n  inputs: [Box.x]\n  outputs: [Box.sum]\n"
                                   "  variants: {grid: {Box.x: [2]}}\n");
  ASSERT_EQ(run().exitCode, 0);
  const CommandResult result = runCommand(m_folder, {"doctor", "box.study.yaml"});
  EXPECT_EQ(result.exitCode, 0) << result.output;
  EXPECT_NE(result.output.find("the files of 2 solved rows are not there, as the study file has it\n"),
            std::string::npos)
      << result.output;
}

TEST_F(RunCommandTest, ProjectThatAnotherProcessIsAboutToMake_EndsWithSix) {
  m_folder.write("box.optstudy.lock", "process 1 on another machine");
  const int lock = open(m_folder.file("box.optstudy.lock").c_str(), O_RDWR | O_CLOEXEC);
  ASSERT_GE(lock, 0);
  ASSERT_EQ(flock(lock, LOCK_EX | LOCK_NB), 0);
  const CommandResult result = run();
  close(lock);
  EXPECT_EQ(result.exitCode, 6) << result.messages;
  EXPECT_NE(result.messages.find("process 1 on another machine"), std::string::npos) << result.messages;
}

} // namespace
