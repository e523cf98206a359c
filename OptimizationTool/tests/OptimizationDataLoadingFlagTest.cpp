// What the study manager asks a study while the study itself makes a version current in order to load.

#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

namespace OptimizationTool {
namespace {

using StudyTesting::RecordedStudy;

TEST(OptimizationDataLoadingFlagTest, SwitchBackToTheBaseline_IsAnEditingOperationOfTheStudyItself) {
  RecordedStudy study;
  study.begin();
  study.addRow("A", "11", "21");
  study.show("A");
  study.reopen();
  bool isSwitching = false;
  bool isOwn = false;
  study.hooked().runBefore("ChangeManager::setCurrentVersion", [&study, &isSwitching, &isOwn] {
    isSwitching = true;
    isOwn = study.data().isEditingOperationRunning();
  });

  study.data().initializeVariants(nullptr);

  EXPECT_TRUE(isSwitching);
  EXPECT_TRUE(isOwn);
  EXPECT_FALSE(study.data().isEditingOperationRunning());
}

} // namespace
} // namespace OptimizationTool
