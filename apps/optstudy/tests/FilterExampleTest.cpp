#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

namespace {

namespace fs = std::filesystem;

// One line of the printed matrix.
struct Row {
  bool isBest = false;
  std::string number;
  std::vector<std::string> fields; // after row and name, up to the status
  std::string status;
};

// Reads the lines between the dashes and the empty line; names are "Base" or "Variant" and a number.
std::vector<Row> rowsOf(const std::string &output) {
  std::vector<Row> rows;
  bool isInside = false;
  for (const std::string &line : linesOf(output)) {
    if (line.find_first_not_of("- ") == std::string::npos && !line.empty()) {
      isInside = true;
    } else if (isInside && line.empty()) {
      break;
    } else if (isInside) {
      std::istringstream stream(line);
      Row row;
      stream >> row.number;
      row.isBest = row.number == "*";
      if (row.isBest) {
        stream >> row.number;
      }
      std::string name;
      stream >> name;
      if (name == "Variant") {
        stream >> name;
      }
      for (std::string field; stream >> field;) {
        row.fields.push_back(field);
      }
      rows.push_back(row);
    }
  }
  return rows;
}

double numberOf(const std::string &text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  double number = std::nan("");
  stream >> number;
  return number;
}

class FilterExampleTest : public ::testing::Test {
protected:
  void SetUp() override {
    for (const char *name : {"filter.study.yaml", "filter.cir.template"}) {
      fs::copy_file(fs::path(OPTSTUDY_EXAMPLES) / "filter" / name, m_folder.path() / name);
    }
  }

  TemporaryFolder m_folder;
};

TEST_F(FilterExampleTest, EveryRow_AgreesWithTheClosedForm) {
  const CommandResult result = runCommand(m_folder, {"run", "filter.study.yaml"});
  ASSERT_EQ(result.exitCode, 0) << result.messages << result.output;
  const std::vector<Row> rows = rowsOf(result.output);
  ASSERT_EQ(rows.size(), 30U) << result.output;
  double lowestCost = HUGE_VAL;
  std::string best;
  for (const Row &row : rows) {
    // R, C1, C2, cut-off, diff, peaking, diff, cost, diff, status
    ASSERT_EQ(row.fields.size(), 10U) << result.output;
    EXPECT_EQ(row.fields[9], "ok");
    const double r = numberOf(row.fields[0]) * 1e3;
    const double c1 = numberOf(row.fields[1]) * 1e-9;
    const double c2 = numberOf(row.fields[2]) * 1e-9;
    const double pi = 3.14159265358979323846;
    const double q = 0.5 * std::sqrt(c1 / c2);
    const double a = 1.0 - 1.0 / (2.0 * q * q);
    const double cutOff = std::sqrt(a + std::sqrt(a * a + 1.0)) / (2.0 * pi * r * std::sqrt(c1 * c2)) / 1e3;
    const double peaking = a > 0.0 ? q / std::sqrt(1.0 - 1.0 / (4.0 * q * q)) : 1.0;
    const double cost = 10.0 * std::fabs(cutOff - 1.0) + 4.0 * (peaking - 1.0);
    EXPECT_NEAR(numberOf(row.fields[3]) / cutOff, 1.0, 1e-3) << row.number;
    EXPECT_NEAR(numberOf(row.fields[5]) / peaking, 1.0, 1e-3) << row.number;
    EXPECT_NEAR(numberOf(row.fields[7]), cost, 2e-3 * std::max(1.0, cost)) << row.number;
    if (cost < lowestCost) {
      lowestCost = cost;
      best = row.number;
    }
  }
  for (const Row &row : rows) {
    EXPECT_EQ(row.isBest, row.number == best) << row.number;
  }
}

TEST_F(FilterExampleTest, SecondRun_SolvesNothingAndPrintsTheSame) {
  const CommandResult first = runCommand(m_folder, {"run", "filter.study.yaml"});
  ASSERT_EQ(first.exitCode, 0) << first.messages;
  const CommandResult second = runCommand(m_folder, {"run", "filter.study.yaml"});
  EXPECT_EQ(second.exitCode, 0);
  EXPECT_EQ(second.output, first.output);
  EXPECT_NE(second.messages.find("Nothing to solve: 30 rows are solved already.\n"), std::string::npos)
      << second.messages;
}

TEST_F(FilterExampleTest, SolverThatIsNotInstalled_EndsBeforeAnyRow) {
  const CommandResult result =
      runCommand(m_folder, {"run", "filter.study.yaml"}, {{"PATH", m_folder.file("nothing here")}});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages,
            "filter.study.yaml:24:12: ngspice is not installed or not on the PATH; on Debian: apt "
            "install ngspice\n");
  EXPECT_FALSE(m_folder.has("filter.optstudy"));
}

TEST_F(FilterExampleTest, SolverThatWritesNothing_FailsTheBaselineAndNothingElseIsRun) {
  fs::create_directory(m_folder.path() / "bin");
  m_folder.writeProgram("bin/ngspice", "#!/bin/sh\nexit 0\n");
  const CommandResult result =
      runCommand(m_folder, {"run", "filter.study.yaml"}, {{"PATH", m_folder.file("bin") + ":/usr/bin:/bin"}});
  EXPECT_EQ(result.exitCode, 5);
  EXPECT_NE(result.output.find("30 rows: 0 ok, 1 failed, 29 not solved."), std::string::npos)
      << result.output;
  EXPECT_NE(
      result.messages.find("Stopped: the baseline failed: extraction: Filter.CutOff: stdout.log is empty\n"),
      std::string::npos)
      << result.messages;
}

TEST_F(FilterExampleTest, SolverThatWritesNothing_KeepsGoingUntilFiveRowsFailedAlike) {
  fs::create_directory(m_folder.path() / "bin");
  m_folder.writeProgram("bin/ngspice", "#!/bin/sh\nexit 0\n");
  const CommandResult result = runCommand(m_folder, {"run", "filter.study.yaml", "--keep-going"},
                                          {{"PATH", m_folder.file("bin") + ":/usr/bin:/bin"}});
  EXPECT_EQ(result.exitCode, 5);
  const std::vector<Row> rows = rowsOf(result.output);
  ASSERT_EQ(rows.size(), 30U) << result.output;
  for (const Row &row : rows) {
    // Behind the three inputs comes the status at once: no output, no cost, no difference.
    ASSERT_GE(row.fields.size(), 4U);
    EXPECT_TRUE(row.fields[3] == "failed:" || (std::stoi(row.number) >= 5 && row.fields[3] == "not"))
        << row.number;
    EXPECT_FALSE(row.isBest);
  }
  EXPECT_NE(result.messages.find("Stopped: 5 equal failures in a row: extraction: Filter.CutOff: stdout.log "
                                 "is empty\n"),
            std::string::npos)
      << result.messages;
  EXPECT_EQ(result.output.find("Best:"), std::string::npos);
  EXPECT_NE(result.output.find("failed: extraction: Filter.CutOff: stdout.log is empty"), std::string::npos)
      << result.output;
}

TEST_F(FilterExampleTest, SolverThatComesBack_IsRunAgain) {
  fs::create_directory(m_folder.path() / "bin");
  m_folder.writeProgram("bin/ngspice", "#!/bin/sh\nexit 0\n");
  const char *path = std::getenv("PATH");
  ASSERT_NE(path, nullptr);
  runCommand(m_folder, {"run", "filter.study.yaml"}, {{"PATH", m_folder.file("bin") + ":" + path}});
  const CommandResult result = runCommand(m_folder, {"run", "filter.study.yaml"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.messages.find("Solving 30 rows\n"), std::string::npos) << result.messages;
}

TEST_F(FilterExampleTest, SolverThatWasReplacedByAnEmptyOne_LeavesNoOldResult) {
  ASSERT_EQ(runCommand(m_folder, {"run", "filter.study.yaml"}).exitCode, 0);
  fs::create_directory(m_folder.path() / "bin");
  m_folder.writeProgram("bin/ngspice", "#!/bin/sh\nexit 0\n");
  const std::string path = std::getenv("PATH");
  const CommandResult result =
      runCommand(m_folder, {"run", "filter.study.yaml"}, {{"PATH", m_folder.file("bin") + ":" + path}});
  EXPECT_EQ(result.exitCode, 5);
  for (const Row &row : rowsOf(result.output)) {
    ASSERT_GE(row.fields.size(), 4U);
    EXPECT_TRUE(row.fields[3] == "failed:" || (std::stoi(row.number) >= 1 && row.fields[3] == "stale"))
        << row.number;
  }
}

} // namespace
