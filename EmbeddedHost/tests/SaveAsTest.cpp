#include "EmbeddedHost/src/project/ProjectFile.h"
#include "EmbeddedHost/tests/FaultyRenames.h"
#include "EmbeddedHost/tests/ProjectFixture.h"

#include <cerrno>
#include <filesystem>
#include <set>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;
using Names = std::vector<std::string>;

/// Files that a project is to move into.
class SaveAsTest : public ProjectTest {};

TEST_F(SaveAsTest, SaveAs_RefusesExistingFilesAndSharedResults) {
  saveAs();
  std::string problem;
  EXPECT_FALSE(project->saveAs(file, problem));
  EXPECT_EQ(problem, "There is a file " + file + " already.");
  EXPECT_FALSE(project->saveAs(folder.path("fan.other"), problem));
  EXPECT_EQ(problem, "Two projects cannot share the results folder " + folder.path("fan.results") +
                         "; choose another name.");
  EXPECT_FALSE(project->saveAs(folder.path("no/such/folder.optstudy"), problem));
  EXPECT_EQ(project->file(), file);
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.other")));
}

TEST_F(SaveAsTest, NameWhoseResultsWouldBeThoseOfASibling_IsRefused) {
  saveAs();
  const auto other = Project::create(testSchema());
  std::string problem;
  const std::string refusal =
      "Two projects cannot share the results folder " + folder.path("fan.results") + "; choose another name.";
  for (const char *name : {"fan.other", "fan"}) {
    EXPECT_FALSE(other->saveAs(folder.path(name), problem));
    EXPECT_EQ(problem, refusal);
    EXPECT_FALSE(std::filesystem::exists(folder.path(name)));
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path("fan.results.lock")));
  // Only projects count, and only those with the very same folder.
  EXPECT_TRUE(other->saveAs(folder.path("fan.other.optstudy"), problem)) << problem;
  writeFile(folder.path("notes.txt"), "SQLite format 3");
  EXPECT_TRUE(other->saveAs(folder.path("notes.optstudy"), problem)) << problem;
}

TEST_F(SaveAsTest, FailureAfterTheResultsGotTheirPlace_TakesThemBackAndNothingElse) {
  saveAs();
  writeFile(project->versionFolder(*base, true) + "/result.txt", "42");
  FaultyRenames faults;
  faults.fail({2}, EIO);
  std::string problem;
  EXPECT_FALSE(project->saveAs(folder.path("next.optstudy"), problem));
  EXPECT_NE(problem.find("cannot be renamed to " + folder.path("next.optstudy") + ": Input/output error."),
            std::string::npos)
      << problem;
  EXPECT_EQ(project->file(), file);
  std::set<std::string> left;
  for (const auto &entry : std::filesystem::directory_iterator(folder.path())) {
    left.insert(entry.path().filename().string());
  }
  EXPECT_EQ(left, (std::set<std::string>{"fan.optstudy", "fan.optstudy.lock", "fan.results"}));
  EXPECT_EQ(contentOf(project->versionFolder(*base, false) + "/result.txt"), "42");
}

TEST_F(SaveAsTest, SaveAs_MovesOnWithACopyOfEverything) {
  ModelVersion *next = follow(base, "V");
  saveAs();
  writeFile(project->versionFolder(*next, true) + "/result.txt", "42");
  std::string problem;
  ASSERT_TRUE(project->recordRun(*next, {RunStatus::Ok, "", {"key"}, 1, 2.0, {}, 0, "", ""}, {}, problem))
      << problem;
  set(partA, "Count", "9");
  const std::string second = folder.path("second.optstudy");

  ASSERT_TRUE(project->saveAs(second, problem)) << problem;

  EXPECT_EQ(project->file(), second);
  EXPECT_EQ(contentOf(project->versionFolder(*next, false) + "/result.txt"), "42");
  EXPECT_EQ(project->versionFolder(*next, false).rfind(folder.path("second.results/"), 0), 0U);
  EXPECT_EQ(project->runRecord(*next).keys, (Names{"key"}));
  const auto old = openCopy(OpenMode::ReadWrite);
  EXPECT_EQ(old->attribute(part(*old, 0), "Count")->getValueAsString(), "3");
  ModelVersion *oldNext = old->changeManager().findVersion("V", nullptr);
  EXPECT_EQ(contentOf(old->versionFolder(*oldNext, false) + "/result.txt"), "42");
}

TEST_F(SaveAsTest, SaveAs_FromAFolderThatIsGone_IsRefused) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::create_directory(folder.path("gone"));
  std::filesystem::current_path(folder.path("gone"));
  std::filesystem::remove(folder.path("gone"));
  std::string problem;
  EXPECT_FALSE(project->saveAs("fan.optstudy", problem));
  EXPECT_EQ(problem, "The folder of fan.optstudy cannot be used: No such file or directory.");
  EXPECT_EQ(Project::open("fan.optstudy", OpenMode::ReadWrite, problem), nullptr);
  EXPECT_EQ(problem, "The project fan.optstudy cannot be opened: No such file or directory.");
  std::filesystem::current_path(before);
}

TEST_F(SaveAsTest, SaveAs_NameThatIsTooLong_IsRefusedWithTheReason) {
  const std::string name = folder.path(std::string(300, 'a'));
  std::string problem;
  EXPECT_FALSE(project->saveAs(name, problem));
  EXPECT_EQ(problem, "The project " + name + " cannot be made: File name too long.");
}

TEST_F(SaveAsTest, NewFileThatCannotBeOpened_DoesNotStay) {
  std::string problem;
  const auto created = ProjectFile::create(
      NewProject::claim(file, problem),
      [this](Database &, TextTable &) { std::filesystem::create_directory(file + "-journal"); }, problem);
  EXPECT_EQ(created, nullptr);
  EXPECT_NE(problem, "");
  std::filesystem::remove(file + "-journal");
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(SaveAsTest, SaveAs_IntoAFolderThatCannotBeWrittenToTheDisk_LeavesNothing) {
  std::filesystem::create_directory(folder.path("drop"));
  std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
  std::filesystem::permissions(folder.path("drop"), std::filesystem::perms(0333));
  const std::string target = folder.path("drop/fan.optstudy");
  const int answer = asOrdinaryUser([&] {
    std::string problem;
    const bool isSaved = project->saveAs(target, problem);
    const std::string expected =
        "The folder " + folder.path("drop") + " cannot be written to the disk: Permission denied.";
    return !isSaved && problem == expected && project->file().empty() ? 0 : 1;
  });
  EXPECT_EQ(answer, 0);
  std::filesystem::permissions(folder.path("drop"), std::filesystem::perms(0755));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path("drop")));
}

} // namespace
} // namespace EmbeddedHost
