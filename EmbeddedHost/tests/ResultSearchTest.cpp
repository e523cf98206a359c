#include "EmbeddedHost/ResultExtractor.h"

#include <gtest/gtest.h>

#include <locale>
#include <sstream>

namespace EmbeddedHost {
namespace {

// The value and its line, or the reason why there is none.
std::string found(const ExtractionRule &rule, const std::string &text) {
  std::string problem;
  const std::optional<ResultExtractor> extractor = ResultExtractor::create(rule, problem);
  if (!extractor) {
    return problem;
  }
  const ExtractedResult result = extractor->extract(text, "out");
  EXPECT_EQ(result.value.has_value(), result.reason.empty());
  EXPECT_EQ(result.value.has_value(), result.failure == ExtractionFailure::None);
  if (!result.value) {
    return result.reason;
  }
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << std::fixed << *result.value;
  std::string number = stream.str();
  number.erase(number.find_last_not_of('0') + 1);
  return number + " in " + std::to_string(result.line);
}

struct Case {
  const char *text;
  const char *expected;
};

ExtractionRule pattern(const std::string &text, Reduction reduction = Reduction::Single) {
  ExtractionRule rule;
  rule.pattern = text;
  rule.reduction = reduction;
  return rule;
}

TEST(ResultSearchTest, Reductions_ChooseAmongAllMatches) {
  const char *text = "T=4\nT=-1\nT=9 T=4\n";
  const struct {
    Reduction reduction;
    const char *expected;
  } rows[] = {{Reduction::Single, "out:2: a second, different number \"-1\" after the one in line 1"},
              {Reduction::First, "4. in 1"},
              {Reduction::Last, "4. in 3"},
              {Reduction::Minimum, "-1. in 2"},
              {Reduction::Maximum, "9. in 3"},
              {Reduction::Sum, "16. in 1"},
              {Reduction::Mean, "4. in 1"},
              {Reduction::Count, "4. in 1"}};
  for (const auto &row : rows) {
    EXPECT_EQ(found(pattern("T=(\\S+)", row.reduction), text), row.expected);
  }
}

TEST(ResultSearchTest, Reduction_OverSomethingThatIsNoNumber_FindsNothing) {
  EXPECT_EQ(found(pattern("T=(\\S*)", Reduction::Maximum), "T=4\nT=nan\n"), "out:2: \"nan\" is not a number");
  EXPECT_EQ(found(pattern("T=(\\S*)", Reduction::Maximum), "T=4\nT=\n"),
            "out:2: nothing stands where the number should");
  EXPECT_EQ(found(pattern("T=(\\S+)", Reduction::Sum), "T=1e308\nT=1e308\n"),
            "out: the sum of the numbers is too large");
  EXPECT_EQ(found(pattern("T=(\\S+)", Reduction::Maximum), "x\n"), "out: no line matches \"T=(\\S+)\"");
}

TEST(ResultSearchTest, Count_CountsMatchesWhateverTheyHold) {
  EXPECT_EQ(found(pattern("warning: (.*)", Reduction::Count), "warning: a\nok\nwarning: b\n"), "2. in 1");
}

TEST(ResultSearchTest, AfterAndUntil_LimitTheSearch) {
  const char *text = "x=1\nSTRESS\nx=2\nEND\nx=3\nSTRESS\nx=4\n";
  ExtractionRule rule = pattern("x=(.*)", Reduction::Last);
  rule.after = "^STRESS";
  EXPECT_EQ(found(rule, text), "4. in 7");
  rule.until = "^END";
  EXPECT_EQ(found(rule, text), "2. in 3");
  rule.after = "";
  EXPECT_EQ(found(rule, text), "2. in 3");
  rule.after = "^STRAIN";
  EXPECT_EQ(found(rule, text), "out: no line matches \"^STRAIN\"");
  rule.after = "(";
  EXPECT_EQ(found(rule, text).rfind("\"(\" is no regular expression: ", 0), 0U);
}

TEST(ResultSearchTest, Key_IsFollowedByASeparatorAndTheNumber) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::KeyValue;
  rule.key = "mass";
  const Case rows[] = {
      {"mass = 12.5\n", "12.5 in 1"},
      {"mass=12.5", "12.5 in 1"},
      {"total mass : 3 kg", "3. in 1"},
      {"mass 7, next\n", "7. in 1"},
      {"mass=1;mass=1\n", "1. in 1"},
      {"mass=1\nmass=2\n", "out:2: a second, different number \"2\" after the one in line 1"},
      {"biomass = 1\nmass2 = 3\n", "out: no line holds the key \"mass\" with a value"},
      {"mass\n", "out: no line holds the key \"mass\" with a value"},
      {"mass =\n", "out:1: nothing stands where the number should"},
      {"mass = 12.5kg\n", "out:1: \"12.5kg\" is not a number"},
      {"mass is 5\n", "out:1: \"is\" is not a number"},
      // Half of a number of another locale, or of one with its thousands apart, would be a wrong number.
      {"mass = 1,5\n", "out:1: \"1,5\" is not a number"},
      {"mass = 12,345.6 kg\n", "out:1: \"12,345.6\" is not a number"},
      {"mass = 1;5\n", "out:1: \"1;5\" is not a number"},
      {"mass = 1,width = 5\n", "1. in 1"},
      {"mass = 1, 5\n", "1. in 1"}};
  for (const Case &row : rows) {
    EXPECT_EQ(found(rule, row.text), row.expected) << row.text;
  }
  rule.separators = "=";
  EXPECT_EQ(found(rule, "mass is 5\nmass = 6\n"), "6. in 2");
  rule.separators = ",";
  EXPECT_EQ(found(rule, "mass,6,7\n"), "6. in 1");
  rule.separators = "|";
  rule.key = "max. temperature";
  EXPECT_EQ(found(rule, "| max. temperature | 88.5 |\n"), "88.5 in 1");
}

ExtractionRule column(const TableColumn &wanted, Reduction reduction = Reduction::Single) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::TableColumn;
  rule.column = wanted;
  rule.reduction = reduction;
  return rule;
}

TEST(ResultSearchTest, Column_IsFoundByTitleOrNumber) {
  const char *text = "time,temp\n0,20\n1,80\n2,60\n";
  EXPECT_EQ(found(column({"temp", 0}, Reduction::Maximum), text), "80. in 3");
  EXPECT_EQ(found(column({"", 2}, Reduction::Last), text), "60. in 4");
  EXPECT_EQ(found(column({"", 2}, Reduction::First), "5,6\n7,8\n"), "6. in 1");
  EXPECT_EQ(found(column({"temp", 0}), text),
            "out:3: a second, different number \"80\" after the one in line 2");
  EXPECT_EQ(found(column({"Temp", 0}), text), "out:1: no column is called \"Temp\"");
  EXPECT_EQ(found(column({"t", 0}), "t,t\n1,2\n"), "out:1: two columns are called \"t\"");
  EXPECT_EQ(found(column({"", 3}), text), "out:1: the row has 2 columns, not 3");
  EXPECT_EQ(found(column({"temp", 0}, Reduction::Last), "time,temp\n0,20\n1\n"),
            "out:3: the row has 1 columns, not 2");
  EXPECT_EQ(found(column({"temp", 0}), "time,temp\n"), "out: the table has no row");
  EXPECT_EQ(found(column({"temp", 0}), "time,temp\n1,\n"), "out:2: nothing stands where the number should");
  EXPECT_EQ(found(column({"temp", 0}), "time,\"temp\n1,2\n"), "out:1: a double quote that is not closed");
}

TEST(ResultSearchTest, Column_WhereAnotherOne_ChoosesRows) {
  const char *text = "time;temp;node\n0;20;a\n1.0;80;b\n2;60;a\n";
  ExtractionRule rule = column({"temp", 0});
  rule.delimiter = ';';
  rule.whereColumn = {"time", 0};
  rule.whereValue = "1";
  EXPECT_EQ(found(rule, text), "80. in 3");
  rule.whereValue = "1.5";
  EXPECT_EQ(found(rule, text), "out: no row of the table is asked for");
  rule.isNearest = true;
  EXPECT_EQ(found(rule, text), "out:4: a second, different number \"60\" after the one in line 3");
  rule.whereValue = "1.4";
  EXPECT_EQ(found(rule, text), "80. in 3");
  rule.whereColumn = {"node", 0};
  EXPECT_EQ(found(rule, text), "out:2: \"a\" is not a number");
  rule.isNearest = false;
  rule.whereValue = "a";
  rule.reduction = Reduction::Maximum;
  EXPECT_EQ(found(rule, text), "60. in 4");
  rule.whereColumn = {"", 3};
  EXPECT_EQ(found(rule, text), "60. in 4");
}

TEST(ResultSearchTest, Column_OfATableBehindOtherLines_IsFound) {
  ExtractionRule rule = column({"", 3}, Reduction::Maximum);
  rule.delimiter = ' ';
  rule.skippedLines = 2;
  EXPECT_EQ(found(rule, "version \"2\n\n  1  0.5   7.5\n  2  0.6   8.5\n"), "8.5 in 4");
}

TEST(ResultSearchTest, FixedColumns_AreCutFromTheLine) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::FixedColumns;
  rule.pattern = "^ -1";
  rule.firstColumn = 14;
  rule.lastColumn = 25;
  rule.reduction = Reduction::Maximum;
  // Numbers without blanks between them.
  const char *text = " -4  DISP        4    1\n"
                     " -1         1-1.23456E+00-2.34567E-01\n"
                     " -1         2 4.50000E+00 1.00000E+00\n";
  EXPECT_EQ(found(rule, text), "4.5 in 3");
  EXPECT_EQ(found(rule, " -1         1\n"), "out:1: nothing stands where the number should");
  EXPECT_EQ(found(rule, " -3\n"), "out: no line matches \"^ -1\"");
  rule.pattern = "";
  rule.lineNumber = 2;
  rule.reduction = Reduction::Single;
  EXPECT_EQ(found(rule, text), "-1.23456 in 2");
  rule.lineNumber = 9;
  EXPECT_EQ(found(rule, text), "out: there is no line 9");
  rule.lastColumn = 13;
  EXPECT_EQ(found(rule, text), "columns count from 1, and the last one is not before the first");
}

TEST(ResultSearchTest, Pointer_LeadsThroughObjectsAndLists) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::JsonPointer;
  const char *text =
      "{\"a/b\": {\"~\": 1},\n \"r\": [{\"m\": 2}, {\"m\": 3}],\n \"t\": [5,\n 8, 6], \"n\": null, "
      "\"s\": \"4\"}";
  const struct {
    const char *pointer;
    Reduction reduction;
    const char *expected;
  } rows[] = {{"/a~1b/~0", Reduction::Single, "1. in 1"},
              {"/r/1/m", Reduction::Single, "3. in 2"},
              {"/t", Reduction::Maximum, "8. in 4"},
              {"/t/2", Reduction::Single, "6. in 4"},
              {"/t", Reduction::Single, "out:4: a second, different number \"8\" after the one in line 3"},
              {"/r", Reduction::Maximum, "out:2: an object is not a number"},
              {"/r/0", Reduction::Single, "out:2: an object is not a number"},
              {"/n", Reduction::Single, "out:4: nothing stands where the number should"},
              {"/s", Reduction::Single, "out:4: \"4\" is not a number"},
              {"/r/2/m", Reduction::Single, "out: there is nothing at \"/r/2/m\""},
              {"r", Reduction::Single, "\"r\" is no JSON pointer, such as /results/0/mass"},
              {"/~2", Reduction::Single, "\"/~2\" is no JSON pointer, such as /results/0/mass"}};
  for (const auto &row : rows) {
    rule.pointer = row.pointer;
    rule.reduction = row.reduction;
    EXPECT_EQ(found(rule, text), row.expected) << row.pointer;
  }
}

TEST(ResultSearchTest, Pointer_IntoATextThatWasCutShort_FindsNothing) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::JsonPointer;
  rule.pointer = "/m";
  EXPECT_EQ(found(rule, "{\"m\": 1,\n"), "out:2: this is no JSON text: the text ends too early");
  EXPECT_EQ(found(rule, "{\"m\": 1, \"m\": 2}"),
            "out:1: a second, different number \"2\" after the one in line 1");
  rule.pointer = "";
  EXPECT_EQ(found(rule, " 12 "), "12. in 1");
}

TEST(ResultSearchTest, WholeText_IsOneNumber) {
  ExtractionRule rule;
  rule.kind = ExtractionKind::WholeText;
  EXPECT_EQ(found(rule, "\n  12.5 \r\n"), "12.5 in 2");
  EXPECT_EQ(found(rule, "12 13\n"), "out:1: \"12 13\" is not a number");
  EXPECT_EQ(found(rule, " \n"), "out:1: nothing stands where the number should");
  EXPECT_EQ(found(rule, ""), "out is empty");
}

} // namespace
} // namespace EmbeddedHost
