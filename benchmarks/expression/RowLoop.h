#pragma once

#include "benchmarks/common/Measurement.h"
#include "benchmarks/expression/ExpressionCase.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace ExpressionBenchmark {

using Benchmarking::Way;

/// So many that no branch predictor learns them by heart, few enough to stay in the second-level cache.
inline std::size_t rowsFor(const ExpressionCase &expression) {
  return std::min<std::size_t>(1024, 32768 / expression.variableCount);
}

/// Evaluates one row after the other, round and round. `evaluate` takes the row's first value and gives a value;
/// `rows` must outlive the result.
template <class Evaluate>
Way overRows(const std::vector<double> &rows, std::size_t width, Evaluate evaluate) {
  return [&rows, width, evaluate](std::size_t times) {
    const double *const end = rows.data() + rows.size();
    const double *row = rows.data();
    for (std::size_t time = 0; time < times; ++time) {
      benchmark::DoNotOptimize(evaluate(row));
      row += width;
      row = row == end ? rows.data() : row;
    }
  };
}

} // namespace ExpressionBenchmark
