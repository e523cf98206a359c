#include "Workbench/RunStudy.h"

#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/SolverNumber.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/ProgressPrinter.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/SolverSetup.h"

#include <ostream>

namespace Workbench {

namespace {

RowCounts printMatrix(const ProjectSession &session, std::ostream &out) {
  const MatrixTable table = MatrixTable::of(session);
  const std::string best = bestLine(table);
  RowCounts counts = RowCounts::of(table);
  out << table.toText() << "\n"
      << best << (best.empty() ? "" : "\n") << counts.toText() << ". Kept in " << session.fileName() << "\n";
  return counts;
}

void printWhatNext(const RowCounts &counts, const ProjectSession &session, const std::string &studyFile,
                   const Console &console) {
  if (counts.failed > 0) {
    console.note("Next: \"optstudy log " + shellWord(session.fileName()) +
                 " ROW\" shows what a row printed; mend what failed and run the same command again; "
                 "solved rows are kept.");
  } else if (counts.open > 0) {
    console.note("Next: run the same command again; solved rows are kept.");
  } else {
    console.note("Next: change the variants or the cost in " + studyFile +
                 " and run the same command again; only what is new is solved.");
  }
}

int exitCodeOf(const RowCounts &counts, const SolveReport &report, const AllowedFailures &allowed) {
  if (!report.problem.empty()) {
    return ExitCode::kInternalError;
  }
  if (report.isInterrupted) {
    return ExitCode::kInterrupted;
  }
  if (counts.ok == 0) {
    return ExitCode::kNoRowSolved;
  }
  const std::size_t unsolved = counts.failed + counts.open;
  return allowed.allows(unsolved, counts.rows - counts.infeasible) ? ExitCode::kDone
                                                                   : ExitCode::kSomeRowsFailed;
}

// Solves, prices, saves and prints.
int solveAndPrint(ProjectSession &session, const SolverSetup &setup, SolveRunner &runner,
                  const SolveOptions &options, const AllowedFailures &allowed, bool isFresh,
                  const Console &console) {
  ProgressPrinter progress(console);
  const SolveReport report = runner.solve(options, progress);
  // A row that was to be solved again, and was not, is what it was.
  const bool hasFormerResults = isFresh && report.solved + report.failed < session.rowCount();
  if (hasFormerResults) {
    runner.assess();
    session.clearUnreliableCosts();
  }
  if (report.solved + report.failed == 0 && report.problem.empty() && !report.isInterrupted) {
    console.note("Nothing to solve: " + numbered(report.alreadySolved, "row is", "rows are") +
                 " solved already.");
  }
  const std::string pricing = session.updateAndPrice();
  if (!pricing.empty()) {
    console.error(pricing);
  }
  const std::string saving = session.save();
  const RowCounts counts = printMatrix(session, console.out);
  printWarnings(report.warnings, console);
  if (!report.givenUp.empty()) {
    console.error("Stopped: " + report.givenUp);
  }
  if (!report.problem.empty() || !saving.empty()) {
    console.error(report.problem.empty() ? saving : report.problem);
    return ExitCode::kInternalError;
  }
  if (report.isInterrupted) {
    console.error(
        hasFormerResults
            ? "Interrupted: rows that were not solved again have the results that they had; with --fresh "
              "the same command begins with every row again."
        : counts.open + counts.failed > 0
            ? "Interrupted: run the same command again to go on; solved rows are kept."
            : "Interrupted when every row was solved.");
  } else {
    printWhatNext(counts, session, setup.study.path, console);
  }
  return pricing.empty() ? exitCodeOf(counts, report, allowed) : ExitCode::kInvalid;
}

std::string secondsText(double seconds) {
  return shortNumber(seconds) + " s";
}

// What would be run, and why; how long it would take, by the rows that are solved.
int printPlan(const ProjectSession &session, const RunOptions &options, const Console &console) {
  std::size_t toRun = 0;
  std::size_t toRead = 0;
  double known = 0.0;
  std::size_t solved = 0;
  const EmbeddedHost::Project::RunRecords records = session.project().runRecords();
  for (std::size_t row = 0; row < session.rowCount(); ++row) {
    const RowState &state = session.rowState(row);
    if (const auto found = records.find(session.rowVersion(row));
        found != records.end() && found->second.status == EmbeddedHost::RunStatus::Ok) {
      known += found->second.durationSeconds;
      ++solved;
    }
    if (state.status != RowStatus::Ok && state.status != RowStatus::Infeasible) {
      const bool saysWhy = state.status == RowStatus::Stale && !state.reason.empty();
      console.out << "row " << row << ", " << inOneLine(session.rowName(row)) << ": "
                  << inOneLine(statusText(state)) << (saysWhy ? ": " + state.reason : "") << "\n";
      ++(state.status == RowStatus::Stale && state.reason == kReadAnew ? toRead : toRun);
    }
  }
  if (toRead > 0) {
    console.out << numbered(toRead, "row", "rows") << " of " << session.rowCount()
                << " would be read again from kept files, and run only where they are gone\n";
  }
  console.out << numbered(toRun, "row", "rows") << " of " << session.rowCount() << " would be run";
  if (solved > 0 && toRun > 0) {
    const double each = known / static_cast<double>(solved);
    const auto parallel = static_cast<double>(options.parallel);
    console.out << ", in about " << secondsText(each * static_cast<double>(toRun) / parallel);
  }
  console.out << "\n";
  return ExitCode::kDone;
}

// \return kDone when the person agrees
int confirm(const Console &console, const std::string &question, const std::string &what) {
  if (console.confirm && console.confirm(question)) {
    return ExitCode::kDone;
  }
  if (console.interruptions && console.interruptions() > 0) {
    console.error("Interrupted: nothing was changed.");
    return ExitCode::kInterrupted;
  }
  console.error(what + " asks first, and nobody has said yes; --yes says it.");
  return ExitCode::kUsage;
}

std::vector<std::size_t> rowsOutsideTheStudyFile(const ProjectSession &session) {
  std::vector<std::size_t> rows;
  for (std::size_t row = session.rowCount(); row-- > 1;) {
    if (!session.rowState(row).isInStudyFile) {
      rows.push_back(row);
    }
  }
  return rows;
}

// From the last row on, so that the numbers of the others stay what they are. \return kDone when there is no such row
// any more
int prune(ProjectSession &session, const Console &console) {
  const std::vector<std::size_t> rows = rowsOutsideTheStudyFile(session);
  if (rows.empty()) {
    return ExitCode::kDone;
  }
  const int code = confirm(console,
                           "Remove " + numbered(rows.size(), "row", "rows") +
                               " that the study file does not have, with all results?",
                           "--prune");
  if (code != ExitCode::kDone) {
    return code;
  }
  for (const std::size_t row : rows) {
    console.note("note: the row \"" + session.rowName(row) + "\" was removed");
    session.data().removeVariant(row, true);
  }
  session.refreshRows();
  return ExitCode::kDone;
}

int runSession(StudySession &session, const SolverSetup &setup, const RunOptions &options,
               const Console &console) {
  const HostUnits units;
  SolveRunner runner(session, setup.study, setup.inputs, units, setup.programs);
  if (const int code = options.prunes ? prune(session, console) : ExitCode::kDone; code != ExitCode::kDone) {
    return code;
  }
  runner.assess();
  session.clearUnreliableCosts();
  SolveOptions solving;
  solving.parallel = options.parallel;
  solving.keepsGoing = options.keepsGoing;
  if (options.isFresh) {
    for (std::size_t row = 0; row < session.rowCount(); ++row) {
      RowState state = session.rowState(row);
      if (state.status == RowStatus::Ok) {
        state.status = RowStatus::Stale;
        state.reason = "--fresh";
        session.setRowState(row, std::move(state));
      }
    }
  }
  if (options.isTrial) {
    return printPlan(session, options, console);
  }
  if (options.isFresh && !session.isNew()) {
    const int code = confirm(console, "Solve every row again, and lose the results that it has?", "--fresh");
    if (code != ExitCode::kDone) {
      return code;
    }
  }
  return solveAndPrint(session, setup, runner, solving, options.allowedFailures, options.isFresh, console);
}

} // namespace

std::optional<AllowedFailures> AllowedFailures::parse(const std::string &text) {
  AllowedFailures allowed;
  allowed.isPercent = !text.empty() && text.back() == '%';
  const std::optional<double> number =
      EmbeddedHost::readSolverNumber(allowed.isPercent ? text.substr(0, text.size() - 1) : text);
  const bool isGood = number && *number >= 0.0 && (!allowed.isPercent || *number <= 100.0);
  allowed.amount = number.value_or(0.0);
  return isGood ? std::optional<AllowedFailures>(allowed) : std::nullopt;
}

bool AllowedFailures::allows(std::size_t failed, std::size_t rows) const {
  const double most = isPercent ? amount / 100.0 * static_cast<double>(rows) : amount;
  return static_cast<double>(failed) <= most;
}

int runStudy(const RunOptions &options, const Console &console) {
  const std::unique_ptr<SolverSetup> setup =
      SolverSetup::load(options.studyFile, options.searchPath, SolverSetup::Versions::Asked, console);
  if (!setup) {
    return ExitCode::kInvalid;
  }
  printWarnings(setup->doubts, console);
  const std::string projectFile = ProjectSession::projectFileOf(options.studyFile);
  OpenFailure failure;
  const std::unique_ptr<StudySession> session = StudySession::open(
      setup->study, projectFile, options.isTrial ? Keeping::Nothing : Keeping::Changes, failure);
  if (!session) {
    console.error(failure.problem);
    return failure.isHeld ? ExitCode::kHeld : ExitCode::kInvalid;
  }
  if (!options.isTrial) {
    console.note((session->isNew() ? "Created " : "Opened ") + projectFile + " with " +
                 numbered(session->rowCount(), "row", "rows"));
  }
  printNotes(session->changes(), console);
  return runSession(*session, *setup, options, console);
}

} // namespace Workbench
