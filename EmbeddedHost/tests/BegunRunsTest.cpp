#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <chrono>
#include <filesystem>
#include <signal.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using Names = std::vector<std::string>;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class BegunRunsTest : public ProjectTest {
protected:
  ModelVersion *row = follow(base, "Row");
  const AttributePath mass{"Mass"};
  std::string problem;

  static RunRecord record(RunStatus status = RunStatus::Ok) {
    RunRecord run;
    run.status = status;
    run.keys = {"inputs", "extraction"};
    run.startedAt = 1234567890;
    run.command = {"solver", "-b"};
    return run;
  }
  bool begin(const std::vector<ResultValue> &results) {
    return project->beginRun(*row, record(), results, problem);
  }
  bool store(double value) { return project->recordRun(*row, record(), {{partA, mass, value}}, problem); }
  static RunRecord runIn(Project &other) {
    const ModelVersion *version = other.changeManager().findVersion("Row", nullptr);
    RunRecord run = other.runRecord(*version);
    const Project::RunRecords all = other.runRecords();
    EXPECT_EQ(all.size(), 1U);
    EXPECT_EQ(all.at(version).status, run.status);
    EXPECT_EQ(all.at(version).reason, run.reason);
    return run;
  }
  static std::string massIn(Project &other) {
    EntityModel::ChangeManager &versions = other.changeManager();
    versions.setCurrentVersion(versions.findVersion("Row", nullptr), nullptr, false, nullptr, true);
    return other.attribute(part(other, 0), "Mass")->getValueAsString();
  }
};

TEST_F(BegunRunsTest, BeginRun_IsDurableAtOnce_WithTheResultsUnset) {
  saveAs();
  ASSERT_TRUE(store(4.5)) << problem;
  ASSERT_TRUE(begin({{partA, mass, 7.0}})) << problem;
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "");
  const auto other = openCopy();
  EXPECT_EQ(massIn(*other), "");
  const RunRecord run = runIn(*other);
  EXPECT_EQ(run.status, RunStatus::Running);
  EXPECT_EQ(run.keys, (Names{"inputs", "extraction"}));
  EXPECT_EQ(run.startedAt, 1234567890);
  EXPECT_EQ(run.command, (Names{"solver", "-b"}));
}

TEST_F(BegunRunsTest, BeginRun_TakesNothingOfAnEndFromTheRecord) {
  saveAs();
  RunRecord given = record(RunStatus::Failed);
  given.reason = "no result";
  given.exitCode = 3;
  ASSERT_TRUE(project->beginRun(*row, given, {}, problem)) << problem;
  const RunRecord run = project->runRecord(*row);
  EXPECT_EQ(run.status, RunStatus::Running);
  EXPECT_EQ(run.reason, "");
  EXPECT_FALSE(run.exitCode.has_value());
}

TEST_F(BegunRunsTest, BeginRun_HoldsNoOtherUnsavedEditAndIsNothingToSave) {
  saveAs();
  ASSERT_TRUE(begin({{partA, mass, std::nullopt}})) << problem;
  EXPECT_FALSE(project->needsSave());
  set(partA, "Count", "9");
  ASSERT_TRUE(begin({{partA, mass, std::nullopt}})) << problem;
  EXPECT_TRUE(project->needsSave());
  const auto other = openCopy();
  EXPECT_EQ(other->attribute(part(*other, 0), "Count")->getValueAsString(), "3");
}

TEST_F(BegunRunsTest, BeginRun_RefusesWhatRecordRunRefuses_AndChangesNothing) {
  saveAs();
  ASSERT_TRUE(store(4.5)) << problem;
  EXPECT_FALSE(begin({{partA, mass, 1.0}, {partA, AttributePath("Note"), 1.0}}));
  EXPECT_EQ(problem, "The result Note is no number that can be stored.");
  ModelVersion *fresh = follow(base, "Fresh");
  EXPECT_FALSE(project->beginRun(*fresh, record(), {}, problem));
  EXPECT_EQ(problem, "The version \"Fresh\" has to be saved before it is solved.");
  const auto other = openCopy();
  EXPECT_FALSE(other->beginRun(*other->rootVersion(), record(), {}, problem));
  EXPECT_EQ(problem, "The project " + file + " was opened for reading only.");
  EXPECT_FALSE(project->beginRun(*other->rootVersion(), record(), {}, problem));
  EXPECT_EQ(problem, "There is no such version.");
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "4.5 kg");
  EXPECT_EQ(runIn(*other).status, RunStatus::Ok);
}

TEST_F(BegunRunsTest, BegunRun_OfThisProgram_Runs) {
  saveAs();
  ASSERT_TRUE(begin({})) << problem;
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::Running);
  ASSERT_TRUE(store(4.5)) << problem;
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::Ok);
}

TEST_F(BegunRunsTest, BegunRun_OfAnEarlierProgram_IsLost) {
  saveAs();
  ASSERT_TRUE(begin({})) << problem;
  closeProject();
  const auto reopened = openCopy(OpenMode::ReadWrite);
  const RunRecord run = runIn(*reopened);
  EXPECT_EQ(run.status, RunStatus::Failed);
  EXPECT_EQ(run.reason, "lost: the program ended while it ran");
  EXPECT_EQ(run.keys, (Names{"inputs", "extraction"}));
  ModelVersion &again = *reopened->changeManager().findVersion("Row", nullptr);
  ASSERT_TRUE(reopened->beginRun(again, record(), {}, problem)) << problem;
  EXPECT_EQ(runIn(*reopened).status, RunStatus::Running);
}

TEST_F(BegunRunsTest, LostRun_StaysLostUnderAnotherName) {
  saveAs();
  ASSERT_TRUE(begin({})) << problem;
  closeProject();
  const auto reopened = openCopy(OpenMode::ReadWrite);
  ASSERT_TRUE(reopened->saveAs(folder.path("other.optstudy"), problem)) << problem;
  EXPECT_EQ(runIn(*reopened).reason, kLostRun);
}

TEST_F(BegunRunsTest, WithoutAFile_TheModelKnows) {
  set(partA, "Mass", "8");
  ASSERT_TRUE(begin({{partA, mass, std::nullopt}})) << problem;
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::Running);
  show(row);
  EXPECT_EQ(text(partA, "Mass"), "");
  saveAs();
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::Running);
}

TEST_F(BegunRunsTest, FilesThatCannotBeWrittenToTheDisk_AreNamedWithTheReason) {
  saveAs();
  const std::string path = project->versionFolder(*row, true);
  std::string deep = path;
  for (int level = 0; level < 201; ++level) {
    deep += "/d";
  }
  std::filesystem::create_directories(deep);
  EXPECT_FALSE(store(4.5));
  deep.resize(deep.size() - 2);
  EXPECT_EQ(problem, "The files of the version \"Row\" cannot be written to the disk: " + deep +
                         " cannot be used: It lies more than 200 folders deep.");
  EXPECT_EQ(project->runRecord(*row).status, RunStatus::None);
}

// Another program reads the saved project for as long as this lives, or for a time.
class Reader {
public:
  Reader(const std::string &file, milliseconds time) {
    int ready[2] = {-1, -1};
    if (pipe(ready) != 0) {
      throw std::runtime_error("no pipe");
    }
    m_child = fork();
    if (m_child == 0) {
      alarm(60);
      Database database(file, Database::Access::ReadOnly);
      database.execute("BEGIN");
      database.number("SELECT count(*) FROM value");
      if (write(ready[1], "r", 1) == 1) {
        std::this_thread::sleep_for(time);
      }
      _exit(0);
    }
    char byte = 0;
    m_isReading = read(ready[0], &byte, 1) == 1;
    close(ready[0]);
    close(ready[1]);
  }
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;
  ~Reader() {
    kill(m_child, SIGKILL);
    waitpid(m_child, nullptr, 0);
  }
  bool isReading() const { return m_isReading; }

private:
  pid_t m_child = 0;
  bool m_isReading = false;
};

class WaitingWriterTest : public BegunRunsTest {
protected:
  void limit(milliseconds time) { project->parts().file->database().setLongestWaitToWrite(time); }
};

TEST_F(WaitingWriterTest, ResultOfASolve_WaitsForAReaderAndIsStored) {
  saveAs();
  const auto began = steady_clock::now();
  const Reader reader(file, milliseconds(1000));
  ASSERT_TRUE(reader.isReading());
  EXPECT_TRUE(store(4.5)) << problem;
  EXPECT_GE(steady_clock::now() - began, milliseconds(1000));
  EXPECT_EQ(massIn(*openCopy()), "4.5 kg");
}

TEST_F(WaitingWriterTest, ReaderThatStaysTooLong_RefusesTheResultAndNothingHasChanged) {
  saveAs();
  ASSERT_TRUE(begin({{partA, mass, std::nullopt}})) << problem;
  limit(milliseconds(100));
  {
    const Reader reader(file, milliseconds(60000));
    ASSERT_TRUE(reader.isReading());
    const auto began = steady_clock::now();
    EXPECT_FALSE(store(4.5));
    EXPECT_GE(steady_clock::now() - began, milliseconds(100));
    EXPECT_LT(steady_clock::now() - began, milliseconds(4000));
    EXPECT_EQ(problem, "The project " + file + " could not be saved: another program keeps it locked.");
    show(row);
    EXPECT_EQ(text(partA, "Mass"), "");
    EXPECT_EQ(project->runRecord(*row).status, RunStatus::Running);
    EXPECT_EQ(runIn(*openCopy()).status, RunStatus::Running);
  }
  EXPECT_TRUE(store(4.5)) << problem;
  EXPECT_EQ(massIn(*openCopy()), "4.5 kg");
}

TEST_F(WaitingWriterTest, WithoutAReader_NothingIsWaitedFor) {
  EXPECT_EQ(kLongestWaitToWrite, milliseconds(60000));
  saveAs();
  const auto began = steady_clock::now();
  EXPECT_TRUE(store(4.5)) << problem;
  EXPECT_LT(steady_clock::now() - began, milliseconds(4000));
}

} // namespace
} // namespace EmbeddedHost
