#include "OptimizationTool/OptimizationVariants.h"

#include "OptimizationTool/tests/ScriptedModel.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <limits>
#include <type_traits>
#include <utility>

namespace OptimizationTool {
namespace {

using StudyTesting::ScriptedAttribute;

static_assert(std::has_virtual_destructor_v<OptimizationVariants>);
static_assert(!std::is_copy_constructible_v<OptimizationVariants>);
static_assert(!std::is_copy_assignable_v<OptimizationVariants>);
static_assert(std::is_nothrow_move_constructible_v<OptimizationVariants>);
static_assert(std::is_nothrow_move_assignable_v<OptimizationVariants>);

std::unique_ptr<OptimizationVariant> makeRow(const std::string &name) {
  return std::make_unique<OptimizationVariant>(name);
}

OptimizationVariants makeMatrix(std::initializer_list<const char *> names) {
  OptimizationVariants matrix;
  for (const char *name : names) {
    matrix.append(makeRow(name));
  }
  return matrix;
}

// The names in row order; "-" for a place without row.
std::string names(const OptimizationVariants &matrix) {
  std::string result;
  for (const auto &row : matrix) {
    result += row == nullptr ? "-" : row->getName();
  }
  return result;
}

TEST(OptimizationVariantsTest, Construct_IsEmpty) {
  const OptimizationVariants matrix;
  EXPECT_EQ(matrix.size(), 0U);
  EXPECT_TRUE(matrix.empty());
  EXPECT_EQ(matrix.begin(), matrix.end());
  EXPECT_TRUE(matrix.data().empty());
}

TEST(OptimizationVariantsTest, Sequence_GivesTheRowsInOrder) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  EXPECT_EQ(matrix.size(), 3U);
  EXPECT_FALSE(matrix.empty());
  EXPECT_EQ(matrix.front()->getName(), "A");
  EXPECT_EQ(matrix.back()->getName(), "C");
  EXPECT_EQ(matrix[1]->getName(), "B");
  EXPECT_EQ((*matrix.begin())->getName(), "A");
  EXPECT_EQ(matrix.end() - matrix.begin(), 3);
  EXPECT_EQ(matrix.data().size(), 3U);
  EXPECT_EQ(&matrix.data()[1], &matrix[1]);
}

TEST(OptimizationVariantsTest, Sequence_OfAConstantMatrix_GivesTheRowsInOrder) {
  const OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  EXPECT_EQ(matrix.front()->getName(), "A");
  EXPECT_EQ(matrix.back()->getName(), "C");
  EXPECT_EQ(matrix[1]->getName(), "B");
  EXPECT_EQ((*matrix.begin())->getName(), "A");
  EXPECT_EQ(matrix.end() - matrix.begin(), 3);
  EXPECT_EQ(&matrix.data()[1], &matrix[1]);
}

TEST(OptimizationVariantsTest, GetByIndex_InRange_IsTheRow) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.get(std::size_t{0}), matrix[0].get());
  EXPECT_EQ(matrix.get(std::size_t{1}), matrix[1].get());
  EXPECT_EQ(std::as_const(matrix).get(std::size_t{1}), matrix[1].get());
}

TEST(OptimizationVariantsTest, GetByIndex_OutOfRange_IsNull) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.get(std::size_t{2}), nullptr);
  EXPECT_EQ(matrix.get(std::numeric_limits<std::size_t>::max()), nullptr);
  EXPECT_EQ(std::as_const(matrix).get(std::size_t{2}), nullptr);
}

TEST(OptimizationVariantsTest, GetByIndex_LiteralZero_IsTheBaselineAndNoNullName) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.get(0), matrix[0].get());
  EXPECT_EQ(matrix.get(0U), matrix[0].get());
  EXPECT_EQ(matrix.get(0L), matrix[0].get());
  EXPECT_EQ(matrix.get(0UL), matrix[0].get());
  EXPECT_EQ(std::as_const(matrix).get(0), matrix[0].get());
}

TEST(OptimizationVariantsTest, GetByIndex_OtherIntegerTypes_AreIndices) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.get(1), matrix[1].get());
  EXPECT_EQ(matrix.get(std::int64_t{1}), matrix[1].get());
  EXPECT_EQ(matrix.get(std::uint64_t{1}), matrix[1].get());
  EXPECT_EQ(matrix.get(-1), nullptr);
  EXPECT_EQ(std::as_const(matrix).get(-1), nullptr);
}

TEST(OptimizationVariantsTest, GetByName_IsTheFirstRowInOrderWithThatName) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "B"});
  EXPECT_EQ(matrix.get("B"), matrix[1].get());
  EXPECT_EQ(matrix.get(std::string("B")), matrix[1].get());
  EXPECT_EQ(std::as_const(matrix).get("B"), matrix[1].get());
  EXPECT_EQ(std::as_const(matrix).get(std::string("B")), matrix[1].get());
}

TEST(OptimizationVariantsTest, GetByName_ComparesByteForByte) {
  OptimizationVariants matrix = makeMatrix({"Row"});
  EXPECT_EQ(matrix.get("row"), nullptr);
  EXPECT_EQ(matrix.get(" Row"), nullptr);
  EXPECT_EQ(matrix.get("Row "), nullptr);
  EXPECT_EQ(matrix.get("Ro"), nullptr);
  EXPECT_EQ(matrix.get(std::string("Row\0", 4)), nullptr);
  EXPECT_EQ(matrix.get(std::string("row")), nullptr);
}

TEST(OptimizationVariantsTest, GetByName_NameWithZeroByte_IsFoundWhole) {
  OptimizationVariants matrix = makeMatrix({"Row"});
  matrix.append(makeRow(std::string("Row\0x", 5)));
  EXPECT_EQ(matrix.get(std::string("Row\0x", 5)), matrix[1].get());
}

TEST(OptimizationVariantsTest, GetByName_NullPointer_IsNull) {
  OptimizationVariants matrix = makeMatrix({"", "A"});
  const char *name = nullptr;
  EXPECT_EQ(matrix.get(name), nullptr);
  EXPECT_EQ(matrix.get(nullptr), nullptr);
  EXPECT_EQ(std::as_const(matrix).get(name), nullptr);
}

TEST(OptimizationVariantsTest, GetByName_EmptyName_FindsARowWithoutName) {
  OptimizationVariants matrix = makeMatrix({"A", ""});
  EXPECT_EQ(matrix.get(""), matrix[1].get());
  EXPECT_EQ(makeMatrix({"A"}).get(""), nullptr);
}

TEST(OptimizationVariantsTest, GetIndex_IsThePositionOfTheFirstMatch) {
  const OptimizationVariants matrix = makeMatrix({"A", "B", "B"});
  EXPECT_EQ(matrix.getIndex("B"), 1U);
  EXPECT_EQ(matrix.getIndex("A"), 0U);
  EXPECT_EQ(matrix.getIndex("C"), std::nullopt);
}

TEST(OptimizationVariantsTest, Searches_SkipPlacesWithoutRow) {
  OptimizationVariants matrix;
  matrix.append(nullptr);
  matrix.append(makeRow("A"));
  EXPECT_EQ(matrix.get("A"), matrix[1].get());
  EXPECT_EQ(matrix.get(std::string("A")), matrix[1].get());
  EXPECT_EQ(matrix.getIndex("A"), 1U);
  EXPECT_EQ(matrix.get(""), nullptr);
  EXPECT_EQ(matrix.getIndex(""), std::nullopt);
  EXPECT_EQ(matrix.get(0), nullptr);
}

TEST(OptimizationVariantsTest, Append_AddsAtTheEndAndGivesTheIndex) {
  OptimizationVariants matrix;
  EXPECT_EQ(matrix.append(makeRow("A")), 0U);
  EXPECT_EQ(matrix.append(makeRow("B")), 1U);
  EXPECT_EQ(names(matrix), "AB");
}

TEST(OptimizationVariantsTest, InsertByIndex_InsertsBeforeAndGivesTheIndex) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.insert(1, makeRow("X")), 1U);
  EXPECT_EQ(names(matrix), "AXB");
  EXPECT_EQ(matrix.insert(0, makeRow("Y")), 0U);
  EXPECT_EQ(names(matrix), "YAXB");
  EXPECT_EQ(matrix.insert(4, makeRow("Z")), 4U);
  EXPECT_EQ(names(matrix), "YAXBZ");
}

TEST(OptimizationVariantsTest, InsertByPosition_InsertsBeforeAndGivesThePlaceOfTheRow) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  const OptimizationVariants::iterator place = matrix.insert(std::as_const(matrix).begin() + 1, makeRow("X"));
  EXPECT_EQ(names(matrix), "AXB");
  EXPECT_EQ(place - matrix.begin(), 1);
}

TEST(OptimizationVariantsTest, EraseByIndex_RemovesTheRow) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  matrix.erase(1);
  EXPECT_EQ(names(matrix), "AC");
  matrix.erase(0);
  EXPECT_EQ(names(matrix), "C");
}

TEST(OptimizationVariantsTest, EraseByIndex_OutOfRange_IsIgnored) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  matrix.erase(3);
  matrix.erase(7);
  EXPECT_EQ(names(matrix), "ABC");
}

TEST(OptimizationVariantsTest, EraseByIndex_DestroysTheRow) {
  ScriptedAttribute::Log log;
  const ScriptedAttribute attribute("cell", &log);
  OptimizationVariants matrix = makeMatrix({"A"});
  matrix[0]->addInput(&attribute);
  log.clear();
  matrix.erase(0);
  EXPECT_EQ(log, (ScriptedAttribute::Log{"destroy cell"}));
}

TEST(OptimizationVariantsTest, EraseByPosition_RemovesTheRowAndGivesThePlaceThatFollows) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  const OptimizationVariants::iterator place = matrix.erase(std::as_const(matrix).begin() + 1);
  EXPECT_EQ(names(matrix), "AC");
  EXPECT_EQ(place - matrix.begin(), 1);
}

TEST(OptimizationVariantsTest, Take_RemovesTheRowAndHandsItOver) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  const OptimizationVariant *row = matrix[1].get();
  const std::unique_ptr<OptimizationVariant> taken = matrix.take(1);
  EXPECT_EQ(taken.get(), row);
  EXPECT_EQ(taken->getName(), "B");
  EXPECT_EQ(names(matrix), "AC");
}

TEST(OptimizationVariantsTest, Take_OutOfRange_IsNullAndRemovesNothing) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  EXPECT_EQ(matrix.take(2), nullptr);
  EXPECT_EQ(matrix.take(7), nullptr);
  EXPECT_EQ(names(matrix), "AB");
}

struct MoveRow {
  std::size_t from;
  std::size_t to;
  bool result;
  const char *order;
};

TEST(OptimizationVariantsTest, Move_EndsBeforeTheRowAtTheTargetAndReportsOnlyTheMoveThatDoesNothing) {
  const MoveRow rows[] = {
      {0, 1, false, "ABCD"}, {0, 2, false, "BACD"}, {0, 3, false, "BCAD"}, {1, 2, false, "ABCD"},
      {1, 3, false, "ACBD"}, {2, 3, false, "ABCD"}, {1, 0, false, "BACD"}, {2, 0, false, "CABD"},
      {3, 0, false, "DABC"}, {2, 1, false, "ACBD"}, {3, 1, false, "ADBC"}, {3, 2, false, "ABDC"},
      {0, 0, true, "ABCD"},  {1, 1, true, "ABCD"},  {3, 3, true, "ABCD"},  {0, 4, false, "ABCD"},
      {4, 0, false, "ABCD"}, {4, 4, false, "ABCD"}, {9, 1, false, "ABCD"},
  };
  for (const MoveRow &row : rows) {
    OptimizationVariants matrix = makeMatrix({"A", "B", "C", "D"});
    EXPECT_EQ(matrix.move(row.from, row.to), row.result) << row.from << " to " << row.to;
    EXPECT_EQ(names(matrix), row.order) << row.from << " to " << row.to;
  }
}

TEST(OptimizationVariantsTest, Move_KeepsTheRowItself) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C", "D"});
  const OptimizationVariant *row = matrix[0].get();
  matrix.move(0, 2);
  EXPECT_EQ(matrix[1].get(), row);
  matrix.move(1, 0);
  EXPECT_EQ(matrix[0].get(), row);
}

TEST(OptimizationVariantsTest, Move_PlaceWithoutRow_IsMovedLikeARow) {
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  matrix.insert(0, nullptr);
  EXPECT_FALSE(matrix.move(0, 3));
  EXPECT_EQ(names(matrix), "AB-C");
  EXPECT_FALSE(matrix.move(2, 0));
  EXPECT_EQ(names(matrix), "-ABC");
}

TEST(OptimizationVariantsTest, Move_EmptyMatrix_IsFalse) {
  OptimizationVariants matrix;
  EXPECT_FALSE(matrix.move(0, 0));
}

TEST(OptimizationVariantsTest, StandardVal_IsOneValuePerRowOfTheSideThatIsAskedFor) {
  ScriptedAttribute attribute;
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  double value = 1.0;
  for (const auto &row : matrix) {
    attribute.standardValue = value;
    row->addInput(&attribute);
    attribute.standardValue = -value;
    row->addOutput(&attribute);
    value *= 2.0;
  }
  EXPECT_EQ(matrix.standardVal(true, 0), (OptimizationVariantValues<double>{1.0, 2.0, 4.0}));
  EXPECT_EQ(matrix.standardVal(false, 0), (OptimizationVariantValues<double>{-1.0, -2.0, -4.0}));
}

TEST(OptimizationVariantsTest, StandardVal_MissingAndEmptyCellsAndPlacesWithoutRow_AreZero) {
  ScriptedAttribute attribute;
  attribute.standardValue = 5.0;
  OptimizationVariants matrix = makeMatrix({"A", "B", "C"});
  matrix.append(nullptr);
  for (int column = 0; column < 4; ++column) {
    matrix[0]->addOutput(&attribute);
    if (column < 2) {
      matrix[1]->addOutput(&attribute);
    }
    matrix[2]->addOutput(column == 3 ? nullptr : &attribute);
  }
  EXPECT_EQ(matrix.standardVal(false, 3), (OptimizationVariantValues<double>{5.0, 0.0, 0.0, 0.0}));
  EXPECT_EQ(matrix.standardVal(false, 1), (OptimizationVariantValues<double>{5.0, 5.0, 5.0, 0.0}));
  EXPECT_EQ(matrix.standardVal(true, 0), (OptimizationVariantValues<double>{0.0, 0.0, 0.0, 0.0}));
}

// More rows than are looked up at once, and numbers of rows on both sides of that.
TEST(OptimizationVariantsTest, StandardVal_AnyNumberOfRows_IsThatOfEachRow) {
  ScriptedAttribute attribute;
  for (const std::size_t rows : {1U, 255U, 256U, 257U, 511U, 512U, 600U}) {
    OptimizationVariants matrix;
    for (std::size_t row = 0; row < rows; ++row) {
      matrix.append(makeRow("Row"));
      attribute.standardValue = static_cast<double>(row + 1);
      if (row % 3 != 2) {
        matrix.back()->addInput(&attribute);
      }
    }
    matrix[rows / 2] = nullptr;
    const OptimizationVariantValues<double> values = matrix.standardVal(true, 0);
    ASSERT_EQ(values.size(), rows);
    for (std::size_t row = 0; row < rows; ++row) {
      const bool isEmpty = row % 3 == 2 || row == rows / 2;
      ASSERT_EQ(values[row], isEmpty ? 0.0 : static_cast<double>(row + 1)) << row << " of " << rows;
    }
  }
}

TEST(OptimizationVariantsTest, StandardVal_EmptyMatrix_IsEmpty) {
  EXPECT_TRUE(OptimizationVariants().standardVal(true, 0).empty());
}

TEST(OptimizationVariantsTest, MoveConstructAndAssign_TakeTheRows) {
  OptimizationVariants source = makeMatrix({"A", "B"});
  OptimizationVariants constructed(std::move(source));
  EXPECT_EQ(names(constructed), "AB");
  OptimizationVariants assigned = makeMatrix({"X"});
  assigned = std::move(constructed);
  EXPECT_EQ(names(assigned), "AB");
}

TEST(OptimizationVariantsTest, GetByName_RenamedRow_IsFoundUnderItsNewNameOnly) {
  OptimizationVariants matrix = makeMatrix({"A", "B"});
  matrix[1]->setName("C");
  EXPECT_EQ(matrix.get("C"), matrix[1].get());
  EXPECT_EQ(matrix.get("B"), nullptr);
}

} // namespace
} // namespace OptimizationTool
