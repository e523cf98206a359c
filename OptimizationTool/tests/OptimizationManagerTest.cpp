#include "HostModel/ChangeManager.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/tests/ManagedStudy.h"
#include "testing/RecordingProgress.h"

#include <QCoreApplication>
#include <QPointer>
#include <QTranslator>
#include <gtest/gtest.h>

#include <stdexcept>

namespace OptimizationTool {
namespace {

using EntityModel::Entity;
using EntityModel::ModelVersion;
using EntityModel::ModelVersionStudyType;
using HostTesting::FaultKind;
using HostTesting::RecordingProgress;
using StudyTesting::ManagedStudy;
using Texts = std::vector<std::string>;

class OptimizationManagerTest : public ::testing::Test {
protected:
  ManagedStudy study;
  OptimizationManager &manager = ManagedStudy::manager();
};

TEST_F(OptimizationManagerTest, Instance_IsTheSameObjectEveryTime) {
  EXPECT_EQ(&OptimizationManager::instance(), &manager);
}

TEST_F(OptimizationManagerTest, Instance_HasNoParentObject) {
  EXPECT_EQ(manager.parent(), nullptr);
}

TEST_F(OptimizationManagerTest, NoStudy_AnswersNeutralValues) {
  EXPECT_EQ(manager.getData(), nullptr);
  EXPECT_EQ(manager.getBaseVersionName(), "");
  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::None);
  EXPECT_FALSE(manager.isEditingVersions());
  EXPECT_FALSE(manager.isSolvingVersions());
}

class MarkingTranslator final : public QTranslator {
public:
  bool isEmpty() const override { return false; }
  QString translate(const char *context, const char *text, const char *disambiguation, int n) const override {
    return QStringLiteral("%1|%2|%3|%4")
        .arg(QString::fromUtf8(context), QString::fromUtf8(text), QString::fromUtf8(disambiguation))
        .arg(n);
  }
};

TEST(OptimizationManagerTranslationTest, Tr_TranslatesInTheContextOfTheManager) {
  int argc = 1;
  char name[] = "test";
  char *argv[] = {name, nullptr};
  const QCoreApplication application(argc, argv);
  MarkingTranslator translator;
  ASSERT_TRUE(QCoreApplication::installTranslator(&translator));

  EXPECT_EQ(OptimizationManager::tr("text", "more", 7).toStdString(),
            "OptimizationTool::OptimizationManager|text|more|7");
}

using VersionHasStudyTest = OptimizationManagerTest;

TEST_F(VersionHasStudyTest, VersionHasStudy_ByTheLabelThatTheStudyStores) {
  study.addVersion("Other", "Base");
  study.storeStudy("Other");

  EXPECT_TRUE(OptimizationManager::versionHasStudy(ManagedStudy::version("Other")));
  EXPECT_FALSE(OptimizationManager::versionHasStudy(ManagedStudy::version("Base")));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_NullVersion_MeansTheCurrentOne) {
  EXPECT_FALSE(OptimizationManager::versionHasStudy(nullptr));

  study.storeStudy("Base");

  EXPECT_TRUE(OptimizationManager::versionHasStudy(nullptr));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_ComparesEveryByte) {
  for (const char *almost : {"base", "BASE", "Bas", "Base ", " Base", "Base1", ""}) {
    study.storeStudy(almost);
  }

  EXPECT_FALSE(OptimizationManager::versionHasStudy(nullptr));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_EmptyName_MatchesAnEmptyLabelOnly) {
  study.storeStudy("");
  ModelVersion *version = ManagedStudy::version("Base");
  ASSERT_FALSE(OptimizationManager::versionHasStudy(version));

  version->setLabel("");

  EXPECT_TRUE(OptimizationManager::versionHasStudy(version));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_NoCurrentVersion_False) {
  study.storeStudy("");
  study.showNoVersion();

  EXPECT_FALSE(OptimizationManager::versionHasStudy(nullptr));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_NoChangeManager_OnlyANamedVersionIsLookedFor) {
  study.storeStudy("Base");
  ModelVersion *version = ManagedStudy::version("Base");
  study.faults().fail("EntityManager::getChangeManager", FaultKind::Null);

  EXPECT_FALSE(OptimizationManager::versionHasStudy(nullptr));
  EXPECT_TRUE(OptimizationManager::versionHasStudy(version));
}

TEST_F(VersionHasStudyTest, VersionHasStudy_NoRootEntity_False) {
  study.storeStudy("Base");
  study.faults().fail("EntityEditor::getRootEntity", FaultKind::Null);

  EXPECT_FALSE(OptimizationManager::versionHasStudy(nullptr));
  EXPECT_EQ(study.faults().strikes(), 1);
}

using InitializeVersionTest = OptimizationManagerTest;

TEST_F(InitializeVersionTest, InitializeVersion_LoadsTheStoredStudy) {
  Entity *entity = study.storeStudy("Base");

  manager.initializeVersion();

  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->get(), entity);
  EXPECT_EQ(manager.getData()->parent(), nullptr);
  EXPECT_EQ(manager.getBaseVersionName(), "Base");
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
}

TEST_F(InitializeVersionTest, InitializeVersion_TwoStudiesOfOneVersion_TakesTheFirstInTheList) {
  study.storeStudy("Other");
  Entity *first = study.storeStudy("Base");
  study.storeStudy("Base");

  manager.initializeVersion();

  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->get(), first);
}

TEST_F(InitializeVersionTest, InitializeVersion_ReplacesTheStudyHeld) {
  study.begin();
  const QPointer<OptimizationData> before(manager.getData());
  Entity *entity = before->get();

  manager.initializeVersion();

  EXPECT_TRUE(before.isNull());
  ASSERT_NE(manager.getData(), nullptr);
  EXPECT_EQ(manager.getData()->get(), entity);
}

TEST_F(InitializeVersionTest, InitializeVersion_VersionWithoutStudy_HoldsNothing) {
  study.begin();
  const QPointer<OptimizationData> before(manager.getData());
  study.showNoVersion();

  manager.initializeVersion();

  EXPECT_TRUE(before.isNull());
  EXPECT_EQ(manager.getData(), nullptr);
}

TEST_F(InitializeVersionTest, InitializeVersion_LoadsAsAnExistingStudy) {
  study.begin();

  manager.initializeVersion();

  EXPECT_EQ(study.recording().textsWithState(),
            (Texts{R"(-- ChangeManager::findVersion("Base", entity=null))",
                   R"(-- ChangeManager::findVersion("Parametric Copy of Base", entity=null))",
                   R"(-- ChangeManager::getAlternates("Parametric Copy of Base"))",
                   R"(-- ChangeManager::findVersion("Base", entity=null))"}));
}

TEST_F(InitializeVersionTest, InitializeVersion_WhileSolving_KeepsTheStudyUntouched) {
  study.begin();
  OptimizationData *before = manager.getData();
  Entity *entity = before->get();
  study.showNoVersion();
  {
    const OptimizationDataSolvingGuard guard(*before);

    manager.initializeVersion();

    EXPECT_EQ(manager.getData(), before);
    EXPECT_EQ(manager.getData()->get(), entity);
    EXPECT_EQ(study.takeCalls(), Texts{});
  }
}

TEST_F(InitializeVersionTest, InitializeVersion_WithProgress_FinishesTheTaskThatItBegan) {
  study.begin();
  RecordingProgress progress;
  manager.attachProgress(&progress);

  manager.initializeVersion();

  EXPECT_EQ(progress.actions(),
            (Texts{"start()", "start(0)", R"(setText("Initializing Parametric Study"))", "pushLevel(0)",
                   R"(setText("Initializing Parametric Study : Base"))", "finish()"}));
  EXPECT_FALSE(progress.isRunning());
}

TEST_F(InitializeVersionTest, InitializeVersion_WithProgressThatRuns_LeavesItsTaskAlone) {
  study.begin();
  RecordingProgress progress;
  progress.start();
  progress.clear();
  manager.attachProgress(&progress);

  manager.initializeVersion();

  EXPECT_TRUE(progress.isRunning());
  const Texts actions = progress.actions();
  ASSERT_FALSE(actions.empty());
  EXPECT_EQ(actions.back(), R"(setText("Initializing Parametric Study : Base"))");
}

TEST_F(InitializeVersionTest, InitializeVersion_WithoutStudy_BeginsNoTask) {
  RecordingProgress progress;
  manager.attachProgress(&progress);

  manager.initializeVersion();

  EXPECT_EQ(progress.actions(), Texts{});
}

TEST_F(InitializeVersionTest, InitializeVersion_WhileSolving_BeginsNoTask) {
  study.begin();
  RecordingProgress progress;
  manager.attachProgress(&progress);
  const OptimizationDataSolvingGuard guard(study.data());

  manager.initializeVersion();

  EXPECT_EQ(progress.actions(), Texts{});
}

TEST_F(InitializeVersionTest, InitializeVersion_HostThrows_FinishesTheTaskAndPassesTheException) {
  study.begin();
  RecordingProgress progress;
  manager.attachProgress(&progress);
  study.faults().fail("ChangeManager::findVersion", FaultKind::Throws, 1);

  EXPECT_THROW(manager.initializeVersion(), std::runtime_error);

  const Texts actions = progress.actions();
  ASSERT_FALSE(actions.empty());
  EXPECT_EQ(actions.back(), "finish()");
}

TEST_F(InitializeVersionTest, InitializeVersion_FinishingThrows_IsSwallowed) {
  study.begin();
  RecordingProgress progress;
  progress.throwFromFinish(true);
  manager.attachProgress(&progress);

  EXPECT_NO_THROW(manager.initializeVersion());

  EXPECT_EQ(progress.actions().back(), "finish()");
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
}

TEST_F(InitializeVersionTest, AttachProgress_ReplacesTheEarlierOne) {
  study.begin();
  RecordingProgress first;
  RecordingProgress second;
  manager.attachProgress(&first);
  manager.attachProgress(&second);
  manager.initializeVersion();
  EXPECT_EQ(first.texts(), Texts{});
  EXPECT_EQ(second.actions().back(), "finish()");

  second.clear();
  manager.attachProgress(nullptr);
  manager.initializeVersion();

  EXPECT_EQ(second.texts(), Texts{});
  EXPECT_EQ(ManagedStudy::rowNames(), Texts{"Base"});
}

TEST_F(InitializeVersionTest, AttachProgress_BeginAndEndOfAStudyDoNotReport) {
  RecordingProgress progress;
  manager.attachProgress(&progress);

  manager.beginStudy(ModelVersionStudyType::Parametric);
  EXPECT_EQ(progress.texts(), Texts{});

  // The notification at the end finds no study to load.
  manager.endStudy(false);
  EXPECT_EQ(progress.actions(), Texts{});
}

using CanBeginStudyTest = OptimizationManagerTest;

TEST_F(CanBeginStudyTest, CanBeginStudy_OrdinaryVersion_AnswersAsTheHostDoes) {
  study.addVersion("Other", "Base");
  EXPECT_TRUE(manager.canBeginStudy(ManagedStudy::version("Other")));
  study.recording().clear();

  study.faults().fail("ChangeManager::canBeginPACStudy", FaultKind::Refused);

  EXPECT_FALSE(manager.canBeginStudy(ManagedStudy::version("Other")));
  EXPECT_EQ(study.takeCalls(), (Texts{R"(ChangeManager::findVersion("Other", entity=null))",
                                      R"(ChangeManager::canBeginPACStudy("Other"))"}));
}

TEST_F(CanBeginStudyTest, CanBeginStudy_NullVersion_MeansTheCurrentOne) {
  EXPECT_TRUE(manager.canBeginStudy(nullptr));
  EXPECT_EQ(study.takeCalls(), Texts{R"(ChangeManager::canBeginPACStudy("Base"))"});
}

TEST_F(CanBeginStudyTest, CanBeginStudy_NoVersion_False) {
  study.showNoVersion();

  EXPECT_FALSE(manager.canBeginStudy(nullptr));
  EXPECT_EQ(study.takeCalls(), Texts{});
}

TEST_F(CanBeginStudyTest, CanBeginStudy_BaselineOfTheStudyHeld_IsACandidate) {
  study.begin();

  EXPECT_TRUE(manager.canBeginStudy(nullptr));
}

TEST_F(CanBeginStudyTest, CanBeginStudy_StudyHeld_TheLabelAloneMakesACandidate) {
  study.beginWithRows();
  ModelVersion *alternate = ManagedStudy::version("A");
  study.recording().clear();
  EXPECT_FALSE(manager.canBeginStudy(alternate));
  EXPECT_EQ(study.takeCalls(), Texts{});

  alternate->setLabel("Base");
  study.recording().clear();

  EXPECT_FALSE(manager.canBeginStudy(alternate));
  EXPECT_EQ(study.takeCalls(), Texts{R"(ChangeManager::canBeginPACStudy("Base"))"});
}

TEST_F(CanBeginStudyTest, CanBeginStudy_CopyOfTheStudy_IsNoCandidate) {
  study.begin();

  EXPECT_FALSE(manager.canBeginStudy(ManagedStudy::version("Parametric Copy of Base")));
}

TEST_F(CanBeginStudyTest, CanBeginStudy_OrdinaryVersionWhileAnotherStudyIsHeld_IsACandidate) {
  study.begin();
  study.addVersion("Other", "Base");

  EXPECT_TRUE(manager.canBeginStudy(ManagedStudy::version("Other")));
}

TEST_F(CanBeginStudyTest, CanBeginStudy_BaselineOfAnotherStudy_IsACandidateOnlyWhenNoStudyIsHeld) {
  ModelVersion *other = study.addVersion("Other", "Base");
  other->setStudyType(ModelVersionStudyType::Parametric);
  EXPECT_TRUE(manager.canBeginStudy(other));

  study.begin();

  EXPECT_FALSE(manager.canBeginStudy(other));
}

using ManagerQueriesTest = OptimizationManagerTest;

TEST_F(ManagerQueriesTest, GetStudyType_WithoutStudy_TakesTheCurrentVersionsType) {
  ManagedStudy::version("Base")->setStudyType(ModelVersionStudyType::Calibration);

  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::Calibration);
}

TEST_F(ManagerQueriesTest, GetStudyType_WithoutStudy_AsksTheEditorsChangeManager) {
  ManagedStudy::version("Base")->setStudyType(ModelVersionStudyType::Calibration);
  study.faults().fail("EntityEditor::getChangeManager", FaultKind::Null);

  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::None);
  EXPECT_EQ(study.faults().strikes(), 1);
}

TEST_F(ManagerQueriesTest, GetStudyType_NoCurrentVersion_None) {
  study.showNoVersion();

  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::None);
}

TEST_F(ManagerQueriesTest, GetStudyType_WithStudy_AsksTheStudy) {
  study.begin(ModelVersionStudyType::Optimality);
  study.faults().fail("EntityEditor::getChangeManager", FaultKind::Null);

  EXPECT_EQ(manager.getStudyType(), ModelVersionStudyType::Optimality);
}

TEST_F(ManagerQueriesTest, IsSolvingVersions_FollowsTheStudy) {
  study.begin();
  EXPECT_FALSE(manager.isSolvingVersions());
  {
    const OptimizationDataSolvingGuard guard(study.data());
    EXPECT_TRUE(manager.isSolvingVersions());
    EXPECT_FALSE(manager.isEditingVersions());
  }
  EXPECT_FALSE(manager.isSolvingVersions());
}

TEST_F(ManagerQueriesTest, IsEditingVersions_FollowsTheStudy) {
  study.begin();
  EXPECT_FALSE(manager.isEditingVersions());

  study.data().createCopyVersion(true);

  const Texts calls = study.recording().textsWithState();
  ASSERT_FALSE(calls.empty());
  EXPECT_EQ(calls.front(), R"(E- ChangeManager::findVersion("Parametric Copy of Base", entity=null))");
  EXPECT_FALSE(manager.isEditingVersions());
}

TEST_F(ManagerQueriesTest, GetBaseVersionName_IsTheStoredOne) {
  study.begin();
  study.data().setBaseVersionName("Stored");

  EXPECT_EQ(manager.getBaseVersionName(), "Stored");
}

} // namespace
} // namespace OptimizationTool
