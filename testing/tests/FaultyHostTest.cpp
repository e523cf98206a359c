#include "testing/FaultyHost.h"

#include "HostModel/EntityEditor.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "testing/RecordingHost.h"
#include "testing/tests/EveryOperation.h"
#include "testing/tests/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace HostTesting {
namespace {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersion;

template <class Call> std::string messageOf(const Call &call) {
  try {
    call();
  } catch (const std::exception &error) {
    return error.what();
  }
  return "no exception";
}

class FaultyHostTest : public ::testing::Test {
protected:
  Scene m_scene;
  FaultyHost m_faulty{m_scene.host};
  HostModel::HostInstallation m_installation{m_faulty};
  SceneProxies m_proxies{m_scene, m_faulty};
};

bool canFail(const std::string &operation, FaultKind kind) {
  const std::vector<FaultKind> kinds = FaultyHost::kinds(operation);
  return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

TEST_F(FaultyHostTest, EveryOperation_Throws) {
  for (const OperationStep &step : everyOperation()) {
    m_faulty.heal();
    m_faulty.fail(step.operation, FaultKind::Throws);
    std::string message;
    try {
      outcome(step, m_proxies);
    } catch (const std::runtime_error &error) {
      message = error.what();
    }
    EXPECT_EQ(message, "injected fault") << step.operation;
    EXPECT_EQ(m_scene.takeLog(), "") << step.operation;
    EXPECT_EQ(m_faulty.strikes(), 1) << step.operation;
  }
}

TEST_F(FaultyHostTest, EveryOperation_RefusedOrNull_HasTheNeutralAnswerAndNoEffect) {
  for (const OperationStep &step : everyOperation()) {
    if (step.refusedAnswer == nullptr) {
      continue;
    }
    m_faulty.heal();
    const FaultKind kind = canFail(step.operation, FaultKind::Null) ? FaultKind::Null : FaultKind::Refused;
    m_faulty.fail(step.operation, kind);
    EXPECT_EQ(outcome(step, m_proxies), step.refusedAnswer) << step.operation;
    EXPECT_GE(m_faulty.strikes(), 1) << step.operation;
  }
}

TEST_F(FaultyHostTest, EveryOperation_Healed_AnswersAsBefore) {
  for (const OperationStep &step : everyOperation()) {
    m_faulty.fail(step.operation, FaultKind::Throws);
  }
  m_faulty.heal();
  for (const OperationStep &step : everyOperation()) {
    EXPECT_EQ(outcome(step, m_proxies), step.answer) << step.operation;
  }
  EXPECT_EQ(m_faulty.strikes(), 0);
}

TEST_F(FaultyHostTest, Operations_AreAllOfThem) {
  const std::vector<std::string> operations = FaultyHost::operations();
  EXPECT_EQ(operations.size(), everyOperation().size());
  EXPECT_EQ(operations.front(), "Host::getEntityEditor");
  EXPECT_EQ(std::count(operations.begin(), operations.end(), "ChangeManager::setCurrentVersion"), 1);
}

TEST_F(FaultyHostTest, Kinds_ByWhatTheOperationAnswers) {
  using Kinds = std::vector<FaultKind>;
  EXPECT_EQ(FaultyHost::kinds("ChangeManager::startNewVersion"), Kinds({FaultKind::Null, FaultKind::Throws}));
  EXPECT_EQ(FaultyHost::kinds("EntityEditor::setValue"), Kinds({FaultKind::Refused, FaultKind::Throws}));
  EXPECT_EQ(FaultyHost::kinds("ModelVersion::clearStudy"), Kinds({FaultKind::Refused, FaultKind::Throws}));
  EXPECT_EQ(FaultyHost::kinds("ModelVersion::getLabel"), Kinds({FaultKind::Refused, FaultKind::Throws}));
  EXPECT_EQ(FaultyHost::kinds("ModelVersion::beginNext"), Kinds({FaultKind::Refused, FaultKind::Throws}));
  EXPECT_EQ(FaultyHost::kinds("ModelVersion::endNext"), Kinds({FaultKind::Throws}));
}

TEST_F(FaultyHostTest, UnknownOperation_IsRefusedByName) {
  EXPECT_EQ(messageOf([&] { m_faulty.fail("ModelVersion::setLabels", FaultKind::Throws); }),
            "FaultyHost: No such operation: ModelVersion::setLabels");
  EXPECT_EQ(messageOf([] { FaultyHost::kinds("nothing"); }), "FaultyHost: No such operation: nothing");
  EXPECT_EQ(messageOf([&] { return m_faulty.occurrences("x"); }), "FaultyHost: No such operation: x");
}

TEST_F(FaultyHostTest, KindThatTheOperationCannotHave_IsRefused) {
  EXPECT_EQ(messageOf([&] { m_faulty.fail("ModelVersion::endNext", FaultKind::Refused); }),
            "FaultyHost: Operation cannot fail in this kind: ModelVersion::endNext");
  EXPECT_EQ(messageOf([&] { m_faulty.fail("ModelVersion::getLabel", FaultKind::Null); }),
            "FaultyHost: Operation cannot fail in this kind: ModelVersion::getLabel");
}

TEST_F(FaultyHostTest, SecondOccurrence_FailsOnce) {
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused, 2);
  EXPECT_EQ(m_proxies.base->getLabel(), "Base");
  EXPECT_EQ(m_proxies.second->getLabel(), "");
  EXPECT_EQ(m_proxies.second->getLabel(), "Second");
  EXPECT_EQ(m_faulty.strikes(), 1);
  EXPECT_EQ(m_faulty.occurrences("ModelVersion::getLabel"), 3);
}

TEST_F(FaultyHostTest, StrikeAction_SeesTheCallBeforeItFails) {
  std::vector<std::string> calls;
  m_faulty.setStrikeAction([&](const HostCall &call) {
    calls.push_back(std::string(call.operation.name) + "(" + call.arguments() + ") " +
                    m_proxies.second->getLabel() + " " + std::to_string(m_faulty.strikes()));
  });
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Throws, 2);
  EXPECT_EQ(m_proxies.base->getLabel(), "Base");
  EXPECT_EQ(messageOf([&] { static_cast<void>(m_proxies.base->getLabel()); }), "injected fault");
  EXPECT_EQ(calls, std::vector<std::string>({"ModelVersion::getLabel(\"Base\") Second 1"}));
  EXPECT_EQ(m_faulty.occurrences("ModelVersion::getLabel"), 2);
  m_faulty.setStrikeAction(nullptr);
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused);
  EXPECT_EQ(m_proxies.base->getLabel(), "");
  EXPECT_EQ(calls.size(), 1U);
}

TEST_F(FaultyHostTest, Always_FailsEveryTime) {
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused);
  EXPECT_EQ(m_proxies.base->getLabel(), "");
  EXPECT_EQ(m_proxies.base->getLabel(), "");
  EXPECT_EQ(m_faulty.strikes(), 2);
}

TEST_F(FaultyHostTest, OccurrenceIsCountedFromTheChoice) {
  m_proxies.base->getLabel();
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused, 1);
  EXPECT_EQ(m_proxies.base->getLabel(), "");
}

TEST_F(FaultyHostTest, OtherOperations_AreNotTouched) {
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused);
  EXPECT_EQ(m_proxies.second->getPrevious(), m_proxies.base);
  EXPECT_EQ(m_faulty.strikes(), 0);
}

TEST_F(FaultyHostTest, NeverCalled_StrikesNever) {
  m_faulty.fail("ModelVersion::setLabel", FaultKind::Throws);
  m_proxies.base->getLabel();
  EXPECT_EQ(m_faulty.strikes(), 0);
  EXPECT_EQ(m_faulty.occurrences("ModelVersion::setLabel"), 0);
}

TEST_F(FaultyHostTest, RangeRefused_IsEmpty) {
  m_faulty.fail("ModelVersion::beginNext", FaultKind::Refused);
  m_faulty.fail("ModelVersionExternalData::begin", FaultKind::Refused);
  int walked = 0;
  for (auto version = m_proxies.base->beginNext(); version != m_proxies.base->endNext(); ++version) {
    ++walked;
  }
  for (auto delta = m_proxies.externalData->begin(); delta != m_proxies.externalData->end(); ++delta) {
    ++walked;
  }
  EXPECT_EQ(walked, 0);
  EXPECT_EQ(m_faulty.strikes(), 2);
}

TEST_F(FaultyHostTest, CallsOfTheHostItself_AreSpared) {
  m_faulty.heal();
  // The small host asks for the observer manager while it switches.
  m_faulty.fail("EntityManager::getObserverManager", FaultKind::Null);
  m_faulty.fail("Host::getEntityManager", FaultKind::Null);
  EXPECT_TRUE(m_proxies.versions->setCurrentVersion(m_proxies.second, nullptr, false, nullptr, true));
  EXPECT_EQ(m_faulty.strikes(), 0);
  EXPECT_EQ(m_faulty.occurrences("EntityManager::getObserverManager"), 0);
}

TEST_F(FaultyHostTest, BroadcastOfTheHostItself_Fails) {
  m_faulty.fail("ObserverManager::broadcastChangedVersion", FaultKind::Throws);
  EXPECT_EQ(messageOf([&] {
              m_proxies.versions->setCurrentVersion(m_proxies.second, nullptr, false, nullptr, true);
            }),
            "injected fault");
}

TEST_F(FaultyHostTest, ThrowingCallOfAnObserver_LeavesTheWrapperUsable) {
  class Caller final : public EntityGUI::Observer {
  public:
    explicit Caller(ModelVersion *version) : Observer(false, true), m_version(version) {
      EntityGUI::ObserverManager::process().addObserver(this);
    }
    void changedVersion(ChangeSet & /*changes*/, Entity * /*entity*/, const std::string & /*name*/,
                        bool /*reload*/) override {
      m_version->clearStudy();
    }

  private:
    ModelVersion *m_version;
  };
  const Caller caller(m_proxies.second);
  m_faulty.fail("ModelVersion::clearStudy", FaultKind::Throws, 1);
  EXPECT_EQ(messageOf([&] {
              m_proxies.versions->setCurrentVersion(m_proxies.second, nullptr, false, nullptr, true);
            }),
            "injected fault");
  // The next calls count as made from outside again.
  m_faulty.fail("ModelVersion::getLabel", FaultKind::Refused);
  EXPECT_EQ(m_proxies.base->getLabel(), "");
}

TEST(FaultyHostNestingTest, RecordingAroundFaults_RecordsTheCallThatFails) {
  Scene scene;
  FaultyHost faulty(scene.host);
  RecordingHost recording(faulty);
  const HostModel::HostInstallation installation(recording);
  ModelVersion *base = recording.proxy(&scene.base);
  faulty.fail("ModelVersion::clearStudy", FaultKind::Refused);
  base->clearStudy();
  EXPECT_EQ(scene.takeLog(), "");
  EXPECT_EQ(recording.texts(), std::vector<std::string>({"ModelVersion::clearStudy(\"Base\")"}));
  EXPECT_EQ(faulty.strikes(), 1);
}

TEST(FaultyHostNestingTest, RecordingAroundFaults_DoesNotUseUpOccurrences) {
  Scene scene;
  FaultyHost faulty(scene.host);
  RecordingHost recording(faulty);
  recording.recordEverything();
  const HostModel::HostInstallation installation(recording);
  Entity *fan = recording.proxy(&scene.fan);
  faulty.fail("Entity::getName", FaultKind::Refused, 1);
  faulty.fail("Attribute::asList", FaultKind::Null, 1);
  Attribute *parts = fan->findAttribute(AttributePath("Parts"));
  EXPECT_EQ(faulty.occurrences("Entity::getName"), 0);
  EXPECT_EQ(parts->asList(), nullptr);
  EXPECT_NE(parts->asList(), nullptr);
}

TEST(FaultyHostNestingTest, FaultsAroundRecording_RefusedBroadcastIsNotRecorded) {
  Scene scene;
  RecordingHost recording(scene.host);
  FaultyHost faulty(recording);
  const HostModel::HostInstallation installation(faulty);
  faulty.fail("ObserverManager::broadcastSetCurrentEntity", FaultKind::Refused, 1);
  EntityGUI::AbstractObserverManager *manager = EntityGUI::EntityManager::getObserverManager();
  manager->broadcastSetCurrentEntity(&scene.fan, false);
  EXPECT_EQ(recording.texts(), std::vector<std::string>());
  manager->broadcastSetCurrentEntity(&scene.fan, true);
  EXPECT_EQ(recording.texts(),
            std::vector<std::string>({"ObserverManager::broadcastSetCurrentEntity(Fan, scrollTo=true)"}));
}

} // namespace
} // namespace HostTesting
