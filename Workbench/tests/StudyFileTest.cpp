#include "Workbench/StudyFile.h"

#include "Workbench/tests/FewUnits.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

const char *const kStudy = R"yaml(version: 1
title: A filter
model:
  Filter:
    R1: 10 kohm
    C1: {value: 10 nF, minimum: 1 nF, maximum: 100 nF, description: the first}
    Stages: {kind: integer, value: 2, minimum: 1, maximum: 4}
    Active: {kind: boolean, value: true}
    Topology: {kind: choice, options: [ladder, bridge], value: bridge}
    Note: {kind: text, value: "100% {{new}}"}
    CutOff: {result: true, unit: kHz}
    Peak: {result: true}
solver:
  install: "on Debian: apt install ngspice"
  templates:
    - {from: filter.cir.template, to: filter.cir}
  copies: [models.lib]
  command: [ngspice, -b, filter.cir]
  environment: {SPICE_ASCIIRAWFILE: 1}
  timeout: 500 ms
  exit-codes: [0, 3]
  results:
    Filter.CutOff: {pattern: "^fc = (\\S+)", unit: Hz}
    Filter.Peak: {file: result.txt, pattern: "[0-9]+", group: 0}
study:
  target: minimise
  cost: "%Filter.CutOff% + 1.0"
  inputs:
    - {name: R, attribute: Filter.R1, minimum: 1 kohm, maximum: 22000 ohm, step: 500 ohm}
    - Filter.C1
    - Filter.Topology
  outputs: [Filter.CutOff, {name: Peak, attributes: [Filter.Peak]}]
  variants:
    - {name: small, values: {R: 4700 ohm, Filter.C1: 22}}
    - {values: {Filter.Topology: ladder}}
)yaml";

std::string replaced(const std::string &from, const std::string &to) {
  std::string text = kStudy;
  const std::size_t at = text.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return text.replace(at, from.size(), to);
}

std::string problemsOf(const std::string &text) {
  std::vector<FileProblem> problems;
  const FewUnits units;
  const std::optional<StudyFile> file = StudyFile::parse("dir/s.yaml", text, units, problems);
  EXPECT_EQ(file.has_value(), problems.empty());
  std::string all;
  for (const FileProblem &problem : problems) {
    all += problem.toText() + "\n";
  }
  return all;
}

StudyFile parsed(const std::string &text) {
  std::vector<FileProblem> problems;
  const FewUnits units;
  std::optional<StudyFile> file = StudyFile::parse("dir/s.yaml", text, units, problems);
  for (const FileProblem &problem : problems) {
    ADD_FAILURE() << problem.toText();
  }
  return file ? std::move(*file) : StudyFile();
}

std::vector<double> numbers(const StudyRow &row) {
  std::vector<double> values;
  for (const StudyValue &value : row.values) {
    values.push_back(value.number);
  }
  return values;
}

using Numbers = std::vector<double>;

TEST(StudyFileTest, Model_EveryKind_IsRead) {
  const StudyFile file = parsed(kStudy);
  ASSERT_EQ(file.attributes.size(), 8U);
  EXPECT_EQ(file.title, "A filter");
  EXPECT_EQ(file.folder, "dir");
  const struct {
    const char *name;
    AttributeKind kind;
    double number;
    const char *text;
    const char *hostText;
    const char *unit;
  } rows[] = {{"Filter.R1", AttributeKind::Real, 10.0, "10 kohm", "10 kohm", "kohm"},
              {"Filter.C1", AttributeKind::Real, 10.0, "10 nF", "10 nF", "nF"},
              {"Filter.Stages", AttributeKind::Integer, 2.0, "2", "2", ""},
              {"Filter.Active", AttributeKind::Boolean, 1.0, "true", "1", ""},
              {"Filter.Topology", AttributeKind::Choice, 2.0, "bridge", "2", ""},
              {"Filter.Note", AttributeKind::Text, 0.0, "100% {{new}}", "100% {{new}}", ""}};
  for (std::size_t index = 0; index < 6; ++index) {
    const StudyAttribute &attribute = file.attributes[index];
    EXPECT_EQ(attribute.fullName(), rows[index].name);
    EXPECT_EQ(attribute.kind, rows[index].kind) << rows[index].name;
    EXPECT_EQ(attribute.value.number, rows[index].number) << rows[index].name;
    EXPECT_EQ(attribute.value.text, rows[index].text) << rows[index].name;
    EXPECT_EQ(hostText(attribute, attribute.value), rows[index].hostText) << rows[index].name;
    EXPECT_EQ(attribute.unit, rows[index].unit) << rows[index].name;
    EXPECT_FALSE(attribute.isResult) << rows[index].name;
  }
  EXPECT_EQ(file.attributes[1].minimum.value_or(0.0), 1.0);
  EXPECT_EQ(file.attributes[1].maximum.value_or(0.0), 100.0);
  EXPECT_EQ(file.attributes[1].description, "the first");
  EXPECT_TRUE(file.attributes[6].isResult);
  EXPECT_EQ(file.attributes[6].unit, "kHz");
  EXPECT_EQ(file.attributes[6].place.line, 11U);
  EXPECT_EQ(file.attributes[6].place.column, 5U);
}

TEST(StudyFileTest, Solver_EveryKey_IsRead) {
  const StudyFile file = parsed(kStudy);
  const StudySolver &solver = file.solver;
  EXPECT_EQ(solver.installHint, "on Debian: apt install ngspice");
  ASSERT_EQ(solver.templates.size(), 1U);
  EXPECT_EQ(solver.templates[0].from, "filter.cir.template");
  EXPECT_EQ(solver.templates[0].to, "filter.cir");
  ASSERT_EQ(solver.copies.size(), 1U);
  EXPECT_EQ(solver.copies[0].to, "models.lib");
  ASSERT_EQ(solver.stages.size(), 1U);
  const StudyStage &stage = solver.stages.front();
  EXPECT_EQ(stage.name, "");
  EXPECT_EQ(stage.outputLog(), "stdout.log");
  EXPECT_EQ(stage.errorLog(), "stderr.log");
  ASSERT_EQ(stage.command.size(), 3U);
  EXPECT_EQ(stage.program(), "ngspice");
  EXPECT_EQ(stage.command[1].text, "-b");
  EXPECT_EQ(stage.command[2].text, "filter.cir");
  EXPECT_EQ(stage.place.line, 18U);
  EXPECT_EQ(stage.place.column, 12U);
  EXPECT_EQ(solver.environment, (std::map<std::string, std::string>{{"SPICE_ASCIIRAWFILE", "1"}}));
  EXPECT_EQ(stage.timeLimit, std::chrono::milliseconds(500));
  EXPECT_EQ(stage.exitCodes, (std::vector<int>{0, 3}));
  ASSERT_EQ(solver.extractors.size(), 2U);
  EXPECT_EQ(solver.extractors[0].attribute, "Filter.CutOff");
  EXPECT_EQ(solver.extractors[0].source, ResultSource::StandardOutput);
  EXPECT_EQ(solver.extractors[0].unit, "Hz");
  EXPECT_EQ(solver.extractors[0].extractor->extract("fc = 5\n", "log").value.value_or(0.0), 5.0);
  EXPECT_EQ(solver.extractors[1].source, ResultSource::File);
  EXPECT_EQ(solver.extractors[1].file, "result.txt");
  EXPECT_EQ(solver.extractors[1].extractor->extract("x7\n", "file").value.value_or(0.0), 7.0);
}

TEST(StudyFileTest, Solver_WithoutTheOptionalKeys_HasTheDefaults) {
  const StudyFile file = parsed(
      replaced("  environment: {SPICE_ASCIIRAWFILE: 1}\n  timeout: 500 ms\n  exit-codes: [0, 3]\n", ""));
  EXPECT_EQ(file.solver.stages.front().timeLimit, std::chrono::minutes(10));
  EXPECT_EQ(file.solver.stages.front().exitCodes, std::vector<int>{0});
  EXPECT_TRUE(file.solver.environment.empty());
}

TEST(StudyFileTest, Study_Groups_AreReadInDeclaredUnits) {
  const StudyFile file = parsed(kStudy);
  EXPECT_EQ(file.type, EntityModel::ModelVersionStudyType::Parametric);
  EXPECT_EQ(file.target, MathematicalUtilities::OptimisationStrategy::Minimise);
  EXPECT_EQ(file.cost, "%Filter.CutOff% + 1.0");
  ASSERT_EQ(file.inputs.size(), 3U);
  EXPECT_EQ(file.inputs[0].title(), "R");
  EXPECT_EQ(file.inputs[0].macro(), "Filter.R1");
  EXPECT_EQ(file.inputs[0].minimum.value_or(0.0), 1.0);
  EXPECT_EQ(file.inputs[0].maximum.value_or(0.0), 22.0);
  EXPECT_EQ(file.inputs[0].step.value_or(0.0), 0.5);
  EXPECT_EQ(file.inputs[1].title(), "Filter.C1");
  ASSERT_EQ(file.outputs.size(), 2U);
  EXPECT_EQ(file.outputs[1].title(), "Peak");
}

TEST(StudyFileTest, Variants_List_TakesMissingValuesFromTheBaseline) {
  const StudyFile file = parsed(kStudy);
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].name, "small");
  EXPECT_EQ(numbers(file.rows[0]), (Numbers{4.7, 22.0, 2.0}));
  EXPECT_EQ(file.rows[1].name, "");
  EXPECT_EQ(numbers(file.rows[1]), (Numbers{10.0, 10.0, 1.0}));
}

std::string withVariants(const std::string &variants) {
  std::string text = kStudy;
  return text.substr(0, text.find("    - {name: small")) + variants;
}

TEST(StudyFileTest, Variants_Grid_VariesTheFirstInputSlowest) {
  const StudyFile file = parsed(withVariants("    grid: {R: [1 kohm, 2000 ohm], Filter.C1: [5 nF, 6 nF]}\n"));
  ASSERT_EQ(file.rows.size(), 4U);
  EXPECT_EQ(numbers(file.rows[0]), (Numbers{1.0, 5.0, 2.0}));
  EXPECT_EQ(numbers(file.rows[1]), (Numbers{1.0, 6.0, 2.0}));
  EXPECT_EQ(numbers(file.rows[2]), (Numbers{2.0, 5.0, 2.0}));
  EXPECT_EQ(numbers(file.rows[3]), (Numbers{2.0, 6.0, 2.0}));
  EXPECT_TRUE(file.notes.empty());
}

TEST(StudyFileTest, Variants_GridOverSteps_IncludesTheMaximumWithinRounding) {
  const StudyFile file =
      parsed(withVariants("    grid: {Filter.C1: {minimum: 1.0, maximum: 1.3, step: 0.1}}\n"));
  ASSERT_EQ(file.rows.size(), 4U);
  EXPECT_EQ(file.rows[1].values[1].number, 1.1);
  EXPECT_EQ(file.rows[3].values[1].number, 1.3);
}

TEST(StudyFileTest, Variants_GridOverSteps_HasTheNumbersThatSomebodyWouldWrite) {
  const StudyFile file =
      parsed(withVariants("    list: [{name: a, values: {Filter.C1: 1.3}}]\n"
                          "    grid: {Filter.C1: {minimum: 1.1, maximum: 1.5, step: 0.1}}\n"));
  ASSERT_EQ(file.rows.size(), 5U); // 1.3 is there already
  EXPECT_EQ(file.rows[1].values[1].number, 1.1);
  EXPECT_EQ(file.rows[2].values[1].number, 1.2);
  EXPECT_EQ(file.rows[3].values[1].number, 1.4);
}

TEST(StudyFileTest, Variants_GridWithoutNumbers_UsesTheInputsOwn) {
  const StudyFile file = parsed(withVariants("    grid: {R: }\n"));
  EXPECT_EQ(file.rows.size(), 42U); // 1, 1.5, ... 22 kohm are 43; 10 kohm is the baseline
  EXPECT_EQ(file.notes, std::vector<std::string>{
                            "1 of 43 variants equal the baseline or another variant and are left out"});
}

TEST(StudyFileTest, Variants_GridWithOwnMaximum_KeepsTheInputsMinimumAndStep) {
  const StudyFile file = parsed(withVariants("    grid: {R: {maximum: 2.2 kohm}}\n"));
  ASSERT_EQ(file.rows.size(), 3U);
  EXPECT_EQ(file.rows[2].values[0].number, 2.0);
}

TEST(StudyFileTest, Variants_ListAndGrid_LeaveOutEqualRows) {
  const StudyFile file =
      parsed(withVariants("    list: [{name: a, values: {R: 1}}]\n    grid: {R: [1, 2, 2]}\n"));
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.notes, std::vector<std::string>{
                            "2 of 4 variants equal the baseline or another variant and are left out"});
}

TEST(StudyFileTest, Numbers_AreReadFromTheTextOfTheScalar) {
  const StudyFile file = parsed(replaced("R1: 10 kohm", "R1: \"010 kohm\""));
  EXPECT_EQ(file.attributes[0].value.number, 10.0);
}

TEST(StudyFileTest, Step_OfATemperature_IsADifference) {
  std::string text = replaced("R1: 10 kohm", "T: 300 K");
  text.replace(
      text.find("{name: R, attribute: Filter.R1, minimum: 1 kohm, maximum: 22000 ohm, step: 500 ohm}"), 83,
      "{name: R, attribute: Filter.T, minimum: 20 degC, maximum: 300 K, step: 5 degC}");
  text.replace(text.find("R: 4700 ohm"), 11, "R: 22 degC");
  const StudyFile file = parsed(text);
  ASSERT_EQ(file.inputs.size(), 3U);
  EXPECT_EQ(file.inputs[0].minimum.value_or(0.0), 293.15);
  EXPECT_EQ(file.inputs[0].step.value_or(0.0), 5.0);
  EXPECT_EQ(file.rows[0].values[0].number, 295.15);
}

TEST(StudyFileTest, Mistakes_AreReportedWithTheirPlace) {
  const struct {
    const char *from;
    const char *to;
    const char *problem;
  } rows[] = {
      {"version: 1\n", "version: 2\n",
       "dir/s.yaml:1:10: version 2 is not known to this program, which reads version 1\n"},
      {"version: 1\n", "", "dir/s.yaml:1:1: the study file needs \"version: 1\"\n"},
      {"title: A", "titel: A",
       "dir/s.yaml:2:1: the study file has no key \"titel\", did you mean \"title\"?\n"},
      {"title: A filter", "version: 1", "dir/s.yaml:2:1: the study file: \"version\" is already in line 1\n"},
      {"    C1: {value: 10 nF,", "    R1: {value: 10 nF,",
       "dir/s.yaml:6:5: the entity \"Filter\": \"R1\" is already in line 5\n"},
      {"R1: 10 kohm", "R1: 10 kilohm", "dir/s.yaml:5:9: unknown unit \"kilohm\"\n"},
      {"R1: 10 kohm", "R1: 10,000", "dir/s.yaml:5:9: \"10,000\" is not a number, alone or with a unit\n"},
      {"value: 10 nF", "value: ten", "dir/s.yaml:6:17: \"ten\" is not a number, alone or with a unit\n"},
      {"value: 10 nF", "value: 200 nF",
       "dir/s.yaml:6:17: \"200 nF\" is above the maximum of \"Filter.C1\", 100 nF\n"},
      {"minimum: 1 nF", "minimum: 1 kohm",
       "dir/s.yaml:6:33: \"kohm\" cannot be converted to \"nF\", in which \"Filter.C1\" is declared\n"},
      {"minimum: 1 nF", "minimum: 1 C",
       "dir/s.yaml:6:33: \"C\" cannot be converted to \"nF\", in which \"Filter.C1\" is declared (\"C\" is "
       "the "
       "coulomb; degrees Celsius are \"degC\")\n"},
      {"minimum: 1 nF, maximum: 100 nF", "minimum: 20 nF, maximum: 5 nF",
       "dir/s.yaml:6:17: \"10 nF\" is below the minimum of \"Filter.C1\", 20 nF\n"
       "dir/s.yaml:6:49: the maximum is below the minimum\n"},
      {"value: 2, ", "value: 2.5, ",
       "dir/s.yaml:7:36: a value of \"Filter.Stages\" must be a whole number, not \"2.5\"\n"},
      {"value: true", "value: yes",
       "dir/s.yaml:8:36: a value of \"Filter.Active\" must be true or false, not \"yes\"\n"},
      {"value: bridge", "value: brigde",
       "dir/s.yaml:9:64: a value of \"Filter.Topology\" must be ladder or bridge, not \"brigde\", did "
       "you mean "
       "\"bridge\"?\n"},
      {"kind: integer", "kind: int",
       "dir/s.yaml:7:20: kind must be real, integer, boolean, choice or text, not \"int\", did you mean "
       "\"integer\"?\n"},
      {"kind: text, value: \"100% {{new}}\"", "kind: text",
       "dir/s.yaml:10:11: the attribute \"Filter.Note\" needs a value\n"},
      {"\"100% {{new}}\"", "{{new}}", "dir/s.yaml:10:31: a text with % or {{ must be put in quotes\n"},
      {"\"100% {{new}}\"", "%new", "dir/s.yaml:10:31: a text with % or {{ must be put in quotes\n"},
      {"  Filter:\n", "  Fil%ter:\n",
       "dir/s.yaml:4:3: an entity's name must not hold \"%\", which ends a name in costs and "
       "placeholders\n"},
      {"Note: {kind", "No.te: {kind",
       "dir/s.yaml:10:5: an attribute's name must not hold \".\", which ends a name in costs and "
       "placeholders\n"},
      {"Note: {kind", "in as out: {kind",
       "dir/s.yaml:10:5: an attribute's name must not hold \" as \", which has a meaning of its own in "
       "placeholders\n"},
      {"CutOff: {result: true, unit: kHz}", "CutOff: {result: true, unit: kHz, value: 3}",
       "dir/s.yaml:11:46: a result has no value before it was computed\n"},
      {"    Filter.Peak: {file: result.txt, pattern: \"[0-9]+\", group: 0}\n", "",
       "dir/s.yaml:12:5: nothing under \"results\" of the solver says where the result \"Filter.Peak\" "
       "is found\n"},
      {"to: filter.cir}", "to: ../filter.cir}",
       "dir/s.yaml:16:7: \"../filter.cir\": a file of a run is named relative to its folder and stays "
       "inside it\n"
       "dir/s.yaml:16:7: \"../filter.cir\": a file of a run lies in the run's folder itself\n"},
      {"[models.lib]", "[/etc/passwd]",
       "dir/s.yaml:17:12: \"/etc/passwd\": a file of the study is named relative to its folder and stays "
       "inside it\n"
       "dir/s.yaml:17:12: \"/etc/passwd\": a file of a run is named relative to its folder and stays "
       "inside it\n"
       "dir/s.yaml:17:12: \"/etc/passwd\": a file of a run lies in the run's folder itself\n"},
      {"[models.lib]", "[filter.cir]", "dir/s.yaml:17:12: two files go to \"filter.cir\"\n"},
      {"[models.lib]", "[stdout.log]",
       "dir/s.yaml:17:12: \"stdout.log\" is what the solver's own output is kept in\n"},
      {"[ngspice, -b, filter.cir]", "ngspice -b filter.cir",
       "dir/s.yaml:18:12: the command is a list of arguments, [program, argument, ...]; no shell takes "
       "it apart\n"},
      {"[ngspice, -b, filter.cir]", "[]", "dir/s.yaml:18:12: the command must begin with a program\n"},
      {"[ngspice, -b, filter.cir]", "[ngspice, \"-r={{Filter.R1}}\"]",
       "dir/s.yaml:18:26: a placeholder fills a whole argument: let it stand alone, or fill it into a "
       "template\n"},
      {"timeout: 500 ms", "timeout: soon",
       "dir/s.yaml:20:12: timeout must be a time such as 30 s, 500 ms, 10 min or 2 h, not \"soon\"\n"},
      {"timeout: 500 ms", "timeout: 0",
       "dir/s.yaml:20:12: timeout must be a time such as 30 s, 500 ms, 10 min or 2 h, not \"0\"\n"},
      {"exit-codes: [0, 3]", "exit-codes: [0, 256]",
       "dir/s.yaml:21:19: an exit code lies between 0 and 255\n"},
      {"    Filter.CutOff: {pattern: \"^fc = (\\\\S+)\", unit: Hz}", "    Filter.CutOf: {pattern: \"(x)\"}",
       "dir/s.yaml:11:5: nothing under \"results\" of the solver says where the result \"Filter.CutOff\" "
       "is found\n"
       "dir/s.yaml:23:5: the model has no attribute \"Filter.CutOf\", did you mean \"Filter.CutOff\"?\n"},
      {"unit: Hz}", "unit: nF}",
       "dir/s.yaml:23:52: \"nF\" cannot be converted to \"kHz\", in which \"Filter.CutOff\" is "
       "declared\n"},
      {"group: 0}", "group: 1}",
       "dir/s.yaml:12:5: nothing under \"results\" of the solver says where the result \"Filter.Peak\" "
       "is found\n"
       "dir/s.yaml:24:46: \"[0-9]+\" has no group 1\n"},
      {"target: minimise", "target: minimize",
       "dir/s.yaml:26:11: target must be minimise, maximise or none, not \"minimize\", did you mean "
       "\"minimise\"?\n"},
      {"attribute: Filter.R1", "attribute: Filter.CutOff",
       "dir/s.yaml:29:28: a result cannot be an input\n"
       "dir/s.yaml:29:52: \"kohm\" cannot be converted to \"kHz\", in which \"Filter.CutOff\" is "
       "declared\n"
       "dir/s.yaml:29:69: \"ohm\" cannot be converted to \"kHz\", in which \"Filter.CutOff\" is "
       "declared\n"
       "dir/s.yaml:29:86: \"ohm\" cannot be converted to \"kHz\", in which \"Filter.CutOff\" is "
       "declared\n"
       "dir/s.yaml:34:33: \"ohm\" cannot be converted to \"kHz\", in which \"Filter.CutOff\" is "
       "declared\n"},
      {"- Filter.C1\n", "- Filter.R1\n",
       "dir/s.yaml:30:7: \"Filter.R1\" is already in another group, which would give it another value\n"
       "dir/s.yaml:34:43: there is no input \"Filter.C1\", did you mean \"Filter.R1\"?\n"},
      {"step: 500 ohm", "step: 0 ohm", "dir/s.yaml:29:82: a step must be greater than 0\n"},
      {"[Filter.CutOff, {", "[Filter.Note, {", "dir/s.yaml:32:13: an output must be a result\n"},
      {"{name: Peak, attr", "{name: R, attr",
       "dir/s.yaml:32:28: the name \"R\" is already taken by the group in line 29\n"},
      {"attributes: [Filter.Peak]", "attributes: [Filter.Peak, Filter.Stages]",
       "dir/s.yaml:32:67: an output must be a result\n"
       "dir/s.yaml:32:67: \"Filter.Stages\" has another kind, unit or options than \"Filter.Peak\": they "
       "cannot share "
       "one value\n"},
      {"R: 4700 ohm", "R: 30 kohm",
       "dir/s.yaml:34:33: \"30 kohm\" is above the maximum of the input \"R\", 22 kohm\n"},
      {"R: 4700 ohm", "Q: 4700 ohm", "dir/s.yaml:34:30: there is no input \"Q\", did you mean \"R\"?\n"},
      {"C1: 22}", "C1: 220}", "dir/s.yaml:34:54: \"220\" is above the maximum of \"Filter.C1\", 100 nF\n"},
      {"- {values: {Filter.Topology: ladder}}", "- {name: small, values: {}}",
       "dir/s.yaml:35:14: the name \"small\" is already taken by the variant in line 34\n"},
      {"- {values: {Filter.Topology: ladder}}", "- {name: b}",
       "dir/s.yaml:35:7: a variant needs values; those of inputs it does not name are the baseline's\n"}};
  for (const auto &row : rows) {
    EXPECT_EQ(problemsOf(replaced(row.from, row.to)), row.problem) << row.to;
  }
}

TEST(StudyFileTest, Groups_OfSeveralAttributes_NeedOneBaselineValue) {
  const std::string text = R"yaml(version: 1
model:
  A:
    x: 1 ohm
    y: 2 ohm
    z: {value: 1 ohm, maximum: 5 ohm}
    r: {result: true}
solver: {command: [a], results: {A.r: {pattern: "(x)"}}}
study:
  inputs: [{name: g, attributes: [A.x, OTHER]}]
  outputs: [A.r]
  variants: [{values: {g: 6 ohm}}]
)yaml";
  const auto with = [&text](const std::string &other) {
    std::string changed = text;
    return changed.replace(changed.find("OTHER"), 5, other);
  };
  EXPECT_EQ(problemsOf(with("A.y")), "dir/s.yaml:10:40: \"A.y\" has another value than \"A.x\": attributes "
                                     "of one input share one value, the "
                                     "baseline's too\n");
  EXPECT_EQ(problemsOf(with("A.z")), "dir/s.yaml:12:27: \"6 ohm\" is above the maximum of \"A.z\", 5 ohm\n");
}

TEST(StudyFileTest, Grid_Mistakes_AreReported) {
  const struct {
    const char *variants;
    const char *problem;
  } rows[] = {
      {"    grid: {Q: [1]}\n", "dir/s.yaml:34:12: there is no input \"Q\", did you mean \"R\"?\n"},
      {"    grid: {R: [1], Filter.R1: [2]}\n",
       "dir/s.yaml:34:20: the input \"Filter.R1\" is in the grid twice\n"},
      {"    grid: {R: 1 kohm .. 3 kohm}\n",
       "dir/s.yaml:34:15: an axis of a grid is a list of values, or a map of "
       "minimum, maximum and step\n"},
      {"    grid: {R: []}\n", "dir/s.yaml:34:15: an axis of a grid needs at least one value\n"},
      {"    grid: {Filter.C1: }\n",
       "dir/s.yaml:34:23: the input \"Filter.C1\" needs minimum, maximum and step to be an axis of a grid\n"},
      {"    grid: {R: {maximum: 40}}\n", ""},
      {"    grid: {Filter.C1: {minimum: 1, maximum: 2, step: 1e-9}}\n",
       "dir/s.yaml:34:23: an axis of more than 100000 values is not allowed\n"},
      {"    grid: {R: {step: 0.05}, Filter.C1: {minimum: 1, maximum: 100, step: 0.1}}\n",
       "dir/s.yaml:34:11: the grid has 417211 rows, more than 100000\n"},
      {"    grid: {Filter.C1: {minimum: 90, maximum: 110, step: 10}}\n",
       "dir/s.yaml:34:23: \"110 nF\" is above the maximum of \"Filter.C1\", 100 nF\n"},
      {"    gird: {R: [1]}\n", "dir/s.yaml:34:5: variants has no key \"gird\", did you mean \"grid\"?\n"}};
  for (const auto &row : rows) {
    EXPECT_EQ(problemsOf(withVariants(row.variants)), row.problem) << row.variants;
  }
}

TEST(StudyFileTest, Document_ThatIsNone_IsReported) {
  EXPECT_EQ(problemsOf(""), "dir/s.yaml:1:1: the file is empty\n");
  EXPECT_EQ(problemsOf("[1, 2]"), "dir/s.yaml:1:1: the study file must be a map, not a list\n");
  EXPECT_EQ(problemsOf("version: 1\n---\nversion: 1\n"),
            "dir/s.yaml:1:1: the file holds more than one document\n");
  EXPECT_EQ(problemsOf("a: b: c\n"), "dir/s.yaml:1:5: illegal map value\n");
  EXPECT_EQ(problemsOf("a:\n  b: 1\n \tc: 2\n"),
            "dir/s.yaml:3:2: the line is indented by a tab; YAML wants blanks there\n");
  EXPECT_EQ(problemsOf("version: 1\ntitle: \"\xff\"\n"), "dir/s.yaml:2:9: the file is not UTF-8 text\n");
  EXPECT_EQ(problemsOf(std::string("version: 1\n\0", 12)), "dir/s.yaml:2:1: the file is not UTF-8 text\n");
}

TEST(StudyFileTest, Read_MissingFile_SaysSo) {
  std::vector<FileProblem> problems;
  const FewUnits units;
  EXPECT_FALSE(StudyFile::read("no-such-folder/s.yaml", units, problems).has_value());
  ASSERT_EQ(problems.size(), 1U);
  EXPECT_EQ(problems[0].toText(),
            "no-such-folder/s.yaml:1:1: no-such-folder/s.yaml: No such file or directory");
}

} // namespace
} // namespace Workbench
