#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <filesystem>
#include <set>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;

/// Opening a project that others write, that a killed program has left, or that brings along what would be carried out.
class ProjectOpeningTest : public ProjectTest {
protected:
  void makeFile() {
    set(partA, "Note", std::string(20000, 'x'));
    saveAs();
  }
  static std::string count(Project &other, int index) {
    return other.attribute(part(other, index), "Count")->getValueAsString();
  }
  // Changes the file as somebody else's program would.
  void alter(const char *sql) const {
    sqlite3 *plain = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &plain), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(plain, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(plain);
    ASSERT_EQ(sqlite3_close(plain), SQLITE_OK);
  }
  // Saves a new version with two equal values again and again until it is killed.
  void saveForEver() const {
    std::string ignored;
    const auto writing = Project::open(file, OpenMode::ReadWrite, ignored);
    const HostModel::HostInstallation installed(*writing);
    EntityModel::ChangeManager &versions = writing->changeManager();
    for (int save = 0;; ++save) {
      const std::string number = std::to_string(save % 100 + 1);
      ModelVersion *next = versions.startNewVersion("V", "", "", "", nullptr, writing->rootVersion(), false);
      versions.setCurrentVersion(next, nullptr, false, nullptr, true);
      writing->setValue(part(*writing, 0), "Count", number);
      writing->setValue(part(*writing, 1), "Count", number);
      if (!writing->save(ignored)) {
        _exit(1);
      }
      // Somebody who saved without a pause would leave others no moment to read.
      usleep(10000);
      bool destroyed = false;
      versions.destroyVersion(next, nullptr, destroyed);
    }
  }
};

TEST_F(ProjectOpeningTest, UnitThatFitsOneValueAndNotAnother_IsDamage) {
  set(partA, "Width", "7 mm");
  set(partB, "Mass", "3 kg");
  makeFile();
  closeProject();
  alter("UPDATE value SET extra = (SELECT number FROM text WHERE text = 'mm') "
        "WHERE path = (SELECT number FROM text WHERE text = 'Mass')");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly),
            "The project " + file +
                " is damaged: it holds a value in a unit of another quantity (version 1, entity 3).");
}

TEST_F(ProjectOpeningTest, WhileAnotherProcessSaves_OneSaveIsReadAndNoMixture) {
  set(partA, "Count", "0");
  set(partB, "Count", "0");
  makeFile();
  closeProject();
  const pid_t child = fork();
  if (child == 0) {
    saveForEver();
  }
  std::set<std::string> seen;
  for (int opening = 0; opening < 200 || (seen.size() < 20 && opening < 5000); ++opening) {
    const auto opened = openCopy();
    EXPECT_EQ(count(*opened, 0), count(*opened, 1));
    seen.insert(count(*opened, 0));
  }
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
  EXPECT_GE(seen.size(), 20U);
}

TEST_F(ProjectOpeningTest, FirstReadOnlyOpeningAfterACrash_UndoesTheInterruptedChange) {
  makeFile();
  closeProject();
  interruptAChange();
  const auto opened = openCopy();
  EXPECT_EQ(opened->attribute(part(*opened, 0), "Note")->getValueAsString(), std::string(20000, 'x'));
  EXPECT_TRUE(opened->isReadOnlyProject());
  EXPECT_FALSE(fs::exists(file + "-journal"));
  EXPECT_FALSE(fs::exists(file + ".lock"));
}

TEST_F(ProjectOpeningTest, CrashInAFolderThatCannotBeWritten_IsReportedAndLeftAsItIs) {
  makeFile();
  closeProject();
  interruptAChange();
  const std::string content = contentOf(file);
  const std::string journal = contentOf(file + "-journal");
  fs::permissions(file, fs::perms(0444));
  fs::permissions(file + "-journal", fs::perms(0444));
  fs::permissions(folder.path(), fs::perms(0555));
  const int answer = asOrdinaryUser([this] {
    const std::string problem = problemOfOpening(OpenMode::ReadOnly);
    const bool isTold = problem.find("open the project once where it can be written") != std::string::npos;
    return isTold ? 0 : 1;
  });
  EXPECT_EQ(answer, 0);
  fs::permissions(folder.path(), fs::perms(0755));
  EXPECT_EQ(contentOf(file), content);
  EXPECT_EQ(contentOf(file + "-journal"), journal);
}

TEST_F(ProjectOpeningTest, ReadOnlyFolder_ProjectIsReadThere) {
  makeFile();
  closeProject();
  fs::permissions(file, fs::perms(0444));
  fs::permissions(folder.path(), fs::perms(0555));
  const int answer = asOrdinaryUser([this] {
    const bool isWritable = problemOfOpening(OpenMode::ReadWrite).empty();
    return !isWritable && count(*openCopy(), 0) == "3" ? 0 : 1;
  });
  EXPECT_EQ(answer, 0);
  fs::permissions(folder.path(), fs::perms(0755));
}

TEST_F(ProjectOpeningTest, TriggersOfAFile_AreNotCarriedOut) {
  makeFile();
  closeProject();
  alter("CREATE TABLE noted (what);"
        "CREATE TRIGGER spy AFTER INSERT ON value BEGIN INSERT INTO noted VALUES (1); END;"
        "CREATE TRIGGER spoil AFTER INSERT ON entity BEGIN DELETE FROM version; END;");
  const auto opened = openCopy(OpenMode::ReadWrite);
  EXPECT_TRUE(opened->setValue(part(*opened, 0), "Count", "8"));
  EXPECT_NE(opened->createEntity("Part", opened->rootEntity(), "Parts", "C"), nullptr);
  std::string problem;
  ASSERT_TRUE(opened->save(problem)) << problem;
  Database database(file, Database::Access::ReadOnly);
  EXPECT_EQ(database.number("SELECT count(*) FROM noted"), 0);
  EXPECT_EQ(database.number("SELECT count(*) FROM version"), 1);
  EXPECT_EQ(database.number("SELECT count(*) FROM value WHERE value = 8"), 1);
}

TEST_F(ProjectOpeningTest, ViewInPlaceOfATable_IsNotRead) {
  makeFile();
  closeProject();
  alter("DROP TABLE run;"
        "CREATE VIEW run AS SELECT number AS version, 3 AS status, label AS reason, '' AS keys, "
        "0 AS started_at, 0 AS duration, '' AS command, 0 AS exit_code, '' AS solver_version, "
        "'' AS log_tail FROM version");
  const auto opened = openCopy();
  EXPECT_EQ(opened->runRecord(*opened->rootVersion()).status, RunStatus::None);
  alter("ALTER TABLE entity RENAME TO others; CREATE VIEW entity AS SELECT * FROM others");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly),
            "The project " + file + " cannot be read: access to view \"entity\" prohibited.");
}

TEST_F(ProjectOpeningTest, Connection_TrustsNoSchemaAndWritesThrough) {
  makeFile();
  for (const OpenMode mode : {OpenMode::ReadWrite, OpenMode::ReadOnly}) {
    closeProject();
    project = openCopy(mode);
    Database &database = project->parts().file->database();
    EXPECT_EQ(database.number("PRAGMA trusted_schema"), 0);
    // Extra: the folder too, once the journal is gone.
    EXPECT_EQ(database.number("PRAGMA synchronous"), 3);
    EXPECT_EQ(database.number("PRAGMA cell_size_check"), 1);
  }
}

} // namespace
} // namespace EmbeddedHost
