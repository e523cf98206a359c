#include "benchmarks/common/Core.h"
#include "benchmarks/common/Measurement.h"
#include "benchmarks/common/Program.h"
#include "benchmarks/pricing/Benchmarks.h"

#include <array>
#include <iostream>
#include <string>
#include <string_view>

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

void measure(const Choice &choice, const std::string &expressions, char **arguments) {
  const int core = runOnOneCore(choice.core, arguments);
  Setting setting;
  setting.cases = ExpressionBenchmark::readExpressionCases(expressions);
  if (choice.quick) {
    setting.effort = {3, 0.001};
    setting.rows = {100, 1'000, 10'000};
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, medians of processor time\n";
  if (choice.quick) {
    std::cout << "A QUICK RUN: too few repetitions and rows to judge by\n";
  }
  keepMemory();
  measureTables(kTables, choice, setting, "All bars and goals");
}

} // namespace

int main(int count, char **arguments) {
  std::string expressions = OPTSTUDY_EXPRESSIONS_FILE;
  const OwnOptions own = {{"--expressions", [&](std::string_view value) {
                             expressions = value;
                           }}};
  return runProgram(count, arguments, kHelp, kTables.size(), own,
                    [&](const Choice &choice) { measure(choice, expressions, arguments); });
}
