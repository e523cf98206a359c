#include "EmbeddedHost/src/project/VersionStores.h"
#include "EmbeddedHost/tests/HostileLayouts.h"
#include "EmbeddedHost/tests/StoreFixture.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <functional>
#include <iostream>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using FileSystem::Directory;
using ProjectData::ProjectStore;

// What is done to the version "Copy", whose folder is hostile; "Base" is sound.
class StoreLayoutTest : public StoreTest {
public:
  // Each answers whether the outcome is the one that the layout calls for.
  bool findFolder() {
    const std::string before = tree.getVersionFolder(copy, false);
    return before == (isFolder(place.version) ? place.version : "") &&
           tree.getVersionFolder(copy, true) == before;
  }
  bool remove() {
    const bool isDone = hostile().remove();
    return isRefused ? !isDone : isDone && isGone(place.version) && isSound();
  }
  bool copyFrom() {
    const bool canBeCopied = isCopyable();
    ProjectStore target = sound();
    const bool isDone = hostile().copyResults(target, false, nullptr, true);
    return isDone == canBeCopied && (isDone ? isClean(place.other) : isRefused || isSound());
  }
  bool copyTo() {
    ProjectStore target = hostile();
    const bool isDone = sound().copyResults(target, false, nullptr, true);
    return isRefused ? !isDone : isDone && isSound() && isClean(place.version);
  }
  bool moveFrom() {
    const bool canBeMoved = !isRefused && isFolder(place.version);
    ProjectStore target = sound();
    const bool isDone = hostile().copyResults(target, true, nullptr, true);
    return isDone == canBeMoved && (isDone ? isGone(place.version) : isRefused || isSound());
  }
  bool moveTo() {
    ProjectStore target = hostile();
    const bool isDone = sound().copyResults(target, true, nullptr, true);
    return isRefused ? !isDone : isDone && isGone(place.other) && isClean(place.version);
  }
  bool rename() {
    const bool canBeRenamed = isFolder(place.version);
    return Directory::rename(place.version, unused) == canBeRenamed && isFolder(unused) == canBeRenamed;
  }
  bool sync() {
    const bool canBeWritten = isFolder(place.version) && !isTooDeep;
    std::string problem;
    const bool isDone = syncVersionFolder(file, fs::path(place.version).filename().string(), problem);
    return isDone == canBeWritten && isDone == problem.empty();
  }
  bool backUp() {
    // Without a folder there is nothing to copy, which is no failure; work that others left unfinished is not looked at.
    const bool hasResults = typeOf(results) == fs::file_type::directory;
    const bool canBeCopied =
        isGone(results) || (hasResults && (isGone(place.version) || (isFolder(place.version) && !isTooDeep)));
    std::string problem;
    const bool isDone = project->backup(backup, problem);
    const bool isAsItMustBe = isDone == canBeCopied && isDone == problem.empty() && isClean(backupResults);
    fs::remove_all(backupResults);
    fs::remove(backup);
    return isAsItMustBe;
  }
  bool clear() {
    std::string problem;
    const bool isDone = removeUnfinishedCopies(file, problem);
    return isDone == !isRefused && isDone == problem.empty() &&
           (isRefused || isGone(results + "/unfinished"));
  }

protected:
  LayoutPlace place{folder.path("canary"), results, folderOf(copy), folderOf(base)};
  std::string linked = folder.path("linked");
  std::string unused = results + "/fedcba9876543210";
  std::string backup = folder.path("backup.optstudy");
  std::string backupResults = folder.path("backup.results");
  std::map<std::string, std::string> canary;
  bool isRefused = false;
  bool isTooDeep = false;

  StoreLayoutTest() { makeCanary(place.canary); }

  void build(const HostileLayout &layout) {
    fs::remove_all(results);
    fs::remove(linked);
    writeFile(linked, "linked");
    fill(base, "sound");
    layout.build(place);
    canary = contentsOf(place.canary);
    isRefused = layout.isRefused;
    isTooDeep = layout.isTooDeep;
  }
  bool isUnharmed() const {
    return contentsOf(place.canary) == canary && contentOf(linked) == "linked" && fs::exists(file) &&
           fs::exists(file + ".lock");
  }
  ProjectStore hostile() { return {file, place.version}; }
  ProjectStore sound() { return {file, place.other}; }

  static fs::file_type typeOf(const std::string &path) {
    std::error_code error;
    return fs::symlink_status(path, error).type();
  }
  static bool isGone(const std::string &path) { return typeOf(path) == fs::file_type::not_found; }
  bool isFolder(const std::string &path) const {
    return typeOf(results) == fs::file_type::directory && typeOf(path) == fs::file_type::directory;
  }
  bool isSound() const { return contentOf(place.other + "/result.txt") == "sound"; }
  bool isCopyable() const { return !isRefused && !isTooDeep && isFolder(place.version); }
  // Whether a folder, if there is one, holds nothing but folders and files of its own.
  bool isClean(const std::string &path) const {
    if (!isFolder(path)) {
      return true;
    }
    for (const auto &entry : fs::recursive_directory_iterator(path)) {
      const fs::file_type type = entry.symlink_status().type();
      const bool isFile = type == fs::file_type::regular && contentOf(entry.path().string()) != "canary";
      if (!isFile && type != fs::file_type::directory) {
        return false;
      }
    }
    return true;
  }
};

struct StoreOperation {
  const char *name;
  bool (StoreLayoutTest::*run)();
};

void PrintTo(const StoreOperation &operation, std::ostream *stream) {
  *stream << operation.name;
}

class StoreLayoutOperationTest : public StoreLayoutTest,
                                 public testing::WithParamInterface<StoreOperation> {};

TEST_P(StoreLayoutOperationTest, LeadsNowhereElse) {
  int trials = 0;
  int violations = 0;
  for (const HostileLayout &layout : hostileLayouts()) {
    build(layout);
    const bool isAsItMustBe = (this->*GetParam().run)();
    const bool isHarmless = isUnharmed();
    ++trials;
    if (!isAsItMustBe || !isHarmless) {
      ++violations;
      ADD_FAILURE() << layout.name << (isHarmless ? "" : ": canary changed") << "; " << lastProblem();
    }
  }
  std::cout << "Hostile folders, " << GetParam().name << ": " << trials << " trials, " << violations
            << " violations\n";
  EXPECT_GE(trials, 30);
  EXPECT_EQ(violations, 0);
}

INSTANTIATE_TEST_SUITE_P(Operations, StoreLayoutOperationTest,
                         testing::Values(StoreOperation{"Folder", &StoreLayoutTest::findFolder},
                                         StoreOperation{"Remove", &StoreLayoutTest::remove},
                                         StoreOperation{"CopyFrom", &StoreLayoutTest::copyFrom},
                                         StoreOperation{"CopyTo", &StoreLayoutTest::copyTo},
                                         StoreOperation{"MoveFrom", &StoreLayoutTest::moveFrom},
                                         StoreOperation{"MoveTo", &StoreLayoutTest::moveTo},
                                         StoreOperation{"Rename", &StoreLayoutTest::rename},
                                         StoreOperation{"Sync", &StoreLayoutTest::sync},
                                         StoreOperation{"BackUp", &StoreLayoutTest::backUp},
                                         StoreOperation{"Clear", &StoreLayoutTest::clear}),
                         [](const auto &operation) { return std::string(operation.param.name); });

// Follows links as a loop over paths does, but never out of the test's own folder.
void removeNaively(const fs::path &path, const std::string &limit, int depth) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  if (error || depth > 20 || real.string().rfind(limit + "/", 0) != 0) {
    return;
  }
  if (fs::is_directory(real, error)) {
    std::vector<fs::path> entries;
    for (const auto &entry : fs::directory_iterator(path, error)) {
      entries.push_back(entry.path());
    }
    for (const fs::path &entry : entries) {
      removeNaively(entry, limit, depth + 1);
    }
  }
  fs::remove(path, error);
}

TEST_F(StoreLayoutTest, NaiveRemoval_IsFoundOut) {
  int trials = 0;
  int damaged = 0;
  for (const HostileLayout &layout : hostileLayouts()) {
    fs::remove_all(place.canary);
    makeCanary(place.canary);
    build(layout);
    removeNaively(place.version, fs::canonical(folder.path()).string(), 0);
    ++trials;
    damaged += contentsOf(place.canary) == canary ? 0 : 1;
  }
  std::cout << "Hostile folders, naive removal as the control: " << trials << " trials, " << damaged
            << " violations\n";
  EXPECT_GE(damaged, 8);
}

TEST_F(StoreLayoutTest, NaiveCopy_IsFoundOut) {
  build({"link to a file outside", [](const LayoutPlace &where) {
           fs::create_directory(where.version);
           fs::create_symlink(where.canary + "/file", where.version + "/link");
         }});
  fs::copy(place.version, results + "/copied", fs::copy_options::recursive);
  EXPECT_FALSE(isClean(results + "/copied"));
}

} // namespace
} // namespace EmbeddedHost
