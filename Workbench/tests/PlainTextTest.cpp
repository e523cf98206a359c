#include "Workbench/src/PlainText.h"

#include <gtest/gtest.h>

namespace Workbench {
namespace {

TEST(PlainTextTest, InOneLine_ControlCharacters_BecomeQuestionMarks) {
  EXPECT_EQ(inOneLine("a\nb\tc\x1b[31md\x7f"), "a?b?c?[31md?");
  EXPECT_EQ(inOneLine(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(inOneLine("a\u009b31mb\u0080\u009f"), "a?31mb??");
}

TEST(PlainTextTest, InOneLine_WhatIsPrinted_StaysAsItIs) {
  EXPECT_EQ(inOneLine("\u00a0\u00e9 \u20ac ~"), "\u00a0\u00e9 \u20ac ~");
  EXPECT_EQ(inOneLine("\xc2"), "\xc2");
  EXPECT_EQ(inOneLine(""), "");
}

TEST(PlainTextTest, JoinedWords_HaveBlanksBetween) {
  EXPECT_EQ(joinedWords({"ngspice", "-b", "in.cir"}), "ngspice -b in.cir");
  EXPECT_EQ(joinedWords({}), "");
}

TEST(PlainTextTest, ShellWord_PlainName_StaysAsItIs) {
  EXPECT_EQ(shellWord("demo/beam.study-2_a.yaml"), "demo/beam.study-2_a.yaml");
  EXPECT_EQ(shellWord("\u00e4.yaml"), "\u00e4.yaml");
}

TEST(PlainTextTest, ShellWord_WhatAShellWouldTakeApart_StandsInQuotes) {
  EXPECT_EQ(shellWord("my study.yaml"), "'my study.yaml'");
  EXPECT_EQ(shellWord("it's"), "'it'\\''s'");
  EXPECT_EQ(shellWord("$HOME;`x`"), "'$HOME;`x`'");
  EXPECT_EQ(shellWord(""), "''");
}

TEST(PlainTextTest, IsUtf8Text_WellFormedWithoutNul) {
  EXPECT_TRUE(isUtf8Text(""));
  EXPECT_TRUE(isUtf8Text("a\xc3\xbc\xe2\x82\xac\xf0\x9f\x98\x80"));
  EXPECT_FALSE(isUtf8Text("a\xff"));
  EXPECT_FALSE(isUtf8Text("\xc3"));
  EXPECT_FALSE(isUtf8Text("\xed\xa0\x80"));
  EXPECT_FALSE(isUtf8Text(std::string("a\0b", 3)));
}

} // namespace
} // namespace Workbench
