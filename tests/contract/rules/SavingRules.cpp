// A project that is saved, freed and opened again.

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
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyCaseFlag;
using EntityModel::ModelVersionStudyType;

std::vector<Rule> savingRules() {
  const Capabilities persistence = {Capability::Persistence};
  return {
      {"Save_ModelAndValues_ComeBack",
       [](Scene &scene) {
         Entity *inner = scene.create("Part", scene.partB(), "Parts", "Inner");
         scene.set(scene.partA(), "Width", "0.30000000000000004");
         scene.set(scene.partA(), "Ratio", "");
         scene.set(scene.partA(), "Open", "0");
         scene.set(scene.partA(), "Note", std::string("any\n\xFF text"));
         scene.set(inner, "Mass", "-1e-300");
         scene.link(scene.partA(), "Next", inner);
         scene.saveAndReopen();
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         EXPECT_EQ(scene.names(scene.partB(), "Parts"), (Texts{"Inner"}));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 0.1 + 0.2);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Ratio").hasValue());
         EXPECT_EQ(scene.text(scene.partA(), "Open"), "0");
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "any\n\xFF text");
         inner = scene.list(scene.partB(), "Parts").getEntity(0);
         EXPECT_EQ(scene.number(inner, "Mass"), -1e-300);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").hasValue());
         EXPECT_EQ(EntityModel::getLinkedEntity(scene.partA(), AttributePath("Next")), inner);
       },
       persistence},
      {"Save_Versions_ComeBackInTheirPlaces",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.alternate(copy, "one");
         scene.alternate(copy, "two", 0);
         scene.show(scene.follow(copy, "Deeper"));
         scene.saveAndReopen();
         EXPECT_EQ(scene.base()->getLabel(), "Base");
         EXPECT_EQ(Scene::followers(scene.base()), (Texts{"Copy", "one", "two"}));
         EXPECT_EQ(scene.alternates(scene.find("Copy")), (Texts{"two", "one"}));
         EXPECT_EQ(Scene::followers(scene.find("Copy")), (Texts{"Deeper"}));
         EXPECT_EQ(scene.find("two")->getPrevious(), scene.base());
         EXPECT_EQ(scene.current(), scene.find("Deeper"));
       },
       persistence},
      {"Save_Marks_ComeBack",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.alternate(copy, "one");
         scene.alternate(copy, "two")->removeFromStudy();
         scene.base()->setStudyType(static_cast<ModelVersionStudyType>(4));
         copy->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
         scene.find("one")->setReadOnlyVersion("true");
         scene.saveAndReopen();
         EXPECT_EQ(static_cast<int>(scene.base()->getStudyType()), 4);
         EXPECT_TRUE(scene.find("Copy")->isStudyCase(false, false));
         EXPECT_TRUE(scene.find("one")->isStudyCase(true, false));
         EXPECT_FALSE(scene.find("two")->isStudyCase(true, false));
         EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
         scene.show(scene.find("one"));
         EXPECT_TRUE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
       },
       persistence},
      {"Save_Deltas_ComeBack",
       [](Scene &scene) {
         scene.set(scene.partA(), "Mass", "5");
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "own");
         scene.set(scene.partA(), "Mass", "");
         scene.set(scene.partA(), "Width", scene.text(scene.partA(), "Width"));
         scene.show(scene.base());
         scene.saveAndReopen();
         next = scene.find("V");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Note"), "1: own");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Mass"), "1: (no value)");
         EXPECT_EQ(Scene::recorded(next, scene.partA(), "Ratio"), "(none)");
         scene.set(scene.partA(), "Width", "9");
         scene.show(next);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").hasValue());
       },
       persistence},
      {"Save_EntitiesOfOneVersion_ComeBackInItAlone",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.create("Part", scene.root(), "Parts", "Only");
         ASSERT_TRUE(EntityEditor::deleteEntity(scene.partA(), false, true));
         scene.show(scene.base());
         scene.saveAndReopen();
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
         scene.show(scene.find("V"));
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"B", "Only"}));
       },
       persistence},
      {"Save_Labels_ComeBackByteByByte",
       [](Scene &scene) {
         const std::string labels[] = {"a\nb", "\xFF\x80", std::string("nul\0byte", 8), std::string(300, 'x'),
                                       "/no/such/place"};
         for (const std::string &label : labels) {
           scene.follow(scene.base(), label);
         }
         scene.saveAndReopen();
         for (const std::string &label : labels) {
           EXPECT_NE(scene.find(label), nullptr) << label;
         }
       },
       persistence},
      {"Save_StoredStudies_ComeBackInOrder",
       [](Scene &scene) {
         Story story(scene);
         Story::study().setGroupName(true, 0, "first");
         Story::study().setGroupName(true, 1, "second");
         Story::study().moveGroup(true, 0, 2);
         scene.saveAndReopen();
         const Entity *study = scene.list(scene.root(), "OptimizationDataList").getEntity(0);
         const std::vector<Entity *> groups =
             EntityModel::getLinkedEntities(study, AttributePath("OptimizationInputs"));
         ASSERT_EQ(groups.size(), 2U);
         EXPECT_EQ(scene.text(groups[0], "Group_Name"), "second");
         EXPECT_EQ(scene.text(groups[1], "Group_Name"), "first");
       },
       persistence},
      {"Save_Study_IsLoadedWithItsRowsResultsAndCosts",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         story.solve();
         scene.saveAndReopen();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         EXPECT_EQ(Story::cells(1), (Numbers{2.0, 0.1, 20.0}));
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2}));
         Story again = Story::resumed(scene);
         again.addRow("Three", "8", "0.8");
         again.solve();
         EXPECT_EQ(Story::costs(), (Numbers{40.5, 20.1, 30.2, 80.8}));
       },
       persistence},
      {"Save_WhatIsNotSaved_IsLost",
       [](Scene &scene) {
         scene.set(scene.partA(), "Width", "5");
         scene.saveAndReopen();
         scene.set(scene.partA(), "Width", "6");
         scene.follow(scene.base(), "Lost");
         scene.reopen();
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
         EXPECT_EQ(scene.find("Lost"), nullptr);
       },
       persistence},
      {"Save_DestroyedVersions_StayAway",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.alternate(copy, "one");
         scene.alternate(copy, "two");
         scene.saveAndReopen();
         ASSERT_TRUE(scene.destroy({scene.find("one")}));
         scene.saveAndReopen();
         EXPECT_EQ(Scene::followers(scene.base()), (Texts{"Copy", "two"}));
         EXPECT_EQ(scene.alternates(scene.find("Copy")), (Texts{"two"}));
       },
       persistence},
      {"Save_CurrentFile_IsKnownToTheLibrary",
       [](Scene &scene) {
         EXPECT_EQ(EntityManager::s_CurrentFilename, "");
         scene.saveAndReopen();
         EXPECT_NE(EntityManager::s_CurrentFilename, "");
         EXPECT_EQ(EntityManager::getCurrentEntity(), scene.root());
         scene.close();
         EXPECT_EQ(EntityManager::s_CurrentFilename, "");
       },
       persistence},
  };
}

} // namespace HostContract
