// What is read once for many rows is read anew wherever somebody may have changed it, and no row costs a switch that
// it does not need.

#include "EmbeddedHost/Project.h"
#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "testing/RecordingProgress.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

namespace OptimizationTool {
namespace {

using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

constexpr int kRows = 20;

// Calls a function at every step, with the number of the step from 1.
class StepProgress final : public HostTesting::RecordingProgress {
public:
  explicit StepProgress(std::function<void(int)> action) : m_action(std::move(action)) {}

  void advance(std::uint32_t steps, const Tools::Progress::AdditionalProgressAbstract &additional) override {
    RecordingProgress::advance(steps, additional);
    m_action(++m_steps);
  }

private:
  int m_steps = 0;
  std::function<void(int)> m_action;
};

class OptimizationDataScaleTest : public ::testing::Test {
protected:
  // Rows "Base" (10, 20, 100, 50), "Row 1" (101, 201, 100, 50) and so on.
  void beginWithRows(int rows) {
    study.begin();
    for (int row = 1; row <= rows; ++row) {
      study.addRow("Row " + std::to_string(row), std::to_string(100 + row), std::to_string(200 + row));
    }
  }

  void load(Tools::ToolProgress *progress) {
    study.reopen();
    study.data().initializeVariants(progress);
  }

  // The versions that were made current, in order.
  Texts switches() {
    const std::string call = "ChangeManager::setCurrentVersion(\"";
    Texts labels;
    for (const std::string &text : study.host().texts()) {
      if (text.rfind(call, 0) == 0) {
        labels.push_back(text.substr(call.size(), text.find('"', call.size()) - call.size()));
      }
    }
    return labels;
  }

  RecordedStudy study;
};

TEST_F(OptimizationDataScaleTest, UpdateAllRows_OneSwitchForEachRowAndOneBack) {
  beginWithRows(kRows);
  study.show("Steady Copy of Base");
  study.host().clear();

  study.data().updateAlternates(OptimizationData::UpdateTypes(OptimizationData::WriteToModel) |
                                    OptimizationData::ReadFromModel,
                                nullptr);

  Texts expected{"Base"};
  for (int row = 1; row <= kRows; ++row) {
    expected.push_back("Row " + std::to_string(row));
  }
  expected.emplace_back("Steady Copy of Base");
  EXPECT_EQ(switches(), expected);
}

TEST_F(OptimizationDataScaleTest, UpdateAllRows_BaselineIsCurrent_IsNotSwitchedToFirst) {
  beginWithRows(kRows);

  study.data().updateAlternates(OptimizationData::UpdateTypes(OptimizationData::WriteToModel) |
                                    OptimizationData::ReadFromModel,
                                nullptr);

  Texts expected;
  for (int row = 1; row <= kRows; ++row) {
    expected.push_back("Row " + std::to_string(row));
  }
  expected.emplace_back("Base");
  EXPECT_EQ(switches(), expected);
}

TEST_F(OptimizationDataScaleTest, LoadManyRows_SwitchesNothing) {
  beginWithRows(kRows);

  load(nullptr);

  EXPECT_EQ(study.data().getNumVariants(), std::size_t{kRows + 1});
  EXPECT_EQ(study.cells(kRows), (Texts{"120", "220", "100", "50"}));
  EXPECT_EQ(switches(), Texts());
}

TEST_F(OptimizationDataScaleTest, LoadRows_GroupGoesDuringTheProgress_LaterRowsAreWithoutIt) {
  beginWithRows(3);
  StepProgress progress([this](int step) {
    if (step == 2) {
      study.data().getGroups(true).remove(0);
    }
  });

  load(&progress);

  EXPECT_EQ(study.data().getVariantGroup(true, 0, 0)->getValueAsString(), "10");
  EXPECT_EQ(study.data().getVariantGroup(true, 1, 0)->getValueAsString(), "101");
  EXPECT_EQ(study.data().getVariantGroup(true, 2, 0)->getValueAsString(), "202");
  EXPECT_EQ(study.data().getVariantGroup(true, 3, 0)->getValueAsString(), "203");
}

TEST_F(OptimizationDataScaleTest, LoadRows_GroupComesDuringTheProgress_LaterRowsHaveIt) {
  beginWithRows(2);
  StepProgress progress([this](int step) {
    if (step == 2) {
      OptimizationGroup group = study.data().getGroups(true).appendGroup();
      group.appendVariable(study.attribute(study.pump(), "Angle"));
    }
  });

  load(&progress);

  EXPECT_EQ(study.data().getVariantGroup(true, 1, 2), nullptr);
  ASSERT_NE(study.data().getVariantGroup(true, 2, 2), nullptr);
  EXPECT_EQ(study.data().getVariantGroup(true, 2, 2)->getValueAsString(), "20");
}

TEST_F(OptimizationDataScaleTest, LoadRows_FirstVariableChangesDuringTheProgress_LaterRowsHoldTheNewOne) {
  beginWithRows(2);
  study.setValueIn("Row 2", study.pump(), "Speed", "7");
  StepProgress progress([this](int step) {
    if (step == 2) {
      study.data().getGroups(true).removeVariable(0, 0, false);
    }
  });

  load(&progress);

  EXPECT_EQ(study.data().getVariantGroup(true, 1, 0)->getValueAsString(), "101");
  EXPECT_EQ(study.data().getVariantGroup(true, 2, 0)->getValueAsString(), "7");
}

TEST_F(OptimizationDataScaleTest, LoadRows_GroupWithoutOwner_ItsCellsAreMissingInEveryRow) {
  beginWithRows(2);
  OptimizationGroup group = study.data().getGroups(true).appendGroup();
  group.appendVariable(nullptr, EntityModel::AttributePath("Angle"));
  study.data().getGroups(true).moveGroup(2, 0);

  load(nullptr);

  EXPECT_EQ(study.data().getNumInputs(), 3);
  for (std::size_t row = 0; row < 3; ++row) {
    EXPECT_EQ(study.data().getVariantGroup(true, row, 2), nullptr) << row;
  }
  EXPECT_EQ(study.data().getVariantGroup(true, 1, 0)->getValueAsString(), "101");
  EXPECT_EQ(study.data().getVariantGroup(true, 2, 1)->getValueAsString(), "202");
}

} // namespace
} // namespace OptimizationTool
