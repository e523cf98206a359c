#include "Workbench/tests/StudyText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

const char *const kText = R"json({
  "version": 1,
  "model": {
    "F": {"R": "10 kohm", "x": 2.50, "n": {"kind": "integer", "value": 2147483647},
      "on": {"kind": "boolean", "value": true}, "note": {"kind": "text", "value": "100% {{new}}\n"},
      "y": {"result": true}}
  },
  "solver": {"command": ["a", "{{F.R in ohm}}", "010"], "results": {"F.y": {"column": "3", "reduce": "max"}}},
  "study": {"inputs": ["F.R", "F.x"], "outputs": ["F.y"], "cost": "%F.y% + 1.0",
    "variants": {"grid": {"F.R": [1, 2e0, "3000 ohm"], "F.x": null}}}
}
)json";

TEST(StudyJsonTest, StudyFile_IsReadLikeYaml) {
  const StudyFile file = studyIn(with(kText, ", \"F.x\": null", ""), "dir/s.json");
  ASSERT_EQ(file.attributes.size(), 6U);
  EXPECT_EQ(file.attributes[0].unit, "kohm");
  EXPECT_EQ(file.attributes[1].value.number, 2.5);
  EXPECT_EQ(file.attributes[1].value.text, "2.50");
  EXPECT_EQ(file.attributes[2].value.number, 2147483647.0);
  EXPECT_EQ(file.attributes[3].value.number, 1.0);
  EXPECT_EQ(file.attributes[4].value.text, "100% {{new}}\n");
  EXPECT_TRUE(file.attributes[5].isResult);
  EXPECT_EQ(file.attributes[5].place.line, 6U);
  EXPECT_EQ(file.attributes[5].place.column, 7U);
  EXPECT_TRUE(file.solver.stages[0].command[1].isPlaceholder);
  EXPECT_EQ(file.solver.stages[0].command[2].text, "010");
  EXPECT_EQ(file.solver.extractors[0].extractor->rule().column.title, "3"); // a text is a title
  ASSERT_EQ(file.rows.size(), 3U);
  EXPECT_EQ(file.rows[2].values[0].number, 3.0);
  EXPECT_EQ(
      studyIn(with(with(kText, ", \"F.x\": null", ""), "\"column\": \"3\"", "\"column\": 3"), "dir/s.json")
          .solver.extractors[0]
          .extractor->rule()
          .column.number,
      3U);
}

TEST(StudyJsonTest, Mistakes_AreReportedWithTheirPlace) {
  const struct {
    const char *from;
    const char *to;
    const char *problem;
  } rows[] = {
      {"\"version\": 1,", "\"version\": 1", "dir/s.json:3:3: \",\" or \"}\" is expected here\n"},
      {"\"version\": 1,", "\"version\": 1, \"version\": 1,",
       "dir/s.json:2:17: the study file: \"version\" is already in line 2\n"},
      {"\"x\": 2.50", "\"x\": 02.50", "dir/s.json:4:33: a number does not begin with 0\n"},
      {"\"x\": 2.50", "\"x\": [2.50]", "dir/s.json:4:32: the attribute \"F.x\" must be a map, not a list\n"},
      {"\"x\": 2.50", "\"x\\u0000\": 2.50",
       "dir/s.json:4:27: the entity \"F\": a key must not hold a NUL character\n"},
      {"\"010\"", "\"0\\u00001\"", "dir/s.json:8:49: an argument must not hold a NUL character\n"},
      {"\"%F.y% + 1.0\"", "\"%F.z% + 1.0\"",
       "dir/s.json:9:68: the cost: Undefined variable : F.z, did you mean \"F.R\"?\n"},
      {"\"F.x\": null", "\"F.x\": null",
       "dir/s.json:10:63: the input \"F.x\" needs minimum, maximum and step to be an axis of a grid\n"}};
  for (const auto &row : rows) {
    const bool isLast = std::string(row.from) == "\"F.x\": null";
    std::string text = isLast ? std::string(kText) : with(kText, ", \"F.x\": null", "");
    EXPECT_EQ(problemsIn(with(text, row.from, row.to), "dir/s.json"), row.problem) << row.to;
  }
}

TEST(StudyJsonTest, Yaml_UnderAJsonName_IsRefused) {
  EXPECT_EQ(problemsIn("version: 1\n", "dir/s.json"), "dir/s.json:1:1: a value is expected here\n");
  EXPECT_EQ(problemsIn("", "dir/s.json"), "dir/s.json:1:1: the text ends too early\n");
}

// Anchors are YAML's alone.
TEST(StudyYamlTest, Aliases_StandForWhatTheyName) {
  const std::string text = "version: 1\nmodel: {A: {x: &a 5 ohm, y: *a, r: {result: true}}}\n"
                           "formulas: {A.r: \"%A.x%\"}\nstudy: {inputs: [A.x, A.y], outputs: [A.r]}\n";
  const StudyFile file = studyIn(text);
  EXPECT_EQ(file.attributes[1].value.number, 5.0);
  EXPECT_EQ(problemsIn(with(text, "x: &a 5 ohm", "x: &a [*a]")),
            "dir/s.yaml:2:20: an alias stands inside of what it stands for\n");
  std::string bomb = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
  for (int level = 1; level < 12; ++level) {
    const std::string before = "*a" + std::to_string(level - 1);
    bomb += "a" + std::to_string(level) + ": &a" + std::to_string(level) + " [";
    for (int count = 0; count < 10; ++count) {
      bomb += before + (count < 9 ? ", " : "]\n");
    }
  }
  EXPECT_EQ(problemsIn(bomb), "dir/s.yaml:6:10: the aliases stand for more than 200000 values\n");
}

TEST(StudyYamlTest, UnquotedMarks_ArePointedAt) {
  const std::string text =
      "version: 1\nmodel: {A: {x: 5 ohm, r: {result: true}}}\nformulas: {A.r: \"%A.x%\"}\n"
      "study:\n  inputs: [A.x]\n  outputs: [A.r]\n  cost: \"%A.r%\"\n";
  const std::string quoted = "a text with % or {{ must be put in quotes\n";
  EXPECT_EQ(problemsIn(with(text, "cost: \"%A.r%\"", "cost: %A.r%")), "dir/s.yaml:7:9: " + quoted);
  EXPECT_EQ(problemsIn(with(text, "cost: \"%A.r%\"", "cost: 2.0 * %A.r%")), "dir/s.yaml:7:15: " + quoted);
  EXPECT_EQ(problemsIn(with(text, "\"%A.x%\"}", "1.0 * %A.x%}")),
            "dir/s.yaml:2:23: no formula computes the result \"A.r\"\ndir/s.yaml:3:23: " + quoted);
  EXPECT_EQ(problemsIn(with(text, "version: 1\n", "version: 1\ntitle: a {{b}} c\n")),
            "dir/s.yaml:2:10: " + quoted);
  EXPECT_EQ(problemsIn(with(text, "version: 1\n", "version: 1\ntitle: {{b}}\n")),
            "dir/s.yaml:2:8: " + quoted);
  EXPECT_EQ(studyIn(with(text, "version: 1\n", "version: 1\ntitle: 80 % of it\n")).title, "80 % of it");
}

} // namespace
} // namespace Workbench
