#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/study/Benchmarks.h"

#include <array>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

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

struct Options {
  std::vector<std::size_t> tables = {1, 2, 3, 4, 5, 6};
  bool quick = false;
  bool help = false;
  std::optional<int> core;
  std::optional<std::size_t> memoryOf;
};

Options readOptions(int count, char **arguments) {
  Options options;
  for (int at = 1; at < count; ++at) {
    const std::string_view argument = arguments[at];
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const std::string_view value = equals == std::string_view::npos ? "" : argument.substr(equals + 1);
    if (name == "--rows") {
      options.tables = tableNumbers(value, kTables.size());
    } else if (name == "--core") {
      options.core = wholeNumber<int>(value);
    } else if (name == "--memory-of") {
      options.memoryOf = wholeNumber<std::size_t>(value);
    } else if (argument == "--quick") {
      options.quick = true;
    } else if (argument == "--help") {
      options.help = true;
    } else {
      throw std::invalid_argument("Unknown option " + std::string(argument));
    }
  }
  return options;
}

void run(const Options &options, char **arguments) {
  if (options.help) {
    std::cout << kHelp;
    return;
  }
  if (options.memoryOf) {
    runMemoryChild(*options.memoryOf);
    return;
  }
  const int core = runOnOneCore(options.core, arguments);
  Setting setting;
  setting.program = std::filesystem::read_symlink("/proc/self/exe").string();
  if (options.quick) {
    setting.effort = {3, 0.001};
    setting.longRepetitions = 1;
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, of what takes seconds " << setting.longRepetitions
            << "; medians of processor time\n";
  if (options.quick) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
  }
  BarList bars;
  for (const std::size_t table : options.tables) {
    kTables.at(table - 1)(setting, bars);
  }
  std::cout << "\nAll bars\n";
  bars.print();
  bars.printSummary();
}

} // namespace

int main(int count, char **arguments) {
  try {
    run(readOptions(count, arguments), arguments);
    return 0;
  } catch (const std::invalid_argument &error) {
    std::cerr << error.what() << "\n\n" << kHelp;
    return 2;
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
