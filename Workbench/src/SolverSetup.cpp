#include "Workbench/src/SolverSetup.h"

#include "Workbench/UnitSystem.h"
#include "Workbench/src/MatrixSummary.h"

#include <utility>

namespace Workbench {

std::unique_ptr<SolverSetup> SolverSetup::load(const std::string &studyFile, const std::string &searchPath,
                                               Versions versions, const Console &console) {
  const HostUnits units;
  std::vector<FileProblem> problems;
  std::optional<StudyFile> study = StudyFile::read(studyFile, units, problems);
  std::vector<FileProblem> doubts;
  std::optional<RunInputs> inputs = study ? RunInputs::load(*study, units, doubts, problems) : std::nullopt;
  std::optional<SolverPrograms> programs =
      inputs ? SolverPrograms::find(*study, searchPath, problems) : std::nullopt;
  if (!programs) {
    printProblems(problems, console);
    return nullptr;
  }
  const std::string problem = versions == Versions::Asked ? programs->askVersions(*study, searchPath) : "";
  if (!problem.empty()) {
    console.error(problem);
    return nullptr;
  }
  printWarnings(study->warnings, console);
  if (study->gridRows > 0) {
    console.note("note: the grid has " + numbered(study->gridRows, "row", "rows"));
  }
  printNotes(study->notes, console);
  return std::make_unique<SolverSetup>(
      SolverSetup{std::move(*study), std::move(*inputs), std::move(*programs), std::move(doubts)});
}

void printProblems(const std::vector<FileProblem> &problems, const Console &console) {
  for (const FileProblem &problem : problems) {
    console.error(problem.toText());
  }
}

void printWarnings(const std::vector<FileProblem> &warnings, const Console &console) {
  for (const FileProblem &warning : warnings) {
    console.note("warning: " + warning.toText());
  }
}

void printNotes(const std::vector<std::string> &notes, const Console &console) {
  for (const std::string &note : notes) {
    console.note("note: " + note);
  }
}

} // namespace Workbench
