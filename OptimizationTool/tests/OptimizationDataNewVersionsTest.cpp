#include "HostModel/ChangeManager.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ProjectStore.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/RecordedStudy.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

namespace {

using HostTesting::FaultKind;
using StudyTesting::thrownBy;
using Strings = std::vector<std::string>;

// What becomes of a version that the study has just made, seen through the operations that make one.
class OptimizationDataNewVersionsTest : public ::testing::Test {
protected:
  /// The recorded calls from the first one for the new version to the one that marks the project.
  Strings processing() {
    const Strings calls = m_study.host().textsWithState();
    const auto first = std::find_if(calls.begin(), calls.end(), [](const std::string &call) {
      return call.find("ChangeManager::editedVersion") != std::string::npos;
    });
    const auto last = std::find_if(first, calls.end(), [](const std::string &call) {
      return call.find("EntityManager::setNeedsSave") != std::string::npos;
    });
    return Strings(first, last == calls.end() ? last : last + 1);
  }
  bool isRecorded(const std::string &operation) {
    return std::any_of(m_study.host().calls().begin(), m_study.host().calls().end(),
                       [&](const auto &call) { return call.operation == operation; });
  }
  std::size_t addRow() { return m_study.data().addVariant({"11", "21"}, "New", 100); }

  StudyTesting::RecordedStudy m_study;
};

TEST_F(OptimizationDataNewVersionsTest, RowFromTheMatrix_TakesTheResultsOfTheCopy) {
  m_study.begin();
  EXPECT_EQ(addRow(), 1U);
  // The version was made current before, so it is not switched to again.
  EXPECT_EQ(processing(),
            Strings({"E- ChangeManager::editedVersion(\"New\", changes, notify=true)",
                     "E- ChangeManager::getVersionFolder(\"Steady Copy of Base\", create=false)",
                     "E- ChangeManager::getVersionFolder(\"New\", create=false)",
                     "E- ProjectStore::remove((\"study.opt\", \"folders/New\"))",
                     "E- ProjectStore::copyResults(from=(\"study.opt\", \"folders/Steady Copy of Base\"), "
                     "to=(\"study.opt\", \"folders/New\"), move=false, progress=null, overwrite=true)",
                     "E- EntityManager::checkSelectionsAreValid()", "E- EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataNewVersionsTest, CopyVersion_TakesTheResultsOfTheVersionCurrentBefore) {
  m_study.makeEntity();
  m_study.data().createCopyVersion(true);
  EXPECT_EQ(processing(),
            Strings({"E- ChangeManager::editedVersion(\"Steady Copy of Base\", changes, notify=true)",
                     "E- ChangeManager::getVersionFolder(\"Base\", create=false)",
                     "E- ChangeManager::getVersionFolder(\"Steady Copy of Base\", create=false)",
                     "E- ProjectStore::remove((\"study.opt\", \"folders/Steady Copy of Base\"))",
                     "E- ProjectStore::copyResults(from=(\"study.opt\", \"folders/Base\"), "
                     "to=(\"study.opt\", \"folders/Steady Copy of Base\"), move=false, progress=null, "
                     "overwrite=true)",
                     "E- ChangeManager::setCurrentVersion(\"Steady Copy of Base\", changes, force=false, "
                     "progress=null, load=true)",
                     "E- EntityManager::checkSelectionsAreValid()", "E- EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataNewVersionsTest, RecreatedVersion_TakesTheResultsOfTheBaseline) {
  m_study.begin();
  m_study.reopen();
  m_study.data().initializeVariants(nullptr);
  addRow();
  bool isDestroyed = false;
  EntityModel::ChangeSet changes;
  EntityGUI::EntityManager::getChangeManager()->destroyVersion(m_study.version("New"), &changes, isDestroyed);
  ASSERT_TRUE(isDestroyed);
  m_study.host().clear();
  m_study.data().createMissingVersions();
  EXPECT_EQ(processing(),
            Strings({"E- ChangeManager::editedVersion(\"New\", changes, notify=true)",
                     "E- ChangeManager::getVersionFolder(\"Base\", create=false)",
                     "E- ChangeManager::getVersionFolder(\"New\", create=false)",
                     "E- ProjectStore::remove((\"study.opt\", \"folders/New\"))",
                     "E- ProjectStore::copyResults(from=(\"study.opt\", \"folders/Base\"), "
                     "to=(\"study.opt\", \"folders/New\"), move=false, progress=null, overwrite=true)",
                     "E- ChangeManager::setCurrentVersion(\"New\", changes, force=false, progress=null, "
                     "load=true)",
                     "E- EntityManager::checkSelectionsAreValid()", "E- EntityManager::setNeedsSave(true)"}));
}

TEST_F(OptimizationDataNewVersionsTest, NewVersion_IsCurrentAfterwards) {
  m_study.makeEntity();
  std::string currentAtTheEnd;
  m_study.hooked().runBefore("EntityManager::checkSelectionsAreValid",
                             [&] { currentAtTheEnd = m_study.currentLabel(); });
  m_study.data().createCopyVersion(true);
  EXPECT_EQ(currentAtTheEnd, "Steady Copy of Base");
}

TEST_F(OptimizationDataNewVersionsTest, EditingFlag_IsSetDuringCallsOfTheHostOnly) {
  m_study.begin();
  EXPECT_FALSE(m_study.data().isEditingVersions());
  int seen = 0;
  bool wasSet = true;
  const StudyTesting::VersionListener listener([&](const std::string & /*name*/) {
    ++seen;
    wasSet = wasSet && m_study.data().isEditingVersions();
  });
  addRow();
  EXPECT_GT(seen, 0);
  EXPECT_TRUE(wasSet);
  EXPECT_FALSE(m_study.data().isEditingVersions());
}

TEST_F(OptimizationDataNewVersionsTest, StoresThatFail_StillMakeTheVersionCurrent) {
  m_study.makeEntity();
  m_study.adjusted().storesSucceed = false;
  m_study.data().createCopyVersion(true);
  const Strings calls = processing();
  ASSERT_EQ(calls.size(), 8U);
  EXPECT_EQ(calls[4], "E- ProjectStore::copyResults(from=(\"study.opt\", \"folders/Base\"), "
                      "to=(\"study.opt\", \"folders/Steady Copy of Base\"), move=false, progress=null, "
                      "overwrite=true)");
  EXPECT_EQ(calls[5], "E- ChangeManager::setCurrentVersion(\"Steady Copy of Base\", changes, force=false, "
                      "progress=null, load=true)");
}

TEST_F(OptimizationDataNewVersionsTest, RefusedSwitch_StillChecksSelectionsAndMarksTheProject) {
  m_study.makeEntity();
  m_study.faults().fail("ChangeManager::setCurrentVersion", FaultKind::Refused);
  m_study.data().createCopyVersion(true);
  const Strings calls = processing();
  ASSERT_EQ(calls.size(), 8U);
  EXPECT_EQ(calls[6], "E- EntityManager::checkSelectionsAreValid()");
  EXPECT_EQ(calls[7], "E- EntityManager::setNeedsSave(true)");
}

TEST_F(OptimizationDataNewVersionsTest, ExceptionOfTheHost_PassesAndRestoresTheFlag) {
  for (const char *operation :
       {"ChangeManager::editedVersion", "ChangeManager::getVersionFolder", "ProjectStore::remove",
        "ProjectStore::copyResults", "EntityManager::checkSelectionsAreValid"}) {
    StudyTesting::RecordedStudy study;
    study.begin();
    study.faults().fail(operation, FaultKind::Throws);
    EXPECT_EQ(thrownBy([&] {
                study.data().addVariant({"11", "21"}, "New", 100);
              }),
              "std::runtime_error: injected fault")
        << operation;
    EXPECT_FALSE(study.data().isEditingVersions()) << operation;
    EXPECT_FALSE(study.data().isEditingOperationRunning()) << operation;
  }
}

TEST_F(OptimizationDataNewVersionsTest, MissingOrigin_HasNoFolder) {
  m_study.begin();
  addRow();
  m_study.data().setBaseVersionName("Nowhere");
  bool isDestroyed = false;
  EntityModel::ChangeSet changes;
  EntityGUI::EntityManager::getChangeManager()->destroyVersion(m_study.version("New"), &changes, isDestroyed);
  m_study.host().clear();
  m_study.data().createMissingVersions();
  const Strings calls = processing();
  ASSERT_EQ(calls.size(), 8U);
  EXPECT_EQ(calls[1], "E- ChangeManager::getVersionFolder(null, create=false)");
  EXPECT_EQ(calls[4], "E- ProjectStore::copyResults(from=(\"study.opt\", \"\"), "
                      "to=(\"study.opt\", \"folders/New\"), move=false, progress=null, overwrite=true)");
}

TEST_F(OptimizationDataNewVersionsTest, StudyThatEndsMeanwhile_StopsQuietly) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"ChangeManager::editedVersion", "ChangeManager::getVersionFolder"},
      {"ProjectStore::remove", "ProjectStore::copyResults"},
      {"ProjectStore::copyResults", "EntityManager::checkSelectionsAreValid"},
  };
  for (const auto &[during, next] : cases) {
    StudyTesting::RecordedStudy study;
    study.begin();
    study.hooked().runBefore(during, [&] { study.drop(); });
    EXPECT_EQ(study.data().addVariant({"11", "21"}, "New", 100), 0U) << during;
    EXPECT_FALSE(study.isAlive());
    const Strings calls = study.host().texts();
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [&next = next](const std::string &call) { return call.find(next) == 0; }),
              0)
        << during;
  }
}

class OptimizationDataNewVersionsOnDiskTest : public StudyTesting::StudyDataFixture {
protected:
  /// The directory of a version's results in the store, made when it is not there.
  static QString storeOf(const std::string &label) {
    const ProjectData::ProjectStore store(EntityGUI::EntityManager::s_CurrentFilename,
                                          changeManager().getVersionFolder(version(label), true));
    QString directory = QString::fromStdString(store.getStoreDirectoryName());
    QDir().mkpath(directory);
    return directory;
  }
  static void write(const std::string &label, const char *text) {
    QFile file(storeOf(label) + QStringLiteral("/result.txt"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(text), static_cast<qint64>(qstrlen(text)));
  }
  static std::string read(const std::string &label) {
    QFile file(storeOf(label) + QStringLiteral("/result.txt"));
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "no file";
  }

  QTemporaryDir m_folder;
};

TEST_F(OptimizationDataNewVersionsOnDiskTest, NewVersions_StartWithTheResultsOfTheVersionTheyCameFrom) {
  ASSERT_TRUE(save(m_folder.filePath(QStringLiteral("study.optproj")).toStdString()));
  write("Base", "of the baseline");
  begin();
  EXPECT_EQ(read("Parametric Copy of Base"), "of the baseline");
  write("Base", "later");
  write("Parametric Copy of Base", "of the copy");
  data().addVariant({}, "Row 1", 100);
  EXPECT_EQ(read("Row 1"), "of the copy");
  EXPECT_EQ(read("Base"), "later");
}

} // namespace
