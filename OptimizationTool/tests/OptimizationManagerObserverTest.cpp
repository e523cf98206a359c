#include "HostModel/Attribute.h"
#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/ObserverManager.h"
#include "OptimizationTool/tests/ManagedStudy.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <QPointer>
#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using EntityGUI::EntityManager;
using EntityGUI::ObserverManager;
using EntityModel::ChangeSet;
using EntityModel::Entity;
using EntityModel::ModelVersionStudyType;
using HostTesting::FaultKind;
using StudyTesting::ListeningChecker;
using StudyTesting::ManagedStudy;
using StudyTesting::VersionListener;
using Texts = std::vector<std::string>;

class OptimizationManagerObserverTest : public ::testing::Test {
protected:
  static void select(Entity *entity, bool scrollTo = false) {
    ObserverManager::process().broadcastSetCurrentEntity(entity, scrollTo);
  }
  static void announce(Entity *entity, const std::string &versionName, bool reload = false) {
    ChangeSet changes;
    ObserverManager::process().broadcastChangedVersion(changes, entity, versionName, reload, true);
  }
  // Tells the manager that attributes have been edited, as in {{fan, "Length"}}.
  void announceEdits(const std::vector<std::pair<Entity *, std::string>> &edits) {
    ChangeSet changes;
    for (const auto &[entity, path] : edits) {
      changes.addModifiedAttribute(entity, ManagedStudy::attribute(entity, path));
    }
    manager.changedEntities(changes);
  }
  // Switches without telling anybody.
  void showSilently(const std::string &label) {
    study.recording().muteHostBroadcasts(true);
    EntityManager::getChangeManager()->setCurrentVersion(ManagedStudy::version(label), nullptr, false,
                                                         nullptr, true);
    study.recording().muteHostBroadcasts(false);
  }
  // Leaves the editing flag set, as it is after a switch of the loading study has thrown.
  void leaveFlagSet() {
    showSilently("A");
    study.faults().fail("ChangeManager::setCurrentVersion", FaultKind::Throws, 1);
    EXPECT_THROW(study.data().initializeVariants(nullptr), std::runtime_error);
    study.faults().heal();
    ASSERT_TRUE(manager.isEditingVersions());
  }

  ManagedStudy study;
  OptimizationManager &manager = ManagedStudy::manager();
};

using SetCurrentEntityTest = OptimizationManagerObserverTest;

TEST_F(SetCurrentEntityTest, SetCurrentEntity_Root_LoadsTheStudyAgain) {
  for (const bool scrollTo : {true, false}) {
    SCOPED_TRACE(scrollTo);
    manager.endStudy(true);
    study.beginWithRows();
    const QPointer<OptimizationData> before(manager.getData());

    select(study.root(), scrollTo);

    EXPECT_TRUE(before.isNull());
    ASSERT_NE(manager.getData(), nullptr);
    EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
  }
}

TEST_F(SetCurrentEntityTest, SetCurrentEntity_Root_FindsAStudyWhereNoneWasHeld) {
  Entity *entity = study.storeStudy("Base");

  select(study.root());

  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->get(), entity);
}

TEST_F(SetCurrentEntityTest, SetCurrentEntity_AnyOtherEntity_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());

  select(study.fan());
  select(study.data().get());
  select(nullptr);

  EXPECT_EQ(manager.getData(), before.data());
  EXPECT_FALSE(before.isNull());
  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(SetCurrentEntityTest, SetCurrentEntity_WhileSolving_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());
  const OptimizationDataSolvingGuard guard(study.data());

  select(study.root());

  EXPECT_FALSE(before.isNull());
  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(SetCurrentEntityTest, SetCurrentEntity_InTheMiddleOfAnOperation_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());
  int notifications = 0;
  const VersionListener listener([&](const std::string &) {
    ++notifications;
    select(study.root());
  });

  study.data().addVariant({"130 mm", "3.5"}, "C", std::numeric_limits<std::uint64_t>::max());

  EXPECT_GT(notifications, 0);
  ASSERT_FALSE(before.isNull());
  EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B", "C"}));
}

TEST_F(SetCurrentEntityTest, SetCurrentEntity_FlagLeftSetByAThrow_LoadsTheStudyAgain) {
  study.beginWithRows();
  leaveFlagSet();
  const QPointer<OptimizationData> before(manager.getData());
  showSilently("Base");

  select(study.root());

  EXPECT_TRUE(before.isNull());
  EXPECT_FALSE(manager.isEditingVersions());
  EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
}

using ChangedVersionTest = OptimizationManagerObserverTest;

TEST_F(ChangedVersionTest, ChangedVersion_BaselineOfTheStudyHeld_DoesNotReload) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());

  announce(study.root(), "Base", false);
  announce(study.root(), "Base", true);

  EXPECT_FALSE(before.isNull());
  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(ChangedVersionTest, ChangedVersion_AnotherName_Reloads) {
  for (const char *name : {"base", "Base ", "", "Other"}) {
    SCOPED_TRACE(name);
    manager.endStudy(true);
    study.beginWithRows();
    const QPointer<OptimizationData> before(manager.getData());

    announce(study.root(), name);

    EXPECT_TRUE(before.isNull());
    // It is the version that is current that is loaded, not the one that is named.
    ASSERT_NE(manager.getData(), nullptr);
    EXPECT_EQ(manager.getBaseVersionName(), "Base");
  }
}

TEST_F(ChangedVersionTest, ChangedVersion_AnotherEntity_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());

  announce(study.fan(), "Other");
  announce(nullptr, "Other");

  EXPECT_FALSE(before.isNull());
  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(ChangedVersionTest, ChangedVersion_NoStudyHeld_ComparesWithTheEmptyName) {
  study.storeStudy("Base");

  announce(study.root(), "");
  EXPECT_EQ(manager.getData(), nullptr);

  announce(study.root(), "Base");
  EXPECT_NE(manager.getData(), nullptr);
}

TEST_F(ChangedVersionTest, ChangedVersion_VersionWithoutStudy_DropsTheStudy) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());
  study.addVersion("Other", "Base");

  study.switchTo("Other");

  EXPECT_TRUE(before.isNull());
  EXPECT_EQ(manager.getData(), nullptr);
}

TEST_F(ChangedVersionTest, ChangedVersion_VersionWithAnotherStudy_HoldsThatOne) {
  study.begin();
  study.addVersion("Other", "Base");
  study.switchTo("Other");
  study.begin(ModelVersionStudyType::Calibration);
  Entity *other = study.data().get();
  study.switchTo("Base");
  EXPECT_EQ(manager.getBaseVersionName(), "Base");

  study.switchTo("Other");

  EXPECT_EQ(manager.getBaseVersionName(), "Other");
  EXPECT_EQ(study.data().get(), other);
}

TEST_F(ChangedVersionTest, ChangedVersion_WhileSolving_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());
  {
    const OptimizationDataSolvingGuard guard(study.data());

    study.switchTo("A");
    study.switchTo("Base");

    EXPECT_FALSE(before.isNull());
  }
  EXPECT_EQ(manager.getData(), before.data());
}

TEST_F(ChangedVersionTest, ChangedVersion_InTheMiddleOfAnOperation_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());
  int notifications = 0;
  const VersionListener listener([&](const std::string &name) {
    notifications += name == "another one" ? 0 : 1;
    if (name != "another one") {
      announce(study.root(), "another one");
    }
  });

  study.data().setVariantValue(1, 0, "115 mm");

  EXPECT_GT(notifications, 0);
  ASSERT_FALSE(before.isNull());
  EXPECT_EQ(ManagedStudy::cells(1), (Texts{"115 mm", "1.5", ""}));
}

TEST_F(ChangedVersionTest, ChangedVersion_FlagLeftSetByAThrow_DoesNotBlockTheNextChange) {
  study.beginWithRows();
  study.addVersion("Other", "Base");
  leaveFlagSet();
  const QPointer<OptimizationData> before(manager.getData());

  study.switchTo("Other");

  EXPECT_TRUE(before.isNull());
  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_FALSE(manager.isEditingVersions());
}

TEST_F(ChangedVersionTest, InitializeVersion_FlagLeftSetByAThrow_LoadsTheStudyAgain) {
  study.beginWithRows();
  leaveFlagSet();
  showSilently("Base");

  manager.initializeVersion();

  EXPECT_FALSE(manager.isEditingVersions());
  EXPECT_EQ(ManagedStudy::rowNames(), (Texts{"Base", "A", "B"}));
}

TEST_F(ChangedVersionTest, ChangedVersion_LoadingThrows_ReachesTheSender) {
  study.storeStudy("Base");
  study.faults().fail("ChangeManager::findVersion", FaultKind::Throws, 1);

  EXPECT_THROW(announce(study.root(), "Base"), std::runtime_error);
}

using ChangedEntitiesTest = OptimizationManagerObserverTest;

TEST_F(ChangedEntitiesTest, ChangedEntities_InputEdited_UpdatesTheBaselineRow) {
  study.beginWithRows();

  study.edit(study.fan(), "Length", "105 mm");

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"105 mm", "0.5", ""}));
  EXPECT_EQ(ManagedStudy::cells(1), (Texts{"110 mm", "1.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_InputEdited_PushesTheRowIntoTheBaseline) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  study.recording().clear();

  announceEdits({{study.fan(), "Length"}});

  EXPECT_EQ(
      study.recording().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("Base", entity=null))",
          R"(E- ModelVersion::setLabel("Base", "Base"))",
          R"(E- EntityEditor::setValue(Fan.Length, "105 mm", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Ratio, "0.5", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityEditor::setValue(Fan.Power, "", force=false, affected=null, notify=true, edited=true))",
          R"(E- EntityManager::setNeedsSave(true))",
      }));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_SeveralEdits_KeepEachOfThem) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  ManagedStudy::set(study.fan(), "Ratio", "0.75");

  announceEdits({{study.fan(), "Length"}, {study.fan(), "Ratio"}});

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"105 mm", "0.75", ""}));
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Length"), "105 mm");
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Ratio"), "0.75");
}

TEST_F(ChangedEntitiesTest, ChangedEntities_EditsOfSeveralEntities_KeepEachOfThem) {
  study.beginWithRows();
  manager.addInputAttribute(ManagedStudy::attribute(study.pump(), "Ratio"));
  ManagedStudy::set(study.pump(), "Ratio", "9");
  ManagedStudy::set(study.fan(), "Ratio", "8");

  announceEdits({{study.pump(), "Ratio"}, {study.fan(), "Ratio"}});

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "8", "9", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_AttributeInTwoGroups_UpdatesBoth) {
  study.beginWithRows();
  study.data().addGroup(true, ManagedStudy::attribute(study.fan(), "Length"));
  ManagedStudy::set(study.fan(), "Length", "105 mm");

  announceEdits({{study.fan(), "Length"}});

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"105 mm", "0.5", "105 mm", ""}));
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Length"), "105 mm");
}

TEST_F(ChangedEntitiesTest, ChangedEntities_SecondVariableOfAGroup_SetsTheGroup) {
  study.beginWithRows();
  ASSERT_TRUE(study.data().getGroup(true, 1).appendVariable(ManagedStudy::attribute(study.pump(), "Ratio")));

  study.edit(study.pump(), "Ratio", "4");

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "4", ""}));
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Ratio"), "4");
}

TEST_F(ChangedEntitiesTest, ChangedEntities_MemberOfAComposite_IsFoundByItsPath) {
  study.beginWithRows();
  manager.addInputAttribute(ManagedStudy::attribute(study.fan(), "Shape.Height"));

  study.edit(study.fan(), "Shape.Height", "12 mm");

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", "12 mm", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_OutputChanged_LeavesTheMatrix) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Power", "7 W");
  study.recording().clear();

  announceEdits({{study.fan(), "Power"}});

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_AttributeOfNoGroup_ChangesNothing) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Width", "21 mm");
  ManagedStudy::set(study.pump(), "Length", "22 mm");
  study.recording().clear();

  announceEdits({{study.fan(), "Width"}, {study.pump(), "Length"}});

  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(ChangedEntitiesTest, ChangedEntities_EntityWithoutModifiedAttributes_ChangesNothing) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  study.recording().clear();
  ChangeSet changes;
  manager.changedEntities(changes);
  changes.addModified(study.fan());

  manager.changedEntities(changes);

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_WithoutStudy_ChangesNothing) {
  announceEdits({{study.fan(), "Length"}});

  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(ChangedEntitiesTest, ChangedEntities_WhileSolving_ChangesNothing) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  study.recording().clear();
  const OptimizationDataSolvingGuard guard(study.data());

  announceEdits({{study.fan(), "Length"}});

  EXPECT_EQ(study.takeCalls(), Texts{});
  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_WhileTheStudyEdits_ChangesNothing) {
  study.beginWithRows();
  int notifications = 0;
  const VersionListener listener([&](const std::string &) {
    ++notifications;
    announceEdits({{study.fan(), "Length"}});
  });

  study.data().addVariant({"130 mm", "3.5"}, "C", std::numeric_limits<std::uint64_t>::max());

  EXPECT_GT(notifications, 0);
  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_FlagLeftSetByAThrow_ChangesNothing) {
  study.beginWithRows();
  leaveFlagSet();
  showSilently("Base");
  ManagedStudy::set(study.fan(), "Length", "105 mm");

  announceEdits({{study.fan(), "Length"}});

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"100 mm", "0.5", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_PricingThrows_ReachesTheUserAndTheNextEditWorks) {
  study.beginWithRows();
  study.data().setCostFunction("%Fan.Length%");
  manager.addInputAttribute(ManagedStudy::attribute(study.fan(), "Width"));

  EXPECT_THROW(study.edit(study.fan(), "Length", "105 mm"), std::out_of_range);
  EXPECT_FALSE(manager.isEditingVersions());
  study.data().setCostFunction("%Fan.Length%");
  study.edit(study.fan(), "Length", "106 mm");

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"106 mm", "0.5", "20 mm", ""}));
}

TEST_F(ChangedEntitiesTest, ChangedEntities_StudyEndsMeanwhile_StopsQuietly) {
  study.beginWithRows();
  ListeningChecker checker;
  checker.action = [&](ChangeSet &) {
    if (manager.getData() != nullptr) {
      manager.endStudy(false);
    }
  };
  study.project().setModelChecker(&checker);
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  ManagedStudy::set(study.fan(), "Ratio", "0.75");

  announceEdits({{study.fan(), "Length"}, {study.fan(), "Ratio"}});

  study.project().setModelChecker(nullptr);
  EXPECT_EQ(manager.getData(), nullptr);
  // The first edit pushed the row as it was, the second one is not pushed any more.
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Length"), "105 mm");
  EXPECT_EQ(ManagedStudy::get(study.fan(), "Ratio"), "0.5");
}

TEST_F(ChangedEntitiesTest, UndoneOrRedone_IsFollowedLikeAnEdit) {
  study.beginWithRows();
  ManagedStudy::set(study.fan(), "Length", "105 mm");
  ChangeSet changes;
  changes.addModifiedAttribute(study.fan(), ManagedStudy::attribute(study.fan(), "Length"));

  ObserverManager::process().broadcastUndoneOrRedone(changes);

  EXPECT_EQ(ManagedStudy::cells(0), (Texts{"105 mm", "0.5", ""}));
}

TEST_F(OptimizationManagerObserverTest, SelectEntities_DoesNothing) {
  study.beginWithRows();
  const QPointer<OptimizationData> before(manager.getData());

  ObserverManager::process().broadcastSelectEntities({study.root(), study.fan()});

  EXPECT_FALSE(before.isNull());
  EXPECT_EQ(study.takeCalls(), Texts{});
}

} // namespace
} // namespace OptimizationTool
