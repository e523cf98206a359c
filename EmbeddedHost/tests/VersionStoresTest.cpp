#include "EmbeddedHost/src/project/VersionStores.h"

#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/tests/ModelFixture.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <set>
#include <sys/stat.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;
using FileSystem::Directory;
using ProjectData::ProjectStore;

class VersionStoresTest : public ModelTest {
protected:
  TestFolder folder;
  std::string file = folder.path("fan.optstudy");
  std::string results = folder.path("fan.results");
  ModelVersion *base = project->rootVersion();
  ModelVersion *copy = follow(base, "Copy");

  VersionStoresTest() {
    std::string problem;
    if (!project->saveAs(file, problem)) {
      throw std::runtime_error(problem);
    }
  }

  std::string folderOf(ModelVersion *version) { return tree.getVersionFolder(version, false); }
  std::string fill(ModelVersion *version, const std::string &content) {
    std::string path = tree.getVersionFolder(version, true);
    fs::create_directories(path + "/inner");
    writeFile(path + "/result.txt", content);
    writeFile(path + "/inner/deep.txt", "deep " + content);
    return path;
  }
  bool copyResults(ModelVersion *from, ModelVersion *to, bool overwrite = true) {
    ProjectStore target(file, folderOf(to));
    return ProjectStore(file, folderOf(from)).copyResults(target, false, nullptr, overwrite);
  }
  std::string resultOf(ModelVersion *version) { return contentOf(folderOf(version) + "/result.txt"); }
};

TEST_F(VersionStoresTest, Folder_IsNamedByAnIdentifierThatNeverChanges) {
  const std::string before = folderOf(copy);
  EXPECT_EQ(fs::path(before).parent_path(), results);
  EXPECT_TRUE(isFolderName(fs::path(before).filename().string()));
  EXPECT_FALSE(fs::exists(before));
  EXPECT_EQ(tree.getVersionFolder(copy, true), before);
  EXPECT_TRUE(fs::is_directory(before));
  EXPECT_EQ(tree.getVersionFolder(nullptr, true), "");
  EXPECT_NE(folderOf(base), before);
}

TEST_F(VersionStoresTest, HostileLabels_AreOnlyLabels) {
  writeFile(folder.path("canary"), "alive");
  const std::string before = folderOf(copy);
  std::string everyByte;
  for (int byte = 1; byte < 256; ++byte) {
    everyByte += static_cast<char>(byte);
  }
  for (const std::string &label :
       {std::string(), std::string("."), std::string(".."), std::string("/etc"), std::string("../../canary"),
        std::string("a\nb"), std::string(300, 'x'), std::string("fan.optstudy"), std::string("~"), everyByte,
        std::string("nul\0byte", 8)}) {
    copy->setLabel(label);
    EXPECT_EQ(folderOf(copy), before);
    fill(copy, "x");
    EXPECT_TRUE(ProjectStore(file, folderOf(copy)).remove());
    std::string problem;
    EXPECT_TRUE(project->save(problem)) << problem;
    const auto other = Project::open(file, OpenMode::ReadOnly, problem);
    ASSERT_NE(other, nullptr) << problem;
    EXPECT_EQ(other->versions()[1]->getLabel(), label);
  }
  EXPECT_EQ(contentOf(folder.path("canary")), "alive");
  EXPECT_TRUE(fs::is_directory("/etc"));
}

TEST_F(VersionStoresTest, PathsOfAnyOtherForm_AreNotTouched) {
  const std::string precious = folder.path("fan.results/precious");
  fs::create_directories(precious);
  fs::create_directories(folder.path("0123456789abcdef"));
  for (const std::string &path :
       {std::string(), std::string("."), std::string("/"), folder.path(), results, precious, results + "/..",
        results + "/.", results + "/", folder.path("0123456789abcdef"), results + "/../0123456789abcdef",
        results + "/0123456789ABCDEF", results + "/0123456789abcdef/..",
        results + "/x/../0123456789abcdef"}) {
    ProjectStore store(file, path);
    EXPECT_FALSE(store.remove()) << path;
    EXPECT_EQ(store.getStoreDirectoryName(), "") << path;
    ProjectStore target(file, folderOf(copy));
    EXPECT_FALSE(store.copyResults(target, false, nullptr, true)) << path;
    EXPECT_FALSE(target.copyResults(store, false, nullptr, true)) << path;
  }
  EXPECT_TRUE(fs::exists(precious));
  EXPECT_TRUE(fs::exists(folder.path("0123456789abcdef")));
}

TEST_F(VersionStoresTest, WithoutFileOrFolder_NothingHappens) {
  EXPECT_FALSE(ProjectStore("", folderOf(copy)).remove());
  EXPECT_EQ(ProjectStore("", "").getStoreDirectoryName(), "");
  ProjectStore empty("", "");
  EXPECT_FALSE(empty.copyResults(empty, false, nullptr, true));
}

TEST_F(VersionStoresTest, Remove_TakesTheWholeFolder_AndIsHarmlessWithoutOne) {
  const std::string path = fill(copy, "42");
  EXPECT_TRUE(ProjectStore(file, path).remove());
  EXPECT_FALSE(fs::exists(path));
  EXPECT_TRUE(ProjectStore(file, path).remove());
}

TEST_F(VersionStoresTest, Remove_FollowsNoLinkAndHangsOnNoPipe) {
  fs::create_directories(folder.path("outside"));
  writeFile(folder.path("outside/file"), "keep");
  const std::string path = fill(copy, "42");
  fs::create_directory_symlink(folder.path("outside"), path + "/link");
  fs::create_symlink(folder.path("outside/file"), path + "/filelink");
  fs::create_symlink("loop", path + "/loop");
  fs::create_directory_symlink("..", path + "/inner/up");
  ASSERT_EQ(mkfifo((path + "/pipe").c_str(), 0600), 0);
  EXPECT_TRUE(ProjectStore(file, path).remove());
  EXPECT_FALSE(fs::exists(path));
  EXPECT_EQ(contentOf(folder.path("outside/file")), "keep");
}

TEST_F(VersionStoresTest, Remove_ALinkInPlaceOfTheFolder_RemovesTheLinkOnly) {
  fs::create_directories(folder.path("outside"));
  writeFile(folder.path("outside/file"), "keep");
  fs::create_directory(results);
  fs::create_directory_symlink(folder.path("outside"), folderOf(copy));
  EXPECT_TRUE(ProjectStore(file, folderOf(copy)).remove());
  EXPECT_FALSE(fs::exists(fs::symlink_status(folderOf(copy))));
  EXPECT_EQ(contentOf(folder.path("outside/file")), "keep");
}

TEST_F(VersionStoresTest, LinkInPlaceOfTheResultsFolder_IsRefused) {
  const std::string name = fs::path(folderOf(copy)).filename().string();
  fs::create_directories(folder.path("outside") + "/" + name);
  writeFile(folder.path("outside") + "/" + name + "/file", "keep");
  fs::create_directory_symlink(folder.path("outside"), results);
  EXPECT_FALSE(ProjectStore(file, folderOf(copy)).remove());
  EXPECT_EQ(tree.getVersionFolder(copy, true), "");
  EXPECT_FALSE(copyResults(copy, base));
  EXPECT_EQ(contentOf(folder.path("outside") + "/" + name + "/file"), "keep");
}

TEST_F(VersionStoresTest, CopyResults_CopiesFilesAndFolders_InPlaceOfWhatWasThere) {
  fill(base, "new");
  fill(copy, "old");
  writeFile(folderOf(copy) + "/only-old.txt", "x");
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_EQ(contentOf(folderOf(copy) + "/inner/deep.txt"), "deep new");
  EXPECT_FALSE(fs::exists(folderOf(copy) + "/only-old.txt"));
  EXPECT_EQ(resultOf(base), "new");
  EXPECT_FALSE(fs::exists(results + "/unfinished"));
  writeFile(folderOf(copy) + "/result.txt", "changed");
  EXPECT_EQ(resultOf(base), "new");
}

TEST_F(VersionStoresTest, CopyResults_WithoutSource_IsNoErrorAndChangesNothing) {
  fill(copy, "old");
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), "old");
}

TEST_F(VersionStoresTest, CopyResults_OntoItself_KeepsEverything) {
  fill(copy, "42");
  EXPECT_TRUE(copyResults(copy, copy));
  EXPECT_EQ(resultOf(copy), "42");
}

TEST_F(VersionStoresTest, CopyResults_WithoutLeaveToOverwrite_KeepsTheTarget) {
  fill(base, "new");
  fill(copy, "old");
  EXPECT_FALSE(copyResults(base, copy, false));
  EXPECT_EQ(resultOf(copy), "old");
}

TEST_F(VersionStoresTest, CopyResults_Moving_LeavesNoSource) {
  fill(base, "new");
  ProjectStore target(file, folderOf(copy));
  EXPECT_TRUE(ProjectStore(file, folderOf(base)).copyResults(target, true, nullptr, true));
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_FALSE(fs::exists(folderOf(base)));
}

TEST_F(VersionStoresTest, CopyResults_LeavesLinksPipesAndDevicesOut) {
  writeFile(folder.path("secret"), "secret");
  const std::string path = fill(base, "new");
  fs::create_symlink(folder.path("secret"), path + "/link");
  fs::create_symlink("loop", path + "/loop");
  fs::create_directory_symlink("..", path + "/inner/up");
  ASSERT_EQ(mkfifo((path + "/pipe").c_str(), 0600), 0);
  EXPECT_TRUE(copyResults(base, copy));
  std::set<std::string> copied;
  for (const auto &entry : fs::recursive_directory_iterator(folderOf(copy))) {
    copied.insert(fs::relative(entry.path(), folderOf(copy)).string());
  }
  EXPECT_EQ(copied, (std::set<std::string>{"inner", "inner/deep.txt", "result.txt"}));
}

TEST_F(VersionStoresTest, CopyResults_LinkInPlaceOfTheTarget_IsReplacedNotFollowed) {
  fill(base, "new");
  fs::create_directories(folder.path("outside"));
  writeFile(folder.path("outside/result.txt"), "keep");
  fs::create_directory_symlink(folder.path("outside"), folderOf(copy));
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_EQ(contentOf(folder.path("outside/result.txt")), "keep");
  EXPECT_TRUE(fs::is_directory(fs::symlink_status(folderOf(copy))));
}

TEST_F(VersionStoresTest, CopyResults_LinkInPlaceOfTheSource_IsNotFollowed) {
  fs::create_directories(folder.path("outside"));
  writeFile(folder.path("outside/result.txt"), "secret");
  fill(copy, "old");
  fs::create_directory_symlink(folder.path("outside"), folderOf(base));
  EXPECT_FALSE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), "old");
}

TEST_F(VersionStoresTest, Rename_WorksBetweenVersionFoldersOnly) {
  const std::string from = fill(copy, "42");
  const std::string to = results + "/0123456789abcdef";
  EXPECT_FALSE(Directory::rename(from, folder.path("0123456789abcdef")));
  EXPECT_FALSE(Directory::rename(from, results + "/other"));
  EXPECT_FALSE(Directory::rename("", to));
  EXPECT_FALSE(Directory::rename(from, ""));
  EXPECT_FALSE(Directory::rename(to, from));
  fs::create_directory(to);
  EXPECT_FALSE(Directory::rename(from, to));
  fs::remove(to);
  EXPECT_TRUE(Directory::rename(from, to));
  EXPECT_EQ(contentOf(to + "/result.txt"), "42");
}

TEST_F(VersionStoresTest, LargeFile_IsCopiedWhole) {
  const std::string path = tree.getVersionFolder(base, true);
  std::string content(3'000'001, '\0');
  for (std::size_t byte = 0; byte < content.size(); ++byte) {
    content[byte] = static_cast<char>(byte * 31 % 251);
  }
  writeFile(path + "/result.txt", content);
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), content);
}

TEST(FolderNameTest, Names_DifferAndHaveTheirForm) {
  std::set<std::string> names;
  for (int index = 0; index < 1000; ++index) {
    names.insert(newFolderName());
  }
  EXPECT_EQ(names.size(), 1000U);
  for (const std::string &name : names) {
    EXPECT_TRUE(isFolderName(name)) << name;
  }
  for (const char *text :
       {"", "..", "0123456789abcde", "0123456789abcdef0", "0123456789abcdeg", "01234567/9abcdef"}) {
    EXPECT_FALSE(isFolderName(text)) << text;
  }
}

} // namespace
} // namespace EmbeddedHost
