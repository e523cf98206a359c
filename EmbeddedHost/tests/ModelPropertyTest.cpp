#include "EmbeddedHost/tests/ProjectSession.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace EmbeddedHost {
namespace {

using Mistake = ProjectReference::Mistake;

constexpr int kSeeds = 6;
constexpr int kSteps = 120;

int fromEnvironment(const char *name, int otherwise) {
  const char *text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

TEST(ModelPropertyTest, RandomSessions_EqualTheReference) {
  const int first = fromEnvironment("OPTSTUDY_PROPERTY_SEED", 1);
  const int seeds = fromEnvironment("OPTSTUDY_PROPERTY_SEEDS", kSeeds);
  const int steps = fromEnvironment("OPTSTUDY_PROPERTY_STEPS", kSteps);
  for (int seed = first; seed < first + seeds; ++seed) {
    EXPECT_EQ(ProjectSession(static_cast<unsigned>(seed), Mistake::None).run(steps), "");
  }
  std::printf("sessions: seeds %d to %d, %d steps each\n", first, first + seeds - 1, steps);
}

// Whether some session tells the project from a wrong idea of it.
bool isFound(Mistake mistake) {
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    const std::string problem = ProjectSession(seed, mistake).run(kSteps);
    if (!problem.empty()) {
      std::printf("%s\n", problem.c_str());
      return true;
    }
  }
  return false;
}

TEST(ModelPropertyTest, SiblingThatSeesAnEdit_IsFound) {
  EXPECT_TRUE(isFound(Mistake::SiblingsSeeEdits));
}

TEST(ModelPropertyTest, ReopeningThatKeepsWhatWasNotSaved_IsFound) {
  EXPECT_TRUE(isFound(Mistake::ReopeningKeepsUnsaved));
}

TEST(ModelPropertyTest, FollowerOfADestroyedVersionThatStays_IsFound) {
  EXPECT_TRUE(isFound(Mistake::FollowersSurvive));
}

} // namespace
} // namespace EmbeddedHost
