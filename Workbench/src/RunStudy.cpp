#include "Workbench/RunStudy.h"

#include "EmbeddedHost/SolverNumber.h"
#include "EmbeddedHost/SolverProcess.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/ProgressPrinter.h"
#include "Workbench/RunInputs.h"
#include "Workbench/SolveRunner.h"
#include "Workbench/StudyFile.h"
#include "Workbench/StudySession.h"
#include "Workbench/UnitSystem.h"

#include <filesystem>
#include <ostream>

namespace Workbench {

namespace {

void print(const std::vector<FileProblem> &problems, std::ostream &messages) {
  for (const FileProblem &problem : problems) {
    messages << problem.toText() << "\n";
  }
}

void printNotes(const std::vector<std::string> &notes, std::ostream &messages) {
  for (const std::string &note : notes) {
    messages << "note: " << note << "\n";
  }
}

std::string numbered(std::size_t count, const char *one, const char *several) {
  return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string missingSolver(const StudyFile &study) {
  const StudySolver &solver = study.solver;
  return study.path + ":" + std::to_string(solver.commandPlace.line) + ":" +
         std::to_string(solver.commandPlace.column) + ": " + solver.command.front() +
         " is not installed or not on the PATH" +
         (solver.installHint.empty() ? "" : "; " + solver.installHint);
}

std::string costText(double cost) {
  std::string problem;
  const auto format = EmbeddedHost::SolverNumberFormat::parse("%.6g", problem);
  return format->write(cost).value_or(EmbeddedHost::writeSolverNumber(cost));
}

std::string bestText(const MatrixTable &table) {
  const MatrixTable::Row &best = table.rows[*table.best];
  const MatrixTable::Row &baseline = table.rows.front();
  std::string text =
      "* Best: row " + std::to_string(best.number) + ", " + best.name + ", cost " + costText(*best.cost);
  if (*table.best != 0 && baseline.cost) {
    text += " (the baseline: " + costText(*baseline.cost) + ")";
  }
  return text + "\n";
}

struct Counts {
  std::size_t ok = 0;
  std::size_t failed = 0;
  std::size_t open = 0;
};

Counts countsOf(const StudySession &session) {
  Counts counts;
  for (std::size_t row = 0; row < session.rowCount(); ++row) {
    const RowStatus status = session.rowState(row).status;
    ++(status == RowStatus::Ok ? counts.ok : status == RowStatus::Failed ? counts.failed : counts.open);
  }
  return counts;
}

void printMatrix(const StudySession &session, const Counts &counts, std::ostream &out) {
  const MatrixTable table = MatrixTable::of(session);
  out << table.toText() << "\n";
  if (table.best) {
    out << bestText(table);
  }
  out << numbered(session.rowCount(), "row", "rows") << ": " << std::to_string(counts.ok) << " ok";
  if (counts.failed > 0) {
    out << ", " << std::to_string(counts.failed) << " failed";
  }
  if (counts.open > 0) {
    out << ", " << std::to_string(counts.open) << " not solved";
  }
  out << ". Kept in " << session.fileName() << "\n";
}

void printWhatNext(const StudySession &session, const Counts &counts, std::ostream &out) {
  if (counts.failed > 0 || counts.open > 0) {
    out << "Next: mend what failed and run the same command again; solved rows are kept.\n";
  } else {
    out << "Next: change the variants or the cost in " << session.study().path
        << " and run the same command again; only what is new is solved.\n";
  }
}

int exitCodeOf(const Counts &counts, const SolveReport &report) {
  if (!report.problem.empty()) {
    return ExitCode::kInternalError;
  }
  if (report.isInterrupted) {
    return ExitCode::kInterrupted;
  }
  if (counts.ok == 0) {
    return ExitCode::kNoRowSolved;
  }
  return counts.failed > 0 ? ExitCode::kSomeRowsFailed : ExitCode::kDone;
}

int solveAndPrint(StudySession &session, const RunInputs &inputs, const std::string &program,
                  const RunOptions &options, std::ostream &out, std::ostream &messages) {
  const HostUnits units;
  SolveRunner runner(session, inputs, units, program);
  runner.assess();
  session.clearUnreliableCosts();
  ProgressPrinter progress(messages, options.isTerminal, options.interruptions);
  SolveReport report = runner.solve(options.parallel, progress);
  if (report.solved + report.failed == 0 && report.problem.empty() && !report.isInterrupted) {
    messages << "Nothing to solve: " << numbered(report.alreadySolved, "row is", "rows are")
             << " solved already.\n";
  }
  const std::string pricing = session.updateAndPrice();
  if (!pricing.empty()) {
    messages << pricing << "\n";
  }
  const std::string saving = session.save();
  const Counts counts = countsOf(session);
  printMatrix(session, counts, out);
  if (!report.problem.empty() || !saving.empty()) {
    messages << (report.problem.empty() ? saving : report.problem) << "\n";
    return ExitCode::kInternalError;
  }
  if (report.isInterrupted) {
    messages << "Interrupted: run the same command again to go on; solved rows are kept.\n";
  } else {
    printWhatNext(session, counts, out);
  }
  return pricing.empty() ? exitCodeOf(counts, report) : ExitCode::kInvalid;
}

} // namespace

int runStudy(const RunOptions &options, std::ostream &out, std::ostream &messages) {
  const HostUnits units;
  std::vector<FileProblem> problems;
  const std::optional<StudyFile> study = StudyFile::read(options.studyFile, units, problems);
  if (!study) {
    print(problems, messages);
    return ExitCode::kInvalid;
  }
  std::vector<std::string> notes = study->notes;
  const std::optional<RunInputs> inputs = RunInputs::load(*study, units, notes, problems);
  if (!inputs) {
    print(problems, messages);
    return ExitCode::kInvalid;
  }
  std::error_code error;
  const std::string folder = std::filesystem::absolute(study->folder, error).string();
  const std::optional<std::string> program =
      EmbeddedHost::findProgram(study->solver.command.front(), folder, options.searchPath);
  if (!program) {
    messages << missingSolver(*study) << "\n";
    return ExitCode::kInvalid;
  }
  printNotes(notes, messages);
  const std::string projectFile = StudySession::projectFileOf(options.studyFile);
  std::string problem;
  const std::unique_ptr<StudySession> session = StudySession::open(*study, projectFile, problem);
  if (!session) {
    messages << problem << "\n";
    return ExitCode::kInvalid;
  }
  messages << (session->isNew() ? "Created " : "Opened ") << projectFile << " with "
           << numbered(session->rowCount(), "row", "rows") << "\n";
  printNotes(session->changes(), messages);
  return solveAndPrint(*session, *inputs, *program, options, out, messages);
}

} // namespace Workbench
