#include "EmbeddedHost/src/project/DatabaseCopy.h"
#include "EmbeddedHost/src/project/ProjectFormat.h"
#include "EmbeddedHost/tests/FaultyRenames.h"
#include "EmbeddedHost/tests/FixtureProject.h"

#include <filesystem>
#include <sys/stat.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

/// Projects that were saved by programs of other formats.
class UpgradeTest : public FixtureProjectTest {
protected:
  static std::string needs(const std::string &path) {
    Database database(path, Database::Access::ReadOnly);
    Statement row = database.prepare("SELECT value FROM property WHERE key = 'needs'");
    return row.step() ? std::string(row.text(0)) : "(nothing)";
  }
  static std::int64_t formatIn(const std::string &path) {
    return Database(path, Database::Access::ReadOnly).number("PRAGMA user_version");
  }
  static Names tablesOf(Database &database) {
    Names tables;
    Statement rows = database.prepare("SELECT sql FROM sqlite_schema WHERE sql IS NOT NULL ORDER BY name");
    while (rows.step()) {
      tables.emplace_back(rows.text(0));
    }
    return tables;
  }
};

TEST_F(UpgradeTest, EveryFormat_IsOpenedWithEveryValue_SavedAndReopened) {
  for (int format = 1; format <= kFormatVersion; ++format) {
    SCOPED_TRACE(format);
    build(format);
    {
      const auto opened = openCopy(OpenMode::ReadWrite);
      expectContent(*opened);
      EXPECT_FALSE(opened->needsSave());
      EXPECT_TRUE(opened->setValue(part(*opened, 0), "Note", "changed"));
      std::string problem;
      ASSERT_TRUE(opened->save(problem)) << problem;
      EXPECT_TRUE(opened->setValue(part(*opened, 0), "Note", "noted"));
      ASSERT_TRUE(opened->save(problem)) << problem;
    }
    EXPECT_EQ(needs(file), "0.1");
    EXPECT_EQ(formatIn(file), 2);
    expectContent(*openCopy(OpenMode::ReadOnly));
    expectContent(*openCopy(OpenMode::ReadWrite));
  }
}

TEST_F(UpgradeTest, NewestFixture_HasTheTablesThatAreMadeToday) {
  build(kFormatVersion);
  Database made(kInMemory, Database::Access::Create);
  createTables(made);
  Database saved(file, Database::Access::ReadOnly);
  EXPECT_EQ(tablesOf(saved), tablesOf(made));
  EXPECT_EQ(tablesOf(made).size(), 9U);
  EXPECT_EQ(saved.number("PRAGMA user_version"), made.number("PRAGMA user_version"));
  EXPECT_EQ(saved.number("PRAGMA application_id"), made.number("PRAGMA application_id"));
}

TEST_F(UpgradeTest, OpeningForWriting_KeepsTheFormerFileAndItsPermissions) {
  build(1);
  fs::permissions(file, fs::perms(0640));
  const auto before = fs::status(file).permissions();
  openCopy(OpenMode::ReadWrite).reset();
  EXPECT_EQ(entries(), (Names{"fan.optstudy", "fan.optstudy.format-1"}));
  EXPECT_EQ(formatIn(file), 2);
  EXPECT_EQ(formatIn(file + ".format-1"), 1);
  EXPECT_EQ(needs(file + ".format-1"), "(nothing)");
  for (const std::string &path : {file, file + ".format-1"}) {
    EXPECT_EQ(fs::status(path).permissions(), before) << path;
    EXPECT_EQ(fs::hard_link_count(path), 1U) << path;
  }
  // Taken back by hand, it is what it was.
  fs::rename(file + ".format-1", file);
  expectContent(*openCopy(OpenMode::ReadOnly));
}

TEST_F(UpgradeTest, FormerFileOfAnEarlierUpgrade_IsNotReplaced) {
  build(1);
  writeFile(file + ".format-1", "precious");
  openCopy(OpenMode::ReadWrite).reset();
  EXPECT_EQ(contentOf(file + ".format-1"), "precious");
  EXPECT_EQ(formatIn(file + ".format-1-2"), 1);
}

TEST_F(UpgradeTest, OpeningForReading_TouchesNothing) {
  build(1);
  const std::string before = contentOf(file);
  fs::permissions(file, fs::perms(0444));
  fs::permissions(folder.path(), fs::perms(0555));
  const int answer = asOrdinaryUser([this] {
    if (!problemOfOpening(OpenMode::ReadOnly).empty()) {
      return 1;
    }
    expectContent(*openCopy());
    return HasFailure() ? 2 : 0;
  });
  fs::permissions(folder.path(), fs::perms(0755));
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(entries(), (Names{"fan.optstudy"}));
}

TEST_F(UpgradeTest, FileThatCannotBeWritten_IsRefusedForWritingAndStaysAsItIs) {
  build(1);
  const std::string before = contentOf(file);
  fs::permissions(file, fs::perms(0444));
  fs::permissions(folder.path(), fs::perms(0777));
  const int answer = asOrdinaryUser([this] {
    const std::string expected =
        "The project " + file + " cannot be written; it can be opened for reading only.";
    return problemOfOpening(OpenMode::ReadWrite) == expected ? 0 : 1;
  });
  EXPECT_EQ(answer, 0);
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(entries(), (Names{"fan.optstudy"}));
}

TEST_F(UpgradeTest, DamagedOlderProject_IsRefusedAndStaysAsItIs) {
  build(1);
  alter(file, "UPDATE version SET folder = '../../etc' WHERE label = 'Copy'");
  const std::string before = contentOf(file);
  const std::string expected =
      "The project " + file + " is damaged: it holds a version without place (version 2).";
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), expected);
  EXPECT_EQ(problemOfOpening(OpenMode::ReadOnly), expected);
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(entries(), (Names{"fan.optstudy"}));
}

TEST_F(UpgradeTest, JournalOfAnInterruptedSave_IsPlayedBackFirst) {
  build(1);
  // Large enough that the interrupted change has reached the file.
  alter(file, "INSERT INTO text VALUES (20, 'Remark');"
              "INSERT INTO value VALUES (2, 2, 20, hex(zeroblob(20000)), NULL)");
  const std::string before = contentOf(file);
  interruptAChange();
  EXPECT_NE(contentOf(file), before);
  openCopy(OpenMode::ReadWrite).reset();
  expectContent(*openCopy());
  EXPECT_EQ(entries(), (Names{"fan.optstudy", "fan.optstudy.format-1"}));
}

TEST_F(UpgradeTest, KilledAtEachRenaming_LeavesOneOfTheTwoAndNothingElseAfterTheNextOpening) {
  int ends = 0;
  for (int ordinal = 1; ordinal < 10; ++ordinal) {
    SCOPED_TRACE(ordinal);
    fs::remove(file + ".format-1");
    build(1);
    const int answer = inChild([this, ordinal] {
      FaultyRenames faults;
      faults.endAt(ordinal);
      std::string problem;
      return Project::open(file, OpenMode::ReadWrite, problem) == nullptr ? 1 : 0;
    });
    expectContent(*openCopy(OpenMode::ReadOnly));
    expectContent(*openCopy(OpenMode::ReadWrite));
    EXPECT_EQ(formatIn(file), 2);
    EXPECT_EQ(formatIn(file + ".format-1"), 1);
    EXPECT_EQ(entries(), (Names{"fan.optstudy", "fan.optstudy.format-1"}));
    if (answer == 0) {
      break;
    }
    EXPECT_EQ(answer, FaultyRenames::kEnded);
    ++ends;
  }
  // The new file gets the name, the former one is named.
  EXPECT_EQ(ends, 2);
}

TEST_F(UpgradeTest, FailedRenaming_LeavesTheOldProjectAndNothingElse) {
  build(1);
  const std::string before = contentOf(file);
  FaultyRenames faults;
  faults.fail({1}, EIO);
  const std::string problem = problemOfOpening(OpenMode::ReadWrite);
  EXPECT_EQ(problem.rfind("The project " + file +
                              " is of an older format and cannot be brought to the present one: " + file +
                              ".upgrade-",
                          0),
            0U)
      << problem;
  EXPECT_NE(problem.find(" cannot be renamed to " + file + ": Input/output error."), std::string::npos)
      << problem;
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(entries(), (Names{"fan.optstudy"}));
}

TEST_F(UpgradeTest, NewerFormat_IsRefusedNamingTheProgramThatItNeeds) {
  build(2);
  alter(file, "UPDATE property SET value = '0.4' WHERE key = 'needs'; PRAGMA user_version = 7");
  const std::string before = contentOf(file);
  for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
    EXPECT_EQ(
        problemOfOpening(mode),
        "The file " + file +
            " was made by a newer program: it needs optstudy 0.4 or later (format 7; this program knows "
            "format 2).");
  }
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(entries(), (Names{"fan.optstudy"}));
}

TEST_F(UpgradeTest, NewerFormatThatSaysNothingReadable_IsRefusedNamingTheFormat) {
  const std::string expected = "The file " + file +
                               " was written by a newer version of this program: its format is 7, known "
                               "here is 2.";
  for (const char *change : {"DELETE FROM property", "DROP TABLE property",
                             "UPDATE property SET value = 'rm -rf' WHERE key = 'needs'",
                             "UPDATE property SET value = '1.2.3.4.5.6.7.8.9.10.11' WHERE key = 'needs'"}) {
    build(2);
    alter(file, std::string(change) + "; PRAGMA user_version = 7");
    EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite), expected) << change;
  }
}

} // namespace
} // namespace EmbeddedHost
