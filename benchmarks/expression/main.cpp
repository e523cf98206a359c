#include "benchmarks/common/CommandLine.h"
#include "benchmarks/common/Core.h"
#include "benchmarks/common/Program.h"
#include "benchmarks/expression/Benchmarks.h"
#include "benchmarks/expression/NativeExpressions.h"

#include <array>
#include <iostream>
#include <muParser.h>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

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

void measure(const Benchmarking::Choice &choice, const std::string &expressions, char **arguments) {
  const int core = Benchmarking::runOnOneCore(choice.core, arguments);
  Setting setting;
  setting.cases = readExpressionCases(expressions);
  setting.program = Benchmarking::programPath();
  if (choice.quick) {
    setting.effort = {3, 0.001};
  }
  std::cout << "Pinned to core " << core << "; " << setting.effort.repetitions
            << " interleaved repetitions, medians of processor time, geometric means over "
            << setting.cases.size() << " expressions\nnative: " << nativeBuild() << "\nmuparser "
            << mu::Parser().GetVersion() << '\n';
  if (setting.effort.repetitions < Effort::kFewestRepetitions) {
    std::cout << "A QUICK RUN: too few repetitions to judge by\n";
  }
  Benchmarking::measureTables(kTables, choice, setting, "All bars and goals");
}

} // namespace

int main(int count, char **arguments) {
  std::string expressions = OPTSTUDY_EXPRESSIONS_FILE;
  std::optional<std::size_t> lengthOf;
  const Benchmarking::OwnOptions own = {{"--expressions",
                                         [&](std::string_view value) {
                                           expressions = value;
                                         }},
                                        {"--length-of", [&](std::string_view value) {
                                           lengthOf = Benchmarking::wholeNumber<std::size_t>(value);
                                         }}};
  return Benchmarking::runProgram(count, arguments, kHelp, kTables.size(), own,
                                  [&](const Benchmarking::Choice &choice) {
                                    try {
                                      if (lengthOf) {
                                        runLengthChild(*lengthOf);
                                      } else {
                                        measure(choice, expressions, arguments);
                                      }
                                    } catch (const mu::ParserError &error) { // no std::exception
                                      throw std::runtime_error("muparser: " + error.GetMsg());
                                    }
                                  });
}
