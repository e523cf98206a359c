#include "Workbench/StudySession.h"

#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "Workbench/tests/BoxStudy.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;

class StudySessionTest : public ::testing::Test {
protected:
  static std::vector<std::string> rowNames(const StudySession &session) {
    std::vector<std::string> names;
    for (std::size_t row = 0; row < session.rowCount(); ++row) {
      names.push_back(session.rowName(row));
    }
    return names;
  }

  static std::string input(const StudySession &session, std::size_t row, std::size_t group) {
    return session.data().getVariantGroup(true, row, group)->getValueAsString();
  }

  BoxStudy m_box;
};

using Names = std::vector<std::string>;

TEST_F(StudySessionTest, ProjectFile_LiesBesideTheStudyFile) {
  EXPECT_EQ(ProjectSession::projectFileOf("dir/filter.study.yaml"), "dir/filter.optstudy");
  EXPECT_EQ(ProjectSession::projectFileOf("filter.yml"), "filter.optstudy");
  EXPECT_EQ(ProjectSession::projectFileOf("/a b/x.study.json"), "/a b/x.optstudy");
  EXPECT_EQ(ProjectSession::projectFileOf("study"), "study.optstudy");
}

TEST_F(StudySessionTest, NewProject_HoldsTheStudyAsDeclared) {
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  OptimizationData &data = box.session->data();
  EXPECT_TRUE(box.session->isNew());
  EXPECT_EQ(data.getNumInputs(), 2);
  EXPECT_EQ(data.getNumOutputs(), 2);
  EXPECT_EQ(data.getGroup(true, 0).getName(), "width");
  EXPECT_EQ(data.getGroup(true, 0).getAttributeMacro(), "Box.x");
  EXPECT_EQ(data.getGroup(true, 0).getFrontVariable().getMinimumValue(), "0");
  EXPECT_EQ(data.getGroup(true, 0).getFrontVariable().getMaximumValue(), "50");
  EXPECT_EQ(data.getGroup(true, 0).getFrontVariable().getStepValue(), "1");
  EXPECT_EQ(data.getGroup(true, 1).getName(), "");
  EXPECT_EQ(data.getCostFunction(), "%Box.sum% + %Box.product%");
  EXPECT_EQ(data.getOptimisationTarget(), MathematicalUtilities::OptimisationStrategy::Maximise);
  EXPECT_EQ(rowNames(*box.session), (Names{"Base", "two", "Variant 2"}));
  EXPECT_EQ(input(*box.session, 1, 0), "2");
  EXPECT_EQ(input(*box.session, 1, 1), "10 m");
  EXPECT_EQ(input(*box.session, 2, 0), "3");
}

TEST_F(StudySessionTest, GroupOfSeveralAttributes_IsOneGroupAndWritesAllOfThem) {
  m_box.edit("    y: 10 m\n", "    y: 10 m\n    z: 1\n");
  m_box.edit("attribute: Box.x", "attributes: [Box.x, Box.z]");
  m_box.edit("x: {value: 1, minimum: 0, maximum: 100}", "x: 1");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  ASSERT_EQ(box.session->data().getGroup(true, 0).size(), 2);
  EXPECT_EQ(box.session->data().getGroup(true, 0).getVariable(1).getMaximumValue(), "50");
  ASSERT_TRUE(box.session->commands().switchVersion("two"));
  EXPECT_EQ(box.session->model().find("Box.x")->value->getValueAsString(), "2");
  EXPECT_EQ(box.session->model().find("Box.z")->value->getValueAsString(), "2");
  ASSERT_TRUE(box.session->commands().switchVersion(box.session->baseline()));
}

TEST_F(StudySessionTest, ExistingProject_IsFoundAsItWas) {
  open(m_box).session.reset();
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_FALSE(box.session->isNew());
  EXPECT_TRUE(box.session->changes().empty());
  EXPECT_EQ(rowNames(*box.session), (Names{"Base", "two", "Variant 2"}));
  EXPECT_EQ(input(*box.session, 2, 0), "3");
}

TEST_F(StudySessionTest, Destruction_LeavesNoStudyBehind) {
  {
    const OpenBox box = open(m_box);
    EXPECT_NE(OptimizationManager::instance().getData(), nullptr);
  }
  EXPECT_EQ(OptimizationManager::instance().getData(), nullptr);
}

TEST_F(StudySessionTest, RowWithAName_IsFoundByItAndTakesNewInputs) {
  open(m_box).session.reset();
  m_box.edit("{width: 2}", "{width: 5}");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(rowNames(*box.session), (Names{"Base", "two", "Variant 2"}));
  EXPECT_EQ(input(*box.session, 1, 0), "5");
  EXPECT_EQ(box.session->changes(), Names{"the row \"two\" has new inputs"});
}

TEST_F(StudySessionTest, RowWithoutAName_IsFoundByItsInputsInAnyUnit) {
  open(m_box).session.reset();
  m_box.edit("{width: 3}", "{width: 3.0, Box.y: 10000 mm}");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->rowCount(), 3U);
  EXPECT_TRUE(box.session->changes().empty());
}

TEST_F(StudySessionTest, RowThatLeftTheStudyFile_IsKeptAndMarked) {
  open(m_box).session.reset();
  m_box.edit("    - {values: {width: 3}}\n", "");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  ASSERT_EQ(box.session->rowCount(), 3U);
  EXPECT_TRUE(box.session->rowState(1).isInStudyFile);
  EXPECT_FALSE(box.session->rowState(2).isInStudyFile);
}

TEST_F(StudySessionTest, NewRow_GetsANameThatIsFree) {
  m_box.edit("name: two", "name: Variant 2");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(rowNames(*box.session), (Names{"Base", "Variant 2", "Variant 3"}));
}

TEST_F(StudySessionTest, NameOfAnotherVersion_IsRefused) {
  m_box.edit("name: two", "name: Base");
  const OpenBox baseline = open(m_box);
  EXPECT_FALSE(baseline.session);
  EXPECT_EQ(baseline.problem, m_box.file("box.study.yaml") + ":23:7: the name \"Base\" is the baseline's");
}

TEST_F(StudySessionTest, BaselineValue_IsEditedAsAUserDoes) {
  open(m_box).session.reset();
  m_box.edit("value: 1, min", "value: 7, min");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(input(*box.session, 0, 0), "7");
  EXPECT_EQ(input(*box.session, 1, 0), "2");
  EXPECT_EQ(box.session->changes(), Names{"baseline: Box.x is now 7, it was 1"});
}

TEST_F(StudySessionTest, OtherModelOrType_IsRefusedAndTheProjectIsLeftAlone) {
  open(m_box).session.reset();
  const std::string before = m_box.read("box.optstudy");
  const struct {
    const char *from;
    const char *to;
    const char *problem;
  } rows[] = {{"target: maximise", "type: calibration\n  target: maximise", "holds a study of another type"},
              {"sum: {result: true}", "sum: {result: true, unit: m}",
               "was made for another model: the attribute \"Box.sum\" is declared in \"\" there"}};
  for (const auto &row : rows) {
    m_box.edit(row.from, row.to);
    const OpenBox box = open(m_box);
    EXPECT_FALSE(box.session) << row.to;
    EXPECT_NE(box.problem.find(row.problem), std::string::npos) << box.problem;
    EXPECT_TRUE(m_box.read("box.optstudy") == before) << row.to;
  }
}

TEST_F(StudySessionTest, InputThatLeftTheStudyFile_TakesTheBaselinesValueInEveryRow) {
  solve(*std::make_unique<OpenBox>(open(m_box)));
  m_box.edit("[{name: width, attribute: Box.x, minimum: 0, maximum: 50, step: 1}, Box.y]", "[Box.y]");
  m_box.edit("    - {name: two, values: {width: 2}}\n    - {values: {width: 3}}\n",
             "    - {name: two, values: {Box.y: 10 m}}\n");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(),
            Names{"the input \"width\" was removed: every row has the baseline's value now"});
  EXPECT_EQ(box.session->data().getNumInputs(), 1);
  ASSERT_TRUE(box.session->commands().switchVersion("two"));
  EXPECT_EQ(box.session->model().find("Box.x")->value->getValueAsString(), "1");
  ASSERT_TRUE(box.session->commands().switchVersion(box.session->baseline()));
  box.runner->assess();
  EXPECT_EQ(box.session->rowState(0).status, RowStatus::Ok);
  EXPECT_EQ(box.session->rowState(1).status, RowStatus::Stale);
  EXPECT_FALSE(box.session->rowState(2).isInStudyFile);
}

TEST_F(StudySessionTest, InputThatIsNew_LeavesSolvedRowsSolved) {
  solve(*std::make_unique<OpenBox>(open(m_box)));
  m_box.edit("step: 1}, Box.y]", "step: 1}, Box.note, Box.y]");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->changes(), Names{"the input \"Box.note\" was added"});
  EXPECT_EQ(box.session->data().getGroup(true, 1).getAttributeMacro(), "Box.note");
  EXPECT_EQ(box.session->data().getGroup(true, 2).getAttributeMacro(), "Box.y");
  EXPECT_EQ(input(*box.session, 2, 0), "3");
  EXPECT_EQ(input(*box.session, 2, 1), "hello");
  EXPECT_EQ(input(*box.session, 2, 2), "10 m");
  box.runner->assess();
  EXPECT_EQ(box.session->rowState(2).status, RowStatus::Ok);
}

TEST_F(StudySessionTest, OutputsInAnotherOrder_KeepTheirValues) {
  solve(*std::make_unique<OpenBox>(open(m_box)));
  m_box.edit("[{name: total, attribute: Box.sum}, Box.product]",
             "[Box.product, {name: sum, attribute: Box.sum}]");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->data().getGroup(false, 1).getName(), "sum");
  EXPECT_EQ(box.session->data().getVariantGroup(false, 1, 0)->getStandardValue(), 20.0);
  EXPECT_EQ(box.session->data().getVariantGroup(false, 1, 1)->getStandardValue(), 10002.0);
  EXPECT_EQ(box.session->rowCount(), 3U);
}

TEST_F(StudySessionTest, Title_IsKeptInTheProject) {
  open(m_box).session.reset();
  m_box.edit("title: Box", "title: A box");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->title(), "A box");
  EXPECT_EQ(box.session->changes(), Names{"the title is now: A box"});
}

TEST_F(StudySessionTest, CostThatFailsToBuild_IsRefusedAndTheOldOneStays) {
  open(m_box).session.reset();
  const std::unique_ptr<StudyFile> study = m_box.study();
  study->cost = "sqrt(2)"; // which the study file's reader would have refused
  OpenFailure failure;
  EXPECT_FALSE(StudySession::open(*study, m_box.projectFile(), Keeping::Changes, failure));
  EXPECT_NE(failure.problem.find("Function does not support the current argument types"), std::string::npos)
      << failure.problem;
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_TRUE(box.session->changes().empty());
}

TEST_F(StudySessionTest, CostOfUnsolvedRows_IsNeverThereWhateverItNames) {
  m_box.edit("%Box.sum% + %Box.product%", "1.5");
  {
    const OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
    for (std::size_t row = 0; row < 3; ++row) {
      EXPECT_FALSE(box.session->data().getVariantCost(row).has_value()) << row;
    }
    box.session->data().recalculateCosts(); // what the library makes of it
    EXPECT_EQ(box.session->data().getVariantCost(1).value_or(0.0), 1.5);
    box.session->clearUnreliableCosts();
    EXPECT_FALSE(box.session->data().getVariantCost(1).has_value());
    EXPECT_EQ(box.session->updateAndPrice(), "");
    EXPECT_FALSE(box.session->data().getVariantCost(1).has_value());
  }
  const OpenBox again = open(m_box);
  for (std::size_t row = 0; row < 3; ++row) {
    EXPECT_FALSE(again.session->data().getVariantCost(row).has_value()) << row;
  }
}

TEST_F(StudySessionTest, CostThatCannotBeComputedForARow_LeavesTheOthersPriced) {
  m_box.edit("%Box.sum% + %Box.product%", "(double)(6 / (int)(%Box.x% - 2.0))");
  OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  for (std::size_t row = 0; row < 3; ++row) {
    box.session->setRowState(row, RowState{RowStatus::Ok, "", true});
  }
  // The row with x = 2 divides by zero.
  EXPECT_EQ(box.session->updateAndPrice(),
            "the cost of \"two\" cannot be computed: Integer division by zero");
  EXPECT_EQ(box.session->project().currentVersion(), box.session->baseline());
  EXPECT_EQ(box.session->data().getVariantCost(0).value_or(0.0), -6.0);
  EXPECT_FALSE(box.session->data().getVariantCost(1).has_value());
  EXPECT_EQ(box.session->data().getVariantCost(2).value_or(0.0), 6.0);
}

TEST_F(StudySessionTest, CostThatCannotBeComputed_KeepsNobodyFromOpeningTheProject) {
  m_box.edit("%Box.sum% + %Box.product%", "(double)(6 / (int)(%Box.x% - 2.0))");
  {
    const OpenBox box = open(m_box);
    ASSERT_TRUE(box.session) << box.problem;
  }
  {
    const OpenBox box = open(m_box); // loading prices every row, and throws
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(box.session->rowCount(), 3U);
    EXPECT_EQ(box.session->project().currentVersion(), box.session->baseline());
  }
  m_box.edit("{width: 2}", "{width: 5}");
  m_box.edit("value: 1, min", "value: 2, min");
  {
    const OpenBox box = open(m_box); // so does a new value of the baseline
    ASSERT_TRUE(box.session) << box.problem;
    EXPECT_EQ(input(*box.session, 0, 0), "2");
    EXPECT_EQ(input(*box.session, 1, 0), "5");
  }
  m_box.edit("(double)(6 / (int)(%Box.x% - 2.0))", "1.0");
  const OpenBox box = open(m_box);
  ASSERT_TRUE(box.session) << box.problem;
  EXPECT_EQ(box.session->updateAndPrice(), "");
}

} // namespace
} // namespace Workbench
