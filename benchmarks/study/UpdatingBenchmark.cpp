#include "benchmarks/study/Benchmarks.h"
#include "benchmarks/study/StudyProject.h"

#include <algorithm>
#include <iostream>

namespace StudyBenchmark {

using namespace Benchmarking;
using OptimizationTool::OptimizationData;

namespace {

constexpr const char *kCost = "%In0.Member1% * 2.0 + %Out0.Member1%";

struct Loaded {
  explicit Loaded(std::size_t rows) {
    study.addAlternates(rows - 1);
    study.reopen();
    study.data().initializeVariants(nullptr);
    study.data().setCostFunction(kCost);
  }
  StudyProject study;
};

} // namespace

void measureUpdating(const Setting &setting, BarList &bars) {
  std::vector<double> all;
  for (const std::size_t rows : setting.rows) {
    Loaded loaded(rows);
    const std::size_t times = std::max<std::size_t>(1, 10'000 / rows);
    const auto update = [&] {
      const double begin = processorSeconds();
      for (std::size_t time = 0; time < times; ++time) {
        loaded.study.data().updateAlternates(OptimizationData::UpdateTypes(OptimizationData::WriteToModel) |
                                                 OptimizationData::ReadFromModel,
                                             nullptr);
      }
      return (processorSeconds() - begin) / static_cast<double>(times);
    };
    all.push_back(measureOneByOne({update}, setting.longRepetitions).front());
  }
  std::cout << "\n4  Updating all rows in both directions, " << kInputs << " inputs and " << kOutputs
            << " outputs\n";
  const std::size_t first = bars.size();
  Table table({"rows", "updateAlternates", "a row", "growth"});
  for (std::size_t at = 0; at < all.size(); ++at) {
    table.add({std::to_string(setting.rows[at]), duration(all[at]),
               duration(all[at] / static_cast<double>(setting.rows[at])),
               at == 0 ? "" : fixed(all[at] / all[at - 1], 2)});
    if (at > 0) {
      bars.judge("update " + std::to_string(setting.rows[at]) + " rows / " +
                     std::to_string(setting.rows[at - 1]) + " rows",
                 all[at] / all[at - 1], 15.0, std::nullopt);
    }
  }
  table.print();
  bars.print(first);
}

void measureEditing(const Setting &setting, BarList &bars) {
  std::vector<double> all;
  for (const std::size_t rows : setting.rows) {
    Loaded loaded(rows);
    std::size_t value = 0;
    const auto edit = [&](std::size_t times) {
      for (std::size_t time = 0; time < times; ++time) {
        loaded.study.data().setVariantValue(rows / 2, 3, std::to_string(++value % 1000));
      }
    };
    all.push_back(measureInterleaved({edit}, setting.effort).front());
  }
  std::cout << "\n6  Setting one value of one row\n";
  const std::size_t first = bars.size();
  Table table({"rows", "setVariantValue", "growth"});
  for (std::size_t at = 0; at < all.size(); ++at) {
    table.add({std::to_string(setting.rows[at]), duration(all[at]),
               at == 0 ? "" : fixed(all[at] / all[at - 1], 2)});
  }
  table.print();
  bars.judge("set one value: " + std::to_string(setting.rows.back()) + " rows / " +
                 std::to_string(setting.rows.front()) + " rows",
             all.back() / all.front(), 1.5, std::nullopt);
  bars.print(first);
}

} // namespace StudyBenchmark
