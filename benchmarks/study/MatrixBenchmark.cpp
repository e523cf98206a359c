#include "HostModel/Attribute.h"
#include "OptimizationTool/OptimizationVariants.h"
#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/study/Benchmarks.h"
#include "benchmarks/study/StudyProject.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <malloc.h>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <unistd.h>

// The matrix by itself, with copies of a number in every cell. Memory is measured in a process of its own, in which
// nothing was freed before.

namespace StudyBenchmark {

using namespace Benchmarking;
using EntityModel::Attribute;
using OptimizationTool::OptimizationVariant;
using OptimizationTool::OptimizationVariants;

namespace {

constexpr std::size_t kCells = 20; ///< of each side

std::unique_ptr<OptimizationVariant> makeRow(const StudyProject &study, std::size_t row) {
  auto variant = std::make_unique<OptimizationVariant>("Row " + std::to_string(row));
  variant->reserveCells(kCells, kCells); // as the study does
  for (std::size_t cell = 0; cell < kCells; ++cell) {
    variant->addInput(study.attribute(study.names(true)[cell]));
  }
  for (std::size_t cell = 0; cell < kCells; ++cell) {
    variant->addOutput(study.attribute(study.names(true)[cell]));
  }
  return variant;
}

OptimizationVariants makeMatrix(const StudyProject &study, std::size_t rows) {
  OptimizationVariants matrix;
  for (std::size_t row = 0; row < rows; ++row) {
    matrix.append(makeRow(study, row));
  }
  return matrix;
}

std::vector<const Attribute *> columnOf(const OptimizationVariants &matrix, std::size_t cell) {
  std::vector<const Attribute *> column;
  column.reserve(matrix.size());
  for (const auto &row : matrix) {
    column.push_back(row->getInput(cell));
  }
  return column;
}

double sumOf(const std::vector<const Attribute *> &column) {
  double sum = 0.0;
  for (const Attribute *attribute : column) {
    sum += attribute->getStandardValue();
  }
  return sum;
}

struct Times {
  double floor = 0.0;
  double column = 0.0;
  double append = 0.0;
  double erase = 0.0;
};

Times measureOf(const StudyProject &study, std::size_t rows, const Setting &setting) {
  Times times;
  OptimizationVariants matrix = makeMatrix(study, rows);
  // Every time another column, so that what was read last is not what is read next.
  std::vector<std::vector<const Attribute *>> columns;
  for (std::size_t cell = 0; cell < kCells; ++cell) {
    columns.push_back(columnOf(matrix, cell));
  }
  std::size_t next = 0;
  const auto sums = [&](std::size_t count) {
    for (std::size_t time = 0; time < count; ++time) {
      benchmark::DoNotOptimize(sumOf(columns[++next % kCells]));
    }
  };
  const auto values = [&](std::size_t count) {
    for (std::size_t time = 0; time < count; ++time) {
      benchmark::DoNotOptimize(matrix.standardVal(true, ++next % kCells));
    }
  };
  const std::vector<double> reading = measureInterleaved({sums, values}, setting.effort);
  times.floor = reading[0];
  times.column = reading[1];

  const std::size_t repeated = std::max<std::size_t>(1, 10'000 / rows);
  const auto append = [&] {
    double seconds = 0.0;
    for (std::size_t time = 0; time < repeated; ++time) {
      const double begin = processorSeconds();
      const OptimizationVariants made = makeMatrix(study, rows);
      seconds += processorSeconds() - begin;
      benchmark::DoNotOptimize(made.size());
    }
    return seconds / static_cast<double>(repeated);
  };
  // One row in the middle; a new one takes its place at the end.
  const auto erase = [&] {
    constexpr std::size_t kTimes = 50;
    double seconds = 0.0;
    for (std::size_t time = 0; time < kTimes; ++time) {
      const double begin = processorSeconds();
      matrix.erase(matrix.size() / 2);
      seconds += processorSeconds() - begin;
      matrix.append(makeRow(study, time));
    }
    return seconds / static_cast<double>(kTimes);
  };
  const std::vector<double> changing = measureOneByOne({append, erase}, setting.longRepetitions);
  times.append = changing[0];
  times.erase = changing[1];
  return times;
}

struct Memory {
  double allocated = 0.0;
  double resident = 0.0;
};

Memory memoryNow() {
  const struct mallinfo2 heap = mallinfo2();
  std::ifstream statm("/proc/self/statm");
  double total = 0.0;
  double resident = 0.0;
  statm >> total >> resident;
  if (!statm) {
    throw std::runtime_error("The memory of this process cannot be read");
  }
  return {static_cast<double>(heap.uordblks + heap.hblkhd),
          resident * static_cast<double>(sysconf(_SC_PAGESIZE))};
}

} // namespace

void runMemoryChild(std::size_t rows) {
  const StudyProject study;
  const OptimizationVariants warm = makeMatrix(study, 10);
  const Memory before = memoryNow();
  const OptimizationVariants matrix = makeMatrix(study, rows);
  const Memory after = memoryNow();
  benchmark::DoNotOptimize(matrix.size() + warm.size());
  std::cout << after.allocated - before.allocated << ' ' << after.resident - before.resident << '\n';
}

void measureMatrix(const Setting &setting, BarList &bars) {
  std::vector<std::size_t> counts = setting.rows;
  counts.push_back(setting.mostRows);
  const StudyProject study;
  std::vector<Times> all;
  all.reserve(counts.size());
  for (const std::size_t rows : counts) {
    all.push_back(measureOf(study, rows, setting));
  }
  std::istringstream child(outputOf({setting.program, "--memory-of=" + std::to_string(setting.mostRows)}));
  Memory memory;
  child >> memory.allocated >> memory.resident;
  if (!child) {
    throw std::runtime_error("The process that measures memory said nothing");
  }

  std::cout << "\n2  The matrix, " << kCells << " cells on each side\n";
  const std::size_t first = bars.size();
  Table table({"rows", "sum of pointers", "standardVal", "x sum", "append all", "growth", "erase one"});
  for (std::size_t at = 0; at < counts.size(); ++at) {
    const Times &of = all[at];
    table.add({std::to_string(counts[at]), duration(of.floor), duration(of.column),
               fixed(of.column / of.floor, 2), duration(of.append),
               at == 0 ? "" : fixed(of.append / all[at - 1].append, 2), duration(of.erase)});
    bars.judge("standardVal, " + std::to_string(counts[at]) + " rows / sum of pointers", of.column / of.floor,
               3.0, std::nullopt);
  }
  table.print();
  const double cells = static_cast<double>(setting.mostRows * 2 * kCells);
  std::cout << "Memory for each cell of a number: " << fixed(memory.allocated / cells, 1) << " B allocated, "
            << fixed(memory.resident / cells, 1) << " B resident\n";
  bars.judge("append " + std::to_string(counts.back()) + " rows / " +
                 std::to_string(counts[counts.size() - 2]),
             all.back().append / all[all.size() - 2].append, 15.0, std::nullopt);
  bars.judge("erase from " + std::to_string(counts.back()) + " rows / appending one",
             all.back().erase / (all.back().append / static_cast<double>(counts.back())), std::nullopt, 15.0);
  bars.print(first);
}

} // namespace StudyBenchmark
