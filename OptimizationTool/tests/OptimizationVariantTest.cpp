#include "OptimizationTool/OptimizationVariant.h"

#include "OptimizationTool/tests/ScriptedModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace OptimizationTool {
namespace {

using StudyTesting::ScriptedAttribute;
using Log = ScriptedAttribute::Log;

static_assert(!std::is_polymorphic_v<OptimizationVariant>);
static_assert(!std::is_copy_constructible_v<OptimizationVariant>);
static_assert(!std::is_copy_assignable_v<OptimizationVariant>);
static_assert(std::is_nothrow_move_constructible_v<OptimizationVariant>);
static_assert(std::is_nothrow_move_assignable_v<OptimizationVariant>);

// The text of a cell; "null" where there is no attribute.
std::string text(const EntityModel::Attribute *attribute) {
  return attribute == nullptr ? "null" : attribute->getValueAsString();
}

OptimizationVariant makeRow() {
  const ScriptedAttribute a("a");
  const ScriptedAttribute b("b");
  const ScriptedAttribute c("c");
  const ScriptedAttribute x("x");
  const ScriptedAttribute y("y");
  const ScriptedAttribute z("z");
  OptimizationVariant row("Row");
  row.addInput(&a);
  row.addInput(&b);
  row.addInput(&c);
  row.addOutput(&x);
  row.addOutput(&y);
  row.addOutput(&z);
  return row;
}

template <class Action> std::string outOfRangeText(const Action &action) {
  try {
    action();
  } catch (const std::out_of_range &error) {
    return error.what();
  }
  return "nothing thrown";
}

TEST(OptimizationVariantTest, Construct_HasTheNameAndNeitherCellsNorCost) {
  const OptimizationVariant row("Alternate 1");
  EXPECT_EQ(row.getName(), "Alternate 1");
  EXPECT_EQ(row.getCost(), std::nullopt);
  EXPECT_EQ(row.getInput(0), nullptr);
  EXPECT_EQ(row.getOutput(0), nullptr);
}

TEST(OptimizationVariantTest, SetName_ReplacesTheName) {
  OptimizationVariant row("old");
  row.setName("new");
  EXPECT_EQ(row.getName(), "new");
}

TEST(OptimizationVariantTest, SetCost_ValueThenNothing_IsKnownThenUnknown) {
  OptimizationVariant row("Row");
  row.setCost(2.5);
  EXPECT_EQ(row.getCost(), 2.5);
  row.setCost(std::nullopt);
  EXPECT_EQ(row.getCost(), std::nullopt);
}

TEST(OptimizationVariantTest, AddInput_AppendsACloneToTheInputsOnly) {
  ScriptedAttribute first("1");
  const ScriptedAttribute second("2");
  OptimizationVariant row("Row");
  row.addInput(&first);
  row.addInput(&second);
  first.text = "changed";
  EXPECT_EQ(text(row.getInput(0)), "1");
  EXPECT_EQ(text(row.getInput(1)), "2");
  EXPECT_EQ(row.getInput(2), nullptr);
  EXPECT_EQ(row.getOutput(0), nullptr);
}

TEST(OptimizationVariantTest, AddOutput_AppendsACloneToTheOutputsOnly) {
  ScriptedAttribute first("1");
  const ScriptedAttribute second("2");
  OptimizationVariant row("Row");
  row.addOutput(&first);
  row.addOutput(&second);
  first.text = "changed";
  EXPECT_EQ(text(row.getOutput(0)), "1");
  EXPECT_EQ(text(row.getOutput(1)), "2");
  EXPECT_EQ(row.getOutput(2), nullptr);
  EXPECT_EQ(row.getInput(0), nullptr);
}

TEST(OptimizationVariantTest, AddInput_Null_AppendsAnEmptyCell) {
  const ScriptedAttribute attribute("1");
  OptimizationVariant row("Row");
  row.addInput(nullptr);
  row.addInput(&attribute);
  EXPECT_EQ(row.getInput(0), nullptr);
  EXPECT_EQ(text(row.getInput(1)), "1");
}

TEST(OptimizationVariantTest, AddOutput_Null_AppendsAnEmptyCell) {
  const ScriptedAttribute attribute("1");
  OptimizationVariant row("Row");
  row.addOutput(nullptr);
  row.addOutput(&attribute);
  EXPECT_EQ(row.getOutput(0), nullptr);
  EXPECT_EQ(text(row.getOutput(1)), "1");
}

TEST(OptimizationVariantTest, RemoveInput_InTheMiddle_MovesLaterInputsUp) {
  OptimizationVariant row = makeRow();
  row.removeInput(1);
  EXPECT_EQ(text(row.getInput(0)), "a");
  EXPECT_EQ(text(row.getInput(1)), "c");
  EXPECT_EQ(row.getInput(2), nullptr);
  EXPECT_EQ(text(row.getOutput(1)), "y");
}

TEST(OptimizationVariantTest, RemoveOutput_InTheMiddle_MovesLaterOutputsUp) {
  OptimizationVariant row = makeRow();
  row.removeOutput(1);
  EXPECT_EQ(text(row.getOutput(0)), "x");
  EXPECT_EQ(text(row.getOutput(1)), "z");
  EXPECT_EQ(row.getOutput(2), nullptr);
  EXPECT_EQ(text(row.getInput(1)), "b");
}

TEST(OptimizationVariantTest, RemoveInput_IndexAtOrPastTheEnd_IsIgnored) {
  for (const std::size_t index : {std::size_t{3}, std::size_t{7}, std::numeric_limits<std::size_t>::max()}) {
    OptimizationVariant row = makeRow();
    row.removeInput(index);
    EXPECT_EQ(text(row.getInput(0)) + text(row.getInput(1)) + text(row.getInput(2)), "abc") << index;
  }
}

TEST(OptimizationVariantTest, RemoveOutput_IndexAtOrPastTheEnd_IsIgnored) {
  for (const std::size_t index : {std::size_t{3}, std::size_t{7}, std::numeric_limits<std::size_t>::max()}) {
    OptimizationVariant row = makeRow();
    row.removeOutput(index);
    EXPECT_EQ(text(row.getOutput(0)) + text(row.getOutput(1)) + text(row.getOutput(2)), "xyz") << index;
  }
}

TEST(OptimizationVariantTest, ReplaceInput_HoldsACloneAndDestroysTheOldCopy) {
  Log log;
  const ScriptedAttribute before("before", &log);
  const ScriptedAttribute after("after", &log);
  OptimizationVariant row("Row");
  row.addInput(&before);
  log.clear();
  row.replaceInput(0, &after);
  EXPECT_EQ(log, (Log{"clone after", "destroy before"}));
  EXPECT_EQ(text(row.getInput(0)), "after");
  EXPECT_NE(row.getInput(0), &after);
}

TEST(OptimizationVariantTest, ReplaceOutput_HoldsACloneAndDestroysTheOldCopy) {
  Log log;
  const ScriptedAttribute before("before", &log);
  const ScriptedAttribute after("after", &log);
  OptimizationVariant row("Row");
  row.addOutput(&before);
  log.clear();
  row.replaceOutput(0, &after);
  EXPECT_EQ(log, (Log{"clone after", "destroy before"}));
  EXPECT_EQ(text(row.getOutput(0)), "after");
  EXPECT_NE(row.getOutput(0), &after);
}

TEST(OptimizationVariantTest, ReplaceInput_Null_EmptiesTheCellAndKeepsItsPlace) {
  OptimizationVariant row = makeRow();
  row.replaceInput(1, nullptr);
  EXPECT_EQ(row.getInput(1), nullptr);
  EXPECT_EQ(text(row.getInput(2)), "c");
}

TEST(OptimizationVariantTest, ReplaceOutput_Null_EmptiesTheCellAndKeepsItsPlace) {
  OptimizationVariant row = makeRow();
  row.replaceOutput(1, nullptr);
  EXPECT_EQ(row.getOutput(1), nullptr);
  EXPECT_EQ(text(row.getOutput(2)), "z");
}

TEST(OptimizationVariantTest, ReplaceInput_IndexAtOrPastTheEnd_ThrowsAndChangesNothing) {
  OptimizationVariant row = makeRow();
  const ScriptedAttribute attribute("new");
  EXPECT_EQ(outOfRangeText([&] { row.replaceInput(3, &attribute); }), "invalid vector subscript");
  EXPECT_EQ(outOfRangeText([&] { row.replaceInput(7, &attribute); }), "invalid vector subscript");
  EXPECT_EQ(text(row.getInput(0)) + text(row.getInput(1)) + text(row.getInput(2)), "abc");
  EXPECT_EQ(row.getInput(3), nullptr);
}

TEST(OptimizationVariantTest, ReplaceOutput_IndexAtOrPastTheEnd_ThrowsAndChangesNothing) {
  OptimizationVariant row = makeRow();
  const ScriptedAttribute attribute("new");
  EXPECT_EQ(outOfRangeText([&] { row.replaceOutput(3, &attribute); }), "invalid vector subscript");
  EXPECT_EQ(outOfRangeText([&] { row.replaceOutput(7, &attribute); }), "invalid vector subscript");
  EXPECT_EQ(text(row.getOutput(0)) + text(row.getOutput(1)) + text(row.getOutput(2)), "xyz");
  EXPECT_EQ(row.getOutput(3), nullptr);
}

TEST(OptimizationVariantTest, GetAttribute_TakesTheSideThatIsAskedFor) {
  const OptimizationVariant row = makeRow();
  EXPECT_EQ(row.getAttribute(true, 2), row.getInput(2));
  EXPECT_EQ(row.getAttribute(false, 2), row.getOutput(2));
  EXPECT_EQ(text(row.getAttribute(true, 2)), "c");
  EXPECT_EQ(text(row.getAttribute(false, 2)), "z");
  EXPECT_EQ(row.getAttribute(true, 3), nullptr);
  EXPECT_EQ(row.getAttribute(false, 3), nullptr);
}

TEST(OptimizationVariantTest, StandardVal_IsTheStandardValueOfTheCellOnThatSide) {
  ScriptedAttribute input;
  input.standardValue = 0.25;
  ScriptedAttribute output;
  output.standardValue = -4.0;
  OptimizationVariant row("Row");
  row.addInput(&input);
  row.addOutput(&output);
  EXPECT_EQ(row.standardVal(true, 0), 0.25);
  EXPECT_EQ(row.standardVal(false, 0), -4.0);
}

TEST(OptimizationVariantTest, StandardVal_EmptyCellOrIndexOutOfRange_IsZero) {
  OptimizationVariant row("Row");
  row.addInput(nullptr);
  EXPECT_EQ(row.standardVal(true, 0), 0.0);
  EXPECT_EQ(row.standardVal(true, 1), 0.0);
  EXPECT_EQ(row.standardVal(false, 0), 0.0);
}

TEST(OptimizationVariantTest, MoveConstruct_TakesNameCellsAndCost) {
  OptimizationVariant source = makeRow();
  source.setCost(7.0);
  const OptimizationVariant target(std::move(source));
  EXPECT_EQ(target.getName(), "Row");
  EXPECT_EQ(target.getCost(), 7.0);
  EXPECT_EQ(text(target.getInput(0)), "a");
  EXPECT_EQ(text(target.getOutput(2)), "z");
}

TEST(OptimizationVariantTest, MoveAssign_TakesNameCellsAndCost) {
  OptimizationVariant source = makeRow();
  source.setCost(7.0);
  OptimizationVariant target("other");
  target = std::move(source);
  EXPECT_EQ(target.getName(), "Row");
  EXPECT_EQ(target.getCost(), 7.0);
  EXPECT_EQ(text(target.getInput(2)), "c");
  EXPECT_EQ(text(target.getOutput(0)), "x");
}

TEST(OptimizationVariantTest, Destruct_DestroysEveryCellOfBothSides) {
  Log log;
  const ScriptedAttribute input("input", &log);
  const ScriptedAttribute output("output", &log);
  {
    OptimizationVariant row("Row");
    row.addInput(&input);
    row.addOutput(&output);
    log.clear();
  }
  std::sort(log.begin(), log.end());
  EXPECT_EQ(log, (Log{"destroy input", "destroy output"}));
}

} // namespace
} // namespace OptimizationTool
