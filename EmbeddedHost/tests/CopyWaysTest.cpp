#include "EmbeddedHost/tests/StoreFixture.h"
#include "EmbeddedHost/tests/TracedChild.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <iostream>
#include <signal.h>
#include <sys/resource.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using Options = std::vector<std::string>;

// Files of results are cloned, copied by the kernel or copied by hand, whichever the file system can.
class CopyWaysTest : public StoreTest {
protected:
  std::string content;

  CopyWaysTest() {
    for (int line = 0; content.size() < 300000; ++line) {
      content += std::to_string(line) + "\n";
    }
    content.resize(300000);
    writeFile(tree.getVersionFolder(base, true) + "/result.txt", content);
    // Once without a trace: sanitizers write to a pipe when they see a call for the first time, which would count.
    std::cout << (copyResults(base, copy) ? "" : lastProblem());
    ProjectData::ProjectStore(file, folderOf(copy)).remove();
    handOver(folder.path());
  }

  // \param expected  what is to be said of a failure; "" when none is expected
  Trace copyWith(const Options &options, const std::string &expected = "") {
    Options all = {"-e", "trace=ioctl,copy_file_range,write"};
    all.insert(all.end(), options.begin(), options.end());
    return traced(all, [&] {
      const bool isDone = copyResults(base, copy);
      const std::string problem = lastProblem();
      if (problem != expected) {
        std::cerr << problem << "\n";
      }
      return isDone == expected.empty() && problem == expected ? 0 : 1;
    });
  }
};

const Options kNoClones = {"-e", "inject=ioctl:error=EOPNOTSUPP"};
const Options kByHand = {"-e", "inject=ioctl:error=EOPNOTSUPP", "-e", "inject=copy_file_range:error=EXDEV"};

TEST_F(CopyWaysTest, ClonedFile_IsNotCopiedAnyFurther) {
  const Trace trace = copyWith({"-e", "inject=ioctl:retval=0"});
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("ioctl", "FICLONE"), 1U) << trace.text();
  EXPECT_EQ(trace.count("copy_file_range"), 0U) << trace.text();
  EXPECT_EQ(trace.count("write", "/result.txt>"), 0U) << trace.text();
}

TEST_F(CopyWaysTest, WithoutClones_TheKernelCopies) {
  const Trace trace = copyWith(kNoClones);
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("ioctl", "(INJECTED)"), 1U) << trace.text();
  EXPECT_NE(trace.find("copy_file_range", "= 300000"), Trace::npos) << trace.text();
  EXPECT_EQ(trace.count("write", "/result.txt>"), 0U) << trace.text();
  EXPECT_EQ(resultOf(copy), content);
}

TEST_F(CopyWaysTest, BetweenFileSystems_ItIsCopiedByHand) {
  const Trace trace = copyWith(kByHand);
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("copy_file_range", "EXDEV"), 1U) << trace.text();
  EXPECT_EQ(trace.count("write", "= 65536"), 4U) << trace.text();
  EXPECT_EQ(trace.count("write", "/result.txt>"), 5U) << trace.text();
  EXPECT_EQ(resultOf(copy), content);
}

TEST_F(CopyWaysTest, KernelThatStopsInTheMiddle_IsFollowedByHand) {
  // The first copy is a whole one, and the second call, which looks for the end, fails.
  const Trace trace =
      copyWith({"-e", "inject=ioctl:error=EOPNOTSUPP", "-e", "inject=copy_file_range:error=EIO:when=2"});
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("copy_file_range"), 2U) << trace.text();
  EXPECT_EQ(resultOf(copy), content);
}

// A copy that fails and leaves no trace of itself.
class FailedCopyTest : public CopyWaysTest {
protected:
  FailedCopyTest() {
    fill(base, content);
    fill(copy, "old");
    handOver(folder.path());
  }

  // \param prepare  is called in the copying process
  void expectRefusal(Options options, const std::string &reason, const std::function<void()> &prepare = {}) {
    const auto before = contentsOf(folderOf(copy));
    const auto source = contentsOf(folderOf(base));
    options.insert(options.end(), {"-e", "trace=ioctl,copy_file_range,mkdirat,write"});
    const Trace trace = traced(options, [&] {
      if (prepare) {
        prepare();
      }
      const bool isDone = copyResults(base, copy);
      const std::string problem = lastProblem();
      const bool isNamed = problem.find(results + "/unfinished") != std::string::npos &&
                           problem.find(": " + reason + ".") != std::string::npos;
      if (!isNamed) {
        std::cerr << problem << "\n";
      }
      return !isDone && isNamed ? 0 : 1;
    });
    EXPECT_EQ(trace.result, 0) << trace.text();
    EXPECT_EQ(contentsOf(folderOf(copy)), before);
    EXPECT_EQ(contentsOf(folderOf(base)), source);
    EXPECT_FALSE(fs::exists(results + "/unfinished"));
  }
};

TEST_F(FailedCopyTest, FullDisk_LeavesTheTargetAsItWas) {
  // The folder for unfinished copies, the copy in it, the folder inside.
  for (const char *ordinal : {"2", "3", "4"}) {
    expectRefusal({"-e", std::string("inject=mkdirat:error=ENOSPC:when=") + ordinal},
                  "No space left on device");
  }
  // Without the fault the same copy does change it.
  const auto before = contentsOf(folderOf(copy));
  EXPECT_EQ(copyWith({}).result, 0);
  EXPECT_NE(contentsOf(folderOf(copy)), before);
}

TEST_F(FailedCopyTest, WriteThatFailsInTheMiddleOfAFile_LeavesTheTargetAsItWas) {
  expectRefusal(kByHand, "File too large", [] {
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {100000, 100000};
    setrlimit(RLIMIT_FSIZE, &limit);
  });
  EXPECT_EQ(copyWith(kByHand).result, 0);
}

} // namespace
} // namespace EmbeddedHost
