#include "benchmarks/expression/OwnExpression.h"

#include "ExpressionBuilder/ElementConstant.h"

namespace ExpressionBenchmark {

void declareVariables(Builder &builder, const std::vector<std::string> &names) {
  for (const std::string &name : names) {
    builder.variables().declare(name, std::make_unique<ExpressionBuilder::ElementConstant<double>>(1.0));
  }
}

OwnExpression::OwnExpression(const Builder &builder, const std::string &text,
                             const std::vector<std::string> &names) {
  build(builder, text, names);
}

OwnExpression::OwnExpression(const std::string &text, const std::vector<std::string> &names) {
  Builder builder;
  declareVariables(builder, names);
  build(builder, text, names);
}

void OwnExpression::build(const Builder &builder, const std::string &text,
                          const std::vector<std::string> &names) {
  m_expression = builder.buildExpression(text);
  m_handles.reserve(names.size());
  for (const std::string &name : names) {
    m_handles.push_back(m_expression->variables().handle<double>(name));
  }
}

void OwnExpression::replace(const std::string &name, double value) {
  m_expression->variables().replace(name,
                                    std::make_unique<ExpressionBuilder::ElementConstant<double>>(value));
}

void OwnExpression::evaluateRows(const double *const *columns, std::size_t rows, double *results) const {
  std::vector<ExpressionBuilder::VariableColumn> bound;
  bound.reserve(m_handles.size());
  for (std::size_t variable = 0; variable < m_handles.size(); ++variable) {
    bound.push_back({m_handles[variable], columns[variable]});
  }
  m_expression->evaluateRows(bound, rows, results);
}

} // namespace ExpressionBenchmark
