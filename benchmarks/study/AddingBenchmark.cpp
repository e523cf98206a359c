#include "benchmarks/study/Benchmarks.h"
#include "benchmarks/study/StudyProject.h"

#include <iostream>
#include <limits>
#include <stdexcept>
#include <utility>

namespace StudyBenchmark {

using namespace Benchmarking;

namespace {

constexpr std::size_t kBlock = 1'000;

std::vector<std::string> valuesOf(std::size_t row) {
  std::vector<std::string> values;
  values.reserve(kInputs);
  for (std::size_t variable = 0; variable < kInputs; ++variable) {
    values.push_back(valueText(row, variable));
  }
  return values;
}

// Seconds of every thousand rows, one after the other. A name for each, or none.
std::vector<double> addRows(std::size_t rows, bool isNamed) {
  StudyProject study;
  std::vector<double> seconds;
  for (std::size_t row = 1; row <= rows;) {
    const double begin = processorSeconds();
    for (const std::size_t end = row + kBlock; row < end; ++row) {
      const std::size_t index =
          study.data().addVariant(valuesOf(row), isNamed ? "Row " + std::to_string(row) : std::string(),
                                  std::numeric_limits<std::uint64_t>::max());
      if (index != row) {
        throw std::runtime_error("A row cannot be added");
      }
    }
    seconds.push_back(processorSeconds() - begin);
  }
  return seconds;
}

} // namespace

void measureAdding(const Setting &setting, BarList &bars) {
  const std::size_t rows = setting.rows.back();
  const std::size_t blocks = rows / kBlock;
  // Every block of a run is a way of its own, so that each has its median.
  const auto medians = [&](bool isNamed) {
    std::vector<std::vector<double>> of(blocks);
    for (std::size_t repetition = 0; repetition < setting.longRepetitions; ++repetition) {
      const std::vector<double> seconds = addRows(rows, isNamed);
      for (std::size_t block = 0; block < blocks; ++block) {
        of[block].push_back(seconds[block]);
      }
    }
    std::vector<double> result;
    result.reserve(of.size());
    for (std::vector<double> &block : of) {
      result.push_back(median(std::move(block)));
    }
    return result;
  };
  const std::vector<double> unnamed = medians(false);
  const std::vector<double> named = medians(true);

  std::cout << "\n5  Adding a row, within every thousand\n";
  const std::size_t first = bars.size();
  Table table({"rows up to", "without a name", "x first", "with a name", "x first"});
  for (std::size_t block = 0; block < blocks; ++block) {
    table.add({std::to_string((block + 1) * kBlock), duration(unnamed[block] / kBlock),
               fixed(unnamed[block] / unnamed.front(), 2), duration(named[block] / kBlock),
               fixed(named[block] / named.front(), 2)});
  }
  table.print();
  bars.judge("add rows without a name: last thousand of " + std::to_string(rows) + " / first",
             unnamed.back() / unnamed.front(), 3.0, std::nullopt);
  bars.print(first);
}

} // namespace StudyBenchmark
