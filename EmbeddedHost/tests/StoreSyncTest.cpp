#include "EmbeddedHost/tests/ProjectFixture.h"
#include "EmbeddedHost/tests/TracedChild.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <iostream>

namespace EmbeddedHost {
namespace {

using EntityModel::ModelVersion;
using ProjectData::ProjectStore;

// What a session that copies results asks of the disk, and in which order.
class StoreSyncTest : public ProjectTest {
protected:
  StoreSyncTest() {
    follow(base, "Copy");
    saveAs();
    const std::string path = project->versionFolder(*base, true);
    writeFile(path + "/result.txt", "result");
    closeProject();
    handOver(folder.path());
  }

  // A program that opens the project, copies the results of "Base" to "Copy", and goes on.
  Trace session(const std::vector<std::string> &options, const std::function<bool(Project &)> &goOn) {
    std::vector<std::string> all = {"-e", "trace=renameat2,syncfs,fsync,fdatasync,unlink"};
    all.insert(all.end(), options.begin(), options.end());
    return traced(all, [&] {
      std::string problem;
      const auto opened = Project::open(file, OpenMode::ReadWrite, problem);
      if (opened == nullptr) {
        std::cerr << problem << "\n";
        return 2;
      }
      const HostModel::HostInstallation host(*opened);
      return copyResults(*opened) && goOn(*opened) ? 0 : 1;
    });
  }

  bool copyResults(Project &opened) const {
    ModelVersion &copy = *opened.changeManager().findVersion("Copy", nullptr);
    ProjectStore source(file, opened.versionFolder(*opened.rootVersion(), false));
    ProjectStore target(file, opened.versionFolder(copy, false));
    return source.copyResults(target, false, nullptr, true);
  }

  static bool isSaved(Project &opened) {
    std::string problem;
    const bool isDone = opened.setValue(opened.rootEntity(), "Title", "New") && opened.save(problem);
    if (!isDone) {
      std::cerr << problem << "\n";
    }
    return isDone;
  }

  // Whether the results were renamed into place, then written to the disk, and then mentioned in a commit.
  static bool isInOrder(const Trace &trace) {
    const std::size_t placed = trace.find("renameat2", "/unfinished>");
    const std::size_t synced = trace.find("syncfs", "/fan.results>", placed);
    const std::size_t committed = trace.find("fdatasync", "/fan.optstudy>");
    return placed != Trace::npos && synced != Trace::npos && committed != Trace::npos && synced < committed;
  }
};

TEST_F(StoreSyncTest, CopiedResults_AreOnTheDiskBeforeTheCommitOfASave) {
  const Trace trace = session({}, isSaved);
  EXPECT_EQ(trace.result, 0);
  EXPECT_TRUE(isInOrder(trace)) << trace.text();
  EXPECT_EQ(trace.count("syncfs"), 1U) << trace.text();
  EXPECT_EQ(trace.count("fsync", "result.txt"), 0U)
      << trace.text(); // thousands of versions have thousands of files
}

TEST_F(StoreSyncTest, CopiedResults_AreOnTheDiskBeforeARunIsRecorded) {
  const Trace trace = session({}, [](Project &opened) {
    std::string problem;
    return opened.recordRun(*opened.rootVersion(), {}, {}, problem);
  });
  EXPECT_EQ(trace.result, 0);
  EXPECT_TRUE(isInOrder(trace)) << trace.text();
  EXPECT_EQ(trace.count("syncfs"), 1U) << trace.text();
}

TEST_F(StoreSyncTest, Order_OfASaveThatDoesNotWriteThemToTheDisk_IsFoundOut) {
  Trace trace = session({}, isSaved);
  ASSERT_TRUE(isInOrder(trace)) << trace.text();
  trace.calls.erase(trace.calls.begin() + static_cast<std::ptrdiff_t>(trace.find("syncfs", "")));
  EXPECT_FALSE(isInOrder(trace));
}

TEST_F(StoreSyncTest, NothingCopied_NothingIsWritten) {
  const Trace trace = session({}, [](Project &opened) {
    const bool isFirstSaved = isSaved(opened);
    return isFirstSaved && opened.setValue(opened.rootEntity(), "Title", "Newer") && isSaved(opened);
  });
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("syncfs"), 1U) << trace.text(); // for the copy before the first save
}

TEST_F(StoreSyncTest, EmptyStore_IsNothingCopied) {
  std::filesystem::remove_all(folder.path("fan.results"));
  const Trace trace = session({}, isSaved);
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("syncfs"), 0U) << trace.text();
}

TEST_F(StoreSyncTest, DiskThatFails_RefusesTheSaveAndIsTriedAgain) {
  const Trace trace = session({"-e", "inject=syncfs:error=EIO:when=1"}, [this](Project &opened) {
    std::string problem;
    const bool isRefused = opened.setValue(opened.rootEntity(), "Title", "New") && !opened.save(problem);
    const bool isNamed =
        problem == folder.path("fan.results") + " cannot be written to the disk: Input/output error.";
    if (!isNamed) {
      std::cerr << problem << "\n";
    }
    return isRefused && isNamed && opened.needsSave() && opened.save(problem);
  });
  EXPECT_EQ(trace.result, 0);
  EXPECT_EQ(trace.count("syncfs"), 2U) << trace.text();
  EXPECT_LT(trace.find("syncfs", "(INJECTED)"), trace.find("fdatasync", "/fan.optstudy>")) << trace.text();
  EXPECT_TRUE(isInOrder(trace)) << trace.text();
}

} // namespace
} // namespace EmbeddedHost
