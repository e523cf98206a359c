#include "Workbench/LookCommands.h"

#include "ExpressionBuilder/Expression.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExitCode.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/ProjectSession.h"
#include "Workbench/src/JsonText.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/ProjectArgument.h"

#include <filesystem>
#include <ostream>

namespace Workbench {

namespace {

using EmbeddedHost::OpenMode;
using EntityModel::ModelVersion;
using MathematicalUtilities::OptimisationStrategy;

const char *targetWord(OptimisationStrategy target) {
  switch (target) {
  case OptimisationStrategy::Minimise:
    return "minimise";
  case OptimisationStrategy::Maximise:
    return "maximise";
  default:
    return "none";
  }
}

void printTable(const MatrixTable &table, OutputFormat format, Differences differences,
                const Console &console) {
  switch (format) {
  case OutputFormat::Csv:
    console.out << table.toCsv();
    return;
  case OutputFormat::Json:
    console.out << table.toJson();
    return;
  case OutputFormat::Table:
    console.out << table.toText(differences) << "\n";
    return;
  }
}

int printMatrix(const ProjectSession &session, const ShowOptions &options, const Console &console) {
  MatrixTable table = MatrixTable::of(session);
  const std::string best = bestLine(table);
  const std::string counts = RowCounts::of(table).toText();
  const std::string problem = options.selection.apply(table);
  if (!problem.empty()) {
    console.error(problem);
    return ExitCode::kUsage;
  }
  printTable(table, options.format, options.differences, console);
  if (options.format == OutputFormat::Table) {
    console.out << best << (best.empty() ? "" : "\n") << counts << "\n";
  }
  return ExitCode::kDone;
}

// Why the cost cannot be built; "" when it can, or there is none.
std::string problemOfCost(const ProjectSession &session) {
  const std::string cost = session.data().getCostFunction();
  const OptimizationTool::CostFunctionBuilder builder(session.data());
  return cost.find_first_not_of(" \t") == std::string::npos || builder.create(cost) != nullptr
             ? ""
             : builder.getLastBuildError();
}

std::string whyNoBest(const ProjectSession &session, const MatrixTable &table) {
  if (session.data().getOptimisationTarget() == OptimisationStrategy::None) {
    return "The study has no target: \"optstudy target PROJECT minimise\" sets one.";
  }
  if (!table.hasCost) {
    return "The study has no cost: \"optstudy cost PROJECT TEXT\" sets one.";
  }
  if (const std::string problem = problemOfCost(session); !problem.empty()) {
    return "No row has a cost, because it cannot be built: " + problem +
           "; \"optstudy cost PROJECT TEXT\" sets another one.";
  }
  return RowCounts::of(table).ok == 0
             ? "No row has a cost: \"optstudy status\" says why rows are not solved."
             : "No row has a cost that is a number: \"optstudy show\" shows what they have.";
}

int printBest(const ProjectSession &session, OutputFormat format, const Console &console) {
  MatrixTable table = MatrixTable::of(session);
  const MatrixTable::Row *best = table.bestNumber ? table.find(*table.bestNumber) : nullptr;
  if (best == nullptr) {
    console.error(whyNoBest(session, table));
    return ExitCode::kNoRowSolved;
  }
  const std::string line = bestLine(table);
  std::vector<MatrixTable::Row> shown;
  if (best->number != 0) {
    shown.push_back(table.baseline);
  }
  shown.push_back(*best);
  table.rows = std::move(shown);
  printTable(table, format, Differences::Percent, console);
  if (format == OutputFormat::Table) {
    console.out << line << "\n";
  }
  return ExitCode::kDone;
}

Json statusNode(const ProjectSession &session, const RowCounts &counts, const std::string &cost) {
  Json reasons = Json::object();
  for (const auto &[reason, count] : counts.reasons) {
    reasons[reason] = count;
  }
  return {{"version", kJsonVersion},
          {"project", session.fileName()},
          {"title", session.title()},
          {"rows", counts.rows},
          {"ok", counts.ok},
          {"failed", counts.failed},
          {"infeasible", counts.infeasible},
          {"notSolved", counts.open},
          {"failures", reasons},
          {"cost", cost},
          {"target", targetWord(session.data().getOptimisationTarget())}};
}

int printStatus(const ProjectSession &session, OutputFormat format, const Console &console) {
  const MatrixTable table = MatrixTable::of(session);
  const RowCounts counts = RowCounts::of(table);
  const std::string cost = session.data().getCostFunction();
  if (format == OutputFormat::Json) {
    console.out << jsonText(statusNode(session, counts, cost));
    return ExitCode::kDone;
  }
  console.out << session.fileName() << (session.title().empty() ? "" : ": " + session.title()) << "\n"
              << counts.toText() << "\n";
  for (const auto &[reason, count] : counts.reasons) {
    console.out << "  " << count << " failed: " << reason << "\n";
  }
  const std::string problem = problemOfCost(session);
  console.out << "cost:   " << (cost.empty() ? "none" : cost) << "\n"
              << (problem.empty() ? "" : "        which cannot be built: " + problem + "\n")
              << "target: " << targetWord(session.data().getOptimisationTarget()) << "\n";
  const std::string best = bestLine(table);
  console.out << best << (best.empty() ? "" : "\n");
  return ExitCode::kDone;
}

std::string roleOf(const ModelVersion &version) {
  switch (version.getVersionType()) {
  case ModelVersion::VersionType::Alternate:
    return " (a row's)";
  case ModelVersion::VersionType::Copy:
    return " (what rows are alternates of)";
  case ModelVersion::VersionType::StudyBaseline:
    return " (the baseline)";
  case ModelVersion::VersionType::Ordinary:
    break;
  }
  return "";
}

// Not by recursion: a history may be long.
void printTree(const ModelVersion *root, const ModelVersion *current, std::ostream &out) {
  struct Place {
    const ModelVersion *version;
    std::size_t depth;
  };
  std::vector<Place> stack{{root, 0}};
  while (!stack.empty()) {
    const Place place = stack.back();
    stack.pop_back();
    out << std::string(place.depth * 2, ' ') << inOneLine(place.version->getLabel()) << roleOf(*place.version)
        << (place.version == current ? " <- current" : "") << "\n";
    for (auto next = place.version->endNext(); next != place.version->beginNext();) {
      --next;
      stack.push_back({*next, place.depth + 1});
    }
  }
}

int printLog(const ProjectSession &session, std::size_t row, const Console &console) {
  const ModelVersion *version = session.rowVersion(row);
  const EmbeddedHost::RunRecord record =
      version == nullptr ? EmbeddedHost::RunRecord() : session.project().runRecord(*version);
  console.out << "row " << row << ", " << inOneLine(session.rowName(row)) << ": "
              << inOneLine(statusText(session.rowState(row))) << "\n";
  if (record.status == EmbeddedHost::RunStatus::None) {
    return ExitCode::kDone;
  }
  console.out << "command:   " << inOneLine(joinedWords(record.command)) << "\n"
              << "duration:  " << shortNumber(record.durationSeconds) << " s\n";
  if (record.exitCode) {
    console.out << "exit code: " << *record.exitCode << "\n";
  }
  if (!record.solverVersion.empty()) {
    console.out << "solver:    " << record.solverVersion << "\n";
  }
  console.out << record.logTail;
  if (!record.logTail.empty() && record.logTail.back() != '\n') {
    console.out << "\n";
  }
  return ExitCode::kDone;
}

int printFolder(const ProjectSession &session, std::size_t row, const Console &console) {
  ModelVersion *version = session.rowVersion(row);
  const std::string folder = version == nullptr ? "" : session.project().versionFolder(*version, false);
  std::error_code ignored;
  if (folder.empty() || !std::filesystem::is_directory(folder + "/run", ignored)) {
    console.error("The row \"" + session.rowName(row) +
                  "\" has no files: it was not run, or they were not kept.");
    return ExitCode::kInvalid;
  }
  console.out << folder << "/run\n";
  return ExitCode::kDone;
}

int withRow(const std::string &project, const std::string &row, const Console &console,
            int (*action)(const ProjectSession &, std::size_t, const Console &)) {
  return withStudy(project, OpenMode::ReadOnly, console, [&](ProjectSession &session) {
    const std::optional<std::size_t> found = rowNamed(session, row, console);
    return found ? action(session, *found, console) : ExitCode::kUsage;
  });
}

} // namespace

int showCommand(const ShowOptions &options, const Console &console) {
  return withStudy(options.project, OpenMode::ReadOnly, console,
                   [&](ProjectSession &session) { return printMatrix(session, options, console); });
}

int bestCommand(const std::string &project, OutputFormat format, const Console &console) {
  return withStudy(project, OpenMode::ReadOnly, console,
                   [&](ProjectSession &session) { return printBest(session, format, console); });
}

int statusCommand(const std::string &project, OutputFormat format, const Console &console) {
  if (format == OutputFormat::Csv) {
    console.error(
        "The status is no table: \"--format json\" is for programs, \"optstudy export\" writes CSV.");
    return ExitCode::kUsage;
  }
  return withStudy(project, OpenMode::ReadOnly, console,
                   [&](ProjectSession &session) { return printStatus(session, format, console); });
}

int versionsCommand(const std::string &project, const Console &console) {
  return withProject(project, OpenMode::ReadOnly, console, [&](ProjectSession &session) {
    printTree(session.project().rootVersion(), session.baseline(), console.out);
    return ExitCode::kDone;
  });
}

int logCommand(const std::string &project, const std::string &row, const Console &console) {
  return withRow(project, row, console, printLog);
}

int folderCommand(const std::string &project, const std::string &row, const Console &console) {
  return withRow(project, row, console, printFolder);
}

} // namespace Workbench
