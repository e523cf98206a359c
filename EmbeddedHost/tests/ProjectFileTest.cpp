#include "EmbeddedHost/src/project/Database.h"
#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/tests/ModelFixture.h"

#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <random>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

class ProjectFileTest : public ModelTest {
protected:
  TestFolder folder;
  std::string file = folder.path("fan.optstudy");

  void makeFile() {
    EntityModel::ModelVersion *copy = follow(project->rootVersion(), "Copy");
    for (int index = 0; index < 40; ++index) {
      show(alternate(copy, "Row " + std::to_string(index)));
      set(partA, "Count", std::to_string(index));
      set(partA, "Note", std::string(200, 'x'));
    }
    std::string problem;
    ASSERT_TRUE(project->saveAs(file, problem)) << problem;
  }
  void closeProject() { project.reset(); }

  std::string problemOf(const std::string &path, OpenMode mode = OpenMode::ReadWrite) {
    std::string problem;
    const auto opened = Project::open(path, mode, problem);
    EXPECT_EQ(opened == nullptr, !problem.empty());
    return problem;
  }
  std::string problemOfFile(const std::string &content) {
    const std::string path = folder.path("tested");
    writeFile(path, content);
    std::string problem = problemOf(path);
    EXPECT_EQ(contentOf(path), content);
    EXPECT_FALSE(std::filesystem::exists(path + "-journal"));
    EXPECT_FALSE(std::filesystem::exists(path + "-wal"));
    EXPECT_FALSE(std::filesystem::exists(path + ".lock"));
    return problem;
  }
  static void setNumber(std::string &content, std::size_t offset, std::uint32_t number) {
    for (std::size_t byte = 0; byte < 4; ++byte) {
      content[offset + byte] = static_cast<char>((number >> (24U - 8U * byte)) & 0xFFU);
    }
  }
};

TEST_F(ProjectFileTest, MissingFilesAndFolders_AreRefused) {
  EXPECT_EQ(problemOf(file), "The project " + file + " cannot be opened: No such file or directory.");
  EXPECT_EQ(problemOf(folder.path()), folder.path() + " is no file.");
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(problemOf(folder.path("pipe")), folder.path("pipe") + " is no file.");
}

TEST_F(ProjectFileTest, ForeignFiles_AreRefusedAndNotTouched) {
  const std::string refusal = "The file " + folder.path("tested") + " is no project.";
  EXPECT_EQ(problemOfFile(""), refusal);
  EXPECT_EQ(problemOfFile("hello"), refusal);
  EXPECT_EQ(problemOfFile(std::string(5000, 'a')), refusal);
  {
    Database database(folder.path("foreign"), Database::Access::Create);
    database.execute("CREATE TABLE t (a); INSERT INTO t VALUES (1)");
  }
  EXPECT_EQ(problemOfFile(contentOf(folder.path("foreign"))), refusal);
}

TEST_F(ProjectFileTest, NewerFormat_IsRefusedNamingIt) {
  makeFile();
  std::string content = contentOf(file);
  setNumber(content, 60, 7);
  EXPECT_EQ(problemOfFile(content),
            "The file " + folder.path("tested") +
                " was made by a newer program: it needs optstudy 0.1 or later (format 7; this "
                "program knows format 2).");
}

TEST_F(ProjectFileTest, HeaderOfAnotherJournal_IsRefusedWithoutMakingOne) {
  makeFile();
  std::string content = contentOf(file);
  content[18] = 2;
  content[19] = 2;
  EXPECT_EQ(problemOfFile(content),
            "The file " + folder.path("tested") + " is damaged: its header contradicts itself.");
}

TEST_F(ProjectFileTest, ContradictingContent_IsRefused) {
  makeFile();
  closeProject();
  const char *const damages[] = {
      "DELETE FROM version WHERE label = 'Base'",
      "DELETE FROM version WHERE label = 'Copy'; DELETE FROM version WHERE previous IS NULL",
      "UPDATE version SET previous = number + 1 WHERE label = 'Copy'",
      "UPDATE version SET folder = '../../etc' WHERE label = 'Copy'",
      "UPDATE version SET case_flags = 'x' WHERE label = 'Copy'",
      "UPDATE entity SET type = 'Unknown' WHERE name = 'A'",
      "DELETE FROM entity WHERE number = 1",
      "DELETE FROM property WHERE key = 'current_version'",
      "UPDATE property SET value = 99 WHERE key = 'current_version'",
      "UPDATE property SET value = -1 WHERE key = 'next_version'",
      "UPDATE text SET text = 'Nothing' WHERE text = 'Count'",
      "DELETE FROM text",
      "UPDATE text SET text = 'W/m2K' WHERE text = 'Note'; DELETE FROM type",
      "UPDATE member SET kind = 99 WHERE label = 'Count'",
      "UPDATE member SET parent = 9999 WHERE label = 'Count'",
      "UPDATE member SET standard_unit = 'nonsense' WHERE label = 'Width'",
      "INSERT INTO value VALUES (99, 1, 1, 1, NULL)",
      "INSERT INTO value SELECT 1, number, 99, 1, NULL FROM entity WHERE name = 'A'",
      "DROP TABLE run; DROP TABLE value",
  };
  for (const char *damage : damages) {
    const std::string path = folder.path("tested");
    std::filesystem::copy_file(file, path, std::filesystem::copy_options::overwrite_existing);
    {
      Database database(path, Database::Access::ReadWrite);
      database.execute(damage);
    }
    const std::string problem = problemOfFile(contentOf(path));
    EXPECT_NE(problem, "") << damage;
  }
}

TEST_F(ProjectFileTest, EntitiesThatOwnEachOther_AreNoEndlessLoop) {
  EntityModel::Entity *inner = project->createEntity("Part", partA, "Parts", "Inner");
  project->createEntity("Part", inner, "Parts", "Innermost");
  makeFile();
  closeProject();
  {
    // The inner part owns the part that it is in.
    Database database(file, Database::Access::ReadWrite);
    database.execute("UPDATE value SET value = (SELECT number FROM entity WHERE name = 'A') || '+' "
                     "WHERE entity = (SELECT number FROM entity WHERE name = 'Inner') AND value LIKE '%+'");
  }
  std::string problem;
  const auto opened = Project::open(file, OpenMode::ReadOnly, problem);
  ASSERT_NE(opened, nullptr) << problem;
  EXPECT_NE(opened->rootEntity()->getName(true), "");
}

TEST_F(ProjectFileTest, RandomDamage_IsRefusedOrOpened_NeverAWrite) {
  makeFile();
  closeProject();
  const std::string sound = contentOf(file);
  std::mt19937 random(7);
  int refused = 0;
  for (int trial = 0; trial < 200; ++trial) {
    std::string content = sound;
    const std::size_t place = random() % content.size();
    if (trial % 3 == 0) {
      content.resize(place);
    } else if (trial % 3 == 1) {
      for (int flips = 0; flips < 8; ++flips) {
        char &byte = content[random() % content.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << random() % 8U));
      }
    } else {
      const std::size_t page = place / 4096 * 4096;
      std::fill_n(content.begin() + static_cast<std::ptrdiff_t>(page), 4096, '\0');
    }
    const std::string path = folder.path("tested");
    writeFile(path, content);
    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
      std::string problem;
      const auto opened = Project::open(path, mode, problem);
      EXPECT_EQ(opened == nullptr, !problem.empty());
      refused += opened == nullptr ? 1 : 0;
    }
    EXPECT_EQ(contentOf(path), content) << trial;
  }
  EXPECT_GT(refused, 100);
}

TEST_F(ProjectFileTest, SecondWriter_IsToldWhoHoldsTheProject_AndMayRead) {
  makeFile();
  const std::string expected =
      "The project " + file + " is open in process " + std::to_string(getpid()) + " on ";
  const std::string problem = problemOf(file);
  EXPECT_EQ(problem.substr(0, expected.size()), expected);
  EXPECT_NE(problem.find("; until it is closed there it can be opened for reading only."), std::string::npos);
  EXPECT_EQ(problemOf(file, OpenMode::ReadOnly), "");
  closeProject();
  EXPECT_EQ(problemOf(file), "");
  EXPECT_FALSE(std::filesystem::exists(file + ".lock"));
}

TEST_F(ProjectFileTest, WriterUnderAnotherName_IsHeldOffToo) {
  makeFile();
  std::filesystem::create_symlink(file, folder.path("link.optstudy"));
  EXPECT_NE(problemOf(folder.path("link.optstudy")), "");
}

TEST_F(ProjectFileTest, LockOfAKilledProcess_NeedsNoUnlocking) {
  makeFile();
  closeProject();
  int ready[2] = {};
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    std::string problem;
    const auto held = Project::open(file, OpenMode::ReadWrite, problem);
    const char answer = held == nullptr ? 'n' : 'y';
    [[maybe_unused]] const ssize_t written = write(ready[1], &answer, 1);
    pause();
    _exit(0);
  }
  char answer = 0;
  ASSERT_EQ(read(ready[0], &answer, 1), 1);
  EXPECT_EQ(answer, 'y');
  EXPECT_NE(problemOf(file), "");
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  close(ready[0]);
  close(ready[1]);
  EXPECT_TRUE(std::filesystem::exists(file + ".lock"));
  EXPECT_EQ(problemOf(file), "");
}

TEST_F(ProjectFileTest, LockIsNotInheritedByProgramsThatAreStarted) {
  makeFile();
  std::size_t locks = 0;
  for (const auto &entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code error;
    const std::string target = std::filesystem::read_symlink(entry.path(), error).string();
    if (target == file || target == file + ".lock") {
      const int descriptor = std::stoi(entry.path().filename().string());
      EXPECT_NE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, 0) << target;
      ++locks;
    }
  }
  EXPECT_GE(locks, 1U);
}

TEST_F(ProjectFileTest, LinkInPlaceOfTheLock_IsNotFollowed) {
  makeFile();
  closeProject();
  writeFile(folder.path("precious"), "keep");
  std::filesystem::create_symlink(folder.path("precious"), file + ".lock");
  EXPECT_NE(problemOf(file), "");
  EXPECT_EQ(contentOf(folder.path("precious")), "keep");
}

TEST_F(ProjectFileTest, ReadOnlyProject_IsNotSavedButSavedAs) {
  makeFile();
  closeProject();
  const std::string before = contentOf(file);
  std::string problem;
  const auto opened = Project::open(file, OpenMode::ReadOnly, problem);
  ASSERT_NE(opened, nullptr) << problem;
  EXPECT_TRUE(opened->isReadOnlyProject());
  EXPECT_TRUE(opened->setValue(opened->rootEntity(), "Title", "New"));
  EXPECT_FALSE(opened->save(problem));
  EXPECT_EQ(problem, "The project " + file + " was opened for reading only.");
  EXPECT_EQ(opened->versionFolder(*opened->rootVersion(), true).find(folder.path("fan.results/")), 0U);
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.results")));
  EXPECT_EQ(contentOf(file), before);
  EXPECT_TRUE(opened->saveAs(folder.path("other.optstudy"), problem)) << problem;
  EXPECT_FALSE(opened->isReadOnlyProject());
  EXPECT_EQ(contentOf(file), before);
}

TEST_F(ProjectFileTest, FailedSave_LeavesTheFileAndTheProjectAsTheyWere) {
  makeFile();
  set(partA, "Note", "unsaved");
  std::string problem;
  {
    // Another program that does not know the lock holds the database for as long as this lives.
    Database busy(file, Database::Access::ReadWrite);
    busy.execute("BEGIN EXCLUSIVE");
    project->parts().file->database().setLongestWaitToWrite(std::chrono::milliseconds(100));
    EXPECT_FALSE(project->save(problem));
    EXPECT_EQ(problem, "The project " + file + " could not be saved: another program keeps it locked.");
    EXPECT_TRUE(project->needsSave());
    busy.execute("ROLLBACK");
  }
  EXPECT_TRUE(project->save(problem)) << problem;
  EXPECT_FALSE(project->needsSave());
}

TEST_F(ProjectFileTest, InterruptedSave_IsUndoneAtTheNextOpening) {
  makeFile();
  closeProject();
  const std::string before = contentOf(file);
  const pid_t child = fork();
  if (child == 0) {
    Database database(file, Database::Access::ReadWrite);
    database.execute("PRAGMA cache_size = 1");
    database.execute("BEGIN IMMEDIATE");
    database.execute("UPDATE value SET value = 'half done'");
    kill(getpid(), SIGKILL);
  }
  int status = 0;
  waitpid(child, &status, 0);
  ASSERT_TRUE(std::filesystem::exists(file + "-journal"));
  EXPECT_NE(contentOf(file), before);
  EXPECT_EQ(problemOf(file), "");
  EXPECT_EQ(contentOf(file).size(), before.size());
  std::string problem;
  const auto opened = Project::open(file, OpenMode::ReadOnly, problem);
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(opened->versions().size(), 42U);
}

} // namespace
} // namespace EmbeddedHost
