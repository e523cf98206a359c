#pragma once

#include <algorithm>
#include <cstddef>
#include <muParser.h>
#include <string>
#include <vector>

namespace ExpressionBenchmark {

/// A muparser object whose variables are bound to doubles.
class RivalExpression {
public:
  explicit RivalExpression(const std::vector<std::string> &names);
  /// The parser holds addresses of the values.
  RivalExpression(const RivalExpression &) = delete;
  RivalExpression &operator=(const RivalExpression &) = delete;
  ~RivalExpression() = default;

  /// What muparser says against the text it throws as mu::ParserError, then or at the first evaluation.
  void setText(const std::string &text);
  /// One value for each variable.
  void set(const double *row) { std::copy_n(row, m_values.size(), m_values.data()); }
  double evaluate() const { return m_parser.Eval(); }

private:
  std::vector<double> m_values;
  mu::Parser m_parser;
};

/// A muparser object whose variables are bound to columns of a matrix.
class RivalMatrix {
public:
  /// Only reads the columns, which must outlive it.
  RivalMatrix(const std::vector<std::string> &names, const std::string &text,
              const std::vector<double *> &columns);

  void evaluateRows(std::size_t rows, double *results);

private:
  mu::Parser m_parser;
};

} // namespace ExpressionBenchmark
