#include "apps/optstudy/Commands.h"
#include "apps/optstudy/Interruptions.h"

#include <cstdlib>

using Workbench::AllowedFailures;
using Workbench::Console;

namespace {

std::string searchPath() {
  const char *const path = std::getenv("PATH");
  return path == nullptr ? "" : path;
}

void addJobs(const Command &command, CommandValues &values) {
  command.option("-j,--jobs", values.jobs, "Rows that are solved at a time").withDefault().between(1, 1024);
}

void addInit(const Command &program, CommandValues &values) {
  const Command init = program.command(
      "init", "Write a study file and its solver input, which run as they are", "init demo --example filter",
      [&values](const Console &console) { return initCommand(values.folder, values.name, console); });
  init.option("DIR", values.folder, "Where to; made when it is missing. No file is ever overwritten")
      .required();
  std::string names;
  for (const std::string &name : Workbench::exampleNames()) {
    names.append(names.empty() ? "" : ", ").append(name);
  }
  init.option("--example", values.name,
              "One of " + names + "; " + Workbench::kDefaultExample + " when left out");
}

void addCheck(const Command &program, CommandValues &values) {
  const Command check =
      program.command("check", "Check a study file, and run the baseline once",
                      "check examples/filter/filter.study.yaml", [&values](const Console &console) {
                        countInterruptions();
                        values.check.searchPath = searchPath();
                        return checkCommand(values.check, console);
                      });
  check.option("STUDY", values.check.studyFile, "The study file").required();
  check.flag("!--no-run", values.check.runs, "Start nothing");
}

void addRun(const Command &program, CommandValues &values) {
  const Command run =
      program.command("run", "Solve a study's rows, price them, and print the matrix",
                      "run examples/filter/filter.study.yaml -j 4", [&values](const Console &console) {
                        countInterruptions();
                        values.run.searchPath = searchPath();
                        values.run.parallel = values.jobs;
                        values.run.allowedFailures =
                            AllowedFailures::parse(values.allowedFailures).value_or(AllowedFailures());
                        return runStudy(values.run, console);
                      });
  run.option("STUDY", values.run.studyFile, "The study file").required();
  addJobs(run, values);
  run.flag("--keep-going", values.run.keepsGoing, "Go on when the baseline fails");
  run.flag("--dry-run", values.run.isTrial, "Only say what would be run, and why");
  run.flag("--fresh", values.run.isFresh, "Solve every row again; asks first");
  run.flag("--prune", values.run.prunes, "Remove rows that the study file does not have; asks first");
  run.option("--allow-failures", values.allowedFailures,
             "So many rows, or per cent of them, may fail: 3 or 10%")
      .checkedBy([](const std::string &text) {
        return AllowedFailures::parse(text) ? "" : "write a number of rows or per cent, such as 3 or 10%";
      });
  run.endHelpWith(
      std::string("\nExample:\n  optstudy run examples/filter/filter.study.yaml -j 4\n\n"
                  "The project is kept beside the study file: x.study.yaml gives x.optstudy. Running the "
                  "same command again solves only\nwhat is not solved yet. Ctrl-C once finishes the rows "
                  "that run, twice ends them; both can be resumed.\n") +
      kExitCodesHelp);
}

int solveRows(CommandValues &values, bool onlyExtracts, const Console &console) {
  countInterruptions();
  values.solve.project = values.project;
  values.solve.rows = values.words;
  values.solve.onlyExtracts = onlyExtracts;
  values.solve.parallel = values.jobs;
  values.solve.searchPath = searchPath();
  return solveCommand(values.solve, console);
}

void addSolve(const Command &program, CommandValues &values) {
  const Command solve = program.command(
      "solve", "Solve rows of a project as it is", "solve filter.optstudy --failed=time-limit",
      [&values](const Console &console) { return solveRows(values, false, console); });
  addProject(solve, values);
  solve.option("ROW", values.words, "Names or numbers; all that need it when left out");
  addJobs(solve, values);
  solve.optionalValue("--failed", values.solve.onlyFailed, values.solve.reason,
                      "Those that failed, for this reason only when one is given");
  solve.flag("--stale", values.solve.onlyStale, "Those that are stale");
}

void addExtract(const Command &program, CommandValues &values) {
  const Command extract =
      program.command("extract", "Read results again from the files that are kept, without running",
                      "extract filter.optstudy",
                      [&values](const Console &console) { return solveRows(values, true, console); });
  addProject(extract, values);
  extract.option("ROW", values.words, "Names or numbers; all when left out");
}

} // namespace

void addSolvingCommands(const Command &program, CommandValues &values) {
  addInit(program, values);
  addCheck(program, values);
  addRun(program, values);
  addSolve(program, values);
  addExtract(program, values);
}
