#include "tests/study-property/StoryProject.h"

// What becomes of groups, columns and limits at each turn of a story.

namespace StudyProperty {
namespace {

using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroupVariable;

class StudyGroupStoryTest : public ProjectStoryTest {};

TEST_F(StudyGroupStoryTest, TwoBeamsInOneGroup_ShareTheColumnOfTheGroup) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  manager().addInputAttribute(value("Length", 1));
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "1000 mm", "", ""},
                              {"Long", "2000 mm", "4", "1000 mm", "", ""}}));
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 2));

  data().moveAttribute(true, 2, 0, 0);
  EXPECT_EQ(data().getNumInputs(), 2);
  EXPECT_EQ(data().getNumInputAttributes(), 3);
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "", ""}, {"Long", "2000 mm", "4", "", ""}}));
  switchTo("Long");
  EXPECT_EQ(shown("Length", 1), "1000 mm"); // until the row is pushed
  switchTo("Base");
  data().updateAlternate(OptimizationData::WriteToModel, "Long");
  switchTo("Long");
  EXPECT_EQ(shown("Length", 1), "2000 mm");
  switchTo("Base");

  // Whichever of the two the user edits, the other follows in the baseline.
  EXPECT_EQ(edit("Length", "1200 mm", 1), "");
  EXPECT_EQ(matrix().at(0), (Texts{"Base", "1200 mm", "4", "", ""}));
  EXPECT_EQ(shown("Length", 0), "1200 mm");
  saveAndReopen("shared.study");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1200 mm", "4", "", ""}, {"Long", "2000 mm", "4", "", ""}}));

  manager().removeInputAttribute(value("Length", 0));
  EXPECT_EQ(data().getNumInputs(), 2); // the side beam still stands for the group
  manager().removeInputAttribute(value("Length", 1));
  EXPECT_EQ(matrix(), (Matrix{{"Base", "4", "", ""}, {"Long", "4", "", ""}}));
}

TEST_F(StudyGroupStoryTest, GroupMoved_ItsCellsStayUntilTheStudyIsLoadedAgain) {
  begin();
  data().addVariant({"2000 mm", "5"}, "Long", kAtEnd);
  data().moveGroup(true, 1, 0);
  EXPECT_EQ(data().getGroup(true, 0).getDisplayName(), "Main.Count");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "", ""}, {"Long", "2000 mm", "5", "", ""}}));

  saveAndReopen("moved.study");
  EXPECT_EQ(data().getGroup(true, 0).getDisplayName(), "Main.Count");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "4", "1000 mm", "", ""}, {"Long", "5", "2000 mm", "", ""}}));
}

TEST_F(StudyGroupStoryTest, LimitsThatContradict_AreRepairedWhenTheProjectIsOpened) {
  begin();
  OptimizationGroupVariable count = data().getVariable(true, 1);
  count.setMinimumValue("10");
  count.setMaximumValue("5");
  count.setStepValue("2");
  count.setLowBound(std::string("7"));
  count.setHighBound(std::string("3"));
  OptimizationGroupVariable length = data().getVariable(true, 0);
  length.setMinimumValue("900 mm");
  length.setMaximumValue("800 mm");
  EXPECT_EQ(count.getMaximumValue(), "5");

  saveAndReopen("limits.study");

  count = data().getVariable(true, 1);
  EXPECT_EQ(count.getMinimumValue(), "10");
  EXPECT_EQ(count.getMaximumValue(), "10");
  EXPECT_EQ(count.getStepValue(), "0");
  EXPECT_EQ(count.getHighBound(), "7");
  // Without a bound or a step nobody looks at the limits.
  length = data().getVariable(true, 0);
  EXPECT_EQ(length.getMinimumValue(), "900 mm");
  EXPECT_EQ(length.getMaximumValue(), "800 mm");
}

} // namespace
} // namespace StudyProperty
