#include "EmbeddedHost/src/project/FileLock.h"

#include "EmbeddedHost/tests/ProjectFixture.h"
#include "EmbeddedHost/tests/StoreFixture.h"
#include "EmbeddedHost/tests/TracedChild.h"

#include <filesystem>
#include <iostream>
#include <sys/stat.h>
#include <sys/sysmacros.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

class FileLockTest : public ProjectTest {
protected:
  std::string lock = file + ".lock";
  const std::string isNone = "The lock file " + lock + " is no file of its own; move it away.";

  FileLockTest() {
    saveAs();
    closeProject();
    handOver(folder.path());
  }

  // Opens the project as somebody whom permissions bind. 0 when that says what is expected, and at once.
  int problemIs(const std::string &expected, OpenMode mode = OpenMode::ReadWrite) const {
    return asOrdinaryUser([&] {
      const std::string problem = problemOfOpening(mode);
      if (problem != expected) {
        std::cerr << problem << "\n";
      }
      return problem == expected ? 0 : 1;
    });
  }
};

TEST_F(FileLockTest, WhatIsNoFileOfItsOwn_IsRefusedAtOnceAndStays) {
  writeFile(folder.path("precious"), "precious");
  const std::function<void()> ways[] = {
      [this] { fs::create_symlink(folder.path("precious"), lock); },
      [this] { fs::create_symlink(folder.path("absent"), lock); },
      [this] { fs::create_hard_link(folder.path("precious"), lock); },
      [this] { fs::create_directory(lock); },
      [this] { ASSERT_EQ(mkfifo(lock.c_str(), 0666), 0); },
  };
  for (const std::function<void()> &makeOne : ways) {
    makeOne();
    handOver(folder.path());
    const auto before = contentsOf(folder.path());
    EXPECT_EQ(problemIs(isNone), 0);
    EXPECT_EQ(problemIs("", OpenMode::ReadOnly), 0);
    EXPECT_EQ(contentsOf(folder.path()), before);
    fs::remove(lock);
  }
  EXPECT_EQ(problemIs(""), 0);
}

TEST_F(FileLockTest, DeviceInItsPlace_IsRefused) {
  fs::create_symlink("/dev/null", folder.path("other.lock"));
  std::string problem;
  EXPECT_EQ(FileLock::acquire(folder.path("other"), problem), nullptr);
  EXPECT_EQ(problem, "The lock file " + folder.path("other.lock") + " is no file of its own; move it away.");
  // The device itself: nothing may be written to it, and nobody may lock it.
  if (mknod(folder.path("device.lock").c_str(), S_IFCHR | 0666, makedev(1, 3)) == 0) {
    EXPECT_EQ(FileLock::acquire(folder.path("device"), problem), nullptr);
    EXPECT_EQ(problem,
              "The lock file " + folder.path("device.lock") + " is no file of its own; move it away.");
  } else {
    EXPECT_EQ(errno, EPERM);
  }
}

TEST_F(FileLockTest, FolderThatCannotBeWritten_SaysThatReadingCanBeDone) {
  fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(problemIs("The project " + file + " can be opened for reading only: its lock file " + lock +
                      " cannot be written: Permission denied."),
            0);
  EXPECT_EQ(problemIs("", OpenMode::ReadOnly), 0);
  fs::permissions(folder.path(), fs::perms::owner_all);
}

TEST_F(FileLockTest, ReadOnlyMedium_SaysThatReadingCanBeDone) {
  const Trace trace = traced({"-e", "trace=openat", "-P", lock, "-e", "inject=openat:error=EROFS"}, [this] {
    const std::string problem = problemOfOpening(OpenMode::ReadWrite);
    const bool isExpected = problem == "The project " + file +
                                           " can be opened for reading only: its lock file " + lock +
                                           " cannot be written: Read-only file system.";
    if (!isExpected) {
      std::cerr << problem << "\n";
    }
    return isExpected ? 0 : 1;
  });
  EXPECT_EQ(trace.result, 0) << trace.text();
  EXPECT_EQ(trace.count("openat", "EROFS"), 1U) << trace.text();
  EXPECT_EQ(problemIs(""), 0); // without the fault
}

TEST_F(FileLockTest, ProjectWithTwoNames_CanOnlyBeRead) {
  fs::create_hard_link(file, folder.path("second.optstudy"));
  const auto before = contentsOf(folder.path());
  EXPECT_EQ(problemIs("The project " + file +
                      " can be opened for reading only: it has 2 names (hard links), and a program that used "
                      "another one would not see that it is open here. Remove the other names, or work on a "
                      "copy."),
            0);
  EXPECT_EQ(problemIs("", OpenMode::ReadOnly), 0);
  auto after = contentsOf(folder.path());
  // The lock came and went, which shows in the times of the folder alone.
  after[""] = before.at("");
  EXPECT_EQ(after, before);
  fs::remove(folder.path("second.optstudy"));
  EXPECT_EQ(problemIs(""), 0);
}

} // namespace
} // namespace EmbeddedHost
