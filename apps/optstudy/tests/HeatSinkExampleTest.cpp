#include "apps/optstudy/tests/ExampleTable.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// The root temperature of a straight fin whose tip loses heat as its faces do: the fin equation with the length made
// longer by half the thickness.
double rootTemperature(double fins, double thickness, double length) {
  const double power = 20.0;
  const double width = 60.0e-3;
  const double film = 30.0;
  const double conductivity = 200.0;
  const double perimeter = 2.0 * width; // the narrow sides are planes of symmetry
  const double area = thickness * width;
  const double root = std::sqrt(film * perimeter * conductivity * area);
  const double m = std::sqrt(film * perimeter / (conductivity * area));
  return 25.0 + power / fins / (root * std::tanh(m * (length + thickness / 2.0)));
}

TEST(HeatSinkExampleTest, EveryRow_AgreesWithTheFinEquation) {
  const ExampleTable example("heat-sink");
  const CommandResult result = example.run();
  ASSERT_EQ(result.exitCode, 0) << result.messages;
  std::size_t solved = 0;
  for (const auto &row : example.rows()) {
    const double fins = numberIn(row, "Sink.Fins");
    const double thickness = numberIn(row, "Sink.Thickness");
    const double length = numberIn(row, "Sink.Length");
    const bool isFeasible = (60.0 - fins * thickness) / (fins - 1.0) >= 2.0;
    EXPECT_EQ(row.at("status"), isFeasible ? "ok" : "infeasible") << row.at("name");
    if (!isFeasible) {
      EXPECT_EQ(row.at("Sink.Peak") + row.at("Sink.Mass") + row.at("cost"), "") << row.at("name");
      continue;
    }
    ++solved;
    const double peak = rootTemperature(fins, thickness * 1e-3, length * 1e-3);
    const double mass = fins * thickness * length * 60.0 * 2700.0 * 1e-6;
    EXPECT_NEAR(numberIn(row, "Sink.Peak") / peak, 1.0, 2e-3) << row.at("name");
    EXPECT_NEAR(numberIn(row, "Sink.Mass") / mass, 1.0, 1e-9) << row.at("name");
    EXPECT_NEAR(numberIn(row, "cost"), peak - 25.0 + 0.25 * mass, 0.2) << row.at("name");
  }
  // 4 x 3 x 3 designs, one of them the baseline. 20 fins of 1.5 or 2 mm leave no room, nor do 16 of 2 mm.
  EXPECT_EQ(solved, 27U);
}

TEST(HeatSinkExampleTest, SecondRun_SolvesNothing) {
  const ExampleTable example("heat-sink");
  ASSERT_EQ(example.run().exitCode, 0);
  const CommandResult again = example.run();
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_NE(again.messages.find("Nothing to solve"), std::string::npos) << again.messages;
}

} // namespace
