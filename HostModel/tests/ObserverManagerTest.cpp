#include "HostModel/ObserverManager.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/Observer.h"
#include "HostModel/tests/TinyModel.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace EntityGUI {
namespace {

using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::TypeRef;

// Writes down what it is told of, then reacts.
class Listener : public Observer {
public:
  Listener(std::string name, std::vector<std::string> &log)
      : Observer(false, true), m_name(std::move(name)), m_log(log) {}

  void setCurrentEntity(Entity *entity, bool scrollTo) override {
    note("setCurrentEntity " + nameOf(entity) + (scrollTo ? " 1" : " 0"), nullptr);
  }
  void changedEntities(ChangeSet &changes) override { note("changedEntities", &changes); }
  void selectEntities(const std::vector<Entity *> &entities) override {
    std::string text = "selectEntities";
    for (const Entity *entity : entities) {
      text += ' ' + nameOf(entity);
    }
    note(text, nullptr);
  }
  void changedVersion(ChangeSet &changes, Entity *entity, const std::string &versionName,
                      bool reload) override {
    note("changedVersion " + nameOf(entity) + ' ' + versionName + (reload ? " 1" : " 0"), &changes);
  }

  std::function<void()> react;
  std::size_t lastChangeCount = 0;

private:
  static std::string nameOf(const Entity *entity) {
    return entity == nullptr ? "null" : entity->getName(false);
  }

  void note(const std::string &text, const ChangeSet *changes) {
    m_log.push_back(m_name + ": " + text);
    if (react) {
      react();
    }
    lastChangeCount = changes == nullptr ? 0 : changes->getModifiedEntities().size();
  }

  std::string m_name;
  std::vector<std::string> &m_log;
};

class ObserverManagerTest : public ::testing::Test {
protected:
  using Lines = std::vector<std::string>;

  Lines m_log;
  ObserverManager &m_manager = ObserverManager::process();
  TinyModel::Entity m_fan{"Fan", TypeRef::fromLabel("Fan")};
  TinyModel::Entity m_box{"Box", TypeRef::fromLabel("Box")};
  Listener m_first{"first", m_log};
  Listener m_second{"second", m_log};
  Listener m_third{"third", m_log};
};

TEST_F(ObserverManagerTest, Process_IsOneObject) {
  EXPECT_EQ(&ObserverManager::process(), &ObserverManager::process());
}

TEST_F(ObserverManagerTest, Broadcast_NoObserver_DoesNothing) {
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines());
}

TEST_F(ObserverManagerTest, Broadcast_OrderOfRegistration) {
  m_manager.addObserver(&m_second);
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_third);
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"second: changedEntities", "first: changedEntities", "third: changedEntities"}));
}

TEST_F(ObserverManagerTest, AddObserver_Twice_IsToldOnceAtItsFirstPlace) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_manager.addObserver(&m_first);
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "second: changedEntities"}));
}

TEST_F(ObserverManagerTest, AddObserver_Null_HasNoEffect) {
  m_manager.addObserver(nullptr);
  m_manager.addObserver(&m_first);
  m_manager.removeObserver(nullptr);
  m_manager.broadcastSetCurrentEntity(&m_fan, false);
  EXPECT_EQ(m_log, Lines({"first: setCurrentEntity Fan 0"}));
}

TEST_F(ObserverManagerTest, RemoveObserver_IsNotToldAnyMore) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_manager.removeObserver(&m_first);
  m_manager.removeObserver(&m_third);
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"second: changedEntities"}));
}

TEST_F(ObserverManagerTest, RemoveObserver_AfterAddingTwice_IsGone) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_first);
  m_manager.removeObserver(&m_first);
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines());
}

TEST_F(ObserverManagerTest, EachBroadcast_ReachesItsOperationWithItsArguments) {
  m_manager.addObserver(&m_first);
  ChangeSet changes;
  changes.addModified(&m_box);
  m_manager.broadcastChangedVersion(changes, &m_fan, "Base", true, false);
  EXPECT_EQ(m_first.lastChangeCount, 1U);
  m_manager.broadcastChangedVersion(changes, nullptr, "", false, true);
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_first.lastChangeCount, 1U);
  m_manager.broadcastSetCurrentEntity(&m_box, true);
  m_manager.broadcastSetCurrentEntity(nullptr, false);
  m_manager.broadcastSelectEntities({&m_box, &m_fan});
  EXPECT_EQ(m_log, Lines({"first: changedVersion Fan Base 1", "first: changedVersion null  0",
                          "first: changedEntities", "first: setCurrentEntity Box 1",
                          "first: setCurrentEntity null 0", "first: selectEntities Box Fan"}));
}

TEST_F(ObserverManagerTest, UndoneOrRedone_ForwardsItsChangeSetToChangedEntities) {
  m_manager.addObserver(&m_first);
  ChangeSet changes;
  changes.addModified(&m_box);
  changes.addModified(&m_fan);
  m_manager.broadcastUndoneOrRedone(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities"}));
  EXPECT_EQ(m_first.lastChangeCount, 2U);
}

TEST_F(ObserverManagerTest, AddedDuringBroadcast_LearnsOfLaterBroadcastsOnly) {
  m_manager.addObserver(&m_first);
  m_first.react = [this] {
    m_manager.addObserver(&m_second);
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities"}));
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "first: changedEntities", "second: changedEntities"}));
}

TEST_F(ObserverManagerTest, ManyAddedDuringBroadcast_DoNotDisturbIt) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  std::vector<std::unique_ptr<Listener>> added;
  m_first.react = [&] {
    for (int i = 0; i < 100; ++i) {
      added.push_back(std::make_unique<Listener>("added", m_log));
      m_manager.addObserver(added.back().get());
    }
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "second: changedEntities"}));
}

TEST_F(ObserverManagerTest, RemovedDuringBroadcast_IsNotCalledAnyMore) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_manager.addObserver(&m_third);
  m_first.react = [this] {
    m_manager.removeObserver(&m_second);
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "third: changedEntities"}));
}

TEST_F(ObserverManagerTest, RemovesItselfDuringBroadcast_OthersAreTold) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_first.react = [this] {
    m_manager.removeObserver(&m_first);
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "second: changedEntities", "second: changedEntities"}));
}

TEST_F(ObserverManagerTest, DestroyedDuringBroadcast_IsNotCalled) {
  auto doomed = std::make_unique<Listener>("doomed", m_log);
  m_manager.addObserver(&m_first);
  m_manager.addObserver(doomed.get());
  m_first.react = [&] {
    doomed.reset();
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities"}));
}

TEST_F(ObserverManagerTest, DestroyedWhileRegistered_IsTakenOut) {
  {
    Listener passing("passing", m_log);
    m_manager.addObserver(&passing);
  }
  m_manager.addObserver(&m_first);
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities"}));
}

TEST_F(ObserverManagerTest, ChangeSetAlteredDuringBroadcast_ObserversKeepTheirCopy) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  ChangeSet changes;
  changes.addModified(&m_fan);
  m_first.react = [&] {
    changes.addModified(&m_box);
  };
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_first.lastChangeCount, 1U);
  EXPECT_EQ(m_second.lastChangeCount, 1U);
  m_first.react = [&] {
    changes.clear();
  };
  m_manager.broadcastChangedVersion(changes, &m_fan, "Base", false, true);
  EXPECT_EQ(m_first.lastChangeCount, 2U);
  EXPECT_EQ(m_second.lastChangeCount, 2U);
  changes.addModified(&m_fan);
  m_manager.broadcastUndoneOrRedone(changes);
  EXPECT_EQ(m_second.lastChangeCount, 1U);
}

TEST_F(ObserverManagerTest, VersionNameAlteredDuringBroadcast_ObserversGetWhatWasSent) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  ChangeSet changes;
  std::string name = "Base";
  m_first.react = [&] {
    name = "Other";
  };
  m_manager.broadcastChangedVersion(changes, &m_fan, name, false, true);
  EXPECT_EQ(m_log, Lines({"first: changedVersion Fan Base 0", "second: changedVersion Fan Base 0"}));
}

TEST_F(ObserverManagerTest, BroadcastDuringBroadcast_IsDeliveredAtOnce) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  bool isNested = false;
  m_first.react = [&] {
    if (!isNested) {
      isNested = true;
      m_manager.broadcastSetCurrentEntity(&m_box, false);
    }
  };
  ChangeSet changes;
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "first: setCurrentEntity Box 0",
                          "second: setCurrentEntity Box 0", "second: changedEntities"}));
}

TEST_F(ObserverManagerTest, ObserverThrows_EndsTheBroadcastAndReachesTheSender) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_first.react = [] {
    throw std::runtime_error("no");
  };
  ChangeSet changes;
  EXPECT_THROW(m_manager.broadcastChangedEntities(changes), std::runtime_error);
  EXPECT_EQ(m_log, Lines({"first: changedEntities"}));
}

TEST_F(ObserverManagerTest, AfterAnObserverThrew_TheRegistryIsAsItWas) {
  m_manager.addObserver(&m_first);
  m_manager.addObserver(&m_second);
  m_first.react = [] {
    throw std::runtime_error("no");
  };
  ChangeSet changes;
  EXPECT_THROW(m_manager.broadcastChangedEntities(changes), std::runtime_error);
  m_first.react = nullptr;
  m_log.clear();
  m_manager.broadcastChangedEntities(changes);
  EXPECT_EQ(m_log, Lines({"first: changedEntities", "second: changedEntities"}));
}

TEST(ObserverTest, Flags_AreThoseGivenAndSet) {
  Observer observer(false, true);
  EXPECT_FALSE(observer.isModal());
  EXPECT_TRUE(observer.receivesOwnChanges());
  observer.setModal(true);
  observer.setReceivesOwnChanges(false);
  EXPECT_TRUE(observer.isModal());
  EXPECT_FALSE(observer.receivesOwnChanges());
}

TEST(ObserverTest, Defaults_DoNothing) {
  Observer observer(true, false);
  TinyModel::Entity fan("Fan", TypeRef::fromLabel("Fan"));
  ChangeSet changes;
  changes.addModified(&fan);
  observer.setCurrentEntity(&fan, true);
  observer.changedEntities(changes);
  observer.selectEntities({&fan});
  observer.changedVersion(changes, &fan, "Base", true);
  observer.undoneOrRedone(changes);
  EXPECT_EQ(changes.getModifiedEntities().size(), 1U);
}

} // namespace
} // namespace EntityGUI
