#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ExpressionBenchmark {

/// One line of expressions.txt: a text over the variables x0, x1, ... in the language's own syntax.
struct ExpressionCase {
  std::string name;
  std::size_t variableCount = 0;
  /// Bounds of the values that are drawn for each variable.
  double lowest = 0.0;
  double highest = 0.0;
  std::string text;

  /// The name of one variable: the prefix and its number.
  static std::string variableName(const std::string &prefix, std::size_t variable);
  /// The names of all variables, in order.
  std::vector<std::string> variableNames(const std::string &prefix) const;
  /// The text over variables named by another prefix than "x".
  std::string textWithNames(const std::string &prefix) const;
  /// The text as muparser reads it: no percent signs, `ln` for the natural logarithm, its operator `^` for the
  /// power function that it has not, and a clamp made of its `min` and `max`.
  std::string rivalText() const;
  /// `rows` times `variableCount` values, row by row; the same ones in every run.
  std::vector<double> drawRows(std::size_t rows) const;
};

/// \throws std::runtime_error  the file cannot be read, or a line is not as the file's own heading says
std::vector<ExpressionCase> readExpressionCases(const std::string &path);

} // namespace ExpressionBenchmark
