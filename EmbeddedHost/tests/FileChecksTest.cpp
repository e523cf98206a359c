#include "EmbeddedHost/tests/ProjectFixture.h"

#include <filesystem>
#include <functional>
#include <sys/stat.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

/// What lies beside a project's file, or beside the name that a new one is to get.
class FileChecksTest : public ProjectTest {
protected:
  std::string problem;

  void makeFile() {
    set(partA, "Note", std::string(20000, 'x'));
    saveAs();
  }
};

TEST_F(FileChecksTest, JournalOfAProjectThatIsGone_KeepsANewOneFromItsName) {
  makeFile();
  closeProject();
  interruptAChange();
  fs::remove(file);
  const std::string journal = contentOf(file + "-journal");

  const auto other = Project::create(testSchema());
  EXPECT_FALSE(other->saveAs(file, problem));

  EXPECT_EQ(problem, "Beside the project " + file + " lies " + file +
                         "-journal, which belongs to a project that is gone; move it away.");
  EXPECT_FALSE(fs::exists(file));
  EXPECT_FALSE(fs::exists(file + ".lock"));
  EXPECT_EQ(contentOf(file + "-journal"), journal);
  fs::rename(file + "-journal", folder.path("kept"));
  EXPECT_TRUE(other->saveAs(file, problem)) << problem;
}

TEST_F(FileChecksTest, AnythingLeftBesideTheNameOfANewProject_IsRefusedAndKept) {
  for (const char *ending : {"-journal", "-wal", "-shm"}) {
    const std::string left = file + ending;
    writeFile(left, "kept");
    EXPECT_FALSE(project->saveAs(file, problem));
    EXPECT_EQ(problem, "Beside the project " + file + " lies " + left +
                           ", which belongs to a project that is gone; move it away.");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(contentOf(left), "kept");
    fs::remove(left);
    fs::create_symlink(folder.path("nowhere"), left);
    EXPECT_FALSE(project->saveAs(file, problem)) << left;
    fs::remove(left);
  }
  EXPECT_TRUE(project->saveAs(file, problem)) << problem;
}

TEST_F(FileChecksTest, LogOfAnotherWayOfSaving_IsRefusedAndNeverBecomesContent) {
  makeFile();
  closeProject();
  {
    // The same project, changed by somebody who keeps a log instead of a journal.
    const std::string copy = folder.path("copy");
    fs::copy_file(file, copy);
    Database other(copy, Database::Access::ReadWrite);
    other.execute("PRAGMA journal_mode = WAL");
    other.execute("UPDATE version SET label = 'of somebody else'");
    fs::copy_file(copy + "-wal", file + "-wal");
  }
  const std::string content = contentOf(file);
  const std::string log = contentOf(file + "-wal");
  ASSERT_GT(log.size(), 1000U);
  const std::string refusal =
      "Beside the project " + file + " lies " + file +
      "-wal, which is not of this program and would change what the project holds; move it away.";
  EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly), refusal);
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), refusal);
  EXPECT_EQ(contentOf(file), content);
  EXPECT_EQ(contentOf(file + "-wal"), log);
  EXPECT_FALSE(fs::exists(file + "-shm"));
  EXPECT_FALSE(fs::exists(file + ".lock"));
  fs::remove(file + "-wal");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), "");
}

TEST_F(FileChecksTest, WhatIsNoFileInPlaceOfTheJournal_IsRefusedWithoutWaiting) {
  makeFile();
  closeProject();
  const std::string journal = file + "-journal";
  writeFile(folder.path("precious"), "keep");
  const std::function<void()> layouts[] = {
      [&] { ASSERT_EQ(mkfifo(journal.c_str(), 0600), 0); },
      [&] { fs::create_symlink(folder.path("precious"), journal); },
      [&] { fs::create_symlink(folder.path("nowhere"), journal); },
      [&] { fs::create_directory(journal); },
  };
  const std::string refusal =
      "Beside the project " + file + " lies " + journal + ", which is no journal; move it away.";
  for (const std::function<void()> &layOut : layouts) {
    layOut();
    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
      EXPECT_EQ(inChild([&] { return problemOfOpening(mode) == refusal ? 0 : 1; }), 0);
    }
    EXPECT_TRUE(fs::exists(fs::symlink_status(journal)));
    fs::remove(journal);
  }
  EXPECT_EQ(contentOf(folder.path("precious")), "keep");
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), "");
}

} // namespace
} // namespace EmbeddedHost
