#include "benchmarks/common/ChildProcess.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Report.h"
#include "benchmarks/solve/Benchmarks.h"
#include "benchmarks/solve/SolvedStudy.h"

#include <iostream>

namespace SolveBenchmark {

using namespace Benchmarking;

namespace {

const char *const kBusySolver = OPTSTUDY_BUSY_SOLVER;

double secondsOfXargs(std::size_t runs, std::size_t parallel) {
  const double began = wallSeconds();
  outputOf(
      {"/bin/sh", "-c",
       "seq " + std::to_string(runs) + " | xargs -n 1 -P " + std::to_string(parallel) + " " + kBusySolver});
  return wallSeconds() - began;
}

} // namespace

void measureSideBySide(const Setting &setting, BarList &bars) {
  const std::size_t rows = setting.busyRows;
  const auto ours = [&](std::size_t parallel) {
    return [&setting, rows, parallel] {
      return SolvedStudy(setting.folder, kBusySolver, rows).solve(parallel);
    };
  };
  const auto theirs = [rows](std::size_t parallel) {
    return [rows, parallel] {
      return secondsOfXargs(rows, parallel);
    };
  };
  const std::vector<double> seconds =
      measureOneByOne({ours(1), theirs(1), ours(2), theirs(2)}, (setting.repetitions + 1) / 2);
  std::cout << "\n3  " << rows << " rows of a solver that takes 50 ms of a processor (time on the wall)\n";
  const std::size_t first = bars.size();
  Table table({"", "one at a time", "two at a time", "two / one"});
  const double own = seconds[2] / seconds[0];
  const double xargs = seconds[3] / seconds[1];
  table.add({"optstudy", duration(seconds[0]), duration(seconds[2]), fixed(own, 3)});
  table.add({"xargs -P", duration(seconds[1]), duration(seconds[3]), fixed(xargs, 3)});
  table.print();
  bars.judge("two rows at a time / xargs -P 2, each by one at a time", own / xargs, 1.10, std::nullopt);
  bars.print(first);
}

} // namespace SolveBenchmark
