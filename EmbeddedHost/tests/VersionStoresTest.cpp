#include "EmbeddedHost/src/project/VersionStores.h"

#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/tests/StoreFixture.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <set>
#include <sys/stat.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using FileSystem::Directory;
using ProjectData::ProjectStore;

class VersionStoresTest : public StoreTest {};

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

TEST_F(VersionStoresTest, Folder_WithAnythingElseInItsPlace_IsNone) {
  fs::create_directory(results);
  fs::create_directory(folder.path("outside"));
  const std::string path = folderOf(copy);
  for (const bool create : {false, true}) {
    fs::create_directory_symlink(folder.path("outside"), path);
    EXPECT_EQ(tree.getVersionFolder(copy, create), "");
    fs::remove(path);
    fs::create_symlink("absent", path);
    EXPECT_EQ(tree.getVersionFolder(copy, create), "");
    fs::remove(path);
    writeFile(path, "file");
    EXPECT_EQ(tree.getVersionFolder(copy, create), "");
    fs::remove(path);
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(tree.getVersionFolder(copy, create), "");
    fs::remove(path);
    EXPECT_EQ(tree.getVersionFolder(copy, create), path);
  }
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
  const std::string path = folderOf(copy);
  fs::create_directory_symlink(folder.path("outside"), path);
  EXPECT_TRUE(ProjectStore(file, path).remove());
  EXPECT_FALSE(fs::exists(fs::symlink_status(path)));
  EXPECT_EQ(contentOf(folder.path("outside/file")), "keep");
}

TEST_F(VersionStoresTest, LinkInPlaceOfTheResultsFolder_IsRefused) {
  const std::string path = folderOf(copy);
  const std::string otherPath = folderOf(base);
  const std::string name = fs::path(path).filename().string();
  fs::create_directories(folder.path("outside") + "/" + name);
  writeFile(folder.path("outside") + "/" + name + "/file", "keep");
  fs::create_directory_symlink(folder.path("outside"), results);
  EXPECT_FALSE(ProjectStore(file, path).remove());
  EXPECT_EQ(lastProblem(), results + " cannot be used as a folder: Not a directory.");
  EXPECT_EQ(tree.getVersionFolder(copy, true), "");
  EXPECT_EQ(tree.getVersionFolder(copy, false), "");
  ProjectStore target(file, otherPath);
  EXPECT_FALSE(ProjectStore(file, path).copyResults(target, false, nullptr, true));
  EXPECT_EQ(lastProblem(), results + " cannot be used as a folder: Not a directory.");
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
  EXPECT_EQ(lastProblem(), "There are results in " + folderOf(copy) + " already.");
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(lastProblem(), "");
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
  ProjectStore target(file, folderOf(copy));
  fs::create_directory_symlink(folder.path("outside"), folderOf(copy));
  EXPECT_TRUE(ProjectStore(file, folderOf(base)).copyResults(target, false, nullptr, true));
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_EQ(contentOf(folder.path("outside/result.txt")), "keep");
  EXPECT_TRUE(fs::is_directory(fs::symlink_status(folderOf(copy))));
}

TEST_F(VersionStoresTest, CopyResults_LinkInPlaceOfTheSource_IsNotFollowed) {
  fs::create_directories(folder.path("outside"));
  writeFile(folder.path("outside/result.txt"), "secret");
  fill(copy, "old");
  ProjectStore source(file, folderOf(base));
  const std::string path = folderOf(base);
  fs::create_directory_symlink(folder.path("outside"), path);
  ProjectStore target(file, folderOf(copy));
  EXPECT_FALSE(source.copyResults(target, false, nullptr, true));
  EXPECT_EQ(lastProblem(), path + " cannot be used as a folder: Not a directory.");
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
