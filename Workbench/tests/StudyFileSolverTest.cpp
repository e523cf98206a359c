#include "Workbench/tests/StudyText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

const char *const kText = R"yaml(version: 1
model:
  Beam:
    height: 10 ohm
    count: {kind: integer, value: 3}
    mass: {result: true, unit: ohm}
    code: {kind: integer, result: true}
    time: {result: true}
solver:
  commands:
    - {name: mesh, run: [./mesh, "{{Beam.height in kohm as %.3f}}", -n], timeout: 5 s}
    - {name: solve, run: [solver, model], exit-codes: [0, 2], version: [solver, -v]}
  timeout: 2 min
  retries: {exit-code: 2, time-limit: 1}
  keep: outputs
  output-limit: 2 kB
  file-limit: 3 MiB
  folder-limit: 4000
  success: Job finished
  results:
    Beam.mass: {key: mass, stage: mesh, minimum: 1 ohm, maximum: 2 kohm}
    Beam.code: {exit-code: true}
    Beam.time: {wall-time: true}
study:
  inputs: [Beam.height, Beam.count]
  outputs: [Beam.mass]
)yaml";

std::string problemsWith(const std::string &from, const std::string &to) {
  return problemsIn(with(kText, from, to));
}

TEST(StudyFileSolverTest, Commands_InOrder_AreStages) {
  const StudyFile file = studyIn(kText);
  ASSERT_EQ(file.solver.stages.size(), 2U);
  const StudyStage &mesh = file.solver.stages[0];
  EXPECT_EQ(mesh.name, "mesh");
  EXPECT_EQ(mesh.program(), "./mesh");
  ASSERT_EQ(mesh.command.size(), 3U);
  EXPECT_FALSE(mesh.command[0].isPlaceholder);
  EXPECT_TRUE(mesh.command[1].isPlaceholder);
  EXPECT_EQ(mesh.command[1].text, "{{Beam.height in kohm as %.3f}}");
  EXPECT_FALSE(mesh.command[2].isPlaceholder);
  EXPECT_EQ(mesh.timeLimit, std::chrono::seconds(5));
  EXPECT_EQ(mesh.exitCodes, std::vector<int>{0});
  EXPECT_EQ(mesh.outputLog(), "mesh.stdout.log");
  EXPECT_EQ(mesh.errorLog(), "mesh.stderr.log");
  const StudyStage &solve = file.solver.stages[1];
  EXPECT_EQ(solve.timeLimit, std::chrono::minutes(2));
  EXPECT_EQ(solve.exitCodes, (std::vector<int>{0, 2}));
  EXPECT_EQ(solve.versionCommand, (std::vector<std::string>{"solver", "-v"}));
}

TEST(StudyFileSolverTest, Settings_AreRead) {
  const StudySolver solver = studyIn(kText).solver;
  EXPECT_EQ(solver.retries, (std::array<int, kFailureReasons>{2, 0, 1, 0, 0, 0}));
  EXPECT_EQ(solver.keep, KeptFiles::Outputs);
  EXPECT_EQ(solver.outputLimit, 2000U);
  EXPECT_EQ(solver.fileLimit, 3145728U);
  EXPECT_EQ(solver.folderLimit, 4000U);
  ASSERT_TRUE(solver.success.has_value());
  EXPECT_EQ(solver.success->pattern.pattern(), "Job finished");
  EXPECT_EQ(solver.success->source, ResultSource::StandardOutput);
  EXPECT_EQ(solver.success->stage, 1U);
}

TEST(StudyFileSolverTest, Limits_LeftOut_AreNone) {
  const StudySolver solver = studyIn(with(kText, "  file-limit: 3 MiB\n  folder-limit: 4000\n", "")).solver;
  EXPECT_EQ(solver.fileLimit, 0U);
  EXPECT_EQ(solver.folderLimit, 0U);
}

TEST(StudyFileSolverTest, Results_KnowTheirStage) {
  const StudySolver solver = studyIn(kText).solver;
  ASSERT_EQ(solver.extractors.size(), 3U);
  EXPECT_EQ(solver.extractors[0].stage, std::optional<std::size_t>(0));
  EXPECT_EQ(solver.extractors[0].minimum, std::optional<double>(1.0));
  EXPECT_EQ(solver.extractors[0].maximum, std::optional<double>(2000.0));
  EXPECT_EQ(solver.extractors[1].source, ResultSource::ExitCode);
  EXPECT_EQ(solver.extractors[1].stage, std::optional<std::size_t>(1)); // the last one
  EXPECT_EQ(solver.extractors[2].source, ResultSource::WallTime);
  EXPECT_EQ(solver.extractors[2].stage, std::nullopt); // all of them
  EXPECT_EQ(solver.extractors[2].unit, "");
}

TEST(StudyFileSolverTest, EveryWayToFindAResult_IsRead) {
  const auto rule = [](const std::string &text) {
    return studyIn(with(kText, "{key: mass, stage: mesh, minimum: 1 ohm, maximum: 2 kohm}", text))
        .solver.extractors[0]
        .extractor->rule();
  };
  EmbeddedHost::ExtractionRule found =
      rule("{pattern: 'm=(.)(.)', group: 2, reduce: last, after: A, until: B}");
  EXPECT_EQ(found.kind, EmbeddedHost::ExtractionKind::Pattern);
  EXPECT_EQ(found.pattern, "m=(.)(.)");
  EXPECT_EQ(found.group, 2U);
  EXPECT_EQ(found.reduction, EmbeddedHost::Reduction::Last);
  EXPECT_EQ(found.after, "A");
  EXPECT_EQ(found.until, "B");
  found = rule("{key: mass, separators: '=', file: out.txt}");
  EXPECT_EQ(found.kind, EmbeddedHost::ExtractionKind::KeyValue);
  EXPECT_EQ(found.key, "mass");
  EXPECT_EQ(found.separators, "=");
  found = rule("{column: mass, delimiter: tab, skip: 2, where: {column: 1, nearest: 0.5}, reduce: mean}");
  EXPECT_EQ(found.kind, EmbeddedHost::ExtractionKind::TableColumn);
  EXPECT_EQ(found.column.title, "mass");
  EXPECT_EQ(found.delimiter, '\t');
  EXPECT_EQ(found.skippedLines, 2U);
  ASSERT_TRUE(found.whereColumn.has_value());
  EXPECT_EQ(found.whereColumn->number, 1U);
  EXPECT_EQ(found.whereValue, "0.5");
  EXPECT_TRUE(found.isNearest);
  EXPECT_EQ(found.reduction, EmbeddedHost::Reduction::Mean);
  found = rule("{column: '3', where: {column: node, equals: a}}");
  EXPECT_EQ(found.column.title, "3"); // in quotes it is a title
  EXPECT_FALSE(found.isNearest);
  EXPECT_EQ(rule("{column: 3}").column.number, 3U);
  found = rule("{pointer: /a/0, file: r.json}");
  EXPECT_EQ(found.kind, EmbeddedHost::ExtractionKind::JsonPointer);
  EXPECT_EQ(found.pointer, "/a/0");
  found = rule("{columns: [13, 24], lines: '^ -1', reduce: max}");
  EXPECT_EQ(found.kind, EmbeddedHost::ExtractionKind::FixedColumns);
  EXPECT_EQ(found.firstColumn, 13U);
  EXPECT_EQ(found.lastColumn, 24U);
  EXPECT_EQ(found.pattern, "^ -1");
  EXPECT_EQ(rule("{columns: [1, 2], line: 7}").lineNumber, 7U);
  EXPECT_EQ(rule("{whole: true, file: m.txt}").kind, EmbeddedHost::ExtractionKind::WholeText);
}

TEST(StudyFileSolverTest, FilesOutsideTheFolder_NeedToBeAllowed) {
  const char *const kFiles = "  timeout: 2 min\n";
  const StudyFile file = studyIn(with(kText, kFiles, "  copies: [{from: ../lib, to: lib, outside: true}]\n"));
  EXPECT_EQ(file.solver.copies[0].from, "../lib");
  EXPECT_EQ(file.pathOf("../lib"), "dir/../lib");
  EXPECT_EQ(file.pathOf("/lib"), "/lib");
  EXPECT_EQ(
      problemsWith(kFiles, "  copies: [{from: ../lib, to: lib, outside: false}]\n"),
      "dir/s.yaml:13:12: \"../lib\": a file of the study is named relative to its folder and stays inside "
      "it\n");
  EXPECT_EQ(
      problemsWith(kFiles, "  copies: [{from: lib, to: ../lib, outside: true}]\n"),
      "dir/s.yaml:13:12: \"../lib\": a file of a run is named relative to its folder and stays inside it\n"
      "dir/s.yaml:13:12: \"../lib\": a file of a run lies in the run's folder itself\n");
}

TEST(StudyFileSolverTest, Mistakes_AreReportedWithTheirPlace) {
  const std::string mass = "{key: mass, stage: mesh, minimum: 1 ohm, maximum: 2 kohm}";
  const std::string missing = "dir/s.yaml:6:5: nothing under \"results\" of the solver says where the result "
                              "\"Beam.mass\" is found\n";
  const struct {
    std::string from;
    std::string to;
    std::string problem;
  } rows[] = {
      {"{name: solve,", "{name: mesh,", "dir/s.yaml:12:14: two commands are called \"mesh\"\n"},
      {"{name: solve,", "{name: so/lve,",
       "dir/s.yaml:12:14: the name of a command holds letters, digits, \"-\" and \"_\" only: files are named "
       "after "
       "it\n"},
      {"{name: solve, run: [solver, model],", "{name: solve,",
       "dir/s.yaml:12:7: a command of several needs \"name\" and \"run\"\n"},
      {"run: [solver, model]", "run: solver model",
       "dir/s.yaml:12:26: the command is a list of arguments, [program, argument, ...]; no shell takes it "
       "apart\n"},
      {"[./mesh, ", "[", "dir/s.yaml:11:26: the program cannot be a placeholder\n"},
      {"\"{{Beam.height in kohm as %.3f}}\"", "\"h={{Beam.height}}\"",
       "dir/s.yaml:11:37: a placeholder fills a whole argument: let it stand alone, or fill it into a "
       "template\n"},
      {"\"{{Beam.height in kohm as %.3f}}\"", "\"{{Beam.height}}{{Beam.count}}\"",
       "dir/s.yaml:11:35: a placeholder fills a whole argument: let it stand alone, or fill it into a "
       "template\n"},
      {"\"{{Beam.height in kohm as %.3f}}\"", "\"{{Beam.height\"",
       "dir/s.yaml:11:35: this placeholder is not closed with }} on its line\n"},
      {"\"{{Beam.height in kohm as %.3f}}\"", "{{Beam.height}}",
       "dir/s.yaml:11:34: a text with % or {{ must be put in quotes\n"},
      {"version: [solver, -v]", "version: solver -v",
       "dir/s.yaml:12:72: version is a command that prints it: a list of arguments, [program, argument, "
       "...]\n"},
      {"version: [solver, -v]", "version: [solver, \"{{Beam.height}}\"]",
       "dir/s.yaml:12:81: a version does not depend on a row: no placeholder is filled here\n"},
      {"  timeout: 2 min\n", "  version: [a]\n",
       "dir/s.yaml:13:12: each of several commands has a \"version\" of its own\n"},
      {"  timeout: 2 min\n", "  command: [a]\n",
       "dir/s.yaml:10:3: the solver has either \"command\" or \"commands\"\n"},
      {"exit-code: 2,", "exit_code: 2,",
       "dir/s.yaml:14:13: retries has no reason \"exit_code\", did you mean \"exit-code\"?\n"},
      {"exit-code: 2,", "exit-code: 101,",
       "dir/s.yaml:14:24: the number of retries lies between 0 and 100\n"},
      {"keep: outputs", "keep: output",
       "dir/s.yaml:15:9: keep must be all, outputs or failed, not \"output\", did you mean \"outputs\"?\n"},
      {"2 kB", "2 km",
       "dir/s.yaml:16:17: output-limit must be a size such as 500 kB, 16 MB or 1 GiB, not \"2 km\"\n"},
      {"2 kB", "0",
       "dir/s.yaml:16:17: output-limit must be a size such as 500 kB, 16 MB or 1 GiB, not \"0\"\n"},
      {"3 MiB", "none",
       "dir/s.yaml:17:15: file-limit must be a size such as 500 kB, 16 MB or 1 GiB, not \"none\"\n"},
      {"limit: 4000", "limit: -1",
       "dir/s.yaml:18:17: folder-limit must be a size such as 500 kB, 16 MB or 1 GiB, not \"-1\"\n"},
      {"success: Job finished", "success: {file: log}", "dir/s.yaml:19:12: success needs a pattern\n"},
      {"success: Job finished", "success: {pattern: done, stage: slove}",
       "dir/s.yaml:19:35: no command is called \"slove\", did you mean \"solve\"?\n"},
      {mass, "{}",
       missing +
           "dir/s.yaml:21:16: the result \"Beam.mass\" needs one of pattern, key, column, pointer, columns, "
           "whole, exit-code or wall-time\n"},
      {mass, "{key: mass, pattern: '(x)'}",
       missing +
           "dir/s.yaml:21:16: the result \"Beam.mass\" is found in one way, not by pattern and by key\n"},
      {mass, "{key: mass, delimiter: tab}",
       "dir/s.yaml:21:39: the result \"Beam.mass\": \"delimiter\" does not go with \"key\"\n"},
      {mass, "{keys: mass}",
       missing +
           "dir/s.yaml:21:16: the result \"Beam.mass\" needs one of pattern, key, column, pointer, columns, "
           "whole, exit-code or wall-time\n"
           "dir/s.yaml:21:17: the result \"Beam.mass\" has no key \"keys\", did you mean \"key\"?\n"},
      {mass, "{key: mass, reduce: maximum}",
       missing + "dir/s.yaml:21:36: reduce must be single, first, last, min, max, sum, mean or count, not "
                 "\"maximum\"\n"},
      {mass, "{key: mass, stage: mseh}",
       "dir/s.yaml:21:35: no command is called \"mseh\", did you mean \"mesh\"?\n"},
      {mass, "{key: mass, file: a, stage: mesh}",
       "dir/s.yaml:21:44: the result \"Beam.mass\": a file belongs to the whole run and not to a stage\n"},
      {mass, "{key: mass, minimum: 2, maximum: 1}", "dir/s.yaml:21:49: the maximum is below the minimum\n"},
      {mass, "{column: 0}", missing + "dir/s.yaml:21:25: column counts from 1\n"},
      {mass, "{column: a, delimiter: ab}",
       missing + "dir/s.yaml:21:39: delimiter must be one character, tab or blank, not \"ab\"\n"},
      {mass, "{column: a, where: {column: t}}",
       missing + "dir/s.yaml:21:35: where needs \"column\", and either \"equals\" or \"nearest\"\n"},
      {mass, "{column: a, where: {column: t, nearest: b}}",
       missing + "dir/s.yaml:21:56: nearest must be a number, not \"b\"\n"},
      {mass, "{columns: [1, 2]}",
       missing +
           "dir/s.yaml:21:26: columns need either \"line\", a line's number, or \"lines\", a pattern\n"},
      {mass, "{columns: [5, 2], line: 1}",
       missing + "dir/s.yaml:21:26: columns count from 1, and the last one is not before the first\n"},
      {mass, "{columns: 5, line: 1}",
       missing + "dir/s.yaml:21:26: columns are two numbers, the first and the last column of the number, "
                 "[13, 24]\n"},
      {mass, "{pointer: a/b}",
       missing + "dir/s.yaml:21:26: \"a/b\" is no JSON pointer, such as /results/0/mass\n"},
      {mass, "{whole: false}", missing + "dir/s.yaml:21:24: whole can only be true\n"},
      {mass, "{wall-time: true}",
       "dir/s.yaml:21:5: \"s\" cannot be converted to \"ohm\", in which \"Beam.mass\" is declared\n"},
  };
  for (const auto &row : rows) {
    EXPECT_EQ(problemsWith(row.from, row.to), row.problem) << row.to;
  }
}

TEST(StudyFileSolverTest, Environment_TakesNoPlaceholder) {
  EXPECT_EQ(
      problemsWith("  keep: outputs\n", "  keep: outputs\n  environment: {W: \"{{Beam.height}}\"}\n"),
      "dir/s.yaml:16:20: an environment variable takes no placeholder; give the value in a file or as an "
      "argument\n");
}

} // namespace
} // namespace Workbench
