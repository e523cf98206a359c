#include "EmbeddedHost/RunRecord.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/ProgressPrinter.h"
#include "Workbench/RunStudy.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/RunResults.h"
#include "Workbench/src/SolverSetup.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace Workbench {

namespace {

// What a reason begins with is written with blanks in records and may be typed with hyphens.
std::string asRecorded(std::string typed) {
  std::replace(typed.begin(), typed.end(), '-', ' ');
  return typed;
}

bool isWanted(const RowState &state, const SolveRowsOptions &options) {
  if (state.status == RowStatus::Infeasible) {
    return false;
  }
  if (options.onlyExtracts) {
    return true;
  }
  if (options.onlyFailed || options.onlyStale) {
    return (options.onlyFailed && state.status == RowStatus::Failed &&
            (options.reason.empty() || reasonClass(state.reason) == asRecorded(options.reason))) ||
           (options.onlyStale && state.status == RowStatus::Stale);
  }
  return state.status != RowStatus::Ok;
}

// Whether rows may fail for it, as their statuses begin.
bool isKnownReason(const std::string &typed) {
  static const std::set<std::string> kOthers{"start",     "formula",      "lost",
                                             "cancelled", "not recorded", "output"};
  const std::string reason = asRecorded(typed);
  return failureReason(reason + ": ").has_value() || kOthers.count(reason) != 0;
}

// \return false when a row that is named is not there, or infeasible, or there is no such reason
bool chooseRows(const ProjectSession &session, const SolveRowsOptions &options, const Console &console,
                std::vector<std::size_t> &rows) {
  for (const std::string &name : options.rows) {
    const std::optional<std::size_t> row = rowNamed(session, name, console);
    if (!row) {
      return false;
    }
    if (session.rowState(*row).status == RowStatus::Infeasible) {
      console.error("The row \"" + session.rowName(*row) + "\" is " + statusText(session.rowState(*row)));
      return false;
    }
    rows.push_back(*row);
  }
  if (!options.reason.empty() && !isKnownReason(options.reason)) {
    console.error("There is no reason \"" + options.reason +
                  "\" that rows fail for; \"optstudy status\" counts those of this project.");
    return false;
  }
  for (std::size_t row = 0; options.rows.empty() && row < session.rowCount(); ++row) {
    if (isWanted(session.rowState(row), options)) {
      rows.push_back(row);
    }
  }
  return true;
}

int solveIn(ProjectSession &session, const SolverSetup &setup, const SolveRowsOptions &options,
            const Console &console) {
  const std::string difference = compareModel(setup.study, session.project());
  if (!difference.empty()) {
    console.error("The project " + session.fileName() + " was made for another model than " +
                  setup.study.path + " declares: " + difference + ".");
    return ExitCode::kInvalid;
  }
  const HostUnits units;
  SolveRunner runner(session, setup.study, setup.inputs, units, setup.programs);
  runner.assess();
  session.clearUnreliableCosts();
  SolveOptions solving;
  solving.parallel = options.parallel;
  solving.onlyExtracts = options.onlyExtracts;
  if (!chooseRows(session, options, console, solving.rows)) {
    return ExitCode::kUsage;
  }
  SolveReport report;
  if (!solving.rows.empty()) {
    ProgressPrinter progress(console);
    report = runner.solve(solving, progress);
  } else {
    report.problem = runner.renewRecords();
  }
  const std::string pricing = session.updateAndPrice();
  const std::string saving = session.save();
  for (const std::string &problem : {pricing, report.problem, saving}) {
    if (!problem.empty()) {
      console.error(problem);
    }
  }
  printWarnings(report.warnings, console);
  if (!report.givenUp.empty()) {
    console.error("Stopped: " + report.givenUp);
  }
  if (report.withoutFiles > 0) {
    console.error(numbered(report.withoutFiles, "row has", "rows have") +
                  " no kept files of a run with the present inputs, and nothing was read there: \"optstudy "
                  "solve\" runs "
                  "what has to be run.");
  }
  console.out << RowCounts::of(MatrixTable::of(session)).toText() << "; now solved " << report.solved
              << ", failed " << report.failed << "\n";
  if (!report.problem.empty() || !saving.empty()) {
    return ExitCode::kInternalError;
  }
  if (report.isInterrupted) {
    return ExitCode::kInterrupted;
  }
  if (!pricing.empty()) {
    return ExitCode::kInvalid;
  }
  const std::size_t failed = report.failed + report.withoutFiles;
  return failed == 0          ? ExitCode::kDone
         : report.solved == 0 ? ExitCode::kNoRowSolved
                              : ExitCode::kSomeRowsFailed;
}

} // namespace

int solveCommand(const SolveRowsOptions &options, const Console &console) {
  const std::string project = projectNamed(options.project);
  const std::string studyFile =
      project == options.project ? ProjectSession::studyFileOf(project) : options.project;
  if (studyFile.empty()) {
    console.error(
        "There is no study file beside " + project +
        ", which says how rows are solved; it would be called as the project is, with .study.yaml.");
    return ExitCode::kInvalid;
  }
  const std::unique_ptr<SolverSetup> setup =
      SolverSetup::load(studyFile, options.searchPath, SolverSetup::Versions::Asked, console);
  if (!setup) {
    return ExitCode::kInvalid;
  }
  printWarnings(setup->doubts, console);
  return withStudy(project, EmbeddedHost::OpenMode::ReadWrite, console,
                   [&](ProjectSession &session) { return solveIn(session, *setup, options, console); });
}

} // namespace Workbench
