// What a study asks of its host while versions are being solved: the same calls in the same order as at any other
// time, each of them with the solving state on, and with the editing flag as it always is there.

#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

struct SolvingFlow {
  const char *name;
  std::function<void(RecordedStudy &)> prepare;
  std::function<void(RecordedStudy &)> run;
};

void beginWithRows(RecordedStudy &study) {
  study.begin();
  study.addRow("A", "11", "21");
  study.addRow("B", "12", "22");
  study.data().setCostFunction("%Fan.Speed% + %Fan.Power%");
}

const std::vector<SolvingFlow> &solvingFlows() {
  static const std::vector<SolvingFlow> all = {
      {"AddVariant", beginWithRows,
       [](RecordedStudy &study) {
         study.data().addVariant({"13", "23"}, "C", kAtEnd);
       }},
      {"CreateCopyVersion", beginWithRows,
       [](RecordedStudy &study) {
         study.data().createCopyVersion(true);
       }},
      {"CreateMissingVersions",
       [](RecordedStudy &study) {
         beginWithRows(study);
         study.destroy("A");
       },
       [](RecordedStudy &study) {
         study.data().createMissingVersions();
       }},
      {"CreateMissingVersionsAndTheCopy",
       [](RecordedStudy &study) {
         beginWithRows(study);
         study.destroy("A");
         study.destroy("Steady Copy of Base");
         study.data().setCopyVersionName("");
       },
       [](RecordedStudy &study) {
         study.data().createMissingVersions();
       }},
      {"UpdateAlternate", beginWithRows,
       [](RecordedStudy &study) {
         study.data().updateAlternate(OptimizationData::UpdateTypes(OptimizationData::WriteToModel) |
                                          OptimizationData::ReadFromModel,
                                      1);
       }},
      {"UpdateAlternates", beginWithRows,
       [](RecordedStudy &study) {
         study.data().updateAlternates(OptimizationData::ReadFromModel, nullptr);
       }},
      {"InitializeVariants",
       [](RecordedStudy &study) {
         beginWithRows(study);
         study.show("A");
         study.reopen();
       },
       [](RecordedStudy &study) {
         study.data().initializeVariants(nullptr);
       }},
      {"InitializeVariantsOfANewStudy", [](RecordedStudy &study) { study.makeEntity(); },
       [](RecordedStudy &study) {
         study.data().initializeVariants(true, nullptr);
       }},
  };
  return all;
}

Texts callsOf(const SolvingFlow &flow, bool isSolving) {
  RecordedStudy study;
  flow.prepare(study);
  study.host().clear();
  if (isSolving) {
    const OptimizationDataSolvingGuard guard(study.data());
    flow.run(study);
    EXPECT_TRUE(study.data().isSolvingVersions());
  } else {
    flow.run(study);
  }
  EXPECT_FALSE(study.data().isSolvingVersions());
  EXPECT_FALSE(study.data().isEditingVersions());
  return study.host().textsWithState();
}

class SolvingOrderTest : public ::testing::TestWithParam<SolvingFlow> {};

TEST_P(SolvingOrderTest, SameCallsInOrder_WithTheSolvingStateAtEach) {
  Texts expected = callsOf(GetParam(), false);
  ASSERT_FALSE(expected.empty());
  for (std::string &call : expected) {
    ASSERT_EQ(call.at(1), '-') << call;
    call[1] = 'S';
  }
  EXPECT_EQ(callsOf(GetParam(), true), expected);
}

INSTANTIATE_TEST_SUITE_P(Flows, SolvingOrderTest, ::testing::ValuesIn(solvingFlows()),
                         [](const ::testing::TestParamInfo<SolvingFlow> &flow) {
                           return std::string(flow.param.name);
                         });

TEST(OptimizationDataSolvingOrderTest, UpdateAlternate_WhileSolving_CallsInOrder) {
  RecordedStudy study;
  beginWithRows(study);
  study.host().clear();
  const OptimizationDataSolvingGuard guard(study.data());

  study.data().updateAlternate(OptimizationData::ReadFromModel, 1);

  EXPECT_EQ(study.host().textsWithState(),
            (Texts{
                R"(ES ChangeManager::findVersion("A", entity=null))",
                R"(ES ChangeManager::setCurrentVersion("A", null, force=false, progress=null, load=true))",
                R"(ES ModelVersion::setLabel("A", "A"))",
                R"(ES EntityManager::setNeedsSave(true))",
                R"(ES ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
            }));
}

// A load sets the flag for its way to the baseline only.
TEST(OptimizationDataSolvingOrderTest, InitializeVariants_WhileSolving_CallsInOrder) {
  RecordedStudy study;
  beginWithRows(study);
  study.show("A");
  study.reopen();
  const OptimizationDataSolvingGuard guard(study.data());

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().textsWithState(),
            (Texts{
                R"(-S ChangeManager::findVersion("Base", entity=null))",
                R"(-S ChangeManager::findVersion("Steady Copy of Base", entity=null))",
                R"(-S ChangeManager::getAlternates("Steady Copy of Base"))",
                R"(-S ChangeManager::findVersion("Base", entity=null))",
                R"(ES ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
            }));
}

} // namespace
} // namespace OptimizationTool
