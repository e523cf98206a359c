#include "apps/optstudy/tests/ExampleTable.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(BeamExampleTest, EveryRow_AgreesWithBeamTheory) {
  const ExampleTable example("beam");
  const CommandResult result = example.run();
  ASSERT_EQ(result.exitCode, 0) << result.messages;
  std::size_t solved = 0;
  std::size_t infeasible = 0;
  for (const auto &row : example.rows()) {
    const double width = numberIn(row, "width") * 1e-3;
    const double height = numberIn(row, "height") * 1e-3;
    if (row.at("status") == "infeasible") {
      EXPECT_GT(height, 4.0 * width);
      ++infeasible;
      continue;
    }
    EXPECT_EQ(row.at("status"), "ok") << row.at("name");
    const double inertia = width * height * height * height / 12.0;
    const double deflection = 2000.0 * 1.5 * 1.5 * 1.5 / (3.0 * 210e9 * inertia) * 1e3;
    const double mass = 7850.0 * width * height * 1.5;
    EXPECT_NEAR(numberIn(row, "deflection") / deflection, 1.0, 1e-12) << row.at("name");
    EXPECT_NEAR(numberIn(row, "stress") / (2000.0 * 1.5 * height / 2.0 / inertia * 1e-6), 1.0, 1e-12);
    EXPECT_NEAR(numberIn(row, "mass") / mass, 1.0, 1e-12) << row.at("name");
    EXPECT_NEAR(numberIn(row, "cost"), mass + 10.0 * std::max(0.0, deflection - 5.0), 1e-9);
    ++solved;
  }
  // 4 x 4 sections, one of them the baseline; 20 mm are too narrow for 100 and 120 mm.
  EXPECT_EQ(solved, 14U);
  EXPECT_EQ(infeasible, 2U);
}

TEST(BeamExampleTest, Best_IsTheLightestThatIsStiffEnough) {
  const ExampleTable example("beam");
  const CommandResult result = example.run();
  ASSERT_EQ(result.exitCode, 0) << result.messages;
  // 30 x 100 mm: 35.325 kg, 4.286 mm.
  EXPECT_NE(result.output.find(", cost 35.325 "), std::string::npos) << result.output;
}

} // namespace
