#pragma once

#include "Workbench/Console.h"
#include "Workbench/RunInputs.h"
#include "Workbench/SolverPrograms.h"
#include "Workbench/StudyFile.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

// A study file with all that its solver needs, read and found.
struct SolverSetup {
  StudyFile study;
  RunInputs inputs;
  SolverPrograms programs;
  std::vector<FileProblem> doubts; // what can be run and is hardly meant

  // Whether programs are asked for their versions where the study file says how, which starts them.
  enum class Versions { Asked, NotAsked };

  // Prints warnings and notes, and what is wrong. \return null when anything is wrong
  static std::unique_ptr<SolverSetup> load(const std::string &studyFile, const std::string &searchPath,
                                           Versions versions, const Console &console);
};

void printProblems(const std::vector<FileProblem> &problems, const Console &console);
void printWarnings(const std::vector<FileProblem> &warnings, const Console &console);
void printNotes(const std::vector<std::string> &notes, const Console &console);

} // namespace Workbench
