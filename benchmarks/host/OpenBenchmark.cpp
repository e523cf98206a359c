#include "benchmarks/host/BareDatabase.h"
#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/StoredProject.h"

#include <benchmark/benchmark.h>

#include <array>
#include <iostream>

namespace HostBenchmark {

using namespace Benchmarking;

namespace {

// Closing is not counted: the program that closes a project mostly ends.
double openOnce(const StoredProject &stored) {
  const double begin = processorSeconds();
  const std::unique_ptr<EmbeddedHost::Project> project = stored.open();
  return processorSeconds() - begin;
}

double readOnce(const StoredProject &stored) {
  const double begin = processorSeconds();
  benchmark::DoNotOptimize(readBare(stored.file()));
  return processorSeconds() - begin;
}

} // namespace

void measureOpening(const Setting &setting, BarList &bars) {
  const std::array<std::size_t, 2> versions = {setting.some, setting.many};
  const std::array<StoredProject, 2> stored = {StoredProject(setting.folder, versions[0]),
                                               StoredProject(setting.folder, versions[1])};
  std::vector<TimedWay> ways;
  for (const StoredProject &each : stored) {
    ways.emplace_back([&each] { return readOnce(each); });
    ways.emplace_back([&each] { return openOnce(each); });
  }
  const std::vector<double> seconds = measureOneByOne(ways, setting.longRepetitions);

  std::cout << "\n4  Opening a project with alternates of ten edits\n";
  const std::size_t first = bars.size();
  Table table({"versions", "quick_check and bare reading", "open", "x bare"});
  for (std::size_t row = 0; row < versions.size(); ++row) {
    const double *of = &seconds[2 * row];
    const std::string count = std::to_string(versions[row]);
    table.add({count, duration(of[0]), duration(of[1]), fixed(of[1] / of[0], 2)});
    bars.judge("open a project of " + count + " versions / bare", of[1] / of[0], 3.0, std::nullopt);
  }
  table.print();
  bars.judge("open: " + std::to_string(versions[1]) + " versions / " + std::to_string(versions[0]),
             seconds[3] / seconds[1], 15.0, std::nullopt);
  bars.print(first);
}

} // namespace HostBenchmark
