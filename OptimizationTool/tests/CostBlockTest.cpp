#include "OptimizationTool/src/CostBlock.h"

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "OptimizationTool/OptimizationVariants.h"
#include "OptimizationTool/tests/PricedStudy.h"
#include "OptimizationTool/tests/StudyDataFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace OptimizationTool {
namespace {

using ExpressionBuilder::ElementConstant;
using StudyTesting::bitsOf;
using StudyTesting::kUntouched;
using StudyTesting::PricedCell;
using StudyTesting::PricedStudy;
using StudyTesting::PricingResult;
using StudyTesting::thrownBy;
using Builder = ExpressionBuilder::BuilderSingleType<double>;
using Costs = std::vector<std::optional<double>>;

// What the drawn studies had in them, so that it can be seen that they are worth something.
struct Drawn {
  std::size_t studies = 0;
  std::size_t finished = 0;
  std::size_t rowsWithCost = 0;
  std::size_t rowsWithout = 0;
  std::size_t thrownInTheMiddle = 0;
  std::vector<std::string> thrown;

  void add(const PricingResult &result) {
    ++studies;
    finished += result.thrown == "nothing" ? 1U : 0U;
    const auto untouched = std::optional<std::uint64_t>(bitsOf(kUntouched));
    bool isAnyPriced = false;
    for (const auto &cost : result.costs) {
      rowsWithout += cost ? 0U : 1U;
      const bool isPriced = cost && cost != untouched;
      rowsWithCost += isPriced ? 1U : 0U;
      isAnyPriced = isAnyPriced || isPriced;
    }
    if (result.thrown != "nothing") {
      thrown.push_back(result.thrown);
      thrownInTheMiddle += isAnyPriced ? 1U : 0U;
    }
  }
  bool hasThrown(const std::string &text) const {
    return std::any_of(thrown.begin(), thrown.end(),
                       [&text](const std::string &each) { return each.find(text) != std::string::npos; });
  }
};

void compare(std::uint64_t seed, std::size_t rows, Drawn &drawn) {
  PricedStudy literal(seed, rows);
  PricedStudy blocks(seed, rows);
  ASSERT_EQ(literal.costFunction(), blocks.costFunction());
  const PricingResult expected = literal.priceLiterally();
  const PricingResult priced = blocks.priceByBlocks();
  EXPECT_EQ(priced.thrown, expected.thrown) << seed << ", " << rows << " rows, " << literal.costFunction();
  EXPECT_TRUE(priced == expected) << seed << ", " << rows << " rows, " << literal.costFunction();
  drawn.add(expected);
}

TEST(CostBlockTest, Price_DrawnStudies_AsRowsOneAfterTheOther) {
  Drawn drawn;
  std::uint64_t seed = 20260501;
  for (const std::size_t rows : {0U, 1U, 2U, 3U, 4U, 5U, 17U, 60U}) {
    for (int study = 0; study < 60; ++study) {
      compare(++seed, rows, drawn);
    }
  }
  EXPECT_EQ(drawn.studies, 480U);
  EXPECT_GT(drawn.finished, 200U);
  EXPECT_GT(drawn.rowsWithCost, 2000U);
  EXPECT_GT(drawn.rowsWithout, 50U);
  EXPECT_GT(drawn.thrownInTheMiddle, 5U);
  EXPECT_TRUE(drawn.hasThrown("std::out_of_range: Variable does not exist"));
  EXPECT_TRUE(drawn.hasThrown("std::runtime_error: Invalid Type"));
  EXPECT_TRUE(drawn.hasThrown("std::runtime_error: units fault"));
}

TEST(CostBlockTest, Price_DrawnStudiesOfSeveralBlocks_AsRowsOneAfterTheOther) {
  Drawn drawn;
  std::uint64_t seed = 20260801;
  for (const std::size_t rows : {255U, 256U, 257U, 1000U, 1023U, 1024U, 1025U, 2100U}) {
    for (int study = 0; study < 8; ++study) {
      compare(++seed, rows, drawn);
    }
  }
  EXPECT_GT(drawn.rowsWithCost, 10000U);
  EXPECT_GT(drawn.rowsWithout, 500U);
  EXPECT_GT(drawn.thrownInTheMiddle, 5U);
  EXPECT_TRUE(drawn.hasThrown("std::runtime_error: Integer division by zero"));
  EXPECT_TRUE(drawn.hasThrown("std::runtime_error: value fault"));
}

// Rows with one input each, of which the value is the row's number.
class CostBlockRowsTest : public ::testing::Test {
protected:
  CostBlockRowsTest() { builder.variables().declare("x", std::make_unique<ElementConstant<double>>(0.5)); }
  void addRows(std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) {
      auto row = std::make_unique<OptimizationVariant>("Row");
      const PricedCell cell(static_cast<double>(matrix.size()));
      row->addInput(&cell);
      row->setCost(kUntouched);
      matrix.append(std::move(row));
    }
  }
  PricedCell &cell(std::size_t row) { return static_cast<PricedCell &>(*matrix[row]->getInput(0)); }
  void price(const std::string &costFunction) {
    calculator = builder.buildExpression(costFunction);
    CostInput input;
    input.position = 0;
    input.isNeeded = true;
    input.variable = calculator->variables().handle<double>("x");
    CostInputs inputs;
    inputs.groups = {input};
    inputs.numBound = 1;
    CostBlock block(*calculator, inputs, matrix.size());
    for (const auto &row : matrix) {
      try {
        block.read(*row, matrix);
      } catch (...) {
        block.endBeforeUnreadRow();
        throw;
      }
      if (block.isFull()) {
        block.price();
      }
    }
    block.price();
  }
  std::optional<double> cost(std::size_t row) const { return matrix[row]->getCost(); }
  double variable() const {
    return *static_cast<const double *>(
        calculator->variables().plainValue("x", ExpressionBuilder::ValueType::Double));
  }

  Builder builder;
  OptimizationVariants matrix;
  std::unique_ptr<CostBlock::Calculator> calculator;
};

TEST_F(CostBlockRowsTest, Price_GivesEachRowItsCost) {
  addRows(3000);
  price("2.0 * %x% + 1.0");
  for (std::size_t row = 0; row < 3000; ++row) {
    ASSERT_EQ(cost(row), 2.0 * static_cast<double>(row) + 1.0);
  }
  EXPECT_EQ(variable(), 2999.0);
}

TEST_F(CostBlockRowsTest, Price_RowThatThrows_EndsThere) {
  addRows(3000);
  EXPECT_EQ(thrownBy([this] { price("1000 / (int)(1300.0 - %x%)"); }),
            "std::runtime_error: Integer division by zero");
  EXPECT_EQ(cost(0), 0.0);
  EXPECT_EQ(cost(300), 1.0);
  EXPECT_EQ(cost(1299), 1000.0);
  for (std::size_t row = 1300; row < 3000; ++row) {
    ASSERT_EQ(cost(row), kUntouched);
  }
  EXPECT_EQ(variable(), 1300.0);
}

TEST_F(CostBlockRowsTest, Price_CellThatThrows_EndsThereWithTheRowsBeforeItPriced) {
  addRows(3000);
  cell(1300).valueFault = "gone";
  EXPECT_EQ(thrownBy([this] { price("%x%"); }), "std::runtime_error: gone");
  EXPECT_EQ(cost(1023), 1023.0);
  EXPECT_EQ(cost(1299), 1299.0);
  EXPECT_EQ(cost(1300), kUntouched);
  EXPECT_EQ(cost(1301), kUntouched);
  EXPECT_EQ(variable(), 1299.0);
}

TEST_F(CostBlockRowsTest, Price_RowThatThrowsBeforeACellThatThrows_IsTheOneThatCounts) {
  addRows(100);
  cell(60).valueFault = "gone";
  EXPECT_EQ(thrownBy([this] { price("1 / (int)(%x% - 50.0)"); }),
            "std::runtime_error: Integer division by zero");
  EXPECT_EQ(cost(49), -1.0);
  EXPECT_EQ(cost(50), kUntouched);
  EXPECT_EQ(variable(), 50.0);
}

TEST_F(CostBlockRowsTest, Price_RowsWithoutTheirValue_LoseTheirCost) {
  addRows(3000);
  for (const std::size_t row : {0U, 1023U, 1024U, 2999U}) {
    cell(row).isThere = false;
  }
  price("%x%");
  EXPECT_EQ(cost(0), std::nullopt);
  EXPECT_EQ(cost(1), 1.0);
  EXPECT_EQ(cost(1022), 1022.0);
  EXPECT_EQ(cost(1023), std::nullopt);
  EXPECT_EQ(cost(1024), std::nullopt);
  EXPECT_EQ(cost(1025), 1025.0);
  EXPECT_EQ(cost(2998), 2998.0);
  EXPECT_EQ(cost(2999), std::nullopt);
  EXPECT_EQ(variable(), 0.0);
}

TEST_F(CostBlockRowsTest, Price_RowWithoutItsValue_IsNotEvaluated) {
  addRows(10);
  cell(0).isThere = false;
  cell(4).isThere = false;
  // Priced with 0.0, these rows would throw.
  EXPECT_EQ(thrownBy([this] { price("60 / (int)(%x%)"); }), "nothing");
  EXPECT_EQ(cost(0), std::nullopt);
  EXPECT_EQ(cost(3), 20.0);
  EXPECT_EQ(cost(4), std::nullopt);
  EXPECT_EQ(cost(5), 12.0);
}

// Counts its calls and refuses one.
struct CountedFunction {
  static int calls;
  static int refused;

  double operator()(double value) const {
    ++calls;
    if (calls == refused) {
      throw std::runtime_error("refused");
    }
    return value + calls;
  }
};
int CountedFunction::calls = 0;
int CountedFunction::refused = 0;

class CostBlockForeignFunctionTest : public CostBlockRowsTest {
protected:
  CostBlockForeignFunctionTest() {
    builder.registerOverload(
        "counted", {ExpressionBuilder::ValueType::Double},
        std::make_unique<ExpressionBuilder::ElementFunctionConstructorOverload<CountedFunction, double>>());
    CountedFunction::calls = 0;
    CountedFunction::refused = 0;
  }
};

TEST_F(CostBlockForeignFunctionTest, Price_FunctionOfAnApplication_IsCalledOnceForEachRowInOrder) {
  addRows(600);
  price("counted(%x%)");
  EXPECT_EQ(CountedFunction::calls, 600);
  for (std::size_t row = 0; row < 600; ++row) {
    ASSERT_EQ(cost(row), static_cast<double>(row) + static_cast<double>(row) + 1.0);
  }
}

TEST_F(CostBlockForeignFunctionTest, Price_FunctionOfAnApplicationThatThrows_IsNotCalledAgain) {
  addRows(600);
  CountedFunction::refused = 301;
  EXPECT_EQ(thrownBy([this] { price("counted(%x%)"); }), "std::runtime_error: refused");
  EXPECT_EQ(CountedFunction::calls, 301);
  EXPECT_EQ(cost(299), 599.0);
  EXPECT_EQ(cost(300), kUntouched);
}

TEST_F(CostBlockForeignFunctionTest, Price_FunctionOfAnApplication_IsCalledBeforeTheNextRowIsRead) {
  addRows(600);
  int callsAtReading = -1;
  cell(11).onReading = [&callsAtReading] {
    callsAtReading = CountedFunction::calls;
  };
  price("1.0 + counted(%x%)");
  EXPECT_EQ(callsAtReading, 11);
  EXPECT_EQ(cost(11), 24.0);
}

TEST_F(CostBlockForeignFunctionTest, Price_CellThatThrows_FunctionWasCalledForTheRowsBeforeItOnly) {
  addRows(600);
  cell(10).valueFault = "gone";
  EXPECT_EQ(thrownBy([this] { price("1.0 + counted(%x%)"); }), "std::runtime_error: gone");
  EXPECT_EQ(CountedFunction::calls, 10);
  EXPECT_EQ(cost(9), 20.0);
}

} // namespace
} // namespace OptimizationTool
