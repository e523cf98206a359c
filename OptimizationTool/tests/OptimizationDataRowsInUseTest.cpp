// A row that goes while a pass is at work on the rows is kept until the pass has ended, and no longer.

#include "HostModel/ModelVersion.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <string>

namespace OptimizationTool {
namespace {

using StudyTesting::ListeningChecker;
using StudyTesting::RecordedStudy;

constexpr OptimizationData::UpdateType kWrite = OptimizationData::WriteToModel;

TEST(OptimizationDataRowsInUseTest, RowThatWentInAnEarlierPass_DoesNotKeepALaterOneFromSwitchingBack) {
  RecordedStudy study;
  study.begin();
  study.addRow("A", "11", "21");
  study.addRow("B", "12", "22");
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  bool isRemoved = false;
  checker.action = [&study, &isRemoved](EntityModel::ChangeSet &) {
    if (!isRemoved) {
      isRemoved = true;
      study.data().removeVariant(2, false);
    }
  };
  study.data().updateAlternates(kWrite, nullptr);
  ASSERT_EQ(study.currentLabel(), "Base");

  // The version to go back to is called otherwise by then.
  checker.action = [&study](EntityModel::ChangeSet &) {
    study.version("Base")->setLabel("Renamed");
  };
  study.data().updateAlternate(kWrite, 1);

  EXPECT_EQ(study.currentLabel(), "Renamed");
  study.project().setModelChecker(nullptr);
}

} // namespace
} // namespace OptimizationTool
