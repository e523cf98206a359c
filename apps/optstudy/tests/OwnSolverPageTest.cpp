#include "Workbench/tests/PageText.h"
#include "apps/optstudy/tests/CommandRun.h"
#include "apps/optstudy/tests/PageConsole.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>

namespace {

using Workbench::PageExample;

// Writes the files of the page and types its commands, from its top to its end.
class Reader {
public:
  void read(const PageExample &example) {
    if (example.language == "console") {
      for (const ConsoleStep &step : stepsOf(example.text)) {
        type(step);
      }
    } else {
      ASSERT_FALSE(example.name.empty()) << "an example that nothing is done with:\n" << example.text;
      // What begins with a version is a whole study file, anything else are parts that change it.
      const bool isPart = example.language == "yaml" && example.text.compare(0, 8, "version:") != 0;
      m_folder.write(example.name,
                     isPart ? Workbench::withParts(m_folder.read(example.name), example.text) : example.text);
      m_files.insert(example.name);
    }
  }

  std::size_t commands() const { return m_commands; }
  const std::set<std::string> &files() const { return m_files; }

private:
  void type(const ConsoleStep &step) {
    ++m_commands;
    std::map<std::string, std::string> environment{{"PATH", m_path}};
    if (step.command.compare(0, 9, "optstudy ") != 0) {
      environment["LC_ALL"] = "C.UTF-8"; // what other programs print in another language is not on the page
    }
    CommandRun run(m_folder, {}, environment, {"/bin/sh", "-c", step.command});
    EXPECT_EQ(mismatch(step, run.wait()), "") << "$ " << step.command;
  }

  TemporaryFolder m_folder;
  std::string m_path =
      std::filesystem::path(OPTSTUDY_PROGRAM).parent_path().string() + ":" + std::getenv("PATH");
  std::set<std::string> m_files;
  std::size_t m_commands = 0;
};

TEST(OwnSolverPageTest, EveryFileAndCommand_DoesWhatThePageSays) {
  Reader reader;
  for (const PageExample &example : Workbench::examplesOf(Workbench::fileText(OPTSTUDY_OWN_SOLVER_PAGE))) {
    reader.read(example);
  }
  EXPECT_EQ(reader.files(),
            (std::set<std::string>{"tank.sh", "tank.txt", "tank.txt.template", "tank.study.yaml", "shape.sh",
                                   "drain.sh", "stages.study.yaml", "formats.sh", "formats.study.yaml"}));
  EXPECT_EQ(reader.commands(), 21U);
}

// What has no name and is no console is of the tree itself, as how to build it.
TEST(OwnSolverPageTest, StudyOfTheReadme_DoesWhatItSays) {
  Reader reader;
  for (const PageExample &example : Workbench::examplesOf(Workbench::fileText(OPTSTUDY_README))) {
    if (!example.name.empty() || example.language == "console") {
      reader.read(example);
    }
  }
  EXPECT_EQ(reader.files(), (std::set<std::string>{"drag.sh", "drag.study.yaml"}));
  EXPECT_EQ(reader.commands(), 2U);
}

TEST(OwnSolverPageTest, EveryWayToFindAResult_IsShown) {
  std::string studies;
  for (const PageExample &example : Workbench::examplesOf(Workbench::fileText(OPTSTUDY_OWN_SOLVER_PAGE))) {
    studies += example.language == "yaml" ? example.text : "";
  }
  for (const char *way : {"pattern: ", "key: ", "column: ", "pointer: ", "columns: ", "whole: ",
                          "exit-code: ", "wall-time: "}) {
    const bool isFirst = studies.find("{" + std::string(way)) != std::string::npos;
    EXPECT_TRUE(isFirst || studies.find(", " + std::string(way)) != std::string::npos) << way;
  }
}

} // namespace
