#include "EmbeddedHost/tests/SolverRunFixture.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

// A disk without room, which the superuser mounts in a process whose mounts nobody else sees.

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;

class FullDiskTest : public SolverRunFixture {
protected:
  // Carries something out with a disk of half a megabyte in `disk()`. \return what it answers, 99 without a disk
  int withSmallDisk(const std::function<int()> &work) {
    fs::create_directory(disk());
    const pid_t program = startProgram([&] {
      const bool isReady = ::unshare(CLONE_NEWNS) == 0 &&
                           ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                           ::mount("none", disk().c_str(), "tmpfs", 0, "size=512k") == 0;
      if (!isReady) {
        std::printf("The disk cannot be mounted: %s.\n", std::strerror(errno));
        std::fflush(stdout);
        return 99;
      }
      return work();
    });
    return endOf(program);
  }
  fs::path disk() const { return folder / "disk"; }

  // 0 when the run ended as it should.
  int judge(const SolverCommand &command, SolverEnd end, const std::string &problem) {
    SolverSupervisors own;
    SolverProcess process(command, own);
    process.start();
    const SolverOutcome outcome = finish(process);
    if (outcome.end != end || outcome.problem != problem) {
      std::printf("end %d, problem \"%s\"\n", static_cast<int>(outcome.end), outcome.problem.c_str());
      std::fflush(stdout);
      return 1;
    }
    return marked().size() == 2 ? 0 : 2; // nothing but the supervisor is left
  }
};

TEST_F(FullDiskTest, OutputThatDoesNotFit_EndsTheRunAndNamesTheFile) {
  const int answer = withSmallDisk([this] {
    SolverCommand command = solver({"flood"});
    command.outputFile = (disk() / "stdout.log").string();
    return judge(command, SolverEnd::Stopped, command.outputFile + ": No space left on device");
  });
  EXPECT_EQ(answer, 0);
}

TEST_F(FullDiskTest, FileOfTheSolverThatDoesNotFit_IsTheSolversOwnFailure) {
  const int answer = withSmallDisk([this] {
    const SolverCommand command = solver({"flood", (disk() / "grown").string()});
    return judge(command, SolverEnd::Exited, "");
  });
  EXPECT_EQ(answer, 0);
}

TEST_F(FullDiskTest, FullBeforeTheStart_IsAProblemOnlyOfWhatIsWritten) {
  const int answer = withSmallDisk([this] {
    std::ofstream(disk() / "ballast") << std::string(2000000, 'x');
    struct statvfs room = {};
    if (::statvfs(disk().c_str(), &room) != 0 || room.f_bavail != 0) {
      return 3;
    }
    SolverCommand command = solver({"flood"});
    command.workingFolder = disk().string();
    command.outputFile = (disk() / "stdout.log").string();
    return judge(command, SolverEnd::Stopped, command.outputFile + ": No space left on device");
  });
  EXPECT_EQ(answer, 0);
}

// With room for it the same output is no problem, and this is how the suite would see it.
TEST_F(FullDiskTest, Control_OutputThatFits_IsKept) {
  const int answer = withSmallDisk([this] {
    SolverCommand command = solver({"flood"});
    command.outputFile = (disk() / "stdout.log").string();
    command.outputLimit = 100000;
    command.timeLimit = milliseconds(300);
    return judge(command, SolverEnd::Stopped, command.outputFile + ": No space left on device");
  });
  EXPECT_EQ(answer, 1);
}

} // namespace
} // namespace EmbeddedHost
