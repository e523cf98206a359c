#include "apps/optstudy/CommandLine.h"

#include "Workbench/ExitCode.h"
#include "apps/optstudy/Commands.h"
#include "apps/optstudy/Interruptions.h"
#include "apps/optstudy/LogFile.h"
#include "apps/optstudy/Terminal.h"

#include <iostream>
#include <unistd.h>

using Workbench::OutputFormat;
using Workbench::ExitCode::kUsage;

namespace {

// The answer of a person at the terminal; nobody who is not there agrees to anything.
bool confirmed(const std::string &question) {
  if (::isatty(STDIN_FILENO) != 1) {
    return false;
  }
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "yes";
}

// What every command understands.
struct CommonValues {
  bool isQuiet = false;
  bool isVerbose = false;
  std::string logFile;
  bool saysYes = false;
};

void addCommonOptions(const Command &program, CommonValues &values) {
  program.flag("-q,--quiet", values.isQuiet, "Say nothing but results and errors");
  program.flag("-v,--verbose", values.isVerbose, "Say more");
  program.option("--log-file", values.logFile, "Append messages to this file too");
  program.flag("-y,--yes", values.saysYes, "Answer every question with yes");
  program.endHelpWith(std::string("\nExample:\n  optstudy init demo\n  optstudy run demo/beam.study.yaml\n\n"
                                  "\"optstudy COMMAND --help\" tells more about a command.\n") +
                      kExitCodesHelp);
}

void addCommands(const Command &program, CommandValues &values) {
  addSolvingCommands(program, values);
  addLookingCommands(program, values);
  addStudyCommands(program, values);
  addGroupCommands(program, values);
  addRowCommands(program, values);
  addExchangeCommands(program, values);
  addLanguageCommands(program, values);
}

} // namespace

const char *const kExitCodesHelp = R"(
Exit codes: 0 all is well; 1 internal error; 2 wrong usage; 3 the study file, the project or the solver cannot be used;
4 some rows failed; 5 no row is solved; 6 the project is held by another process or may only be read;
130 and 143 interrupted, to be gone on with by the same command.
)";

void addProject(const Command &command, CommandValues &values) {
  command.option("PROJECT", values.project, "The project (x.optstudy), or the study file that it belongs to")
      .required();
}

void addRow(const Command &command, CommandValues &values) {
  addProject(command, values);
  command.option("ROW", values.row, "The row's name or number").required();
}

void addFormat(const Command &command, CommandValues &values) {
  command.choice<OutputFormat, OutputFormat>(
      "--format", values.format,
      {{"table", OutputFormat::Table}, {"csv", OutputFormat::Csv}, {"json", OutputFormat::Json}},
      "table, csv or json");
}

int runCommandLine(int argc, char **argv) {
  CommandProgram program("optstudy", "Studies variants of a simulation model: solves, prices and ranks them.",
                         OPTSTUDY_VERSION);
  CommonValues common;
  CommandValues values;
  addCommonOptions(program.root(), common);
  addCommands(program.root(), values);
  if (const std::optional<int> ended = program.parse(std::vector<std::string>(argv + 1, argv + argc))) {
    return *ended;
  }
  LogFile log(std::cerr);
  if (!common.logFile.empty() && !log.open(common.logFile)) {
    std::cerr << common.logFile << ": the log file cannot be written\n";
    return kUsage;
  }
  outliveReaders();
  const Workbench::Console console{
      std::cout,
      std::cerr,
      ::isatty(STDERR_FILENO) == 1 && common.logFile.empty(),
      common.isQuiet,
      common.isVerbose,
      interruptions,
      [&common](const std::string &question) { return common.saysYes || confirmed(question); },
      terminalWidth};
  return exitCodeAfterPrinting(exitCodeAfterInterruptions(program.carryOut(console)));
}
