#include "EmbeddedHost/tests/FaultyRenames.h"
#include "EmbeddedHost/tests/FixtureProject.h"

#include <algorithm>
#include <filesystem>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

/// Copies of projects that stay where they are.
class BackupTest : public FixtureProjectTest {
protected:
  std::string copy = folder.path("copy.optstudy");
  std::string problem;

  static std::unique_ptr<Project> openOther(const std::string &path) {
    std::string reason;
    std::unique_ptr<Project> opened = Project::open(path, OpenMode::ReadOnly, reason);
    if (opened == nullptr) {
      throw std::runtime_error(reason);
    }
    return opened;
  }
  static ModelVersion *find(Project &other, const char *label) {
    return other.changeManager().findVersion(label, nullptr);
  }
  // Writes a result file and stores the same number again and again until it is killed.
  void solveForEver() const {
    std::string ignored;
    const auto writing = Project::open(file, OpenMode::ReadWrite, ignored);
    const HostModel::HostInstallation installed(*writing);
    ModelVersion *row = find(*writing, "Row");
    for (int number = 1;; number = number % 100 + 1) {
      RunRecord record;
      record.startedAt = number;
      record.status = RunStatus::Running;
      bool isDone = writing->recordRun(*row, record, {}, ignored);
      writeFile(writing->versionFolder(*row, true) + "/out", std::to_string(number));
      record.status = RunStatus::Ok;
      isDone = isDone &&
               writing->recordRun(*row, record,
                                  {{part(*writing, 0), AttributePath("Cycles"), double(number)}}, ignored);
      if (!isDone) {
        _exit(1);
      }
      usleep(2000);
    }
  }
};

TEST_F(BackupTest, Copy_HoldsWhatIsSavedAndTheResults) {
  ModelVersion *row = follow(base, "Row");
  set(partA, "Count", "5");
  saveAs();
  const std::string results = project->versionFolder(*row, true);
  fs::create_directories(results + "/run/inner");
  fs::create_directories(results + "/run.new");
  writeFile(results + "/run/inner/result.txt", "42");
  writeFile(results + "/run.new/half", "4");
  ASSERT_TRUE(project->recordRun(*row, {RunStatus::Ok, "", {"key"}, 1, 2.0, {}, 0, "", ""}, {}, problem))
      << problem;
  set(partA, "Count", "9");
  ModelVersion *unsaved = follow(row, "Unsaved");
  writeFile(project->versionFolder(*unsaved, true) + "/file", "lost");

  ASSERT_TRUE(project->backup(copy, problem)) << problem;

  EXPECT_EQ(project->file(), file);
  EXPECT_TRUE(project->needsSave());
  const auto other = openOther(copy);
  EXPECT_EQ(other->attribute(part(*other, 0), "Count")->getValueAsString(), "5");
  EXPECT_EQ(other->versions().size(), 2U);
  EXPECT_EQ(other->runRecord(*find(*other, "Row")).keys, (Names{"key"}));
  const std::string copied = other->versionFolder(*find(*other, "Row"), false);
  EXPECT_EQ(copied.rfind(folder.path("copy.results/"), 0), 0U);
  EXPECT_EQ(contentOf(copied + "/run/inner/result.txt"), "42");
  EXPECT_FALSE(fs::exists(copied + "/run.new"));
  EXPECT_TRUE(fs::exists(results + "/run.new/half"));
  EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("copy.results")), fs::directory_iterator()), 1);
  // Both can be written at the same time.
  EXPECT_TRUE(project->save(problem)) << problem;
  EXPECT_NE(Project::open(copy, OpenMode::ReadWrite, problem), nullptr) << problem;
}

TEST_F(BackupTest, ProjectWithoutResults_NeedsNoFolder) {
  saveAs();
  ASSERT_TRUE(project->backup(copy, problem)) << problem;
  EXPECT_EQ(openOther(copy)->versions().size(), 1U);
  EXPECT_FALSE(fs::exists(folder.path("copy.results")));
  EXPECT_EQ(entries(), (Names{"copy.optstudy", "fan.optstudy", "fan.optstudy.lock"}));
}

TEST_F(BackupTest, NamesThatAreTaken_AreRefused) {
  EXPECT_FALSE(project->backup(copy, problem));
  EXPECT_EQ(problem, "The project has no file yet; it has to be saved under a name.");
  saveAs();
  EXPECT_FALSE(project->backup(file, problem));
  EXPECT_EQ(problem, "There is a file " + file + " already.");
  EXPECT_FALSE(project->backup(folder.path("fan.copy"), problem));
  EXPECT_EQ(problem, "Two projects cannot share the results folder " + folder.path("fan.results") +
                         "; choose another name.");
  fs::create_directory(folder.path("copy.results"));
  EXPECT_FALSE(project->backup(copy, problem));
  EXPECT_EQ(problem,
            "There is a results folder " + folder.path("copy.results") + " of another project already.");
  EXPECT_FALSE(project->backup(folder.path("no/folder"), problem));
  EXPECT_EQ(problem,
            "The folder of " + folder.path("no/folder") + " cannot be used: No such file or directory.");
  EXPECT_FALSE(project->backup(folder.path("x.new-0123456789abcdef"), problem));
  EXPECT_EQ(problem, "The project " + folder.path("x.new-0123456789abcdef") +
                         " cannot be made: unfinished projects have such names.");
  EXPECT_EQ(entries(), (Names{"copy.results", "fan.optstudy", "fan.optstudy.lock"}));
}

TEST_F(BackupTest, WhileAnotherProcessSolves_FilesAndRecordsBelongTogether) {
  follow(base, "Row");
  saveAs();
  closeProject();
  const pid_t child = fork();
  if (child == 0) {
    alarm(120);
    solveForEver();
  }
  const auto reading = openCopy(OpenMode::ReadOnly);
  int finished = 0;
  for (int trial = 0; trial < 60; ++trial) {
    const std::string target = folder.path("copy" + std::to_string(trial) + ".optstudy");
    ASSERT_TRUE(reading->backup(target, problem)) << problem;
    const auto other = openOther(target);
    const HostModel::HostInstallation installed(*other);
    ModelVersion *row = find(*other, "Row");
    const RunRecord record = other->runRecord(*row);
    if (record.status == RunStatus::Ok) {
      ++finished;
      other->changeManager().setCurrentVersion(row, nullptr, false, nullptr, true);
      const std::string number = other->attribute(part(*other, 0), "Cycles")->getValueAsString();
      EXPECT_EQ(number, std::to_string(record.startedAt));
      EXPECT_EQ(contentOf(other->versionFolder(*row, false) + "/out"), number);
    }
  }
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
  EXPECT_GT(finished, 5);
}

TEST_F(BackupTest, ProjectOfAnOlderFormat_IsCopiedInThePresentOne) {
  build(1);
  const std::string before = contentOf(file);
  ASSERT_TRUE(openCopy(OpenMode::ReadOnly)->backup(copy, problem)) << problem;
  expectContent(*openOther(copy));
  EXPECT_EQ(Database(copy, Database::Access::ReadOnly).number("PRAGMA user_version"), 2);
  EXPECT_EQ(contentOf(file), before);
}

TEST_F(BackupTest, FailedRenaming_LeavesNothing) {
  saveAs();
  writeFile(project->versionFolder(*base, true) + "/file", "kept");
  const Names before = entries();
  for (const int ordinal : {1, 2}) {
    FaultyRenames faults;
    faults.fail({ordinal}, EIO);
    EXPECT_FALSE(project->backup(copy, problem)) << ordinal;
    EXPECT_NE(problem.find("Input/output error"), std::string::npos) << problem;
    EXPECT_NE(problem.find(folder.path("copy.")), std::string::npos) << problem;
    EXPECT_EQ(entries(), before);
  }
  EXPECT_TRUE(project->backup(copy, problem)) << problem;
}

TEST_F(BackupTest, RenamingThatFailsFromThenOn_DoesNotBlockTheName) {
  saveAs();
  fs::create_directories(project->versionFolder(*base, true) + "/inner");
  writeFile(project->versionFolder(*base, true) + "/inner/file", "kept");
  const Names before = entries();
  for (const int first : {1, 2}) {
    {
      FaultyRenames faults;
      std::set<int> all;
      for (int ordinal = first; ordinal < 100; ++ordinal) {
        all.insert(ordinal);
      }
      faults.fail(all, EROFS);
      EXPECT_FALSE(project->backup(copy, problem)) << first;
      // What could not be taken back is not cleared up by a try that fails, too, and still nobody's afterwards.
      EXPECT_FALSE(project->backup(copy, problem)) << first;
    }
    EXPECT_TRUE(project->backup(copy, problem)) << first << ": " << problem;
    Names expected = before;
    expected.insert(expected.end(), {"copy.optstudy", "copy.results"});
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(entries(), expected);
    fs::remove(folder.path("copy.optstudy"));
    fs::remove_all(folder.path("copy.results"));
  }
}

TEST_F(BackupTest, FolderInAResultsFolderThatCannotBeCopied_LeavesNothingAndNamesIt) {
  saveAs();
  std::string deep = project->versionFolder(*base, true);
  for (int level = 0; level < 205; ++level) {
    deep += "/d";
  }
  fs::create_directories(deep);
  const Names before = entries();
  EXPECT_FALSE(project->backup(copy, problem));
  EXPECT_NE(problem.find("cannot be used: It lies more than 200 folders deep."), std::string::npos)
      << problem;
  EXPECT_EQ(entries(), before);
}

} // namespace
} // namespace EmbeddedHost
