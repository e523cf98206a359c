#include "EmbeddedHost/CsvText.h"

#include <gtest/gtest.h>

namespace EmbeddedHost {
namespace {

// The cells of every row as "text@line:column", rows ended by "/", and what is wrong at the end.
std::string read(const std::string &text, char delimiter = ',') {
  CsvReader reader(text, delimiter);
  std::vector<CsvCell> row;
  std::string all;
  while (reader.next(row)) {
    for (const CsvCell &cell : row) {
      all += cell.text + "@" + std::to_string(cell.line) + ":" + std::to_string(cell.column) + " ";
    }
    all += "/";
  }
  return all + (reader.problem().empty() ? "" : std::to_string(reader.line()) + " " + reader.problem());
}

TEST(CsvTextTest, Rows_AreReadWithPlacesAndWithoutBlanksAround) {
  EXPECT_EQ(read("a,b\n 1 ,\t2\n"), "a@1:1 b@1:3 /1@2:2 2@2:6 /");
  EXPECT_EQ(read("a;b", ';'), "a@1:1 b@1:3 /");
  EXPECT_EQ(read("a\t\tb\n", '\t'), "a@1:1 @1:3 b@1:4 /");
}

TEST(CsvTextTest, EmptyCells_AreCells) {
  EXPECT_EQ(read(",a,\n"), "@1:1 a@1:2 @1:4 /");
  EXPECT_EQ(read("a,"), "a@1:1 @1:3 /");
}

TEST(CsvTextTest, Lines_WithoutAnything_AreNoRows) {
  EXPECT_EQ(read("\r\n\na\r\n  \nb\n\n"), "a@3:1 /b@5:1 /");
  EXPECT_EQ(read(""), "");
}

TEST(CsvTextTest, ByteOrderMark_IsNoText) {
  EXPECT_EQ(read("\xEF\xBB\xBFname\n"), "name@1:1 /");
}

TEST(CsvTextTest, Quotes_KeepDelimitersQuotesAndLines) {
  EXPECT_EQ(read("\"a,\"\"b\"\"\",\"c\nd\",e\n"), "a,\"b\"@1:1 c\nd@1:11 e@2:4 /");
  EXPECT_EQ(read("\" a \",b\n"), " a @1:1 b@1:7 /");
}

TEST(CsvTextTest, Blanks_AsDelimiter_CountOnceHoweverMany) {
  EXPECT_EQ(read("  1   2\t3  \n4 5 6\n", ' '), "1@1:3 2@1:7 3@1:9 /4@2:1 5@2:3 6@2:5 /");
  EXPECT_EQ(read("\"a b\" c\n", ' '), "a b@1:1 c@1:7 /");
}

TEST(CsvTextTest, MalformedQuotes_AreReported) {
  EXPECT_EQ(read("a\n\"b\nc"), "a@1:1 /2 a double quote that is not closed");
  EXPECT_EQ(read("\"a\"b,c\n"), "1 text behind a closing double quote");
  EXPECT_EQ(read("\"a\"b c\n", ' '), "1 text behind a closing double quote");
}

} // namespace
} // namespace EmbeddedHost
