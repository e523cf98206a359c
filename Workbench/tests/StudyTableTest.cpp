#include "Workbench/tests/StudyText.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace Workbench {
namespace {

namespace fs = std::filesystem;

const char *const kText = R"yaml(version: 1
model:
  F:
    R: {value: 10 kohm, minimum: 1 kohm, maximum: 100 kohm}
    n: {kind: integer, value: 2}
    t: {kind: choice, options: [a, b], value: a}
    y: {result: true}
formulas: {F.y: "%F.R%"}
study:
  inputs: [{name: R, attribute: F.R, maximum: 50 kohm}, F.n, F.t]
  outputs: [F.y]
  variants: {csv: rows.csv}
)yaml";

class StudyTableTest : public ::testing::Test {
protected:
  StudyTableTest() {
    std::string pattern = (fs::temp_directory_path() / "study-table.XXXXXX").string();
    m_folder = ::mkdtemp(pattern.data());
  }
  ~StudyTableTest() override {
    std::error_code error;
    fs::remove_all(m_folder, error);
  }

  std::string study() const { return (m_folder / "s.yaml").string(); }
  void write(const std::string &table) const {
    std::ofstream(m_folder / "rows.csv", std::ios::binary) << table;
  }
  StudyFile read(const std::string &table, const std::string &text = kText) const {
    write(table);
    return studyIn(text, study());
  }
  // Without the folder's name.
  std::string problems(const std::string &table, const std::string &text = kText) const {
    write(table);
    std::string found = problemsIn(text, study());
    const std::string folder = m_folder.string() + "/";
    for (std::size_t at = found.find(folder); at != std::string::npos; at = found.find(folder)) {
      found.erase(at, folder.size());
    }
    return found;
  }
  static std::vector<double> numbers(const StudyRow &row) {
    std::vector<double> values;
    for (const StudyValue &value : row.values) {
      values.push_back(value.number);
    }
    return values;
  }

  fs::path m_folder;
};

using Numbers = std::vector<double>;

TEST_F(StudyTableTest, Rows_AreVariants) {
  const StudyFile file = read("name,R,F.n,F.t\nsmall,4700 ohm,3,b\n,22,,\n");
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].name, "small");
  EXPECT_EQ(numbers(file.rows[0]), (Numbers{4.7, 3.0, 2.0}));
  EXPECT_EQ(file.rows[1].name, "");
  EXPECT_EQ(numbers(file.rows[1]), (Numbers{22.0, 2.0, 1.0}));
  EXPECT_EQ(file.rows[1].place.line, 3U);
}

TEST_F(StudyTableTest, UnitsRow_AppliesToBareNumbers) {
  const StudyFile file = read("R,F.n\nohm,\n4700,3\n22 kohm,4\n");
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(numbers(file.rows[0]), (Numbers{4.7, 3.0, 1.0}));
  EXPECT_EQ(numbers(file.rows[1]), (Numbers{22.0, 4.0, 1.0}));
}

TEST_F(StudyTableTest, RowOfEmptyCells_IsNoUnitsRow) {
  const StudyFile file = read("R,F.n\n,\n5,\n");
  ASSERT_EQ(file.rows.size(), 1U); // the first equals the baseline
  EXPECT_EQ(numbers(file.rows[0]), (Numbers{5.0, 2.0, 1.0}));
  EXPECT_EQ(file.notes, std::vector<std::string>{
                            "1 of 2 variants equal the baseline or another variant and are left out"});
}

TEST_F(StudyTableTest, OtherDelimiters_AndListsBesides_AreRead) {
  const StudyFile file =
      read("\"R\";name\n\"5\";\"a;b\"\n",
           with(kText, "{csv: rows.csv}",
                "{csv: {file: rows.csv, delimiter: ;}, list: [{name: c, values: {R: 6}}]}"));
  ASSERT_EQ(file.rows.size(), 2U);
  EXPECT_EQ(file.rows[0].name, "c");
  EXPECT_EQ(file.rows[1].name, "a;b");
}

TEST_F(StudyTableTest, Mistakes_AreReportedWithRowAndColumn) {
  const struct {
    const char *table;
    const char *problem;
  } rows[] = {
      {"", "rows.csv:1:1: the table is empty: its first row names the inputs\n"},
      {"name,Q\na,1\n", "rows.csv:1:6: there is no input \"Q\", did you mean \"R\"?\n"},
      {"R,F.R\n1,2\n", "rows.csv:1:3: two columns are for \"F.R\"\n"},
      {"R,F.n\n5\n", "rows.csv:2:1: row 2 has 1 cells; the first row has 2\n"},
      {"R,F.n\n5,2.5\n",
       "rows.csv:2:3: row 2, column \"F.n\": a value of \"F.n\" must be a whole number, not \"2.5\"\n"},
      {"R,F.t\n5,a\n6,c\n",
       "rows.csv:3:3: row 3, column \"F.t\": a value of \"F.t\" must be a or b, not \"c\", did "
       "you mean \"a\"?\n"},
      {"R\n1,5\n", "rows.csv:2:1: row 2 has 2 cells; the first row has 1\n"},
      {"R\nfive\n", "rows.csv:2:1: row 2, column \"R\": unknown unit \"five\"\n"},
      {"R\n5\nfive\n", "rows.csv:3:1: row 3, column \"R\": \"five\" is not a number, alone or with a unit\n"},
      {"R\nHz\n5\n", "rows.csv:2:1: row 2, column \"R\": \"Hz\" cannot be converted to \"kohm\", in which "
                     "\"R\" is declared\n"
                     "rows.csv:3:1: row 3, column \"R\": \"Hz\" cannot be converted to \"kohm\", in which "
                     "\"F.R\" is declared\n"},
      {"R\n60\n",
       "rows.csv:2:1: row 2, column \"R\": \"60\" is above the maximum of the input \"R\", 50 kohm\n"},
      {"R\n0.5\n", "rows.csv:2:1: row 2, column \"R\": \"0.5\" is below the minimum of \"F.R\", 1 kohm\n"},
      {"name,R\na,5\na,6\n",
       "rows.csv:3:1: row 3, column \"name\": the name \"a\" is already taken by the variant in line 2\n"},
      {"R\n5\n\"6\n", "rows.csv:3:1: a double quote that is not closed\n"},
      {"R\n\xff\n", "rows.csv:2:1: the file is not UTF-8 text\n"}};
  for (const auto &row : rows) {
    EXPECT_EQ(problems(row.table), row.problem) << row.table;
  }
}

TEST_F(StudyTableTest, File_MustBeThereAndInsideTheFolder) {
  EXPECT_EQ(problems("R\n5\n", with(kText, "csv: rows.csv", "csv: gone.csv")),
            "s.yaml:12:19: gone.csv: No such file or directory\n");
  EXPECT_EQ(problems("R\n5\n", with(kText, "csv: rows.csv", "csv: ../rows.csv")),
            "s.yaml:12:19: \"../rows.csv\": a file of the study is named relative to its folder and stays "
            "inside it\n");
  EXPECT_EQ(problems("R\n5\n", with(kText, "csv: rows.csv", "csv: {delimiter: tab}")),
            "s.yaml:12:19: csv needs a file\n");
  fs::create_directory(m_folder / "sub");
  write("R\n5\n");
  const StudyFile file = studyIn(with(kText, "csv: rows.csv", "csv: {file: ../rows.csv, outside: true}"),
                                 (m_folder / "sub" / "s.yaml").string());
  EXPECT_EQ(file.rows.size(), 1U);
}

} // namespace
} // namespace Workbench
