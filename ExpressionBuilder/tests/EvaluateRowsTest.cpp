#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/tests/TestValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace ExpressionBuilder {
namespace {

using Testing::constant;
using Testing::filled;
using Doubles = std::vector<double>;

/// More than two blocks, the last one not full.
constexpr std::size_t kRows = 520;
constexpr double kUntouched = -12345.5;

/// An expression over the variables a to d with a column for each.
template <class T> class Matrix {
public:
  explicit Matrix(const std::string &text) {
    BuilderSingleType<T> builder;
    for (const char *name : {"a", "b", "c", "d"}) {
      builder.variables().declare(name, constant(1.0));
    }
    builder.variables().declare("k", constant(2.5));
    builder.variables().declare("i", constant(7));
    builder.variables().declare("t", constant(true));
    builder.variables().declare("s", constant("x"));
    m_expression = builder.buildExpression(text);
    for (std::size_t column = 0; column < 4; ++column) {
      for (std::size_t row = 0; row < kRows; ++row) {
        m_values[column].push_back(valueAt(column, row));
      }
    }
    m_values[1][3] = std::numeric_limits<double>::quiet_NaN();
    m_values[0][4] = std::numeric_limits<double>::infinity();
    m_values[2][5] = -0.0;
  }

  Expression<T, SimpleVariableCollection> &expression() { return *m_expression; }
  Doubles &column(std::size_t index) { return m_values[index]; }

  std::vector<VariableColumn> columns() const {
    std::vector<VariableColumn> columns;
    const char *const names[] = {"a", "b", "c", "d"};
    for (std::size_t i = 0; i < 4; ++i) {
      columns.push_back({m_expression->variables().template handle<double>(names[i]), m_values[i].data()});
    }
    return columns;
  }

  std::vector<T> rowByRow() {
    const std::unique_ptr<ExpressionGenericAbstract<T>> clone = m_expression->clone();
    auto &variables = static_cast<Expression<T, SimpleVariableCollection> &>(*clone).variables();
    std::vector<VariableHandle<double>> handles;
    for (const char *name : {"a", "b", "c", "d"}) {
      handles.push_back(variables.template handle<double>(name));
    }
    std::vector<T> results;
    for (std::size_t row = 0; row < kRows; ++row) {
      for (std::size_t column = 0; column < handles.size(); ++column) {
        variables.set(handles[column], m_values[column][row]);
      }
      results.push_back(clone->evaluate());
    }
    return results;
  }

private:
  /// Between -3 and 3, some of them equal in all columns.
  static double valueAt(std::size_t column, std::size_t row) {
    return row % 10 == 0 ? 1.5
                         : 3.0 * std::sin(static_cast<double>(row) * 0.7 + static_cast<double>(column) * 1.3);
  }

  std::unique_ptr<Expression<T, SimpleVariableCollection>> m_expression;
  Doubles m_values[4];
};

std::uint64_t bitsOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

/// The number of rows whose value is not the one of the plain evaluation; every NaN is the same.
int differences(const std::string &text) {
  Matrix<double> matrix(text);
  Doubles results(kRows, kUntouched);
  matrix.expression().evaluateRows(matrix.columns(), kRows, results.data());
  const Doubles expected = matrix.rowByRow();
  int count = 0;
  for (std::size_t row = 0; row < kRows; ++row) {
    const bool bothNaN = std::isnan(results[row]) && std::isnan(expected[row]);
    count += bothNaN || bitsOf(results[row]) == bitsOf(expected[row]) ? 0 : 1;
  }
  return count;
}

/// Operands in every state in which the lowering to blocks may hold one.
const std::vector<std::string> kOperands = {
    "%a%", "2.5", "%k%", "(%a%*%b%)", "(3.0/%c%)", "abs(%b%)", "(%a%<%b%?%c%:%d%)", "((double)(int)%d%)"};

TEST(EvaluateRowsTest, OperatorsOnOperandsInEveryState_GiveThePlainValues) {
  for (const std::string &x : kOperands) {
    for (const std::string &y : kOperands) {
      for (const char *op : {"+", "-", "*", "/"}) {
        const std::string text = filled("%d%-(@@@)*%c%", {x, op, y});
        EXPECT_EQ(differences(text), 0) << text;
      }
    }
  }
}

TEST(EvaluateRowsTest, FunctionsOfTwoOperandsInEveryState_GiveThePlainValues) {
  for (const std::string &x : kOperands) {
    for (const std::string &y : kOperands) {
      for (const char *function : {"min", "max", "pow"}) {
        const std::string text = filled("@(@,@)", {function, x, y});
        EXPECT_EQ(differences(text), 0) << text;
      }
    }
  }
}

TEST(EvaluateRowsTest, ComparisonsOfOperandsInEveryState_SelectThePlainBranch) {
  for (const std::string &x : kOperands) {
    for (const std::string &y : kOperands) {
      for (const char *comparison : {"==", "!=", "<", ">="}) {
        const std::string text = filled("(@@@)?@:@", {x, comparison, y, x, y});
        EXPECT_EQ(differences(text), 0) << text;
      }
    }
  }
}

TEST(EvaluateRowsTest, Logic_GivesThePlainValues) {
  for (const char *text :
       {"!(%a%<%b%)?1.0:%c%", "(%a%<%b%&&%c%<%d%)?%a%:2.0", "(%a%<%b%||%c%<%d%)?%a%:%d%", "(%a%>2.0)?%a%:2.0",
        "(!(%a%<%k%)&&%t%||%b%>=%c%)?1.0:%a%*%b%", "(%t%&&%a%<=%b%)?%a%:%b%", "(double)(%a%<%b%)+%c%"}) {
    EXPECT_EQ(differences(text), 0) << text;
  }
}

TEST(EvaluateRowsTest, FunctionsOfTheLibrary_GiveThePlainValues) {
  for (const char *function : {"sin", "cos", "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh", "asinh",
                               "acosh", "atanh", "sqrt", "cbrt", "exp", "log", "log10", "abs", "-"}) {
    for (const char *argument : {"(%a%)", "(%a%*%b%)", "(%k%)"}) {
      EXPECT_EQ(differences(std::string(function) + argument), 0) << function << argument;
    }
  }
  for (const char *text : {"clamp(%a%,-1.0,1.0)", "clamp(%a%,%b%,%c%)", "clamp(%k%,%b%,1.0)",
                           "clamp(%a%*%b%,%c%,2.0)", "clamp(%a%,1.0,-1.0)"}) {
    EXPECT_EQ(differences(text), 0) << text;
  }
}

TEST(EvaluateRowsTest, SquaresAndSums_GiveThePlainValues) {
  for (const char *text :
       {"(%a%-1.0)*(%a%-1.0)", "(%a%-%b%)*(%a%-%b%)", "(%a%+%b%)*(%a%+%b%)", "(%a%-1.0)*(%a%-2.0)",
        "(%a%-%b%)*(%b%-%a%)", "%a%+%b%+%c%+%d%+%a%", "%a%+%b%-%c%+%d%",
        "1.5*%a%*%b%+2.5*%c%*%d%-%a%*%b%*%c%", "sqrt((%a%-1.0)*(%a%-1.0)/2.0+(%b%-2.0)*(%b%-2.0)/3.0)"}) {
    EXPECT_EQ(differences(text), 0) << text;
  }
}

TEST(EvaluateRowsTest, WhatIsNotDoneInBlocks_GivesThePlainValues) {
  for (const char *text :
       {"%a% + 7/%i%", "%a% * (double)mod(%i%, 4)", "%a% + (double)(string)%b%", "(%s% == \"x\") ? %a% : %b%",
        "%a%*((double)(%i%*2))", "%t%+%t%", "3.0", "%k%", "%a%", "%a%<%b%"}) {
    EXPECT_EQ(differences(text), 0) << text;
  }
}

TEST(EvaluateRowsTest, OtherResultTypes_GiveThePlainValues) {
  Matrix<int> ints("%i% * (int)%a%");
  std::vector<int> results(kRows);
  ints.expression().evaluateRows(ints.columns(), kRows, results.data());
  EXPECT_EQ(results, ints.rowByRow());
  Matrix<std::string> texts("(string)%a%");
  std::vector<std::string> strings(kRows);
  texts.expression().evaluateRows(texts.columns(), kRows, strings.data());
  EXPECT_EQ(strings, texts.rowByRow());
}

TEST(EvaluateRowsTest, VariablesOfTheExpression_AreLeftAsTheyAre) {
  Matrix<double> matrix("%a% + (double)(%i% * %i%)");
  matrix.expression().variables().replace("a", constant(42.0));
  Doubles results(kRows);
  matrix.expression().evaluateRows(matrix.columns(), kRows, results.data());
  EXPECT_EQ(*matrix.expression().variables().plainValue(matrix.expression().variables().handle<double>("a")),
            42.0);
}

TEST(EvaluateRowsTest, VariableWithoutColumn_KeepsItsValue) {
  Matrix<double> matrix("%a% * %b%");
  matrix.expression().variables().replace("b", constant(10.0));
  Doubles results(kRows);
  const VariableColumn column{matrix.expression().variables().handle<double>("a"), matrix.column(0).data()};
  matrix.expression().evaluateRows({column}, kRows, results.data());
  EXPECT_EQ(results[5], matrix.column(0)[5] * 10.0);
}

TEST(EvaluateRowsTest, TwoColumnsForOneVariable_TheLastCounts) {
  Matrix<double> matrix("%a% + 1.0");
  const auto handle = matrix.expression().variables().handle<double>("a");
  Doubles results(kRows);
  matrix.expression().evaluateRows({{handle, matrix.column(0).data()}, {handle, matrix.column(1).data()}},
                                   kRows, results.data());
  EXPECT_EQ(results[7], matrix.column(1)[7] + 1.0);
}

TEST(EvaluateRowsTest, RowThatFails_LeavesItsOwnAndLaterResultsUntouched) {
  Matrix<double> matrix("7 / (int)%a% + 0.5");
  for (std::size_t row = 0; row < kRows; ++row) {
    matrix.column(0)[row] = row == 400 || row == 500 ? 0.0 : 2.0;
  }
  Doubles results(kRows, kUntouched);
  std::string message;
  try {
    matrix.expression().evaluateRows(matrix.columns(), kRows, results.data());
  } catch (const std::runtime_error &error) {
    message = error.what();
  }
  EXPECT_EQ(message, "Integer division by zero");
  EXPECT_EQ(results[399], 3.5);
  EXPECT_EQ(results[400], kUntouched);
  EXPECT_EQ(results[519], kUntouched);
}

TEST(EvaluateRowsTest, InvalidExpression_FailsInTheFirstRow) {
  Matrix<double> matrix("%a% + %k%");
  const std::vector<VariableColumn> columns = matrix.columns();
  matrix.expression().variables().clear();
  matrix.expression().variables().declare("a", constant(1.0));
  Doubles results(kRows, kUntouched);
  const VariableColumn column{matrix.expression().variables().handle<double>("a"), matrix.column(0).data()};
  EXPECT_THROW(matrix.expression().evaluateRows({column}, kRows, results.data()), std::runtime_error);
  EXPECT_EQ(results[0], kUntouched);
}

TEST(EvaluateRowsTest, HandleOfAnotherCollection_IsRefusedBeforeAnyRow) {
  Matrix<double> matrix("%a% + %k%");
  Matrix<double> other("%a%");
  Doubles results(kRows, kUntouched);
  try {
    matrix.expression().evaluateRows(other.columns(), kRows, results.data());
    ADD_FAILURE() << "nothing was refused";
  } catch (const std::out_of_range &error) {
    EXPECT_STREQ(error.what(), "Variable does not exist");
  }
  EXPECT_EQ(results[0], kUntouched);
}

TEST(EvaluateRowsTest, VariableDefinedByAFormula_IsComputedForEachRow) {
  Matrix<double> matrix("%a% + %k%");
  matrix.expression().variables().replace(
      "k", makeUnary(UnaryOperator::Negate, makeVariable(ValueType::Double, "b")));
  Doubles results(kRows);
  matrix.expression().evaluateRows(matrix.columns(), kRows, results.data());
  EXPECT_EQ(results[9], matrix.column(0)[9] - matrix.column(1)[9]);
}

TEST(EvaluateRowsTest, ColumnForAVariableDefinedByAFormula_TakesItsPlace) {
  Matrix<double> matrix("%a% * 2.0");
  matrix.expression().variables().replace("a", makeVariable(ValueType::Double, "k"));
  Doubles results(kRows);
  matrix.expression().evaluateRows(matrix.columns(), kRows, results.data());
  EXPECT_EQ(results[11], matrix.column(0)[11] * 2.0);
}

TEST(EvaluateRowsTest, FewOrNoRows_AreWrittenAndNothingBehind) {
  Matrix<double> matrix("%a% * 2.0");
  for (const std::size_t rows : {0U, 1U, 3U, 4U, 256U, 257U}) {
    Doubles results(kRows, kUntouched);
    matrix.expression().evaluateRows(matrix.columns(), rows, results.data());
    for (std::size_t row = 0; row < kRows; ++row) {
      EXPECT_EQ(results[row], row < rows ? matrix.column(0)[row] * 2.0 : kUntouched) << rows;
    }
  }
}

TEST(EvaluateRowsTest, ExpressionWithoutRoot_IsInvalid) {
  const Expression<double, SimpleVariableCollection> expression(nullptr);
  double result = kUntouched;
  EXPECT_THROW(expression.evaluateRows({}, 1, &result), std::runtime_error);
  EXPECT_EQ(result, kUntouched);
}

TEST(EvaluateRowsTest, ManyNestedOperands_GiveThePlainValues) {
  // Needs more registers than blocks have.
  std::string text;
  for (int i = 0; i < 600; ++i) {
    text += "abs(%a%)-(sin(%b%)*";
  }
  text += "%c%" + std::string(600, ')');
  EXPECT_EQ(differences(text), 0);
}

} // namespace
} // namespace ExpressionBuilder
