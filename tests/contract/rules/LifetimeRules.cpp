// Hosts that come and go in one process, and the end of the process.

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Story.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

namespace HostContract {

using EntityGUI::EntityManager;
using EntityModel::EntityEditor;

namespace {

// In a child process, whose output the case reads.
void sayWhenTheStudyEnds() {
  QObject::connect(&Story::study(), &QObject::destroyed, [] { std::fputs("study gone;", stderr); });
}

} // namespace

std::vector<Rule> lifetimeRules() {
  return {
      {"Lifetime_Uninstalled_NobodyAnswers",
       [](Scene &scene) {
         scene.uninstall();
         EXPECT_EQ(EntityEditor::getRootEntity(), nullptr);
         EXPECT_EQ(EntityEditor::getChangeManager(), nullptr);
         EXPECT_EQ(EntityManager::getObserverManager(), nullptr);
         EXPECT_EQ(EntityManager::getCurrentVersion(), "");
         scene.install();
         EXPECT_EQ(scene.names(scene.root(), "Parts"), (Texts{"A", "B"}));
       }},
      {"Lifetime_SecondHost_AnswersUntilItGoes",
       [](Scene &scene) {
         EntityModel::Entity *root = scene.root();
         {
           const Scene second(scene.kind());
           EXPECT_NE(second.root(), root);
           second.set(second.partA(), "Width", "9");
         }
         EXPECT_EQ(scene.root(), root);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
       }},
      {"Lifetime_Close_DropsTheStudy",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         scene.close();
         EXPECT_FALSE(Story::isHeld());
       }},
      {"Lifetime_Replaced_TheNextHostHasItsOwnStudy",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         scene.close();
         scene.uninstall();
         Scene next(scene.kind());
         EXPECT_FALSE(Story::isHeld());
         const Story second(next);
         EXPECT_EQ(Story::rows(), (Texts{"Base"}));
         EXPECT_EQ(Scene::followers(next.base()).size(), 1U);
       }},
      {"Lifetime_TwoHostsAtOnce_TheManagerFollowsTheOneThatOpens",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         {
           Scene second(scene.kind());
           EXPECT_FALSE(Story::isHeld());
           const Story other(second);
           EXPECT_EQ(Story::rows(), (Texts{"Base"}));
         }
         EXPECT_FALSE(Story::isHeld());
         scene.subject().open();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
       }},
      {"Lifetime_InstalledAgain_ItsStudyIsLoadedAgain",
       [](Scene &scene) {
         Story story(scene);
         story.addRows();
         scene.uninstall();
         scene.install();
         scene.subject().open();
         EXPECT_EQ(Story::rows(), (Texts{"Base", "One", "Two"}));
         EXPECT_EQ(Story::cells(2), (Numbers{3.0, 0.2, std::nullopt}));
       }},
      {"Lifetime_Observers_OutliveTheirHost",
       [](Scene &scene) {
         Notes notes(scene);
         scene.close();
         scene.uninstall();
         notes.clear();
         {
           const Scene next(scene.kind());
           EXPECT_EQ(notes.lines().size(), 1U);
         }
         EXPECT_EQ(notes.lines().size(), 2U);
       }},
      {"Lifetime_Exit_StudyHeldAndHostInstalled",
       [](Scene &scene) {
         EXPECT_EXIT(
             {
               Story story(scene);
               story.addRows();
               sayWhenTheStudyEnds();
               std::exit(0);
             },
             testing::ExitedWithCode(0), "^study gone;$");
       }},
      {"Lifetime_Exit_StudyHeldAndHostUninstalled",
       [](Scene &scene) {
         EXPECT_EXIT(
             {
               Story story(scene);
               story.addRows();
               sayWhenTheStudyEnds();
               scene.uninstall();
               std::exit(0);
             },
             testing::ExitedWithCode(0), "^study gone;$");
       }},
      {"Lifetime_Exit_StudyHeldAndHostGone",
       [](Scene &scene) {
         EXPECT_EXIT(
             {
               std::unique_ptr<HostUnderTest> other = scene.kind().make();
               {
                 const HostModel::HostInstallation installation(other->host());
                 other->open();
                 Story::manager().beginStudy(EntityModel::ModelVersionStudyType::Parametric);
                 sayWhenTheStudyEnds();
               }
               other.reset();
               scene.uninstall();
               std::fputs("host gone;", stderr);
               std::exit(0);
             },
             testing::ExitedWithCode(0), "^host gone;study gone;$");
       }},
      {"Lifetime_Exit_HostClosedAndGone",
       [](Scene &scene) {
         EXPECT_EXIT(
             {
               const Story story(scene);
               sayWhenTheStudyEnds();
               scene.close();
               scene.uninstall();
               std::fputs("closed;", stderr);
               std::exit(0);
             },
             testing::ExitedWithCode(0), "^study gone;closed;$");
       }},
  };
}

} // namespace HostContract
