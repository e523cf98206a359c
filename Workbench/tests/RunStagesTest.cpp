#include "OptimizationTool/OptimizationData.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace Workbench {
namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

class RunStagesTest : public ::testing::Test {
protected:
  static double output(const OpenBox &box, std::size_t row, std::size_t group) {
    return box.session->data().getVariantGroup(false, row, group)->getStandardValue();
  }
  static std::string reason(const OpenBox &box, std::size_t row) { return box.session->rowState(row).reason; }

  // What is kept of the row's last run.
  static Names kept(const OpenBox &box, std::size_t row) {
    Names names;
    const std::string folder = box.session->project().versionFolder(*box.session->rowVersion(row), false);
    if (fs::exists(folder + "/run")) {
      for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder + "/run")) {
        names.push_back(entry.path().lexically_relative(folder + "/run").string());
      }
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  // How often the solver has been started.
  std::size_t starts() const {
    const std::string text = m_box.read("starts");
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }
  void countStarts(const std::string &commands = "") const {
    m_box.writeSolver("echo start >> \"" + m_box.file("starts") + "\"\n" + commands);
  }

  BoxStudy m_box;
};

TEST_F(RunStagesTest, Commands_RunInOrderInOneFolder) {
  m_box.writeProgram("mesh.sh", "read x y < in.txt\necho \"$x $1 $2\" > mesh.txt\necho meshed\n");
  m_box.writeProgram(
      "solve.sh", "read x y z < mesh.txt\necho \"sum = $z\" > result.txt\necho \"product = $((x * y))\"\n");
  m_box.edit("  command: [./solve.sh]\n",
             "  commands:\n    - {name: mesh, run: [./mesh.sh, \"{{Box.y in mm}}\", \"{{Box.note}}\"]}\n"
             "    - {name: solve, run: [./solve.sh]}\n");
  m_box.edit("value: hello", "value: \"77\"");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
  EXPECT_EQ(output(box, 1, 0), 77.0);
  EXPECT_EQ(output(box, 1, 1), 20.0); // 2 * 10000 mm in m
  EXPECT_EQ(kept(box, 1), (Names{"in.txt", "mesh.stderr.log", "mesh.stdout.log", "mesh.txt", "result.txt",
                                 "solve.stderr.log", "solve.stdout.log"}));
  const EmbeddedHost::RunRecord record = box.session->project().runRecord(*box.session->rowVersion(1));
  EXPECT_EQ(record.command, (Names{"./mesh.sh", "10000", "77", "&&", "./solve.sh"}));
  EXPECT_EQ(record.logTail, "mesh.stdout.log:\nmeshed\nsolve.stdout.log:\nproduct = 20000\n");
}

TEST_F(RunStagesTest, StageThatFails_IsNamedAndEndsTheRun) {
  m_box.writeProgram("mesh.sh", "read x y < in.txt\nif [ $x = 2 ]; then exit 3; fi\n");
  m_box.edit("  command: [./solve.sh]\n",
             "  commands: [{name: mesh, run: [./mesh.sh]}, {name: solve, run: [./solve.sh]}]\n");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.failed, 1U);
  EXPECT_EQ(report.solved, 2U);
  EXPECT_EQ(reason(box, 1), "exit code: 3 in \"mesh\"");
  EXPECT_EQ(kept(box, 1), (Names{"in.txt", "mesh.stderr.log", "mesh.stdout.log"}));
}

TEST_F(RunStagesTest, Stage_HasATimeLimitAndExitCodesOfItsOwn) {
  m_box.writeProgram("mesh.sh", "exit 5\n");
  m_box.writeSolver("if [ $x = 3 ]; then sleep 60; fi");
  m_box.edit("  command: [./solve.sh]\n",
             "  commands: [{name: mesh, run: [./mesh.sh], exit-codes: [5]}, {name: solve, run: [./solve.sh], "
             "timeout: 300 ms}]\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 2U);
  EXPECT_EQ(reason(box, 2), "time limit: ended after 0.3 s in \"solve\"");
}

TEST_F(RunStagesTest, ExitCodeAndWallTime_AreResults) {
  m_box.writeProgram("solve.sh", "sleep 0.2\nexit 7\n");
  m_box.edit("  timeout: 20 s\n", "  exit-codes: [7]\n");
  m_box.edit("{file: result.txt, pattern: '^sum = (.*)$'}", "{exit-code: true}");
  m_box.edit("{pattern: '^product = (.*)$', unit: mm}", "{wall-time: true}");
  m_box.edit("product: {result: true, unit: m}", "product: {result: true, unit: ms}");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
  EXPECT_EQ(output(box, 0, 0), 7.0);
  EXPECT_GE(output(box, 0, 1), 150.0);
  EXPECT_LE(output(box, 0, 1), 20000.0);
}

TEST_F(RunStagesTest, Retries_BeginAnewInAnEmptyFolder) {
  countStarts("if [ -e trace ]; then exit 9; fi\ntouch trace\n"
              "if [ $x = 2 ] && [ $(wc -l < \"" +
              m_box.file("starts") + "\") -lt 4 ]; then exit 7; fi\n");
  m_box.edit("  timeout: 20 s\n", "  retries: {exit-code: 2}\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
  EXPECT_EQ(starts(), 5U); // the baseline, three times the second row, the third
}

TEST_F(RunStagesTest, Retries_OfAnotherReason_DoNotCount) {
  countStarts("if [ $x = 2 ]; then exit 7; fi");
  m_box.edit("  timeout: 20 s\n", "  retries: {signal: 3, time-limit: 3, extraction: 3}\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(starts(), 3U);
  EXPECT_EQ(reason(box, 1), "exit code: 7");
}

TEST_F(RunStagesTest, Retries_ThatAreUsedUp_AreCountedInTheReason) {
  countStarts("if [ $x = 2 ]; then exit 0; fi");
  m_box.edit("  timeout: 20 s\n", "  retries: {extraction: 2}\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(starts(), 5U);
  EXPECT_EQ(reason(box, 1), "extraction: Box.sum: result.txt was not written (3 attempts)");
}

TEST_F(RunStagesTest, Success_NeedsItsMarker) {
  m_box.writeSolver("if [ $x != 2 ]; then echo 'Job finished.' > job.log; else echo begun > job.log; fi");
  m_box.edit("  timeout: 20 s\n", "  success: {pattern: '^Job finished', file: job.log}\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 2U);
  EXPECT_EQ(reason(box, 1),
            "extraction: job.log: no line matches \"^Job finished\", which a run that succeeds writes");
}

TEST_F(RunStagesTest, Success_OfALogThatIsEmpty_Fails) {
  m_box.edit("  timeout: 20 s\n", "  success: {pattern: 'done', log: stderr}\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 0U);
  EXPECT_EQ(reason(box, 1),
            "extraction: stderr.log: no line matches \"done\", which a run that succeeds writes");
}

TEST_F(RunStagesTest, ImplausibleResult_FailsTheRow) {
  m_box.edit("{pattern: '^product = (.*)$', unit: mm}",
             "{pattern: '^product = (.*)$', unit: mm, minimum: 15 m, maximum: 25 m}");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 1U);
  EXPECT_EQ(reason(box, 0), "extraction: Box.product: 10 m is not plausible: below 15 m");
  EXPECT_EQ(reason(box, 2), "extraction: Box.product: 30 m is not plausible: above 25 m");
}

TEST_F(RunStagesTest, Keep_Outputs_KeepsLogsAndResultFiles) {
  m_box.writeSolver("mkdir -p deep/er; echo a > deep/er/big; echo b > big");
  m_box.edit("  timeout: 20 s\n", "  keep: outputs\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
  EXPECT_EQ(kept(box, 1), (Names{"result.txt", "stderr.log", "stdout.log"}));
}

TEST_F(RunStagesTest, Keep_Failed_KeepsNothingOfARowThatIsOk) {
  m_box.writeSolver("if [ $x = 2 ]; then exit 1; fi");
  m_box.edit("  timeout: 20 s\n", "  keep: failed\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 1U);
  EXPECT_EQ(kept(box, 0), Names{});
  EXPECT_EQ(kept(box, 1), (Names{"in.txt", "stderr.log", "stdout.log"}));
}

TEST_F(RunStagesTest, OutputLimit_FailsARowWhoseLogIsCut) {
  m_box.writeSolver("head -c 3000 /dev/zero | tr '\\0' 'x'; echo");
  m_box.edit("  timeout: 20 s\n", "  output-limit: 2 kB\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 0U);
  EXPECT_EQ(reason(box, 0), "output too large: stdout.log is not complete");
}

TEST_F(RunStagesTest, ChangedExtractor_ReadsTheKeptFilesAgainWithoutARun) {
  countStarts("echo 'other = 5'");
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).solved, 3U);
  }
  EXPECT_EQ(starts(), 3U);
  m_box.edit("pattern: '^product = (.*)$'", "pattern: '^other = (.*)$'");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.solved, 3U);
  EXPECT_EQ(report.extracted, 3U);
  EXPECT_EQ(starts(), 3U);
  EXPECT_EQ(output(box, 1, 1), 0.005);
  EXPECT_EQ(solve(box).alreadySolved, 3U);
}

TEST_F(RunStagesTest, ChangedExtractor_WithoutKeptFiles_Runs) {
  countStarts("echo 'other = 5'");
  m_box.edit("  timeout: 20 s\n", "  keep: failed\n");
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).solved, 3U);
  }
  m_box.edit("pattern: '^product = (.*)$'", "pattern: '^other = (.*)$'");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.solved, 3U);
  EXPECT_EQ(report.extracted, 0U);
  EXPECT_EQ(starts(), 6U);
}

TEST_F(RunStagesTest, MendedExtractor_MendsFailedRowsWithoutARun) {
  countStarts();
  m_box.edit("pattern: '^product = (.*)$'", "pattern: '^Product = (.*)$'");
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).failed, 3U);
    EXPECT_EQ(reason(box, 0), "extraction: Box.product: stdout.log: no line matches \"^Product = (.*)$\"");
  }
  m_box.edit("pattern: '^Product = (.*)$'", "pattern: '^product = (.*)$'");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).extracted, 3U);
  EXPECT_EQ(starts(), 3U);
  EXPECT_EQ(output(box, 0, 1), 10.0);
}

TEST_F(RunStagesTest, VersionCommand_TellsOneSolverFromAnother) {
  m_box.writeProgram("version.sh", "echo 'Solver 1.0'\nexit 3\n");
  m_box.edit("  timeout: 20 s\n", "  version: [./version.sh]\n");
  countStarts();
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(box.programs->version(), "Solver 1.0\n");
    EXPECT_EQ(solve(box).solved, 3U);
  }
  countStarts("# the same program, patched");
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).alreadySolved, 3U);
  }
  m_box.writeProgram("version.sh", "echo 'Solver 1.1' >&2\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(RunStagesTest, VersionCommand_ThatSaysNothing_IsReported) {
  m_box.writeProgram("version.sh", "exit 0\n");
  m_box.edit("  timeout: 20 s\n", "  version: [./version.sh, -v]\n");
  const std::unique_ptr<StudyFile> study = m_box.study();
  std::vector<FileProblem> problems;
  std::optional<SolverPrograms> programs = SolverPrograms::find(*study, "", problems);
  ASSERT_TRUE(programs.has_value());
  EXPECT_EQ(programs->askVersions(*study, ""),
            "the version cannot be asked for by \"./version.sh -v\": it prints nothing");
}

TEST_F(RunStagesTest, MissingProgram_IsReportedWithItsPlaceAndHowToGetIt) {
  m_box.edit(
      "  command: [./solve.sh]\n",
      "  install: get it\n  commands: [{name: a, run: [./solve.sh]}, {name: b, run: [no-such-program]}]\n");
  std::vector<FileProblem> problems;
  EXPECT_FALSE(SolverPrograms::find(*m_box.study(), "/usr/bin:/bin", problems).has_value());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0].toText(), m_box.file("box.study.yaml") +
                                      ":13:59: no-such-program is not installed or not on the PATH; get it");
}

TEST_F(RunStagesTest, ProgramBesideTheStudyFileThatIsNotFound_IsReportedWithWhatIsMissing) {
  m_box.write("plain.sh", "#!/bin/sh\n");
  m_box.edit("  command: [./solve.sh]\n",
             "  commands: [{name: a, run: [solve.sh]}, {name: b, run: [./plain.sh]}]\n");
  std::vector<FileProblem> problems;
  EXPECT_FALSE(SolverPrograms::find(*m_box.study(), "/usr/bin:/bin", problems).has_value());
  ASSERT_EQ(problems.size(), 2U);
  EXPECT_EQ(problems[0].message,
            "solve.sh is not installed or not on the PATH, did you mean \"./solve.sh\"?");
  EXPECT_EQ(problems[1].message, "./plain.sh may not be executed: \"chmod +x ./plain.sh\" allows it");
}

TEST_F(RunStagesTest, Rule_MakesRowsInfeasibleThatAreNeverRun) {
  countStarts();
  m_box.edit("  target: maximise\n", "  target: maximise\n  rule: \"%Box.x% < 2.5\"\n");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.solved, 2U);
  EXPECT_EQ(report.failed, 0U);
  EXPECT_EQ(report.infeasible, 1U);
  EXPECT_EQ(starts(), 2U);
  EXPECT_EQ(box.session->rowState(2).status, RowStatus::Infeasible);
  EXPECT_EQ(reason(box, 2), "rule: %Box.x% < 2.5");
  EXPECT_FALSE(box.session->data().getVariantCost(2).has_value());
  const MatrixTable table = MatrixTable::of(*box.session);
  EXPECT_EQ(statusText(table.rows[2].state), "infeasible: rule: %Box.x% < 2.5");
  EXPECT_FALSE(table.rows[2].outputs[0].has_value());
  EXPECT_EQ(table.bestNumber, std::optional<std::size_t>(1));
}

TEST_F(RunStagesTest, Rule_ThatIsTakenBack_FindsTheResultsThatWereThere) {
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).solved, 3U);
  }
  m_box.edit("  target: maximise\n", "  target: maximise\n  rule: \"%Box.x% < 2.5\"\n");
  {
    OpenBox box = open(m_box);
    const SolveReport report = solve(box);
    EXPECT_EQ(report.alreadySolved, 2U);
    EXPECT_EQ(report.infeasible, 1U);
    EXPECT_FALSE(box.session->data().getVariantCost(2).has_value());
  }
  m_box.edit("  rule: \"%Box.x% < 2.5\"\n", "");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).alreadySolved, 3U);
  EXPECT_TRUE(box.session->data().getVariantCost(2).has_value());
}

TEST_F(RunStagesTest, EqualFailuresInARow_EndTheSolve) {
  countStarts("exit 1");
  m_box.edit("  target: maximise\n", "  target: maximise\n  stop-after: 2\n");
  {
    OpenBox box = open(m_box);
    const SolveReport report = solve(box);
    EXPECT_EQ(report.failed, 2U);
    EXPECT_EQ(report.givenUp, "2 equal failures in a row: exit code: 1");
    EXPECT_EQ(box.session->rowState(2).status, RowStatus::NotRun);
  }
  m_box.edit("stop-after: 2", "stop-after: 0");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.failed, 3U);
  EXPECT_EQ(report.givenUp, "");
}

TEST_F(RunStagesTest, DifferentFailures_DoNotEndTheSolve) {
  m_box.writeSolver("exit $x");
  m_box.edit("  target: maximise\n", "  target: maximise\n  stop-after: 2\n");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).failed, 3U);
}

TEST_F(RunStagesTest, LongNumbers_AreWarnedOfWithTheUnitThatTheyAreWrittenIn) {
  m_box.edit("    y: 10 m\n", "    y: 1.2345678901234567e-9 m\n");
  m_box.write("in.txt.template", "{{Box.x}} {{Box.y in km}}\n");
  m_box.writeProgram("solve.sh", "echo 'sum = 1' > result.txt; echo 'product = 1'\n");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  ASSERT_EQ(report.warnings.size(), 1U);
  const std::string hint = "give it a format, {{Box.y in km as %.12e}}";
  const std::string &message = report.warnings[0].message;
  ASSERT_GT(message.size(), hint.size());
  EXPECT_EQ(message.substr(message.size() - hint.size()), hint);
}

TEST_F(RunStagesTest, LongNumbers_AreWarnedOfOncePerPlace) {
  m_box.edit("{name: two, values: {width: 2}}", "{name: two, values: {width: 1.2345678901234567e-12}}");
  m_box.edit("{width: 3}", "{width: 1.2345678901234568e-12}");
  m_box.writeProgram("solve.sh", "echo 'sum = 1' > result.txt; echo 'product = 1'\n");
  OpenBox box = open(m_box);
  const SolveReport report = solve(box);
  EXPECT_EQ(report.solved, 3U);
  ASSERT_EQ(report.warnings.size(), 1U);
  EXPECT_EQ(
      report.warnings[0].toText(),
      m_box.file("in.txt.template") +
          ":1:1: Box.x: 1.2345678901234567e-12 has 22 characters, and some solvers leave out what follows "
          "the first 20; give it a format, {{Box.x as %.12e}}");
}

TEST_F(RunStagesTest, Formulas_NeedNeitherFolderNorProcess) {
  m_box.write("box.study.yaml", R"yaml(version: 1
model:
  Box: {x: 1, y: 10 m, sum: {result: true}, product: {result: true, unit: m}}
formulas: {Box.sum: "%Box.x% + %Box.y%", Box.product: "%Box.sum% * 2.0"}
study:
  target: maximise
  cost: "%Box.product%"
  inputs: [{name: width, attribute: Box.x}]
  outputs: [Box.sum, Box.product]
  variants: [{name: two, values: {width: 2}}, {values: {width: 3}}]
)yaml");
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).solved, 3U);
    EXPECT_EQ(output(box, 1, 0), 12.0);
    EXPECT_EQ(output(box, 1, 1), 24.0);
    EXPECT_EQ(box.session->data().getVariantCost(2).value_or(0.0), 26.0);
    const std::string folder = box.session->project().versionFolder(*box.session->rowVersion(1), false);
    EXPECT_TRUE(!fs::exists(folder) || fs::is_empty(folder)) << folder;
    EXPECT_EQ(kept(box, 1), Names{});
  }
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).alreadySolved, 3U);
}

TEST_F(RunStagesTest, Formulas_OverResultsOfTheSolver_AreComputedFromThem) {
  m_box.edit("    sum: {result: true}\n", "    sum: {result: true}\n    both: {result: true}\n    c: 4\n");
  m_box.edit("study:\n", "formulas: {Box.both: \"%Box.sum% + %Box.product% + %Box.x%\"}\nstudy:\n");
  m_box.edit("  outputs: [", "  outputs: [Box.both, ");
  countStarts();
  {
    OpenBox box = open(m_box);
    EXPECT_EQ(solve(box).solved, 3U);
    EXPECT_EQ(output(box, 1, 0), 10002.0 + 20.0 + 2.0);
  }
  m_box.edit("%Box.product% + %Box.x%", "%Box.product% + %Box.c%");
  OpenBox box = open(m_box);
  EXPECT_EQ(solve(box).extracted, 3U);
  EXPECT_EQ(output(box, 1, 0), 10002.0 + 20.0 + 4.0);
  EXPECT_EQ(starts(), 3U);
}

} // namespace
} // namespace Workbench
