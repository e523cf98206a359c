#include "apps/optstudy/tests/ExampleTable.h"

#include <gtest/gtest.h>

namespace {

TEST(WeldedBeamExampleTest, BestKnownDesign_HasThePublishedCostAndIsTheBest) {
  const ExampleTable example("welded-beam");
  const CommandResult result = example.run();
  ASSERT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("best known, cost 1.72485 "), std::string::npos) << result.output;
  for (const auto &row : example.rows()) {
    if (row.at("name") == "best known") {
      EXPECT_NEAR(numberIn(row, "cost"), 1.724852, 1e-6);
      // Four of the five limits are reached at the optimum.
      EXPECT_NEAR(numberIn(row, "Weld.Shear"), 13600.0, 0.05);
      EXPECT_NEAR(numberIn(row, "Bar.Bending"), 30000.0, 0.1);
      EXPECT_NEAR(numberIn(row, "Bar.Buckling"), 6000.0, 0.05);
      EXPECT_LT(numberIn(row, "Bar.Deflection"), 0.25);
    }
  }
}

TEST(WeldedBeamExampleTest, DesignThatBreaksALimit_CostsMuchMore) {
  const ExampleTable example("welded-beam");
  ASSERT_EQ(example.run().exitCode, 0);
  std::size_t broken = 0;
  for (const auto &row : example.rows()) {
    const double excess = numberIn(row, "Design.Excess");
    broken += excess > 1e-6 ? 1U : 0U;
    EXPECT_NEAR(numberIn(row, "cost"),
                numberIn(row, "Design.Price") + (excess > 1e-6 ? 1000.0 * (excess - 1e-6) : 0.0), 1e-6)
        << row.at("name");
  }
  EXPECT_GT(broken, 20U);
}

} // namespace
