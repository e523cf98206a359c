#include "EmbeddedHost/RunFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

class RunFilesTest : public ::testing::Test {
protected:
  void SetUp() override {
    m_folder = fs::temp_directory_path() / ("run files." + std::to_string(::getpid()));
    fs::create_directories(m_folder);
  }
  void TearDown() override { fs::remove_all(m_folder); }

  std::string path(const std::string &name) const { return (m_folder / name).string(); }

  fs::path m_folder;
  std::string m_problem;
};

TEST_F(RunFilesTest, Write_NewFile_HoldsEveryByte) {
  const std::string content("a\0b\r\n\xff", 6);
  EXPECT_TRUE(writeNewFile(path("a"), content, m_problem));
  EXPECT_EQ(readWholeFile(path("a"), 100, m_problem).value_or(""), content);
}

TEST_F(RunFilesTest, Write_FileThatExists_IsRefusedAndLeftAlone) {
  std::ofstream(path("a")) << "old";
  EXPECT_FALSE(writeNewFile(path("a"), "new", m_problem));
  EXPECT_EQ(m_problem, path("a") + ": File exists");
  EXPECT_EQ(readWholeFile(path("a"), 100, m_problem).value_or(""), "old");
}

TEST_F(RunFilesTest, Write_ThroughALink_IsRefused) {
  std::ofstream(path("target")) << "old";
  fs::create_symlink(path("target"), path("link"));
  EXPECT_FALSE(writeNewFile(path("link"), "new", m_problem));
  EXPECT_EQ(readWholeFile(path("target"), 100, m_problem).value_or(""), "old");
}

TEST_F(RunFilesTest, Read_LargerThanAllowed_IsRefused) {
  std::ofstream(path("a")) << "12345";
  EXPECT_EQ(readWholeFile(path("a"), 5, m_problem).value_or(""), "12345");
  EXPECT_FALSE(readWholeFile(path("a"), 4, m_problem).has_value());
  EXPECT_EQ(m_problem, path("a") + ": larger than 4 bytes");
}

TEST_F(RunFilesTest, Read_MissingFileOrFolderOrPipe_SaysWhy) {
  EXPECT_FALSE(readWholeFile(path("absent"), 5, m_problem).has_value());
  EXPECT_EQ(m_problem, path("absent") + ": No such file or directory");
  EXPECT_FALSE(readWholeFile(m_folder.string(), 5, m_problem).has_value());
  EXPECT_EQ(m_problem, m_folder.string() + ": not a regular file");
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(readWholeFile(path("pipe"), 5, m_problem).has_value());
  EXPECT_EQ(m_problem, path("pipe") + ": not a regular file");
}

TEST_F(RunFilesTest, Copy_KeepsContentAndPermissionToExecute) {
  std::ofstream(path("tool")) << std::string(200000, 'x');
  fs::permissions(path("tool"), fs::perms::owner_all);
  EXPECT_TRUE(copyToNewFile(path("tool"), path("copy"), m_problem)) << m_problem;
  EXPECT_EQ(readWholeFile(path("copy"), 300000, m_problem).value_or(""), std::string(200000, 'x'));
  EXPECT_EQ(::access(path("copy").c_str(), X_OK), 0);
}

TEST_F(RunFilesTest, Copy_OfALink_CopiesTheTarget) {
  std::ofstream(path("target")) << "text";
  fs::create_symlink(path("target"), path("link"));
  EXPECT_TRUE(copyToNewFile(path("link"), path("copy"), m_problem));
  EXPECT_FALSE(fs::is_symlink(path("copy")));
}

TEST_F(RunFilesTest, Copy_MissingSourceOrTakenTarget_SaysWhy) {
  std::ofstream(path("a")) << "a";
  std::ofstream(path("b")) << "b";
  EXPECT_FALSE(copyToNewFile(path("absent"), path("c"), m_problem));
  EXPECT_EQ(m_problem, path("absent") + ": No such file or directory");
  EXPECT_FALSE(fs::exists(path("c")));
  EXPECT_FALSE(copyToNewFile(path("a"), path("b"), m_problem));
  EXPECT_EQ(m_problem, path("b") + ": File exists");
  EXPECT_EQ(readWholeFile(path("b"), 5, m_problem).value_or(""), "b");
}

} // namespace
} // namespace EmbeddedHost
