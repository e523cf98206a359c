#include "OptimizationTool/OptimizationGroupVariable.h"

#include "HostModel/ChangeSet.h"
#include "OptimizationTool/OptimizationGroup.h"
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
using Calls = std::vector<std::string>;

static_assert(sizeof(OptimizationGroupVariable) == sizeof(void *));
static_assert(!std::is_polymorphic_v<OptimizationGroupVariable>);
static_assert(std::is_trivially_copyable_v<OptimizationGroupVariable>);

class OptimizationGroupVariableTest : public ::testing::Test {
protected:
  OptimizationGroupVariableTest() {
    study.name(variable, "Variable");
    study.takeCalls();
  }

  StudyFixture study;
  Entity *fan = study.addPart("Fan");
  OptimizationGroup group = study.addGroup(study.addStudy(), true, "Sizes");
  OptimizationGroupVariable variable = study.addVariable(group, fan, "Length");
};

TEST_F(OptimizationGroupVariableTest, Construct_Default_IsTheNullHandle) {
  const OptimizationGroupVariable null;
  EXPECT_FALSE(null);
  EXPECT_EQ(null.get(), nullptr);
}

TEST_F(OptimizationGroupVariableTest, Construct_Entity_HoldsIt) {
  const OptimizationGroupVariable handle(fan);
  EXPECT_TRUE(handle);
  EXPECT_EQ(handle.get(), fan);
}

TEST_F(OptimizationGroupVariableTest, Copy_RefersToTheSameEntity) {
  OptimizationGroupVariable copy = variable;
  EXPECT_EQ(copy.get(), variable.get());
  copy = OptimizationGroupVariable(fan);
  EXPECT_EQ(copy.get(), fan);
}

TEST_F(OptimizationGroupVariableTest, GetOwnerEntity_IsTheLinkedEntity) {
  EXPECT_EQ(variable.getOwnerEntity(), fan);
}

TEST_F(OptimizationGroupVariableTest, GetOwnerEntity_WithoutLinkedEntity_IsNull) {
  EXPECT_EQ(study.addVariable(group, nullptr, "Length").getOwnerEntity(), nullptr);
  study.remove(fan);
  EXPECT_EQ(variable.getOwnerEntity(), nullptr);
}

TEST_F(OptimizationGroupVariableTest, GetAttributePath_IsThePathOfTheStoredText) {
  EXPECT_EQ(variable.getAttributePath(), AttributePath("Length"));
  EXPECT_EQ(study.addVariable(group, fan, "Shape.Height").getAttributePath().size(), 2U);
  EXPECT_TRUE(study.addVariable(group, fan, "").getAttributePath().empty());
}

TEST_F(OptimizationGroupVariableTest, GetAttribute_IsTheAttributeOfTheOwner) {
  EXPECT_NE(variable.getAttribute(), nullptr);
  EXPECT_EQ(variable.getAttribute(), StudyFixture::attribute(fan, "Length"));
  EXPECT_EQ(study.addVariable(group, fan, "Shape.Height").getAttribute(),
            StudyFixture::attribute(fan, "Shape.Height"));
}

TEST_F(OptimizationGroupVariableTest, GetAttribute_EmptyPath_IsTheOwnerItself) {
  EXPECT_EQ(study.addVariable(group, fan, "").getAttribute(), fan);
}

TEST_F(OptimizationGroupVariableTest, GetAttribute_WithoutOwnerOrWithAPathThatFindsNothing_IsNull) {
  EXPECT_EQ(study.addVariable(group, nullptr, "Length").getAttribute(), nullptr);
  EXPECT_EQ(study.addVariable(group, fan, "Lenght").getAttribute(), nullptr);
  EXPECT_EQ(study.addVariable(group, fan, "Length.Height").getAttribute(), nullptr);
}

TEST_F(OptimizationGroupVariableTest, GetAttribute_ReadsTheModelAfresh) {
  const OptimizationGroupVariable handle = variable;
  StudyFixture::set(variable.get(), "Path", "Width");
  EXPECT_EQ(handle.getAttribute(), StudyFixture::attribute(fan, "Width"));
}

TEST_F(OptimizationGroupVariableTest, GetGroup_IsTheGroupThatHoldsTheVariable) {
  EXPECT_EQ(variable.getGroup().get(), group.get());
}

TEST_F(OptimizationGroupVariableTest, GetGroup_EntityThatNothingHolds_IsNull) {
  EXPECT_FALSE(OptimizationGroupVariable(study.root()).getGroup());
}

TEST_F(OptimizationGroupVariableTest, GetIndex_IsThePositionInTheList) {
  const OptimizationGroupVariable second = study.addVariable(group, fan, "Width");
  EXPECT_EQ(variable.getIndex(), 0);
  EXPECT_EQ(second.getIndex(), 1);
}

TEST_F(OptimizationGroupVariableTest, GetIndex_EntityInNoList_IsMinusOne) {
  EXPECT_EQ(OptimizationGroupVariable(study.root()).getIndex(), -1);
  study.remove(variable.get());
  EXPECT_EQ(variable.getIndex(), -1);
}

TEST_F(OptimizationGroupVariableTest, GetIndex_HeldByALinkThatIsNoList_IsMinusOne) {
  StudyTesting::ScriptedEntity entity;
  StudyTesting::ScriptedLink link(&entity);
  link.owner = fan;
  entity.ownerLink = &link;
  EXPECT_EQ(OptimizationGroupVariable(&entity).getIndex(), -1);
  EXPECT_EQ(OptimizationGroupVariable(&entity).getGroup().get(), fan);
}

TEST_F(OptimizationGroupVariableTest, AddToChangeSet_RecordsOwnerAndAttribute) {
  EntityModel::ChangeSet changes;
  variable.addToChangeSet(changes);
  ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, fan);
  EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
            (std::vector<Attribute *>{StudyFixture::attribute(fan, "Length")}));
}

TEST_F(OptimizationGroupVariableTest, AddToChangeSet_AttributeNotFound_RecordsTheOwnerAlone) {
  EntityModel::ChangeSet changes;
  study.addVariable(group, fan, "Lenght").addToChangeSet(changes);
  ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, fan);
  EXPECT_TRUE(changes.getModifiedEntities()[0].attributes.empty());
}

TEST_F(OptimizationGroupVariableTest, AddToChangeSet_WithoutOwner_RecordsNothing) {
  EntityModel::ChangeSet changes;
  study.addVariable(group, nullptr, "Length").addToChangeSet(changes);
  OptimizationGroupVariable().addToChangeSet(changes);
  EXPECT_TRUE(changes.isEmpty());
}

TEST_F(OptimizationGroupVariableTest, GetDisplayName_IsOwnerDotPath) {
  EXPECT_EQ(variable.getDisplayName(), "Fan.Length");
  EXPECT_EQ(study.addVariable(group, fan, "Shape.Height").getDisplayName(), "Fan.Shape.Height");
  EXPECT_EQ(study.addVariable(group, fan, "").getDisplayName(), "Fan.");
}

TEST_F(OptimizationGroupVariableTest, GetDisplayName_OwnerIsTheRoot_IsThePathAlone) {
  EXPECT_EQ(study.addVariable(group, study.root(), "Depth").getDisplayName(), "Depth");
}

TEST_F(OptimizationGroupVariableTest, GetDisplayName_WithoutOwner_IsThePathAlone) {
  EXPECT_EQ(study.addVariable(group, nullptr, "Shape.Height").getDisplayName(), "Shape.Height");
}

TEST_F(OptimizationGroupVariableTest, GetAttributeMacro_IsOwnerDotPath) {
  EXPECT_EQ(variable.getAttributeMacro(), "Fan.Length");
  EXPECT_EQ(study.addVariable(group, fan, "Shape.Height").getAttributeMacro(), "Fan.Shape.Height");
  EXPECT_EQ(study.addVariable(group, fan, "").getAttributeMacro(), "Fan.");
}

TEST_F(OptimizationGroupVariableTest, GetAttributeMacro_OwnerIsTheRoot_HasItsNameAllTheSame) {
  EXPECT_EQ(study.addVariable(group, study.root(), "Depth").getAttributeMacro(),
            study.root()->getName(true) + ".Depth");
}

TEST_F(OptimizationGroupVariableTest, GetAttributeMacro_WithoutOwner_IsThePathAlone) {
  EXPECT_EQ(study.addVariable(group, nullptr, "Shape.Height").getAttributeMacro(), "Shape.Height");
}

TEST_F(OptimizationGroupVariableTest, Names_UseTheNameAsItIsDisplayed) {
  StudyTesting::ScriptedEntity owner("shown");
  const auto entity = StudyTesting::makeScriptedVariable(&owner, "Length");
  const OptimizationGroupVariable handle(entity.get());
  EXPECT_EQ(handle.getDisplayName(), "shown.Length");
  EXPECT_EQ(handle.getAttributeMacro(), "shown.Length");
  EXPECT_EQ(handle.getToolTip(), "shownLength");
}

TEST_F(OptimizationGroupVariableTest, GetToolTip_PathOfOneElement_FollowsTheOwnerWithoutSeparator) {
  EXPECT_EQ(variable.getToolTip(), "FanLength");
}

TEST_F(OptimizationGroupVariableTest, GetToolTip_LongerPath_IsOwnerEllipsisLastElement) {
  EXPECT_EQ(study.addVariable(group, fan, "Shape.Height").getToolTip(), "Fan...Height");
  EXPECT_EQ(study.addVariable(group, fan, "A.B.C").getToolTip(), "Fan...C");
}

TEST_F(OptimizationGroupVariableTest, GetToolTip_EmptyPath_IsTheOwnerAlone) {
  EXPECT_EQ(study.addVariable(group, fan, "").getToolTip(), "Fan");
}

TEST_F(OptimizationGroupVariableTest, GetToolTip_WithoutOwner_IsEmpty) {
  EXPECT_EQ(study.addVariable(group, nullptr, "Length").getToolTip(), "");
}

TEST_F(OptimizationGroupVariableTest, GetUnits_AreTheUnitsInWhichTheAttributeIsShown) {
  EXPECT_EQ(variable.getUnits(), "mm");
  EXPECT_EQ(study.addVariable(group, fan, "Ratio").getUnits(), "");
}

TEST_F(OptimizationGroupVariableTest, GetUnits_OfSeveralForms_AreThoseOfFormZero) {
  class Measured : public StudyTesting::ScriptedAttribute {
    std::string getUnits(int form) const override { return form == 0 ? "mm" : "[mm]"; }
  };
  StudyTesting::ScriptedEntity owner;
  owner.add(AttributePath("Value"), std::make_unique<Measured>());
  const auto entity = StudyTesting::makeScriptedVariable(&owner, "Value");
  EXPECT_EQ(OptimizationGroupVariable(entity.get()).getUnits(), "mm");
}

TEST_F(OptimizationGroupVariableTest, GetUnits_AttributeNotFound_AreEmpty) {
  EXPECT_EQ(study.addVariable(group, fan, "Lenght").getUnits(), "");
  EXPECT_EQ(study.addVariable(group, nullptr, "Length").getUnits(), "");
}

TEST_F(OptimizationGroupVariableTest, LimitsAndStep_AreEmptyUntilTheyAreSet) {
  EXPECT_EQ(variable.getMinimumValue(), "");
  EXPECT_EQ(variable.getMaximumValue(), "");
  EXPECT_EQ(variable.getStepValue(), "");
}

TEST_F(OptimizationGroupVariableTest, LimitsAndStep_AreReadFromTheirOwnMembers) {
  StudyFixture::set(variable.get(), "MinimumValue", "1 mm");
  StudyFixture::set(variable.get(), "MaximumValue", "9 mm");
  StudyFixture::set(variable.get(), "StepValue", "2 mm");
  EXPECT_EQ(variable.getMinimumValue(), "1 mm");
  EXPECT_EQ(variable.getMaximumValue(), "9 mm");
  EXPECT_EQ(variable.getStepValue(), "2 mm");
}

TEST_F(OptimizationGroupVariableTest, SetLimitsAndStep_WriteTextsThatAreNotLookedAt) {
  variable.setMinimumValue("one");
  variable.setMaximumValue("9 mm");
  variable.setStepValue("");
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(Variable.MinimumValue, "one", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.MaximumValue, "9 mm", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.StepValue, "", force=false, affected=null, notify=true))",
      }));
  EXPECT_EQ(variable.getMinimumValue(), "one");
  EXPECT_EQ(variable.getMaximumValue(), "9 mm");
}

TEST_F(OptimizationGroupVariableTest, Bounds_AreOffAndEmptyUntilTheyAreSet) {
  EXPECT_FALSE(variable.isLowBoundEnabled());
  EXPECT_FALSE(variable.isHighBoundEnabled());
  EXPECT_EQ(variable.getLowBoundValue(), "");
  EXPECT_EQ(variable.getHighBoundValue(), "");
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
  EXPECT_EQ(variable.getHighBound(), std::nullopt);
}

TEST_F(OptimizationGroupVariableTest, Bounds_AreReadFromTheirOwnMembers) {
  StudyFixture::set(variable.get(), "LowBoundEnabled", "1");
  StudyFixture::set(variable.get(), "LowBoundValue", "1 mm");
  StudyFixture::set(variable.get(), "HighBoundValue", "9 mm");
  EXPECT_TRUE(variable.isLowBoundEnabled());
  EXPECT_FALSE(variable.isHighBoundEnabled());
  EXPECT_EQ(variable.getLowBoundValue(), "1 mm");
  EXPECT_EQ(variable.getHighBoundValue(), "9 mm");
  EXPECT_EQ(variable.getLowBound(), "1 mm");
  EXPECT_EQ(variable.getHighBound(), std::nullopt);
  StudyFixture::set(variable.get(), "LowBoundEnabled", "0");
  StudyFixture::set(variable.get(), "HighBoundEnabled", "1");
  EXPECT_FALSE(variable.isLowBoundEnabled());
  EXPECT_TRUE(variable.isHighBoundEnabled());
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
  EXPECT_EQ(variable.getHighBound(), "9 mm");
}

TEST_F(OptimizationGroupVariableTest, GetBound_EnabledWithoutText_IsTheEmptyText) {
  variable.setLowBoundEnabled(true);
  variable.setHighBoundEnabled(true);
  EXPECT_EQ(variable.getLowBound(), "");
  EXPECT_EQ(variable.getHighBound(), "");
}

TEST_F(OptimizationGroupVariableTest, SetBoundSwitchesAndValues_WriteTheirOwnMembers) {
  variable.setLowBoundEnabled(true);
  variable.setHighBoundEnabled(false);
  variable.setLowBoundValue("1 mm");
  variable.setHighBoundValue("9 mm");
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(bool)(Variable.LowBoundEnabled, true, notify=true))",
          R"(EntityEditor::setValueNoThrow(bool)(Variable.HighBoundEnabled, false, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.LowBoundValue, "1 mm", force=false, affected=null, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.HighBoundValue, "9 mm", force=false, affected=null, notify=true))",
      }));
}

TEST_F(OptimizationGroupVariableTest, SetLowBound_Value_SwitchesItOnThenStoresIt) {
  variable.setLowBound("1 mm");
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(bool)(Variable.LowBoundEnabled, true, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.LowBoundValue, "1 mm", force=false, affected=null, notify=true))",
      }));
  EXPECT_EQ(variable.getLowBound(), "1 mm");
  EXPECT_EQ(variable.getHighBound(), std::nullopt);
}

TEST_F(OptimizationGroupVariableTest, SetHighBound_Value_SwitchesItOnThenStoresIt) {
  variable.setHighBound("9 mm");
  EXPECT_EQ(
      study.takeCalls(),
      (Calls{
          R"(EntityEditor::setValueNoThrow(bool)(Variable.HighBoundEnabled, true, notify=true))",
          R"(EntityEditor::setValueNoThrow(Variable.HighBoundValue, "9 mm", force=false, affected=null, notify=true))",
      }));
  EXPECT_EQ(variable.getHighBound(), "9 mm");
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
}

TEST_F(OptimizationGroupVariableTest, SetLowBound_Nothing_SwitchesItOffAndKeepsTheText) {
  variable.setLowBound("1 mm");
  study.takeCalls();
  variable.setLowBound(std::nullopt);
  EXPECT_EQ(study.takeCalls(),
            (Calls{R"(EntityEditor::setValueNoThrow(bool)(Variable.LowBoundEnabled, false, notify=true))"}));
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
  EXPECT_EQ(variable.getLowBoundValue(), "1 mm");
  variable.setLowBoundEnabled(true);
  EXPECT_EQ(variable.getLowBound(), "1 mm");
}

TEST_F(OptimizationGroupVariableTest, SetHighBound_Nothing_SwitchesItOffAndKeepsTheText) {
  variable.setHighBound("9 mm");
  study.takeCalls();
  variable.setHighBound(std::nullopt);
  EXPECT_EQ(study.takeCalls(),
            (Calls{R"(EntityEditor::setValueNoThrow(bool)(Variable.HighBoundEnabled, false, notify=true))"}));
  EXPECT_EQ(variable.getHighBound(), std::nullopt);
  EXPECT_EQ(variable.getHighBoundValue(), "9 mm");
  variable.setHighBoundEnabled(true);
  EXPECT_EQ(variable.getHighBound(), "9 mm");
}

TEST_F(OptimizationGroupVariableTest, Setters_HostRefuses_AreIgnored) {
  study.faults().fail("EntityEditor::setValueNoThrow", HostTesting::FaultKind::Refused);
  study.faults().fail("EntityEditor::setValueNoThrow(bool)", HostTesting::FaultKind::Refused);
  variable.setMinimumValue("1 mm");
  variable.setLowBound("2 mm");
  study.faults().heal();
  EXPECT_EQ(variable.getMinimumValue(), "");
  EXPECT_EQ(variable.getLowBound(), std::nullopt);
  EXPECT_EQ(variable.getLowBoundValue(), "");
}

TEST_F(OptimizationGroupVariableTest, NullHandle_AnswersEveryQueryWithNothing) {
  const OptimizationGroupVariable null;
  EXPECT_EQ(null.getOwnerEntity(), nullptr);
  EXPECT_TRUE(null.getAttributePath().empty());
  EXPECT_EQ(null.getAttribute(), nullptr);
  EXPECT_FALSE(null.getGroup());
  EXPECT_EQ(null.getIndex(), -1);
  EXPECT_EQ(null.getDisplayName(), "");
  EXPECT_EQ(null.getAttributeMacro(), "");
  EXPECT_EQ(null.getToolTip(), "");
  EXPECT_EQ(null.getUnits(), "");
  EXPECT_FALSE(null.isAttribute(StudyFixture::attribute(fan, "Length")));
  EXPECT_FALSE(null.isAttribute(fan, AttributePath("Length")));
}

TEST_F(OptimizationGroupVariableTest, NullHandle_SettingsAreHarmless) {
  OptimizationGroupVariable null;
  EXPECT_EQ(null.getMinimumValue(), "");
  EXPECT_EQ(null.getMaximumValue(), "");
  EXPECT_EQ(null.getStepValue(), "");
  EXPECT_EQ(null.getLowBoundValue(), "");
  EXPECT_EQ(null.getHighBoundValue(), "");
  EXPECT_EQ(null.getLowBound(), std::nullopt);
  EXPECT_EQ(null.getHighBound(), std::nullopt);
  null.setMinimumValue("1");
  null.setMaximumValue("1");
  null.setStepValue("1");
  null.setLowBound("1");
  null.setHighBound("1");
  EXPECT_EQ(study.takeCalls(), Calls{});
}

TEST_F(OptimizationGroupVariableTest, IsAttribute_TheAttributeItself_IsTrueAndAnythingElseFalse) {
  EXPECT_TRUE(variable.isAttribute(StudyFixture::attribute(fan, "Length")));
  EXPECT_FALSE(variable.isAttribute(StudyFixture::attribute(fan, "Width")));
  EXPECT_FALSE(variable.isAttribute(StudyFixture::attribute(study.addPart("Pump"), "Length")));
}

TEST_F(OptimizationGroupVariableTest, IsAttribute_NullAttribute_IsFalseAlsoWhenTheVariableFindsNone) {
  const Attribute *null = nullptr;
  EXPECT_FALSE(variable.isAttribute(null));
  EXPECT_FALSE(study.addVariable(group, fan, "Lenght").isAttribute(null));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_SameOwnerAndPath_IsTrue) {
  EXPECT_TRUE(variable.isAttribute(fan, AttributePath("Length")));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_SamePathThatFindsNothing_IsTrue) {
  EXPECT_TRUE(study.addVariable(group, fan, "Lenght").isAttribute(fan, AttributePath("Lenght")));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_OtherOwner_IsFalse) {
  EXPECT_FALSE(variable.isAttribute(study.addPart("Pump"), AttributePath("Length")));
  EXPECT_FALSE(variable.isAttribute(nullptr, AttributePath("Length")));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_OtherPath_IsFalse) {
  EXPECT_FALSE(variable.isAttribute(fan, AttributePath("Width")));
  EXPECT_FALSE(variable.isAttribute(fan, AttributePath("Lenght")));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_OtherPathToTheSameAttribute_IsTrue) {
  // An entity whose members "Alias" and "Length" are one and the same.
  class Owner : public StudyTesting::ScriptedEntity {
  public:
    Attribute *findAttribute(const AttributePath &path) override {
      return path.toString('.') == "Alias" || path.toString('.') == "Length" ? &m_member : nullptr;
    }
    using StudyTesting::ScriptedEntity::findAttribute;

  private:
    StudyTesting::ScriptedAttribute m_member;
  };
  Owner owner;
  const auto entity = StudyTesting::makeScriptedVariable(&owner, "Length");
  const OptimizationGroupVariable handle(entity.get());
  EXPECT_TRUE(handle.isAttribute(&owner, AttributePath("Alias")));
  EXPECT_FALSE(handle.isAttribute(&owner, AttributePath("Width")));
}

TEST_F(OptimizationGroupVariableTest, IsAttributeAtPath_WithoutOwnerAndForNoEntity_ComparesThePaths) {
  const OptimizationGroupVariable orphan = study.addVariable(group, nullptr, "Length");
  EXPECT_TRUE(orphan.isAttribute(nullptr, AttributePath("Length")));
  EXPECT_FALSE(orphan.isAttribute(nullptr, AttributePath("Width")));
  EXPECT_FALSE(orphan.isAttribute(fan, AttributePath("Length")));
}

} // namespace
} // namespace OptimizationTool
