#include "Workbench/InitCommand.h"

#include "Workbench/ExitCode.h"
#include "Workbench/tests/ConsoleText.h"
#include "Workbench/tests/StudyDocs.h"
#include "Workbench/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace Workbench {
namespace {

namespace fs = std::filesystem;

class InitCommandTest : public ::testing::Test {
protected:
  int init(const std::string &folder, const std::string &example = "") {
    return initCommand(m_folder.file(folder), example, m_text.console);
  }

  TestFolder m_folder;
  ConsoleText m_text;
};

// No file gets beyond so many bytes as long as it lives: what happens on a full disk, for one process.
class SmallFiles {
public:
  explicit SmallFiles(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit{bytes, m_before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  SmallFiles(const SmallFiles &) = delete;
  SmallFiles &operator=(const SmallFiles &) = delete;
  ~SmallFiles() {
    ::setrlimit(RLIMIT_FSIZE, &m_before);
    std::signal(SIGXFSZ, m_handler);
  }

private:
  rlimit m_before{};
  sighandler_t m_handler;
};

TEST_F(InitCommandTest, WithoutAName_WritesTheBeamAndSaysWhatIsNext) {
  EXPECT_EQ(init("demo"), ExitCode::kDone);
  EXPECT_EQ(m_text.takeOut(),
            m_folder.file("demo/beam.awk.template") + "\n" + m_folder.file("demo/beam.study.yaml") + "\n");
  EXPECT_EQ(m_text.takeMessages(), "Next: optstudy check '" + m_folder.file("demo/beam.study.yaml") + "'\n");
}

TEST_F(InitCommandTest, EveryExample_IsWrittenAsItIsInTheSourceTree) {
  std::size_t files = 0;
  for (const std::string &name : exampleNames()) {
    ASSERT_EQ(init(name, name), ExitCode::kDone) << m_text.takeMessages();
    for (const fs::directory_entry &entry : fs::directory_iterator(m_folder.path() / name)) {
      const std::string file = name + "/" + entry.path().filename().string();
      EXPECT_EQ(m_folder.read(file), fileText(OPTSTUDY_EXAMPLES "/" + file)) << file;
      EXPECT_NE(m_folder.read(file), "") << file;
      ++files;
    }
  }
  EXPECT_GE(files, 9U);
}

TEST_F(InitCommandTest, FolderThatIsThere_KeepsWhatItHolds) {
  fs::create_directory(m_folder.path() / "demo");
  m_folder.write("demo/notes.txt", "mine");
  EXPECT_EQ(init("demo"), ExitCode::kDone);
  EXPECT_EQ(m_folder.read("demo/notes.txt"), "mine");
  EXPECT_TRUE(m_folder.has("demo/beam.study.yaml"));
}

TEST_F(InitCommandTest, FoldersThatAreMissing_AreMade) {
  EXPECT_EQ(init("a/b/c/"), ExitCode::kDone);
  EXPECT_TRUE(m_folder.has("a/b/c/beam.study.yaml"));
}

TEST_F(InitCommandTest, FileThatIsThere_IsNamedAndNothingIsWritten) {
  fs::create_directory(m_folder.path() / "demo");
  m_folder.write("demo/beam.study.yaml", "mine");
  EXPECT_EQ(init("demo"), ExitCode::kInvalid);
  EXPECT_EQ(m_text.takeMessages(),
            m_folder.file("demo/beam.study.yaml") +
                " exists already; nothing was written. Give another folder, or move it away.\n");
  EXPECT_EQ(m_text.takeOut(), "");
  EXPECT_EQ(m_folder.read("demo/beam.study.yaml"), "mine");
  EXPECT_FALSE(m_folder.has("demo/beam.awk.template"));
}

TEST_F(InitCommandTest, LinkThatLeadsNowhere_IsAFileThatIsThere) {
  fs::create_directory(m_folder.path() / "demo");
  fs::create_symlink(m_folder.path() / "elsewhere", m_folder.path() / "demo/beam.awk.template");
  EXPECT_EQ(init("demo"), ExitCode::kInvalid);
  EXPECT_NE(m_text.takeMessages().find("beam.awk.template exists already"), std::string::npos);
  EXPECT_FALSE(m_folder.has("elsewhere"));
  EXPECT_FALSE(m_folder.has("demo/beam.study.yaml"));
}

TEST_F(InitCommandTest, SecondTime_IsRefused) {
  EXPECT_EQ(init("demo"), ExitCode::kDone);
  EXPECT_EQ(init("demo"), ExitCode::kInvalid);
  EXPECT_EQ(m_folder.read("demo/beam.study.yaml"), fileText(OPTSTUDY_EXAMPLES "/beam/beam.study.yaml"));
}

TEST_F(InitCommandTest, FileThatCannotBeWritten_LeavesNothingOfWhatWasMade) {
  fs::create_directory(m_folder.path() / "mine");
  const std::size_t first = fileText(OPTSTUDY_EXAMPLES "/beam/beam.awk.template").size();
  const std::size_t second = fileText(OPTSTUDY_EXAMPLES "/beam/beam.study.yaml").size();
  ASSERT_LT(first + 100, second);
  int code = ExitCode::kDone;
  {
    const SmallFiles limit(first + 100); // the second file cannot be written
    code = init("mine/demo");
  }
  EXPECT_EQ(code, ExitCode::kInternalError);
  EXPECT_EQ(m_text.takeMessages(), m_folder.file("mine/demo/beam.study.yaml") +
                                       ": File too large; nothing is left of what was made.\n");
  EXPECT_EQ(m_text.takeOut(), "");
  EXPECT_TRUE(m_folder.has("mine"));
  EXPECT_FALSE(m_folder.has("mine/demo"));
}

TEST_F(InitCommandTest, FileInThePlaceOfTheFolder_IsLeftAlone) {
  m_folder.write("demo", "mine");
  EXPECT_EQ(init("demo"), ExitCode::kInternalError);
  EXPECT_NE(m_text.takeMessages().find("demo: the folder cannot be made: "), std::string::npos);
  EXPECT_EQ(m_folder.read("demo"), "mine");
}

TEST_F(InitCommandTest, UnknownExample_IsAnsweredWithTheNearestAndAllNames) {
  EXPECT_EQ(init("demo", "fliter"), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(), "There is no example \"fliter\", did you mean \"filter\"?\n"
                                   "The examples are beam, filter, heat-sink, welded-beam.\n");
  EXPECT_FALSE(m_folder.has("demo"));
}

TEST_F(InitCommandTest, FolderWithoutAName_IsRefused) {
  EXPECT_EQ(initCommand("", "", m_text.console), ExitCode::kUsage);
  EXPECT_EQ(m_text.takeMessages(), "The folder has no name; \".\" is the one that you are in.\n");
}

} // namespace
} // namespace Workbench
