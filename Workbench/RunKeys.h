#pragma once

#include "Workbench/RunInputs.h"
#include "Workbench/StudyFile.h"

#include <string>
#include <vector>

namespace Workbench {

/// What a row's results depend on, as short texts that change when, and only when, it does. No absolute path goes
/// into them, so that a moved or copied project keeps its results.
struct RunKeys {
  std::string run;     ///< what the solver is given, and the solver itself
  std::string extract; ///< where the results are found
  std::string inputs;  ///< all values of the model but results, see ProjectSession::inputsKey()

  /// As a run record stores them.
  std::vector<std::string> texts() const { return {run, extract, inputs}; }
};

/// What one run is made of.
struct RunContents {
  std::vector<RunFile> files;
  std::vector<std::vector<std::string>> commands; ///< one a stage
  /// The attributes that formulas use as exact texts "Entity.Attribute=value" in declared units: what the solver gives
  /// does not depend on them.
  std::vector<std::string> constants;
};

/// \param programs  what tells one program from another, one text a stage
RunKeys runKeys(const StudyFile &study, const std::vector<std::string> &programs,
                const RunContents &contents);

} // namespace Workbench
