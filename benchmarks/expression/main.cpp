#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"

#include <array>
#include <exception>
#include <filesystem>
#include <iostream>
#include <muParser.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ExpressionBenchmark;

constexpr const char *kHelp = R"(usage: expression_benchmark [OPTIONS]

Compares the expression language with muparser and with the same formulas compiled as C++, and prints which of the
required ratios hold. Exit code 0 when it could measure, whatever came out.

  --rows=1,3          only these of the five tables:
                        1  evaluate() with variables set through handles
                        2  evaluate() with variables replaced by name
                        3  a whole matrix given as columns
                        4  from the text to the first value
                        5  sums of up to a million terms
  --quick             few and short repetitions, for a first look while developing
  --core=N            the core to run on; otherwise the last one that the process may use
  --expressions=FILE  other expressions of the same names
  --help              this text
)";

using Measure = void (*)(const Setting &, BarList &);
constexpr std::array<Measure, 5> kTables = {&measureEvaluation, &measureReplacement, &measureMatrix,
                                            &measureText, &measureLength};

struct Options {
  std::vector<std::size_t> tables = {1, 2, 3, 4, 5};
  bool quick = false;
  bool help = false;
  std::optional<int> core;
  std::string expressions = OPTSTUDY_EXPRESSIONS_FILE;
  std::optional<std::size_t> lengthOf;
};

Options readOptions(int count, char **arguments) {
  Options options;
  for (int at = 1; at < count; ++at) {
    const std::string_view argument = arguments[at];
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const std::string_view value = equals == std::string_view::npos ? "" : argument.substr(equals + 1);
    if (name == "--rows") {
      options.tables = Benchmarking::tableNumbers(value, kTables.size());
    } else if (name == "--core") {
      options.core = Benchmarking::wholeNumber<int>(value);
    } else if (name == "--expressions") {
      options.expressions = value;
    } else if (name == "--length-of") {
      options.lengthOf = Benchmarking::wholeNumber<std::size_t>(value);
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
  if (options.lengthOf) {
    runLengthChild(*options.lengthOf);
    return;
  }
  const int core = Benchmarking::runOnOneCore(options.core, arguments);
  Setting setting;
  setting.cases = readExpressionCases(options.expressions);
  setting.program = std::filesystem::read_symlink("/proc/self/exe").string();
  if (options.quick) {
    setting.effort = {3, 0.001};
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, medians of processor time, geometric means over "
            << setting.cases.size() << " expressions\nnative: " << nativeBuild() << "\nmuparser "
            << mu::Parser().GetVersion() << '\n';
  if (setting.effort.repetitions < Effort::kFewestRepetitions) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
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
  } catch (const mu::ParserError &error) {
    std::cerr << "muparser: " << error.GetMsg() << '\n';
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
