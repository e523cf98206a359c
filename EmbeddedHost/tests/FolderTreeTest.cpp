#include "EmbeddedHost/src/project/FolderTree.h"

#include "EmbeddedHost/src/project/CopyTree.h"
#include "EmbeddedHost/tests/ModelFixture.h"

#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

class FolderTreeTest : public testing::Test {
protected:
  TestFolder place;
  Folder root = Folder::at(place.path());
  std::string problem;

  // A chain of folders "d", longer than any path may be, with a file at its end.
  void makeChain(const std::string &name, int depth) {
    fs::create_directory(place.path(name));
    FileDescriptor deepest(open(place.path(name).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    for (int level = 1; level < depth; ++level) {
      ASSERT_EQ(mkdirat(deepest.get(), "d", 0777), 0);
      deepest = FileDescriptor(openat(deepest.get(), "d", O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    const FileDescriptor file(openat(deepest.get(), "file", O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    ASSERT_TRUE(file.isOpen());
  }
};

TEST_F(FolderTreeTest, Remove_DepthDoesNotMatter) {
  makeChain("deep", 2500);
  EXPECT_TRUE(root.remove("deep", problem)) << problem;
  EXPECT_FALSE(fs::exists(place.path("deep")));
  EXPECT_TRUE(fs::is_empty(place.path()));
}

TEST_F(FolderTreeTest, CopyAndSync_RefuseWhatIsTooDeep_NamingIt) {
  makeChain("fits", 200);
  EXPECT_TRUE(copyTree(root.open("fits"), root, "copy", problem)) << problem;
  EXPECT_TRUE(syncTree(root.open("fits"), problem)) << problem;
  makeChain("deep", 201);
  std::string deepest = place.path("deep");
  for (int level = 1; level < 201; ++level) {
    deepest += "/d";
  }
  EXPECT_FALSE(copyTree(root.open("deep"), root, "other", problem));
  EXPECT_EQ(problem, deepest + " cannot be used: It lies more than 200 folders deep.");
  problem.clear();
  EXPECT_FALSE(syncTree(root.open("deep"), problem));
  EXPECT_EQ(problem, deepest + " cannot be used: It lies more than 200 folders deep.");
}

TEST_F(FolderTreeTest, Open_FollowsNoLink) {
  fs::create_directory(place.path("real"));
  fs::create_directory_symlink("real", place.path("link"));
  EXPECT_TRUE(root.open("real").isOpen());
  EXPECT_EQ(root.open("real").problem(), "");
  EXPECT_EQ(root.open("link").problem(),
            place.path("link") + " cannot be used as a folder: Not a directory.");
  EXPECT_FALSE(root.open("link").isAbsent());
  EXPECT_FALSE(root.make("link").isOpen());
  EXPECT_FALSE(root.openMounted("link").isOpen());
  EXPECT_FALSE(root.makeMounted("link").isOpen());
  EXPECT_FALSE(root.makeNew("real").isOpen());
  EXPECT_TRUE(root.open("absent").isAbsent());
}

TEST_F(FolderTreeTest, Open_EntersNoOtherFileSystem) {
  const Folder top = Folder::at("/");
  EXPECT_EQ(top.open("proc").problem(), "/proc cannot be used as a folder: Invalid cross-device link.");
  EXPECT_FALSE(top.make("proc").isOpen());
  EXPECT_TRUE(top.openMounted("proc").isOpen());
  EXPECT_TRUE(top.makeMounted("proc").isOpen());
  EXPECT_FALSE(top.sharesFileSystem(top.openMounted("proc")));
  EXPECT_TRUE(top.sharesFileSystem(top));
}

TEST_F(FolderTreeTest, OpenFile_TakesOnlyFiles_AndWaitsForNobody) {
  writeFile(place.path("file"), "x");
  fs::create_symlink("file", place.path("link"));
  ASSERT_EQ(mkfifo(place.path("pipe").c_str(), 0600), 0);
  EXPECT_TRUE(root.openFile("file", problem).isOpen());
  EXPECT_FALSE(root.openFile("link", problem).isOpen());
  EXPECT_EQ(problem, place.path("link") + " cannot be read: Too many levels of symbolic links.");
  EXPECT_FALSE(root.openFile("pipe", problem).isOpen());
  EXPECT_EQ(problem, place.path("pipe") + " cannot be read: It is no longer a file.");
  EXPECT_FALSE(Folder::at("/dev").openFile("zero", problem).isOpen());
  EXPECT_EQ(problem, "/dev/zero cannot be read: It is no longer a file.");
}

TEST_F(FolderTreeTest, Problems_NameThePathAndTheReason) {
  writeFile(place.path("file"), "x");
  fs::create_directory(place.path("folder"));
  EXPECT_FALSE(root.makeFile("file", 0666, problem).isOpen());
  EXPECT_EQ(problem, place.path("file") + " cannot be written: File exists.");
  EXPECT_FALSE(root.rename("absent", root, "other", 0, problem));
  EXPECT_EQ(problem, place.path("absent") + " cannot be renamed to " + place.path("other") +
                         ": No such file or directory.");
  EXPECT_FALSE(copyTree(root.open("folder"), root, "file", problem));
  EXPECT_EQ(problem, place.path("file") + " cannot be used as a folder: File exists.");
  EXPECT_FALSE(Folder::at("/proc/self").remove("status", problem));
  EXPECT_EQ(problem, "/proc/self/status cannot be removed: Operation not permitted.");
  EXPECT_TRUE(root.remove("absent", problem));
}

TEST_F(FolderTreeTest, KindOf_DoesNotFollow) {
  fs::create_directory(place.path("folder"));
  fs::create_directory_symlink("folder", place.path("link"));
  writeFile(place.path("file"), "x");
  EXPECT_EQ(root.kindOf("folder"), EntryKind::Folder);
  EXPECT_EQ(root.kindOf("file"), EntryKind::File);
  EXPECT_EQ(root.kindOf("link"), EntryKind::Other);
  EXPECT_EQ(root.kindOf("absent"), EntryKind::Absent);
  EXPECT_EQ(root.kindOf(std::string(300, 'x')), EntryKind::Unknown);
}

// An open folder stays that folder, whatever is put in the place of its name.
TEST_F(FolderTreeTest, OpenFolder_IsNotLedAwayByALinkInItsPlace) {
  fs::create_directories(place.path("results/version"));
  fs::create_directories(place.path("outside/version"));
  writeFile(place.path("outside/version/file"), "keep");
  const Folder results = root.open("results");
  fs::rename(place.path("results"), place.path("moved"));
  fs::create_directory_symlink("outside", place.path("results"));
  EXPECT_TRUE(results.remove("version", problem)) << problem;
  EXPECT_EQ(contentOf(place.path("outside/version/file")), "keep");
  EXPECT_FALSE(fs::exists(place.path("moved/version")));
}

} // namespace
} // namespace EmbeddedHost
