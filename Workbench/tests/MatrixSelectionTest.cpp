#include "Workbench/MatrixSelection.h"

#include <gtest/gtest.h>

#include <cmath>

namespace Workbench {
namespace {

MatrixTable::Row row(std::size_t number, const std::string &name, RowStatus status, const std::string &input,
                     std::optional<double> output, std::optional<double> cost) {
  MatrixTable::Row made;
  made.number = number;
  made.name = name;
  made.state.status = status;
  made.inputs = {input, "fixed"};
  made.outputs = {output};
  made.cost = cost;
  return made;
}

MatrixTable table() {
  MatrixTable made;
  made.hasCost = true;
  made.inputs = {{"width", "Box.x", "mm"}, {"Box.note", "Box.note", ""}};
  made.outputs = {{"mass", "Box.mass", "kg"}};
  made.rows = {row(0, "Base", RowStatus::Ok, "10", 3.0, 5.0), row(1, "b", RowStatus::Failed, "9", {}, {}),
               row(2, "a", RowStatus::Ok, "100", 2.0, 7.0), row(3, "c", RowStatus::Ok, "-1", 1.0, 6.0)};
  made.baseline = made.rows.front();
  made.bestNumber = 0;
  return made;
}

std::vector<std::size_t> numbers(const MatrixTable &shown) {
  std::vector<std::size_t> found;
  for (const MatrixTable::Row &shownRow : shown.rows) {
    found.push_back(shownRow.number);
  }
  return found;
}

std::vector<std::size_t> sorted(const std::string &sort, bool isDescending) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.sort = sort;
  selection.isDescending = isDescending;
  EXPECT_EQ(selection.apply(shown), "");
  return numbers(shown);
}

using Numbers = std::vector<std::size_t>;

TEST(MatrixSelectionTest, Nothing_LeavesTheTable) {
  MatrixTable shown = table();
  EXPECT_EQ(MatrixSelection().apply(shown), "");
  EXPECT_EQ(numbers(shown), (Numbers{0, 1, 2, 3}));
}

TEST(MatrixSelectionTest, Sort_ByCost_PutsRowsWithoutOneLast) {
  EXPECT_EQ(sorted("cost", false), (Numbers{0, 3, 2, 1}));
  EXPECT_EQ(sorted("cost", true), (Numbers{2, 3, 0, 1}));
}

TEST(MatrixSelectionTest, Sort_ByInput_ComparesNumbers) {
  EXPECT_EQ(sorted("width", false), (Numbers{3, 1, 0, 2}));
  EXPECT_EQ(sorted("Box.x", true), (Numbers{2, 0, 1, 3}));
}

TEST(MatrixSelectionTest, Sort_ByOutput_TakesTitleOrAttribute) {
  EXPECT_EQ(sorted("mass", false), (Numbers{3, 2, 0, 1}));
  EXPECT_EQ(sorted("Box.mass", true), (Numbers{0, 2, 3, 1}));
}

TEST(MatrixSelectionTest, Sort_ByNameStatusAndRow) {
  EXPECT_EQ(sorted("name", false), (Numbers{0, 2, 1, 3}));
  EXPECT_EQ(sorted("status", false), (Numbers{1, 0, 2, 3}));
  EXPECT_EQ(sorted("row", true), (Numbers{3, 2, 1, 0}));
}

TEST(MatrixSelectionTest, Sort_EqualKeys_KeepTheirOrder) {
  EXPECT_EQ(sorted("Box.note", false), (Numbers{0, 1, 2, 3}));
}

TEST(MatrixSelectionTest, Sort_UnknownColumn_NamesTheNearest) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.sort = "widht";
  EXPECT_EQ(selection.apply(shown), "there is no column \"widht\", did you mean \"width\"?");
  EXPECT_EQ(numbers(shown), (Numbers{0, 1, 2, 3}));
}

TEST(MatrixSelectionTest, Status_LeavesRowsOfThatStatus) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.statuses = {"failed", "stale"};
  EXPECT_EQ(selection.apply(shown), "");
  EXPECT_EQ(numbers(shown), (Numbers{1}));
  EXPECT_EQ(shown.baseline.name, "Base");
}

TEST(MatrixSelectionTest, Status_Unknown_NamesTheNearest) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.statuses = {"solved"};
  EXPECT_EQ(selection.apply(shown), "there is no status \"solved\"");
  selection.statuses = {"faild"};
  EXPECT_EQ(selection.apply(shown), "there is no status \"faild\", did you mean \"failed\"?");
}

TEST(MatrixSelectionTest, Most_CountsAfterSorting) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.sort = "cost";
  selection.most = 2;
  EXPECT_EQ(selection.apply(shown), "");
  EXPECT_EQ(numbers(shown), (Numbers{0, 3}));
}

TEST(MatrixSelectionTest, Columns_LeavesThoseInTheOrderAskedFor) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.columns = {"Box.note", "width"};
  EXPECT_EQ(selection.apply(shown), "");
  ASSERT_EQ(shown.inputs.size(), 2U);
  EXPECT_EQ(shown.inputs[0].title, "Box.note");
  EXPECT_TRUE(shown.outputs.empty());
  EXPECT_EQ(shown.rows[2].inputs, (std::vector<std::string>{"fixed", "100"}));
  EXPECT_TRUE(shown.rows[2].outputs.empty());
  EXPECT_EQ(shown.baseline.inputs, (std::vector<std::string>{"fixed", "10"}));
}

TEST(MatrixSelectionTest, Columns_Unknown_ChangesNothing) {
  MatrixTable shown = table();
  MatrixSelection selection;
  selection.statuses = {"ok"};
  selection.columns = {"mass", "volume"};
  EXPECT_EQ(selection.apply(shown), "there is no column \"volume\"");
  EXPECT_EQ(numbers(shown), (Numbers{0, 1, 2, 3}));
}

TEST(MatrixSelectionTest, Sort_CostThatIsNoNumber_ComesLast) {
  MatrixTable shown = table();
  const double notANumber = std::nan("");
  shown.rows = {row(0, "Base", RowStatus::Ok, "1", {}, 5.0), row(1, "a", RowStatus::Ok, "1", {}, notANumber),
                row(2, "b", RowStatus::Ok, "1", {}, 4.0), row(3, "c", RowStatus::Ok, "1", {}, notANumber),
                row(4, "d", RowStatus::Ok, "1", {}, 3.0)};
  MatrixSelection selection;
  selection.sort = "cost";
  EXPECT_EQ(selection.apply(shown), "");
  EXPECT_EQ(numbers(shown), (Numbers{4, 2, 0, 1, 3}));
}

} // namespace
} // namespace Workbench
