// A group that is stored has a cell in every row, also when the host fails between the two.

#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace OptimizationTool {
namespace {

using HostTesting::FaultKind;
using Texts = std::vector<std::string>;

class OptimizationDataGroupsFaultTest : public ::testing::Test {
protected:
  OptimizationDataGroupsFaultTest() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  // One more group, added with the fault gone, shows in which place its cell comes.
  void addOneMore(bool isInput) {
    study.faults().heal();
    EXPECT_EQ(study.data().addGroup(isInput, study.attribute(study.pump(), "Noise")), 3);
  }

  StudyTesting::RecordedStudy study;
};

TEST_F(OptimizationDataGroupsFaultTest, AddGroup_VariableThrows_EveryRowHasAnEmptyCell) {
  study.faults().fail("EntityEditor::addEntity", FaultKind::Throws);
  EXPECT_THROW(study.data().addGroup(true, study.attribute(study.pump(), "Angle")), std::runtime_error);
  EXPECT_EQ(study.data().getNumInputs(), 3);
  addOneMore(true);
  EXPECT_EQ(study.cells(0), Texts({"10", "20", "-", "50", "100", "50"}));
  EXPECT_EQ(study.cells(2), Texts({"12", "22", "-", "50", "100", "50"}));
}

TEST_F(OptimizationDataGroupsFaultTest, AddGroup_CopyThrowsAtTheSecondRow_TheRowsFromThereOnHaveAnEmptyCell) {
  study.faults().fail("Attribute::clone", FaultKind::Throws, 2);
  EXPECT_THROW(study.data().addGroup(true, study.attribute(study.pump(), "Angle")), std::runtime_error);
  addOneMore(true);
  EXPECT_EQ(study.cells(0), Texts({"10", "20", "20", "50", "100", "50"}));
  EXPECT_EQ(study.cells(1), Texts({"11", "21", "-", "50", "100", "50"}));
  EXPECT_EQ(study.cells(2), Texts({"12", "22", "-", "50", "100", "50"}));
}

TEST_F(OptimizationDataGroupsFaultTest, AddGroup_CopyThrowsOnTheOutputSide_EveryRowHasOneCellForEachGroup) {
  study.faults().fail("Attribute::clone", FaultKind::Throws, 3);
  EXPECT_THROW(study.data().addGroup(false, study.attribute(study.pump(), "Power")), std::runtime_error);
  addOneMore(false);
  EXPECT_EQ(study.cells(1), Texts({"11", "21", "100", "50", "100", "50"}));
  EXPECT_EQ(study.cells(2), Texts({"12", "22", "100", "50", "-", "50"}));
}

TEST_F(OptimizationDataGroupsFaultTest, AddGroupFromGroup_CopyThrows_EveryRowHasOneCellForEachGroup) {
  study.faults().fail("Attribute::clone", FaultKind::Throws, 2);
  EXPECT_THROW(study.data().addGroupFromGroup(true, 0), std::runtime_error);
  addOneMore(true);
  EXPECT_EQ(study.cells(0), Texts({"10", "20", "10", "50", "100", "50"}));
  EXPECT_EQ(study.cells(1), Texts({"11", "21", "-", "50", "100", "50"}));
  EXPECT_EQ(study.cells(2), Texts({"12", "22", "-", "50", "100", "50"}));
}

} // namespace
} // namespace OptimizationTool
