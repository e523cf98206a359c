#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/StudyFile.h"

#include <string>
#include <vector>

namespace Workbench {

/// What a row's results depend on, as two short texts that change when, and only when, it does. No absolute path goes
/// into them, so that a moved or copied project keeps its results.
struct RunKeys {
  std::string run;     ///< what the solver is given, and the solver itself
  std::string extract; ///< where the results are found

  /// As a run record stores them.
  std::vector<std::string> texts() const { return {run, extract}; }
};

/// \param program  the fingerprint of the solver's program file
RunKeys runKeys(const StudySolver &solver, const std::string &program, const std::vector<RunFile> &files);

} // namespace Workbench
