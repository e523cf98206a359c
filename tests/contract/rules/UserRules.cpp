// The commands that a user is offered: they announce what they do, and refuse what would break a study.

#include "HostModel/AttributePath.h"
#include "HostModel/EntityManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Story.h"

#include <gtest/gtest.h>

namespace HostContract {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::ModelVersion;

namespace {

bool edit(Scene &scene, EntityModel::Entity *entity, const char *path, const char *text) {
  return scene.subject().editByUser(entity, AttributePath(path), text);
}

} // namespace

std::vector<Rule> userRules() {
  const Capabilities commands = {Capability::UserCommands};
  return {
      {"User_Switch_SelectsTheRootAndIsToldOnce",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "x");
         scene.show(scene.base());
         EntityManager::s_CurrentEntity = scene.partA();
         const Notes notes(scene);
         EXPECT_TRUE(scene.subject().switchByUser(next));
         EXPECT_EQ(scene.current(), next);
         EXPECT_EQ(EntityManager::getCurrentEntity(), scene.root());
         ASSERT_EQ(notes.lines().size(), 1U);
         EXPECT_EQ(notes.lines()[0].rfind("version V of root", 0), 0U) << notes.lines()[0];
       },
       commands},
      {"User_Switch_ToNothing_IsRefused",
       [](Scene &scene) {
         const Notes notes(scene);
         EXPECT_FALSE(scene.subject().switchByUser(nullptr));
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(notes.lines(), Texts{});
       },
       commands},
      {"User_Edit_TellsOfExactlyTheAttributeSet",
       [](Scene &scene) {
         const Notes notes(scene);
         EXPECT_TRUE(edit(scene, scene.partA(), "Note", "x"));
         EXPECT_EQ(scene.text(scene.partA(), "Note"), "x");
         EXPECT_EQ(notes.lines(), (Texts{"edit A.Note=x"}));
       },
       commands},
      {"User_Edit_OfAReadOnlyVersion_IsRefused",
       [](Scene &scene) {
         scene.base()->setReadOnlyVersion("true");
         const Notes notes(scene);
         EXPECT_FALSE(edit(scene, scene.partA(), "Width", "5"));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(notes.lines(), Texts{});
         scene.base()->setReadOnlyVersion("false");
         EXPECT_TRUE(edit(scene, scene.partA(), "Width", "5"));
       },
       commands},
      {"User_Edit_OfWhatIsNotHis_IsRefused",
       [](Scene &scene) {
         EntityModel::Entity *study =
             scene.create("OptimizationData", scene.root(), "OptimizationDataList", "");
         const Notes notes(scene);
         EXPECT_FALSE(edit(scene, scene.partA(), "Mass", "5"));
         EXPECT_FALSE(edit(scene, study, "CostFunction", "1"));
         EXPECT_FALSE(edit(scene, nullptr, "Width", "1"));
         EXPECT_FALSE(edit(scene, scene.partA(), "Nothing", "1"));
         EXPECT_FALSE(edit(scene, scene.partA(), "Width", "wide"));
         EXPECT_FALSE(scene.attribute(scene.partA(), "Mass").hasValue());
         EXPECT_EQ(notes.lines(), Texts{});
       },
       commands},
      {"User_Edit_ThatUnsetsAnInputOfTheStudy_IsRefused",
       [](Scene &scene) {
         const Story story(scene);
         EXPECT_FALSE(edit(scene, scene.partA(), "Width", ""));
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_TRUE(edit(scene, scene.partB(), "Width", ""));
         EXPECT_TRUE(edit(scene, scene.partA(), "Width", "6"));
         EXPECT_EQ(Story::cells(0), (Numbers{6.0, 0.5, std::nullopt}));
       },
       commands},
      {"User_Relabel_AnOrdinaryVersion",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         EXPECT_TRUE(scene.subject().relabelByUser(next, "W"));
         EXPECT_EQ(scene.find("W"), next);
         EXPECT_FALSE(scene.subject().relabelByUser(next, "Base"));
         EXPECT_FALSE(scene.subject().relabelByUser(nullptr, "X"));
         EXPECT_EQ(next->getLabel(), "W");
       },
       commands},
      {"User_Relabel_WhatAStudyFindsByItsLabel_IsRefused",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         for (ModelVersion *version : {scene.base(), story.copy(), story.version("One")}) {
           const std::string label = version->getLabel();
           EXPECT_FALSE(scene.subject().relabelByUser(version, "Other")) << label;
           EXPECT_EQ(version->getLabel(), label);
         }
         story.reload();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
       },
       commands},
      {"User_Destroy_AnOrdinaryVersion_IsTold",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         const Notes notes(scene);
         EXPECT_TRUE(scene.subject().destroyByUser(next));
         EXPECT_EQ(scene.find("V"), nullptr);
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(notes.lines().size(), 1U);
       },
       commands},
      {"User_Destroy_WhatWouldBreakAStudy_IsRefused",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         for (ModelVersion *version : {scene.base(), story.copy(), story.version("One")}) {
           EXPECT_FALSE(scene.subject().destroyByUser(version)) << version->getLabel();
         }
         EXPECT_FALSE(scene.subject().destroyByUser(nullptr));
         EXPECT_EQ(Scene::followers(scene.base()).size(), 3U);
         EXPECT_TRUE(Story::study().allVersionsExist());
       },
       commands},
      {"User_Destroy_AReadOnlyVersion_IsRefused",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         ModelVersion *deeper = scene.follow(next, "W");
         deeper->setReadOnlyVersion("true");
         EXPECT_FALSE(scene.subject().destroyByUser(next));
         EXPECT_EQ(scene.find("W"), deeper);
       },
       commands},
      {"User_WhileASolverRuns_NothingIsTakenAwayFromIt",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.subject().setSolverRuns(true);
         EXPECT_FALSE(scene.subject().closeByUser());
         EXPECT_FALSE(scene.subject().destroyByUser(next));
         EXPECT_FALSE(scene.subject().relabelByUser(next, "W"));
         EXPECT_EQ(scene.find("V"), next);
         scene.subject().setSolverRuns(false);
         EXPECT_TRUE(scene.subject().relabelByUser(next, "W"));
       },
       commands},
  };
}

} // namespace HostContract
