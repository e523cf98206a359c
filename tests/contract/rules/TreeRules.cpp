// The place of versions among each other: what they follow, and which are alternates of one another.

#include "HostModel/EntityManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityModel::ModelVersion;

std::vector<Rule> treeRules() {
  return {
      {"Tree_NewProject_HasOneCurrentVersion",
       [](Scene &scene) {
         EXPECT_EQ(scene.tree().getRootVersion(true), scene.base());
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(scene.base()->getLabel(), "Base");
         EXPECT_EQ(scene.base()->getPrevious(), nullptr);
         EXPECT_TRUE(Scene::followers(scene.base()).empty());
         EXPECT_EQ(EntityGUI::EntityManager::getCurrentVersion(), "Base");
       }},
      {"Tree_NewVersion_FollowsItsOrigin",
       [](Scene &scene) {
         const ModelVersion *next =
             scene.tree().startNewVersion("V", "d", "a", "c", nullptr, scene.base(), true);
         ASSERT_NE(next, nullptr);
         EXPECT_EQ(next->getLabel(), "V");
         EXPECT_EQ(next->getPrevious(), scene.base());
         EXPECT_EQ(scene.find("V"), next);
       }},
      {"Tree_NewVersion_OfNothing_IsRefused",
       [](Scene &scene) {
         EXPECT_EQ(scene.tree().startNewVersion("V", "", "", "", nullptr, nullptr, false), nullptr);
         EXPECT_EQ(scene.find("V"), nullptr);
       }},
      {"Tree_NewAlternate_FollowsWhatItsOriginFollows",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *row = scene.alternate(copy, "Row");
         EXPECT_EQ(row->getPrevious(), scene.base());
         EXPECT_EQ(scene.alternate(row, "Of a row")->getPrevious(), scene.base());
         EXPECT_TRUE(Scene::followers(copy).empty());
       }},
      {"Tree_NewAlternate_OfNothing_IsRefused",
       [](Scene &scene) {
         EXPECT_EQ(scene.tree().startNewAlternate(nullptr, nullptr, true, SIZE_MAX), nullptr);
         EXPECT_TRUE(Scene::followers(scene.base()).empty());
       }},
      {"Tree_NewAlternate_HasALabelOfItsOwn",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *row = scene.tree().startNewAlternate(copy, nullptr, true, SIZE_MAX);
         ASSERT_NE(row, nullptr);
         EXPECT_EQ(scene.find(row->getLabel()), row);
       }},
      {"Tree_Followers_StandInOrderOfCreation",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.alternate(copy, "Row 1");
         scene.follow(copy, "Deeper");
         scene.follow(scene.base(), "Other");
         scene.alternate(copy, "Row 0", 0);
         EXPECT_EQ(Scene::followers(scene.base()), (Texts{"Copy", "Row 1", "Other", "Row 0"}));
         EXPECT_EQ(Scene::followers(copy), (Texts{"Deeper"}));
       }},
      {"Tree_Followers_OutliveWhatTheLibraryDoesToThem",
       [](Scene &scene) {
         scene.follow(scene.base(), "One");
         scene.follow(scene.base(), "Two");
         Texts seen;
         for (auto each = scene.base()->beginNext(); each != scene.base()->endNext(); ++each) {
           if (*each != nullptr) {
             (*each)->clearStudy();
             (*each)->setReadOnlyVersion("false");
             scene.tree().getRootVersion(true);
             scene.tree().getVersionFolder(*each, false);
             seen.push_back((*each)->getLabel());
           }
         }
         EXPECT_EQ(seen, (Texts{"One", "Two"}));
       }},
      {"Tree_Alternates_StandInOrderOfTheirPositions",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         scene.alternate(copy, "one");
         scene.alternate(copy, "two");
         scene.alternate(copy, "first", 0);
         scene.alternate(copy, "middle", 2);
         scene.alternate(copy, "end", 99);
         scene.alternate(copy, "last");
         EXPECT_EQ(scene.alternates(copy), (Texts{"first", "one", "middle", "two", "end", "last"}));
       }},
      {"Tree_AlternatesOfAnAlternate_AreOfTheSameFamily",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *one = scene.alternate(copy, "one");
         scene.alternate(one, "two");
         EXPECT_EQ(scene.alternates(copy), (Texts{"one", "two"}));
         EXPECT_EQ(scene.alternates(one), (Texts{"two"}));
       }},
      {"Tree_Alternates_AreNotAllThatFollowsTheBaseline",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *second = scene.follow(scene.base(), "Second copy");
         scene.alternate(copy, "one");
         EXPECT_EQ(scene.alternates(copy), (Texts{"one"}));
         EXPECT_EQ(scene.alternates(second), Texts{});
       }},
      {"Tree_AlternatesOfNothing_AreNone",
       [](Scene &scene) {
         std::vector<ModelVersion *> none;
         scene.tree().getAlternates(nullptr, none);
         EXPECT_TRUE(none.empty());
       }},
      {"Tree_ManyAlternatesAtOnePlace_KeepTheirOrder",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         Texts expected;
         for (int index = 0; index < 200; ++index) {
           scene.alternate(copy, std::to_string(index), 0);
           expected.insert(expected.begin(), std::to_string(index));
         }
         EXPECT_EQ(scene.alternates(copy), expected);
       }},
  };
}

} // namespace HostContract
