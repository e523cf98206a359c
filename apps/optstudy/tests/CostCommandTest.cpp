#include "EmbeddedHost/Project.h"
#include "apps/optstudy/tests/CommandRun.h"

#include <gtest/gtest.h>

#include <locale>
#include <map>
#include <sstream>
#include <tuple>

namespace {

// Rows x = 0 to `last`, results by formula: double = 2 x. The cost is the double.
std::string studyText(const std::string &last) {
  return "version: 1\n"
         "model:\n"
         "  P:\n"
         "    x: 0\n"
         "    double: {result: true}\n"
         "formulas:\n"
         "  P.double: \"2.0 * %P.x%\"\n"
         "study:\n"
         "  target: maximise\n"
         "  cost: \"%P.double%\"\n"
         "  inputs: [P.x]\n"
         "  outputs: [P.double]\n"
         "  variants: {grid: {P.x: {minimum: 0, maximum: " +
         last + ", step: 1}}}\n";
}

// All that the project's file says of the last run of every version.
using Records =
    std::map<std::string, std::tuple<EmbeddedHost::RunStatus, std::string, std::vector<std::string>,
                                     std::int64_t, double, std::string>>;

Records recordsOf(const std::string &file) {
  std::string problem;
  const auto project = EmbeddedHost::Project::open(file, EmbeddedHost::OpenMode::ReadOnly, problem);
  if (project == nullptr) {
    ADD_FAILURE() << problem;
    return {};
  }
  Records records;
  for (const auto &[version, record] : project->runRecords()) {
    records[version->getLabel()] = {record.status,    record.reason,          record.keys,
                                    record.startedAt, record.durationSeconds, record.logTail};
  }
  return records;
}

class CostCommandTest : public ::testing::Test {
protected:
  void solve(const std::string &last) const {
    m_folder.write("p.study.yaml", studyText(last));
    const CommandResult result = runCommand(m_folder, {"run", "p.study.yaml", "-q"});
    ASSERT_EQ(result.exitCode, 0) << result.messages;
  }
  CommandResult cost(const std::vector<std::string> &more) const {
    std::vector<std::string> arguments{"cost", "p.optstudy"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runCommand(m_folder, arguments);
  }
  std::vector<std::string> rows() const {
    return linesOf(runCommand(m_folder, {"show", "p.optstudy", "--format", "csv"}).output);
  }

  TemporaryFolder m_folder;
};

TEST_F(CostCommandTest, AnotherCostOfAThousandRows_PricesThemAndRunsNone) {
  solve("999");
  const Records before = recordsOf(m_folder.file("p.optstudy"));
  ASSERT_EQ(before.size(), 1000U);
  EXPECT_EQ(rows().back(), "999,Variant 999,ok,,999,1998,1998");
  const CommandResult result = cost({"-%P.double% + 3.0"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_NE(result.output.find("* Best: row 0, Base, cost 3\n"), std::string::npos);
  EXPECT_EQ(recordsOf(m_folder.file("p.optstudy")), before);
  const std::vector<std::string> after = rows();
  ASSERT_EQ(after.size(), 1002U);
  for (int row = 1; row < 1000; ++row) { // every one of them
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << row << ",Variant " << row << ",ok,," << row << ',' << 2 * row << ',' << 3 - 2 * row;
    EXPECT_EQ(after[static_cast<std::size_t>(row) + 2], line.str());
  }
}

TEST_F(CostCommandTest, CostThatCannotBeBuilt_LeavesTheOldOneAndSaysWhereAndWhy) {
  solve("3");
  const std::vector<std::string> before = rows();
  const CommandResult result = cost({"%P.double% + * 2.0"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.messages.find("The cost cannot be built, and the old one stays: Syntax error"), 0U);
  EXPECT_NE(result.messages.find(" at character 14: %P.double% + ^* 2.0\n"), std::string::npos)
      << result.messages;
  EXPECT_EQ(rows(), before);
  EXPECT_EQ(cost({}).output, "%P.double%\n");
}

TEST_F(CostCommandTest, CostThatIsSeldomMeant_IsWarnedOfByEveryCommandThatTakesIt) {
  solve("3");
  const std::string warning = "\"%P.double%\" is a double and becomes an int, the type of the right operand "
                              "\"2\". Write \"2.0\" instead of \"2\"";
  const CommandResult result = cost({"%P.double% * 2"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.messages, "warning: the cost: " + warning + "; at character 1: ^%P.double% * 2\n");
  std::string study = studyText("3");
  study.replace(study.find("%P.double%\"\n"), 11, "%P.double% * 2\"");
  m_folder.write("p.study.yaml", study);
  for (const char *command : {"check", "run"}) {
    const CommandResult other = runCommand(m_folder, {command, "p.study.yaml"});
    EXPECT_EQ(other.exitCode, 0) << other.messages;
    EXPECT_NE(other.messages.find("warning: p.study.yaml:10:10: the cost: " + warning + "\n"),
              std::string::npos)
        << other.messages;
  }
}

TEST_F(CostCommandTest, Quiet_WarnsNot) {
  solve("3");
  EXPECT_EQ(cost({"-q", "%P.double% * 2"}).messages, "");
}

TEST_F(CostCommandTest, TextThatBeginsWithAMinus_IsNoOption) {
  solve("3");
  const struct {
    const char *text;
    const char *best;
  } texts[] = {{"-%P.double%", "* Best: row 0, Base, cost -0\n"},
               {"-1.0 + %P.x%", "* Best: row 3, Variant 3, cost 2 (the baseline: -1)\n"},
               {"--5.0 * %P.x%", "* Best: row 3, Variant 3, cost 15 (the baseline: 0)\n"},
               {"-e * %P.x%", "* Best: row 0, Base, cost -0\n"}};
  for (const auto &row : texts) {
    const CommandResult result = cost({row.text});
    EXPECT_EQ(result.exitCode, 0) << row.text << "\n" << result.messages;
    EXPECT_NE(result.output.find(row.best), std::string::npos) << row.text << "\n" << result.output;
    EXPECT_EQ(cost({}).output, std::string(row.text) + "\n");
  }
}

TEST_F(CostCommandTest, OptionsAroundAText_AreOptions) {
  solve("3");
  const CommandResult result =
      runCommand(m_folder, {"--log-file", "log", "cost", "-v", "p.optstudy", "-%P.x%", "--quiet"});
  EXPECT_EQ(result.exitCode, 0) << result.messages;
  EXPECT_TRUE(m_folder.has("log"));
  EXPECT_EQ(cost({}).output, "-%P.x%\n");
  EXPECT_EQ(cost({"--help"}).exitCode, 0);
  EXPECT_EQ(cost({}).output, "-%P.x%\n");
}

} // namespace
