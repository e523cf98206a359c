#include "benchmarks/common/Program.h"
#include "benchmarks/host/ScratchFolder.h"
#include "benchmarks/solve/Benchmarks.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

namespace {

using namespace Benchmarking;
using namespace SolveBenchmark;

constexpr const char *kHelp = R"(usage: solve_benchmark [OPTIONS]

Compares what solving costs beside the solvers with the least that it could cost, and prints which of the required
ratios hold. Exit code 0 when it could measure, whatever came out. Nothing else should run: the load is printed.

  --rows=1,3     only these of the four tables:
                   1  our own time for each solved row
                   2  the same in a large process
                   3  two rows at a time
                   4  copying results
  --many         studies of 10000 rows, too
  --quick        few repetitions, for a first look while developing
  --folder=DIR   where projects are saved; otherwise beside this program
  --help         this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 4> kTables = {&measureRows, &measureLargeProcess, &measureSideBySide,
                                            &measureCopying};

std::string load() {
  std::array<double, 1> average{};
  return getloadavg(average.data(), 1) == 1 ? fixed(average[0], 1) : "unknown";
}

void measure(const Choice &choice, const std::string &parent, bool many) {
  const HostBenchmark::ScratchFolder folder(
      parent.empty() ? std::filesystem::path(programPath()).parent_path().string() : parent);
  Setting setting;
  setting.folder = folder.path();
  if (choice.quick) {
    setting.repetitions = 1;
    setting.rows = {10, 100};
    setting.busyRows = 10;
  }
  if (many) {
    setting.rows.push_back(10'000);
  }
  std::cout << setting.repetitions << " repetitions, of what takes seconds fewer; medians\nSQLite "
            << sqlite3_libversion() << "; projects are saved on " << folder.fileSystem()
            << "\nLoad of the last minute before: " << load() << '\n';
  if (choice.quick) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
  }
  measureTables(kTables, choice, setting, "All bars");
  std::cout << "Load of the last minute after: " << load() << '\n';
}

} // namespace

int main(int count, char **arguments) {
  std::string folder;
  bool many = false;
  const OwnOptions own = {{"--folder",
                           [&](std::string_view value) {
                             folder = value;
                           }},
                          {"--many", [&](std::string_view) {
                             many = true;
                           }}};
  return runProgram(count, arguments, kHelp, kTables.size(), own,
                    [&](const Choice &choice) { measure(choice, folder, many); });
}
