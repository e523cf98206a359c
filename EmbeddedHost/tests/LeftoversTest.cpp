#include "EmbeddedHost/tests/FaultyRenames.h"
#include "EmbeddedHost/tests/FixtureProject.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// What programs leave that are killed while they make a project.
class LeftoversTest : public FixtureProjectTest {
protected:
  static constexpr const char *kRandom = "0123456789abcdef";
  std::string target = folder.path("next.optstudy");
  std::string problem;

  void fill() {
    saveAs();
    writeFile(project->versionFolder(*base, true) + "/result.txt", "42");
  }
  void expectTarget() {
    const auto opened = Project::open(target, OpenMode::ReadWrite, problem);
    ASSERT_NE(opened, nullptr) << problem;
    EXPECT_EQ(contentOf(opened->versionFolder(*opened->rootVersion(), false) + "/result.txt"), "42");
  }
  // The work of a child that is done lets go of the lock that we hold, too.
  static Names withoutOwnLock(Names names) {
    names.erase(std::remove(names.begin(), names.end(), "fan.optstudy.lock"), names.end());
    return names;
  }
  // Kills the work at every renaming. Afterwards its target is there or can be made, and nothing else is left.
  void killAtEachRenaming(const std::function<bool(std::string &)> &work) {
    fill();
    int ends = 0;
    for (int ordinal = 1; ordinal < 10; ++ordinal) {
      SCOPED_TRACE(ordinal);
      const std::string name = "next" + std::to_string(ordinal);
      target = folder.path(name + ".optstudy");
      const Names before = entries();
      const int answer = inChild([&work, ordinal] {
        FaultyRenames faults;
        faults.endAt(ordinal);
        std::string ignored;
        return work(ignored) ? 0 : 1;
      });
      if (!fs::exists(target)) {
        EXPECT_TRUE(project->backup(target, problem)) << problem;
      }
      expectTarget();
      Names expected = withoutOwnLock(before);
      expected.insert(expected.end(), {name + ".optstudy", name + ".results"});
      EXPECT_EQ(withoutOwnLock(entries()), expected);
      EXPECT_FALSE(fs::exists(folder.path(name + ".results/publishing")));
      if (answer == 0) {
        break;
      }
      EXPECT_EQ(answer, FaultyRenames::kEnded);
      ++ends;
    }
    // The results folder and the file get their names.
    EXPECT_EQ(ends, 2);
  }
  std::string unfinished(const char *kind, const char *ending = "") const {
    return file + kind + kRandom + ending;
  }
};

TEST_F(LeftoversTest, KilledSaveAs_DoesNotBlockItsName) {
  killAtEachRenaming([this](std::string &reason) { return project->saveAs(target, reason); });
}

TEST_F(LeftoversTest, KilledBackup_DoesNotBlockItsName) {
  killAtEachRenaming([this](std::string &reason) { return project->backup(target, reason); });
}

TEST_F(LeftoversTest, OpeningForWriting_ClearsUpAndOpeningForReadingDoesNot) {
  fill();
  closeProject();
  writeFile(unfinished(".new-"), "half");
  writeFile(unfinished(".new-", "-journal"), "half");
  fs::create_directories(unfinished(".new-", ".results") + "/inner");
  writeFile(unfinished(".upgrade-"), "half");
  writeFile(unfinished(".upgrade-", "-journal"), "half");
  fs::create_directories(folder.path("fan.results/publishing/") + kRandom);
  const Names before = entries();
  openCopy(OpenMode::ReadOnly).reset();
  EXPECT_EQ(entries(), before);
  openCopy(OpenMode::ReadWrite).reset();
  EXPECT_EQ(entries(), (Names{"fan.optstudy", "fan.results"}));
  EXPECT_FALSE(fs::exists(folder.path("fan.results/publishing")));
}

TEST_F(LeftoversTest, WhatIsOfAnotherNameOrForm_StaysWhereItIs) {
  fill();
  closeProject();
  const std::string far = folder.path("far");
  fs::create_directory(far);
  writeFile(far + "/precious", "keep");
  const Names kept = {folder.path("fan.other.new-0123456789abcdef"),
                      folder.path("an.optstudy.new-0123456789abcdef"),
                      file + ".new-0123456789abcde",
                      file + ".new-0123456789abcdeg",
                      file + ".new-0123456789abcdef.txt",
                      file + ".upgrade-0123456789abcdef.results",
                      file + ".format-1",
                      file + ".bak"};
  for (const std::string &path : kept) {
    writeFile(path, "keep");
  }
  // Links and what is of another kind than ours, too.
  fs::create_symlink(far + "/precious", unfinished(".new-"));
  fs::create_directory_symlink(far, unfinished(".new-", ".results"));
  fs::create_directory(unfinished(".upgrade-"));
  const Names before = entries();
  openCopy(OpenMode::ReadWrite).reset();
  EXPECT_EQ(entries(), before);
  for (const std::string &path : kept) {
    EXPECT_EQ(contentOf(path), "keep") << path;
  }
  EXPECT_EQ(contentOf(far + "/precious"), "keep");
}

TEST_F(LeftoversTest, LinksInUnfinishedResults_AreNotFollowed) {
  fill();
  closeProject();
  const std::string far = folder.path("far");
  fs::create_directory(far);
  writeFile(far + "/precious", "keep");
  fs::create_directory(unfinished(".new-", ".results"));
  fs::create_directory_symlink(far, unfinished(".new-", ".results") + "/link");
  openCopy(OpenMode::ReadWrite).reset();
  EXPECT_FALSE(fs::exists(unfinished(".new-", ".results")));
  EXPECT_EQ(contentOf(far + "/precious"), "keep");
}

TEST_F(LeftoversTest, ResultsOfAProjectThatWasMovedAway_AreNotTakenForLeftovers) {
  fill();
  closeProject();
  // Killed after it got its name, before its results folder was told; then only read and moved by hand.
  fs::create_directories(folder.path("fan.results/publishing/") + kRandom);
  fs::rename(file, folder.path("elsewhere"));
  const auto other = Project::create(testSchema());
  EXPECT_FALSE(other->saveAs(file, problem));
  EXPECT_EQ(problem,
            "There is a results folder " + folder.path("fan.results") + " of another project already.");
  EXPECT_TRUE(fs::exists(folder.path("fan.results/publishing")));
}

TEST_F(LeftoversTest, WhileAnotherProcessIsAtWork_NothingOfItIsRemoved) {
  fill();
  int ready[2] = {};
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    FaultyRenames faults;
    faults.pauseAt(1, ready[1]);
    std::string ignored;
    project->backup(target, ignored);
    _exit(1);
  }
  char signalled = 0;
  ASSERT_EQ(read(ready[0], &signalled, 1), 1);
  const Names before = entries();
  EXPECT_FALSE(project->backup(target, problem));
  EXPECT_EQ(
      problem.rfind("The project " + target + " is open in process " + std::to_string(child) + " on ", 0), 0U)
      << problem;
  // Another name with the same results folder is no way round it.
  EXPECT_FALSE(project->backup(folder.path("next.other"), problem));
  EXPECT_EQ(entries(), before);
  EXPECT_EQ(before.size(), 7U);
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  close(ready[0]);
  close(ready[1]);
  EXPECT_TRUE(project->backup(target, problem)) << problem;
  expectTarget();
  EXPECT_EQ(entries(),
            (Names{"fan.optstudy", "fan.optstudy.lock", "fan.results", "next.optstudy", "next.results"}));
}

} // namespace
} // namespace EmbeddedHost
