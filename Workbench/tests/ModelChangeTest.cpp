#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExitCode.h"
#include "Workbench/LookCommands.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/tests/BoxStudy.h"
#include "Workbench/tests/ConsoleText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

using Names = std::vector<std::string>;

// A project whose rows are solved, and whose study file declares another model then.
class ModelChangeTest : public ::testing::Test {
protected:
  void SetUp() override {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    solve(box);
  }

  // The matrix as somebody sees it who has not got the study file.
  std::string csv() {
    ShowOptions options;
    options.project = m_box.projectFile();
    options.format = OutputFormat::Csv;
    EXPECT_EQ(showCommand(options, m_text.console), ExitCode::kDone) << m_text.takeMessages();
    const std::string text = m_text.takeOut();
    return text.substr(text.find('\n', text.find('\n') + 1) + 1);
  }

  static std::string value(const OpenBox &box, const std::string &name) {
    return box.session->model().find(name)->value->getValueAsString();
  }

  const std::string m_asSolved = "0,Base,ok,,1,10,10001,10,10011\n"
                                 "1,two,ok,,2,10,10002,20,10022\n"
                                 "2,Variant 2,ok,,3,10,10003,30,10033\n";
  BoxStudy m_box;
  ConsoleText m_text;
};

TEST_F(ModelChangeTest, NewAttributeThatNothingUses_LeavesEveryRowSolved) {
  m_box.edit("    y: 10 m\n", "    z: {value: 5 kg, minimum: 1 kg}\n    y: 10 m\n");
  {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(box.session->changes(), Names{"the attribute \"Box.z\" was added"});
    EXPECT_EQ(value(box, "Box.z"), "5 kg");
    const SolveReport report = solve(box);
    EXPECT_EQ(report.alreadySolved, 3U);
    EXPECT_EQ(report.solved + report.extracted, 0U);
  }
  EXPECT_EQ(csv(), m_asSolved);
  OpenBox again = open(m_box);
  ASSERT_TRUE(again.session) << again.problem;
  EXPECT_EQ(again.session->changes(), Names{});
  EXPECT_EQ(value(again, "Box.z"), "5 kg");
}

TEST_F(ModelChangeTest, NewAttributeInATemplate_MakesEveryRowStale) {
  m_box.edit("    y: 10 m\n", "    y: 10 m\n    z: 5\n");
  m_box.write("in.txt.template", "{{Box.x}} {{Box.y in mm}}\n{{Box.z}}\n");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(solve(box).solved, 3U);
}

TEST_F(ModelChangeTest, NewEntity_CanBeAnInputAtOnce) {
  m_box.edit("solver:\n", "  Lid:\n    size: {value: 2 m, maximum: 9 m}\nsolver:\n");
  m_box.edit("step: 1}, Box.y]", "step: 1}, Box.y, Lid.size]");
  m_box.edit("    - {values: {width: 3}}\n",
             "    - {values: {width: 3}}\n    - {name: lid, values: {Lid.size: 3 m}}\n");
  {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(box.session->changes(),
              (Names{"the entity \"Lid\" was added", "the input \"Lid.size\" was added", "1 row was added"}));
    const SolveReport report = solve(box);
    EXPECT_EQ(report.alreadySolved, 3U);
    EXPECT_EQ(report.solved, 1U);
  }
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,2,10001,10,10011\n1,two,ok,,2,10,2,10002,20,10022\n"
                   "2,Variant 2,ok,,3,10,2,10003,30,10033\n3,lid,ok,,1,10,3,10001,10,10011\n");
}

TEST_F(ModelChangeTest, NewResult_IsReadFromTheFilesThatWereKept) {
  m_box.edit("    sum: {result: true}\n", "    sum: {result: true}\n    area: {result: true, unit: m}\n");
  m_box.edit("    Box.sum: {file: result.txt",
             "    Box.area: {pattern: '^product = (.*)$', unit: mm}\n    Box.sum: {file: result.txt");
  m_box.edit("Box.product]", "Box.product, Box.area]");
  m_box.edit("%Box.sum% + %Box.product%", "%Box.sum% + %Box.area%");
  {
    const OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
  }
  // Nobody has looked for it yet, and its absence is not priced as 0.
  EXPECT_EQ(csv(),
            "0,Base,ok,,1,10,10001,10,,\n1,two,ok,,2,10,10002,20,,\n2,Variant 2,ok,,3,10,10003,30,,\n");
  {
    OpenBox box = open(m_box);
    const SolveReport report = solve(box);
    EXPECT_EQ(report.extracted, 3U);
  }
  EXPECT_EQ(csv(), "0,Base,ok,,1,10,10001,10,10,10011\n1,two,ok,,2,10,10002,20,20,10022\n"
                   "2,Variant 2,ok,,3,10,10003,30,30,10033\n");
}

TEST_F(ModelChangeTest, OtherLimits_AreKept_AndRowsOutsideThemAreNamed) {
  m_box.edit("minimum: 0, maximum: 100}", "maximum: 2}");
  m_box.edit("    - {values: {width: 3}}\n", "");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(),
            (Names{"the limits of Box.x are now at most 2, they were 0 to 100",
                   "the row \"Variant 2\" is outside the limits of Box.x and keeps its results"}));
  EXPECT_EQ(solve(box).alreadySolved, 3U);
  box = OpenBox();
  EXPECT_EQ(csv(), m_asSolved);
  OpenFailure failure;
  const auto session = ProjectSession::open(m_box.projectFile(), EmbeddedHost::OpenMode::ReadOnly, failure);
  ASSERT_TRUE(session) << failure.problem;
  EXPECT_FALSE(session->model().find("Box.x")->minimum.has_value());
  EXPECT_EQ(session->model().find("Box.x")->maximum.value_or(0.0), 2.0);
}

TEST_F(ModelChangeTest, LimitsThatTheOldValueIsOutside_GoWithANewValue) {
  m_box.edit("{value: 1, minimum: 0, maximum: 100}", "{value: 4, minimum: 2, maximum: 100}");
  m_box.edit("minimum: 0, maximum: 50", "minimum: 2, maximum: 50");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(), (Names{"the limits of Box.x are now 2 to 100, they were 0 to 100",
                                           "Box.x is now 4 where nothing else was set; it was 1",
                                           "the input \"width\" now has minimum 2, maximum 50, step 1; it "
                                           "had minimum 0, maximum 50, step 1"}));
  EXPECT_EQ(value(box, "Box.x"), "4");
  EXPECT_EQ(solve(box).solved, 1U); // the baseline
  box = OpenBox();
  EXPECT_EQ(csv(), "0,Base,ok,,4,10,10004,40,10044\n1,two,ok,,2,10,10002,20,10022\n"
                   "2,Variant 2,ok,,3,10,10003,30,10033\n");
}

TEST_F(ModelChangeTest, UnitOfTheSameQuantity_ConvertsEveryValueAndIsPricedInIt) {
  m_box.edit("    y: 10 m\n", "    y: 10000 mm\n");
  m_box.edit("product: {result: true, unit: m}", "product: {result: true, unit: mm}");
  {
    OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(box.session->changes(),
              (Names{"the unit of Box.y is now \"mm\", it was \"m\"; its values were converted",
                     "the unit of Box.product is now \"mm\", it was \"m\"; its values were converted"}));
    EXPECT_EQ(solve(box).alreadySolved, 3U); // the solver gets and gives what it did
  }
  EXPECT_EQ(csv(), "0,Base,ok,,1,10000,10001,10000,20001\n1,two,ok,,2,10000,10002,20000,30002\n"
                   "2,Variant 2,ok,,3,10000,10003,30000,40003\n");
  OpenBox again = open(m_box);
  ASSERT_TRUE(again.session) << again.problem;
  EXPECT_EQ(again.session->changes(), Names{});
  EXPECT_EQ(value(again, "Box.y"), "10000 mm");
}

TEST_F(ModelChangeTest, MoreOptions_AreAddedBehindThoseThatThereAre) {
  m_box.edit("    y: 10 m\n", "    y: 10 m\n    t: {kind: choice, options: [a, b], value: b}\n");
  ASSERT_TRUE(open(m_box).session);
  m_box.edit("options: [a, b], value: b", "options: [a, b, c], value: c");
  {
    const OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(box.session->changes(),
              (Names{"the options of Box.t are now a, b, c", "baseline: Box.t is now c, it was b"}));
  }
  m_box.edit("options: [a, b, c]", "options: [c, a, b]");
  const OpenBox other = open(m_box);
  EXPECT_FALSE(other.session);
  EXPECT_EQ(other.problem,
            "the project " + m_box.projectFile() +
                " was made for another model: the attribute \"Box.t\" has other options there, "
                "a, b, c. Keep them in their order and add new ones behind them, or give the "
                "study file another name, which makes a new project");
}

TEST_F(ModelChangeTest, Description_IsNoChange) {
  m_box.edit("minimum: 0, maximum: 100}", "minimum: 0, maximum: 100, description: how wide}");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(), Names{});
}

TEST_F(ModelChangeTest, OrderOfAttributes_IsNoChange) {
  m_box.edit("    y: 10 m\n", "");
  m_box.edit("    x: {value", "    y: 10 m\n    x: {value");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(), Names{});
  EXPECT_EQ(solve(box).alreadySolved, 3U);
}

TEST_F(ModelChangeTest, WhatWouldLoseSomething_IsRefusedAndTheProjectIsLeftAlone) {
  const std::string before = m_box.read("box.optstudy");
  const struct {
    const char *from;
    const char *to;
    const char *problem;
  } rows[] = {
      {"    note: {kind: text, value: hello}\n", "",
       "the study file does not declare the attribute \"Box.note\", whose values its rows have. Put it back, "
       "or "
       "give the study file another name, which makes a new project"},
      {"    note: {kind: text, value: hello}\n", "    note: 5\n",
       "the attribute \"Box.note\" is of another kind there. Give the attribute another name, or give"},
      {"    y: 10 m\n", "    y: 10 kg\n",
       "the attribute \"Box.y\" is declared in \"m\" there, which cannot be converted to \"kg\". Declare it "
       "in a "
       "unit of the same quantity, or give"},
      {"sum: {result: true}", "sum: {result: true, unit: m}",
       "the attribute \"Box.sum\" is declared in \"\" there"},
  };
  for (const auto &row : rows) {
    m_box.edit(row.from, row.to);
    std::unique_ptr<StudyFile> study = m_box.study();
    ASSERT_TRUE(study) << row.to;
    OpenFailure failure;
    EXPECT_FALSE(StudySession::open(*study, m_box.projectFile(), Keeping::Changes, failure)) << row.to;
    EXPECT_EQ(failure.problem.rfind(
                  "the project " + m_box.projectFile() + " was made for another model: " + row.problem, 0),
              0U)
        << failure.problem;
    EXPECT_TRUE(m_box.read("box.optstudy") == before) << row.to;
    if (*row.to == '\0') {
      m_box.edit("    y: 10 m\n", std::string(row.from) + "    y: 10 m\n");
    } else {
      m_box.edit(row.to, row.from);
    }
  }
}

TEST_F(ModelChangeTest, LookingAtWhatWouldBe_ChangesNothing) {
  const std::string before = m_box.read("box.optstudy");
  m_box.edit("    y: 10 m\n", "    y: 10000 mm\n    z: 5\n");
  const std::unique_ptr<StudyFile> study = m_box.study();
  OpenFailure failure;
  {
    const auto session = StudySession::open(*study, m_box.projectFile(), Keeping::Nothing, failure);
    ASSERT_TRUE(session) << failure.problem;
    EXPECT_EQ(session->changes().size(), 2U);
  }
  EXPECT_TRUE(m_box.read("box.optstudy") == before);
}

} // namespace
} // namespace Workbench
