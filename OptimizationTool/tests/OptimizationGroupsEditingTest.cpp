#include "OptimizationTool/OptimizationGroups.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <gtest/gtest.h>

namespace OptimizationTool {
namespace {

using EntityModel::AttributePath;
using EntityModel::Entity;
using StudyTesting::StudyFixture;
using Calls = std::vector<std::string>;

// Input groups "A" (Length, Width), "B" (Ratio) and "C" (none) of a fan.
class OptimizationGroupsEditingTest : public ::testing::Test {
protected:
  OptimizationGroupsEditingTest() {
    study.name(length, "Length");
    study.name(width, "Width");
    study.name(ratio, "Ratio");
    study.takeCalls();
  }
  // The names of the groups in order.
  std::string names() const {
    std::string result;
    for (int index = 0; index < inputs.size(); ++index) {
      result += inputs.getGroup(index).getName();
    }
    return result;
  }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  Entity *studyEntity = study.addStudy();
  OptimizationGroups inputs = OptimizationGroups(studyEntity, true);
  OptimizationGroup a = study.addGroup(studyEntity, true, "A");
  OptimizationGroup b = study.addGroup(studyEntity, true, "B");
  OptimizationGroup c = study.addGroup(studyEntity, true, "C");
  OptimizationGroupVariable length = study.addVariable(a, fan, "Length");
  OptimizationGroupVariable width = study.addVariable(a, fan, "Width");
  OptimizationGroupVariable ratio = study.addVariable(b, fan, "Ratio");
};

TEST_F(OptimizationGroupsEditingTest, AppendGroup_CreatesAnUnnamedGroupAtTheEnd) {
  const OptimizationGroup group = inputs.appendGroup();
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::createEntity(OptimizationGroup, Study.OptimizationInputs, library=null, setDefaults=true, notify=true, select=false, "", position=-1))"}));
  EXPECT_EQ(group.get(), inputs.getGroup(3).get());
  EXPECT_EQ(group.getName(), "");
  EXPECT_TRUE(group.empty());
  EXPECT_NE(group.getVariableList(), nullptr);
}

TEST_F(OptimizationGroupsEditingTest, AppendGroup_OutputSide_CreatesItThere) {
  OptimizationGroups outputs(studyEntity, false);
  const OptimizationGroup group = outputs.appendGroup();
  EXPECT_EQ(outputs.getGroup(0).get(), group.get());
  EXPECT_EQ(inputs.size(), 3);
}

TEST_F(OptimizationGroupsEditingTest, AppendGroup_HostCreatesNothing_IsNull) {
  study.faults().fail("EntityEditor::createEntity", HostTesting::FaultKind::Null);
  EXPECT_FALSE(inputs.appendGroup());
  EXPECT_EQ(inputs.size(), 3);
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_AsksTheListToMoveTheEntity) {
  EXPECT_TRUE(inputs.moveGroup(2, 0));
  EXPECT_EQ(study.takeCalls(), (Calls{"ListAttribute::moveEntity(Study.OptimizationInputs, C, to=0)"}));
  EXPECT_EQ(names(), "CAB");
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_ToTheCount_IsAccepted) {
  EXPECT_TRUE(inputs.moveGroup(0, 3));
  EXPECT_EQ(study.takeCalls(), (Calls{"ListAttribute::moveEntity(Study.OptimizationInputs, A, to=3)"}));
  EXPECT_EQ(names(), "BCA");
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_IndexOutOfRange_IsRefused) {
  EXPECT_FALSE(inputs.moveGroup(3, 0));
  EXPECT_FALSE(inputs.moveGroup(4, 0));
  EXPECT_FALSE(inputs.moveGroup(0, 4));
  EXPECT_FALSE(inputs.moveGroup(3, 3));
  EXPECT_EQ(study.takeCalls(), Calls{});
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_ToItsOwnPlace_IsTrueWithoutTouchingTheModel) {
  EXPECT_TRUE(inputs.moveGroup(1, 1));
  EXPECT_TRUE(inputs.moveGroup(2, 2));
  EXPECT_EQ(study.takeCalls(), Calls{});
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_NegativeIndices_AreNotRefusedButFindNothing) {
  EXPECT_FALSE(inputs.moveGroup(-1, 0));
  EXPECT_TRUE(inputs.moveGroup(-1, -1));
  EXPECT_EQ(study.takeCalls(), Calls{});
  inputs.moveGroup(0, -1);
  EXPECT_EQ(study.takeCalls(), (Calls{"ListAttribute::moveEntity(Study.OptimizationInputs, A, to=-1)"}));
}

TEST_F(OptimizationGroupsEditingTest, MoveGroup_HostRefuses_IsFalse) {
  study.faults().fail("ListAttribute::moveEntity", HostTesting::FaultKind::Refused);
  EXPECT_FALSE(inputs.moveGroup(2, 0));
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, Remove_DeletesTheGroup) {
  EXPECT_TRUE(inputs.remove(1));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(B, force=false, notify=true)"}));
  EXPECT_EQ(names(), "AC");
}

TEST_F(OptimizationGroupsEditingTest, Remove_NoSuchGroup_IsFalse) {
  EXPECT_FALSE(inputs.remove(3));
  EXPECT_FALSE(inputs.remove(-1));
  EXPECT_EQ(study.takeCalls(), Calls{});
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, Remove_HostRefuses_IsItsAnswer) {
  study.faults().fail("EntityEditor::deleteEntity", HostTesting::FaultKind::Refused);
  EXPECT_FALSE(inputs.remove(0));
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_FlatIndex_DeletesTheVariable) {
  EXPECT_TRUE(inputs.removeVariable(1, true));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(Width, force=false, notify=true)"}));
  EXPECT_EQ(names(), "ABC");
  EXPECT_EQ(a.size(), 1);
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_TwoIndices_DeletesTheVariable) {
  EXPECT_TRUE(inputs.removeVariable(0, 0, true));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(Length, force=false, notify=true)"}));
  EXPECT_EQ(a.getFrontVariable().get(), width.get());
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_LastOfItsGroup_RemovesTheGroupToo) {
  EXPECT_TRUE(inputs.removeVariable(2, true));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(Ratio, force=false, notify=true)",
                                      "EntityEditor::deleteEntity(B, force=false, notify=true)"}));
  EXPECT_EQ(names(), "AC");
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_LastOfItsGroupAndGroupsAreKept_LeavesItEmpty) {
  EXPECT_TRUE(inputs.removeVariable(2, false));
  EXPECT_TRUE(inputs.removeVariable(0, 0, false));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(Ratio, force=false, notify=true)",
                                      "EntityEditor::deleteEntity(Length, force=false, notify=true)"}));
  EXPECT_EQ(names(), "ABC");
  EXPECT_TRUE(b.empty());
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_TwoIndicesAndLastOfItsGroup_RemovesTheGroupToo) {
  EXPECT_TRUE(inputs.removeVariable(1, 0, true));
  EXPECT_EQ(names(), "AC");
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_NoSuchVariable_IsFalse) {
  EXPECT_FALSE(inputs.removeVariable(3, true));
  EXPECT_FALSE(inputs.removeVariable(-1, true));
  EXPECT_FALSE(inputs.removeVariable(2, 0, true));
  EXPECT_FALSE(inputs.removeVariable(0, 2, true));
  EXPECT_FALSE(inputs.removeVariable(3, 0, true));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_HostRefuses_IsTrueAndTheGroupStays) {
  study.faults().fail("EntityEditor::deleteEntity", HostTesting::FaultKind::Refused);
  EXPECT_TRUE(inputs.removeVariable(2, true));
  EXPECT_EQ(study.takeCalls(), (Calls{"EntityEditor::deleteEntity(Ratio, force=false, notify=true)"}));
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_ThatNoGroupHolds_DeletesItAlone) {
  // The list gives out an entity that says nothing of the list.
  const auto variable = StudyTesting::makeScriptedVariable(fan, "Length");
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity owner;
  owner.add(AttributePath("OptimizationInputs"),
            std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{group.get()}));
  study.faults().fail("EntityEditor::deleteEntity", HostTesting::FaultKind::Refused);
  EXPECT_TRUE(OptimizationGroups(&owner, true).removeVariable(0, true));
  EXPECT_EQ(study.takeCalls().size(), 1U);
}

TEST_F(OptimizationGroupsEditingTest, RemoveVariable_HeldByAnotherGroupThanTheIndexSays_RemovesThatOne) {
  // The first place gives out a variable that says that the empty group C holds it.
  const auto variable = StudyTesting::makeScriptedVariable(fan, "Length");
  StudyTesting::ScriptedLink holder(nullptr);
  holder.owner = c.get();
  variable->ownerLink = &holder;
  const auto group = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity owner;
  owner.add(AttributePath("OptimizationInputs"),
            std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{group.get(), b.get()}));
  OptimizationGroups scripted(&owner, true);
  study.faults().fail("EntityEditor::deleteEntity", HostTesting::FaultKind::Refused);
  const std::string deleteHolder = "EntityEditor::deleteEntity(C, force=false, notify=true)";
  EXPECT_TRUE(scripted.removeVariable(0, true));
  EXPECT_EQ(study.takeCalls().back(), deleteHolder);
  EXPECT_TRUE(scripted.removeVariable(0, 0, true));
  EXPECT_EQ(study.takeCalls().back(), deleteHolder);
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_ToAnEmptyGroup_KeepsItsSettings) {
  length.setMinimumValue("1 mm");
  length.setLowBound("2 mm");
  study.takeCalls();
  EXPECT_TRUE(inputs.moveVariable(0, 0, 2, true));
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          "EntityEditor::moveEntity(Length, C, link=C.OptimizationAttributes, notify=true, position=-1)"}));
  EXPECT_EQ(c.getFrontVariable().get(), length.get());
  EXPECT_EQ(a.size(), 1);
  EXPECT_EQ(length.getMinimumValue(), "1 mm");
  EXPECT_EQ(length.getLowBound(), "2 mm");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_TakesTheSettingsOfTheTargetsFirstVariableThenMoves) {
  length.setMinimumValue("1");
  length.setMaximumValue("9");
  length.setStepValue("2");
  length.setHighBound("8");
  length.setLowBound("3");
  width.setMinimumValue("not this one");
  study.takeCalls();
  EXPECT_TRUE(inputs.moveVariable(1, 0, 0, false));
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Ratio.MinimumValue, "1", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Ratio.MaximumValue, "9", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Ratio.StepValue, "2", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(bool)(Ratio.HighBoundEnabled, true, notify=true))",
          R"(EntityEditor::setValueNoThrow(Ratio.HighBoundValue, "8", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(bool)(Ratio.LowBoundEnabled, true, notify=true))",
          R"(EntityEditor::setValueNoThrow(Ratio.LowBoundValue, "3", force=false, affected=null, notify=true))",
          R"(EntityEditor::moveEntity(Ratio, A, link=A.OptimizationAttributes, notify=true, position=-1))",
      }));
  EXPECT_EQ(a.size(), 3);
  EXPECT_EQ(a.getVariable(2).get(), ratio.get());
  EXPECT_TRUE(b.empty());
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_TargetHasALowBoundOnly_LeavesTheHighBoundsOldText) {
  length.setLowBound("3");
  length.setHighBoundValue("not copied");
  ratio.setHighBound("8");
  EXPECT_TRUE(inputs.moveVariable(1, 0, 0, false));
  EXPECT_FALSE(ratio.isHighBoundEnabled());
  EXPECT_EQ(ratio.getHighBoundValue(), "8");
  EXPECT_TRUE(ratio.isLowBoundEnabled());
  EXPECT_EQ(ratio.getLowBoundValue(), "3");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_TargetHasAHighBoundOnly_LeavesTheLowBoundsOldText) {
  length.setHighBound("8");
  length.setLowBoundValue("not copied");
  ratio.setLowBound("3");
  EXPECT_TRUE(inputs.moveVariable(1, 0, 0, false));
  EXPECT_TRUE(ratio.isHighBoundEnabled());
  EXPECT_EQ(ratio.getHighBoundValue(), "8");
  EXPECT_FALSE(ratio.isLowBoundEnabled());
  EXPECT_EQ(ratio.getLowBoundValue(), "3");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_EmptySettingsOfTheTarget_AreCopiedToo) {
  ratio.setMinimumValue("1");
  ratio.setMaximumValue("9");
  ratio.setStepValue("2");
  EXPECT_TRUE(inputs.moveVariable(1, 0, 0, false));
  EXPECT_EQ(ratio.getMinimumValue(), "");
  EXPECT_EQ(ratio.getMaximumValue(), "");
  EXPECT_EQ(ratio.getStepValue(), "");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_LastOfItsGroup_RemovesTheGroupAfterTheMove) {
  EXPECT_TRUE(inputs.moveVariable(1, 0, 2, true));
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{"EntityEditor::moveEntity(Ratio, C, link=C.OptimizationAttributes, notify=true, position=-1)",
             "EntityEditor::deleteEntity(B, force=false, notify=true)"}));
  EXPECT_EQ(names(), "AC");
  EXPECT_EQ(c.getFrontVariable().get(), ratio.get());
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_LastOfItsGroupAndGroupsAreKept_LeavesItEmpty) {
  EXPECT_TRUE(inputs.moveVariable(1, 0, 2, false));
  EXPECT_EQ(names(), "ABC");
  EXPECT_TRUE(b.empty());
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_WithinItsGroup_GoesToTheEnd) {
  length.setLowBound("3");
  EXPECT_TRUE(inputs.moveVariable(0, 0, 0, true));
  EXPECT_EQ(a.size(), 2);
  EXPECT_EQ(a.getVariable(0).get(), width.get());
  EXPECT_EQ(a.getVariable(1).get(), length.get());
  EXPECT_EQ(length.getLowBound(), "3");
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_OnlyOneOfItsOwnGroup_KeepsTheGroup) {
  EXPECT_TRUE(inputs.moveVariable(1, 0, 1, true));
  EXPECT_EQ(names(), "ABC");
  EXPECT_EQ(b.getFrontVariable().get(), ratio.get());
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_NoSuchVariableOrGroup_IsFalseAndChangesNothing) {
  EXPECT_FALSE(inputs.moveVariable(0, 2, 1, true));
  EXPECT_FALSE(inputs.moveVariable(2, 0, 1, true));
  EXPECT_FALSE(inputs.moveVariable(3, 0, 1, true));
  EXPECT_FALSE(inputs.moveVariable(-1, 0, 1, true));
  EXPECT_FALSE(inputs.moveVariable(0, 0, 3, true));
  EXPECT_FALSE(inputs.moveVariable(0, 0, -1, true));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_HostRefuses_IsFalseAndTheSettingsStayCopied) {
  length.setMinimumValue("1");
  study.faults().fail("EntityEditor::moveEntity", HostTesting::FaultKind::Refused);
  EXPECT_FALSE(inputs.moveVariable(1, 0, 0, true));
  EXPECT_EQ(b.getFrontVariable().get(), ratio.get());
  EXPECT_EQ(ratio.getMinimumValue(), "1");
  EXPECT_EQ(names(), "ABC");
}

TEST_F(OptimizationGroupsEditingTest, MoveVariable_TargetWithoutList_IsFalse) {
  const auto variable = StudyTesting::makeScriptedVariable(fan, "Length");
  const auto source = StudyTesting::makeScriptedGroup({variable.get()});
  StudyTesting::ScriptedEntity target;
  StudyTesting::ScriptedEntity owner;
  owner.add(AttributePath("OptimizationInputs"),
            std::make_unique<StudyTesting::ScriptedList>(std::vector<Entity *>{source.get(), &target}));
  EXPECT_FALSE(OptimizationGroups(&owner, true).moveVariable(0, 0, 1, true));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

} // namespace
} // namespace OptimizationTool
