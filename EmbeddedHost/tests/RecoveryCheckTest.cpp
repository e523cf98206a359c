#include "EmbeddedHost/tests/ProjectFixture.h"

#include <filesystem>
#include <stdlib.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

/// Projects whose program was killed while it saved, with a journal that restores them or does not.
class RecoveryCheckTest : public ProjectTest {
protected:
  void interruptASave() {
    set(partA, "Note", std::string(20000, 'x'));
    set(partA, "Ratio", "0.25");
    saveAs();
    closeProject();
    interruptAChange();
  }
  std::string journal() const { return file + "-journal"; }
};

TEST_F(RecoveryCheckTest, JournalThatDoesNotRestoreTheProject_IsLeftThereWithIt) {
  interruptASave();
  std::string damaged = contentOf(journal());
  // What follows no longer counts as a journal, so the half of the change that is in the file would stay.
  damaged[0] = 'x';
  writeFile(journal(), damaged);
  const std::string content = contentOf(file);
  for (const OpenMode mode : {OpenMode::ReadOnly, OpenMode::ReadWrite}) {
    const std::string problem = problemOfOpening(mode);
    const std::string start =
        "The project " + file +
        " is damaged: the journal of an interrupted save beside it does not restore it: ";
    EXPECT_EQ(problem.substr(0, start.size()), start);
    EXPECT_EQ(contentOf(file), content);
    EXPECT_EQ(contentOf(journal()), damaged);
    EXPECT_FALSE(fs::exists(file + ".lock"));
  }
}

// The journal's header tells at byte 16, high byte first, how many pages the project had; 2^16 are 256 MB.
TEST_F(RecoveryCheckTest, JournalThatTellsOfTooManyPages_IsLeftThereWithTheProject) {
  interruptASave();
  std::string damaged = contentOf(journal());
  damaged.replace(16, 4, std::string("\0\1\0\0", 4));
  writeFile(journal(), damaged);
  const std::string before = contentOf(file);
  EXPECT_EQ(problemOfOpening(OpenMode::ReadWrite),
            "The project " + file +
                " is damaged: the journal of an interrupted save beside it does not restore it: it tells of "
                "pages that "
                "never were.");
  EXPECT_EQ(contentOf(file), before);
  EXPECT_EQ(contentOf(journal()), damaged);
}

TEST_F(RecoveryCheckTest, JournalThatRestoresTheProject_IsPlayedBack) {
  interruptASave();
  const auto opened = openCopy(OpenMode::ReadWrite);
  EXPECT_EQ(opened->attribute(part(*opened, 0), "Ratio")->getValueAsString(), "0.25");
  EXPECT_FALSE(fs::exists(journal()));
}

TEST_F(RecoveryCheckTest, WithoutRoomForACopy_TheJournalIsPlayedBackAllTheSame) {
  interruptASave();
  const int answer = inChild([this] {
    setenv("TMPDIR", folder.path("missing").c_str(), 1);
    const auto opened = openCopy(OpenMode::ReadWrite);
    return opened->attribute(part(*opened, 0), "Ratio")->getValueAsString() == "0.25" ? 0 : 1;
  });
  EXPECT_EQ(answer, 0);
}

TEST_F(RecoveryCheckTest, Copy_IsRemoved) {
  interruptASave();
  fs::create_directory(folder.path("copies"));
  const int answer = inChild([this] {
    setenv("TMPDIR", folder.path("copies").c_str(), 1);
    return openCopy(OpenMode::ReadWrite) == nullptr ? 1 : 0;
  });
  EXPECT_EQ(answer, 0);
  EXPECT_TRUE(fs::is_empty(folder.path("copies")));
}

} // namespace
} // namespace EmbeddedHost
