#include "EmbeddedHost/tests/ProjectFixture.h"

#include <filesystem>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;

/// The folders of versions, when a project is saved, moved, closed and opened.
class VersionFolderTest : public ProjectTest {};

TEST_F(VersionFolderTest, MovedProject_GoesOnWithItsResults) {
  saveAs();
  writeFile(project->versionFolder(*base, true) + "/result.txt", "42");
  project.reset();
  std::filesystem::create_directory(folder.path("moved"));
  std::filesystem::rename(file, folder.path("moved/fan.optstudy"));
  std::filesystem::rename(folder.path("fan.results"), folder.path("moved/fan.results"));
  file = folder.path("moved/fan.optstudy");
  const auto other = openCopy();
  EXPECT_EQ(contentOf(other->versionFolder(*other->rootVersion(), false) + "/result.txt"), "42");
  EXPECT_EQ(contentOf(file).find(folder.path()), std::string::npos);
}

TEST_F(VersionFolderTest, DestroyedVersion_LosesItsFolderWhenThatIsSaved) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  EXPECT_TRUE(std::filesystem::exists(results));
  save();
  EXPECT_FALSE(std::filesystem::exists(results));
}

TEST_F(VersionFolderTest, RemovalThatWasInterrupted_IsFinishedAtTheNextOpening) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  save();
  // As if the program had ended before it came to the folder.
  std::filesystem::create_directories(results);
  std::filesystem::create_directories(folder.path("fan.results/unfinished/half"));
  project.reset();
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM removed_folder"), 1);
  openCopy(OpenMode::ReadOnly);
  EXPECT_TRUE(std::filesystem::exists(results));
  openCopy(OpenMode::ReadWrite);
  EXPECT_FALSE(std::filesystem::exists(results));
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.results/unfinished")));
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM removed_folder"), 0);
}

TEST_F(VersionFolderTest, RemovalThatFails_IsNotForgottenByTheNextSave) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  bool destroyed = false;
  tree.destroyVersion(next, nullptr, destroyed);
  save();
  std::filesystem::create_directories(results);
  set(partA, "Count", "7");
  save();
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM removed_folder"), 1);
  std::filesystem::remove(results);
  set(partA, "Count", "8");
  save();
  EXPECT_EQ(Database(file, Database::Access::ReadOnly).number("SELECT count(*) FROM removed_folder"), 0);
}

TEST_F(VersionFolderTest, FolderOfALivingVersionAmongTheRemoved_IsRefusedAndKept) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  const std::string results = project->versionFolder(*next, true);
  const std::string name = std::filesystem::path(results).filename().string();
  project.reset();
  for (const std::string &stored : {"'" + name + "'", "CAST('" + name + "' AS BLOB)"}) {
    Database(file, Database::Access::ReadWrite)
        .execute(("DELETE FROM removed_folder; INSERT INTO removed_folder VALUES (" + stored + ")").c_str());
    for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
      std::string problem;
      EXPECT_EQ(Project::open(file, mode, problem), nullptr);
      EXPECT_EQ(problem, "The project " + file +
                             " is damaged: it holds a removed folder that a version has: " + name + ".");
      EXPECT_TRUE(std::filesystem::exists(results));
    }
  }
}

TEST_F(VersionFolderTest, FolderOfTwoVersions_IsRefused) {
  follow(base, "V");
  saveAs();
  project.reset();
  Database(file, Database::Access::ReadWrite)
      .execute("UPDATE version SET folder = (SELECT folder FROM version WHERE label = 'Base')");
  std::string problem;
  EXPECT_EQ(Project::open(file, OpenMode::ReadWrite, problem), nullptr);
  EXPECT_EQ(problem, "The project " + file + " is damaged: it holds a folder of two versions (version 2).");
}

TEST_F(VersionFolderTest, VersionThatWasNeverSaved_LeavesNoFolder) {
  saveAs();
  ModelVersion *next = follow(base, "V");
  const std::string results = project->versionFolder(*next, true);
  EXPECT_TRUE(std::filesystem::exists(results));
  project.reset();
  EXPECT_FALSE(std::filesystem::exists(results));
}

} // namespace
} // namespace EmbeddedHost
