#pragma once

#include "ExpressionBuilder/BuilderSingleType.h"
#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace ExpressionBenchmark {

using Builder = ExpressionBuilder::BuilderSingleType<double>;

/// Makes the variables of the names known to the builder.
void declareVariables(Builder &builder, const std::vector<std::string> &names);

/// A built expression and the handles of its variables.
class OwnExpression {
public:
  using Handle = ExpressionBuilder::VariableHandle<double>;
  using Built = ExpressionBuilder::Expression<double, ExpressionBuilder::SimpleVariableCollection>;

  /// Builds the text and looks the handles up; no variable of it has been set.
  OwnExpression(const Builder &builder, const std::string &text, const std::vector<std::string> &names);

  /// The same with a builder of its own, which knows just these variables.
  OwnExpression(const std::string &text, const std::vector<std::string> &names);

  /// One value for each variable.
  void set(const double *row) {
    ExpressionBuilder::SimpleVariableCollection &variables = m_expression->variables();
    for (const Handle &handle : m_handles) {
      variables.set(handle, *row);
      ++row;
    }
  }
  double evaluate() const { return m_expression->evaluate(); }

  /// Gives one variable a new definition under its name, which is what a caller without handles does.
  void replace(const std::string &name, double value);
  /// All rows of a matrix that is stored by columns, one column for each variable.
  void evaluateRows(const double *const *columns, std::size_t rows, double *results) const;

private:
  void build(const Builder &builder, const std::string &text, const std::vector<std::string> &names);

  std::unique_ptr<Built> m_expression;
  std::vector<Handle> m_handles;
};

} // namespace ExpressionBenchmark
