#include "Workbench/src/CsvText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

TEST(CsvTextTest, Cell_IsQuotedWhereItMustBe) {
  EXPECT_EQ(csvCell("plain text"), "plain text");
  EXPECT_EQ(csvCell("a,b"), "\"a,b\"");
  EXPECT_EQ(csvCell("say \"x\""), "\"say \"\"x\"\"\"");
  EXPECT_EQ(csvCell("two\nlines"), "\"two\nlines\"");
  EXPECT_EQ(csvCell(" blank"), "\" blank\"");
  EXPECT_EQ(csvCell(""), "");
}

TEST(CsvTextTest, Line_EndsInALineFeed) {
  std::string text;
  appendCsvLine(text, {"a", "", "b,c"});
  EXPECT_EQ(text, "a,,\"b,c\"\n");
}

} // namespace
} // namespace Workbench
