#include "Workbench/RunKeys.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <unistd.h>

namespace Workbench {
namespace {

StudySolver solver(const std::string &pattern = "(x)") {
  StudySolver solver;
  solver.command = {"solve", "-b"};
  std::string problem;
  solver.extractors.push_back({"A.b",
                               ResultSource::File,
                               "out",
                               "m",
                               *EmbeddedHost::ResultExtractor::create(pattern, 1, problem),
                               {}});
  return solver;
}

std::vector<RunFile> files() {
  return {{"in", "1 2", "", ""}, {"lib", "", "/somewhere/lib", "abc"}};
}

TEST(RunKeysTest, SameInputs_GiveTheSameKeys) {
  EXPECT_EQ(runKeys(solver(), "p", files()).texts(), runKeys(solver(), "p", files()).texts());
  EXPECT_EQ(runKeys(solver(), "p", files()).run.rfind("run-1:", 0), 0U);
  EXPECT_EQ(runKeys(solver(), "p", files()).extract.rfind("extract-1:", 0), 0U);
}

TEST(RunKeysTest, EveryInput_ChangesTheRunKeyAlone) {
  std::set<std::string> keys{runKeys(solver(), "p", files()).run};
  const std::string extract = runKeys(solver(), "p", files()).extract;
  const auto expectNew = [&](const StudySolver &changedSolver, const std::string &program,
                             const std::vector<RunFile> &changedFiles, const char *what) {
    const RunKeys changed = runKeys(changedSolver, program, changedFiles);
    EXPECT_TRUE(keys.insert(changed.run).second) << what;
    EXPECT_EQ(changed.extract, extract) << what;
  };
  expectNew(solver(), "q", files(), "program");
  StudySolver changed = solver();
  changed.command = {"solve-b"};
  expectNew(changed, "p", files(), "command");
  changed = solver();
  changed.environment = {{"A", "1"}};
  expectNew(changed, "p", files(), "environment");
  changed = solver();
  changed.exitCodes = {0, 1};
  expectNew(changed, "p", files(), "exit codes");
  std::vector<RunFile> other = files();
  other[0].content = "1 2 ";
  expectNew(solver(), "p", other, "content");
  other = files();
  other[0].name = "inp";
  expectNew(solver(), "p", other, "name");
  other = files();
  other[1].fingerprint = "abd";
  expectNew(solver(), "p", other, "copied file");
}

TEST(RunKeysTest, PlaceOfACopiedFile_ChangesNothing) {
  std::vector<RunFile> moved = files();
  moved[1].copyOf = "/elsewhere/lib";
  EXPECT_EQ(runKeys(solver(), "p", moved).run, runKeys(solver(), "p", files()).run);
}

TEST(RunKeysTest, Extractor_ChangesTheExtractKeyAlone) {
  const RunKeys changed = runKeys(solver("(y)"), "p", files());
  EXPECT_EQ(changed.run, runKeys(solver(), "p", files()).run);
  EXPECT_NE(changed.extract, runKeys(solver(), "p", files()).extract);
}

TEST(RunKeysTest, Fingerprint_FollowsTheContent) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("fingerprint." + std::to_string(::getpid()));
  std::string problem;
  std::ofstream(file) << "one";
  const std::string one = fileFingerprint(file.string(), problem);
  std::ofstream(file) << "two";
  const std::string two = fileFingerprint(file.string(), problem);
  std::filesystem::remove(file);
  EXPECT_EQ(one.size(), 64U);
  EXPECT_NE(one, two);
  EXPECT_EQ(fileFingerprint(file.string(), problem), "");
  EXPECT_EQ(problem, file.string() + ": No such file or directory");
}

} // namespace
} // namespace Workbench
