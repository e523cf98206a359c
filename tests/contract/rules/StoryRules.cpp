// The library at work over the host: what has to come out of it, however the host goes about its part.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Story.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationManager;
using VersionType = ModelVersion::VersionType;

std::vector<Rule> storyRules() {
  return {
      {"Story_Begin_MarksTheBaselineAndMakesItsCopy",
       [](Scene &scene) {
         EXPECT_TRUE(Story::manager().canBeginStudy(scene.base()));
         const Story story(scene);
         EXPECT_EQ(scene.base()->getStudyType(), ModelVersionStudyType::Parametric);
         EXPECT_EQ(Story::study().getBaseVersionName(), "Base");
         EXPECT_EQ(story.copy()->getPrevious(), scene.base());
         EXPECT_EQ(story.copy()->getVersionType(), VersionType::Copy);
         EXPECT_EQ(Scene::followers(scene.base()).size(), 1U);
         EXPECT_EQ(Story::rows(), (Texts{"Base"}));
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_FALSE(Story::study().isEditingVersions());
         EXPECT_FALSE(Story::manager().canBeginStudy(story.copy()));
       }},
      {"Story_Rows_AreAlternatesWithInputsOfTheirOwn",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         ModelVersion *copy = story.copy();
         EXPECT_EQ(scene.alternates(copy), (Texts{"One", "Two"}));
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         scene.show(story.version("Two"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 3.0);
         EXPECT_EQ(scene.number(scene.partA(), "Ratio"), 0.2);
         scene.show(copy);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
       }},
      {"Story_RowEdited_IsWrittenIntoItsVersionOnly",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         Story::study().setVariantValue(1, 0, "7");
         EXPECT_EQ(Story::cells(1), (Numbers{7.0, 0.1, std::nullopt}));
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         scene.show(story.version("Two"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 3.0);
         scene.show(story.version("One"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 7.0);
       }},
      {"Story_Solve_EveryRowHasItsOwnResultAndCost",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         const OptimizationData *before = &Story::study();
         story.solve();
         EXPECT_EQ(&Story::study(), before);
         EXPECT_EQ(Story::cells(0), (Numbers{4.0, 0.5, 40.0}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, 20.0}));
         EXPECT_EQ(Story::cells(2), (Numbers{3.0, 0.2, 30.0}));
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2}));
         EXPECT_EQ(scene.current(), scene.base());
       }},
      {"Story_Reload_GivesTheSameRows",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         story.solve();
         story.reload();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         EXPECT_EQ(Story::cells(0), (Numbers{4.0, 0.5, 40.0}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, 20.0}));
         EXPECT_EQ(Story::cells(2), (Numbers{3.0, 0.2, 30.0}));
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2}));
       }},
      {"Story_ResultTakenAway_StaysAwayAfterAReload",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         story.solve();
         scene.show(story.version("One"));
         scene.set(scene.partA(), "Mass", "");
         scene.show(scene.base());
         story.reload();
         EXPECT_EQ(Story::cells(0), (Numbers{4.0, 0.5, 40.0}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, std::nullopt}));
       }},
      {"Story_EditOfTheBaseline_BecomesItsRowAndNoOther",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         ASSERT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Width"), "6", true));
         EXPECT_EQ(Story::cells(0), (Numbers{6.0, 0.5, std::nullopt}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, std::nullopt}));
         story.reload();
         EXPECT_EQ(Story::cells(0), (Numbers{6.0, 0.5, std::nullopt}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, std::nullopt}));
       }},
      {"Story_RowWithTheBaselinesValue_DoesNotFollowTheBaseline",
       [](Scene &scene) {
         Story story(scene);
         story.addRow("Same", "4", "0.5");
         ASSERT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Width"), "6", true));
         story.reload();
         EXPECT_EQ(Story::cells(0), (Numbers{6.0, 0.5, std::nullopt}));
         EXPECT_EQ(Story::cells(1), (Numbers{4.0, 0.5, std::nullopt}));
       }},
      {"Story_CellsWrittenBack_RestoreAVersion",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         {
           const OptimizationTool::OptimizationDataSolvingGuard guard(Story::study());
           scene.show(story.version("One"));
           scene.set(scene.partA(), "Width", "99");
           scene.show(scene.base());
         }
         Story::study().updateAlternate(OptimizationData::WriteToModel, "One");
         EXPECT_EQ(scene.current(), scene.base());
         scene.show(story.version("One"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 2.0);
       }},
      {"Story_RowRenamed_ItsVersionIsToo",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         const ModelVersion *one = story.version("One");
         Story::study().setVariantName(1, "Uno");
         EXPECT_EQ(scene.find("Uno"), one);
         EXPECT_EQ(scene.find("One"), nullptr);
         story.reload();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "Uno", "Two"}));
       }},
      {"Story_RowRemoved_ItsVersionIsGone",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         Story::study().removeVariant(1, true);
         EXPECT_EQ(scene.find("One"), nullptr);
         EXPECT_EQ(Story::rows(), (Texts{"Base", "Two"}));
         story.reload();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "Two"}));
       }},
      {"Story_RowReleased_ItsVersionIsKeptAndItsRowDoesNotComeBack",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         Story::study().removeVariant(1, false);
         story.reload();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "Two"}));
         EXPECT_EQ(story.version("One")->getVersionType(), VersionType::Ordinary);
         scene.show(story.version("One"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 2.0);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
       }},
      {"Story_VersionOfARowLost_IsMadeAgain",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         ASSERT_TRUE(scene.destroy({story.version("One")}));
         EXPECT_FALSE(Story::study().allVersionsExist());
         Story::study().createMissingVersions();
         EXPECT_TRUE(Story::study().allVersionsExist());
         Story::study().updateAlternates(OptimizationData::WriteToModel, nullptr);
         scene.show(story.version("One"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 2.0);
       }},
      {"Story_EndDestroying_LeavesTheBaselineAlone",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         Story::manager().endStudy(true);
         EXPECT_FALSE(Story::isHeld());
         EXPECT_EQ(Scene::followers(scene.base()), Texts{});
         EXPECT_EQ(scene.list(scene.root(), "OptimizationDataList").getCount(), 0);
         EXPECT_EQ(scene.base()->getVersionType(), VersionType::Ordinary);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         const Story again(scene);
         EXPECT_EQ(Story::rows(), (Texts{"Base"}));
       }},
      {"Story_EndKeeping_LeavesOrdinaryEditableVersions",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         const std::string copy = Story::study().getCopyVersionName();
         Story::manager().endStudy(false);
         EXPECT_FALSE(Story::isHeld());
         for (const std::string &label : {std::string("One"), std::string("Two"), copy}) {
           EXPECT_EQ(story.version(label)->getVersionType(), VersionType::Ordinary) << label;
           scene.show(story.version(label));
           EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(true)) << label;
         }
       }},
      {"Story_EndFromARow_ShowsASurvivor",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         scene.show(story.version("One"));
         Story::manager().endStudy(true);
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(Scene::followers(scene.base()), Texts{});
       }},
      {"Story_SwitchedAwayAndBack_TheStudyIsThereAgain",
       [](Scene &scene) {
         ModelVersion *other = scene.follow(scene.base(), "Other");
         Story story(scene);
         story.addRows();
         story.solve();
         scene.showAsUser(other);
         EXPECT_FALSE(Story::isHeld());
         scene.showAsUser(scene.base());
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2}));
       }},
      {"Story_TwoStudies_AreHeldByTurns",
       [](Scene &scene) {
         ModelVersion *other = scene.follow(scene.base(), "Other");
         Story story(scene);
         story.addRows();
         scene.showAsUser(other);
         Story second(scene);
         second.addRow("Three", "8", "0.8");
         EXPECT_EQ(Story::rows(), (Texts{"Other", "Three"}));
         scene.showAsUser(scene.base());
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         scene.showAsUser(other);
         EXPECT_EQ(Story::rows(), (Texts{"Other", "Three"}));
         EXPECT_EQ(Story::cells(1), (Numbers{8.0, 0.8, std::nullopt}));
       }},
      {"Story_Guarded_NoSwitchReloadsTheStudy",
       [](Scene &scene) {
         ModelVersion *other = scene.follow(scene.base(), "Other");
         Story story(scene);
         story.addRows();
         OptimizationData *held = &Story::study();
         const OptimizationTool::OptimizationDataSolvingGuard guard(*held);
         scene.showAsUser(other);
         EXPECT_EQ(Story::manager().getData(), held);
         ASSERT_TRUE(EntityManager::setValue(scene.partA(), AttributePath("Width"), "6", true));
         EXPECT_EQ(Story::cells(0), (Numbers{4.0, 0.5, std::nullopt}));
         scene.showAsUser(scene.base());
         EXPECT_EQ(Story::manager().getData(), held);
       }},
      {"Story_EntityDeletedInARow_TheOthersAreUpdated",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         scene.show(story.version("One"));
         ASSERT_TRUE(EntityModel::EntityEditor::deleteEntity(scene.partA(), false, true));
         scene.show(scene.base());
         Story::study().updateAlternates(OptimizationData::WriteToModel, nullptr);
         EXPECT_EQ(scene.current(), scene.base());
         scene.show(story.version("Two"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 3.0);
       }},
      {"Story_SameCostTextAgain_BuildsItAgain",
       [](Scene &scene) {
         Story story(scene);
         Story::manager().addOutputAttribute(scene.partB(), AttributePath("Mass"));
         Story::study().setCostFunction(Story::study().getCostFunction());
         story.addRows();
         story.solve();
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2}));
       }},
      {"Story_WhatMayTakePart",
       [](Scene &scene) {
         const Story story(scene);
         const auto isValid = [&scene](Entity *entity, const char *path, bool isInput) {
           return OptimizationManager::isItemValid(scene.find(entity, path), isInput, !isInput,
                                                   ModelVersionStudyType::Parametric);
         };
         EXPECT_TRUE(isValid(scene.partA(), "Width", true));
         EXPECT_TRUE(isValid(scene.partA(), "Open", true));
         EXPECT_FALSE(isValid(scene.partA(), "Mass", true));
         EXPECT_TRUE(isValid(scene.partA(), "Mass", false));
         EXPECT_FALSE(isValid(Story::study().get(), "CostFunction", true));
         EXPECT_FALSE(isValid(scene.root(), "Parts", true));
       }},
      {"Story_OptimalityStudy_HasAConfigurationAndLimits",
       [](Scene &scene) {
         const Story story(scene, ModelVersionStudyType::Optimality);
         Entity *study = Story::study().get();
         EXPECT_NE(EntityModel::getLinkedEntity(study, AttributePath("OptimalityConfigurationLink")),
                   nullptr);
         const Entity *group = scene.list(study, "OptimizationInputs").getEntity(0);
         Entity *variable =
             EntityModel::getLinkedEntities(group, AttributePath("OptimizationAttributes")).at(0);
         EXPECT_EQ(scene.text(variable, "MinimumValue"), scene.text(scene.partA(), "Width"));
         EXPECT_EQ(scene.text(variable, "MaximumValue"), scene.text(scene.partA(), "Width"));
       }},
      {"Story_Quantity_IsPricedInTheUnitsOfTheBaseline",
       [](Scene &scene) {
         const Story story(scene);
         Story::manager().addInputAttribute(scene.partA(), AttributePath("Length"));
         Story::study().setCostFunction("%A.Length%");
         ASSERT_EQ(Story::study().addVariant({"2", "0.1", "250"}, "One", SIZE_MAX), 1U);
         Story::study().updateAlternates(OptimizationData::ReadFromModel, nullptr);
         EXPECT_EQ(Story::costs(), (Numbers{100.0, 250.0}));
       },
       {Capability::Units}},
  };
}

} // namespace HostContract
