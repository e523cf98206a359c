#include "Workbench/ExchangeCommands.h"

#include "EmbeddedHost/RunFiles.h"
#include "HostModel/ModelVersion.h"
#include "OptimizationTool/OptimizationData.h"
#include "Workbench/ExitCode.h"
#include "Workbench/MatrixTable.h"
#include "Workbench/src/MatrixSummary.h"
#include "Workbench/src/ProjectArgument.h"
#include "Workbench/src/RowTable.h"
#include "Workbench/src/StudyEditing.h"

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <set>

namespace Workbench {

namespace {

using EmbeddedHost::FileProblem;
using EmbeddedHost::OpenMode;

constexpr std::size_t kLargestTable = std::size_t{256} * 1024 * 1024;

// A file that exists is replaced in one step, so that nothing is lost when the disk is full.
std::string writeWhole(const std::string &file, const std::string &text) {
  const std::string unfinished = file + ".new";
  std::error_code error;
  std::filesystem::remove(unfinished, error);
  std::string problem;
  if (!EmbeddedHost::writeNewFile(unfinished, text, problem)) {
    return problem;
  }
  std::filesystem::rename(unfinished, file, error);
  return error ? file + ": " + error.message() : "";
}

int exportMatrix(const ProjectSession &session, OutputFormat format, const std::string &file,
                 const Console &console) {
  const MatrixTable table = MatrixTable::of(session);
  // What is read back by its ending is written by it.
  const bool isJson = format == OutputFormat::Json ||
                      (format == OutputFormat::Table && std::filesystem::path(file).extension() == ".json");
  const std::string text = isJson ? table.toJson() : table.toCsv();
  if (file.empty() || file == "-") {
    console.out << text;
    return ExitCode::kDone;
  }
  std::error_code ignored;
  if (std::filesystem::equivalent(file, session.project().file(), ignored)) {
    console.error(file + " is the project itself; give another name.");
    return ExitCode::kUsage;
  }
  if (std::filesystem::exists(file, ignored) &&
      (!console.confirm || !console.confirm("Replace " + file + "?"))) {
    console.error(file + " exists already; give another name, or remove it first.");
    return ExitCode::kUsage;
  }
  const std::string problem = writeWhole(file, text);
  if (!problem.empty()) {
    console.error(problem);
    return ExitCode::kInternalError;
  }
  console.note("Wrote " + numbered(table.rows.size(), "row", "rows") + " to " + file);
  return ExitCode::kDone;
}

struct ImportCounts {
  std::size_t added = 0;
  std::size_t changed = 0;
  std::size_t known = 0;
};

// What becomes of one row: found, or to be changed or added.
struct ImportStep {
  std::optional<std::size_t> row;
  std::string name;
  std::vector<std::string> texts;
  bool isChange = false;
};

std::string planRow(const ProjectSession &session, const InputIndex &known, const TableRow &tableRow,
                    ImportStep &step) {
  std::string problem;
  step.name = tableRow.name;
  step.row = tableRow.name.empty() ? std::nullopt : session.findRow(tableRow.name);
  if (!tableRow.name.empty() && !step.row) {
    problem = rowNameProblem(session, tableRow.name);
    if (!problem.empty()) {
      return problem;
    }
  }
  const std::optional<std::vector<std::string>> texts =
      inputTexts(session, step.row.value_or(0), tableRow.values, problem);
  if (!texts) {
    return problem;
  }
  step.texts = *texts;
  if (!step.row && tableRow.name.empty()) {
    step.row = known.find(step.texts);
  }
  const bool isKnown = step.row && inputTexts(session, *step.row, {}, problem) == step.texts;
  problem = isKnown ? "" : ruleProblem(session, step.texts);
  if (!problem.empty()) {
    return problem;
  }
  step.isChange = step.row && !isKnown;
  if (step.isChange && *step.row == 0) {
    return "the baseline has other inputs; \"optstudy set PROJECT 0 INPUT=VALUE\" changes it";
  }
  return "";
}

std::string carryOut(ProjectSession &session, const ImportStep &step, ImportCounts &counts) {
  if (!step.row) {
    const std::string name = step.name.empty() ? session.freeRowName() : step.name;
    if (session.data().addVariant(step.texts, name, UINT64_MAX) == 0) {
      return "the row \"" + name + "\" could not be added";
    }
    session.rowWasAdded();
    ++counts.added;
  } else if (step.isChange) {
    session.tolerateUnpriced(
        [&] { session.data().setVariantValues(session.rowName(*step.row), step.texts); });
    ++counts.changed;
  } else {
    ++counts.known;
  }
  return "";
}

std::string importRows(ProjectSession &session, const std::string &file, const std::vector<TableRow> &rows,
                       const Console &console) {
  const InputIndex known(session);
  std::vector<ImportStep> steps(rows.size());
  std::set<std::string> names;
  for (std::size_t index = 0; index < rows.size(); ++index) {
    const bool isNew = rows[index].name.empty() || names.insert(rows[index].name).second;
    const std::string problem = isNew ? planRow(session, known, rows[index], steps[index])
                                      : "there are two rows \"" + rows[index].name + "\" in the table";
    if (!problem.empty()) {
      std::string place = file;
      place.append(":").append(std::to_string(rows[index].line)).append(": ").append(problem);
      return place;
    }
  }
  ImportCounts counts;
  for (const ImportStep &step : steps) {
    std::string problem = carryOut(session, step, counts);
    if (!problem.empty()) {
      return problem;
    }
  }
  console.note("Imported " + numbered(rows.size(), "row", "rows") + ": " + std::to_string(counts.added) +
               " added, " + std::to_string(counts.changed) + " changed, " + std::to_string(counts.known) +
               " as they were");
  return "";
}

} // namespace

int exportCommand(const std::string &project, OutputFormat format, const std::string &file,
                  const Console &console) {
  return withStudy(project, OpenMode::ReadOnly, console,
                   [&](ProjectSession &session) { return exportMatrix(session, format, file, console); });
}

int importCommand(const std::string &project, const std::string &file, const Console &console) {
  std::string problem;
  const std::optional<std::string> text = EmbeddedHost::readWholeFile(file, kLargestTable, problem);
  if (!text) {
    console.error(problem);
    return ExitCode::kInvalid;
  }
  return editStudy(project, console, [&](ProjectSession &session) -> std::string {
    std::vector<FileProblem> problems;
    const bool isJson = std::filesystem::path(file).extension() == ".json";
    const std::optional<std::vector<TableRow>> rows =
        isJson ? readRowJson(session, file, *text, problems) : readRowTable(session, file, *text, problems);
    for (const FileProblem &found : problems) {
      console.error(found.toText());
    }
    return rows ? importRows(session, file, *rows, console) : "Nothing was imported";
  });
}

int backupCommand(const std::string &project, const std::string &file, const Console &console) {
  const std::string source = projectNamed(project);
  std::string problem;
  const std::unique_ptr<EmbeddedHost::Project> opened =
      EmbeddedHost::Project::open(source, OpenMode::ReadOnly, problem);
  if (opened == nullptr || !opened->backup(file, problem)) {
    console.error(problem);
    return ExitCode::kInvalid;
  }
  console.note("Copied " + source + " with its results to " + file);
  return ExitCode::kDone;
}

} // namespace Workbench
