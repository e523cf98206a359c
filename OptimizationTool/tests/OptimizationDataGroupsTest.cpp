#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <algorithm>
#include <functional>

namespace {

using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using HostTesting::FaultKind;
using HostTesting::FaultyHost;
using HostTesting::RecordingHost;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroupVariable;
using StudyTesting::kNoCell;
using StudyTesting::thrownBy;
using Strings = std::vector<std::string>;
using Groups = std::vector<Strings>;
using Values = std::vector<double>;

const std::string kSave = "EntityManager::setNeedsSave(true)";

class OptimizationDataGroupsTest : public StudyTesting::StudyDataFixture {
protected:
  RecordingHost &recordStudy() {
    RecordingHost &recording = record();
    recording.setAlias(studyEntity(), "Study");
    return recording;
  }
  /// Takes a group out of the list, as a host may do, so that its cells become surplus.
  void deleteGroupBehindTheMatrix(bool isInput, int group) {
    EntityEditor::deleteEntity(data().getGroup(isInput, group).get(), false, true);
  }
};

const Groups kInputs = {{"FanA.Speed"}, {"FanA.Blades"}, {"FanB.Ratio"}};
const Groups kOutputs = {{"FanA.Power"}, {"FanA.Noise"}};

TEST_F(OptimizationDataGroupsTest, AddGroup_AppendsAnUnnamedGroupWithTheVariable) {
  beginWithRows();
  EXPECT_EQ(data().addGroup(true, attribute("FanB.Blades")), 3);
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanA.Blades"}, {"FanB.Ratio"}, {"FanB.Blades"}}));
  EXPECT_EQ(data().getGroup(true, 3).getName(), "");
  EXPECT_EQ(data().getVariable(true, 3).getOwnerEntity(), fan("FanB"));
  EXPECT_EQ(data().getVariable(true, 3).getAttributePath(), AttributePath("Blades"));
  EXPECT_EQ(groups(false), kOutputs);
}

TEST_F(OptimizationDataGroupsTest, AddGroup_OnTheOutputSide_AppendsThere) {
  beginWithRows();
  EXPECT_EQ(data().addGroup(false, attribute("FanB.Noise")), 2);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(groups(false), Groups({{"FanA.Power"}, {"FanA.Noise"}, {"FanB.Noise"}}));
  EXPECT_EQ(column(false, 2), Strings({"", "", ""}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_GivesEveryRowTheValueOfTheCurrentVersion) {
  beginWithRows();
  setIn("Base", "FanB.Blades", "8");
  setIn("Row 1", "FanB.Blades", "9");
  addInput("FanB.Blades");
  EXPECT_EQ(row(true, 0), Strings({"10 m/s", "5", "1", "8"}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2", "8"}));
  EXPECT_EQ(row(true, 2), Strings({"30 m/s", "7", "3", "8"}));
  EXPECT_NE(data().getVariantGroup(true, 0, 3), data().getVariantGroup(true, 1, 3));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_NullAttribute_ChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  EXPECT_EQ(data().addGroup(true, nullptr), -1);
  EXPECT_EQ(data().addGroup(false, nullptr), -1);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, AddGroup_EntityItself_BecomesTheEntityWithTheEmptyPath) {
  begin();
  EXPECT_EQ(data().addGroup(true, fan("FanB")), 0);
  EXPECT_EQ(data().getVariable(true, 0).getOwnerEntity(), fan("FanB"));
  EXPECT_TRUE(data().getVariable(true, 0).getAttributePath().empty());
  EXPECT_EQ(data().getVariable(true, 0).getAttribute(), fan("FanB"));
  EXPECT_EQ(column(true, 0), Strings({"FanB"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_EntityAndPath_AddsThatAttribute) {
  beginWithRows();
  EXPECT_EQ(data().addGroup(true, fan("FanB"), AttributePath("Blades")), 3);
  EXPECT_EQ(data().getGroup(true, 3).getAttribute(0), attribute("FanB.Blades"));
  EXPECT_EQ(column(true, 3), Strings({"5", "5", "5"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_PathThatFindsNothing_AddsEmptyCells) {
  beginWithRows();
  EXPECT_EQ(data().addGroup(true, fan("FanB"), AttributePath("Nothing")), 3);
  addInput("FanB.Blades");
  EXPECT_EQ(data().getGroup(true, 3).size(), 1);
  EXPECT_EQ(column(true, 3), Strings({kNoCell, kNoCell, kNoCell}));
  EXPECT_EQ(column(true, 4), Strings({"5", "5", "5"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_DoesNotLookForDuplicates) {
  beginWithRows();
  EXPECT_EQ(addInput("FanA.Speed"), 3);
  EXPECT_EQ(data().getNumInputs(), 4);
}

TEST_F(OptimizationDataGroupsTest, AddGroup_CreatesGroupAndVariableAndMarksTheProject) {
  begin();
  const RecordingHost &recording = recordStudy();
  data().addGroup(true, attribute("FanA.Speed"));
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::createEntity(OptimizationGroup, Study.OptimizationInputs, library=null, "
                     "setDefaults=true, notify=true, select=false, \"\", position=-1)",
                     "EntityEditor::createEntity(OptimizationAttribute, "
                     "Study.OptimizationInputs[0].OptimizationAttributes, library=null, setDefaults=true, "
                     "notify=true, select=false, \"\", position=-1)",
                     "EntityEditor::addEntity(Study.OptimizationInputs[0].OptimizationAttributes[0]."
                     "ParentEntity, FanA, takeOwnership=false, checkType=true, notify=true, edited=true, "
                     "select=false, position=-1)",
                     "EntityEditor::setValueNoThrow(Study.OptimizationInputs[0].OptimizationAttributes[0]."
                     "Path, \"Speed\", force=false, affected=null, notify=true)",
                     kSave}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_WithoutStudyEntity_IsRefused) {
  OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(study.addGroup(true, attribute("FanA.Speed")), -1);
  EXPECT_EQ(study.addGroup(true, fan("FanA"), AttributePath("Speed")), -1);
}

TEST_F(OptimizationDataGroupsTest, AddGroup_RefusedByTheHost_AddsNoCell) {
  beginWithRows();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::createEntity", FaultKind::Null, 1);
  EXPECT_EQ(addInput("FanB.Blades"), -1);
  EXPECT_EQ(data().getNumInputs(), 3);
  EXPECT_EQ(data().variantStandardVal(true, 3), Values({0, 0, 0}));
  // The next group gets the next cell: no cell was left behind.
  EXPECT_EQ(addInput("FanB.Speed"), 3);
  EXPECT_EQ(column(true, 3), Strings({"10 m/s", "10 m/s", "10 m/s"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroup_VariableRefusedByTheHost_AddsEmptyCells) {
  beginWithRows();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::createEntity", FaultKind::Null, 2);
  EXPECT_EQ(addInput("FanB.Blades"), 3);
  EXPECT_EQ(data().getGroup(true, 3).size(), 0);
  EXPECT_EQ(addInput("FanB.Speed"), 4);
  EXPECT_EQ(column(true, 3), Strings({kNoCell, kNoCell, kNoCell}));
  EXPECT_EQ(column(true, 4), Strings({"10 m/s", "10 m/s", "10 m/s"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_CopiesTheColumnIntoAGroupWithoutVariables) {
  beginWithRows();
  EXPECT_EQ(data().addGroupFromGroup(true, 0), 3);
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanA.Blades"}, {"FanB.Ratio"}, {}}));
  EXPECT_EQ(data().getGroup(true, 3).getName(), "");
  EXPECT_EQ(column(true, 3), Strings({"10 m/s", "20 m/s", "30 m/s"}));
  EXPECT_EQ(column(true, 0), Strings({"10 m/s", "20 m/s", "30 m/s"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_MakesCellsOfTheirOwn) {
  beginWithRows();
  data().addGroupFromGroup(true, 0);
  data().setVariantValue(1, 0, "21");
  EXPECT_EQ(column(true, 0), Strings({"10 m/s", "21 m/s", "30 m/s"}));
  EXPECT_EQ(column(true, 3), Strings({"10 m/s", "20 m/s", "30 m/s"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_OnTheOutputSide_CopiesOutputs) {
  beginWithRows();
  setIn("Row 2", "FanA.Noise", "4");
  data().updateAlternate(OptimizationData::ReadFromModel, "Row 2");
  EXPECT_EQ(data().addGroupFromGroup(false, 1), 2);
  EXPECT_EQ(column(false, 2), Strings({"", "", "4"}));
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_SourceWithoutCells_GivesEmptyCells) {
  beginWithRows();
  data().addGroup(true, fan("FanA"), AttributePath("Nothing"));
  EXPECT_EQ(data().addGroupFromGroup(true, 3), 4);
  EXPECT_EQ(data().addGroupFromGroup(true, 99), 5);
  EXPECT_EQ(data().addGroupFromGroup(true, -1), 6);
  EXPECT_EQ(addInput("FanB.Blades"), 7);
  const Strings empty = {kNoCell, kNoCell, kNoCell};
  EXPECT_EQ(column(true, 4), empty);
  EXPECT_EQ(column(true, 5), empty);
  EXPECT_EQ(column(true, 6), empty);
  EXPECT_EQ(column(true, 7), Strings({"5", "5", "5"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_RefusedByTheHost_AddsNoCell) {
  beginWithRows();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::createEntity", FaultKind::Null, 1);
  EXPECT_EQ(data().addGroupFromGroup(true, 0), -1);
  EXPECT_EQ(data().variantStandardVal(true, 3), Values({0, 0, 0}));
  EXPECT_EQ(addInput("FanB.Blades"), 3);
  EXPECT_EQ(column(true, 3), Strings({"5", "5", "5"}));
}

TEST_F(OptimizationDataGroupsTest, AddGroupFromGroup_MarksTheProject) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().addGroupFromGroup(true, 0);
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::createEntity(OptimizationGroup, Study.OptimizationInputs, library=null, "
                     "setDefaults=true, notify=true, select=false, \"\", position=-1)",
                     kSave}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_RemovesGroupAndColumn) {
  beginWithRows();
  data().removeGroup(true, 1);
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 0), Strings({"10 m/s", "1"}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "2"}));
  EXPECT_EQ(row(true, 2), Strings({"30 m/s", "3"}));
  EXPECT_EQ(data().variantStandardVal(true, 2), Values({0, 0, 0}));
  EXPECT_EQ(groups(false), kOutputs);
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_OnTheOutputSide_RemovesThereOnly) {
  beginWithRows();
  setIn("Row 1", "FanA.Noise", "4");
  data().updateAlternate(OptimizationData::ReadFromModel, "Row 1");
  data().removeGroup(false, 0);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
  EXPECT_EQ(groups(false), Groups({{"FanA.Noise"}}));
  EXPECT_EQ(column(false, 0), Strings({"", "4", ""}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_DeletesTheEntityAndMarksTheProject) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeGroup(true, 1);
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::deleteEntity(Study.OptimizationInputs[1], force=false, "
                     "notify=true)",
                     kSave}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_RefusedByTheHost_RemovesTheColumnAllTheSame) {
  beginWithRows();
  FaultyHost &faulty = injectFaults();
  faulty.fail("EntityEditor::deleteEntity", FaultKind::Refused, 1);
  data().removeGroup(true, 0);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"6", "2", kNoCell}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_IndexEqualToCount_LeavesModelAndMatrixUnchanged) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeGroup(true, 3);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
  data().removeGroup(false, 2);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(false), kOutputs);
  EXPECT_EQ(row(false, 1), Strings({"", ""}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_IndexEqualToCount_RemovesASurplusCell) {
  beginWithRows();
  deleteGroupBehindTheMatrix(true, 2);
  ASSERT_EQ(data().variantStandardVal(true, 2), Values({1, 2, 3}));
  data().removeGroup(true, 2);
  EXPECT_EQ(data().getNumInputs(), 2);
  EXPECT_EQ(data().variantStandardVal(true, 2), Values({0, 0, 0}));
  EXPECT_EQ(data().variantStandardVal(true, 1), Values({5, 6, 7}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_NegativeIndex_ChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeGroup(true, -1);
  data().removeGroup(false, -1);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
  EXPECT_EQ(row(false, 1), Strings({"", ""}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_IndexAboveCount_ThrowsAndChangesNothing) {
  beginWithRows();
  const std::string error = "std::out_of_range: OptimizationData::removeGroup: Group index out of range";
  const RecordingHost &recording = recordStudy();
  EXPECT_EQ(thrownBy([this] { data().removeGroup(true, 4); }), error);
  EXPECT_EQ(thrownBy([this] { data().removeGroup(false, 3); }), error);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveGroup_WithoutStudyEntity_ThrowsFromOneOn) {
  OptimizationData study(nullptr, nullptr);
  EXPECT_EQ(thrownBy([&] { study.removeGroup(true, 0); }), "nothing");
  EXPECT_EQ(thrownBy([&] { study.removeGroup(true, 1); }),
            "std::out_of_range: OptimizationData::removeGroup: Group index out of range");
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_LeavesAGroupThatHasVariables) {
  beginWithRows();
  addVariable(true, 1, "FanB.Blades");
  addVariable(true, 1, "Load");
  data().removeFromGroup(true, attribute("FanB.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanA.Blades", "Load"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_OfTheLastVariable_RemovesGroupAndColumn) {
  beginWithRows();
  data().removeFromGroup(true, attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 2), Strings({"30 m/s", "3"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_RemovesTheFirstOfEqualVariables) {
  beginWithRows();
  addVariable(true, 1, "FanB.Blades");
  addVariable(true, 1, "FanA.Blades");
  data().removeFromGroup(true, attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Blades", "FanA.Blades"}, {"FanB.Ratio"}}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_TakesTheFirstGroupThatContainsIt) {
  beginWithRows();
  addInput("FanA.Blades");
  data().removeFromGroup(true, attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}, {"FanA.Blades"}}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_OnTheOutputSide_RemovesAnOutput) {
  beginWithRows();
  data().removeFromGroup(false, attribute("FanA.Power"));
  EXPECT_EQ(groups(false), Groups({{"FanA.Noise"}}));
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(false, 1), Strings({""}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_DeletesVariableThenGroup) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeFromGroup(true, attribute("FanA.Blades"));
  Strings calls = recording.texts();
  calls.erase(std::remove(calls.begin(), calls.end(), kSave), calls.end());
  EXPECT_EQ(calls,
            Strings({"EntityEditor::deleteEntity(Study.OptimizationInputs[1].OptimizationAttributes[0], "
                     "force=false, notify=true)",
                     "EntityEditor::deleteEntity(Study.OptimizationInputs[1], force=false, "
                     "notify=true)"}));
  EXPECT_EQ(recording.texts().back(), kSave);
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroup_WhatIsNotThere_ChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeFromGroup(true, attribute("FanA.Noise"));
  data().removeFromGroup(false, attribute("FanA.Blades"));
  data().removeFromGroup(true, nullptr);
  data().removeFromGroup(true, attribute("FanA.Note"));
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(groups(false), kOutputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroupWithoutSide_RemovesAnInput) {
  beginWithRows();
  data().removeFromGroup(attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 2), Strings({"30 m/s", "3"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroupWithoutSide_LeavesAnOutputInPlace) {
  beginWithRows();
  data().removeFromGroup(attribute("FanA.Noise"));
  EXPECT_EQ(groups(false), kOutputs);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(false, 1), Strings({"", ""}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroupWithoutSide_OfAnInputAndOutput_LeavesTheOutput) {
  beginWithRows();
  addOutput("FanA.Blades");
  data().removeFromGroup(attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(groups(false), Groups({{"FanA.Power"}, {"FanA.Noise"}, {"FanA.Blades"}}));
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroupWithoutSide_OfAnOutputToo_RemovesTwoInputs) {
  beginWithRows();
  addInput("FanA.Blades");
  addInput("FanA.Blades");
  addOutput("FanA.Blades");
  data().removeFromGroup(attribute("FanA.Blades"));
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed"}, {"FanB.Ratio"}, {"FanA.Blades"}}));
  EXPECT_EQ(data().getNumOutputs(), 3);
}

TEST_F(OptimizationDataGroupsTest, RemoveFromGroupWithoutSide_Null_ChangesNothing) {
  beginWithRows();
  data().removeFromGroup(nullptr);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(groups(false), kOutputs);
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_LeavesAGroupThatHasVariables) {
  beginWithRows();
  addVariable(true, 0, "FanB.Speed");
  data().removeAttributeFromGroup(true, 0);
  EXPECT_EQ(groups(true), Groups({{"FanB.Speed"}, {"FanA.Blades"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_OfTheLastVariable_RemovesGroupAndColumn) {
  beginWithRows();
  addVariable(true, 0, "FanB.Speed");
  data().removeAttributeFromGroup(true, 2);
  EXPECT_EQ(groups(true), Groups({{"FanA.Speed", "FanB.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_OnTheOutputSide_RemovesAnOutput) {
  beginWithRows();
  data().removeAttributeFromGroup(false, 1);
  EXPECT_EQ(groups(false), Groups({{"FanA.Power"}}));
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_DeletesTheVariable) {
  beginWithRows();
  addVariable(true, 0, "FanB.Speed");
  const RecordingHost &recording = recordStudy();
  data().removeAttributeFromGroup(true, 1);
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::deleteEntity(Study.OptimizationInputs[0].OptimizationAttributes[1], "
                     "force=false, notify=true)",
                     kSave}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_PastTheLast_ChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().removeAttributeFromGroup(true, 3);
  data().removeAttributeFromGroup(false, 2);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(groups(false), kOutputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_NegativeIndex_SparesAFirstGroupThatHasVariables) {
  beginWithRows();
  data().removeAttributeFromGroup(true, -1);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_NegativeIndex_RemovesAFirstGroupWithoutVariables) {
  beginWithRows();
  EntityEditor::deleteEntity(data().getVariable(true, 0).get(), false, true);
  ASSERT_EQ(data().getGroup(true, 0).size(), 0);
  data().removeAttributeFromGroup(true, -1);
  EXPECT_EQ(groups(true), Groups({{"FanA.Blades"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 1), Strings({"6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, RemoveAttribute_EmptyGroupThatNoListHolds_RemovesNoCell) {
  const auto empty = StudyTesting::makeScriptedGroup({});
  const auto variable = StudyTesting::makeScriptedVariable(fan("FanA"), "Blades");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::BaseVersionName_t),
             std::make_unique<StudyTesting::ScriptedAttribute>("Base"));
  entity.add(AttributePath(EntityModel::OptimizationInputs_t),
             std::make_unique<StudyTesting::ScriptedList>(
                 std::vector<EntityModel::Entity *>{empty.get(), group.get()}));
  OptimizationData study(&entity, nullptr);
  study.initializeVariants(nullptr);
  ASSERT_EQ(study.variantStandardVal(true, 0), Values({5}));
  study.removeAttributeFromGroup(true, -1);
  EXPECT_EQ(study.variantStandardVal(true, 0), Values({5}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_TheOnlyVariable_RemovesTheSourceGroupAndItsColumn) {
  beginWithRows();
  data().moveAttribute(true, 0, 0, 2);
  EXPECT_EQ(groups(true), Groups({{"FanA.Blades"}, {"FanB.Ratio", "FanA.Speed"}}));
  EXPECT_EQ(column(true, 0), Strings({"5", "6", "7"}));
  EXPECT_EQ(column(true, 1), Strings({"1", "2", "3"}));
  EXPECT_EQ(data().variantStandardVal(true, 2), Values({0, 0, 0}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_OneOfSeveral_LeavesTheSourceGroup) {
  beginWithRows();
  addVariable(true, 0, "FanB.Speed");
  data().moveAttribute(true, 0, 0, 1);
  EXPECT_EQ(groups(true), Groups({{"FanB.Speed"}, {"FanA.Blades", "FanA.Speed"}, {"FanB.Ratio"}}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_OnTheOutputSide_MovesAnOutput) {
  beginWithRows();
  data().moveAttribute(false, 1, 0, 0);
  EXPECT_EQ(groups(false), Groups({{"FanA.Power", "FanA.Noise"}}));
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(false, 1), Strings({""}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_TakesTheLimitsAndBoundsOfTheTargetGroup) {
  beginWithRows();
  OptimizationGroupVariable target = data().getVariable(true, 2);
  target.setMinimumValue("1");
  target.setMaximumValue("9");
  target.setStepValue("2");
  target.setLowBound("3");
  target.setHighBound("8");
  OptimizationGroupVariable moved = data().getVariable(true, 0);
  moved.setMinimumValue("100");
  data().moveAttribute(true, 0, 0, 2);
  moved = data().getGroup(true, 1).getVariable(1);
  EXPECT_EQ(moved.getMinimumValue(), "1");
  EXPECT_EQ(moved.getMaximumValue(), "9");
  EXPECT_EQ(moved.getStepValue(), "2");
  EXPECT_EQ(moved.getLowBound(), "3");
  EXPECT_EQ(moved.getHighBound(), "8");
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_ToTheSameGroup_ThrowsAndChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  EXPECT_EQ(thrownBy([this] { data().moveAttribute(true, 1, 0, 1); }),
            "std::logic_error: OptimizationData::moveAttribute: Can't move attribute to same group");
  EXPECT_EQ(thrownBy([this] { data().moveAttribute(false, 99, 0, 99); }),
            "std::logic_error: OptimizationData::moveAttribute: Can't move attribute to same group");
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_NoSuchVariableOrTarget_ChangesNothing) {
  beginWithRows();
  data().moveAttribute(true, 0, 7, 2);
  data().moveAttribute(true, 0, 0, 9);
  data().moveAttribute(true, 0, -1, 2);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_EmptySource_RemovesItThoughNothingMoves) {
  beginWithRows();
  data().addGroupFromGroup(true, 0);
  data().moveAttribute(true, 3, 0, 0);
  EXPECT_EQ(groups(true), kInputs);
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
  EXPECT_EQ(data().variantStandardVal(true, 3), Values({0, 0, 0}));
}

TEST_F(OptimizationDataGroupsTest, MoveAttribute_SourceAboveCount_ThrowsAsTheRemovalDoes) {
  beginWithRows();
  EXPECT_EQ(thrownBy([this] { data().moveAttribute(true, 9, 0, 1); }),
            "std::out_of_range: OptimizationData::removeGroup: Group index out of range");
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, MoveGroup_ReordersGroupsAndLeavesTheCells) {
  beginWithRows();
  data().moveGroup(true, 2, 0);
  EXPECT_EQ(groups(true), Groups({{"FanB.Ratio"}, {"FanA.Speed"}, {"FanA.Blades"}}));
  EXPECT_EQ(row(true, 1), Strings({"20 m/s", "6", "2"}));
  EXPECT_EQ(groups(false), kOutputs);
}

TEST_F(OptimizationDataGroupsTest, MoveGroup_ToTheCount_MovesToTheEnd) {
  beginWithRows();
  data().moveGroup(true, 0, 3);
  EXPECT_EQ(groups(true), Groups({{"FanA.Blades"}, {"FanB.Ratio"}, {"FanA.Speed"}}));
}

TEST_F(OptimizationDataGroupsTest, MoveGroup_OnTheOutputSide_MovesAnOutput) {
  beginWithRows();
  data().moveGroup(false, 1, 0);
  EXPECT_EQ(groups(false), Groups({{"FanA.Noise"}, {"FanA.Power"}}));
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, MoveGroup_EqualIndicesOrOutOfRange_ChangesNothing) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().moveGroup(true, 1, 1);
  data().moveGroup(true, 99, 99);
  data().moveGroup(true, 3, 0);
  data().moveGroup(true, 0, 4);
  EXPECT_EQ(recording.texts(), Strings());
  EXPECT_EQ(groups(true), kInputs);
}

TEST_F(OptimizationDataGroupsTest, MoveGroup_AsksTheListAndMarksTheProject) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().moveGroup(true, 2, 0);
  ASSERT_EQ(recording.texts().size(), 2U);
  EXPECT_EQ(recording.calls()[0].operation, "ListAttribute::moveEntity");
  EXPECT_EQ(recording.texts()[1], kSave);
}

TEST_F(OptimizationDataGroupsTest, SetGroupName_WritesTheName) {
  beginWithRows();
  data().setGroupName(true, 1, "Blades");
  data().setGroupName(false, 0, "Power");
  EXPECT_EQ(data().getGroup(true, 1).getName(), "Blades");
  EXPECT_EQ(data().getGroup(false, 0).getName(), "Power");
  EXPECT_EQ(data().getGroup(true, 0).getName(), "");
  data().setGroupName(true, 1, "");
  EXPECT_EQ(data().getGroup(true, 1).getName(), "");
}

TEST_F(OptimizationDataGroupsTest, SetGroupName_DoesNotLookForTheNameElsewhere) {
  beginWithRows();
  data().setGroupName(true, 0, "Same");
  data().setGroupName(true, 1, "Same");
  EXPECT_EQ(data().getGroup(true, 1).getName(), "Same");
}

TEST_F(OptimizationDataGroupsTest, SetGroupName_SetsTheMemberWithoutThrowingAndMarksTheProject) {
  beginWithRows();
  const RecordingHost &recording = recordStudy();
  data().setGroupName(false, 1, "Noise");
  EXPECT_EQ(recording.texts(),
            Strings({"EntityEditor::setValueNoThrow(Study.OptimizationOutputs[1].Group_Name, \"Noise\", "
                     "force=false, affected=null, notify=true)",
                     kSave}));
}

TEST_F(OptimizationDataGroupsTest, SetGroupName_OutOfRange_ThrowsAndChangesNothing) {
  beginWithRows();
  const std::string error = "std::out_of_range: OptimizationData::setGroupName: Group index out of range";
  const RecordingHost &recording = recordStudy();
  EXPECT_EQ(thrownBy([this] { data().setGroupName(true, -1, "x"); }), error);
  EXPECT_EQ(thrownBy([this] { data().setGroupName(true, 3, "x"); }), error);
  EXPECT_EQ(thrownBy([this] { data().setGroupName(false, 2, "x"); }), error);
  EXPECT_EQ(recording.texts(), Strings());
  OptimizationData withoutEntity(nullptr, nullptr);
  EXPECT_EQ(thrownBy([&] { withoutEntity.setGroupName(true, 0, "x"); }), error);
}

// The address sanitizer watches over the data that are gone.
TEST(OptimizationDataGroupsLivenessTest, StudyEndsInsideAnyCall_TheEditStopsQuietly) {
  using StudyTesting::RecordedStudy;
  const std::vector<std::function<void(RecordedStudy &)>> edits = {
      [](RecordedStudy &study) { study.data().addGroup(true, study.attribute(study.pump(), "Angle")); },
      [](RecordedStudy &study) { study.data().addGroupFromGroup(true, 0); },
      [](RecordedStudy &study) { study.data().removeGroup(true, 0); },
      [](RecordedStudy &study) { study.data().removeFromGroup(true, study.attribute(study.fan(), "Angle")); },
      [](RecordedStudy &study) { study.data().removeFromGroup(study.attribute(study.fan(), "Angle")); },
      [](RecordedStudy &study) { study.data().removeAttributeFromGroup(true, 2); },
      [](RecordedStudy &study) { study.data().moveAttribute(true, 1, 0, 0); },
  };
  for (std::size_t edit = 0; edit < edits.size(); ++edit) {
    bool isEnded = true;
    for (int number = 1; isEnded; ++number) {
      SCOPED_TRACE(testing::Message() << "edit " << edit << ", call " << number);
      RecordedStudy study;
      study.begin();
      study.addRow("A", "11", "21");
      std::size_t callsAtEnd = 0;
      study.hooked().runBefore(number, [&] {
        callsAtEnd = study.host().texts().size();
        study.drop();
      });
      EXPECT_NO_THROW(edits[edit](study));
      isEnded = !study.isAlive();
      EXPECT_TRUE(isEnded || number > 1);
      const Strings calls = study.host().texts();
      for (std::size_t call = callsAtEnd; isEnded && call < calls.size(); ++call) {
        EXPECT_NE(calls[call].rfind("EntityEditor::deleteEntity", 0), 0U) << calls[call];
      }
    }
  }
}

} // namespace
