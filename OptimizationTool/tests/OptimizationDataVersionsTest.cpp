#include "HostModel/Attribute.h"
#include "HostModel/EntityManager.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"

#include <gtest/gtest.h>

#include <optional>

namespace OptimizationTool {
namespace {

using EmbeddedHost::HostBehaviour;
using EntityModel::ModelVersionStudyCaseFlag;
using HostTesting::FaultKind;
using StudyTesting::RecordedStudy;
using Texts = std::vector<std::string>;

class OptimizationDataVersionsTest : public ::testing::Test {
protected:
  void beginWithRows() {
    study.begin();
    study.addRow("A", "11", "21");
    study.addRow("B", "12", "22");
  }

  RecordedStudy study;
};

using DefaultVersionNameTest = OptimizationDataVersionsTest;

TEST_F(DefaultVersionNameTest, DefaultCopyVersionName_ShowsTheNumberUnlessItIsZero) {
  study.makeEntity();

  EXPECT_EQ(study.data().getDefaultCopyVersionName(0), "Steady Copy of Base");
  EXPECT_EQ(study.data().getDefaultCopyVersionName(2), "Steady Copy of Base - 2");
  EXPECT_EQ(study.data().getDefaultCopyVersionName(1234567), "Steady Copy of Base - 1234567");
}

TEST_F(DefaultVersionNameTest, DefaultCopyVersionName_NegativeNumber_HasItsSign) {
  study.makeEntity();

  EXPECT_EQ(study.data().getDefaultCopyVersionName(-3), "Steady Copy of Base - -3");
}

TEST_F(DefaultVersionNameTest, DefaultAlternateVersionName_NumberStandsBeforeTheBaseName) {
  study.makeEntity();

  EXPECT_EQ(study.data().getDefaultAlternateVersionName(3), "Steady Alternate 3 of Base");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(0), "Steady Alternate 0 of Base");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(-1), "Steady Alternate -1 of Base");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(1234567), "Steady Alternate 1234567 of Base");
}

TEST_F(DefaultVersionNameTest, DefaultNames_TakeTheTypeOfTheCurrentVersion) {
  study.makeEntity();
  study.addVersion("Other", "Base");
  study.show("Other");

  EXPECT_EQ(study.data().getDefaultCopyVersionName(0), "Plain Copy of Base");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(1), "Plain Alternate 1 of Base");
}

TEST_F(DefaultVersionNameTest, DefaultNames_NoCurrentVersion_TakeTheTypeThatMeansNoStudy) {
  study.makeEntity();
  study.show("");

  EXPECT_EQ(study.data().getDefaultCopyVersionName(0), "Plain Copy of Base");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(2), "Plain Alternate 2 of Base");
}

TEST_F(DefaultVersionNameTest, DefaultNames_BaseNameWithPlaceholders_AreFilledOneAfterTheOther) {
  study.makeEntity();
  study.data().setBaseVersionName("50%3 load");

  EXPECT_EQ(study.data().getDefaultCopyVersionName(0), "Steady Copy of 50%3 load");
  EXPECT_EQ(study.data().getDefaultCopyVersionName(2), "Steady Copy of 502 load - 2");
  EXPECT_EQ(study.data().getDefaultAlternateVersionName(2), "Steady Alternate 2 of 50%3 load");
}

TEST_F(DefaultVersionNameTest, DefaultNames_BaseNameKeepsItsBytes) {
  study.makeEntity();
  study.data().setBaseVersionName("Gr\xC3\xBCn");

  EXPECT_EQ(study.data().getDefaultCopyVersionName(0), "Steady Copy of Gr\xC3\xBCn");
}

using CreateCopyVersionTest = OptimizationDataVersionsTest;

TEST_F(CreateCopyVersionTest, CreateCopyVersion_Forced_CallsInOrder) {
  study.begin();

  study.data().createCopyVersion(true);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base - 1", entity=null))",
          R"(E- ChangeManager::getUniqueName("Steady Copy of Base - 1", {}))",
          R"(E- EntityEditor::setValue(Study.CopyVersionName, "Steady Copy of Base - 1", force=false, affected=null, notify=true, edited=true))",
          R"(E- ChangeManager::startNewVersion("Steady Copy of Base - 1", "", "", "", null, origin="Base", makeReadOnly=false))",
          R"(E- ModelVersion::setLabel("Steady Copy of Base - 1", "Steady Copy of Base - 1"))",
          R"(E- ModelVersion::clearStudy("Steady Copy of Base - 1"))",
          R"(E- ModelVersion::setStudyCaseFlag("Steady Copy of Base - 1", 2, set=true))",
          R"(E- ModelVersion::setReadOnlyVersion("Steady Copy of Base - 1", "true"))",
          R"(E- ChangeManager::editedVersion("Steady Copy of Base - 1", changes, notify=true))",
          R"(E- ChangeManager::getVersionFolder("Base", create=false))",
          R"(E- ChangeManager::getVersionFolder("Steady Copy of Base - 1", create=false))",
          R"(E- ProjectStore::remove(("study.opt", "folders/Steady Copy of Base - 1")))",
          R"(E- ProjectStore::copyResults(from=("study.opt", "folders/Base"), to=("study.opt", "folders/Steady Copy of Base - 1"), move=false, progress=null, overwrite=true))",
          R"(E- ChangeManager::setCurrentVersion("Steady Copy of Base - 1", changes, force=false, progress=null, load=true))",
          R"(E- EntityManager::checkSelectionsAreValid())",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
          R"(E- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_HostMakesTheNewVersionCurrent_DoesNotSwitchToItAgain) {
  for (const bool notifies : {true, false}) {
    SCOPED_TRACE(notifies);
    HostBehaviour behaviour;
    behaviour.switchesNotify = notifies;
    behaviour.newVersionsBecomeCurrent = true;
    RecordedStudy other(behaviour);
    other.makeEntity();

    other.data().createCopyVersion(true);

    EXPECT_EQ(
        other.host().textsWithState(),
        (Texts{
            R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
            R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
            R"(E- ChangeManager::getUniqueName("Steady Copy of Base", {}))",
            R"(E- EntityEditor::setValue(Study.CopyVersionName, "Steady Copy of Base", force=false, affected=null, notify=true, edited=true))",
            R"(E- ChangeManager::startNewVersion("Steady Copy of Base", "", "", "", null, origin="Base", makeReadOnly=false))",
            R"(E- ModelVersion::setLabel("Steady Copy of Base", "Steady Copy of Base"))",
            R"(E- ModelVersion::clearStudy("Steady Copy of Base"))",
            R"(E- ModelVersion::setStudyCaseFlag("Steady Copy of Base", 2, set=true))",
            R"(E- ModelVersion::setReadOnlyVersion("Steady Copy of Base", "true"))",
            R"(E- ChangeManager::editedVersion("Steady Copy of Base", changes, notify=true))",
            R"(E- ChangeManager::getVersionFolder("Base", create=false))",
            R"(E- ChangeManager::getVersionFolder("Steady Copy of Base", create=false))",
            R"(E- ProjectStore::remove(("study.opt", "folders/Steady Copy of Base")))",
            R"(E- ProjectStore::copyResults(from=("study.opt", "folders/Base"), to=("study.opt", "folders/Steady Copy of Base"), move=false, progress=null, overwrite=true))",
            R"(E- EntityManager::checkSelectionsAreValid())",
            R"(E- EntityManager::setNeedsSave(true))",
            R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
            R"(E- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
        }));
    for (const HostTesting::RecordedCall &call : other.host().calls()) {
      EXPECT_TRUE(call.state.isEditing) << call.text;
    }
  }
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_CopyIsAReadOnlyStudyCaseAfterTheBaseline) {
  study.makeEntity();

  study.data().createCopyVersion(true);

  const EntityModel::ModelVersion *copy = study.version("Steady Copy of Base");
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->getPrevious()->getLabel(), "Base");
  EXPECT_TRUE(copy->isStudyCase(true, false));
  EXPECT_EQ(copy->getVersionType(), EntityModel::ModelVersion::VersionType::Copy);
  EXPECT_TRUE(
      EmbeddedHost::Project::isReadOnly(*study.host().original(study.version("Steady Copy of Base"))));
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
  EXPECT_EQ(study.currentLabel(), "Base");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_ForcedWithDefaultNamesTaken_TakesTheFirstFreeNumber) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base");
  study.addVersion("Steady Copy of Base - 1", "Base");
  study.addVersion("Steady Copy of Base - 3", "Base");

  study.data().createCopyVersion(true);

  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 2");
  EXPECT_EQ(study.versionLabels().back(), "Steady Copy of Base - 2");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_StoresTheFormOfTheNameThatTheHostGives) {
  study.makeEntity();
  study.adjusted().uniqueNames["Steady Copy of Base"] = "The copy";

  study.data().createCopyVersion(true);

  EXPECT_EQ(study.data().getCopyVersionName(), "The copy");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "The copy"}));
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_ForcedInARunningStudy_RowsStayAndNewOnesComeFromTheNewCopy) {
  beginWithRows();

  study.data().createCopyVersion(true);
  study.addRow("C", "13", "23");

  EXPECT_EQ(study.data().getNumVariants(), 4U);
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 1");
  std::vector<EntityModel::ModelVersion *> alternates;
  EntityModel::ChangeManager &manager = study.project().changeManager();
  manager.getAlternates(manager.findVersion("Steady Copy of Base - 1", nullptr), alternates);
  ASSERT_EQ(alternates.size(), 1U);
  EXPECT_EQ(alternates[0]->getLabel(), "C");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_AdoptableCopyExists_MakesNoVersion) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  study.host().clear();

  study.data().createCopyVersion(false);

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- EntityEditor::setValue(Study.CopyVersionName, "Steady Copy of Base", force=false, affected=null, notify=true, edited=true))",
      }));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base"}));
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_AdoptableCopyExists_AlternatesOfACopyCountAsStudyCases) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);
  study.host().clear();
  study.host().record("ModelVersion::isStudyCase");

  study.data().createCopyVersion(false);

  EXPECT_EQ(study.host().texts().at(1),
            R"(ModelVersion::isStudyCase("Steady Copy of Base", throughAlternate=true, anyRelation=false))");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_AdoptableCopyExists_ReplacesAStoredName) {
  study.makeEntity();
  study.data().setCopyVersionName("Gone");
  study.addVersion("Steady Copy of Base", "Base")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);

  study.data().createCopyVersion(false);

  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_AdoptableCopyExistsButForced_MakesANewOne) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);

  study.data().createCopyVersion(true);

  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 1");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_ExistingVersionIsNoStudyCase_IsNotAdopted) {
  study.makeEntity();
  study.addVersion("Steady Copy of Base", "Base");

  study.data().createCopyVersion(false);

  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 1");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "Steady Copy of Base - 1"}));
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_ExistingVersionFollowsAnotherOne_IsNotAdopted) {
  study.makeEntity();
  study.addVersion("Other", "Base");
  study.addVersion("Steady Copy of Base", "Other")->setStudyCaseFlag(ModelVersionStudyCaseFlag::Copy, true);

  study.data().createCopyVersion(false);

  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base - 1");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_NotForcedWithAStoredName_MakesNoVersionThoughItIsGone) {
  study.makeEntity();
  study.data().setCopyVersionName("Gone");
  study.host().clear();

  study.data().createCopyVersion(false);

  EXPECT_EQ(study.host().texts(),
            (Texts{R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))"}));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base"}));
  EXPECT_EQ(study.data().getCopyVersionName(), "Gone");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_StartsFromTheCurrentVersionAndComesBackToIt) {
  study.makeEntity();
  study.addVersion("Other", "Base");
  study.show("Other");
  study.host().clear();

  study.data().createCopyVersion(true);

  EXPECT_EQ(
      study.host().texts().at(4),
      R"(ChangeManager::startNewVersion("Plain Copy of Base", "", "", "", null, origin="Other", makeReadOnly=false))");
  EXPECT_EQ(
      study.host().texts().back(),
      R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))");
  EXPECT_EQ(study.currentLabel(), "Other");
  EXPECT_EQ(study.version("Plain Copy of Base")->getPrevious()->getLabel(), "Other");
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_HostRefuses_StoresTheNameAndDoesNothingElse) {
  study.makeEntity();
  study.faults().fail("ChangeManager::startNewVersion", FaultKind::Null);

  study.data().createCopyVersion(true);

  EXPECT_EQ(
      study.host().texts().back(),
      R"(ChangeManager::startNewVersion("Steady Copy of Base", "", "", "", null, origin="Base", makeReadOnly=false))");
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
  EXPECT_EQ(study.versionLabels(), (Texts{"Base"}));
  EXPECT_FALSE(study.data().isEditingVersions());
}

TEST_F(CreateCopyVersionTest, CreateCopyVersion_HostThrows_RestoresTheFlag) {
  study.makeEntity();
  study.faults().fail("ChangeManager::startNewVersion", FaultKind::Throws);

  EXPECT_THROW(study.data().createCopyVersion(true), std::runtime_error);

  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_FALSE(study.data().isEditingOperationRunning());
}

using CreateMissingVersionsTest = OptimizationDataVersionsTest;

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_VersionOfARowIsGone_CallsInOrder) {
  beginWithRows();
  study.destroy("A");
  study.host().clear();

  study.data().createMissingVersions();

  EXPECT_EQ(
      study.host().textsWithState(),
      (Texts{
          R"(E- ChangeManager::findVersion("Base", entity=null))",
          R"(E- ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(E- ChangeManager::findVersion("Base", entity=null))",
          R"(E- ChangeManager::findVersion("A", entity=null))",
          R"(E- ChangeManager::startNewAlternate("Steady Copy of Base", changes, copyContent=true, position=18446744073709551615))",
          R"text(E- ModelVersion::setLabel("Steady Copy of Base (2)", "A"))text",
          R"(E- ModelVersion::clearStudy("A"))",
          R"(E- ModelVersion::setReadOnlyVersion("A", "true"))",
          R"(E- ChangeManager::editedVersion("A", changes, notify=true))",
          R"(E- ChangeManager::getVersionFolder("Base", create=false))",
          R"(E- ChangeManager::getVersionFolder("A", create=false))",
          R"(E- ProjectStore::remove(("study.opt", "folders/A")))",
          R"(E- ProjectStore::copyResults(from=("study.opt", "folders/Base"), to=("study.opt", "folders/A"), move=false, progress=null, overwrite=true))",
          R"(E- ChangeManager::setCurrentVersion("A", changes, force=false, progress=null, load=true))",
          R"(E- EntityManager::checkSelectionsAreValid())",
          R"(E- EntityManager::setNeedsSave(true))",
          R"(E- ChangeManager::findVersion("B", entity=null))",
          R"(E- ChangeManager::setCurrentVersion("Base", changes, force=false, progress=null, load=true))",
          R"(E- ObserverManager::broadcastChangedVersion(changes, Root, "Base", reload=false, toSender=true))",
      }));
  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_TRUE(study.data().allVersionsExist());
  EXPECT_TRUE(study.version("A")->isStudyCase(true, false));
}

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_NothingIsMissing_ChangesNothing) {
  beginWithRows();

  study.data().createMissingVersions();

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                      R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))",
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                      R"(ChangeManager::findVersion("A", entity=null))",
                                      R"(ChangeManager::findVersion("B", entity=null))",
                                  }));
}

TEST_F(CreateMissingVersionsTest,
       CreateMissingVersions_VersionOfTheBaselineRowIsGone_MakesAnAlternateForItToo) {
  beginWithRows();
  study.project().rootVersion()->setLabel("Renamed");
  study.host().clear();

  study.data().createMissingVersions();

  EXPECT_EQ(study.versionLabels(), (Texts{"Renamed", "Steady Copy of Base", "A", "B", "Base"}));
  // No version has the name of the baseline, so there is no origin.
  EXPECT_EQ(study.host().texts().at(8), R"(ChangeManager::getVersionFolder(null, create=false))");
  EXPECT_EQ(study.currentLabel(), "Renamed");
}

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_CopyIsGoneButNamed_AsksTheHostWithNone) {
  beginWithRows();
  study.destroy("Steady Copy of Base");
  study.destroy("A");
  study.host().clear();

  study.data().createMissingVersions();

  EXPECT_EQ(
      study.host().texts(),
      (Texts{
          R"(ChangeManager::findVersion("Base", entity=null))",
          R"(ChangeManager::findVersion("Steady Copy of Base", entity=null))",
          R"(ChangeManager::findVersion("Base", entity=null))",
          R"(ChangeManager::findVersion("A", entity=null))",
          R"(ChangeManager::startNewAlternate(null, changes, copyContent=true, position=18446744073709551615))",
          R"(ChangeManager::findVersion("B", entity=null))",
      }));
  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "B"}));
}

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_NoCopyName_MakesTheCopyFirst) {
  beginWithRows();
  study.destroy("Steady Copy of Base");
  study.destroy("A");
  study.data().setCopyVersionName("");
  study.host().clear();

  study.data().createMissingVersions();

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "B", "Steady Copy of Base", "A"}));
  // Making the copy is an operation within this one, which gives the flag back as it found it.
  for (const HostTesting::RecordedCall &call : study.host().calls()) {
    EXPECT_TRUE(call.state.isEditing) << call.text;
  }
  EXPECT_FALSE(study.data().isEditingVersions());
  EXPECT_EQ(study.data().getCopyVersionName(), "Steady Copy of Base");
  EXPECT_EQ(study.currentLabel(), "Base");
}

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_HostRefusesOne_GoesOnWithTheNext) {
  beginWithRows();
  study.destroy("A");
  study.destroy("B");
  study.faults().fail("ChangeManager::startNewAlternate", FaultKind::Null, 1);

  study.data().createMissingVersions();

  EXPECT_EQ(study.versionLabels(), (Texts{"Base", "Steady Copy of Base", "B"}));
  EXPECT_FALSE(study.data().allVersionsExist());
}

TEST_F(CreateMissingVersionsTest, CreateMissingVersions_AnotherVersionWasCurrent_ComesBackToIt) {
  beginWithRows();
  study.addVersion("Other", "Base");
  study.show("Other");
  study.destroy("A");
  study.destroy("B");
  study.host().clear();

  study.data().createMissingVersions();

  EXPECT_EQ(study.currentLabel(), "Other");
  EXPECT_EQ(
      study.host().texts().back(),
      R"(ObserverManager::broadcastChangedVersion(changes, Root, "Other", reload=false, toSender=true))");
}

using AllVersionsExistTest = OptimizationDataVersionsTest;

TEST_F(AllVersionsExistTest, AllVersionsExist_EmptyMatrix_IsTrue) {
  study.makeEntity();

  EXPECT_TRUE(study.data().allVersionsExist());
}

TEST_F(AllVersionsExistTest, AllVersionsExist_EveryRowHasItsVersion_IsTrue) {
  beginWithRows();

  EXPECT_TRUE(study.data().allVersionsExist());

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                      R"(ChangeManager::findVersion("A", entity=null))",
                                      R"(ChangeManager::findVersion("B", entity=null))",
                                  }));
}

TEST_F(AllVersionsExistTest, AllVersionsExist_StopsAtTheFirstRowWithoutVersion) {
  beginWithRows();
  study.destroy("A");
  study.host().clear();

  EXPECT_FALSE(study.data().allVersionsExist());

  EXPECT_EQ(study.host().texts(), (Texts{
                                      R"(ChangeManager::findVersion("Base", entity=null))",
                                      R"(ChangeManager::findVersion("A", entity=null))",
                                  }));
}

} // namespace
} // namespace OptimizationTool
