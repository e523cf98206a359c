#include "apps/optstudy/tests/PageConsole.h"

#include <gtest/gtest.h>

namespace {

CommandResult printed(const std::string &output, const std::string &messages, int exitCode = 0) {
  CommandResult result;
  result.exitCode = exitCode;
  result.output = output;
  result.messages = messages;
  return result;
}

TEST(PageConsoleTest, StepsOf_CommandsAndWhatTheyPrint_AreToldApart) {
  const std::vector<ConsoleStep> steps = stepsOf("$ one -a\nfirst\n\nsecond\n$ two   # exit code 4\n");
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0].command, "one -a");
  EXPECT_EQ(steps[0].exitCode, 0);
  EXPECT_EQ(steps[0].shown, (std::vector<std::string>{"first", "", "second"}));
  EXPECT_EQ(steps[1].exitCode, 4);
  EXPECT_TRUE(steps[1].shown.empty());
}

TEST(PageConsoleTest, Mismatch_WhatIsShownComesOut_IsNone) {
  const ConsoleStep step{"x", 0, {"a 1", "note", "took ... s", "...", "end"}};
  EXPECT_EQ(mismatch(step, printed("a 1\ntook 0.5 s\nb\nc\nend\n", "other\nnote\n")), "");
}

TEST(PageConsoleTest, Mismatch_AnythingThatDiffers_IsTold) {
  const struct {
    std::vector<std::string> shown;
    const char *output;
    const char *messages;
    const char *told;
  } rows[] = {{{"a"}, "b\n", "", "not printed: a"},
              {{"a"}, "a\nb\n", "", "not shown: b"},
              {{"b"}, "a\nb\n", "", "not printed: b"},
              {{"a", "b"}, "b\na\n", "", "not printed: a"},
              {{"a", "...", "c"}, "a\nb\n", "", "not printed: c"},
              {{"...", "a"}, "a\nb\n", "", "not shown: b"},
              {{"a ... s"}, "a 1 min\n", "", "not printed: a ... s"},
              {{"a ... s"}, "b a 1 s\n", "", "not printed: a ... s"},
              {{"a"}, "ab\n", "", "not printed: a"},
              {{"n", "m"}, "", "m\nn\n", "not printed: m"},
              {{}, "a\n", "", "not shown: a"}};
  for (const auto &row : rows) {
    EXPECT_EQ(mismatch({"x", 0, row.shown}, printed(row.output, row.messages)), row.told);
  }
}

TEST(PageConsoleTest, Mismatch_AnotherExitCode_IsTold) {
  EXPECT_EQ(mismatch({"x", 0, {}}, printed("", "", 3)), "ended with exit code 3 instead of 0\n");
  EXPECT_EQ(mismatch({"x", 3, {}}, printed("", "", 0)), "ended with exit code 0 instead of 3\n");
}

} // namespace
