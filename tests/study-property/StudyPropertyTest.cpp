#include "tests/study-property/Session.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace StudyProperty {
namespace {

constexpr int kSeeds = 25;
constexpr int kSteps = 120;

int fromEnvironment(const char *name, int otherwise) {
  const char *text = std::getenv(name);
  return text == nullptr ? otherwise : std::atoi(text);
}

std::string problemOf(const std::vector<Step> &steps, Mistake mistake) {
  Tally unused;
  return Session(mistake, unused).run(steps);
}

// Leaves out steps, many at a time and then one at a time, for as long as the rest still fails.
std::vector<Step> shrunk(std::vector<Step> steps, Mistake mistake) {
  for (std::size_t length = std::max<std::size_t>(steps.size() / 2, 1); length > 0; length /= 2) {
    for (std::size_t begin = 0; begin < steps.size();) {
      std::vector<Step> fewer = steps;
      const auto first = fewer.begin() + static_cast<std::ptrdiff_t>(begin);
      fewer.erase(first, first + static_cast<std::ptrdiff_t>(std::min(length, steps.size() - begin)));
      if (problemOf(fewer, mistake).empty()) {
        begin += length;
      } else {
        steps = fewer;
      }
    }
  }
  return steps;
}

// The failing sequence in the fewest steps that were found, what they did and what came of them.
std::string report(unsigned seed, const std::vector<Step> &steps, Mistake mistake) {
  const std::vector<Step> fewer = shrunk(steps, mistake);
  Tally unused;
  Session session(mistake, unused);
  const std::string problem = session.run(fewer);
  std::string text = "seed " + std::to_string(seed) + ", " + std::to_string(fewer.size()) + " of " +
                     std::to_string(steps.size()) + " steps:\n";
  for (const std::string &line : session.log()) {
    text += "  " + line + "\n";
  }
  return text + problem;
}

const Texts &wanted() {
  static const Texts all = {
      "throws out_of_range: OptimizationData::removeGroup: Group index out of range",
      "throws logic_error: OptimizationData::moveAttribute: Can't move attribute to same group",
      "throws out_of_range: OptimizationData::setGroupName: Group index out of range",
      "throws out_of_range: OptimizationData::addVariant: Variant index out of range",
      "throws out_of_range: OptimizationData::removeVariant: Variant index out of range",
      "throws out_of_range: OptimizationData::removeVariant: removeVariant called on baseline",
      "throws out_of_range: OptimizationData::setVariantName: Variant index out of range",
      "throws logic_error: OptimizationData::setVariantName: setVariantName called on baseline",
      "throws logic_error: Incorrect number of values provided to setVariantValues",
      "throws logic_error: Invalid variant name provided to setVariantValues",
      "throws out_of_range: Variable does not exist",
      "throws the host throws",
      "addVariant refused",
      "edit refused",
      "version renamed refused",
      "version deleted refused",
      "beginStudy where none is",
      "beginStudy where one is",
      "edit during a solver run",
      "an output that stays",
      "a study with three rows",
      "a priced row",
      "a result without value",
      "a row with too few cells",
      "a row without version",
      "a cost function that does not build",
      "a study away from its baseline",
      "two studies"};
  return all;
}

TEST(StudyPropertyTest, RandomStudies_EqualTheReference) {
  const int first = fromEnvironment("OPTSTUDY_PROPERTY_SEED", 1);
  const int seeds = fromEnvironment("OPTSTUDY_PROPERTY_SEEDS", kSeeds);
  const int count = fromEnvironment("OPTSTUDY_PROPERTY_STEPS", kSteps);
  Tally tally;
  for (int seed = first; seed < first + seeds; ++seed) {
    const std::vector<Step> steps = randomSteps(static_cast<unsigned>(seed), count);
    const std::string problem = Session(Mistake::None, tally).run(steps);
    ASSERT_EQ(problem, "") << report(static_cast<unsigned>(seed), steps, Mistake::None);
  }
  std::printf("studies: seeds %d to %d, %d steps each\n", first, first + seeds - 1, count);
  for (const auto &[name, reached] : tally) {
    std::printf("%8d  %s\n", reached, name.c_str());
  }
  for (const OperationEntry &entry : operations()) {
    EXPECT_GT(tally[entry.name], 0) << entry.name;
  }
  for (const std::string &name : wanted()) {
    EXPECT_GT(tally[name], 0) << name;
  }
}

struct Control {
  Mistake mistake;
  const char *name;
};

void PrintTo(const Control &control, std::ostream *stream) {
  *stream << control.name;
}

class StudyControlTest : public ::testing::TestWithParam<Control> {};

// A reference that is wrong in one rule must be told from the library; else the comparison proves nothing.
TEST_P(StudyControlTest, WrongRule_IsFound) {
  for (unsigned seed = 1; seed <= kSeeds; ++seed) {
    const std::vector<Step> steps = randomSteps(seed, kSteps);
    if (!problemOf(steps, GetParam().mistake).empty()) {
      std::printf("%s\n", report(seed, steps, GetParam().mistake).c_str());
      return;
    }
  }
  FAIL() << "no seed finds it";
}

INSTANTIATE_TEST_SUITE_P(
    Rules, StudyControlTest,
    ::testing::Values(Control{Mistake::LoadingLeavesEmptyCells, "LoadingLeavesEmptyCells"},
                      Control{Mistake::MovedGroupsTakeTheirCells, "MovedGroupsTakeTheirCells"},
                      Control{Mistake::RemovingChecksTheIndex, "RemovingChecksTheIndex"},
                      Control{Mistake::RemovingFromAnySide, "RemovingFromAnySide"},
                      Control{Mistake::OutputsAreNotWritten, "OutputsAreNotWritten"},
                      Control{Mistake::UnknownVariablesAreSkipped, "UnknownVariablesAreSkipped"},
                      Control{Mistake::EndingSparesOthers, "EndingSparesOthers"},
                      Control{Mistake::ReopeningKeepsUnsaved, "ReopeningKeepsUnsaved"},
                      Control{Mistake::ThrowingSwitchesBack, "ThrowingSwitchesBack"},
                      Control{Mistake::GuardedEditsAreTaken, "GuardedEditsAreTaken"},
                      Control{Mistake::NewColumnsAreTheRowsOwn, "NewColumnsAreTheRowsOwn"},
                      Control{Mistake::RemovedRowsComeBack, "RemovedRowsComeBack"},
                      Control{Mistake::CopiesAreFamily, "CopiesAreFamily"}),
    [](const auto &control) { return std::string(control.param.name); });

} // namespace
} // namespace StudyProperty
