#include "benchmarks/common/Program.h"
#include "benchmarks/host/ScratchFolder.h"
#include "benchmarks/look/Benchmarks.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>

namespace {

using namespace Benchmarking;
using namespace LookBenchmark;

constexpr const char *kHelp = R"(usage: look_benchmark [OPTIONS]

Measures the commands that look at a study or price it anew, and prints which of the required times hold. Exit code 0
when it could measure, whatever came out. Nothing else should run: the load is printed.

  --rows=1       only the one table that there is
  --quick        few repetitions and rows, for a first look while developing
  --folder=DIR   where projects are saved; otherwise beside this program
  --help         this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 1> kTables = {&measureLooking};

std::string load() {
  std::array<double, 1> average{};
  return getloadavg(average.data(), 1) == 1 ? fixed(average[0], 1) : "unknown";
}

void measure(const Choice &choice, const std::string &parent) {
  const HostBenchmark::ScratchFolder folder(
      parent.empty() ? std::filesystem::path(programPath()).parent_path().string() : parent);
  Setting setting;
  setting.folder = folder.path();
  if (choice.quick) {
    setting.repetitions = 1;
    setting.rows = {100, 1'000};
  }
  std::cout << setting.repetitions << " repetitions; medians\nProjects are read from " << folder.fileSystem()
            << "\nLoad of the last minute before: " << load() << '\n';
  if (choice.quick) {
    std::cout << "A QUICK RUN: too few repetitions and rows to judge by\n";
  }
  measureTables(kTables, choice, setting, "All bars");
  std::cout << "Load of the last minute after: " << load() << '\n';
}

} // namespace

int main(int count, char **arguments) {
  std::string folder;
  const OwnOptions own = {{"--folder", [&](std::string_view value) {
                             folder = value;
                           }}};
  return runProgram(count, arguments, kHelp, kTables.size(), own,
                    [&](const Choice &choice) { measure(choice, folder); });
}
