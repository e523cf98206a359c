#include "Workbench/StudyExpression.h"
#include "Workbench/tests/StudyText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

const char *const kText = R"yaml(version: 1
model:
  Box:
    w: {value: 2, minimum: 0}
    h: 3 ohm
    n: {kind: integer, value: 4}
    note: {kind: text, value: a}
    area: {result: true}
    volume: {result: true}
formulas:
  Box.volume: {expression: "%Box.area% * %Box.n%", minimum: 0, maximum: 1000}
  Box.area: "%Box.w% * %Box.h%"
study:
  cost: "%Box.volume% + 1.0"
  rule: "%Box.w% <= 2.0 * %Box.h%"
  stop-after: 3
  inputs: [Box.w, Box.h]
  outputs: [Box.volume]
)yaml";

std::string problemsWith(const std::string &from, const std::string &to) {
  return problemsIn(with(kText, from, to));
}

TEST(StudyFileFormulasTest, Formulas_AreReadInAnOrderThatCanBeComputed) {
  const StudyFile file = studyIn(kText);
  ASSERT_EQ(file.formulas.size(), 2U);
  EXPECT_EQ(file.formulas[0].attribute, "Box.area");
  EXPECT_EQ(file.formulas[0].text, "%Box.w% * %Box.h%");
  EXPECT_EQ(file.formulas[0].variables, (std::vector<std::string>{"Box.w", "Box.h"}));
  EXPECT_EQ(file.formulas[1].attribute, "Box.volume");
  EXPECT_EQ(file.formulas[1].minimum, std::optional<double>(0.0));
  EXPECT_EQ(file.formulas[1].maximum, std::optional<double>(1000.0));
  EXPECT_TRUE(file.solver.stages.empty());
  EXPECT_EQ(file.rule.text, "%Box.w% <= 2.0 * %Box.h%");
  EXPECT_EQ(file.rule.place.line, 15U);
  EXPECT_EQ(file.stopAfter, 3U);
  EXPECT_TRUE(file.warnings.empty());
}

TEST(StudyFileFormulasTest, Expressions_AreComputedInTheirOrder) {
  const StudyFile file = studyIn(kText);
  const StudyExpressions expressions(file);
  std::map<std::string, double> values{{"Box.w", 2.5}, {"Box.h", 3.0}, {"Box.n", 4.0}};
  const AttributeValues lookUp = [&values](const std::string &name) {
    const auto known = values.find(name);
    return known == values.end() ? std::nullopt : std::optional<double>(known->second);
  };
  std::vector<double> results;
  EXPECT_EQ(expressions.compute(lookUp, results), "");
  EXPECT_EQ(results, (std::vector<double>{7.5, 30.0}));
  EXPECT_EQ(expressions.infeasibility(lookUp), "");
  values["Box.w"] = 7.0;
  EXPECT_EQ(expressions.infeasibility(lookUp), "rule: %Box.w% <= 2.0 * %Box.h%");
  values["Box.w"] = 100.0;
  EXPECT_EQ(expressions.compute(lookUp, results),
            "extraction: Box.volume: 1200 is not plausible: above 1000");
  values["Box.w"] = -1.0;
  EXPECT_EQ(expressions.compute(lookUp, results), "extraction: Box.volume: -12 is not plausible: below 0");
  values["Box.w"] = 1e308;
  EXPECT_EQ(expressions.compute(lookUp, results), "not a number: Box.area: the formula gives infinity");
  values.erase("Box.w");
  EXPECT_EQ(expressions.compute(lookUp, results), "formula: Box.area: Box.w has no value");
  EXPECT_EQ(expressions.infeasibility(lookUp), "rule: Box.w has no value");
}

TEST(StudyFileFormulasTest, Results_ThatAreNoNumbers_AreFailures) {
  const auto computed = [](const std::string &formula, const std::string &kind) {
    const StudyFile file =
        studyIn(with(with(kText, "\"%Box.w% * %Box.h%\"", formula), "area: {", "area: {" + kind));
    std::vector<double> results;
    return StudyExpressions(file).compute([](const std::string &) { return std::optional<double>(0.0); },
                                          results);
  };
  EXPECT_EQ(computed("sqrt(0.0 - 1.0)", ""), "not a number: Box.area: the formula gives no number");
  EXPECT_EQ(computed("'%Box.w% + 1.5'", "kind: integer, "),
            "not a number: Box.area: the formula gives 1.5, no whole number");
  EXPECT_EQ(computed("'(int)%Box.w% / (int)%Box.h% + 0.0'", ""),
            "formula: Box.area: Integer division by zero");
}

TEST(StudyFileFormulasTest, Mistakes_AreReportedWithTheirPlaceInTheText) {
  const struct {
    const char *from;
    const char *to;
    const char *problem;
  } rows[] = {
      {"\"%Box.w% * %Box.h%\"", "\"%Box.w% * %Box.hh%\"",
       "dir/s.yaml:12:24: the formula of \"Box.area\": Undefined variable : Box.hh, did you mean \"Box.h\"?\n"
       "dir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"\"%Box.w% * %Box.h%\"", "\"%Box.w% * %Box.note%\"",
       "dir/s.yaml:12:24: the formula of \"Box.area\": \"Box.note\" is a text and cannot be computed with\n"
       "dir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"\"%Box.w% * %Box.h%\"", "\"%Box.w% * ( 2.0\"",
       "dir/s.yaml:12:29: the formula of \"Box.area\": Syntax error at character 16 of its "
       "text\ndir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"\"%Box.w% * %Box.h%\"", "\"Box.w * 2.0\"",
       "dir/s.yaml:12:14: the formula of \"Box.area\": Syntax error at character 1 of its text; names stand "
       "between %, as in \"%Box.w%\"\ndir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"\"%Box.w% * %Box.h%\"", "\"%Box.volume% * %Box.h%\"",
       "dir/s.yaml:11:28: the formulas lead in a circle: \"Box.volume\" uses \"Box.area\", \"Box.area\" uses "
       "\"Box.volume\"\n"},
      {"\"%Box.w% * %Box.h%\"", "\"%Box.area% * %Box.h%\"",
       "dir/s.yaml:11:28: the formulas lead in a circle: \"Box.area\" uses \"Box.area\"\n"},
      {"\"%Box.w% * %Box.h%\"", "%Box.w% * %Box.h%",
       "dir/s.yaml:12:13: a text with % or {{ must be put in quotes\n"},
      {"\"%Box.w% * %Box.h%\"", "2.0 * %Box.h% * %Box.w%",
       "dir/s.yaml:12:19: a text with % or {{ must be put in quotes\n"
       "dir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"  Box.area: \"%Box.w% * %Box.h%\"\n", "",
       "dir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"Box.area: \"%Box.w%", "Box.w: \"1.0",
       "dir/s.yaml:12:3: \"Box.w\" is not declared as a result: it needs \"result: true\"\n"
       "dir/s.yaml:8:5: no formula computes the result \"Box.area\"\n"},
      {"{expression: ", "{x: ",
       "dir/s.yaml:11:15: the formula of \"Box.volume\" needs an expression\n"
       "dir/s.yaml:11:16: the formula of \"Box.volume\" has no key \"x\"\n"
       "dir/s.yaml:9:5: no formula computes the result \"Box.volume\"\n"},
      {"\"%Box.volume% + 1.0\"", "\"%Box.volume% + %Box.n%\"",
       "dir/s.yaml:14:25: the cost: \"Box.n\" cannot be used: a cost knows the first attribute of each input "
       "and "
       "output\n"},
      {"\"%Box.volume% + 1.0\"", "\"%Box.volum% + 1.0\"",
       "dir/s.yaml:14:10: the cost: Undefined variable : Box.volum, did you mean \"Box.volume\"?\n"},
      {"\"%Box.w% <= 2.0 * %Box.h%\"", "\"%Box.area% < 1.0\"",
       "dir/s.yaml:15:10: the rule: \"Box.area\" cannot be used: a rule knows the inputs only, not results "
       "and "
       "texts\n"},
      {"\"%Box.w% <= 2.0 * %Box.h%\"", "\"%Box.w% > 2.0\"",
       "dir/s.yaml:15:9: the baseline does not meet the rule\n"},
      {"\"%Box.w% <= 2.0 * %Box.h%\"", "\"\"", "dir/s.yaml:15:9: rule must not be empty\n"},
      {"stop-after: 3", "stop-after: -1",
       "dir/s.yaml:16:15: stop-after counts failures from 1; 0 is for never\n"},
      {"formulas:\n", "formulas: {}\nother:\n", "dir/s.yaml:11:1: the study file has no key \"other\"\n"}};
  for (const auto &row : rows) {
    std::string found = problemsWith(row.from, row.to);
    // The order is that of the file; here it is enough that nothing is missing and nothing too much.
    std::size_t length = 0;
    std::string expected = row.problem;
    for (std::size_t begin = 0; begin < expected.size(); begin = expected.find('\n', begin) + 1) {
      const std::string line = expected.substr(begin, expected.find('\n', begin) + 1 - begin);
      EXPECT_NE(found.find(line), std::string::npos) << row.to << "\n" << line << "found: " << found;
      length += line.size();
    }
    EXPECT_EQ(found.size(), length) << row.to << "\n" << found;
  }
}

TEST(StudyFileFormulasTest, Warnings_HaveTheirPlaceAndTheirFix) {
  EXPECT_EQ(
      warningsIn(with(kText, "+ 1.0", "+ 1")),
      "dir/s.yaml:14:10: the cost: \"%Box.volume%\" is a double and becomes an int, the type of the right "
      "operand \"1\". Write \"1.0\" instead of \"1\"\n");
  EXPECT_EQ(warningsIn(with(kText, "2.0 * %Box.h%\"", "2.0 * %Box.h% + 1 / 2 * 0.5\"")).substr(0, 30),
            "dir/s.yaml:15:39: the rule: \"/");
  EXPECT_EQ(warningsIn(with(kText, "\"%Box.w% <= 2.0 * %Box.h%\"", "\"%Box.w%\"")),
            "dir/s.yaml:15:9: the rule: it is a number, which counts as met unless it is 0; compare it with "
            "something\n");
  EXPECT_EQ(warningsIn(with(kText, "\"%Box.volume% + 1.0\"", "\"%Box.volume% < 1.0\"")),
            "dir/s.yaml:14:9: the cost: it is true or false and not a number; every row costs 1 or 0\n");
  EXPECT_EQ(warningsIn(with(kText, "\"%Box.w% * %Box.h%\"", "\"%Box.w% < %Box.h%\"")),
            "dir/s.yaml:12:13: the formula of \"Box.area\": it is true or false and not a number; the result "
            "is 1 or "
            "0\n");
}

TEST(StudyFileFormulasTest, Places_AreFoundInBlocksAndBehindEscapes) {
  EXPECT_EQ(problemsWith("cost: \"%Box.volume% + 1.0\"", "cost: |\n    %Box.volume%\n      + %x%"),
            "dir/s.yaml:16:9: the cost: Undefined variable : x\n");
  EXPECT_EQ(problemsWith("cost: \"%Box.volume% + 1.0\"", "cost: >-\n    1.0 +\n    %x%"),
            "dir/s.yaml:16:5: the cost: Undefined variable : x\n");
  EXPECT_EQ(problemsWith("cost: \"%Box.volume% + 1.0\"", "cost: \"1.0\\t+\\n %x%\""),
            "dir/s.yaml:14:19: the cost: Undefined variable : x\n");
  EXPECT_EQ(problemsWith("cost: \"%Box.volume% + 1.0\"", "cost: '1.0 + %it''s%'"),
            "dir/s.yaml:14:16: the cost: Undefined variable : it's\n");
}

} // namespace
} // namespace Workbench
