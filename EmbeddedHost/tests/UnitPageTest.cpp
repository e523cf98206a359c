#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/UnitSpellings.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace EmbeddedHost {
namespace {

using Cells = std::vector<std::string>;

/// The rows of the page's tables by the header of their table, in plain text.
std::map<std::string, std::vector<Cells>> readTables() {
  std::ifstream file(OPTSTUDY_UNITS_PAGE, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << OPTSTUDY_UNITS_PAGE;
  std::map<std::string, std::vector<Cells>> tables;
  std::string header;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() != '|') {
      header.clear();
    } else if (header.empty()) {
      header = line;
    } else if (line.compare(0, 4, "|---") != 0) {
      Cells cells;
      for (std::size_t begin = 2, end = line.find('|', 2); end != std::string::npos;
           begin = end + 2, end = line.find('|', begin)) {
        cells.push_back(line.substr(begin, end > begin ? end - begin - 1 : 0));
      }
      tables[header].push_back(cells);
    }
  }
  return tables;
}

const std::map<std::string, std::vector<Cells>> &tables() {
  static const auto read = readTables();
  return read;
}

const std::vector<Cells> &table(const std::string &header, std::size_t atLeast) {
  static const std::vector<Cells> none;
  const auto found = tables().find(header);
  const std::vector<Cells> &rows = found == tables().end() ? none : found->second;
  EXPECT_GE(rows.size(), atLeast) << header;
  return rows;
}

/// The texts between the backticks.
Cells quoted(const std::string &cell) {
  Cells texts;
  for (std::size_t begin = cell.find('`'); begin != std::string::npos;) {
    const std::size_t end = cell.find('`', begin + 1);
    texts.push_back(cell.substr(begin + 1, end - begin - 1));
    begin = cell.find('`', end + 1);
  }
  return texts;
}

UnitResult parsed(const std::string &text) {
  return UnitSystem::process().parse(text);
}

std::string joined(const Cells &texts) {
  std::string all;
  for (const std::string &text : texts) {
    all += (all.empty() ? "" : " or ") + text;
  }
  return all;
}

/// \param size  a number and a unit, as in "3.6e6 J"
void expectSize(const std::string &written, const std::string &size) {
  const UnitResult unit = parsed(written);
  ASSERT_NE(unit.unit, nullptr) << written << ": " << unit.problem;
  const std::size_t blank = size.find(' ');
  double expected = 0.0;
  ASSERT_EQ(std::from_chars(size.data(), size.data() + blank, expected).ec, std::errc()) << size;
  const UnitResult base = parsed(size.substr(blank + 1));
  ASSERT_NE(base.unit, nullptr) << size << ": " << base.problem;
  EXPECT_NEAR(UnitSystem::process().convert(1.0, *unit.unit, *base.unit), expected, 1e-14 * expected)
      << written;
}

/// Each reading works, and no two are the same.
void expectReadings(const Cells &readings) {
  std::vector<const Unit *> units;
  for (const std::string &reading : readings) {
    const UnitResult unit = parsed(reading);
    ASSERT_NE(unit.unit, nullptr) << reading << ": " << unit.problem;
    for (const Unit *other : units) {
      const double size = UnitSystem::process().convert(1.0, *unit.unit, *other);
      EXPECT_TRUE(std::isnan(size) || std::abs(size - 1.0) > 1e-6) << joined(readings);
    }
    units.push_back(unit.unit);
  }
}

void expectAmbiguous(const std::string &written, const Cells &readings) {
  const UnitResult result = parsed(written);
  EXPECT_EQ(result.unit, nullptr) << written;
  EXPECT_EQ(result.problem, "The unit \"" + written + "\" is ambiguous: " + joined(readings) +
                                "; write the one that is meant.");
  EXPECT_GE(readings.size(), 2U) << written;
  expectReadings(readings);
}

std::set<std::string> writtenIn(const std::vector<Cells> &rows) {
  std::set<std::string> texts;
  for (const Cells &row : rows) {
    EXPECT_TRUE(texts.insert(quoted(row[0]).front()).second) << row[0] << " stands twice";
  }
  return texts;
}

std::set<std::string> writtenWith(const std::set<UnitTreatment> &treatments) {
  std::set<std::string> texts;
  for (const UnitSpellingRow &row : UnitSpellings::rows()) {
    if (treatments.count(row.treatment) > 0) {
      texts.emplace(row.written);
    }
  }
  return texts;
}

constexpr const char *kReadAsTheyAre = "| written | one of it |";
constexpr const char *kReadOtherwise = "| written | read as | one of it |";
constexpr const char *kAmbiguous = "| written | refused | write |";
constexpr const char *kForms = "| form | write |";
constexpr const char *kRefused = "| written | why | write |";

TEST(UnitPageTest, ReadAsTheyAre_HaveTheSizeOfThePage) {
  for (const Cells &row : table(kReadAsTheyAre, 80)) {
    const std::string written = quoted(row[0]).front();
    expectSize(written, quoted(row[1]).front());
    const UnitSpellingRow *known = UnitSpellings::find(written);
    EXPECT_TRUE(known == nullptr || known->treatment != UnitTreatment::Means) << written;
  }
}

TEST(UnitPageTest, ReadOtherwise_HaveTheMeaningAndSizeOfThePage) {
  for (const Cells &row : table(kReadOtherwise, 150)) {
    const std::string written = quoted(row[0]).front();
    const UnitSpellingRow *known = UnitSpellings::find(written);
    ASSERT_NE(known, nullptr) << written;
    EXPECT_EQ(known->meant, quoted(row[1]).front());
    expectSize(written, quoted(row[2]).front());
    expectSize(quoted(row[1]).front(), quoted(row[2]).front());
  }
}

TEST(UnitPageTest, Ambiguous_AreRefusedWithReadingsThatWork) {
  for (const Cells &row : table(kAmbiguous, 100)) {
    const std::string written = quoted(row[0]).front();
    const Cells readings = quoted(row[2]);
    if (row[1] == "always") {
      expectAmbiguous(written, readings);
      continue;
    }
    EXPECT_NE(parsed(written).unit, nullptr) << written;
    EXPECT_EQ(parsed(written + "/m").unit == nullptr, row[1] == "beside other units") << written;
    const UnitResult below = parsed("V/" + written);
    EXPECT_EQ(below.unit, nullptr) << written;
    EXPECT_EQ(below.problem.find("The unit \"V/" + written + "\" is ambiguous: V/"), 0U) << below.problem;
    expectReadings(readings);
  }
}

TEST(UnitPageTest, Forms_AreRefusedWithReadingsThatWork) {
  for (const Cells &row : table(kForms, 20)) {
    expectAmbiguous(quoted(row[0]).front(), quoted(row[1]));
  }
}

TEST(UnitPageTest, Refused_AreRefusedWithTheReasonAndWhatWorks) {
  for (const Cells &row : table(kRefused, 80)) {
    const std::string written = quoted(row[0]).front();
    const Cells instead = quoted(row[2]);
    const UnitResult result = parsed(written);
    EXPECT_EQ(result.unit, nullptr) << written;
    EXPECT_EQ(result.problem, "The unit \"" + written + "\" is refused: " + row[1] +
                                  (instead.empty() ? "." : "; write " + instead.front() + "."));
    expectReadings(instead);
  }
}

TEST(UnitPageTest, Page_ListsTheWholeTable) {
  EXPECT_EQ(writtenIn(table(kReadOtherwise, 1)), writtenWith({UnitTreatment::Means, UnitTreatment::Product}));
  EXPECT_EQ(writtenIn(table(kAmbiguous, 1)),
            writtenWith({UnitTreatment::Ambiguous, UnitTreatment::AmbiguousInCompound,
                         UnitTreatment::AmbiguousBelowLine}));
  EXPECT_EQ(writtenIn(table(kRefused, 1)), writtenWith({UnitTreatment::Refused}));
}

} // namespace
} // namespace EmbeddedHost
