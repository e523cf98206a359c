#include "HostModel/Attribute.h"
#include "HostModel/EntityManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "testing/RecordingProgress.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using EntityModel::ModelVersionStudyCaseFlag;
using HostTesting::FaultKind;
using HostTesting::RecordingProgress;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

class OptimizationDataLoadingTest : public ::testing::Test {
protected:
  // Rows "Base" (10, 20, 100, 50), "A" (11, 21, 100, 50) and "B" (12, 22, 100, 50).
  void beginWithRows() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  // Loads the rows as they are stored.
  void reload() {
    study.reopen();
    study.data().initializeVariants(nullptr);
  }

  Texts rows() {
    Texts names;
    for (std::size_t row = 0; row < study.data().getNumVariants(); ++row) {
      names.push_back(study.data().getVariantName(row));
    }
    return names;
  }

  // The step counts at each advance.
  static std::vector<std::vector<std::uint32_t>> countsAtAdvance(const RecordingProgress &progress) {
    std::vector<std::vector<std::uint32_t>> counts;
    for (const HostTesting::ProgressCall &call : progress.calls()) {
      if (call.text.rfind("advance", 0) == 0) {
        counts.push_back(call.stepCounts);
      }
    }
    return counts;
  }

  RecordedStudy study;
};

TEST_F(OptimizationDataLoadingTest, InitializeVariants_StoredStudy_LoadsBaselineThenAlternatesInOrder) {
  beginWithRows();
  study.data().addVariant({"13", "23"}, "C", 0);

  reload();

  EXPECT_EQ(rows(), (Texts{"Base", "C", "A", "B"}));
  EXPECT_EQ(study.cells(0), (Texts{"10", "20", "100", "50"}));
  EXPECT_EQ(study.cells(1), (Texts{"13", "23", "100", "50"}));
  EXPECT_EQ(study.cells(3), (Texts{"12", "22", "100", "50"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_StoredStudy_CallsInOrder) {
  beginWithRows();
  study.show("A");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().textsWithState(),
            (Texts{
                R"(-- ChangeManager::findVersion("Base", entity=null))",
                R"(-- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
                R"(-- ChangeManager::getAlternates("Steady Copy of Base"))",
                R"(-- ChangeManager::findVersion("Base", entity=null))",
                R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
            }));
  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_EQ(study.currentLabel(), "Base");
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_BaselineIsCurrent_SwitchesNothing) {
  beginWithRows();
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                      R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))",
                                      R"(ChangeManager::getAlternates("Steady Copy of Base"))",
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                  }));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_OneArgument_LoadsAStoredStudy) {
  beginWithRows();
  study.reopen();
  study.data().initializeVariants(false, nullptr);
  const Texts expected = study.host().textsWithState();
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().textsWithState(), expected);
  EXPECT_EQ(rows(), (Texts{"Base", "A", "B"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_HostThatNotifies_DoesSoWithTheEditingFlagSet) {
  beginWithRows();
  study.show("A");
  study.reopen();

  study.data().initializeVariants(nullptr);

  int notifications = 0;
  for (const HostTesting::RecordedCall &call : study.host().calls()) {
    if (call.operation == "ObserverManager::broadcastChangedVersion") {
      ++notifications;
      EXPECT_TRUE(call.state.isEditing);
    }
  }
  EXPECT_EQ(notifications, 1);
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_SwitchThrows_LeavesTheFlagSetButNoOperationRunning) {
  beginWithRows();
  study.show("A");
  study.reopen();
  study.faults().fail("ChangeManager::setCurrentVersion", FaultKind::Throws);

  EXPECT_THROW(study.data().initializeVariants(nullptr), std::runtime_error);

  EXPECT_TRUE(study.data().isEditingVersions());
  EXPECT_FALSE(study.data().isEditingOperationRunning());
  EXPECT_EQ(study.data().getNumVariants(), 3U);
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_FlagWasLeftSet_IsRestoredToThat) {
  beginWithRows();
  study.show("A");
  study.reopen();
  study.faults().fail("ChangeManager::setCurrentVersion", FaultKind::Throws);
  EXPECT_THROW(study.data().initializeVariants(nullptr), std::runtime_error);
  study.faults().heal();

  study.data().initializeVariants(nullptr);

  EXPECT_TRUE(study.data().isEditingVersions());
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_PricesTheLoadedRows) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% + %Fan.Noise%");

  reload();

  EXPECT_EQ(study.data().getVariantCost(0), std::optional<double>(60.0));
  EXPECT_EQ(study.data().getVariantCost(1), std::optional<double>(61.0));
  EXPECT_EQ(study.data().getVariantCost(2), std::optional<double>(62.0));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CostFunctionDoesNotBuild_LoadsTheRowsWithoutCost) {
  beginWithRows();
  study.data().setCostFunction("%Fan.Speed% +");

  reload();

  EXPECT_EQ(rows(), (Texts{"Base", "A", "B"}));
  EXPECT_EQ(study.data().getVariantCost(1), std::nullopt);
  EXPECT_NE(study.data().getLastCostFunctionError(), "");
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_FilledMatrix_Appends) {
  beginWithRows();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(rows(), (Texts{"Base", "A", "B", "Base", "A", "B"}));
}

TEST_F(OptimizationDataLoadingTest,
       InitializeVariants_NoVersionHasTheBaseName_LoadsNoBaselineAndStaysWhereItIs) {
  beginWithRows();
  study.show("A");
  study.data().setBaseVersionName("Nowhere");

  reload();

  EXPECT_EQ(rows(), Texts());
  EXPECT_EQ(study.currentLabel(), "A");
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_BaseNameIsEmpty_LooksForNoBaselineRow) {
  beginWithRows();
  study.data().setBaseVersionName("");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().texts().at(0), R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))");
  EXPECT_EQ(rows(), Texts());
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CopyHasAnotherLabel_LoadsTheBaselineOnly) {
  beginWithRows();
  study.version("Steady Copy of Base")->setLabel("My copy");

  reload();

  EXPECT_EQ(rows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest,
       InitializeVariants_CopyFollowsAVersionWithAnotherLabel_LoadsTheBaselineOnly) {
  beginWithRows();
  study.addVersion("Other", "Base");
  study.addVersion("Copy of another", "Other")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  EntityModel::ChangeManager &manager = study.project().changeManager();
  manager.startNewAlternate(manager.findVersion("Copy of another", nullptr), nullptr, true, 0);
  study.data().setCopyVersionName("Copy of another");

  reload();

  EXPECT_EQ(rows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_NamedVersionFollowsNothing_LoadsTheBaselineOnly) {
  beginWithRows();
  study.data().setCopyVersionName("Base");

  reload();

  EXPECT_EQ(rows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_AlternateBearsTheLabelOfTheCopy_IsNoRow) {
  beginWithRows();
  study.version("A")->setLabel("Steady Copy of Base");

  reload();

  EXPECT_EQ(rows(), (Texts{"Base", "B"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_AlternateIsNoStudyCase_IsSkipped) {
  beginWithRows();
  study.version("A")->removeFromStudy();

  reload();

  EXPECT_EQ(rows(), (Texts{"Base", "B"}));
}

TEST_F(OptimizationDataLoadingTest,
       InitializeVariants_AsksWhetherTheAlternatesAreStudyCasesThroughTheirCopy) {
  beginWithRows();
  study.reopen();
  study.host().record("ModelVersion::isStudyCase");

  study.data().initializeVariants(nullptr);

  Texts asked = study.host().texts();
  asked.erase(
      std::remove_if(asked.begin(), asked.end(),
                     [](const std::string &text) { return text.find("isStudyCase") == std::string::npos; }),
      asked.end());
  EXPECT_EQ(asked, (Texts{
                       R"(ModelVersion::isStudyCase("A", throughAlternate=true, anyRelation=false))",
                       R"(ModelVersion::isStudyCase("B", throughAlternate=true, anyRelation=false))",
                   }));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CopyNameIsMissing_RecoversTheDefaultOne) {
  beginWithRows();
  study.data().setCopyVersionName("");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(-- ChangeManager::findVersion("Base", entity=null))",
          R"(-- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(-- EntityEditor::setValue(Study.CopyVersionName, "Steady Copy of Base", force=false, affected=null, notify=true, edited=true))",
          R"(-- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(-- ChangeManager::getAlternates("Steady Copy of Base"))",
          R"(-- ChangeManager::findVersion("Base", entity=null))",
      }));
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
  EXPECT_EQ(rows(), (Texts{"Base", "A", "B"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CopyNameIsMissingAndDefaultFollowsAnother_StaysEmpty) {
  study.makeEntity();
  study.addVersion("Other", "Base");
  study.addVersion("Steady Copy of Base", "Other");

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.data().getCopyVersionName(), "");
  EXPECT_EQ(rows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CopyNameIsMissingAndNoSuchVersion_StaysEmpty) {
  study.makeEntity();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.data().getCopyVersionName(), "");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_CopyNameIsStored_IsLeftAlone) {
  beginWithRows();
  study.data().setCopyVersionName("Gone");

  reload();

  EXPECT_EQ(study.data().getCopyVersionName(), "Gone");
  EXPECT_EQ(rows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_NewStudy_RecordsTheBaselineAndMakesTheCopy) {
  study.makeEntity();

  study.data().initializeVariants(true, nullptr);

  const Texts texts = study.host().textsWithState();
  ASSERT_GE(texts.size(), 6U);
  EXPECT_EQ(
      Texts(texts.begin(), texts.begin() + 6),
      (Texts{
          R"(-- ChangeManager::findVersion("Base", entity=null))",
          R"(-- ChangeManager::findVersion("", entity=null))",
          R"(-- ChangeManager::findVersion("Base", entity=null))",
          R"(-- EntityEditor::setValue(Study.BaseVersionName, "Base", force=false, affected=null, notify=true, edited=true))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
      }));
  EXPECT_EQ(rows(), (Texts{"Base"}));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
  EXPECT_EQ(study.currentLabel(), "Base");
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_NewStudyWithoutBaseName_RecordsTheCurrentVersion) {
  study.makeEntity();
  study.data().setBaseVersionName("");

  study.data().initializeVariants(true, nullptr);

  EXPECT_EQ(study.data().getBaseVersionName(), "Base");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
  EXPECT_EQ(rows(), Texts());
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_NewStudy_AdoptsNoEarlierCopy) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  EntityModel::ChangeManager &manager = study.project().changeManager();
  manager.startNewAlternate(manager.findVersion("Steady Copy of Base", nullptr), nullptr, true, 0);

  study.data().initializeVariants(true, nullptr);

  EXPECT_EQ(rows(), (Texts{"Base"}));
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 1");
}

TEST_F(OptimizationDataLoadingTest,
       InitializeVariants_NewStudyWithoutCurrentVersion_LoadsRowsAndRecordsNothing) {
  beginWithRows();
  study.show("");
  study.reopen();
  study.faults().fail("ChangeManager::setCurrentVersion", FaultKind::Refused);

  study.data().initializeVariants(true, nullptr);

  EXPECT_EQ(rows(), (Texts{"Base", "A", "B"}));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "A", "B"}));
  for (const std::string &text : study.host().texts()) {
    EXPECT_EQ(text.find("EntityEditor::setValue"), std::string::npos) << text;
  }
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_StoredStudy_MakesNoCopy) {
  beginWithRows();
  study.destroy("Steady Copy of Base");

  reload();

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "A", "B"}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_WithProgress_ReportsEachRow) {
  beginWithRows();
  study.reopen();
  RecordingProgress progress;

  study.data().initializeVariants(&progress);

  EXPECT_EQ(progress.texts(), (Texts{
                                  R"(start())",
                                  R"(start(0))",
                                  R"(setText("Initializing Steady Study"))",
                                  R"(pushLevel(0))",
                                  R"(setText("Initializing Steady Study : Base"))",
                                  R"(advance(1, none))",
                                  R"(setText("Initializing Steady Study : A"))",
                                  R"(advance(1, none))",
                                  R"(setText("Initializing Steady Study : B"))",
                              }));
  EXPECT_EQ(countsAtAdvance(progress), (std::vector<std::vector<std::uint32_t>>{{2}, {2}}));
  EXPECT_EQ(progress.stepCounts, (std::vector<std::uint32_t>{2}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_ProgressHasLevels_SetsTheInnermostCount) {
  beginWithRows();
  study.reopen();
  RecordingProgress progress;
  progress.stepCounts = {7, 9};

  study.data().initializeVariants(&progress);

  EXPECT_EQ(progress.stepCounts, (std::vector<std::uint32_t>{7, 2}));
  EXPECT_EQ(progress.calls().at(2).stepCounts, (std::vector<std::uint32_t>{7, 9}));
  EXPECT_EQ(progress.calls().at(3).text, R"(setText("Initializing Steady Study : Base"))");
  EXPECT_EQ(progress.calls().at(3).stepCounts, (std::vector<std::uint32_t>{7, 0}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_SkippedVersions_CountAsSteps) {
  beginWithRows();
  study.addRow("C", "13", "23");
  study.version("A")->removeFromStudy();
  study.version("B")->setLabel("Steady Copy of Base");
  study.reopen();
  RecordingProgress progress;

  study.data().initializeVariants(&progress);

  EXPECT_EQ(progress.actions(), (Texts{
                                    R"(start())",
                                    R"(start(0))",
                                    R"(setText("Initializing Steady Study"))",
                                    R"(pushLevel(0))",
                                    R"(setText("Initializing Steady Study : Base"))",
                                    R"(advance(1, none))",
                                    R"(advance(1, none))",
                                    R"(advance(1, none))",
                                    R"(setText("Initializing Steady Study : C"))",
                                }));
  EXPECT_EQ(countsAtAdvance(progress), (std::vector<std::vector<std::uint32_t>>{{3}, {3}, {3}}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_NoCandidates_EndsWithNoStepsAndNoAdvance) {
  study.makeEntity();
  study.data().setBaseVersionName("Nowhere");
  RecordingProgress progress;

  study.data().initializeVariants(&progress);

  EXPECT_EQ(progress.texts(), (Texts{
                                  R"(start())",
                                  R"(start(0))",
                                  R"(setText("Initializing Steady Study"))",
                                  R"(pushLevel(0))",
                              }));
  EXPECT_EQ(progress.stepCounts, (std::vector<std::uint32_t>{0}));
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_AnotherVersionIsCurrent_ReportsItsType) {
  beginWithRows();
  study.show("A");
  study.reopen();
  RecordingProgress progress;

  study.data().initializeVariants(&progress);

  EXPECT_EQ(progress.calls().at(2).text, R"(setText("Initializing Plain Study"))");
}

TEST_F(OptimizationDataLoadingTest, InitializeVariants_WithAndWithoutProgress_TheHostSeesTheSameCalls) {
  beginWithRows();
  study.show("A");
  study.reopen();
  RecordingProgress progress;
  study.data().initializeVariants(&progress);
  const Texts withProgress = study.host().textsWithState();
  const Texts rowsWithProgress = rows();
  study.show("A");
  study.reopen();

  study.data().initializeVariants(nullptr);

  EXPECT_EQ(study.host().textsWithState(), withProgress);
  EXPECT_EQ(rows(), rowsWithProgress);
}

} // namespace
} // namespace OptimizationTool
