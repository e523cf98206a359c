// What becomes of versions: made, labelled, destroyed, read-only.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;

std::vector<Rule> creationRules() {
  return {
      {"Create_NewVersion_HasTheContentOfItsOrigin",
       [](Scene &scene) {
         ModelVersion *first = scene.follow(scene.base(), "First");
         scene.show(first);
         scene.set(scene.partA(), "Width", "6");
         scene.show(scene.base());
         scene.show(scene.follow(first, "Second"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 6.0);
       }},
      {"Create_NewVersions_AreNeitherCurrentNorAnnounced",
       [](Scene &scene) {
         const Notes notes(scene);
         ModelVersion *copy = scene.tree().startNewVersion("Copy", "", "", "", nullptr, scene.base(), false);
         scene.tree().startNewAlternate(copy, nullptr, true, SIZE_MAX);
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(notes.lines(), Texts{});
       },
       {Capability::QuietCreation}},
      {"Create_ReadOnlyVersion_IsReadOnly",
       [](Scene &scene) {
         ModelVersion *next = scene.tree().startNewVersion("V", "", "", "", nullptr, scene.base(), true);
         ASSERT_NE(next, nullptr);
         scene.show(next);
         EXPECT_TRUE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
       }},
      {"Create_EditedVersion_AcceptsReadOnlyVersionsAndNull",
       [](Scene &scene) {
         ModelVersion *row = scene.follow(scene.base(), "Row");
         row->setReadOnlyVersion("true");
         bool edited = false;
         scene.tree().editedVersion(row, nullptr, edited, true);
         EXPECT_TRUE(edited);
         scene.tree().editedVersion(nullptr, nullptr, edited, true);
         EXPECT_FALSE(edited);
       }},
  };
}

std::vector<Rule> labelRules() {
  return {
      {"Label_Find_ComparesBytes",
       [](Scene &scene) {
         for (const char *label : {"Row", "row", "Row ", " Row", "R\xC3\xB6w", "Ro\xCC\x88w"}) {
           const ModelVersion *version = scene.follow(scene.base(), label);
           EXPECT_EQ(scene.find(label), version) << label;
         }
         EXPECT_EQ(scene.find("ROW"), nullptr);
         EXPECT_EQ(scene.find("Ro"), nullptr);
       }},
      {"Label_Find_FirstInOrderOfCreation",
       [](Scene &scene) {
         ModelVersion *first = scene.follow(scene.base(), "Same");
         const ModelVersion *second = scene.follow(scene.base(), "Same");
         EXPECT_EQ(scene.find("Same"), first);
         first->setLabel("Other");
         EXPECT_EQ(scene.find("Same"), second);
         first->setLabel("Same");
         EXPECT_EQ(scene.find("Same"), first);
       }},
      {"Label_Find_WhatIsNotThere_IsNull",
       [](Scene &scene) {
         EXPECT_EQ(scene.find("nothing"), nullptr);
         EXPECT_EQ(scene.find(""), nullptr);
       }},
      {"Label_Find_WithAnEntity_OnlyVersionsThatHaveIt",
       [](Scene &scene) {
         ModelVersion *first = scene.follow(scene.base(), "Same");
         ModelVersion *second = scene.follow(scene.base(), "Same");
         scene.show(second);
         EntityModel::Entity *only = scene.create("Part", scene.root(), "Parts", "Only");
         EXPECT_EQ(scene.tree().findVersion("Same", only), second);
         EXPECT_EQ(scene.tree().findVersion("Base", only), nullptr);
         EXPECT_EQ(scene.tree().findVersion("Same", scene.partA()), first);
         EXPECT_EQ(scene.current(), second);
       }},
      {"Label_NewLabel_IsFoundAndTheOldOneIsNot",
       [](Scene &scene) {
         ModelVersion *version = scene.follow(scene.base(), "Old");
         version->setLabel("New");
         EXPECT_EQ(version->getLabel(), "New");
         EXPECT_EQ(scene.find("New"), version);
         EXPECT_EQ(scene.find("Old"), nullptr);
       }},
      {"Label_SameLabelAgain_IsHarmless",
       [](Scene &scene) {
         ModelVersion *first = scene.follow(scene.base(), "Same");
         ModelVersion *second = scene.follow(scene.base(), "Same");
         second->setLabel("Same");
         EXPECT_EQ(second->getLabel(), "Same");
         EXPECT_EQ(scene.find("Same"), first);
       }},
      {"Label_TakenByAnother_IsAccepted",
       [](Scene &scene) {
         ModelVersion *version = scene.follow(scene.base(), "V");
         version->setLabel("Base");
         EXPECT_EQ(version->getLabel(), "Base");
         EXPECT_EQ(scene.find("Base"), scene.base());
       }},
      {"Label_AnyBytes_AreOnlyALabel",
       [](Scene &scene) {
         std::string everyByte;
         for (int byte = 1; byte < 256; ++byte) {
           everyByte += static_cast<char>(byte);
         }
         ModelVersion *version = scene.follow(scene.base(), "V");
         for (const std::string &label :
              {std::string(), std::string("."), std::string("../.."), std::string("/no/such/place"),
               std::string("a\nb"), std::string("%1%s"), std::string(3000, 'x'), std::string("nul\0byte", 8),
               everyByte}) {
           version->setLabel(label);
           EXPECT_EQ(version->getLabel(), label);
           EXPECT_EQ(scene.find(label), version) << label;
         }
       }},
      {"Label_UniqueName_FreeLabelComesBackUnchanged",
       [](Scene &scene) {
         EXPECT_EQ(scene.tree().getUniqueName("Free", {}), "Free");
         EXPECT_EQ(scene.tree().getUniqueName("base", {}), "base");
       }},
      {"Label_UniqueName_TakenLabelIsVariedUntilItIsFree",
       [](Scene &scene) {
         for (int count = 0; count < 5; ++count) {
           const std::string name = scene.tree().getUniqueName("Base", {});
           EXPECT_NE(name, "");
           EXPECT_EQ(scene.find(name), nullptr) << name;
           scene.follow(scene.base(), name);
         }
       }},
      {"Label_UniqueName_HeedsTheOthersToo",
       [](Scene &scene) {
         const std::string name =
             scene.tree().getUniqueName("Free", {{"Free", nullptr}, {"Free (2)", nullptr}});
         EXPECT_NE(name, "Free");
         EXPECT_NE(name, "Free (2)");
         EXPECT_EQ(scene.find(name), nullptr);
       }},
  };
}

std::vector<Rule> destructionRules() {
  return {
      {"Destroy_RemovesFromTreeFamilyAndLabels",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *one = scene.alternate(copy, "one");
         scene.alternate(copy, "two");
         bool destroyed = false;
         scene.tree().destroyVersion(one, nullptr, destroyed);
         EXPECT_TRUE(destroyed);
         EXPECT_EQ(scene.alternates(copy), (Texts{"two"}));
         EXPECT_EQ(Scene::followers(scene.base()), (Texts{"Copy", "two"}));
         EXPECT_EQ(scene.find("one"), nullptr);
       }},
      {"Destroy_ManyAtOnce",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *one = scene.alternate(copy, "one");
         ModelVersion *two = scene.alternate(copy, "two");
         EXPECT_TRUE(scene.destroy({copy, one, nullptr, two, one}));
         EXPECT_EQ(Scene::followers(scene.base()), Texts{});
       }},
      {"Destroy_TakesAlongWhatFollows",
       [](Scene &scene) {
         ModelVersion *one = scene.follow(scene.base(), "one");
         scene.follow(scene.follow(one, "two"), "three");
         EXPECT_TRUE(scene.destroy({one}));
         EXPECT_EQ(scene.find("two"), nullptr);
         EXPECT_EQ(scene.find("three"), nullptr);
         EXPECT_EQ(Scene::followers(scene.base()), Texts{});
       }},
      {"Destroy_TheFirstVersionAndNull_AreIgnored",
       [](Scene &scene) {
         EXPECT_FALSE(scene.destroy({scene.base(), nullptr}));
         bool destroyed = true;
         scene.tree().destroyVersion(nullptr, nullptr, destroyed);
         EXPECT_FALSE(destroyed);
         EXPECT_EQ(scene.find("Base"), scene.base());
         EXPECT_EQ(scene.current(), scene.base());
       }},
      {"Destroy_VersionsOfOthers_AreIgnored",
       [](Scene &scene) {
         const std::unique_ptr<HostUnderTest> other = scene.kind().make();
         ModelVersion *foreign = nullptr;
         {
           const HostModel::HostInstallation installation(other->host());
           ModelVersion *first = EntityGUI::EntityManager::getChangeManager()->getRootVersion(true);
           foreign = EntityGUI::EntityManager::getChangeManager()->startNewVersion("V", "", "", "", nullptr,
                                                                                   first, false);
         }
         EXPECT_FALSE(scene.destroy({foreign}));
         EXPECT_EQ(foreign->getLabel(), "V");
       }},
      {"Destroy_TheCurrentVersion_ShowsTheNearestSurvivorSilently",
       [](Scene &scene) {
         ModelVersion *one = scene.follow(scene.base(), "one");
         ModelVersion *two = scene.follow(one, "two");
         ModelVersion *three = scene.follow(two, "three");
         scene.show(one);
         scene.set(scene.partA(), "Width", "1");
         scene.show(three);
         scene.set(scene.partA(), "Width", "3");
         const Notes notes(scene);
         EXPECT_TRUE(scene.destroy({two, three}));
         EXPECT_EQ(scene.current(), one);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 1.0);
         EXPECT_EQ(notes.lines(), Texts{});
       }},
      {"Destroy_SameLabelAgain_StartsAnew",
       [](Scene &scene) {
         ModelVersion *one = scene.follow(scene.base(), "one");
         scene.show(one);
         scene.set(scene.partA(), "Width", "1");
         scene.show(scene.base());
         ASSERT_TRUE(scene.destroy({one}));
         ModelVersion *again = scene.follow(scene.base(), "one");
         EXPECT_EQ(scene.find("one"), again);
         EXPECT_EQ(Scene::recorded(again, scene.partA(), "Width"), "(none)");
         scene.show(again);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
       }},
      {"Destroy_EntityOfThatVersion_AnswersNothing",
       [](Scene &scene) {
         ModelVersion *one = scene.follow(scene.base(), "one");
         scene.show(one);
         EntityModel::Entity *only = scene.create("Part", scene.root(), "Parts", "Only");
         ASSERT_NE(only, nullptr);
         scene.show(scene.base());
         ASSERT_TRUE(scene.destroy({one}));
         EXPECT_EQ(only->getName(true), "");
         EXPECT_EQ(scene.find(only, "Width"), nullptr);
         EXPECT_EQ(only->getOwnerEntityLink(), nullptr);
       }},
  };
}

std::vector<Rule> readOnlyRules() {
  return {
      {"ReadOnly_Version_IsWrittenByTheLibrary",
       [](Scene &scene) {
         ModelVersion *row = scene.follow(scene.base(), "Row");
         row->setReadOnlyVersion("true");
         scene.show(row);
         scene.set(scene.partA(), "Width", "5");
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
         EXPECT_TRUE(EntityGUI::EntityManager::setValue(scene.partA(), AttributePath("Width"), "6", true));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 6.0);
         row->setLabel("Renamed");
         EXPECT_EQ(scene.find("Renamed"), row);
       }},
      {"ReadOnly_Version_CountsOnlyWhenItIsAskedFor",
       [](Scene &scene) {
         ModelVersion *row = scene.follow(scene.base(), "Row");
         row->setReadOnlyVersion("true");
         scene.show(row);
         EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(false));
         EXPECT_TRUE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
         row->setReadOnlyVersion("false");
         EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
       }},
      {"ReadOnly_Version_MakesNoOtherReadOnly",
       [](Scene &scene) {
         ModelVersion *row = scene.follow(scene.base(), "Row");
         row->setReadOnlyVersion("true");
         EXPECT_FALSE(scene.attribute(scene.partA(), "Width").isReadOnly(true));
         scene.set(scene.partA(), "Width", "5");
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
       }},
      {"ReadOnly_Result_IsSoByNature",
       [](Scene &scene) {
         EXPECT_TRUE(scene.attribute(scene.partA(), "Mass").isReadOnly(false));
         EXPECT_FALSE(scene.attribute(scene.partA(), "Note").isReadOnly(false));
       }},
  };
}

} // namespace HostContract
