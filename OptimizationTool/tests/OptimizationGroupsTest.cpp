#include "OptimizationTool/OptimizationGroups.h"

#include "HostModel/ChangeSet.h"
#include "OptimizationTool/tests/ScriptedModel.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace OptimizationTool {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using StudyTesting::StudyFixture;
using Attributes = std::vector<Attribute *>;
using Calls = std::vector<std::string>;
using Pairs = std::vector<OptimizationGroups::EntityAndPath>;

static_assert(std::has_virtual_destructor_v<OptimizationGroups>);

// Input groups "First" (Length, Width), "Second" (none) and "Third" (Ratio, Count, Shape.Height) of a fan.
class OptimizationGroupsTest : public ::testing::Test {
protected:
  Attribute *fanAttribute(const std::string &path) { return StudyFixture::attribute(fan, path); }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  Entity *studyEntity = study.addStudy();
  OptimizationGroups inputs = OptimizationGroups(studyEntity, true);
  OptimizationGroups outputs = OptimizationGroups(studyEntity, false);
  OptimizationGroup first = study.addGroup(studyEntity, true, "First");
  OptimizationGroup second = study.addGroup(studyEntity, true, "Second");
  OptimizationGroup third = study.addGroup(studyEntity, true, "Third");
  OptimizationGroupVariable length = study.addVariable(first, fan, "Length");
  OptimizationGroupVariable width = study.addVariable(first, fan, "Width");
  OptimizationGroupVariable ratio = study.addVariable(third, fan, "Ratio");
  OptimizationGroupVariable count = study.addVariable(third, fan, "Count");
  OptimizationGroupVariable height = study.addVariable(third, fan, "Shape.Height");
};

// A study entity with something else than a list where its input groups should be.
struct StudyWithoutList {
  StudyWithoutList() {
    entity.add(AttributePath("OptimizationInputs"), std::make_unique<StudyTesting::ScriptedAttribute>());
  }
  StudyTesting::ScriptedEntity entity;
};

TEST_F(OptimizationGroupsTest, Construct_Side_IsTheListOfThatSide) {
  EXPECT_EQ(inputs.getGroupList(), StudyFixture::attribute(studyEntity, "OptimizationInputs"));
  EXPECT_EQ(outputs.getGroupList(), StudyFixture::attribute(studyEntity, "OptimizationOutputs"));
  EXPECT_TRUE(inputs.isInput());
  EXPECT_FALSE(outputs.isInput());
}

TEST_F(OptimizationGroupsTest, Construct_Path_IsTakenAsItIs) {
  const OptimizationGroups byPath(studyEntity, AttributePath("OptimizationInputs"));
  EXPECT_TRUE(byPath.isInput());
  EXPECT_EQ(byPath.getGroupList(), inputs.getGroupList());
  const OptimizationGroups parts(study.root(), AttributePath("Parts"));
  EXPECT_FALSE(parts.isInput());
  EXPECT_EQ(parts.size(), 1);
}

TEST_F(OptimizationGroupsTest, Copy_HasOwnerAndPath) {
  OptimizationGroups copy = inputs;
  EXPECT_TRUE(copy == inputs);
  EXPECT_TRUE(copy.isInput());
  copy = outputs;
  EXPECT_TRUE(copy == outputs);
  EXPECT_FALSE(copy.isInput());
}

TEST_F(OptimizationGroupsTest, Bool_WhetherThereIsAList) {
  EXPECT_TRUE(inputs);
  EXPECT_TRUE(outputs);
  EXPECT_FALSE(OptimizationGroups(nullptr, true));
  EXPECT_FALSE(OptimizationGroups(fan, true));
  EXPECT_FALSE(OptimizationGroups(fan, AttributePath("Length")));
}

TEST_F(OptimizationGroupsTest, Size_CountsGroups) {
  EXPECT_EQ(inputs.size(), 3);
  EXPECT_FALSE(inputs.empty());
  EXPECT_EQ(outputs.size(), 0);
  EXPECT_TRUE(outputs.empty());
}

TEST_F(OptimizationGroupsTest, NumberOfVariables_CountsThoseOfAllGroups) {
  EXPECT_EQ(inputs.numberOfvariables(), 5);
  EXPECT_EQ(outputs.numberOfvariables(), 0);
}

TEST_F(OptimizationGroupsTest, GetGroup_Index_IsTheEntryOfTheList) {
  EXPECT_EQ(inputs.getGroup(0).get(), first.get());
  EXPECT_EQ(inputs.getGroup(2).get(), third.get());
  EXPECT_FALSE(inputs.getGroup(3));
  EXPECT_FALSE(inputs.getGroup(-1));
}

TEST_F(OptimizationGroupsTest, GetGroup_Name_IsTheFirstWithExactlyThatName) {
  third.setName("First");
  EXPECT_EQ(inputs.getGroup("First").get(), first.get());
  EXPECT_EQ(inputs.getGroup("Second").get(), second.get());
  EXPECT_FALSE(inputs.getGroup("first"));
  EXPECT_FALSE(inputs.getGroup("Fan.Length"));
  EXPECT_FALSE(outputs.getGroup("First"));
}

TEST_F(OptimizationGroupsTest, GetGroup_EmptyName_IsTheFirstUnnamedGroup) {
  EXPECT_FALSE(inputs.getGroup(""));
  second.setName("");
  third.setName("");
  EXPECT_EQ(inputs.getGroup("").get(), second.get());
}

TEST_F(OptimizationGroupsTest, GetVariable_TwoIndices_IsTheVariableInTheGroup) {
  EXPECT_EQ(inputs.getVariable(0, 1).get(), width.get());
  EXPECT_EQ(inputs.getVariable(2, 0).get(), ratio.get());
  EXPECT_FALSE(inputs.getVariable(1, 0));
  EXPECT_FALSE(inputs.getVariable(2, 3));
  EXPECT_FALSE(inputs.getVariable(3, 0));
  EXPECT_FALSE(inputs.getVariable(-1, 0));
  EXPECT_FALSE(inputs.getVariable(0, -1));
}

TEST_F(OptimizationGroupsTest, FlatIndex_CountsOverAllGroupsAndSkipsEmptyOnes) {
  const std::pair<Entity *, Entity *> expected[] = {{first.get(), length.get()},
                                                    {first.get(), width.get()},
                                                    {third.get(), ratio.get()},
                                                    {third.get(), count.get()},
                                                    {third.get(), height.get()}};
  int flatIndex = 0;
  for (const auto &[group, variable] : expected) {
    const auto found = inputs.getGroupAndVariable(flatIndex);
    EXPECT_EQ(found.first.get(), group) << flatIndex;
    EXPECT_EQ(found.second.get(), variable) << flatIndex;
    EXPECT_EQ(inputs.getVariable(flatIndex).get(), variable) << flatIndex;
    ++flatIndex;
  }
}

TEST_F(OptimizationGroupsTest, FlatIndex_PastTheLastVariable_FindsNothing) {
  for (const int flatIndex : {5, 6, 1000}) {
    EXPECT_FALSE(inputs.getGroupAndVariable(flatIndex).first) << flatIndex;
    EXPECT_FALSE(inputs.getGroupAndVariable(flatIndex).second) << flatIndex;
    EXPECT_FALSE(inputs.getGroupAndAttribute(flatIndex).first) << flatIndex;
    EXPECT_EQ(inputs.getAttribute(flatIndex), nullptr) << flatIndex;
  }
  EXPECT_FALSE(outputs.getGroupAndVariable(0).first);
}

TEST_F(OptimizationGroupsTest, FlatIndex_Negative_FindsTheFirstGroupAndNoVariable) {
  const auto found = inputs.getGroupAndVariable(-1);
  EXPECT_EQ(found.first.get(), first.get());
  EXPECT_FALSE(found.second);
  EXPECT_EQ(inputs.getGroupAndAttribute(-1).first.get(), first.get());
  EXPECT_EQ(inputs.getGroupAndAttribute(-1).second, nullptr);
  const OptimizationGroup empty = study.addGroup(studyEntity, false, "Empty");
  EXPECT_EQ(outputs.getGroupAndVariable(-3).first.get(), empty.get());
}

TEST_F(OptimizationGroupsTest, GetAttribute_IsTheAttributeOfTheVariable) {
  EXPECT_EQ(inputs.getAttribute(4), fanAttribute("Shape.Height"));
  EXPECT_EQ(inputs.getAttribute(2, 1), fanAttribute("Count"));
  EXPECT_EQ(inputs.getAttribute(1, 0), nullptr);
  EXPECT_EQ(inputs.getGroupAndAttribute(2).first.get(), third.get());
  EXPECT_EQ(inputs.getGroupAndAttribute(2).second, fanAttribute("Ratio"));
}

TEST_F(OptimizationGroupsTest, GetAttribute_NotFound_IsNullButTheGroupIsGiven) {
  StudyFixture::set(ratio.get(), "Path", "Rato");
  EXPECT_EQ(inputs.getAttribute(2), nullptr);
  EXPECT_EQ(inputs.getAttribute(2, 0), nullptr);
  EXPECT_EQ(inputs.getGroupAndAttribute(2).first.get(), third.get());
  EXPECT_EQ(inputs.getGroupAndAttribute(2).second, nullptr);
}

TEST_F(OptimizationGroupsTest, GetVariableFromMacro_IsTheFirstInGroupOrder) {
  const OptimizationGroupVariable again = study.addVariable(second, fan, "Ratio");
  EXPECT_EQ(inputs.getVariableFromMacro("Fan.Ratio").get(), again.get());
  EXPECT_EQ(inputs.getVariableFromMacro("Fan.Shape.Height").get(), height.get());
  EXPECT_FALSE(inputs.getVariableFromMacro("Fan.Angle"));
  EXPECT_FALSE(outputs.getVariableFromMacro("Fan.Ratio"));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttribute_IsTheFirstGroupThatHasIt) {
  study.addVariable(second, fan, "Ratio");
  EXPECT_EQ(inputs.getGroupContainingAttribute(fanAttribute("Ratio")).get(), second.get());
  EXPECT_EQ(inputs.getGroupContainingAttribute(fanAttribute("Width")).get(), first.get());
  EXPECT_FALSE(inputs.getGroupContainingAttribute(fanAttribute("Angle")));
  EXPECT_FALSE(outputs.getGroupContainingAttribute(fanAttribute("Width")));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttribute_Null_IsANullGroup) {
  StudyFixture::set(ratio.get(), "Path", "Rato");
  EXPECT_FALSE(inputs.getGroupContainingAttribute(nullptr));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttribute_EntityAndPath_AreLookedUp) {
  EXPECT_EQ(inputs.getGroupContainingAttribute(fan, AttributePath("Count")).get(), third.get());
  EXPECT_FALSE(inputs.getGroupContainingAttribute(fan, AttributePath("Angle")));
  EXPECT_FALSE(inputs.getGroupContainingAttribute(fan, AttributePath("Cuont")));
  EXPECT_FALSE(inputs.getGroupContainingAttribute(nullptr, AttributePath("Count")));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttributes_IsTheFirstGroupThatHasThemAll) {
  const Attributes two = {fanAttribute("Count"), fanAttribute("Ratio")};
  const Attributes three = {fanAttribute("Count"), fanAttribute("Ratio"), fanAttribute("Shape.Height")};
  const Attributes mixed = {fanAttribute("Count"), fanAttribute("Length")};
  EXPECT_EQ(inputs.getGroupContainingAttributes(two, false).get(), third.get());
  EXPECT_FALSE(inputs.getGroupContainingAttributes(two, true));
  EXPECT_EQ(inputs.getGroupContainingAttributes(three, true).get(), third.get());
  EXPECT_FALSE(inputs.getGroupContainingAttributes(mixed, false));
  EXPECT_FALSE(inputs.getGroupContainingAttributes(Attributes{nullptr}, false));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttributes_Pairs_AreLookedUp) {
  const Pairs two = {{fan, AttributePath("Length")}, {fan, AttributePath("Width")}};
  const Pairs one = {{fan, AttributePath("Width")}};
  const Pairs mixed = {{fan, AttributePath("Width")}, {fan, AttributePath("Count")}};
  EXPECT_EQ(inputs.getGroupContainingAttributes(two, true).get(), first.get());
  EXPECT_EQ(inputs.getGroupContainingAttributes(one, false).get(), first.get());
  EXPECT_FALSE(inputs.getGroupContainingAttributes(one, true));
  EXPECT_FALSE(inputs.getGroupContainingAttributes(mixed, false));
}

TEST_F(OptimizationGroupsTest, GetGroupContainingAttributes_EmptyList_IsTheFirstGroupOfTheRightSize) {
  EXPECT_EQ(inputs.getGroupContainingAttributes(Attributes{}, false).get(), first.get());
  EXPECT_EQ(inputs.getGroupContainingAttributes(Attributes{}, true).get(), second.get());
  EXPECT_EQ(inputs.getGroupContainingAttributes(Pairs{}, false).get(), first.get());
  EXPECT_EQ(inputs.getGroupContainingAttributes(Pairs{}, true).get(), second.get());
  EXPECT_FALSE(outputs.getGroupContainingAttributes(Attributes{}, true));
}

TEST_F(OptimizationGroupsTest, ContainsAttribute_EntityAndPath_AreLookedUp) {
  EXPECT_TRUE(inputs.containsAttribute(fan, AttributePath("Shape.Height")));
  EXPECT_FALSE(inputs.containsAttribute(fan, AttributePath("Angle")));
  EXPECT_FALSE(inputs.containsAttribute(fan, AttributePath("Shape.Hieght")));
  EXPECT_FALSE(inputs.containsAttribute(nullptr, AttributePath("Length")));
  EXPECT_FALSE(outputs.containsAttribute(fan, AttributePath("Length")));
}

TEST_F(OptimizationGroupsTest, ContainsAttribute_Attribute_IsLookedUpThroughItsPlace) {
  EXPECT_TRUE(inputs.containsAttribute(fanAttribute("Shape.Height")));
  EXPECT_FALSE(inputs.containsAttribute(fanAttribute("Angle")));
  EXPECT_FALSE(inputs.containsAttribute(fanAttribute("Length")->clone().get()));
  EXPECT_FALSE(inputs.containsAttribute(nullptr));
}

TEST_F(OptimizationGroupsTest, ContainsAttribute_Entity_IsLookedUpByAnEmptyPath) {
  EXPECT_FALSE(inputs.containsAttribute(static_cast<Attribute *>(fan)));
  study.addVariable(second, fan, "");
  EXPECT_TRUE(inputs.containsAttribute(static_cast<Attribute *>(fan)));
  EXPECT_FALSE(inputs.containsAttribute(static_cast<Attribute *>(study.addPart("Pump"))));
}

TEST_F(OptimizationGroupsTest, AddToChangeSet_RecordsTheVariablesOfAllGroups) {
  Entity *pump = study.addPart("Pump");
  study.addVariable(second, pump, "Note");
  EntityModel::ChangeSet changes;
  inputs.addToChangeSet(changes);
  ASSERT_EQ(changes.getModifiedEntities().size(), 2U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, fan);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            (Attributes{fanAttribute("Length"), fanAttribute("Width"), fanAttribute("Ratio"),
                        fanAttribute("Count"), fanAttribute("Shape.Height")}));
  EXPECT_EQ(changes.getModifiedEntities()[1].entity, pump);
}

TEST_F(OptimizationGroupsTest, FixVariables_RepairsTheVariablesOfAllGroupsInOrder) {
  for (OptimizationGroupVariable variable : {length, count}) {
    variable.setLowBoundValue("7");
    variable.setHighBoundValue("3");
  }
  study.takeCalls();
  inputs.fixVariables();
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(First.OptimizationAttributes[0].HighBoundValue, "7", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Third.OptimizationAttributes[1].HighBoundValue, "7", force=false, affected=null, notify=true))",
      }));
}

TEST_F(OptimizationGroupsTest, Equality_SameExistingList_IsEqual) {
  Entity *otherStudy = study.addStudy();
  EXPECT_TRUE(inputs == OptimizationGroups(studyEntity, AttributePath("OptimizationInputs")));
  EXPECT_FALSE(inputs != OptimizationGroups(studyEntity, AttributePath("OptimizationInputs")));
  EXPECT_FALSE(inputs == outputs);
  EXPECT_TRUE(inputs != outputs);
  EXPECT_FALSE(inputs == OptimizationGroups(otherStudy, true));
  EXPECT_TRUE(inputs != OptimizationGroups(otherStudy, true));
}

TEST_F(OptimizationGroupsTest, Equality_MissingList_EqualsNothing) {
  const OptimizationGroups missing(nullptr, true);
  const OptimizationGroups noList(fan, true);
  EXPECT_FALSE(missing == missing);
  EXPECT_TRUE(missing != missing);
  EXPECT_FALSE(noList == noList);
  EXPECT_TRUE(noList != noList);
  EXPECT_FALSE(inputs == missing);
  EXPECT_TRUE(inputs != missing);
  EXPECT_FALSE(missing == inputs);
  EXPECT_TRUE(missing != inputs);
}

// A missing owner, a missing list and something else in its place answer alike.
void expectNothing(OptimizationGroups groups, StudyFixture &study, Entity *fan) {
  Attribute *length = StudyFixture::attribute(fan, "Length");
  EXPECT_FALSE(groups);
  EXPECT_TRUE(groups.empty());
  EXPECT_EQ(groups.size(), 0);
  EXPECT_EQ(groups.numberOfvariables(), 0);
  EXPECT_EQ(groups.getGroupList(), nullptr);
  EXPECT_FALSE(groups.getGroup(0));
  EXPECT_FALSE(groups.getGroup(""));
  EXPECT_FALSE(groups.getVariable(0));
  EXPECT_FALSE(groups.getVariable(0, 0));
  EXPECT_FALSE(groups.getGroupAndVariable(-1).first);
  EXPECT_FALSE(groups.getGroupAndAttribute(0).first);
  EXPECT_EQ(groups.getAttribute(0), nullptr);
  EXPECT_EQ(groups.getAttribute(0, 0), nullptr);
  EXPECT_FALSE(groups.getVariableFromMacro(""));
  EXPECT_FALSE(groups.getGroupContainingAttribute(length));
  EXPECT_FALSE(groups.getGroupContainingAttribute(fan, AttributePath("Length")));
  EXPECT_FALSE(groups.getGroupContainingAttributes(Attributes{}, false));
  EXPECT_FALSE(groups.getGroupContainingAttributes(Pairs{}, false));
  EXPECT_FALSE(groups.containsAttribute(length));
  EXPECT_FALSE(groups.containsAttribute(fan, AttributePath("Length")));
  EXPECT_FALSE(groups.appendGroup());
  EXPECT_FALSE(groups.moveGroup(0, 1));
  EXPECT_FALSE(groups.moveGroup(-1, 0));
  EXPECT_FALSE(groups.remove(0));
  EXPECT_FALSE(groups.removeVariable(0, true));
  EXPECT_FALSE(groups.removeVariable(0, 0, true));
  EXPECT_FALSE(groups.moveVariable(0, 0, 0, true));
  EntityModel::ChangeSet changes;
  groups.addToChangeSet(changes);
  EXPECT_TRUE(changes.isEmpty());
  groups.fixVariables();
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupsTest, MissingOwner_AnswersEveryCallWithNothing) {
  expectNothing(OptimizationGroups(nullptr, true), study, fan);
}

TEST_F(OptimizationGroupsTest, MissingList_AnswersEveryCallWithNothing) {
  expectNothing(OptimizationGroups(fan, true), study, fan);
}

TEST_F(OptimizationGroupsTest, SomethingElseInThePlaceOfTheList_CountsAsNoList) {
  StudyWithoutList broken;
  expectNothing(OptimizationGroups(&broken.entity, true), study, fan);
}

TEST_F(OptimizationGroupsTest, NullEntriesAndGroupsWithoutList_AreSkipped) {
  const auto ratioOfScript = StudyTesting::makeScriptedVariable(fan, "Ratio");
  const auto countOfScript = StudyTesting::makeScriptedVariable(fan, "Count");
  const auto full = StudyTesting::makeScriptedGroup({ratioOfScript.get(), countOfScript.get()});
  StudyTesting::ScriptedEntity withoutList;
  StudyTesting::ScriptedEntity owner;
  owner.add(AttributePath("OptimizationInputs"),
            std::make_unique<StudyTesting::ScriptedList>(
                std::vector<Entity *>{nullptr, &withoutList, nullptr, full.get()}));
  OptimizationGroups scripted(&owner, true);
  EXPECT_EQ(scripted.size(), 4);
  EXPECT_EQ(scripted.numberOfvariables(), 2);
  EXPECT_FALSE(scripted.getGroup(0));
  EXPECT_EQ(scripted.getGroup("").get(), &withoutList);
  EXPECT_FALSE(scripted.getVariable(0, 0));
  EXPECT_FALSE(scripted.getVariable(1, 0));
  EXPECT_EQ(scripted.getGroupAndVariable(0).first.get(), full.get());
  EXPECT_EQ(scripted.getVariable(1).get(), countOfScript.get());
  EXPECT_FALSE(scripted.getVariable(2));
  EXPECT_EQ(scripted.getGroupAndVariable(-1).first.get(), &withoutList);
  EXPECT_EQ(scripted.getVariableFromMacro("Fan.Count").get(), countOfScript.get());
  EXPECT_EQ(scripted.getGroupContainingAttribute(fanAttribute("Count")).get(), full.get());
  EXPECT_EQ(scripted.getGroupContainingAttributes(Attributes{}, true).get(), &withoutList);
  EXPECT_TRUE(scripted.containsAttribute(fanAttribute("Ratio")));
  EntityModel::ChangeSet changes;
  scripted.addToChangeSet(changes);
  EXPECT_EQ(changes.getModifiedEntities().size(), 1U);
  scripted.fixVariables();
  study.takeCalls();
  EXPECT_FALSE(scripted.remove(0));
  EXPECT_FALSE(scripted.moveGroup(0, 1));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

} // namespace
} // namespace OptimizationTool
