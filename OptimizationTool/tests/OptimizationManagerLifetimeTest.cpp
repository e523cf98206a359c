// The manager lives from its first use to the end of the process, while hosts and projects come and go. What
// happens at the end of a process is seen in child processes, which a death test starts anew.

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Host.h"
#include "HostModel/Observer.h"
#include "HostModel/ObserverManager.h"
#include "OptimizationTool/tests/ManagedStudy.h"
#include "testing/RecordingHost.h"

#include <QPointer>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using EmbeddedHost::Project;
using EntityGUI::Observer;
using EntityGUI::ObserverManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersionStudyType;
using StudyTesting::ManagedStudy;
using Texts = std::vector<std::string>;

void say(const char *text) {
  std::fprintf(stderr, "%s\n", text);
}

// Hands out an observer manager of its own, which says who is added and removed.
class ObservedHost final : public HostModel::Host,
                           private EntityGUI::EntityManagerService,
                           private EntityGUI::AbstractObserverManager {
public:
  EntityModel::EntityEditorService *getEntityEditor() override { return nullptr; }
  EntityGUI::EntityManagerService *getEntityManager() override { return this; }

private:
  EntityModel::ChangeManager *getChangeManager() override { return nullptr; }
  EntityGUI::AbstractObserverManager *getObserverManager() override { return this; }
  void setNeedsSave(bool /*needsSave*/) override {}
  bool setValue(Entity * /*entity*/, const EntityModel::AttributePath & /*path*/,
                const std::string & /*text*/, bool /*notify*/) override {
    return false;
  }
  void checkSelectionsAreValid() override {}
  EntityGUI::AbstractModelChecker *getModelChecker() override { return nullptr; }

  void addObserver(Observer *observer) override {
    m_observer = observer;
    std::fprintf(stderr, "added %d %d;", static_cast<int>(observer->isModal()),
                 static_cast<int>(observer->receivesOwnChanges()));
  }
  void removeObserver(Observer *observer) override {
    std::fprintf(stderr, "removed %d;", static_cast<int>(observer == m_observer));
  }
  void broadcastChangedVersion(ChangeSet & /*changes*/, Entity * /*entity*/,
                               const std::string & /*versionName*/, bool /*reload*/,
                               bool /*toSender*/) override {}
  void broadcastChangedEntities(ChangeSet & /*changes*/) override {}
  void broadcastUndoneOrRedone(ChangeSet & /*changes*/) override {}
  void broadcastSetCurrentEntity(Entity * /*entity*/, bool /*scrollTo*/) override {}
  void broadcastSelectEntities(const std::vector<Entity *> & /*entities*/) override {}

  Observer *m_observer = nullptr;
};

// What outlives main() in a child process.
struct Leftovers {
  ObservedHost observed;
  std::unique_ptr<Project> project;
  std::unique_ptr<HostTesting::RecordingHost> recording;
  std::unique_ptr<HostModel::HostInstallation> installation;
};

// Made before the manager, so that it is destroyed after it.
Leftovers &leftovers() {
  static Leftovers object;
  return object;
}

void sayAtExit() {
  say("end");
}

// Begins a study on a project that nobody closes.
void holdStudy() {
  Leftovers &left = leftovers();
  left.project = Project::create(EmbeddedHost::ModelSchema());
  left.installation = std::make_unique<HostModel::HostInstallation>(*left.project);
  EmbeddedHost::Commands(*left.project).announceOpened();
  OptimizationManager::instance().beginStudy(ModelVersionStudyType::Parametric);
  QObject::connect(OptimizationManager::instance().getData(), &QObject::destroyed, [] { say("study gone"); });
}

class ProcessExitTest : public ::testing::Test {
protected:
  // A child that starts anew has no manager yet.
  ProcessExitTest() { ::testing::GTEST_FLAG(death_test_style) = "threadsafe"; }
};

TEST_F(ProcessExitTest, Manager_RegistersWhenItIsMadeAndUnregistersAtExit) {
  EXPECT_EXIT(
      {
        Leftovers &left = leftovers();
        left.installation = std::make_unique<HostModel::HostInstallation>(left.observed);
        std::atexit(sayAtExit);
        std::fputs("first;", stderr);
        OptimizationManager::instance();
        std::fputs("again;", stderr);
        OptimizationManager::instance();
        OptimizationManager::instance().initializeVersion();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^first;added 0 1;again;removed 1;end\n$");
}

TEST_F(ProcessExitTest, Manager_MadeWithoutHost_RegistersNeverAfterwards) {
  EXPECT_EXIT(
      {
        OptimizationManager &manager = OptimizationManager::instance();
        const std::unique_ptr<Project> project = Project::create(EmbeddedHost::ModelSchema());
        const HostModel::HostInstallation installation(*project);
        const Entity *study =
            project->createEntity("OptimizationData", project->rootEntity(), "OptimizationDataList", "");
        project->setValue(ManagedStudy::storedStudies().at(0), "BaseVersionName", "Base");
        EmbeddedHost::Commands(*project).announceOpened();
        say(manager.getData() == nullptr ? "not told" : "told");
        manager.initializeVersion();
        say(manager.getData()->get() == study ? "found" : "not found");
        project->changeManager().setCurrentVersion(nullptr, nullptr, false, nullptr, true);
        manager.initializeVersion();
        say(manager.getData() == nullptr ? "dropped" : "kept");
        std::_Exit(0);
      },
      ::testing::ExitedWithCode(0), "^not told\nfound\ndropped\n$");
}

TEST_F(ProcessExitTest, Exit_StudyHeldAndHostInstalled_EndsTheStudy) {
  EXPECT_EXIT(
      {
        leftovers();
        std::atexit(sayAtExit);
        holdStudy();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^study gone\nend\n$");
}

TEST_F(ProcessExitTest, Exit_ManagerUnregistersBeforeItsStudyEnds) {
  EXPECT_EXIT(
      {
        Leftovers &left = leftovers();
        std::atexit(sayAtExit);
        holdStudy();
        left.recording = std::make_unique<HostTesting::RecordingHost>(*left.project);
        left.installation.reset();
        left.installation = std::make_unique<HostModel::HostInstallation>(*left.recording);
        QObject::connect(OptimizationManager::instance().getData(), &QObject::destroyed, [&left] {
          for (const std::string &call : left.recording->texts()) {
            say(call.c_str());
          }
        });
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^study gone\nObserverManager::removeObserver[^\n]*\nend\n$");
}

TEST_F(ProcessExitTest, Exit_StudyHeldAndHostUninstalled_EndsTheStudy) {
  EXPECT_EXIT(
      {
        leftovers();
        std::atexit(sayAtExit);
        holdStudy();
        leftovers().installation.reset();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^study gone\nend\n$");
}

// Nobody may be told of anything any more, so the manager must be out of the registry.
TEST_F(ProcessExitTest, Exit_HostUninstalled_LeavesNoObserverBehind) {
  EXPECT_EXIT(
      {
        leftovers();
        std::atexit([] {
          leftovers().installation = std::make_unique<HostModel::HostInstallation>(*leftovers().project);
          ChangeSet changes;
          ObserverManager::process().broadcastChangedEntities(changes);
          ObserverManager::process().broadcastSetCurrentEntity(leftovers().project->rootEntity(), false);
          say("told nobody");
        });
        holdStudy();
        leftovers().installation.reset();
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^study gone\ntold nobody\n$");
}

TEST_F(ProcessExitTest, Exit_ProjectClosedAndGone_EndsWithoutStudy) {
  EXPECT_EXIT(
      {
        leftovers();
        std::atexit(sayAtExit);
        holdStudy();
        if (!EmbeddedHost::Commands(*leftovers().project).close()) {
          say("not closed");
        }
        leftovers().installation.reset();
        leftovers().project.reset();
        say("project gone");
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^study gone\nproject gone\nend\n$");
}

TEST_F(ProcessExitTest, Exit_ManagerNeverUsed_SaysNothing) {
  EXPECT_EXIT(
      {
        leftovers().installation = std::make_unique<HostModel::HostInstallation>(leftovers().observed);
        std::exit(0);
      },
      ::testing::ExitedWithCode(0), "^$");
}

TEST(OptimizationManagerLifetimeTest, Close_DropsTheStudyBeforeTheProjectGoes) {
  ManagedStudy study;
  study.beginWithRows();
  const QPointer<OptimizationData> data(&ManagedStudy::data());

  EXPECT_EQ(study.commands().close().problem, "");

  EXPECT_TRUE(data.isNull());
  EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
}

TEST(OptimizationManagerLifetimeTest, TwoProjects_BaselinesOfTheSameLabel_HaveTheirOwnStudies) {
  {
    ManagedStudy first;
    first.beginWithRows();
    EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
  }
  ManagedStudy second;
  EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
  EXPECT_EQ(ManagedStudy::manager().getBaseVersionName(), "");

  second.begin();

  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
  EXPECT_EQ(ManagedStudy::data().getNumInputs(), 0);
  EXPECT_EQ(second.versionLabels(), (Texts{"Base", "Parametric Copy of Base"}));
}

TEST(OptimizationManagerLifetimeTest, TwoProjects_StudyStoredInTheSecond_IsLoadedWhenItIsOpened) {
  {
    ManagedStudy first;
    first.beginWithRows();
  }
  ManagedStudy second;
  Entity *entity = second.storeStudy("Base");

  second.commands().announceOpened();

  ASSERT_NE(ManagedStudy::manager().getData(), nullptr);
  EXPECT_EQ(ManagedStudy::data().get(), entity);
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
}

TEST(OptimizationManagerLifetimeTest, TwoProjectsAtOnce_TheManagerFollowsTheOneThatIsInstalled) {
  ManagedStudy outer;
  outer.beginWithRows();
  {
    ManagedStudy inner;
    EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
    inner.begin();
    EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
  }

  outer.commands().announceOpened();

  ASSERT_NE(ManagedStudy::manager().getData(), nullptr);
  EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
}

TEST(OptimizationManagerLifetimeTest, Close_StudyThatAThrowHasLeftEditing_IsDropped) {
  ManagedStudy study;
  study.beginWithRows();
  study.recording().muteHostBroadcasts(true);
  EntityGUI::EntityManager::getChangeManager()->setCurrentVersion(ManagedStudy::version("A"), nullptr, false,
                                                                  nullptr, true);
  study.faults().fail("ChangeManager::setCurrentVersion", HostTesting::FaultKind::Throws, 1);
  EXPECT_THROW(ManagedStudy::data().initializeVariants(nullptr), std::runtime_error);
  ASSERT_TRUE(ManagedStudy::manager().isEditingVersions());

  EXPECT_EQ(study.commands().close().problem, "");

  EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
}

} // namespace
} // namespace OptimizationTool
