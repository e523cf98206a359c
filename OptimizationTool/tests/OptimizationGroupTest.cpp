#include "OptimizationTool/OptimizationGroup.h"

#include "HostModel/ChangeSet.h"
#include "OptimizationTool/OptimizationGroups.h"
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
using Pairs = std::vector<std::pair<Entity *, AttributePath>>;

static_assert(std::has_virtual_destructor_v<OptimizationGroup>);

class OptimizationGroupTest : public ::testing::Test {
protected:
  Attribute *fanAttribute(const std::string &path) { return StudyFixture::attribute(fan, path); }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  Entity *studyEntity = study.addStudy();
  OptimizationGroup group = study.addGroup(studyEntity, true, "Sizes");
};

// A group entity with something else than a list where its variables should be.
struct GroupWithoutList {
  GroupWithoutList() {
    entity.add(AttributePath("OptimizationAttributes"), std::make_unique<StudyTesting::ScriptedAttribute>());
  }
  StudyTesting::ScriptedEntity entity;
};

TEST_F(OptimizationGroupTest, Construct_DefaultOrNull_IsTheNullGroup) {
  EXPECT_FALSE(OptimizationGroup());
  EXPECT_FALSE(OptimizationGroup(nullptr));
  EXPECT_EQ(OptimizationGroup().get(), nullptr);
}

TEST_F(OptimizationGroupTest, Construct_Entity_HoldsIt) {
  EXPECT_TRUE(group);
  EXPECT_EQ(OptimizationGroup(fan).get(), fan);
}

TEST_F(OptimizationGroupTest, Copy_RefersToTheSameEntity) {
  OptimizationGroup copy = group;
  EXPECT_EQ(copy.get(), group.get());
  copy = OptimizationGroup(fan);
  EXPECT_EQ(copy.get(), fan);
}

TEST_F(OptimizationGroupTest, Size_CountsTheVariables) {
  EXPECT_EQ(group.size(), 0);
  EXPECT_TRUE(group.empty());
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Width");
  EXPECT_EQ(group.size(), 2);
  EXPECT_FALSE(group.empty());
}

TEST_F(OptimizationGroupTest, GetVariableList_IsTheListOfTheGroup) {
  EXPECT_NE(group.getVariableList(), nullptr);
  EXPECT_EQ(group.getVariableList(), StudyFixture::attribute(group.get(), "OptimizationAttributes"));
}

TEST_F(OptimizationGroupTest, GetVariable_IsTheEntryOfTheList) {
  const OptimizationGroupVariable first = study.addVariable(group, fan, "Length");
  const OptimizationGroupVariable second = study.addVariable(group, fan, "Width");
  EXPECT_EQ(group.getVariable(0).get(), first.get());
  EXPECT_EQ(group.getVariable(1).get(), second.get());
  EXPECT_EQ(group.getFrontVariable().get(), first.get());
}

TEST_F(OptimizationGroupTest, GetVariable_IndexOutOfRange_IsNull) {
  EXPECT_FALSE(group.getFrontVariable());
  study.addVariable(group, fan, "Length");
  EXPECT_FALSE(group.getVariable(1));
  EXPECT_FALSE(group.getVariable(-1));
}

TEST_F(OptimizationGroupTest, GetAttribute_IsTheAttributeOfTheVariable) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Width");
  EXPECT_EQ(group.getAttribute(0), fanAttribute("Length"));
  EXPECT_EQ(group.getAttribute(1), fanAttribute("Width"));
  EXPECT_EQ(group.getFrontAttribute(), fanAttribute("Length"));
}

TEST_F(OptimizationGroupTest, GetAttribute_NoVariableOrOwnerOrAttribute_IsNull) {
  EXPECT_EQ(group.getFrontAttribute(), nullptr);
  study.addVariable(group, nullptr, "Length");
  study.addVariable(group, fan, "Lenght");
  EXPECT_EQ(group.getAttribute(0), nullptr);
  EXPECT_EQ(group.getAttribute(1), nullptr);
  EXPECT_EQ(group.getAttribute(2), nullptr);
}

TEST_F(OptimizationGroupTest, GetIndex_IsThePositionInTheListThatHoldsTheGroup) {
  const OptimizationGroup second = study.addGroup(studyEntity, true, "Second");
  const OptimizationGroup output = study.addGroup(studyEntity, false, "Output");
  EXPECT_EQ(group.getIndex(), 0);
  EXPECT_EQ(second.getIndex(), 1);
  EXPECT_EQ(output.getIndex(), 0);
}

TEST_F(OptimizationGroupTest, GetGroups_IsTheListThatHoldsTheGroup) {
  const OptimizationGroup output = study.addGroup(studyEntity, false, "Output");
  EXPECT_TRUE(group.getGroups() == OptimizationGroups(studyEntity, true));
  EXPECT_TRUE(output.getGroups() == OptimizationGroups(studyEntity, false));
  EXPECT_TRUE(group.isInput());
  EXPECT_FALSE(output.isInput());
}

TEST_F(OptimizationGroupTest, GetGroups_AnotherList_IsTakenAsItIs) {
  // A part in the list of parts, used as a group.
  const OptimizationGroup part(fan);
  EXPECT_EQ(part.getGroups().getGroupList(), StudyFixture::attribute(study.root(), "Parts"));
  EXPECT_FALSE(part.isInput());
}

TEST_F(OptimizationGroupTest, Detached_HasNoIndexAndCountsAsOutput) {
  const OptimizationGroup removed = study.addGroup(studyEntity, true, "Removed");
  study.remove(removed.get());
  EXPECT_EQ(removed.getIndex(), -1);
  EXPECT_FALSE(removed.isInput());
  EXPECT_FALSE(removed.getGroups());
  EXPECT_EQ(removed.getGroups().getGroupList(), nullptr);
}

TEST_F(OptimizationGroupTest, GetName_IsTheStoredName) {
  EXPECT_EQ(group.getName(), "Sizes");
  EXPECT_EQ(study.addGroup(studyEntity, true, "").getName(), "");
}

TEST_F(OptimizationGroupTest, SetName_WritesItAndIgnoresTheAnswer) {
  group.setName("New name");
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Sizes.Group_Name, "New name", force=false, affected=null, notify=true))"}));
  EXPECT_EQ(group.getName(), "New name");
  study.faults().fail("EntityEditor::setValueNoThrow", HostTesting::FaultKind::Refused);
  group.setName("Refused");
  EXPECT_EQ(group.getName(), "New name");
}

TEST_F(OptimizationGroupTest, GetDisplayName_IsTheNameOrThatOfTheFirstVariable) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Width");
  EXPECT_EQ(group.getDisplayName(), "Sizes");
  group.setName("");
  EXPECT_EQ(group.getDisplayName(), "Fan.Length");
}

TEST_F(OptimizationGroupTest, GetDisplayName_UnnamedAndEmpty_IsEmpty) {
  EXPECT_EQ(study.addGroup(studyEntity, true, "").getDisplayName(), "");
}

TEST_F(OptimizationGroupTest, GetAttributeDisplayName_IsThatOfTheVariable) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, study.root(), "Depth");
  EXPECT_EQ(group.getAttributeDisplayName(0), "Fan.Length");
  EXPECT_EQ(group.getAttributeDisplayName(1), "Depth");
  EXPECT_EQ(group.getAttributeDisplayName(2), "");
  EXPECT_EQ(group.getAttributeDisplayName(-1), "");
}

TEST_F(OptimizationGroupTest, GetAttributeMacro_IsThatOfTheFirstVariable) {
  EXPECT_EQ(group.getAttributeMacro(), "");
  study.addVariable(group, study.root(), "Depth");
  study.addVariable(group, fan, "Length");
  EXPECT_EQ(group.getAttributeMacro(), study.root()->getName(true) + ".Depth");
}

TEST_F(OptimizationGroupTest, GetUnits_AreThoseOfTheFirstVariable) {
  EXPECT_EQ(group.getUnits(), "");
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Ratio");
  EXPECT_EQ(group.getUnits(), "mm");
}

TEST_F(OptimizationGroupTest, GetUnits_FirstVariableFindsNothing_AreEmpty) {
  study.addVariable(group, fan, "Lenght");
  study.addVariable(group, fan, "Length");
  EXPECT_EQ(group.getUnits(), "");
}

TEST_F(OptimizationGroupTest, GetToolTip_JoinsWithALineFeedWhereSomethingIsBefore) {
  EXPECT_EQ(group.getToolTip(), "");
  study.addVariable(group, fan, "Length");
  EXPECT_EQ(group.getToolTip(), "FanLength");
  study.addVariable(group, nullptr, "Length");
  EXPECT_EQ(group.getToolTip(), "FanLength\n");
  study.addVariable(group, fan, "Shape.Height");
  EXPECT_EQ(group.getToolTip(), "FanLength\n\nFan...Height");
}

TEST_F(OptimizationGroupTest, GetToolTip_EmptyAtTheFront_LeavesNoEmptyLine) {
  study.addVariable(group, nullptr, "Length");
  study.addVariable(group, nullptr, "Length");
  study.addVariable(group, fan, "Width");
  EXPECT_EQ(group.getToolTip(), "FanWidth");
}

TEST_F(OptimizationGroupTest, AppendVariable_OwnerAndPath_CreatesLinksAndNamesTheAttributeAtTheEnd) {
  study.addVariable(group, fan, "Length");
  study.takeCalls();
  const OptimizationGroupVariable variable = group.appendVariable(fan, AttributePath("Shape.Height"));
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::createEntity(OptimizationAttribute, Sizes.OptimizationAttributes, library=null, setDefaults=true, notify=true, select=false, "", position=-1))",
          R"(EntityEditor::addEntity(Sizes.OptimizationAttributes[1].ParentEntity, Fan, takeOwnership=false, checkType=true, notify=true, edited=true, select=false, position=-1))",
          R"(EntityEditor::setValueNoThrow(Sizes.OptimizationAttributes[1].Path, "Shape.Height", force=false, affected=null, notify=true))",
      }));
  EXPECT_EQ(variable.get(), group.getVariable(1).get());
  EXPECT_EQ(variable.getAttribute(), fanAttribute("Shape.Height"));
}

TEST_F(OptimizationGroupTest, AppendVariable_LeavesLimitsStepAndBoundsAsTheHostMadeThem) {
  const OptimizationGroupVariable variable = group.appendVariable(fan, AttributePath("Length"));
  EXPECT_EQ(variable.getMinimumValue(), "");
  EXPECT_EQ(variable.getMaximumValue(), "");
  EXPECT_EQ(variable.getStepValue(), "");
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
  EXPECT_EQ(variable.getHighBound(), std::nullopt);
}

TEST_F(OptimizationGroupTest, AppendVariable_Attribute_RefersToItsOwnerAndPath) {
  const OptimizationGroupVariable variable = group.appendVariable(fanAttribute("Shape.Height"));
  EXPECT_EQ(variable.getOwnerEntity(), fan);
  EXPECT_EQ(variable.getAttributePath(), AttributePath("Shape.Height"));
}

TEST_F(OptimizationGroupTest, AppendVariable_AttributeThatIsAnEntity_RefersToItByAnEmptyPath) {
  const OptimizationGroupVariable variable = group.appendVariable(static_cast<Attribute *>(fan));
  EXPECT_EQ(variable.getOwnerEntity(), fan);
  EXPECT_TRUE(variable.getAttributePath().empty());
  EXPECT_EQ(variable.getAttribute(), fan);
}

TEST_F(OptimizationGroupTest, AppendVariable_NullAttribute_IsNullAndCreatesNothing) {
  EXPECT_FALSE(group.appendVariable(nullptr));
  EXPECT_EQ(study.takeCalls(), Calls{});
  EXPECT_EQ(group.size(), 0);
}

TEST_F(OptimizationGroupTest, AppendVariable_SameAttributeTwice_IsNotRefused) {
  group.appendVariable(fanAttribute("Length"));
  group.appendVariable(fanAttribute("Length"));
  EXPECT_EQ(group.size(), 2);
}

TEST_F(OptimizationGroupTest, AppendVariable_WithoutOwner_HasAPathAlone) {
  const OptimizationGroupVariable variable = group.appendVariable(nullptr, AttributePath("Length"));
  EXPECT_TRUE(variable);
  EXPECT_EQ(variable.getOwnerEntity(), nullptr);
  EXPECT_EQ(variable.getAttributePath(), AttributePath("Length"));
}

TEST_F(OptimizationGroupTest, AppendVariable_HostCreatesNothing_IsNullAndWritesNothing) {
  study.faults().fail("EntityEditor::createEntity", HostTesting::FaultKind::Null);
  EXPECT_FALSE(group.appendVariable(fan, AttributePath("Length")));
  EXPECT_EQ(study.takeCalls().size(), 1U);
  EXPECT_EQ(group.size(), 0);
}

TEST_F(OptimizationGroupTest, AppendVariable_HostRefusesLinkAndPath_GivesTheVariableAllTheSame) {
  study.faults().fail("EntityEditor::addEntity", HostTesting::FaultKind::Refused);
  study.faults().fail("EntityEditor::setValueNoThrow", HostTesting::FaultKind::Refused);
  const OptimizationGroupVariable variable = group.appendVariable(fan, AttributePath("Length"));
  EXPECT_TRUE(variable);
  EXPECT_EQ(variable.getOwnerEntity(), nullptr);
}

TEST_F(OptimizationGroupTest, AppendVariable_NullGroupOrNoList_IsNullAndCreatesNothing) {
  GroupWithoutList broken;
  EXPECT_FALSE(OptimizationGroup().appendVariable(fan, AttributePath("Length")));
  EXPECT_FALSE(OptimizationGroup().appendVariable(fanAttribute("Length")));
  EXPECT_FALSE(OptimizationGroup(&broken.entity).appendVariable(fan, AttributePath("Length")));
  EXPECT_FALSE(OptimizationGroup(fan).appendVariable(fan, AttributePath("Length")));
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupTest, RemoveVariable_DeletesTheFirstThatRefersToTheAttribute) {
  study.addVariable(group, fan, "Width");
  study.addVariable(group, fan, "Length");
  const OptimizationGroupVariable second = study.addVariable(group, fan, "Length");
  EXPECT_TRUE(group.removeVariable(fanAttribute("Length")));
  EXPECT_EQ(study.takeCalls(),
            (Calls{"EntityEditor::deleteEntity(Sizes.OptimizationAttributes[1], force=false, notify=true)"}));
  EXPECT_EQ(group.size(), 2);
  EXPECT_EQ(group.getVariable(1).get(), second.get());
}

TEST_F(OptimizationGroupTest, RemoveVariable_NoneRefersToIt_IsFalseAndDeletesNothing) {
  study.addVariable(group, fan, "Width");
  study.addVariable(group, fan, "Lenght");
  EXPECT_FALSE(group.removeVariable(fanAttribute("Length")));
  EXPECT_FALSE(group.removeVariable(nullptr));
  EXPECT_EQ(study.takeCalls(), Calls{});
  EXPECT_EQ(group.size(), 2);
}

TEST_F(OptimizationGroupTest, RemoveVariable_HostRefuses_IsTrueAllTheSame) {
  study.addVariable(group, fan, "Length");
  study.faults().fail("EntityEditor::deleteEntity", HostTesting::FaultKind::Refused);
  EXPECT_TRUE(group.removeVariable(fanAttribute("Length")));
  EXPECT_EQ(group.size(), 1);
}

TEST_F(OptimizationGroupTest, GetVariableFromMacro_IsTheFirstWithExactlyThatMacro) {
  const OptimizationGroupVariable length = study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Length");
  const OptimizationGroupVariable height = study.addVariable(group, fan, "Shape.Height");
  EXPECT_EQ(group.getVariableFromMacro("Fan.Length").get(), length.get());
  EXPECT_EQ(group.getVariableFromMacro("Fan.Shape.Height").get(), height.get());
  EXPECT_FALSE(group.getVariableFromMacro("Fan.length"));
  EXPECT_FALSE(group.getVariableFromMacro("Length"));
  EXPECT_FALSE(group.getVariableFromMacro("Fan.Length "));
  EXPECT_FALSE(group.getVariableFromMacro(""));
}

TEST_F(OptimizationGroupTest, ContainsAttribute_WhetherAVariableRefersToIt) {
  study.addVariable(group, fan, "Width");
  study.addVariable(group, fan, "Length");
  EXPECT_TRUE(group.containsAttribute(fanAttribute("Length")));
  EXPECT_FALSE(group.containsAttribute(fanAttribute("Ratio")));
}

TEST_F(OptimizationGroupTest, ContainsAttribute_Null_IsFalseAlsoWhenAVariableFindsNone) {
  study.addVariable(group, fan, "Lenght");
  EXPECT_FALSE(group.containsAttribute(nullptr));
}

TEST_F(OptimizationGroupTest, ContainsAttribute_EntityAndPath_AreLookedUp) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Lenght");
  EXPECT_TRUE(group.containsAttribute(fan, AttributePath("Length")));
  EXPECT_FALSE(group.containsAttribute(fan, AttributePath("Width")));
  EXPECT_FALSE(group.containsAttribute(fan, AttributePath("Lenght")));
  EXPECT_FALSE(group.containsAttribute(nullptr, AttributePath("Length")));
}

TEST_F(OptimizationGroupTest, ContainsAttributes_EveryElementMustBeContained) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Width");
  study.addVariable(group, fan, "Ratio");
  const Attributes some = {fanAttribute("Ratio"), fanAttribute("Length")};
  const Attributes all = {fanAttribute("Ratio"), fanAttribute("Length"), fanAttribute("Width")};
  const Attributes other = {fanAttribute("Length"), fanAttribute("Width"), fanAttribute("Count")};
  EXPECT_TRUE(group.containsAttributes(some, false));
  EXPECT_FALSE(group.containsAttributes(some, true));
  EXPECT_TRUE(group.containsAttributes(all, false));
  EXPECT_TRUE(group.containsAttributes(all, true));
  EXPECT_FALSE(group.containsAttributes(other, false));
  EXPECT_FALSE(group.containsAttributes(other, true));
}

TEST_F(OptimizationGroupTest, ContainsAttributes_NullElement_IsFalse) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Lenght");
  EXPECT_FALSE(group.containsAttributes(Attributes{fanAttribute("Length"), nullptr}, false));
  EXPECT_FALSE(group.containsAttributes(Attributes{fanAttribute("Length"), nullptr}, true));
}

TEST_F(OptimizationGroupTest, ContainsAttributes_Pairs_AreLookedUp) {
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Width");
  const Pairs some = {{fan, AttributePath("Width")}};
  const Pairs all = {{fan, AttributePath("Width")}, {fan, AttributePath("Length")}};
  const Pairs other = {{fan, AttributePath("Width")}, {fan, AttributePath("Lenght")}};
  EXPECT_TRUE(group.containsAttributes(some, false));
  EXPECT_FALSE(group.containsAttributes(some, true));
  EXPECT_TRUE(group.containsAttributes(all, true));
  EXPECT_FALSE(group.containsAttributes(other, false));
  EXPECT_FALSE(group.containsAttributes(other, true));
}

TEST_F(OptimizationGroupTest, ContainsAttributes_EmptyList_IsTrueWhereTheSizeTestPasses) {
  EXPECT_TRUE(group.containsAttributes(Attributes{}, true));
  EXPECT_TRUE(group.containsAttributes(Pairs{}, true));
  study.addVariable(group, fan, "Length");
  EXPECT_TRUE(group.containsAttributes(Attributes{}, false));
  EXPECT_FALSE(group.containsAttributes(Attributes{}, true));
  EXPECT_TRUE(group.containsAttributes(Pairs{}, false));
  EXPECT_FALSE(group.containsAttributes(Pairs{}, true));
}

TEST_F(OptimizationGroupTest, IsSameType_ComparesTheFirstVariables) {
  const OptimizationGroup other = study.addGroup(studyEntity, true, "Other");
  study.addVariable(group, fan, "Length");
  study.addVariable(group, fan, "Note");
  study.addVariable(other, fan, "Width");
  EXPECT_TRUE(group.isSameType(other));
  EXPECT_TRUE(group.isSameType(&other));
  const OptimizationGroup third = study.addGroup(studyEntity, false, "Third");
  study.addVariable(third, fan, "Note");
  EXPECT_FALSE(group.isSameType(third));
  EXPECT_FALSE(group.isSameType(&third));
}

TEST_F(OptimizationGroupTest, IsSameType_FirstVariableFindsNothing_IsTrue) {
  const OptimizationGroup other = study.addGroup(studyEntity, true, "Other");
  study.addVariable(group, fan, "Length");
  study.addVariable(other, fan, "Lenght");
  EXPECT_TRUE(group.isSameType(other));
}

TEST_F(OptimizationGroupTest, IsSameType_NullOrEmptyOrWithoutList_IsFalse) {
  GroupWithoutList broken;
  const OptimizationGroup empty = study.addGroup(studyEntity, true, "Empty");
  study.addVariable(group, fan, "Length");
  const OptimizationGroup *null = nullptr;
  EXPECT_FALSE(group.isSameType(null));
  EXPECT_FALSE(group.isSameType(OptimizationGroup()));
  EXPECT_FALSE(OptimizationGroup().isSameType(group));
  EXPECT_FALSE(OptimizationGroup().isSameType(OptimizationGroup()));
  EXPECT_FALSE(group.isSameType(empty));
  EXPECT_FALSE(empty.isSameType(group));
  EXPECT_FALSE(empty.isSameType(empty));
  EXPECT_FALSE(group.isSameType(OptimizationGroup(&broken.entity)));
}

TEST_F(OptimizationGroupTest, AddToChangeSet_RecordsEveryVariableThatHasAnOwner) {
  Entity *pump = study.addPart("Pump");
  study.addVariable(group, fan, "Length");
  study.addVariable(group, nullptr, "Length");
  study.addVariable(group, pump, "Lenght");
  study.addVariable(group, fan, "Width");
  EntityModel::ChangeSet changes;
  group.addToChangeSet(changes);
  ASSERT_EQ(changes.getModifiedEntities().size(), 2U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, fan);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            (Attributes{fanAttribute("Length"), fanAttribute("Width")}));
  EXPECT_EQ(changes.getModifiedEntities()[1].entity, pump);
  EXPECT_TRUE(changes.getModifiedEntities()[1].attributes.empty());
}

TEST_F(OptimizationGroupTest, FixVariables_RepairsEveryVariableInOrder) {
  for (const char *step : {"7", "8"}) {
    OptimizationGroupVariable variable = study.addVariable(group, fan, "Count");
    variable.setMinimumValue("0");
    variable.setMaximumValue("3");
    variable.setStepValue(step);
  }
  study.takeCalls();
  group.fixVariables();
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Sizes.OptimizationAttributes[0].StepValue, "3", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Sizes.OptimizationAttributes[1].StepValue, "3", force=false, affected=null, notify=true))",
      }));
}

TEST_F(OptimizationGroupTest, Equality_SameEntity_IsEqual) {
  const OptimizationGroup other = study.addGroup(studyEntity, true, "Other");
  EXPECT_TRUE(group == OptimizationGroup(group.get()));
  EXPECT_FALSE(group != OptimizationGroup(group.get()));
  EXPECT_FALSE(group == other);
  EXPECT_TRUE(group != other);
}

TEST_F(OptimizationGroupTest, Equality_NullGroup_EqualsNothing) {
  EXPECT_FALSE(OptimizationGroup() == OptimizationGroup());
  EXPECT_TRUE(OptimizationGroup() != OptimizationGroup());
  EXPECT_FALSE(group == OptimizationGroup());
  EXPECT_TRUE(group != OptimizationGroup());
  EXPECT_FALSE(OptimizationGroup() == group);
  EXPECT_TRUE(OptimizationGroup() != group);
}

// A null group and one whose list is missing answer alike.
void expectNothing(OptimizationGroup group, StudyFixture &study, Entity *fan) {
  Attribute *length = StudyFixture::attribute(fan, "Length");
  EXPECT_EQ(group.size(), 0);
  EXPECT_TRUE(group.empty());
  EXPECT_EQ(group.getVariableList(), nullptr);
  EXPECT_FALSE(group.getVariable(0));
  EXPECT_FALSE(group.getFrontVariable());
  EXPECT_EQ(group.getAttribute(0), nullptr);
  EXPECT_EQ(group.getFrontAttribute(), nullptr);
  EXPECT_EQ(group.getIndex(), -1);
  EXPECT_FALSE(group.getGroups());
  EXPECT_FALSE(group.isInput());
  EXPECT_EQ(group.getName(), "");
  EXPECT_EQ(group.getDisplayName(), "");
  EXPECT_EQ(group.getAttributeDisplayName(0), "");
  EXPECT_EQ(group.getAttributeMacro(), "");
  EXPECT_EQ(group.getUnits(), "");
  EXPECT_EQ(group.getToolTip(), "");
  EXPECT_FALSE(group.removeVariable(length));
  EXPECT_FALSE(group.getVariableFromMacro(""));
  EXPECT_FALSE(group.containsAttribute(length));
  EXPECT_FALSE(group.containsAttribute(fan, AttributePath("Length")));
  EXPECT_FALSE(group.containsAttributes(Attributes{length}, false));
  EXPECT_TRUE(group.containsAttributes(Attributes{}, true));
  EntityModel::ChangeSet changes;
  group.addToChangeSet(changes);
  EXPECT_TRUE(changes.isEmpty());
  group.fixVariables();
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupTest, NullGroup_AnswersEveryQueryWithNothing) {
  expectNothing(OptimizationGroup(), study, fan);
  OptimizationGroup().setName("Name");
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupTest, SomethingElseInThePlaceOfTheList_CountsAsNoList) {
  GroupWithoutList broken;
  expectNothing(OptimizationGroup(&broken.entity), study, fan);
}

TEST_F(OptimizationGroupTest, ListThatTheHostDoesNotCallOne_CountsAsNoList) {
  class Unlisted : public StudyTesting::ScriptedList {
  public:
    using StudyTesting::ScriptedList::ScriptedList;
    bool isEntityList() const override { return false; }
  };
  const auto length = StudyTesting::makeScriptedVariable(fan, "Length");
  StudyTesting::ScriptedEntity entity;
  entity.add(AttributePath("OptimizationAttributes"),
             std::make_unique<Unlisted>(std::vector<Entity *>{length.get()}));
  expectNothing(OptimizationGroup(&entity), study, fan);
}

TEST_F(OptimizationGroupTest, NullEntriesOfTheList_AreSkipped) {
  const auto length = StudyTesting::makeScriptedVariable(fan, "Length");
  const auto width = StudyTesting::makeScriptedVariable(fan, "Width");
  const auto entity = StudyTesting::makeScriptedGroup({nullptr, length.get(), nullptr, width.get()});
  OptimizationGroup scripted(entity.get());
  EXPECT_EQ(scripted.size(), 4);
  EXPECT_FALSE(scripted.getVariable(0));
  EXPECT_EQ(scripted.getVariable(1).get(), length.get());
  EXPECT_EQ(scripted.getToolTip(), "FanLength\nFanWidth");
  EXPECT_EQ(scripted.getVariableFromMacro("Fan.Width").get(), width.get());
  EXPECT_FALSE(scripted.getVariableFromMacro(""));
  EXPECT_TRUE(scripted.containsAttribute(fanAttribute("Width")));
  EXPECT_FALSE(scripted.containsAttribute(fanAttribute("Ratio")));
  EntityModel::ChangeSet changes;
  scripted.addToChangeSet(changes);
  ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            (Attributes{fanAttribute("Length"), fanAttribute("Width")}));
  scripted.fixVariables();
  EXPECT_FALSE(scripted.removeVariable(fanAttribute("Ratio")));
}

TEST_F(OptimizationGroupTest, FirstPlaceOfTheListIsNull_GroupHasNoNameOfAVariable) {
  const auto length = StudyTesting::makeScriptedVariable(fan, "Length");
  const auto entity = StudyTesting::makeScriptedGroup({nullptr, length.get()});
  const OptimizationGroup scripted(entity.get());
  EXPECT_EQ(scripted.getDisplayName(), "");
  EXPECT_EQ(scripted.getAttributeMacro(), "");
  EXPECT_EQ(scripted.getUnits(), "");
  EXPECT_EQ(scripted.getFrontAttribute(), nullptr);
}

} // namespace
} // namespace OptimizationTool
