#pragma once

#include <cstddef>
#include <string>

namespace ExpressionBenchmark {

/// One expression as its author would have written it in C++.
struct NativeExpression {
  /// The value for one row of values; compiled alone, never inlined.
  using Single = double (*)(const double *x);
  /// The values of `rows` rows that are given as columns. `results` overlaps no column.
  using Loop = void (*)(const double *const *columns, std::size_t rows, double *results);

  Single single = nullptr;
  Loop loop = nullptr;
};

/// By the name that expressions.txt gives.
/// \throws std::runtime_error  there is none of that name
const NativeExpression &nativeExpression(const std::string &name);

/// The compiler and the options that the native expressions are built with.
std::string nativeBuild();

} // namespace ExpressionBenchmark
