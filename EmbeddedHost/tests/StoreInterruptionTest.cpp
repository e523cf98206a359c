#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/VersionStores.h"
#include "EmbeddedHost/tests/FaultyRenames.h"
#include "EmbeddedHost/tests/StoreFixture.h"

#include <cerrno>
#include <filesystem>
#include <functional>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;

class StoreInterruptionTest : public StoreTest {
protected:
  std::string unfinished = results + "/unfinished";
  std::string problem;

  StoreInterruptionTest() {
    fill(base, "new");
    fill(copy, "old");
  }

  void expectOldContent() {
    EXPECT_EQ(resultOf(copy), "old");
    EXPECT_EQ(contentOf(folderOf(copy) + "/inner/deep.txt"), "deep old");
    EXPECT_EQ(resultOf(base), "new");
    EXPECT_EQ(contentOf(folderOf(base) + "/inner/deep.txt"), "deep new");
  }
  std::string setAside() { return unfinished + "/old-" + fs::path(folderOf(copy)).filename().string(); }
};

TEST_F(StoreInterruptionTest, CopyResults_TakesTheOldFoldersPlaceInOneStep) {
  fs::remove_all(folderOf(copy) + "/inner");
  const FaultyRenames renames;
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(renames.count(), 1);
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_EQ(lastProblem(), "");
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(StoreInterruptionTest, CopyResults_RenamingFails_KeepsTheOldContent) {
  FaultyRenames renames;
  renames.fail({1}, EIO);
  EXPECT_FALSE(copyResults(base, copy));
  expectOldContent();
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(StoreInterruptionTest, CopyResults_WhereNamesCannotBeExchanged_TakesTheOldFoldersPlace) {
  FaultyRenames renames;
  renames.refuseExchanges();
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_EQ(lastProblem(), "");
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(StoreInterruptionTest, WhereRenamingKnowsNoFlags_EverythingWorksAndNothingIsReplaced) {
  FaultyRenames renames;
  renames.refuseFlags();
  EXPECT_TRUE(copyResults(base, copy)) << lastProblem();
  EXPECT_EQ(resultOf(copy), "new");
  EXPECT_FALSE(FileSystem::Directory::rename(folderOf(base), folderOf(copy)));
  EXPECT_EQ(lastProblem(),
            folderOf(base) + " cannot be renamed to " + folderOf(copy) + ": Invalid argument.");
  EXPECT_TRUE(moveResults(base, copy)) << lastProblem();
  EXPECT_FALSE(fs::exists(folderOf(base)));
  EXPECT_TRUE(ProjectData::ProjectStore(file, folderOf(copy)).remove()) << lastProblem();
  EXPECT_FALSE(fs::exists(folderOf(copy)));
  EXPECT_FALSE(fs::exists(unfinished));
}

// Renamings there: the exchange, the old folder away, the new one in, the old one back.
TEST_F(StoreInterruptionTest, CopyResults_SecondOfTwoStepsFails_PutsTheOldContentBack) {
  for (const int failing : {2, 3}) {
    FaultyRenames renames;
    renames.refuseExchanges();
    renames.fail({failing}, EIO);
    EXPECT_FALSE(copyResults(base, copy));
    expectOldContent();
    EXPECT_FALSE(fs::exists(unfinished));
  }
}

TEST_F(StoreInterruptionTest, CopyResults_OldContentCannotBePutBack_IsThereAfterTheNextOpening) {
  {
    FaultyRenames renames;
    renames.refuseExchanges();
    renames.fail({3, 4}, EIO);
    EXPECT_FALSE(copyResults(base, copy));
  }
  EXPECT_EQ(contentOf(setAside() + "/result.txt"), "old");
  EXPECT_FALSE(fs::exists(folderOf(copy)));
  EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
  expectOldContent();
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(StoreInterruptionTest, CopyResults_AfterContentWasLeftAside_WorksFromThatContent) {
  fs::create_directory(unfinished);
  fs::rename(folderOf(copy), setAside());
  EXPECT_FALSE(copyResults(base, copy, false));
  EXPECT_EQ(lastProblem(), "There are results in " + folderOf(copy) + " already.");
  fs::create_directory(unfinished);
  fs::rename(folderOf(copy), setAside());
  EXPECT_TRUE(copyResults(copy, base));
  EXPECT_EQ(resultOf(base), "old");
  EXPECT_EQ(resultOf(copy), "old");
}

TEST_F(StoreInterruptionTest, Remove_TakesWhatWasLeftAsideToo) {
  fs::create_directory(unfinished);
  const std::string path = folderOf(copy);
  fs::rename(path, setAside());
  EXPECT_TRUE(ProjectData::ProjectStore(file, path).remove());
  EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
  EXPECT_FALSE(fs::exists(path));
  EXPECT_FALSE(fs::exists(unfinished));
}

// Renamings there: the old folder away, the source in, the old one back.
TEST_F(StoreInterruptionTest, CopyResults_MovingFails_KeepsBoth) {
  for (const int failing : {1, 2}) {
    FaultyRenames renames;
    renames.fail({failing}, EIO);
    EXPECT_FALSE(moveResults(base, copy));
    expectOldContent();
    EXPECT_FALSE(fs::exists(unfinished));
  }
}

TEST_F(StoreInterruptionTest, CopyResults_LeavesWhatOthersKeepInTheUnfinishedFolder) {
  fs::create_directories(unfinished + "/notes");
  fs::create_directories(unfinished + "/old-0123456789abcdeX");
  writeFile(unfinished + "/notes/file", "keep");
  writeFile(unfinished + "/old-0123456789abcdeX/file", "keep");
  EXPECT_TRUE(copyResults(base, copy));
  EXPECT_TRUE(moveResults(copy, base));
  EXPECT_TRUE(ProjectData::ProjectStore(file, folderOf(base)).remove());
  EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
  EXPECT_EQ(contentOf(unfinished + "/notes/file"), "keep");
  EXPECT_EQ(contentOf(unfinished + "/old-0123456789abcdeX/file"), "keep");
}

TEST_F(StoreInterruptionTest, Remove_OnAFullDisk_StillMakesRoom) {
  FaultyRenames renames;
  renames.failMakingFolders(ENOSPC);
  EXPECT_TRUE(ProjectData::ProjectStore(file, folderOf(copy)).remove());
  EXPECT_FALSE(fs::exists(folderOf(copy)));
}

TEST_F(StoreInterruptionTest, Remove_RenamingFails_KeepsTheFolderWhole) {
  FaultyRenames renames;
  renames.fail({1}, EIO);
  EXPECT_FALSE(ProjectData::ProjectStore(file, folderOf(copy)).remove());
  expectOldContent();
  EXPECT_FALSE(fs::exists(unfinished));
}

// Runs the operation in a process of its own, which ends at the renaming of that ordinal.
bool endsAt(int ordinal, bool refuseExchanges, const std::function<void()> &operation) {
  const pid_t child = fork();
  if (child == 0) {
    FaultyRenames renames;
    renames.endAt(ordinal);
    if (refuseExchanges) {
      renames.refuseExchanges();
    }
    operation();
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == FaultyRenames::kEnded;
}

// Renamings there: the folder away, its inner folder up.
TEST_F(StoreInterruptionTest, Remove_Killed_IsWholeOrGoneOnceOpenedAgain) {
  const std::string path = folderOf(copy);
  const auto remove = [&] {
    ProjectData::ProjectStore(file, path).remove();
  };
  EXPECT_TRUE(endsAt(1, false, remove));
  EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
  expectOldContent();
  EXPECT_TRUE(endsAt(2, false, remove));
  EXPECT_FALSE(fs::exists(path));
  EXPECT_TRUE(fs::exists(unfinished));
  EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
  EXPECT_FALSE(fs::exists(path));
  EXPECT_FALSE(fs::exists(unfinished));
}

TEST_F(StoreInterruptionTest, KilledAtAnyRenaming_IsBeforeOrAfterOnceOpenedAgain) {
  int trials = 0;
  int violations = 0;
  for (const bool moves : {false, true}) {
    for (const bool refuseExchanges : {false, true}) {
      for (int ordinal = 1;; ++ordinal) {
        fill(base, "new");
        fill(copy, "old");
        const bool hasEnded = endsAt(ordinal, refuseExchanges,
                                     [&] { moves ? moveResults(base, copy) : copyResults(base, copy); });
        EXPECT_TRUE(removeUnfinishedCopies(file, problem)) << problem;
        const std::string from = resultOf(base);
        const std::string to = resultOf(copy);
        const bool isBefore = from == "new" && to == "old";
        const bool isAfter = from == (moves ? "" : "new") && to == "new";
        ++trials;
        violations += (isBefore || isAfter) && !fs::exists(unfinished) ? 0 : 1;
        if (!hasEnded) {
          EXPECT_TRUE(isAfter);
          break;
        }
      }
    }
  }
  std::cout << "Killed while results were copied: " << trials << " trials, " << violations << " violations\n";
  EXPECT_EQ(violations, 0);
  EXPECT_EQ(trials, 16);
}

} // namespace
} // namespace EmbeddedHost
