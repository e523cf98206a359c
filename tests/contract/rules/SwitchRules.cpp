// Which version is current, what a switch shows, and what it says.

#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"
#include "tests/contract/Contract.h"
#include "tests/contract/Notes.h"
#include "tests/contract/Scene.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

namespace HostContract {

using EntityGUI::EntityManager;
using EntityModel::ChangeSet;
using EntityModel::ModelVersion;

namespace {

bool switchTo(Scene &scene, ModelVersion *version, ChangeSet *changes = nullptr) {
  return scene.tree().setCurrentVersion(version, changes, false, nullptr, true);
}

/// Does something once, when it is told of a switch.
class OnSwitch final : public EntityGUI::Observer {
public:
  explicit OnSwitch(std::function<void()> action) : Observer(false, true), m_action(std::move(action)) {
    EntityGUI::ObserverManager::process().addObserver(this);
  }
  ~OnSwitch() override { EntityGUI::ObserverManager::process().removeObserver(this); }

  void changedVersion(ChangeSet & /*changes*/, EntityModel::Entity * /*entity*/,
                      const std::string & /*versionName*/, bool /*reload*/) override {
    if (std::function<void()> action = std::exchange(m_action, nullptr)) {
      action();
    }
  }

private:
  std::function<void()> m_action;
};

} // namespace

std::vector<Rule> switchRules() {
  return {
      {"Switch_MakesTheVersionCurrent",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         EXPECT_TRUE(switchTo(scene, next));
         EXPECT_EQ(scene.current(), next);
         EXPECT_TRUE(switchTo(scene, scene.base()));
         EXPECT_EQ(scene.current(), scene.base());
       }},
      {"Switch_ToTheCurrentVersion_ChangesNothing",
       [](Scene &scene) {
         scene.set(scene.partA(), "Width", "5");
         ChangeSet changes;
         EXPECT_TRUE(switchTo(scene, scene.base(), &changes));
         EXPECT_EQ(scene.current(), scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 5.0);
         EXPECT_TRUE(changes.isEmpty());
       }},
      {"Switch_ToTheVersionOfAnotherHost_IsRefused",
       [](Scene &scene) {
         const std::unique_ptr<HostUnderTest> other = scene.kind().make();
         ModelVersion *foreign = nullptr;
         {
           const HostModel::HostInstallation installation(other->host());
           foreign = EntityManager::getChangeManager()->getRootVersion(true);
         }
         EXPECT_FALSE(switchTo(scene, foreign));
         EXPECT_EQ(scene.current(), scene.base());
       }},
      {"Switch_SiblingsDoNotSeeEachOther",
       [](Scene &scene) {
         ModelVersion *copy = scene.follow(scene.base(), "Copy");
         ModelVersion *one = scene.alternate(copy, "One");
         ModelVersion *two = scene.alternate(copy, "Two");
         scene.show(one);
         scene.set(scene.partA(), "Width", "1");
         scene.show(two);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         scene.set(scene.partA(), "Width", "2");
         scene.show(one);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 1.0);
         scene.show(copy);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         scene.show(two);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 2.0);
       }},
      {"Switch_AcrossADeepTree_ShowsEachVersionsOwnValue",
       [](Scene &scene) {
         std::vector<ModelVersion *> chain = {scene.base()};
         for (int depth = 1; depth <= 20; ++depth) {
           chain.push_back(scene.follow(chain.back(), "V" + std::to_string(depth)));
           scene.show(chain.back());
           scene.set(scene.partA(), depth % 2 == 0 ? "Width" : "Ratio", std::to_string(depth));
         }
         ModelVersion *branch = scene.follow(chain[5], "Branch");
         scene.show(branch);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(scene.number(scene.partA(), "Ratio"), 5.0);
         scene.show(chain[20]);
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 20.0);
         EXPECT_EQ(scene.number(scene.partA(), "Ratio"), 19.0);
         scene.show(scene.base());
         EXPECT_EQ(scene.number(scene.partA(), "Width"), 4.0);
         EXPECT_EQ(scene.number(scene.partA(), "Ratio"), 0.5);
       }},
      {"Switch_ChangeSet_HoldsWhatDiffers",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Width", "7");
         ChangeSet changes;
         ASSERT_TRUE(switchTo(scene, scene.base(), &changes));
         ASSERT_EQ(changes.getModifiedEntities().size(), 1U);
         EXPECT_EQ(changes.getModifiedEntities()[0].entity, scene.partA());
         EXPECT_EQ(changes.getModifiedEntities()[0].attributes,
                   std::vector<EntityModel::Attribute *>{&scene.attribute(scene.partA(), "Width")});
       }},
      {"Switch_ChangeSet_IsFilledByItsOwnSwitchOnly",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         ChangeSet changes;
         ASSERT_TRUE(switchTo(scene, next, &changes));
         scene.set(scene.partA(), "Width", "7");
         scene.show(scene.base());
         EXPECT_TRUE(changes.isEmpty());
       }},
      {"Switch_TellsObserversOnceOfTheRootAndTheNewLabel",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         const Notes notes(scene);
         ASSERT_TRUE(switchTo(scene, next));
         EXPECT_EQ(notes.lines(), (Texts{"version V of root"}));
       },
       {Capability::NotifyingSwitches}},
      {"Switch_WithAChangeSet_HandsItToTheObservers",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Note", "x");
         const Notes notes(scene);
         ChangeSet changes;
         ASSERT_TRUE(switchTo(scene, scene.base(), &changes));
         EXPECT_EQ(notes.lines(), (Texts{"version Base of root A.Note="}));
       },
       {Capability::NotifyingSwitches}},
      {"Switch_IsOverWhenTheObserversAreTold",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         scene.set(scene.partA(), "Width", "7");
         double told = 0.0;
         std::string label;
         const OnSwitch observer([&] {
           told = scene.number(scene.partA(), "Width");
           label = EntityManager::getCurrentVersion();
         });
         ASSERT_TRUE(switchTo(scene, scene.base()));
         EXPECT_EQ(told, 4.0);
         EXPECT_EQ(label, "Base");
       },
       {Capability::NotifyingSwitches}},
      {"Switch_ThatAnObserverTakesBack_IsAnsweredWithFalse",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         const OnSwitch observer([&] { scene.show(scene.base()); });
         EXPECT_FALSE(switchTo(scene, next));
         EXPECT_EQ(scene.current(), scene.base());
       },
       {Capability::NotifyingSwitches}},
      {"Switch_ObserverThrows_TheSwitchIsDoneAndTheHostUsable",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         const OnSwitch observer([] { throw std::runtime_error("not now"); });
         EXPECT_THROW(switchTo(scene, next), std::runtime_error);
         EXPECT_EQ(scene.current(), next);
         EXPECT_TRUE(switchTo(scene, scene.base()));
         EXPECT_EQ(scene.current(), scene.base());
       },
       {Capability::NotifyingSwitches}},
      {"Switch_NameOfTheCurrentVersion_IsNeverWhatABroadcastSaid",
       [](Scene &scene) {
         ModelVersion *next = scene.follow(scene.base(), "V");
         scene.show(next);
         ChangeSet changes;
         EntityManager::getObserverManager()->broadcastChangedVersion(changes, scene.root(), "Base", false,
                                                                      true);
         EXPECT_EQ(EntityManager::getCurrentVersion(), "V");
         next->setLabel("W");
         EXPECT_EQ(EntityManager::getCurrentVersion(), "W");
       }},
  };
}

} // namespace HostContract
