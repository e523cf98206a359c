#include "EmbeddedHost/tests/StoreFixture.h"
#include "HostModel/ProjectStore.h"

#include <filesystem>
#include <iostream>
#include <set>

namespace EmbeddedHost {
namespace {

namespace fs = std::filesystem;
using EntityModel::ModelVersion;
using ProjectData::ProjectStore;

class StoreLabelTest : public StoreTest {
protected:
  std::string canaryFolder = folder.path("canary");
  std::map<std::string, std::string> canary;

  StoreLabelTest() {
    makeCanary(canaryFolder);
    canary = contentsOf(canaryFolder);
  }

  // Every byte alone, ways out of the folder, too long ones, what shells and file systems take for something else.
  std::vector<std::string> hostileLabels() const {
    std::vector<std::string> labels = {"",
                                       ".",
                                       "..",
                                       "...",
                                       "/",
                                       "//",
                                       "/etc",
                                       "/etc/passwd",
                                       "../canary",
                                       "../canary/a",
                                       "../canary/a/b",
                                       "./../canary",
                                       "x/../../canary/a",
                                       "../fan.optstudy",
                                       "../fan.optstudy.lock",
                                       "../fan.optstudy-journal",
                                       "fan.optstudy",
                                       "fan.results",
                                       "unfinished",
                                       "unfinished/../../canary/a",
                                       "old-0123456789abcdef",
                                       "0123456789abcdef",
                                       "~",
                                       "~root",
                                       "$HOME",
                                       "$(touch x)",
                                       "`touch x`",
                                       "; rm x",
                                       "-rf",
                                       "--",
                                       "*",
                                       "?",
                                       "[a-z]",
                                       "%s%n",
                                       "%2e%2e%2f",
                                       "con",
                                       "NUL",
                                       "a\nb",
                                       "\n",
                                       "\r\n",
                                       " leading",
                                       "trailing ",
                                       "trailing.",
                                       "a\\b",
                                       "..\\canary",
                                       "C:\\",
                                       "\xc3\xa9",
                                       "e\xcc\x81",
                                       "\xc0\xae\xc0\xae\xc0\xaf",
                                       "\xed\xa0\x80",
                                       "\xf4\x90\x80\x80",
                                       std::string({'\xe2', '\x80', '\xae'}),
                                       "\xef\xbb\xbf",
                                       "\xe2\x80\x8b",
                                       "\xf0\x9f\x92\xa5",
                                       std::string("nul\0byte", 8),
                                       std::string("\0", 1),
                                       std::string("../canary\0x", 11),
                                       canaryFolder,
                                       folder.path()};
    for (const std::size_t length : {255U, 256U, 300U, 4095U, 4096U, 100'000U}) {
      labels.emplace_back(length, 'x');
      std::string climbing;
      while (climbing.size() < length) {
        climbing += "../";
      }
      labels.push_back(climbing + "canary");
    }
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte) {
      labels.emplace_back(1, static_cast<char>(byte));
      everyByte += static_cast<char>(byte);
    }
    labels.push_back(everyByte);
    return labels;
  }
};

TEST_F(StoreLabelTest, HostileLabels_AreOnlyLabels) {
  const std::vector<std::string> hostile = hostileLabels();
  const std::map<std::string, std::string> before = contentsOf(canaryFolder);
  std::vector<std::string> expected = {"Base", "Copy"};
  std::vector<std::string> paths;
  int violations = 0;
  fill(base, "sound");
  for (const std::string &label : hostile) {
    ModelVersion *version = follow(copy, "New");
    const std::string path = folderOf(version);
    version->setLabel(label);
    const bool isInPlace = folderOf(version) == path && fs::path(path).parent_path() == results;
    const bool isFilled = fill(version, "x") == path && copyResults(base, version) &&
                          resultOf(version) == "sound" && copyResults(version, copy) &&
                          ProjectStore(file, path).remove() && !fs::exists(path);
    expected.push_back(label);
    if (!isInPlace || !isFilled || contentsOf(canaryFolder) != before) {
      ++violations;
      ADD_FAILURE() << "label " << expected.size() << ": " << label << "; " << lastProblem();
    }
  }
  std::string problem;
  ASSERT_TRUE(project->save(problem)) << problem;
  const auto reopened = Project::open(file, OpenMode::ReadOnly, problem);
  ASSERT_NE(reopened, nullptr) << problem;
  const std::vector<ModelVersion *> versions = reopened->versions();
  ASSERT_EQ(versions.size(), expected.size());
  for (std::size_t index = 0; index < expected.size(); ++index) {
    violations += versions[index]->getLabel() == expected[index] ? 0 : 1;
  }
  violations += contentsOf(canaryFolder) == canary ? 0 : 1;
  // The project, its lock, the canary and the results folder with the two that were filled.
  std::set<std::string> left;
  for (const auto &entry : fs::directory_iterator(folder.path())) {
    left.insert(entry.path().filename().string());
  }
  EXPECT_EQ(left, (std::set<std::string>{"canary", "fan.optstudy", "fan.optstudy.lock", "fan.results"}));
  std::cout << "Hostile labels: " << hostile.size() << " trials, " << violations << " violations\n";
  EXPECT_GE(hostile.size(), 250U);
  EXPECT_EQ(violations, 0);
}

// Folders named by their labels, but never out of the test's own folder.
TEST_F(StoreLabelTest, FoldersNamedByLabels_AreFoundOut) {
  const std::string limit = folder.path() + "/";
  int trials = 0;
  int damaged = 0;
  for (const std::string &label : hostileLabels()) {
    const fs::path path = fs::path(results + "/" + label).lexically_normal();
    if (path.string().rfind(limit, 0) != 0) {
      continue;
    }
    fs::remove_all(canaryFolder);
    makeCanary(canaryFolder);
    canary = contentsOf(canaryFolder);
    std::error_code error;
    fs::create_directories(path, error);
    writeFile((path / "result.txt").string(), "x");
    ++trials;
    damaged += contentsOf(canaryFolder) == canary ? 0 : 1;
  }
  std::cout << "Hostile labels, folders named by them as the control: " << trials << " trials, " << damaged
            << " violations\n";
  EXPECT_GE(damaged, 5);
}

} // namespace
} // namespace EmbeddedHost
