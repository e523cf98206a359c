// Where studies are stored: with the project, the same whichever version is current.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;

namespace {

/// A study with one input, the width of part A.
struct StoredStudy {
  explicit StoredStudy(const Scene &scene)
      : study(scene.create("OptimizationData", scene.root(), "OptimizationDataList", "")),
        group(scene.create("OptimizationGroup", study, "OptimizationInputs", "")),
        variable(scene.create("OptimizationAttribute", group, "OptimizationAttributes", "")) {
    if (variable == nullptr || !scene.link(variable, "ParentEntity", scene.partA())) {
      throw std::logic_error("The study was not stored");
    }
    scene.set(variable, "Path", "Width");
  }

  Entity *study;
  Entity *group;
  Entity *variable;
};

} // namespace

std::vector<Rule> studyStorageRules() {
  return {
      {"Storage_Types_HaveTheirMembers",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         for (const char *path : {"BaseVersionName", "CopyVersionName", "CostFunction"}) {
           EXPECT_TRUE(scene.attribute(stored.study, path).isText()) << path;
           EXPECT_EQ(scene.text(stored.study, path), "") << path;
         }
         EXPECT_TRUE(scene.attribute(stored.study, "OptimisationTarget").isTypeReference());
         EXPECT_TRUE(scene.attribute(stored.study, "OptimizationInputs").isEntityList());
         EXPECT_TRUE(scene.attribute(stored.study, "OptimizationOutputs").isEntityList());
         EXPECT_TRUE(scene.attribute(stored.study, "OptimalityConfigurationLink").isEntityLink());
         EXPECT_FALSE(scene.attribute(stored.study, "OptimalityConfigurationLink").isEntityList());
         EXPECT_TRUE(scene.attribute(stored.group, "Group_Name").isText());
         EXPECT_TRUE(scene.attribute(stored.group, "OptimizationAttributes").isEntityList());
         for (const char *path :
              {"Path", "MinimumValue", "MaximumValue", "StepValue", "LowBoundValue", "HighBoundValue"}) {
           EXPECT_TRUE(scene.attribute(stored.variable, path).isText()) << path;
         }
         EXPECT_EQ(scene.text(stored.variable, "LowBoundEnabled"), "0");
         EXPECT_EQ(scene.text(stored.variable, "HighBoundEnabled"), "0");
         EXPECT_TRUE(scene.attribute(stored.variable, "LowBoundEnabled").isBoolean());
       }},
      {"Storage_Configuration_IsMadeInItsLinkOnce",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         Entity *made =
             scene.create("OptimalityConfiguration", stored.study, "OptimalityConfigurationLink", "");
         ASSERT_NE(made, nullptr);
         EXPECT_EQ(EntityModel::getLinkedEntity(stored.study, AttributePath("OptimalityConfigurationLink")),
                   made);
         EXPECT_EQ(scene.create("OptimalityConfiguration", stored.study, "OptimalityConfigurationLink", ""),
                   nullptr);
       }},
      {"Storage_IsTheSameInEveryVersion",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *row = scene.alternate(copy, "Row");
         const StoredStudy stored(scene);
         scene.show(row);
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getEntity(0), stored.study);
         EXPECT_EQ(scene.list(stored.study, "OptimizationInputs").getCount(), 1);
         EXPECT_EQ(scene.text(stored.variable, "Path"), "Width");
         EXPECT_EQ(EntityModel::getLinkedEntity(stored.variable, AttributePath("ParentEntity")),
                   scene.partA());
       }},
      {"Storage_MadeInAnyVersion_IsThereInAll",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         const StoredStudy stored(scene);
         scene.set(stored.study, "CostFunction", "1 + 1");
         EXPECT_EQ(Scene::recorded(next, stored.study, "CostFunction"), "(none)");
         scene.show(scene.base());
         ASSERT_EQ(scene.list(scene.root(), "OptimizationDataList").getEntity(0), stored.study);
         EXPECT_EQ(scene.text(stored.study, "CostFunction"), "1 + 1");
         EXPECT_EQ(scene.list(stored.group, "OptimizationAttributes").getEntity(0), stored.variable);
       }},
      {"Storage_DeletedInAnyVersion_IsGoneFromAll",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         ASSERT_TRUE(EntityEditor::deleteEntity(stored.study, false, true));
         scene.show(scene.base());
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getCount(), 0);
         EXPECT_EQ(scene.find(stored.variable, "Path"), nullptr);
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
       }},
      {"Storage_OutlivesTheVersionItWasMadeIn",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         const StoredStudy stored(scene);
         scene.show(scene.base());
         ASSERT_TRUE(scene.destroy({next}));
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getEntity(0), stored.study);
         EXPECT_EQ(scene.text(stored.variable, "Path"), "Width");
       }},
      {"Storage_LinkToAModelEntity_IsNullWhereTheVersionLacksIt",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partA(), false, true));
         EXPECT_EQ(EntityModel::getLinkedEntity(stored.variable, AttributePath("ParentEntity")), nullptr);
         scene.show(scene.base());
         EXPECT_EQ(EntityModel::getLinkedEntity(stored.variable, AttributePath("ParentEntity")),
                   scene.partA());
       }},
      {"Storage_DeletedVariable_LeavesTheModelAlone",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         ASSERT_TRUE(EntityEditor::deleteEntity(stored.group, false, true));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(scene.find(stored.variable, "Path"), nullptr);
       }},
      {"Storage_Variable_MovesToTheEndOfAnotherGroup",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         Entity *other = scene.create("OptimizationGroup", stored.study, "OptimizationInputs", "");
         Entity *there = scene.create("OptimizationAttribute", other, "OptimizationAttributes", "");
         EntityModel::ListAttribute &target = scene.list(other, "OptimizationAttributes");
         ASSERT_TRUE(EntityEditor::moveEntity(stored.variable, other, &target, true, -1));
         EXPECT_EQ(scene.list(stored.group, "OptimizationAttributes").getCount(), 0);
         ASSERT_EQ(target.getCount(), 2);
         EXPECT_EQ(target.getEntity(0), there);
         EXPECT_EQ(target.getEntity(1), stored.variable);
         EXPECT_EQ(scene.text(stored.variable, "Path"), "Width");
       }},
      {"Storage_SeveralStudies_StandSideBySide",
       [](Scene &scene) {
         const StoredStudy first(scene);
         const StoredStudy second(scene);
         scene.set(first.study, "BaseVersionName", "Base");
         scene.set(second.study, "BaseVersionName", "Other");
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getCount(), 2);
         ASSERT_TRUE(EntityEditor::deleteEntity(first.study, false, true));
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getEntity(0), second.study);
         EXPECT_EQ(scene.text(second.study, "BaseVersionName"), "Other");
       }},
      {"Storage_IsKeptFromUsers",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         EXPECT_TRUE(scene.attribute(stored.study, "CostFunction").isInternal());
         EXPECT_TRUE(scene.attribute(stored.variable, "Path").isInternal());
       }},
      {"Storage_ReadOnlyVersion_KeepsNobodyFromWritingIt",
       [](Scene &scene) {
         const StoredStudy stored(scene);
         scene.base()->setReadOnlyVersion("true");
         scene.set(stored.study, "CostFunction", "2");
         EXPECT_EQ(scene.text(stored.study, "CostFunction"), "2");
       }},
  };
}

} // namespace HostContract
