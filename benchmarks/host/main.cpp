#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Program.h"
#include "benchmarks/host/Benchmarks.h"
#include "benchmarks/host/ScratchFolder.h"

#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace Benchmarking;
using namespace HostBenchmark;

constexpr const char *kHelp = R"(usage: host_benchmark [OPTIONS]

Compares what the host does most with the least that it could cost, and prints which of the required ratios hold.
Exit code 0 when it could measure, whatever came out.

  --rows=1,3     only these of the six tables:
                   1  switching between alternates
                   2  look-ups of versions and edits
                   3  saving after one edit
                   4  opening a project
                   5  memory for each edit
                   6  making alternates
  --quick        few and short repetitions, for a first look while developing
  --core=N       the core to run on; otherwise the last one that the process may use
  --folder=DIR   where projects are saved; otherwise beside this program
  --help         this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 6> kTables = {&measureSwitching, &measureLookUp, &measureSaving,
                                            &measureOpening,   &measureMemory, &measureCreation};

void measure(const Choice &choice, const std::string &parent, char **arguments) {
  const int core = runOnOneCore(choice.core, arguments);
  Setting setting;
  setting.program = programPath();
  const ScratchFolder folder(parent.empty() ? std::filesystem::path(setting.program).parent_path().string()
                                            : parent);
  setting.folder = folder.path();
  if (choice.quick) {
    setting.effort = {3, 0.001};
    setting.longRepetitions = 1;
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, of what takes seconds " << setting.longRepetitions
            << "; medians of processor time where nothing else is said\nSQLite " << sqlite3_libversion()
            << "; projects are saved on " << folder.fileSystem() << '\n';
  if (choice.quick) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
  }
  keepMemory();
  measureTables(kTables, choice, setting, "All bars");
}

} // namespace

int main(int count, char **arguments) {
  std::string folder;
  std::optional<std::string> memoryOf;
  std::size_t alternates = 0;
  const OwnOptions own = {{"--folder",
                           [&](std::string_view value) {
                             folder = value;
                           }},
                          {"--memory-of",
                           [&](std::string_view value) {
                             memoryOf = value;
                           }},
                          {"--alternates", [&](std::string_view value) {
                             alternates = wholeNumber<std::size_t>(value);
                           }}};
  return runProgram(count, arguments, kHelp, kTables.size(), own, [&](const Choice &choice) {
    if (memoryOf) {
      runMemoryChild(*memoryOf, alternates);
    } else {
      measure(choice, folder, arguments);
    }
  });
}
