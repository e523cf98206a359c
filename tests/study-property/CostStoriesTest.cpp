#include "tests/study-property/StoryProject.h"

#include <stdexcept>

// What rows cost at each turn of a story.

namespace StudyProperty {
namespace {

using OptimizationTool::OptimizationData;

class StudyCostStoryTest : public ProjectStoryTest {};

TEST_F(StudyCostStoryTest, LengthsInOtherUnits_ArePricedAsTheBaselineShowsThem) {
  begin();
  data().setCostFunction("%Main.Length%");
  data().addVariant({"2 m", "4"}, "Long", kAtEnd);
  data().recalculateCosts();
  EXPECT_EQ(matrix(), (Matrix{{"Base", "1000 mm", "4", "", ""}, {"Long", "2 m", "4", "", ""}}));
  EXPECT_EQ(costs(), (Costs{1000.0, 2000.0}));

  // The baseline's row alone is priced again when the user changes how it is shown.
  EXPECT_EQ(edit("Length", "3 m"), "");
  EXPECT_EQ(matrix().at(0), (Texts{"Base", "3 m", "4", "", ""}));
  EXPECT_EQ(costs(), (Costs{3.0, 2000.0}));
  data().recalculateCosts();
  EXPECT_EQ(costs(), (Costs{3.0, 2.0}));

  saveAndReopen("units.study");
  EXPECT_EQ(matrix(), (Matrix{{"Base", "3 m", "4", "", ""}, {"Long", "2 m", "4", "", ""}}));
  EXPECT_EQ(costs(), (Costs{3.0, 2.0}));
  EXPECT_EQ(data().variantStandardVal(true, 0), (std::vector<double>{3.0, 2.0}));
}

TEST_F(StudyCostStoryTest, BeamRenamed_PricingStopsUntilTheCostFunctionFollows) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  solve();
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));

  project->renameEntity(beam(0), "First");
  try {
    data().updateAlternate(OptimizationData::ReadFromModel, std::size_t{1});
    FAIL() << "priced";
  } catch (const std::out_of_range &error) {
    EXPECT_STREQ(error.what(), "Variable does not exist");
  }
  EXPECT_EQ(current(), "Long"); // nothing switched back
  EXPECT_FALSE(manager().isEditingVersions());
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));
  switchTo("Base");

  // The old text names a beam that is gone, the new one names it as it is called now.
  data().setCostFunction("%Main.Mass% + %Main.Deflection%");
  EXPECT_EQ(costs(), (Costs{std::nullopt, std::nullopt}));
  EXPECT_NE(data().getLastCostFunctionError(), "");
  data().setCostFunction("%First.Mass% + %First.Deflection%");
  EXPECT_EQ(data().getLastCostFunctionError(), "");
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));
  saveAndReopen("renamed.study");
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));
}

TEST_F(StudyCostStoryTest, SolverThatFails_LeavesTheRowWithoutCost) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  solve();
  {
    const EmbeddedHost::Commands::SolverRun run(*commands);
    const OptimizationTool::OptimizationDataSolvingGuard guard(data());
    EXPECT_TRUE(manager().isSolvingVersions());
    switchTo("Long");
    project->setValue(beam(0), "Mass", "");
    switchTo("Base");
  }
  EXPECT_FALSE(manager().isSolvingVersions());
  data().updateAlternates(OptimizationData::ReadFromModel, nullptr);
  EXPECT_EQ(matrix(),
            (Matrix{{"Base", "1000 mm", "4", "8 kg", "25 mm"}, {"Long", "2000 mm", "4", "", "50 mm"}}));
  EXPECT_EQ(costs(), (Costs{33.0, std::nullopt}));

  saveAndReopen("failed.study");
  EXPECT_EQ(costs(), (Costs{33.0, std::nullopt}));
  solve();
  EXPECT_EQ(costs(), (Costs{33.0, 66.0}));
}

TEST_F(StudyCostStoryTest, ResultsThatAreNotReadBack_AreLostToTheNextEditOfTheRow) {
  begin();
  data().addVariant({"2000 mm", "4"}, "Long", kAtEnd);
  solve();
  switchTo("Base");
  {
    const OptimizationTool::OptimizationDataSolvingGuard guard(data());
    switchTo("Long");
    project->setValue(beam(0), "Mass", "99 kg");
    switchTo("Base");
  }
  EXPECT_EQ(matrix().at(1), (Texts{"Long", "2000 mm", "4", "16 kg", "50 mm"}));

  // The row is pushed whole, outputs included.
  data().setVariantValue(1, 1, "2");

  EXPECT_EQ(matrix().at(1), (Texts{"Long", "2000 mm", "2", "16 kg", "50 mm"}));
  switchTo("Long");
  EXPECT_EQ(shown("Mass"), "16 kg");
  EXPECT_EQ(shown("Count"), "2");
}

} // namespace
} // namespace StudyProperty
