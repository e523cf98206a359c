#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/pricing/Benchmarks.h"

#include <array>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace Benchmarking;
using namespace PricingBenchmark;

constexpr const char *kHelp = R"(usage: pricing_benchmark [OPTIONS]

Compares the pricing of a study's rows with the reading of its cells, and the building of a cost function with the
reading of its groups and with muparser, and prints which of the required ratios hold. Exit code 0 when it could
measure, whatever came out.

  --rows=1,3          only these of the five tables:
                        1  pricing rows of numbers
                        2  pricing rows of quantities
                        3  pricing one row of many
                        4  building a cost function
                        5  building it in studies of many groups
  --quick             few and short repetitions and a tenth of the rows, for a first look while developing
  --core=N            the core to run on; otherwise the last one that the process may use
  --expressions=FILE  other expressions of the same names
  --help              this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 5> kTables = {&measureNumbers, &measureQuantities, &measureOneRow,
                                            &measureBuilding, &measureGroups};

struct Options {
  std::vector<std::size_t> tables = {1, 2, 3, 4, 5};
  bool quick = false;
  bool help = false;
  std::optional<int> core;
  std::string expressions = OPTSTUDY_EXPRESSIONS_FILE;
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
    } else if (name == "--expressions") {
      options.expressions = value;
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
  const int core = runOnOneCore(options.core, arguments);
  Setting setting;
  setting.cases = ExpressionBenchmark::readExpressionCases(options.expressions);
  if (options.quick) {
    setting.effort = {3, 0.001};
    setting.rows = {100, 1'000, 10'000};
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, medians of processor time\n";
  if (options.quick) {
    std::cout << "A QUICK RUN: too few repetitions and rows to judge by\n";
  }
  BarList bars;
  for (const std::size_t table : options.tables) {
    kTables.at(table - 1)(setting, bars);
  }
  std::cout << "\nAll bars and goals\n";
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
