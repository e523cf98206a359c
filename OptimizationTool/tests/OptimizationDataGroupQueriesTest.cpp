#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <utility>

namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::EntityEditor;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationGroup;
using StudyTesting::thrownBy;
using Indices = std::pair<int, int>;
using Strings = std::vector<std::string>;

class OptimizationDataGroupQueriesTest : public StudyTesting::StudyDataFixture {
protected:
  /// Input groups with 2, 0 and 3 variables, and output groups with 1 and 2.
  void beginWithSizes() {
    begin();
    addInput("FanA.Speed");
    addVariable(true, 0, "FanB.Speed");
    data().addGroupFromGroup(true, 0);
    addInput("FanA.Ratio");
    addVariable(true, 2, "FanB.Ratio");
    addVariable(true, 2, "Load");
    addOutput("FanA.Power");
    addOutput("FanA.Noise");
    addVariable(false, 1, "FanB.Noise");
  }
  Attribute *variableAttribute(bool isInput, int flatIndex) {
    return data().getVariable(isInput, flatIndex).getAttribute();
  }
  /// A group that the matrix knows nothing of.
  void addGroupBehindTheMatrix(bool isInput, const std::string &attributeName) {
    OptimizationGroup group = data().getGroups(isInput).appendGroup();
    group.appendVariable(attribute(attributeName));
  }
};

TEST_F(OptimizationDataGroupQueriesTest, GetGroup_AnswersTheGroupOfTheSide) {
  beginWithSizes();
  EXPECT_EQ(data().getGroup(true, 2).getAttribute(0), attribute("FanA.Ratio"));
  EXPECT_EQ(data().getGroup(false, 1).getAttribute(0), attribute("FanA.Noise"));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroup_IndexOutOfRange_IsTheNullGroup) {
  beginWithSizes();
  EXPECT_FALSE(data().getGroup(true, 3));
  EXPECT_FALSE(data().getGroup(true, -1));
  EXPECT_FALSE(data().getGroup(false, 2));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroup_WithoutList_IsTheNullGroup) {
  const OptimizationData study(fan("FanA"), nullptr);
  EXPECT_FALSE(study.getGroup(true, 0));
  EXPECT_FALSE(study.getGroup(false, 0));
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariable_CountsOverAllGroupsOfTheSide) {
  beginWithSizes();
  EXPECT_EQ(variableAttribute(true, 0), attribute("FanA.Speed"));
  EXPECT_EQ(variableAttribute(true, 1), attribute("FanB.Speed"));
  EXPECT_EQ(variableAttribute(true, 2), attribute("FanA.Ratio"));
  EXPECT_EQ(variableAttribute(true, 4), attribute("Load"));
  EXPECT_EQ(variableAttribute(false, 2), attribute("FanB.Noise"));
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariable_PastTheLast_IsTheNullVariable) {
  beginWithSizes();
  EXPECT_FALSE(data().getVariable(true, 5));
  EXPECT_FALSE(data().getVariable(false, 3));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAndVariable_AnswersBoth) {
  beginWithSizes();
  const auto [group, variable] = data().getGroupAndVariable(true, 3);
  EXPECT_EQ(group.getIndex(), 2);
  EXPECT_EQ(variable.getAttribute(), attribute("FanB.Ratio"));
  const auto [outputGroup, outputVariable] = data().getGroupAndVariable(false, 0);
  EXPECT_EQ(outputGroup.getAttribute(0), attribute("FanA.Power"));
  EXPECT_EQ(outputVariable.getAttribute(), attribute("FanA.Power"));
  const auto [noGroup, noVariable] = data().getGroupAndVariable(true, 5);
  EXPECT_FALSE(noGroup);
  EXPECT_FALSE(noVariable);
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAndAttribute_AnswersBoth) {
  beginWithSizes();
  const auto [group, found] = data().getGroupAndAttribute(true, 3);
  EXPECT_EQ(group.getIndex(), 2);
  EXPECT_EQ(found, attribute("FanB.Ratio"));
  const auto [outputGroup, output] = data().getGroupAndAttribute(false, 1);
  EXPECT_EQ(outputGroup.getIndex(), 1);
  EXPECT_EQ(output, attribute("FanA.Noise"));
}

TEST_F(OptimizationDataGroupQueriesTest,
       GetGroupAndAttribute_VariableThatResolvesNothing_GivesTheGroupAlone) {
  begin();
  data().addGroup(true, fan("FanA"), AttributePath("Nothing"));
  const auto [group, found] = data().getGroupAndAttribute(true, 0);
  EXPECT_EQ(group.getIndex(), 0);
  EXPECT_EQ(found, nullptr);
}

TEST_F(OptimizationDataGroupQueriesTest, NumbersOfAttributes_AreThoseOfTheVariables) {
  beginWithSizes();
  EXPECT_EQ(data().getNumInputAttributes(), 5);
  EXPECT_EQ(data().getNumOutputAttributes(), 3);
}

TEST_F(OptimizationDataGroupQueriesTest, GroupContaining_OnASide_FindsItOnThatSideOnly) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupContainingAttribute(true, attribute("FanB.Ratio")).getIndex(), 2);
  EXPECT_FALSE(data().getGroupContainingAttribute(false, attribute("FanB.Ratio")));
  EXPECT_EQ(data().getGroupContainingAttribute(false, attribute("FanB.Noise")).getIndex(), 1);
  EXPECT_FALSE(data().getGroupContainingAttribute(true, attribute("FanB.Noise")));
}

TEST_F(OptimizationDataGroupQueriesTest, GroupContaining_OnASideByPath_FindsItOnThatSideOnly) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupContainingAttribute(true, fan("FanB"), AttributePath("Ratio")).getIndex(), 2);
  EXPECT_FALSE(data().getGroupContainingAttribute(false, fan("FanB"), AttributePath("Ratio")));
  EXPECT_EQ(data().getGroupContainingAttribute(false, fan("FanB"), AttributePath("Noise")).getIndex(), 1);
}

TEST_F(OptimizationDataGroupQueriesTest, GroupContaining_WithoutASide_FindsEitherSide) {
  beginWithSizes();
  const OptimizationGroup input = data().getGroupContainingAttribute(attribute("FanB.Ratio"));
  EXPECT_TRUE(input.isInput());
  EXPECT_EQ(input.getIndex(), 2);
  const OptimizationGroup output = data().getGroupContainingAttribute(fan("FanB"), AttributePath("Noise"));
  EXPECT_FALSE(output.isInput());
  EXPECT_EQ(output.getIndex(), 1);
}

TEST_F(OptimizationDataGroupQueriesTest, GroupContaining_WithoutASide_InputsWin) {
  begin();
  addOutput("FanA.Ratio");
  addInput("FanA.Speed");
  addInput("FanA.Ratio");
  EXPECT_TRUE(data().getGroupContainingAttribute(attribute("FanA.Ratio")).isInput());
  EXPECT_TRUE(data().getGroupContainingAttribute(fan("FanA"), AttributePath("Ratio")).isInput());
}

TEST_F(OptimizationDataGroupQueriesTest, GroupContaining_WhatIsNotThere_IsTheNullGroup) {
  beginWithSizes();
  EXPECT_FALSE(data().getGroupContainingAttribute(true, nullptr));
  EXPECT_FALSE(data().getGroupContainingAttribute(nullptr));
  EXPECT_FALSE(data().getGroupContainingAttribute(attribute("FanA.Note")));
  EXPECT_FALSE(data().getGroupContainingAttribute(true, fan("FanA"), AttributePath("Nothing")));
  EXPECT_FALSE(data().getGroupContainingAttribute(fan("FanA"), AttributePath("Nothing")));
  EXPECT_FALSE(data().getGroupContainingAttribute(true, nullptr, AttributePath("Ratio")));
  EXPECT_FALSE(data().getGroupContainingAttribute(nullptr, AttributePath("Ratio")));
}

TEST_F(OptimizationDataGroupQueriesTest, DoesGroupExist_ComparesWholeNamesOnBothSides) {
  beginWithSizes();
  data().setGroupName(true, 2, "Ratios");
  data().setGroupName(false, 1, "Noises");
  EXPECT_TRUE(data().doesGroupExist("Ratios"));
  EXPECT_TRUE(data().doesGroupExist("Noises"));
  EXPECT_FALSE(data().doesGroupExist("Ratio"));
  EXPECT_FALSE(data().doesGroupExist("ratios"));
  EXPECT_FALSE(data().doesGroupExist("FanA.Speed"));
}

TEST_F(OptimizationDataGroupQueriesTest, DoesGroupExist_EmptyName_FindsAnUnnamedGroup) {
  begin();
  EXPECT_FALSE(data().doesGroupExist(""));
  addOutput("FanA.Power");
  EXPECT_TRUE(data().doesGroupExist(""));
  data().setGroupName(false, 0, "Power");
  EXPECT_FALSE(data().doesGroupExist(""));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupIndex_CountsThroughTheGroups) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupIndex(true, 0), Indices(0, 0));
  EXPECT_EQ(data().getGroupIndex(true, 1), Indices(0, 1));
  EXPECT_EQ(data().getGroupIndex(true, 2), Indices(2, 0));
  EXPECT_EQ(data().getGroupIndex(true, 4), Indices(2, 2));
  EXPECT_EQ(data().getGroupIndex(false, 0), Indices(0, 0));
  EXPECT_EQ(data().getGroupIndex(false, 2), Indices(1, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupIndex_PastTheLast_Throws) {
  beginWithSizes();
  const std::string error = "std::logic_error: OptimizationData::getGroupIndex: Invalid attribute index";
  EXPECT_EQ(thrownBy([this] { data().getGroupIndex(true, 5); }), error);
  EXPECT_EQ(thrownBy([this] { data().getGroupIndex(true, 1000); }), error);
  EXPECT_EQ(thrownBy([this] { data().getGroupIndex(false, 3); }), error);
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupIndex_WithoutGroups_ThrowsForEveryIndex) {
  begin();
  const std::string error = "std::logic_error: OptimizationData::getGroupIndex: Invalid attribute index";
  EXPECT_EQ(thrownBy([this] { data().getGroupIndex(true, 0); }), error);
  EXPECT_EQ(thrownBy([this] { data().getGroupIndex(true, -1); }), error);
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupIndex_Negative_IsItselfInTheFirstGroup) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupIndex(true, -1), Indices(0, -1));
  EXPECT_EQ(data().getGroupIndex(false, -7), Indices(0, -7));
}

TEST(OptimizationDataMissingGroupTest, MissingGroupAndGroupWithoutList_CountAsEmpty) {
  StudyTesting::ScriptedEntity owner("Owner");
  const auto first = StudyTesting::makeScriptedVariable(&owner, "First");
  const auto second = StudyTesting::makeScriptedVariable(&owner, "Second");
  const auto group = StudyTesting::makeScriptedGroup({first.get(), second.get()});
  StudyTesting::ScriptedEntity groupWithoutList;
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::OptimizationInputs_t),
             std::make_unique<StudyTesting::ScriptedList>(
                 std::vector<EntityModel::Entity *>{nullptr, &groupWithoutList, group.get()}));
  const OptimizationData study(&entity, nullptr);
  EXPECT_EQ(study.getNumInputs(), 3);
  EXPECT_EQ(study.getGroupIndex(true, 1), Indices(2, 1));
  EXPECT_EQ(study.getGroupAttBound(true, 0), Indices(0, -1));
  EXPECT_EQ(study.getGroupAttBound(true, 1), Indices(0, -1));
  EXPECT_EQ(study.getGroupAttBound(true, 2), Indices(0, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAttBound_AnswersFirstAndLast) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupAttBound(true, 0), Indices(0, 1));
  EXPECT_EQ(data().getGroupAttBound(true, 2), Indices(2, 4));
  EXPECT_EQ(data().getGroupAttBound(false, 0), Indices(0, 0));
  EXPECT_EQ(data().getGroupAttBound(false, 1), Indices(1, 2));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAttBound_OfAnEmptyGroup_EndsBeforeItBegins) {
  beginWithSizes();
  EXPECT_EQ(data().getGroupAttBound(true, 1), Indices(2, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAttBound_OutOfRange_ThrowsUnderItsOlderName) {
  beginWithSizes();
  const std::string error =
      "std::out_of_range: OptimizationData::getGroupFirstIndex: Group index out of bounds";
  EXPECT_EQ(thrownBy([this] { data().getGroupAttBound(true, -1); }), error);
  EXPECT_EQ(thrownBy([this] { data().getGroupAttBound(true, 3); }), error);
  EXPECT_EQ(thrownBy([this] { data().getGroupAttBound(false, 2); }), error);
}

TEST_F(OptimizationDataGroupQueriesTest, GetGroupAttBound_WithoutOwnerOrList_Throws) {
  const std::string error =
      "std::out_of_range: OptimizationData::getGroupFirstIndex: Group index out of bounds";
  const OptimizationData withoutOwner(nullptr, nullptr);
  EXPECT_EQ(thrownBy([&] { withoutOwner.getGroupAttBound(true, 0); }), error);
  const OptimizationData withoutList(fan("FanA"), nullptr);
  EXPECT_EQ(thrownBy([&] { withoutList.getGroupAttBound(true, 0); }), error);
}

TEST_F(OptimizationDataGroupQueriesTest, IsGroupSameValue_WithoutRows_IsTrue) {
  beginWithRows();
  reconstruct();
  EXPECT_TRUE(data().isGroupSameValue(true, 0, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, IsGroupSameValue_ComparesEveryRow) {
  begin();
  addInput("FanA.Ratio");
  addInput("FanB.Ratio");
  data().addVariant({"2", "2"}, "Row 1", 100);
  data().addVariant({"3", "3"}, "Row 2", 100);
  EXPECT_TRUE(data().isGroupSameValue(true, 0, 1));
  data().setVariantValue(1, 1, "4");
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 1));
  data().setVariantValue(1, 1, "2");
  data().setVariantValue(2, 0, "4");
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, IsGroupSameValue_ComparesTexts) {
  begin();
  setIn("Base", "FanB.Speed", "10000 mm/s");
  addInput("FanA.Speed");
  addInput("FanB.Speed");
  ASSERT_EQ(row(true, 0), Strings({"10 m/s", "10000 mm/s"}));
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, IsGroupSameValue_LooksAtTheSideAskedFor) {
  begin();
  addInput("FanA.Ratio");
  addInput("FanA.Blades");
  addOutput("FanA.Power");
  addOutput("FanA.Noise");
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 1));
  EXPECT_TRUE(data().isGroupSameValue(false, 0, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, IsGroupSameValue_IgnoresRowsThatLackEitherCell) {
  begin();
  addInput("FanA.Ratio");
  addInput("FanA.Blades");
  data().addGroup(true, fan("FanA"), AttributePath("Nothing"));
  addGroupBehindTheMatrix(true, "FanB.Blades");
  // Cells: "1", "5", an empty one, and none.
  EXPECT_FALSE(data().isGroupSameValue(true, 0, 1));
  EXPECT_TRUE(data().isGroupSameValue(true, 0, 2));
  EXPECT_TRUE(data().isGroupSameValue(true, 2, 1));
  EXPECT_TRUE(data().isGroupSameValue(true, 0, 3));
  EXPECT_TRUE(data().isGroupSameValue(true, 3, 1));
  EXPECT_TRUE(data().isGroupSameValue(true, -1, 0));
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariantGroup_AnswersTheCopyInTheCell) {
  beginWithRows();
  setIn("Row 1", "FanA.Noise", "4");
  data().updateAlternate(OptimizationData::ReadFromModel, "Row 1");
  EXPECT_EQ(data().getVariantGroup(true, 1, 0)->getValueAsString(), "20 m/s");
  EXPECT_EQ(data().getVariantGroup(true, 2, 1)->getValueAsString(), "7");
  EXPECT_EQ(data().getVariantGroup(false, 1, 1)->getValueAsString(), "4");
  EXPECT_NE(data().getVariantGroup(true, 0, 0), attribute("FanA.Speed"));
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariantGroup_RowOutOfRange_IsNull) {
  beginWithRows();
  EXPECT_EQ(data().getVariantGroup(true, 3, 0), nullptr);
  EXPECT_EQ(data().getVariantGroup(true, static_cast<std::size_t>(-1), 0), nullptr);
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariantGroup_GroupOutOfRange_IsNullEvenForASurplusCell) {
  beginWithRows();
  EntityEditor::deleteEntity(data().getGroup(true, 2).get(), false, true);
  ASSERT_EQ(data().variantStandardVal(true, 2), std::vector<double>({1, 2, 3}));
  EXPECT_EQ(data().getVariantGroup(true, 1, 2), nullptr);
  EXPECT_EQ(data().getVariantGroup(false, 1, 2), nullptr);
  EXPECT_EQ(data().getVariantGroup(true, 1, static_cast<std::size_t>(-1)), nullptr);
}

TEST_F(OptimizationDataGroupQueriesTest, GetVariantGroup_RowWithoutThatCell_IsNull) {
  beginWithRows();
  addGroupBehindTheMatrix(true, "FanB.Blades");
  EXPECT_EQ(data().getNumInputs(), 4);
  EXPECT_EQ(data().getVariantGroup(true, 1, 3), nullptr);
}

TEST_F(OptimizationDataGroupQueriesTest, Column_HasOneCellForEachRow) {
  beginWithRows();
  const std::vector<Attribute *> cells =
      data().getAllVariantGroupAttributes(true, fan("FanA"), AttributePath("Blades"));
  EXPECT_EQ(cells,
            std::vector<Attribute *>({data().getVariantGroup(true, 0, 1), data().getVariantGroup(true, 1, 1),
                                      data().getVariantGroup(true, 2, 1)}));
  EXPECT_EQ(cells[2]->getValueAsString(), "7");
}

TEST_F(OptimizationDataGroupQueriesTest, Column_IsFoundThroughAnyVariableOfTheGroup) {
  beginWithRows();
  addVariable(true, 1, "FanB.Blades");
  const std::vector<Attribute *> cells =
      data().getAllVariantGroupAttributes(true, fan("FanB"), AttributePath("Blades"));
  ASSERT_EQ(cells.size(), 3U);
  EXPECT_EQ(cells[1], data().getVariantGroup(true, 1, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, Column_OfTheOtherSide_IsEmpty) {
  beginWithRows();
  EXPECT_TRUE(data().getAllVariantGroupAttributes(false, fan("FanA"), AttributePath("Blades")).empty());
  EXPECT_TRUE(data().getAllVariantGroupAttributes(true, fan("FanA"), AttributePath("Noise")).empty());
}

TEST_F(OptimizationDataGroupQueriesTest, Column_WithoutASide_TakesTheSideOfTheGroup) {
  beginWithRows();
  const std::vector<Attribute *> outputs =
      data().getAllVariantGroupAttributes(fan("FanA"), AttributePath("Noise"));
  ASSERT_EQ(outputs.size(), 3U);
  EXPECT_EQ(outputs[1], data().getVariantGroup(false, 1, 1));
  const std::vector<Attribute *> inputs =
      data().getAllVariantGroupAttributes(fan("FanA"), AttributePath("Blades"));
  ASSERT_EQ(inputs.size(), 3U);
  EXPECT_EQ(inputs[1], data().getVariantGroup(true, 1, 1));
}

TEST_F(OptimizationDataGroupQueriesTest, Column_WithoutASide_InputsWin) {
  beginWithRows();
  addOutput("FanB.Ratio");
  const std::vector<Attribute *> cells =
      data().getAllVariantGroupAttributes(fan("FanB"), AttributePath("Ratio"));
  ASSERT_EQ(cells.size(), 3U);
  EXPECT_EQ(cells[1], data().getVariantGroup(true, 1, 2));
}

TEST_F(OptimizationDataGroupQueriesTest, Column_OfWhatIsNotThere_IsEmpty) {
  beginWithRows();
  EXPECT_TRUE(data().getAllVariantGroupAttributes(true, fan("FanA"), AttributePath("Nothing")).empty());
  EXPECT_TRUE(data().getAllVariantGroupAttributes(fan("FanA"), AttributePath("Nothing")).empty());
  EXPECT_TRUE(data().getAllVariantGroupAttributes(fan("FanA"), AttributePath("Mode")).empty());
  EXPECT_TRUE(data().getAllVariantGroupAttributes(nullptr, AttributePath("Blades")).empty());
}

TEST_F(OptimizationDataGroupQueriesTest, Column_OfRowsWithoutThatCell_HoldsNulls) {
  beginWithRows();
  addGroupBehindTheMatrix(true, "FanB.Blades");
  EXPECT_EQ(data().getAllVariantGroupAttributes(true, fan("FanB"), AttributePath("Blades")),
            std::vector<Attribute *>({nullptr, nullptr, nullptr}));
  EXPECT_EQ(data().getAllVariantGroupAttributes(fan("FanB"), AttributePath("Blades")),
            std::vector<Attribute *>({nullptr, nullptr, nullptr}));
}

TEST_F(OptimizationDataGroupQueriesTest, Column_OfAGroupThatNoListHolds_HoldsNulls) {
  const auto variable = StudyTesting::makeScriptedVariable(fan("FanA"), "Blades");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath(EntityModel::BaseVersionName_t),
             std::make_unique<StudyTesting::ScriptedAttribute>("Base"));
  entity.add(AttributePath(EntityModel::OptimizationInputs_t),
             std::make_unique<StudyTesting::ScriptedList>(std::vector<EntityModel::Entity *>{group.get()}));
  OptimizationData study(&entity, nullptr);
  study.initializeVariants(nullptr);
  ASSERT_NE(study.getVariantGroup(true, 0, 0), nullptr);
  EXPECT_EQ(study.getAllVariantGroupAttributes(true, fan("FanA"), AttributePath("Blades")),
            std::vector<Attribute *>({nullptr}));
  EXPECT_EQ(study.getAllVariantGroupAttributes(fan("FanA"), AttributePath("Blades")),
            std::vector<Attribute *>({nullptr}));
}

TEST_F(OptimizationDataGroupQueriesTest, Column_WithoutRows_IsEmpty) {
  beginWithRows();
  reconstruct();
  EXPECT_TRUE(data().getAllVariantGroupAttributes(true, fan("FanA"), AttributePath("Blades")).empty());
}

TEST_F(OptimizationDataGroupQueriesTest, Queries_LeaveTheHostAsItIs) {
  beginWithRows();
  const HostTesting::RecordingHost &recording = record();
  data().getGroup(true, 0);
  data().getVariable(true, 9);
  data().getGroupContainingAttribute(attribute("FanA.Note"));
  data().doesGroupExist("Nothing");
  thrownBy([this] { data().getGroupIndex(true, 9); });
  thrownBy([this] { data().getGroupAttBound(true, 9); });
  data().isGroupSameValue(true, 0, 1);
  data().getVariantGroup(true, 0, 0);
  data().getAllVariantGroupAttributes(fan("FanA"), AttributePath("Blades"));
  EXPECT_EQ(recording.texts(), Strings());
}

} // namespace
