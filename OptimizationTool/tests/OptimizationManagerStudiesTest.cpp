// How the manager begins and ends studies.

#include "EmbeddedHost/Project.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/tests/ManagedStudy.h"
#include "OptimizationTool/tests/ScriptedVersions.h"

#include <QPointer>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using EmbeddedHost::HostBehaviour;
using EntityGUI::EntityManager;
using EntityModel::Entity;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using HostTesting::FaultKind;
using StudyTesting::ManagedStudy;
using StudyTesting::ScriptedVersion;
using StudyTesting::ScriptedVersionsHost;
using StudyTesting::VersionChangeLog;
using Texts = std::vector<std::string>;

class OptimizationManagerStudiesTest : public ::testing::Test {
protected:
  static Texts baseNames() {
    Texts names;
    for (Entity *entity : ManagedStudy::storedStudies()) {
      names.push_back(ManagedStudy::get(entity, "BaseVersionName"));
    }
    return names;
  }

  ManagedStudy study;
  OptimizationManager &manager = ManagedStudy::manager();
};

using BeginStudyTest = OptimizationManagerStudiesTest;

TEST_F(BeginStudyTest, BeginStudy_CallsInOrder) {
  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(
      study.recording().textsWithState(),
      (Texts{
          R"(-- ModelVersion::setStudyType("Base", 1))",
          R"(-- EntityEditor::createEntity(OptimizationData, Root.OptimizationDataList, library=null, setDefaults=true, notify=true, select=false, "", position=-1))",
          R"(-- EntityEditor::setValue(OptimizationDataList[0].BaseVersionName, "Base", force=false, affected=null, notify=true, edited=true))",
          R"(-- EntityManager::setNeedsSave(true))",
          R"(-- ChangeManager::findVersion("Base", entity=null))",
          R"(-- ChangeManager::findVersion("", entity=null))",
          R"(-- ChangeManager::findVersion("Base", entity=null))",
          R"(-- EntityEditor::setValue(OptimizationDataList[0].BaseVersionName, "Base", force=false, affected=null, notify=true, edited=true))",
          R"(E- ChangeManager::findVersion("Parametric Copy of Base", entity=null))",
          R"(E- ChangeManager::findVersion("Parametric Copy of Base", entity=null))",
          R"(E- ChangeManager::getUniqueName("Parametric Copy of Base", {}))",
          R"(E- EntityEditor::setValue(OptimizationDataList[0].CopyVersionName, "Parametric Copy of Base", force=false, affected=null, notify=true, edited=true))",
          R"(E- ChangeManager::startNewVersion("Parametric Copy of Base", "", "", "", null, origin="Base", makeReadOnly=false))",
          R"(E- ModelVersion::setLabel("Parametric Copy of Base", "Parametric Copy of Base"))",
          R"(E- ModelVersion::clearStudy("Parametric Copy of Base"))",
          R"(E- ModelVersion::setStudyCaseFlag("Parametric Copy of Base", 2, set=true))",
          R"(E- ModelVersion::setReadOnlyVersion("Parametric Copy of Base", "true"))",
          R"(E- ChangeManager::editedVersion("Parametric Copy of Base", changes, notify=true))",
          R"(E- ChangeManager::getVersionFolder("Base", create=false))",
          R"(E- ChangeManager::getVersionFolder("Parametric Copy of Base", create=false))",
          R"(E- ProjectStore::remove(("", "")))",
          R"(E- ProjectStore::copyResults(from=("", ""), to=("", ""), move=false, progress=null, overwrite=true))",
          R"(E- ChangeManager::setCurrentVersion("Parametric Copy of Base", changes, force=false, progress=null, load=true))",
          R"(E- EntityManager::checkSelectionsAreValid())",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
          R"(E- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
          R"(-- EntityManager::setNeedsSave(true))",
          R"(-- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
}

TEST_F(BeginStudyTest, BeginStudy_MarksTheVersionAndHoldsTheStudy) {
  manager.beginStudy(ModelVersionStudyType::Calibration);

  EXPECT_EQ(ManagedStudy::version("Base")->getStudyType(), ModelVersionStudyType::Calibration);
  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->parent(), nullptr);
  EXPECT_EQ(ManagedStudy::storedStudies(), std::vector<Entity *>{manager.getData()->get()});
  EXPECT_EQ(manager.getBaseVersionName(), "Base");
  EXPECT_EQ(manager.getData()->getCopyVersionName(), "Calibration Copy of Base");
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
  EXPECT_EQ(ManagedStudy::currentLabel(), "Base");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Calibration Copy of Base"}));
}

TEST_F(BeginStudyTest, BeginStudy_AnyOtherStudyTypeIsPassedThrough) {
  manager.beginStudy(static_cast<ModelVersionStudyType>(17));

  EXPECT_EQ(ManagedStudy::version("Base")->getStudyType(), static_cast<ModelVersionStudyType>(17));
  EXPECT_EQ(manager.getStudyType(), static_cast<ModelVersionStudyType>(17));
}

TEST_F(BeginStudyTest, BeginStudy_Optimality_CreatesItsConfiguration) {
  manager.beginStudy(ModelVersionStudyType::Optimality);

  const Texts calls = study.recording().texts();
  ASSERT_GE(calls.size(), 5U);
  EXPECT_EQ(
      calls.at(4),
      R"(EntityEditor::createEntity(OptimalityConfiguration, OptimizationDataList[0].OptimalityConfigurationLink, library=null, setDefaults=true, notify=true, select=false, "", position=-1))");
}

TEST_F(BeginStudyTest, BeginStudy_StudyHasBegun_ChangesNothingAndNotifiesNobody) {
  study.begin();
  OptimizationData *before = manager.getData();

  manager.beginStudy(ModelVersionStudyType::Calibration);

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(manager.getData(), before);
  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::Parametric);
}

TEST_F(BeginStudyTest, BeginStudy_DeletesEveryStudyRecordedForTheLabel) {
  Entity *first = study.storeStudy("Base");
  study.storeStudy("Other");
  Entity *second = study.storeStudy("Base");
  study.storeStudy("base");
  study.storeStudy("");
  study.recording().setAlias(first, "First");
  study.recording().setAlias(second, "Second");

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(study.recording().texts().front(),
            "EntityEditor::deleteEntities([First, Second], force=false, notify=true)");
  EXPECT_EQ(baseNames(), (Texts{"Other", "base", "", "Base"}));
}

TEST_F(BeginStudyTest, BeginStudy_HostRefusesTheDeletion_GoesOn) {
  Entity *stale = study.storeStudy("Base");
  study.faults().fail("EntityEditor::deleteEntities", FaultKind::Refused);

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(study.faults().strikes(), 1);
  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_NE(manager.getData()->get(), stale);
}

TEST_F(BeginStudyTest, BeginStudy_HostRefusesTheEntity_TakesTheMarkBackAndStillNotifies) {
  study.faults().fail("EntityEditor::createEntity", FaultKind::Null);

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(
      study.takeCalls(),
      (Texts{
          R"(ModelVersion::setStudyType("Base", 1))",
          R"(EntityEditor::createEntity(OptimizationData, Root.OptimizationDataList, library=null, setDefaults=true, notify=true, select=false, "", position=-1))",
          R"(ModelVersion::setStudyType("Base", 0))",
          R"(EntityManager::setNeedsSave(true))",
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
}

TEST_F(BeginStudyTest, BeginStudy_NoRootEntity_TakesTheMarkBackAndStillNotifies) {
  study.faults().fail("EntityEditor::getRootEntity", FaultKind::Null);

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(
      study.takeCalls(),
      (Texts{
          R"(ModelVersion::setStudyType("Base", 1))",
          R"(ModelVersion::setStudyType("Base", 0))",
          R"(EntityManager::setNeedsSave(true))",
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
}

TEST_F(BeginStudyTest, BeginStudy_NoCurrentVersion_OnlyMarksAndNotifies) {
  study.showNoVersion();

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(study.takeCalls(),
            (Texts{
                R"(EntityManager::setNeedsSave(true))",
                R"(ObserverManager::broadcastChangedVersion(changes, Root, "", reload=false, toSender=true))",
            }));
}

TEST_F(BeginStudyTest, BeginStudy_NoObserverManager_NotifiesNobody) {
  const VersionChangeLog log;
  study.recording().muteHostBroadcasts(true);
  study.faults().fail("EntityManager::getObserverManager", FaultKind::Null);

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_NE(manager.getData(), nullptr);
  EXPECT_EQ(log.texts(), Texts{});
}

TEST_F(BeginStudyTest, BeginStudy_LastNotification_HasNoChangesAndNamesTheBaseline) {
  const VersionChangeLog log;

  manager.beginStudy(ModelVersionStudyType::Parametric);

  ASSERT_FALSE(log.texts().empty());
  EXPECT_EQ(log.texts().back(), "Base, root, 0 changes");
}

TEST_F(BeginStudyTest, BeginStudy_Notification_NamesTheCurrentEntity) {
  EntityManager::s_CurrentEntity = study.recording().original(study.fan());

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_EQ(study.recording().texts().back(),
            R"(ObserverManager::broadcastChangedVersion(changes, Fan, "Base", reload=false, toSender=true))");
}

TEST_F(BeginStudyTest, BeginStudy_WhileAnotherStudyIsHeld_ReplacesIt) {
  study.begin();
  const QPointer<OptimizationData> before(manager.getData());
  study.addVersion("Other", "Base");
  study.recording().muteHostBroadcasts(true);
  EntityManager::getChangeManager()->setCurrentVersion(ManagedStudy::version("Other"), nullptr, false,
                                                       nullptr, true);

  manager.beginStudy(ModelVersionStudyType::Parametric);

  EXPECT_TRUE(before.isNull());
  EXPECT_EQ(manager.getBaseVersionName(), "Other");
  EXPECT_EQ(baseNames(), (Texts{"Base", "Other"}));
}

TEST_F(BeginStudyTest, BeginStudy_HostThrows_PassesThrough) {
  study.faults().fail("ChangeManager::startNewVersion", FaultKind::Throws, 1);

  EXPECT_THROW(manager.beginStudy(ModelVersionStudyType::Parametric), std::runtime_error);

  EXPECT_NE(manager.getData(), nullptr);
  EXPECT_FALSE(manager.isEditingVersions());
}

TEST(HostBehavioursTest, BeginAddAndEnd_AreTheSameOverEveryKindOfHost) {
  for (const bool notifies : {true, false}) {
    for (const bool becomeCurrent : {true, false}) {
      SCOPED_TRACE(::testing::Message() << notifies << becomeCurrent);
      HostBehaviour behaviour;
      behaviour.switchesNotify = notifies;
      behaviour.newVersionsBecomeCurrent = becomeCurrent;
      ManagedStudy study(behaviour);

      study.beginWithRows();

      EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Parametric Copy of Base", "A", "B"}));
      EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
      EXPECT_EQ(ManagedStudy::cells(1), (Texts{"110 mm", "1.5", ""}));
      EXPECT_EQ(ManagedStudy::currentLabel(), "Base");
      EXPECT_FALSE(ManagedStudy::manager().isEditingVersions());

      study.switchTo("A");
      EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
      study.switchTo("Base");
      ASSERT_NE(ManagedStudy::manager().getData(), nullptr);
      EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
      EXPECT_EQ(ManagedStudy::cells(2), (Texts{"120 mm", "2.5", ""}));

      ManagedStudy::manager().endStudy(true);
      EXPECT_EQ(study.versionLabels(), Texts{"Base"});
      EXPECT_EQ(ManagedStudy::manager().getData(), nullptr);
    }
  }
}

using EndStudyTest = OptimizationManagerStudiesTest;

TEST_F(EndStudyTest, EndStudy_DestroyingVersions_CallsInOrder) {
  study.beginWithRows();

  manager.endStudy(true);

  EXPECT_EQ(
      study.recording().textsWithState(),
      (Texts{
          R"(-- EntityEditor::deleteEntities([Study], force=false, notify=true))",
          R"(-- ModelVersion::clearStudy("Base"))",
          R"(-- ModelVersion::setReadOnlyVersion("Base", "false"))",
          R"(-- ChangeManager::getRootVersion(create=true))",
          R"(-- ChangeManager::getVersionFolder("Parametric Copy of Base", create=false))",
          R"(-- ChangeManager::getRootVersion(create=true))",
          R"(-- ChangeManager::getVersionFolder("A", create=false))",
          R"(-- ChangeManager::getRootVersion(create=true))",
          R"(-- ChangeManager::getVersionFolder("B", create=false))",
          R"(-- ChangeManager::destroyVersions(["Parametric Copy of Base", "A", "B"], changes))",
          R"(-- EntityManager::setNeedsSave(true))",
          R"(-- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
  EXPECT_EQ(study.versionLabels(), Texts{"Base"});
  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(baseNames(), Texts{});
}

TEST_F(EndStudyTest, EndStudy_KeepingVersions_CallsInOrder) {
  study.beginWithRows();

  manager.endStudy(false);

  EXPECT_EQ(
      study.recording().textsWithState(),
      (Texts{
          R"(-- EntityEditor::deleteEntities([Study], force=false, notify=true))",
          R"(-- ModelVersion::clearStudy("Base"))",
          R"(-- ModelVersion::setReadOnlyVersion("Base", "false"))",
          R"(-- ModelVersion::clearStudy("Parametric Copy of Base"))",
          R"(-- ModelVersion::setReadOnlyVersion("Parametric Copy of Base", "false"))",
          R"(-- ModelVersion::clearStudy("A"))",
          R"(-- ModelVersion::setReadOnlyVersion("A", "false"))",
          R"(-- ModelVersion::clearStudy("B"))",
          R"(-- ModelVersion::setReadOnlyVersion("B", "false"))",
          R"(-- EntityManager::setNeedsSave(true))",
          R"(-- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
  EXPECT_EQ(manager.getData(), nullptr);
}

TEST_F(EndStudyTest, EndStudy_KeepingVersions_LeavesOrdinaryEditableVersions) {
  study.beginWithRows();

  manager.endStudy(false);

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Parametric Copy of Base", "A", "B"}));
  for (const ModelVersion *version : study.project().versions()) {
    SCOPED_TRACE(version->getLabel());
    EXPECT_EQ(version->getVersionType(), ModelVersion::VersionType::Ordinary);
    EXPECT_EQ(version->getStudyType(), ModelVersionStudyType::None);
    EXPECT_FALSE(version->isStudyCase(true, false));
    EXPECT_FALSE(EmbeddedHost::Project::isReadOnly(*version));
  }
}

TEST_F(EndStudyTest, EndStudy_DeletesTheEntityBeforeTheStudyGoes) {
  study.beginWithRows();
  std::size_t callsBefore = 0;
  QObject::connect(manager.getData(), &QObject::destroyed,
                   [&] { callsBefore = study.recording().texts().size(); });

  manager.endStudy(false);

  EXPECT_EQ(callsBefore, 1U);
}

TEST_F(EndStudyTest, EndStudy_DestroyingVersions_TakesEveryFollowerOfTheBaseline) {
  study.beginWithRows();
  study.addVersion("Unrelated", "Base");

  manager.endStudy(true);

  EXPECT_EQ(study.versionLabels(), Texts{"Base"});
}

TEST_F(EndStudyTest, EndStudy_KeepingVersions_ReleasesEveryFollowerOfTheBaseline) {
  study.begin();
  study.addVersion("Unrelated", "Base")->setReadOnlyVersion("true");

  manager.endStudy(false);

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Parametric Copy of Base", "Unrelated"}));
  EXPECT_FALSE(EmbeddedHost::Project::isReadOnly(*study.project().versions().at(2)));
}

TEST_F(EndStudyTest, EndStudy_DeletesEveryStudyRecordedForTheLabel) {
  study.begin();
  study.storeStudy("Other");
  study.storeStudy("Base");

  manager.endStudy(false);

  EXPECT_EQ(baseNames(), Texts{"Other"});
}

TEST_F(EndStudyTest, EndStudy_OrdinaryVersion_TouchesNoVersion) {
  study.beginWithRows();
  study.addVersion("Other", "Base");
  study.addVersion("Next", "Other");
  study.switchTo("Other");
  study.recording().clear();

  manager.endStudy(true);

  EXPECT_EQ(
      study.takeCalls(),
      (Texts{
          R"(EntityManager::setNeedsSave(true))",
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))",
      }));
  EXPECT_EQ(baseNames(), Texts{"Base"});
}

TEST_F(EndStudyTest, EndStudy_FromAnAlternate_ClearsByItsOwnLabelAndReleasesTheBaseline) {
  study.beginWithRows();
  study.storeStudy("A");
  study.switchTo("A");
  study.recording().muteHostBroadcasts(true);
  study.recording().setAlias(ManagedStudy::storedStudies().at(1), "StudyOfA");
  study.recording().clear();
  const VersionChangeLog log;

  manager.endStudy(true);

  const Texts calls = study.takeCalls();
  ASSERT_GE(calls.size(), 3U);
  EXPECT_EQ(calls.at(0), "EntityEditor::deleteEntities([StudyOfA], force=false, notify=true)");
  EXPECT_EQ(calls.at(1), R"(ModelVersion::clearStudy("Base"))");
  EXPECT_EQ(calls.at(2), R"(ModelVersion::setReadOnlyVersion("Base", "false"))");
  EXPECT_EQ(study.versionLabels(), Texts{"Base"});
  EXPECT_EQ(baseNames(), Texts{"Base"});
  // The host fell back to the baseline; what differs there was recorded during the destruction.
  EXPECT_EQ(log.texts(), Texts{"Base, root, 1 changes"});
  // The study entity of the baseline is still there, so the notification loads it again.
  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
}

TEST_F(EndStudyTest, EndStudy_NoCurrentVersion_OnlyMarksAndNotifies) {
  study.begin();
  study.showNoVersion();

  manager.endStudy(true);

  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(baseNames(), Texts{"Base"});
  EXPECT_EQ(study.takeCalls(),
            (Texts{
                R"(EntityManager::setNeedsSave(true))",
                R"(ObserverManager::broadcastChangedVersion(changes, Root, "", reload=false, toSender=true))",
            }));
}

TEST_F(EndStudyTest, EndStudy_NoRootEntity_StillReleasesTheVersions) {
  study.begin();
  study.faults().fail("EntityEditor::getRootEntity", FaultKind::Null);

  manager.endStudy(false);

  EXPECT_EQ(manager.getData(), nullptr);
  study.faults().heal();
  EXPECT_EQ(baseNames(), Texts{"Base"});
  EXPECT_EQ(ManagedStudy::version("Base")->getStudyType(), ModelVersionStudyType::None);
  EXPECT_EQ(ManagedStudy::version("Parametric Copy of Base")->getVersionType(),
            ModelVersion::VersionType::Ordinary);
}

TEST_F(EndStudyTest, EndStudy_HostRefusesDeletionAndDestruction_GoesOn) {
  study.begin();
  study.faults().fail("EntityEditor::deleteEntities", FaultKind::Refused);
  study.faults().fail("ChangeManager::destroyVersions", FaultKind::Refused);

  manager.endStudy(true);

  EXPECT_EQ(study.faults().strikes(), 2);
  const Texts calls = study.recording().texts();
  EXPECT_EQ(
      std::count(
          calls.begin(), calls.end(),
          R"(ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))"),
      1);
  EXPECT_EQ(ManagedStudy::version("Base")->getStudyType(), ModelVersionStudyType::None);
}

TEST_F(EndStudyTest, EndStudy_NoObserverManager_NotifiesNobody) {
  study.begin();
  const VersionChangeLog log;
  study.faults().fail("EntityManager::getObserverManager", FaultKind::Null);

  manager.endStudy(false);

  EXPECT_EQ(log.texts(), Texts{});
  EXPECT_EQ(manager.getData(), nullptr);
}

TEST_F(EndStudyTest, EndStudy_ThenBegin_StartsAfresh) {
  study.beginWithRows();
  manager.endStudy(true);

  manager.beginStudy(ModelVersionStudyType::Calibration);

  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->getNumInputs(), 0);
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Calibration Copy of Base"}));
}

class ScriptedEndTest : public OptimizationManagerStudiesTest {
protected:
  ScriptedEndTest() {
    host.current = &baseline;
    baseline.studyBaseline = &baseline;
    baseline.next = {&first, nullptr, &second};
  }

  ScriptedVersionsHost host;
  ScriptedVersion baseline{"Base", host.log};
  ScriptedVersion first{"First", host.log};
  ScriptedVersion second{"Second", host.log};
  HostModel::HostInstallation installation{host};
};

TEST_F(ScriptedEndTest, EndStudy_FollowersThatAreNull_AreSkipped) {
  baseline.isBaseline = true;

  manager.endStudy(false);

  EXPECT_EQ(host.log, (Texts{"clearStudy Base", "setReadOnlyVersion Base false", "clearStudy First",
                             "setReadOnlyVersion First false", "clearStudy Second",
                             "setReadOnlyVersion Second false"}));
}

TEST_F(ScriptedEndTest, EndStudy_FollowerThatIsTheRootVersion_IsReleasedInsteadOfDestroyed) {
  baseline.isBaseline = true;
  host.rootVersion = &first;

  manager.endStudy(true);

  EXPECT_EQ(host.log, (Texts{"clearStudy Base", "setReadOnlyVersion Base false", "getRootVersion 1",
                             "clearStudy First", "setReadOnlyVersion First false", "getRootVersion 1",
                             "getVersionFolder Second 0", "destroyVersions Second"}));
}

TEST_F(ScriptedEndTest, EndStudy_NothingButTheRootVersionFollows_DestroysNothing) {
  baseline.isBaseline = true;
  host.rootVersion = &first;
  baseline.next = {&first};

  manager.endStudy(true);

  EXPECT_EQ(host.log, (Texts{"clearStudy Base", "setReadOnlyVersion Base false", "getRootVersion 1",
                             "clearStudy First", "setReadOnlyVersion First false"}));
}

TEST_F(ScriptedEndTest, EndStudy_BaselineWithoutMark_IsLeftAloneButItsFollowersAreNot) {
  baseline.isBaseline = false;

  manager.endStudy(true);

  EXPECT_EQ(host.log, (Texts{"getRootVersion 1", "getVersionFolder First 0", "getRootVersion 1",
                             "getVersionFolder Second 0", "destroyVersions First Second"}));
}

} // namespace
} // namespace OptimizationTool
