#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
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

using HostTesting::FaultKind;
using HostTesting::RecordingProgress;
using StudyTesting::ListeningChecker;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;
using UpdateTypes = OptimizationData::UpdateTypes;

constexpr OptimizationData::UpdateType kWrite = OptimizationData::WriteToModel;
constexpr OptimizationData::UpdateType kRead = OptimizationData::ReadFromModel;

class OptimizationDataAlternatesTest : public ::testing::Test {
protected:
  // Rows "Base" (10, 20, 100, 50), "A" (11, 21, 100, 50) and "B" (12, 22, 100, 50).
  OptimizationDataAlternatesTest() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  OptimizationData &data() { return study.data(); }

  // The recorded calls of one operation.
  Texts calls(const std::string &operation) {
    Texts result;
    for (const std::string &text : study.host().texts()) {
      if (text.rfind(operation + "(", 0) == 0) {
        result.push_back(text);
      }
    }
    return result;
  }

  // Labels of the versions whose rows were updated, in order.
  Texts updatedRows() {
    Texts result;
    for (const std::string &text : calls("ModelVersion::setLabel")) {
      const std::size_t begin = text.find('"') + 1;
      result.push_back(text.substr(begin, text.find('"', begin) - begin));
    }
    return result;
  }

  RecordedStudy study;
};

TEST_F(OptimizationDataAlternatesTest, UpdateTypes_AreTheFlagsOneAndTwo) {
  EXPECT_EQ(static_cast<int>(UpdateTypes(kWrite)), 1);
  EXPECT_EQ(static_cast<int>(UpdateTypes(kRead)), 2);
  EXPECT_EQ(static_cast<int>(kWrite | kRead), 3);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternate_BothFlags_CallsInOrder) {
  data().updateAlternate(kWrite | kRead, 1);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("A", entity=null))",
          R"(E- ChangeManager::setCurrentVersion("A", null, force=false, progress=null, load=true))",
          R"(E- ModelVersion::setLabel("A", "A"))",
          R"(E- EntityEditor::setValue(Fan.Speed, "11", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Pump.Speed, "11", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Angle, "21", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Power, "100", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Noise, "50", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
      }));
  EXPECT_FALSE(data().isEditingVersions());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_AllRows_SwitchesFromRowToRowAndBackAtTheEndOnly) {
  data().updateAlternates(kRead, nullptr);

  EXPECT_EQ(study.host().textsWithState(),
            (Texts{
                R"(E- ChangeManager::findVersion("Base", entity=null))",
                R"(E- ModelVersion::setLabel("Base", "Base"))",
                R"(E- EntityManager::setNeedsSave(true))",
                R"(E- ChangeManager::findVersion("A", entity=null))",
                R"(E- ChangeManager::setCurrentVersion("A", null, force=false, progress=null, load=true))",
                R"(E- ModelVersion::setLabel("A", "A"))",
                R"(E- EntityManager::setNeedsSave(true))",
                R"(E- ChangeManager::findVersion("B", entity=null))",
                R"(E- ChangeManager::setCurrentVersion("B", null, force=false, progress=null, load=true))",
                R"(E- ModelVersion::setLabel("B", "B"))",
                R"(E- EntityManager::setNeedsSave(true))",
                R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
            }));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_HostThatNotifies_DoesSoWithTheEditingFlagSet) {
  data().updateAlternates(kRead, nullptr);

  int notifications = 0;
  for (const HostTesting::RecordedCall &call : study.host().calls()) {
    if (call.operation == "ObserverManager::broadcastChangedVersion") {
      ++notifications;
      EXPECT_TRUE(call.isByHost);
      EXPECT_TRUE(call.state.isEditing);
    }
  }
  EXPECT_EQ(notifications, 3);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_SilentHost_MakesTheSameCalls) {
  EmbeddedHost::HostBehaviour behaviour;
  behaviour.switchesNotify = false;
  RecordedStudy other(behaviour);
  other.begin();
  other.addRow("A", "11", "21");

  other.data().updateAlternates(kRead, nullptr);

  EXPECT_EQ(other.host().textsWithState(),
            (Texts{
                R"(E- ChangeManager::findVersion("Base", entity=null))",
                R"(E- ModelVersion::setLabel("Base", "Base"))",
                R"(E- EntityManager::setNeedsSave(true))",
                R"(E- ChangeManager::findVersion("A", entity=null))",
                R"(E- ChangeManager::setCurrentVersion("A", null, force=false, progress=null, load=true))",
                R"(E- ModelVersion::setLabel("A", "A"))",
                R"(E- EntityManager::setNeedsSave(true))",
                R"(E- ChangeManager::setCurrentVersion("Base", null, force=false, progress=null, load=true))",
            }));
  EXPECT_EQ(other.currentLabel(), "Base");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_AnotherVersionWasCurrent_ComesBackToIt) {
  study.show("B");
  study.host().clear();

  data().updateAlternate(kRead, 1);

  EXPECT_EQ(study.currentLabel(), "B");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_ByName_TakesTheOrderGivenAndSkipsUnknownNames) {
  data().updateAlternates(kRead, {"B", "Nobody", "Base"}, nullptr);

  EXPECT_EQ(updatedRows(), (Texts{"B", "Base"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_ByNamesInAVector_DoesTheSame) {
  const std::vector<std::string> names = {"A", "a"};

  data().updateAlternates(kRead, names, nullptr);

  EXPECT_EQ(updatedRows(), (Texts{"A"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_ByIndex_TakesTheOrderGivenAndSkipsOthers) {
  const std::vector<std::size_t> rows = {2, 3, 0};

  data().updateAlternates(kRead, rows, nullptr);

  EXPECT_EQ(updatedRows(), (Texts{"B", "Base"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_RowNamedTwice_IsUpdatedTwice) {
  data().updateAlternates(kRead, {"A", "A"}, nullptr);
  EXPECT_EQ(updatedRows(), (Texts{"A", "A"}));
  study.host().clear();

  data().updateAlternates(kRead, {std::size_t{1}, std::size_t{1}}, nullptr);
  EXPECT_EQ(updatedRows(), (Texts{"A", "A"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_IntegerLiterals_AreIndices) {
  data().updateAlternates(kRead, {1, 1}, nullptr);
  EXPECT_EQ(updatedRows(), (Texts{"A", "A"}));
  study.host().clear();

  data().updateAlternates(kRead, {0, 0}, nullptr);
  EXPECT_EQ(updatedRows(), (Texts{"Base", "Base"}));
  study.host().clear();

  data().updateAlternates(kRead, {-1, 2, 3}, nullptr);
  EXPECT_EQ(updatedRows(), (Texts{"B"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_EmptyBraces_AreAListWithoutRows) {
  RecordingProgress progress;

  data().updateAlternates(kWrite | kRead, {}, &progress);

  EXPECT_EQ(progress.texts(), (Texts{"isRunning()", "isRunning()"}));
  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternate_ByName_UpdatesOneRow) {
  data().updateAlternate(kRead, "B");

  EXPECT_EQ(updatedRows(), (Texts{"B"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternate_LiteralZero_IsTheBaseline) {
  data().updateAlternate(kRead, 0);

  EXPECT_EQ(updatedRows(), (Texts{"Base"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternate_NoSuchRow_DoesNothing) {
  data().updateAlternate(kWrite | kRead, "Nobody");
  data().updateAlternate(kWrite | kRead, 3);

  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_FlagOneAndAllRows_RewritesTheBaselineToo) {
  study.setValueIn("Base", study.fan(), "Speed", "99");
  study.setValueIn("B", study.fan(), "Angle", "99");

  data().updateAlternates(kWrite, nullptr);

  EXPECT_EQ(study.valueIn("Base", study.fan(), "Speed"), "10");
  EXPECT_EQ(study.valueIn("B", study.fan(), "Angle"), "22");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_FlagOne_WritesOutputCellsOverFreshResults) {
  study.setValueIn("A", study.fan(), "Power", "333");

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(study.valueIn("A", study.fan(), "Power"), "100");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_FlagOne_NeitherReadsOutputsNorPrices) {
  data().setCostFunction("%Fan.Power%");
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  checker.action = [this](EntityModel::ChangeSet &) {
    study.project().setValue(study.host().original(study.fan()), "Power", "333");
  };

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
  EXPECT_EQ(data().getVariantCost(1), std::optional<double>(100.0));
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_FlagOne_LeavesTheCostAsItIs) {
  data().setCostFunction("%Fan.Power%");
  data().clearCosts(1);

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(data().getVariantCost(1), std::nullopt);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_FlagTwo_ReadsOutputsAndPricesAndWritesNothing) {
  data().setCostFunction("%Fan.Speed% + %Fan.Power%");
  ListeningChecker checker;
  int checks = 0;
  study.project().setModelChecker(&checker);
  checker.action = [&checks](EntityModel::ChangeSet &) {
    ++checks;
  };
  study.setValueIn("A", study.fan(), "Speed", "99");
  study.setValueIn("A", study.fan(), "Power", "333");
  study.host().clear();

  data().updateAlternate(kRead, 1);

  EXPECT_EQ(calls("EntityEditor::setValue"), Texts());
  EXPECT_EQ(checks, 0);
  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "333", "50"}));
  EXPECT_EQ(data().getVariantCost(1), std::optional<double>(344.0));
  EXPECT_EQ(study.valueIn("A", study.fan(), "Speed"), "99");
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_NoFlag_VisitsTheRowsOnly) {
  study.setValueIn("A", study.fan(), "Power", "333");
  study.host().clear();

  data().updateAlternate(UpdateTypes(), 1);

  EXPECT_EQ(calls("EntityEditor::setValue"), Texts());
  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
  EXPECT_EQ(calls("EntityManager::setNeedsSave"), (Texts{"EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_OutputGroupOfTwo_TakesItsFirstVariable) {
  data().getGroup(false, 0).appendVariable(study.attribute(study.pump(), "Power"));
  study.setValueIn("A", study.fan(), "Power", "333");
  study.setValueIn("A", study.pump(), "Power", "444");

  data().updateAlternate(kRead, 1);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "333", "50"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_OutputIsUnset_UnsetsTheCellAndClearsTheCost) {
  data().setCostFunction("%Fan.Power%");
  study.setValueIn("A", study.fan(), "Power", "");

  data().updateAlternate(kRead, 1);

  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "", "50"}));
  EXPECT_FALSE(data().getVariantGroup(false, 1, 0)->hasValue());
  EXPECT_EQ(data().getVariantCost(1), std::nullopt);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_UnsetOutputCell_IsWrittenAsNoValue) {
  study.setValueIn("A", study.fan(), "Power", "");
  data().updateAlternate(kRead, 1);
  study.setValueIn("A", study.fan(), "Power", "333");

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(study.valueIn("A", study.fan(), "Power"), "");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_CellIsMissing_ItsGroupIsNotWritten) {
  ASSERT_TRUE(data().getGroups(true).appendGroup());
  data().getGroup(true, 2).appendVariable(study.attribute(study.pump(), "Angle"));
  study.host().clear();

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(
      calls("EntityEditor::setValue"),
      (Texts{
          R"(EntityEditor::setValue(Fan.Speed, "11", force=false, affected=null, notify=true, edited=true))",
          R"(EntityEditor::setValue(Pump.Speed, "11", force=false, affected=null, notify=true, edited=true))",
          R"(EntityEditor::setValue(Fan.Angle, "21", force=false, affected=null, notify=true, edited=true))",
          R"(EntityEditor::setValue(Fan.Power, "100", force=false, affected=null, notify=true, edited=true))",
          R"(EntityEditor::setValue(Fan.Noise, "50", force=false, affected=null, notify=true, edited=true))",
      }));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_VariableIsMissingInTheVersion_IsSkipped) {
  ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(study.pump(), false, true));
  study.host().clear();

  data().updateAlternate(kWrite | kRead, 1);

  EXPECT_EQ(calls("EntityEditor::setValue").size(), 4U);
  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "100", "50"}));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_SomethingWasWritten_ChecksInputsThenOutputs) {
  ListeningChecker checker;
  study.project().setModelChecker(&checker);

  data().updateAlternate(kWrite | kRead, 1);

  const Texts texts = study.host().textsWithState();
  const auto check = std::find_if(texts.begin(), texts.end(), [](const std::string &text) {
    return text.find("ModelChecker::check") != std::string::npos;
  });
  ASSERT_NE(check, texts.end());
  EXPECT_EQ(*check,
            "E- ModelChecker::check(changes[Fan.Speed, Fan.Angle, Fan.Power, Fan.Noise, Pump.Speed])");
  EXPECT_EQ(
      *(check - 1),
      R"(E- EntityEditor::setValue(Fan.Noise, "50", force=false, affected=null, notify=true, edited=true))");
  EXPECT_EQ(*(check + 1), "E- EntityManager::setNeedsSave(true)");
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_OnlyOutputsWereWritten_ChecksToo) {
  ASSERT_TRUE(data().getGroups(true).remove(0));
  ASSERT_TRUE(data().getGroups(true).remove(0));
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  study.host().clear();

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(calls("ModelChecker::check"), (Texts{"ModelChecker::check(changes[Fan.Power, Fan.Noise])"}));
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_NothingWasWritten_ChecksNothing) {
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  for (const bool isInput : {true, false}) {
    ASSERT_TRUE(data().getGroups(isInput).remove(0));
    ASSERT_TRUE(data().getGroups(isInput).remove(0));
  }
  study.host().clear();

  data().updateAlternate(kWrite, 1);

  EXPECT_EQ(calls("ModelChecker::check"), Texts());
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_CheckRecomputesAnOutput_ItIsReadBackAfterwards) {
  data().setCostFunction("%Fan.Power%");
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  std::string current;
  checker.action = [this, &current](EntityModel::ChangeSet &) {
    current = study.currentLabel();
    study.project().setValue(study.host().original(study.fan()), "Power", "333");
  };

  data().updateAlternate(kWrite | kRead, 1);

  EXPECT_EQ(current, "A");
  EXPECT_EQ(study.cells(1), (Texts{"11", "21", "333", "50"}));
  EXPECT_EQ(data().getVariantCost(1), std::optional<double>(333.0));
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_VersionsAreMissing_MarksTheProjectOncePerRow) {
  study.destroy("A");
  study.destroy("B");
  study.host().clear();

  data().updateAlternates(kWrite | kRead, {"A", "B"}, nullptr);

  EXPECT_EQ(study.host().textsWithState(), (Texts{
                                               R"(E- ChangeManager::findVersion("A", entity=null))",
                                               R"(E- EntityManager::setNeedsSave(true))",
                                               R"(E- ChangeManager::findVersion("B", entity=null))",
                                               R"(E- EntityManager::setNeedsSave(true))",
                                           }));
  EXPECT_EQ(study.currentLabel(), "Base");
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_PricingThrows_LeavesThePassWithoutSwitchingBack) {
  data().setCostFunction("%Fan.Power%");
  data().addGroup(true, study.attribute(study.pump(), "Angle"));
  study.host().clear();

  std::string thrown;
  try {
    data().updateAlternates(kRead, {"A", "B"}, nullptr);
  } catch (const std::out_of_range &error) {
    thrown = error.what();
  }

  EXPECT_EQ(thrown, "Variable does not exist");
  EXPECT_EQ(study.currentLabel(), "A");
  EXPECT_EQ(updatedRows(), (Texts{"A"}));
  EXPECT_EQ(calls("EntityManager::setNeedsSave"), Texts());
  EXPECT_EQ(data().getVariantCost(1), std::optional<double>(100.0));
  EXPECT_FALSE(data().isEditingVersions());
  EXPECT_FALSE(data().isEditingOperationRunning());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_WritingThrows_LeavesThePassWithoutSwitchingBack) {
  study.faults().fail("EntityEditor::setValue", FaultKind::Throws, 2);

  EXPECT_THROW(data().updateAlternate(kWrite, 1), std::runtime_error);

  EXPECT_EQ(study.currentLabel(), "A");
  EXPECT_FALSE(data().isEditingVersions());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_WithProgress_PositionTrailsByOneStep) {
  RecordingProgress progress;

  data().updateAlternates(kRead, &progress);

  EXPECT_EQ(progress.texts(), (Texts{
                                  R"(isRunning())",
                                  R"(reset())",
                                  R"(setText("Updating Alternates from Matrix"))",
                                  R"(setNumberOfSteps(3))",
                                  R"(setPosition(0))",
                                  R"(setText("Updating Alternates from Matrix <Base>"))",
                                  R"(setPosition(0))",
                                  R"(setText("Updating Alternates from Matrix <A>"))",
                                  R"(setPosition(1))",
                                  R"(setText("Updating Alternates from Matrix <B>"))",
                                  R"(setPosition(2))",
                                  R"(isRunning())",
                              }));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_WithProgress_CountsTheRowsFound) {
  RecordingProgress progress;

  data().updateAlternates(kRead, {"B", "Nobody", "B"}, &progress);

  EXPECT_EQ(progress.actions(), (Texts{
                                    R"(reset())",
                                    R"(setText("Updating Alternates from Matrix"))",
                                    R"(setNumberOfSteps(2))",
                                    R"(setPosition(0))",
                                    R"(setText("Updating Alternates from Matrix <B>"))",
                                    R"(setPosition(0))",
                                    R"(setText("Updating Alternates from Matrix <B>"))",
                                    R"(setPosition(1))",
                                }));
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_NoRowIsFound_OpensTheProgressScopeOnly) {
  RecordingProgress progress;

  data().updateAlternates(kRead, std::vector<std::string>{"Nobody"}, &progress);

  EXPECT_EQ(progress.texts(), (Texts{"isRunning()", "isRunning()"}));
  EXPECT_EQ(study.host().texts(), Texts());
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_TaskBegunMeanwhile_IsFinished) {
  RecordingProgress progress;
  ListeningChecker checker;
  study.project().setModelChecker(&checker);
  checker.action = [&progress](EntityModel::ChangeSet &) {
    progress.start();
  };

  data().updateAlternates(kWrite, {"A"}, &progress);

  EXPECT_EQ(progress.texts().back(), "finish()");
  study.project().setModelChecker(nullptr);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_TaskOfTheCaller_IsLeftAlone) {
  RecordingProgress progress;
  progress.start();

  data().updateAlternates(kRead, {"A"}, &progress);

  const Texts texts = progress.texts();
  EXPECT_EQ(std::count(texts.begin(), texts.end(), "finish()"), 0);
}

TEST_F(OptimizationDataAlternatesTest, UpdateAlternates_WithAndWithoutProgress_TheHostSeesTheSameCalls) {
  RecordingProgress progress;
  data().updateAlternates(kWrite | kRead, &progress);
  const Texts withProgress = study.host().textsWithState();
  study.host().clear();

  data().updateAlternates(kWrite | kRead, nullptr);

  EXPECT_EQ(study.host().textsWithState(), withProgress);
}

} // namespace
} // namespace OptimizationTool
