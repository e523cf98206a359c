#include "testing/WrappedHost.h"

#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "testing/HostOperation.h"
#include "testing/tests/EveryOperation.h"
#include "testing/tests/Scene.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace HostTesting {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersion;

// Counts the calls by name.
class CountingHost final : public WrappedHost {
public:
  using WrappedHost::WrappedHost;

  std::multiset<std::string> seen;

protected:
  Verdict intercept(const HostCall &call) override {
    seen.insert(call.operation.name);
    return Verdict::Proceed;
  }
};

// A small host behind a wrapper, which is installed.
class WrappedHostTest : public ::testing::Test {
protected:
  Attribute *find(Entity *entity, const char *path) const {
    return entity->findAttribute(AttributePath(path));
  }

  Scene m_scene;
  WrappedHost m_wrapper{m_scene.host};
  HostModel::HostInstallation m_installation{m_wrapper};
  Entity *m_root = EntityModel::EntityEditor::getRootEntity();
};

TEST_F(WrappedHostTest, Proxy_IsAnotherObjectAndAlwaysTheSame) {
  Entity *fan = find(m_root, "Fans")->asList()->getEntity(0);
  EXPECT_NE(fan, &m_scene.fan);
  EXPECT_EQ(fan, find(m_root, "Fans")->asList()->getEntity(0));
  EXPECT_EQ(fan, find(fan, "Speed")->getOwnerEntity());
  EXPECT_EQ(fan, fan->asEntity());
  EXPECT_EQ(fan, fan->findAttribute(AttributePath()));
}

TEST_F(WrappedHostTest, OriginalAndProxy_AreInverse) {
  Entity *fan = m_wrapper.proxy(&m_scene.fan);
  EXPECT_EQ(m_wrapper.original(fan), &m_scene.fan);
  EXPECT_EQ(m_wrapper.original(&m_scene.fan), &m_scene.fan);
  EXPECT_EQ(m_wrapper.proxy(fan), fan);
  ModelVersion *base = m_wrapper.proxy(&m_scene.base);
  EXPECT_EQ(m_wrapper.original(base), &m_scene.base);
  EXPECT_EQ(m_wrapper.proxy(base), base);
  EXPECT_EQ(m_wrapper.original(static_cast<Attribute *>(nullptr)), nullptr);
  EXPECT_EQ(m_wrapper.proxy(static_cast<ModelVersion *>(nullptr)), nullptr);
}

TEST_F(WrappedHostTest, OriginalThatGoesIn_IsAccepted) {
  EXPECT_TRUE(EntityModel::EntityEditor::setValue(&m_scene.fan, AttributePath("Speed"), "3", false, nullptr,
                                                  true, true));
  EXPECT_EQ(m_scene.takeLog(), "setValue Fan Speed 3 0 null 1 1");
}

TEST_F(WrappedHostTest, Proxies_HaveTheClassOfTheirOriginal) {
  Entity *fan = m_wrapper.proxy(&m_scene.fan);
  EXPECT_EQ(find(fan, "Speed")->asList(), nullptr);
  EXPECT_EQ(find(fan, "Speed")->asLink(), nullptr);
  EXPECT_EQ(find(fan, "Casing")->asList(), nullptr);
  EXPECT_NE(find(fan, "Casing")->asLink(), nullptr);
  EXPECT_EQ(find(fan, "Parts")->asLink(), find(fan, "Parts"));
  EXPECT_EQ(dynamic_cast<EntityModel::CompositeAttribute *>(find(fan, "Target")), nullptr);
}

TEST_F(WrappedHostTest, EveryOperation_IsForwardedAndAnswersAsTheHost) {
  SceneProxies proxies(m_scene, m_wrapper);
  for (const OperationStep &step : everyOperation()) {
    EXPECT_EQ(outcome(step, proxies), step.answer) << step.operation;
  }
}

TEST(HostOperationTest, EveryOperation_HasAStepAndIsIntercepted) {
  Scene scene;
  CountingHost wrapper(scene.host);
  const HostModel::HostInstallation installation(wrapper);
  SceneProxies proxies(scene, wrapper);
  std::set<std::string> withStep;
  for (const OperationStep &step : everyOperation()) {
    wrapper.seen.clear();
    outcome(step, proxies);
    EXPECT_GE(wrapper.seen.count(step.operation), 1U) << step.operation;
    EXPECT_TRUE(withStep.insert(step.operation).second) << step.operation;
  }
  std::set<std::string> known;
  for (const HostOperation &operation : hostOperations()) {
    known.insert(operation.name);
  }
  EXPECT_EQ(withStep, known);
}

TEST(HostOperationTest, FindHostOperation_ByNameOrNull) {
  ASSERT_NE(findHostOperation("ModelVersion::setLabel"), nullptr);
  EXPECT_STREQ(findHostOperation("ModelVersion::setLabel")->name, "ModelVersion::setLabel");
  EXPECT_EQ(findHostOperation("ModelVersion::setLabels"), nullptr);
  EXPECT_EQ(findHostOperation(""), nullptr);
}

TEST_F(WrappedHostTest, Range_StaysValidWhileItIsWalked) {
  ModelVersion *base = m_wrapper.proxy(&m_scene.base);
  std::vector<ModelVersion *> walked;
  for (auto version = base->beginNext(); version != base->endNext(); ++version) {
    walked.push_back(*version);
  }
  EXPECT_EQ(walked, std::vector<ModelVersion *>({m_wrapper.proxy(&m_scene.second), nullptr}));
}

TEST_F(WrappedHostTest, Range_AfterAVersionWasAdded_HasItToo) {
  ModelVersion *base = m_wrapper.proxy(&m_scene.base);
  EXPECT_EQ(base->endNext() - base->beginNext(), 2);
  TinyModel::Version third(m_scene.host.script, "Third");
  m_scene.base.next.push_back(&third);
  ASSERT_EQ(base->endNext() - base->beginNext(), 3);
  EXPECT_EQ(base->beginNext()[2], m_wrapper.proxy(&third));
}

TEST_F(WrappedHostTest, ChangeSet_GoesInAsOriginalsAndComesBackAsProxies) {
  ChangeSet changes;
  changes.addModified(m_wrapper.proxy(&m_scene.box));
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(m_wrapper.proxy(&m_scene.second), &changes,
                                                                   false, nullptr, true);
  ASSERT_EQ(changes.getModifiedEntities().size(), 2U);
  EXPECT_EQ(changes.getModifiedEntities()[0].entity, m_wrapper.proxy(&m_scene.box));
  EXPECT_TRUE(changes.getModifiedEntities()[0].attributes.empty());
  EXPECT_EQ(changes.getModifiedEntities()[1].entity, m_wrapper.proxy(&m_scene.fan));
  EXPECT_EQ(changes.getModifiedEntities()[1].attributes,
            std::vector<Attribute *>({find(m_wrapper.proxy(&m_scene.fan), "Speed")}));
}

TEST_F(WrappedHostTest, Clone_IsDetachedAndKnowsItsOwnViews) {
  const std::unique_ptr<Attribute> copy = find(m_wrapper.proxy(&m_scene.fan), "Speed")->clone();
  EXPECT_EQ(copy->getOwnerEntity(), nullptr);
  copy->setValueFromString("8");
  EXPECT_EQ(copy->getValueAsString(), "8");
  EXPECT_EQ(m_scene.speed.getValueAsString(), "2.5");
  EXPECT_EQ(m_wrapper.proxy(m_wrapper.original(copy.get())), copy.get());
}

TEST_F(WrappedHostTest, AssignValue_BetweenCopyAndAttribute) {
  Attribute *speed = find(m_wrapper.proxy(&m_scene.fan), "Speed");
  const std::unique_ptr<Attribute> copy = speed->clone();
  copy->setValueFromString("8");
  speed->assignValue(*copy);
  EXPECT_EQ(m_scene.speed.getValueAsString(), "8");
  m_scene.speed.answers.text = "1";
  copy->assignValue(*speed);
  EXPECT_EQ(copy->getValueAsString(), "1");
}

TEST(WrappedHostLifeTest, Clone_OutlivesWrapperAndHost) {
  std::unique_ptr<Attribute> copy;
  std::unique_ptr<Attribute> copyOfCopy;
  {
    Scene scene;
    WrappedHost wrapper(scene.host);
    copy = wrapper.proxy(&scene.fan)->findAttribute(AttributePath("Speed"))->clone();
    copyOfCopy = copy->clone();
  }
  EXPECT_EQ(copy->getValueAsString(), "2.5");
  copy->setValueFromString("3");
  EXPECT_EQ(copy->clone()->getValueAsString(), "3");
  copy.reset();
  EXPECT_EQ(copyOfCopy->getValueAsString(), "2.5");
}

TEST(WrappedHostLifeTest, AddressUsedAgainForAnotherKind_GetsAFittingProxy) {
  Scene scene;
  WrappedHost wrapper(scene.host);
  union Place {
    Place() {}
    ~Place() {}
    TinyModel::Value value;
    TinyModel::List list;
  } place;
  auto *value = new (&place.value) TinyModel::Value(TinyModel::Answers());
  const Attribute *first = wrapper.proxy(static_cast<Attribute *>(value));
  EXPECT_EQ(dynamic_cast<const EntityModel::ListAttribute *>(first), nullptr);
  std::destroy_at(value);
  auto *list = new (&place.list) TinyModel::List(TinyModel::Answers());
  const Attribute *second = wrapper.proxy(static_cast<Attribute *>(list));
  EXPECT_NE(dynamic_cast<const EntityModel::ListAttribute *>(second), nullptr);
  std::destroy_at(list);
}

TEST_F(WrappedHostTest, EditOperation_IsValidUntilTheNextLookUp) {
  EntityModel::ModelDelta *delta = m_wrapper.proxy(&m_scene.second)->getDelta(true);
  const EntityModel::EditOperation *operation =
      delta->findEditOperation(m_wrapper.proxy(&m_scene.fan), AttributePath("Speed"));
  ASSERT_NE(operation, nullptr);
  const Attribute *value = operation->getValue();
  EXPECT_EQ(value, operation->getValue());
  EXPECT_EQ(value->getValueAsString(), "9");
  const std::unique_ptr<Attribute> kept = value->clone();
  EXPECT_EQ(delta->findEditOperation(m_wrapper.proxy(&m_scene.box), AttributePath("Speed")), nullptr);
  EXPECT_EQ(kept->getValueAsString(), "9");
}

// Keeps what it was told of.
class Keeper final : public EntityGUI::Observer {
public:
  Keeper() : Observer(false, true) {}
  void changedVersion(ChangeSet &changes, Entity *given, const std::string &name, bool /*reload*/) override {
    ++count;
    entity = given;
    versionName = name;
    attribute = changes.isEmpty() ? nullptr : changes.getModifiedEntities()[0].attributes[0];
  }

  int count = 0;
  Entity *entity = nullptr;
  Attribute *attribute = nullptr;
  std::string versionName;
};

TEST_F(WrappedHostTest, ObserverManager_IsTheSameAndRegistersWithTheProcess) {
  EntityGUI::AbstractObserverManager *manager = EntityGUI::EntityManager::getObserverManager();
  EXPECT_EQ(manager, EntityGUI::EntityManager::getObserverManager());
  Keeper keeper;
  manager->addObserver(&keeper);
  ChangeSet changes;
  EntityGUI::ObserverManager::process().broadcastChangedVersion(changes, nullptr, "Direct", false, true);
  EXPECT_EQ(keeper.versionName, "Direct");
}

TEST_F(WrappedHostTest, BroadcastOfTheHostItself_ReachesObserversWithProxies) {
  Keeper keeper;
  EntityGUI::EntityManager::getObserverManager()->addObserver(&keeper);
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(m_wrapper.proxy(&m_scene.second), nullptr,
                                                                   false, nullptr, true);
  EXPECT_EQ(keeper.count, 1);
  EXPECT_EQ(keeper.entity, m_root);
  EXPECT_EQ(keeper.attribute, find(m_wrapper.proxy(&m_scene.fan), "Speed"));
  EXPECT_EQ(keeper.versionName, "Second");
}

TEST_F(WrappedHostTest, BroadcastOfTheCurrentEntity_OriginalOrProxy_IsTheProxy) {
  Keeper keeper;
  EntityGUI::EntityManager::getObserverManager()->addObserver(&keeper);
  ChangeSet changes;
  for (Entity *root : {static_cast<Entity *>(&m_scene.host.script.root), m_root}) {
    EntityGUI::EntityManager::s_CurrentEntity = root;
    keeper.entity = nullptr;
    EntityGUI::EntityManager::getObserverManager()->broadcastChangedVersion(
        changes, EntityGUI::EntityManager::getCurrentEntity(), "Base", false, true);
    EXPECT_EQ(keeper.entity, m_root);
  }
  EntityGUI::EntityManager::s_CurrentEntity = nullptr;
}

TEST_F(WrappedHostTest, MuteHostBroadcasts_KeepsBackOnlyWhatTheHostSends) {
  Keeper keeper;
  EntityGUI::EntityManager::getObserverManager()->addObserver(&keeper);
  m_wrapper.muteHostBroadcasts(true);
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(m_wrapper.proxy(&m_scene.second), nullptr,
                                                                   false, nullptr, true);
  EXPECT_EQ(keeper.count, 0);
  ChangeSet changes;
  EntityGUI::EntityManager::getObserverManager()->broadcastChangedVersion(changes, m_root, "Mine", false,
                                                                          true);
  EXPECT_EQ(keeper.count, 1);
  m_wrapper.muteHostBroadcasts(false);
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(m_wrapper.proxy(&m_scene.base), nullptr,
                                                                   false, nullptr, true);
  EXPECT_EQ(keeper.versionName, "Base");
}

// Offers what it must and nothing else.
class BareHost final : public HostModel::Host {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return nullptr; }
};

TEST(WrappedHostLifeTest, HostWithoutServices_WrapperHasNoneEither) {
  BareHost bare;
  WrappedHost wrapper(bare);
  EXPECT_EQ(wrapper.getEntityEditor(), nullptr);
  EXPECT_EQ(wrapper.getEntityManager(), nullptr);
  EXPECT_EQ(wrapper.getStudyTypeNames(), nullptr);
  EXPECT_EQ(wrapper.getModellingImpact(), nullptr);
  EXPECT_EQ(wrapper.getProjectStore(), nullptr);
  EXPECT_EQ(wrapper.getDirectories(), nullptr);
}

TEST(NestedWrapperTest, EveryOperation_IsForwardedThroughBoth) {
  Scene scene;
  WrappedHost inner(scene.host);
  WrappedHost outer(static_cast<HostModel::Host &>(inner));
  const HostModel::HostInstallation installation(outer);
  SceneProxies proxies(scene, outer);
  for (const OperationStep &step : everyOperation()) {
    EXPECT_EQ(outcome(step, proxies), step.answer) << step.operation;
  }
}

TEST(NestedWrapperTest, Original_IsTheInnermostHosts) {
  Scene scene;
  WrappedHost inner(scene.host);
  WrappedHost outer(static_cast<HostModel::Host &>(inner));
  Entity *fan = outer.proxy(&scene.fan);
  EXPECT_NE(fan, inner.proxy(&scene.fan));
  EXPECT_EQ(fan, outer.proxy(inner.proxy(&scene.fan)));
  EXPECT_EQ(outer.original(fan), &scene.fan);
}

TEST(NestedWrapperTest, BroadcastOfTheHost_IsInterceptedByBothAndTellsOfTheOutermostProxies) {
  Scene scene;
  CountingHost inner(scene.host);
  CountingHost outer(static_cast<HostModel::Host &>(inner));
  const HostModel::HostInstallation installation(outer);
  Keeper keeper;
  EntityGUI::EntityManager::getObserverManager()->addObserver(&keeper);
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(outer.proxy(&scene.second), nullptr, false,
                                                                   nullptr, true);
  EXPECT_EQ(keeper.count, 1);
  EXPECT_EQ(keeper.entity, EntityModel::EntityEditor::getRootEntity());
  EXPECT_EQ(inner.seen.count("ObserverManager::broadcastChangedVersion"), 1U);
  EXPECT_EQ(outer.seen.count("ObserverManager::broadcastChangedVersion"), 1U);
}

TEST(NestedWrapperTest, MutedInside_KeepsBackTheHostsBroadcast) {
  Scene scene;
  WrappedHost inner(scene.host);
  WrappedHost outer(static_cast<HostModel::Host &>(inner));
  const HostModel::HostInstallation installation(outer);
  inner.muteHostBroadcasts(true);
  Keeper keeper;
  EntityGUI::EntityManager::getObserverManager()->addObserver(&keeper);
  EntityModel::EntityEditor::getChangeManager()->setCurrentVersion(outer.proxy(&scene.second), nullptr, false,
                                                                   nullptr, true);
  EXPECT_EQ(keeper.count, 0);
}

TEST(NestedWrapperTest, Clone_OutlivesBoth) {
  std::unique_ptr<Attribute> copy;
  {
    Scene scene;
    WrappedHost inner(scene.host);
    WrappedHost outer(static_cast<HostModel::Host &>(inner));
    copy = outer.proxy(&scene.fan)->findAttribute(AttributePath("Speed"))->clone();
  }
  EXPECT_EQ(copy->getValueAsString(), "2.5");
}

} // namespace
} // namespace HostTesting
