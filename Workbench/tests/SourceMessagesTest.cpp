#include "Workbench/tests/SourceMessages.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

using Texts = std::vector<std::string>;
using Indices = std::set<std::size_t>;

SourceStatement with(const Texts &literals) {
  return {"x.cpp", 1, "", literals};
}

TEST(SourceMessagesTest, StatementsOf_LiteralsOfOneStatement_StayTogether) {
  const std::vector<SourceStatement> found =
      statementsOf("x.cpp", "#include \"a.h\"\n"
                            "// \"no\" text\n"
                            "void f(int n) {\n"
                            "  g(\"one \"\n    \"two \" + n + \" three\\\"\"); /* \"nor\" this */\n"
                            "  if (n == 'x' || n == 1'000) { h('\"', \"four\"); }\n"
                            "}\n");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].literals, (Texts{"one two ", " three\""}));
  EXPECT_EQ(found[0].line, 5U);
  EXPECT_EQ(found[0].code, "   g(\"      + n + \")");
  EXPECT_EQ(found[1].literals, Texts{"four"});
}

TEST(SourceMessagesTest, StatementsOf_RawText_IsALiteral) {
  const std::vector<SourceStatement> found = statementsOf("x.cpp", "auto t = R\"x(a \"b\"\n;)x\";\n");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].literals, Texts{"a \"b\"\n;"});
  EXPECT_EQ(found[0].line, 2U);
}

TEST(SourceMessagesTest, MessagesOf_WhatStandsInFrontOfTheDash_IsAMessage) {
  EXPECT_EQ(messagesOf("Text with `code`.\n"
                       "- `one` and\n"
                       "  `two ...` — say `three`\n"
                       "  and `four`\n"
                       "`five`\n"
                       "- `six`\n"
                       "  — seven\n"),
            (Texts{"one", "two ...", "six"}));
}

TEST(SourceMessagesTest, LiteralsOf_MessageThatTheStatementMakes_AreThoseThatTakePart) {
  const struct {
    const char *message;
    Texts literals;
    Indices expected;
  } rows[] = {{"the file is empty", {"the file is empty"}, {0}},
              {"the file \"...\" is empty", {"the file \"", "unused", "\" is empty"}, {0, 2}},
              {"... must be a map, not ...", {" must be a map, not "}, {0}},
              {"it is below the minimum, ...", {"it is ", "below ", "above ", "the minimum, "}, {0, 1, 3}},
              {"it is above the minimum, ...", {"it is ", "below ", "above ", "the minimum, "}, {0, 2, 3}}};
  for (const auto &row : rows) {
    EXPECT_EQ(literalsOf(row.message, with(row.literals)), row.expected) << row.message;
  }
}

TEST(SourceMessagesTest, LiteralsOf_MessageThatTheStatementCannotMake_AreNone) {
  const struct {
    const char *message;
    Texts literals;
  } rows[] = {{"the file is empty", {"the file is full"}},
              {"the file is empty", {"the file was ", "is empty"}},
              {"the file is empty", {"is empty", "the file "}},
              {"the file \"...\" is empty", {"\" is empty", "the file \""}},
              {"...", {"anything"}}};
  for (const auto &row : rows) {
    EXPECT_TRUE(literalsOf(row.message, with(row.literals)).empty()) << row.message;
  }
}

} // namespace
} // namespace Workbench
