#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

// The examples of the source tree that are studies.
std::vector<std::string> exampleNames() {
  std::vector<std::string> names;
  for (const fs::directory_entry &entry : fs::directory_iterator(OPTSTUDY_EXAMPLES)) {
    const std::string name = entry.path().filename().string();
    if (fs::exists(entry.path() / (name + ".study.yaml"))) {
      names.push_back(name);
    }
  }
  std::sort(names.begin(), names.end());
  return names;
}

class InitCommandExamplesTest : public ::testing::TestWithParam<std::string> {
protected:
  TemporaryFolder m_folder;
};

TEST_P(InitCommandExamplesTest, WhatIsWritten_IsCheckedRunAndShown) {
  const CommandResult made = runCommand(m_folder, {"init", "demo", "--example", GetParam()});
  ASSERT_EQ(made.exitCode, 0) << made.messages;
  const std::string study = "demo/" + GetParam() + ".study.yaml";
  EXPECT_EQ(made.messages, "Next: optstudy check " + study + "\n");
  const CommandResult checked = runCommand(m_folder, {"check", study});
  EXPECT_EQ(checked.exitCode, 0) << checked.messages;
  EXPECT_EQ(checked.messages.find("warning"), std::string::npos) << checked.messages;
  const CommandResult solved = runCommand(m_folder, {"run", study});
  EXPECT_EQ(solved.exitCode, 0) << solved.messages;
  EXPECT_NE(solved.output.find("* Best: row "), std::string::npos) << solved.output;
  EXPECT_EQ(solved.output.find("failed"), std::string::npos) << solved.output;
  const CommandResult shown = runCommand(m_folder, {"show", study, "--status", "ok"});
  EXPECT_EQ(shown.exitCode, 0) << shown.messages;
  EXPECT_GT(linesOf(shown.output).size(), 10U) << shown.output;
}

INSTANTIATE_TEST_SUITE_P(Examples, InitCommandExamplesTest, ::testing::ValuesIn(exampleNames()),
                         [](const auto &name) {
                           std::string text = name.param;
                           std::replace(text.begin(), text.end(), '-', '_');
                           return text;
                         });

TEST(InitCommandTest, Examples_AreThoseOfTheSourceTree) {
  const TemporaryFolder folder;
  std::string names;
  for (const std::string &name : exampleNames()) {
    names += (names.empty() ? "" : ", ") + name;
  }
  const CommandResult result = runCommand(folder, {"init", "demo", "--example", "none"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_NE(result.messages.find("The examples are " + names + ".\n"), std::string::npos) << result.messages;
  EXPECT_GE(exampleNames().size(), 4U);
}

TEST(InitCommandTest, WithoutAName_WritesTheBeam_AndNeverOverIt) {
  const TemporaryFolder folder;
  const CommandResult made = runCommand(folder, {"init", "demo"});
  EXPECT_EQ(made.exitCode, 0) << made.messages;
  EXPECT_EQ(made.output, "demo/beam.awk.template\ndemo/beam.study.yaml\n");
  folder.write("demo/beam.awk.template", "mine");
  const CommandResult again = runCommand(folder, {"init", "demo"});
  EXPECT_EQ(again.exitCode, 3);
  EXPECT_EQ(again.output, "");
  EXPECT_EQ(folder.read("demo/beam.awk.template"), "mine");
}

TEST(InitCommandTest, WithoutAFolder_IsWrongUsage) {
  const TemporaryFolder folder;
  EXPECT_EQ(runCommand(folder, {"init"}).exitCode, 2);
  EXPECT_EQ(runCommand(folder, {"init", ""}).exitCode, 2);
}

TEST(InitCommandTest, Help_NamesTheExamples) {
  const TemporaryFolder folder;
  const CommandResult help = runCommand(folder, {"init", "--help"});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_NE(help.output.find("beam when left out"), std::string::npos) << help.output;
  EXPECT_NE(help.output.find("welded-beam"), std::string::npos) << help.output;
  EXPECT_NE(help.output.find("optstudy init demo --example filter"), std::string::npos) << help.output;
}

} // namespace
