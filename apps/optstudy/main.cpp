#include "Workbench/RunStudy.h"
#include "apps/optstudy/Interruptions.h"

#include <CLI/CLI.hpp>

#include <cstdlib>
#include <exception>
#include <iostream>
#include <unistd.h>

namespace {

using namespace Workbench;

constexpr const char *kRunExamples = R"(
Examples:
  optstudy run examples/filter/filter.study.yaml
  optstudy run bracket.study.yaml -j 4

The project is kept beside the study file: x.study.yaml gives x.optstudy. Running the same command again solves only
what is not solved yet. Ctrl-C once finishes the rows that run, twice ends them; both can be resumed.

Exit codes: 0 all rows are solved; 2 wrong usage; 3 the study file, the project or the solver cannot be used;
4 some rows failed; 5 no row is solved; 130 interrupted; 1 internal error.
)";

int run(int argc, char **argv) {
  CLI::App app("Studies variants of a simulation model: solves, prices and ranks them.", "optstudy");
  app.set_version_flag("--version", "optstudy " OPTSTUDY_VERSION);
  app.require_subcommand(1);
  app.footer("\nExample:\n  optstudy run examples/filter/filter.study.yaml\n\n"
             "\"optstudy run --help\" tells more.");

  RunOptions options;
  CLI::App *runCommand = app.add_subcommand("run", "Solve a study's rows, price them, and print the matrix");
  runCommand->add_option("STUDY", options.studyFile, "The study file (YAML)")->required();
  runCommand->add_option("-j,--jobs", options.parallel, "Rows that are solved at a time")
      ->capture_default_str()
      ->check(CLI::Range(std::size_t{1}, std::size_t{1024}));
  runCommand->footer(kRunExamples);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError &error) {
    return app.exit(error) == 0 ? ExitCode::kDone : ExitCode::kUsage;
  }

  const char *const searchPath = std::getenv("PATH");
  options.searchPath = searchPath == nullptr ? "" : searchPath;
  options.isTerminal = ::isatty(STDERR_FILENO) == 1;
  options.interruptions = interruptions;
  countInterruptions();
  return runStudy(options, std::cout, std::cerr);
}

} // namespace

int main(int argc, char **argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception &error) {
    std::cerr << "optstudy: " << error.what() << "\n";
  } catch (...) {
    std::cerr << "optstudy: unknown error\n";
  }
  return ExitCode::kInternalError;
}
