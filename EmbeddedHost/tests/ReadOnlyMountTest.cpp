#include "EmbeddedHost/tests/ModelFixture.h"
#include "EmbeddedHost/tests/OrdinaryUser.h"
#include "EmbeddedHost/tests/ReadOnlyMedia.h"

#include <cerrno>
#include <cstring>
#include <functional>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

// Mounts need the superuser, who does nothing else here: whatever touches a project is somebody else's.
class ReadOnlyMountTest : public testing::Test {
protected:
  ReadOnlyMountTest() { chmod(folder.path().c_str(), 0755); }

  // In a process whose mounts nobody else sees and which end with it.
  int inOwnMounts(const std::function<void()> &work) const {
    const pid_t child = fork();
    if (child == 0) {
      const bool isReady = unshare(CLONE_NEWNS) == 0 &&
                           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                           mount("none", folder.path().c_str(), "tmpfs", 0, "mode=0777") == 0;
      if (!isReady) {
        printf("The file system cannot be mounted: %s.\n", std::strerror(errno));
        fflush(stdout);
        _exit(2);
      }
      work();
      fflush(stdout);
      _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void makeReadOnly() const {
    ASSERT_EQ(mount("none", folder.path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr), 0) << errno;
  }
  std::string file() const { return folder.path("fan.optstudy"); }
  std::string made(bool interrupts) const {
    return reportOfOrdinaryUser([this, interrupts] {
      std::string project = makeProjectToRead(folder.path());
      if (interrupts) {
        interruptAChangeOf(project);
      }
      return project;
    });
  }
  std::string read() const {
    return reportOfOrdinaryUser([this] { return reportOfReading(file()); });
  }
  void check(bool interrupts, const std::string &expected) const {
    const int answer = inOwnMounts([&] {
      ASSERT_EQ(made(interrupts), file());
      makeReadOnly();
      const auto before = everythingIn(folder.path());
      EXPECT_EQ(read(), expected);
      EXPECT_EQ(everythingIn(folder.path()), before);
    });
    EXPECT_EQ(answer, 0);
  }

  TestFolder folder;
};

TEST_F(ReadOnlyMountTest, Project_IsReadAndNotWritten) {
  check(false, wholeReport("Read-only file system"));
}

TEST_F(ReadOnlyMountTest, InterruptedProject_CannotBeRecoveredThere) {
  check(true, interruptedReport("Read-only file system"));
}

} // namespace
} // namespace EmbeddedHost
