#include "benchmarks/expression/RivalExpression.h"

namespace ExpressionBenchmark {

RivalExpression::RivalExpression(const std::vector<std::string> &names) : m_values(names.size()) {
  for (std::size_t variable = 0; variable < names.size(); ++variable) {
    m_parser.DefineVar(names[variable], &m_values[variable]);
  }
}

void RivalExpression::setText(const std::string &text) {
  m_parser.SetExpr(text);
}

RivalMatrix::RivalMatrix(const std::vector<std::string> &names, const std::string &text,
                         const std::vector<double *> &columns) {
  for (std::size_t variable = 0; variable < names.size(); ++variable) {
    m_parser.DefineVar(names[variable], columns[variable]);
  }
  m_parser.SetExpr(text);
}

void RivalMatrix::evaluateRows(std::size_t rows, double *results) {
  m_parser.Eval(results, static_cast<int>(rows));
}

} // namespace ExpressionBenchmark
