#pragma once

#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/expression/ExpressionCase.h"

#include <cstddef>
#include <string>
#include <vector>

namespace ExpressionBenchmark {

using Benchmarking::BarList;
using Benchmarking::duration;
using Benchmarking::Effort;
using Benchmarking::fixed;
using Benchmarking::measureInterleaved;
using Benchmarking::median;
using Benchmarking::processorSeconds;
using Benchmarking::Ratios;
using Benchmarking::Table;
using Benchmarking::Way;

/// What all benchmarks are given.
struct Setting {
  std::vector<ExpressionCase> cases;
  Effort effort;
  /// The file of this program, for what has to run in a process of its own.
  std::string program;
};

/// Each prints a table and enters what is judged into the list.
/// \{

/// `evaluate()` of a built expression after setting all variables through handles; muparser; native.
void measureEvaluation(const Setting &setting, BarList &bars);
/// `evaluate()` after replacing every variable's definition by name; muparser.
void measureReplacement(const Setting &setting, BarList &bars);
/// `evaluateRows()` over the columns of a matrix; muparser's bulk mode; a hand-written loop.
void measureMatrix(const Setting &setting, BarList &bars);
/// From the text to the first value; muparser.
void measureText(const Setting &setting, BarList &bars);
/// Very long sums: built, evaluated and destroyed.
void measureLength(const Setting &setting, BarList &bars);
/// \}

/// What measureLength() runs as a process of its own: one sum of so many terms. Prints what it measured.
void runLengthChild(std::size_t terms);

} // namespace ExpressionBenchmark
