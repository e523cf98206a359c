#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Program.h"
#include "benchmarks/study/Benchmarks.h"

#include <array>
#include <iostream>
#include <optional>
#include <string_view>

namespace {

using namespace Benchmarking;
using namespace StudyBenchmark;

constexpr const char *kHelp = R"(usage: study_benchmark [OPTIONS]

Measures what studies of many rows cost, over the host that is shipped, and prints which of the required ratios hold.
Exit code 0 when it could measure, whatever came out.

  --rows=1,3     only these of the six tables:
                   1  looking variables and groups up
                   2  the matrix of rows and cells
                   3  loading a study
                   4  updating all rows
                   5  adding rows
                   6  setting one value
  --quick        few and short repetitions, for a first look while developing
  --core=N       the core to run on; otherwise the last one that the process may use
  --help         this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 6> kTables = {&measureGroups,   &measureMatrix, &measureLoading,
                                            &measureUpdating, &measureAdding, &measureEditing};

void measure(const Choice &choice, char **arguments) {
  const int core = runOnOneCore(choice.core, arguments);
  Setting setting;
  setting.program = programPath();
  if (choice.quick) {
    setting.effort = {3, 0.001};
    setting.longRepetitions = 1;
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, of what takes seconds " << setting.longRepetitions
            << "; medians of processor time\n";
  if (choice.quick) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
  }
  keepMemory();
  measureTables(kTables, choice, setting, "All bars");
}

} // namespace

int main(int count, char **arguments) {
  std::optional<std::size_t> memoryOf;
  const OwnOptions own = {{"--memory-of", [&](std::string_view value) {
                             memoryOf = wholeNumber<std::size_t>(value);
                           }}};
  return runProgram(count, arguments, kHelp, kTables.size(), own, [&](const Choice &choice) {
    if (memoryOf) {
      runMemoryChild(*memoryOf);
    } else {
      measure(choice, arguments);
    }
  });
}
