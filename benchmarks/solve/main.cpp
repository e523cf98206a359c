#include "benchmarks/common/CommandLine.h"
#include "benchmarks/host/ScratchFolder.h"
#include "benchmarks/solve/Benchmarks.h"

#include <sqlite3.h>

#include <array>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

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

struct Options {
  std::vector<std::size_t> tables = {1, 2, 3, 4};
  bool quick = false;
  bool many = false;
  bool help = false;
  std::string folder;
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
    } else if (name == "--folder") {
      options.folder = value;
    } else if (argument == "--many") {
      options.many = true;
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

std::string load() {
  std::array<double, 1> average{};
  return getloadavg(average.data(), 1) == 1 ? fixed(average[0], 1) : "unknown";
}

void run(const Options &options) {
  if (options.help) {
    std::cout << kHelp;
    return;
  }
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  const HostBenchmark::ScratchFolder folder(options.folder.empty() ? program.parent_path().string()
                                                                   : options.folder);
  Setting setting;
  setting.folder = folder.path();
  if (options.quick) {
    setting.repetitions = 1;
    setting.rows = {10, 100};
    setting.busyRows = 10;
  }
  if (options.many) {
    setting.rows.push_back(10'000);
  }
  std::cout << setting.repetitions << " repetitions, of what takes seconds fewer; medians\nSQLite "
            << sqlite3_libversion() << "; projects are saved on " << folder.fileSystem()
            << "\nLoad of the last minute before: " << load() << '\n';
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
  std::cout << "Load of the last minute after: " << load() << '\n';
}

} // namespace

int main(int count, char **arguments) {
  try {
    run(readOptions(count, arguments));
    return 0;
  } catch (const std::invalid_argument &error) {
    std::cerr << error.what() << "\n\n" << kHelp;
    return 2;
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
