#pragma once

#include "EmbeddedHost/RunRecord.h"
#include "Workbench/StudyExpression.h"
#include "Workbench/StudyFile.h"

#include <optional>
#include <string>
#include <vector>

namespace Workbench {

class UnitSystem;

// How one stage of a run ended.
struct StageEnd {
  int exitCode = 0;
  double seconds = 0.0;
  bool isOutputTruncated = false;
};

// The folder of a run whose stages have all ended as they should.
struct EndedRun {
  std::string folder;
  std::vector<StageEnd> stages;
};

// The attributes that a study computes, in the order of their values below: those that the solver gives, then formulas.
std::vector<std::string> resultNames(const StudyFile &study);

// Reads the results of a run: the marker of success, what the solver has written, and the formulas over it.
// `inputs` gives the values of attributes that are no results; `values` receives one number a result, in declared units.
// The answer is "" or why the run has failed.
std::string readResults(const StudyFile &study, const UnitSystem &units, const StudyExpressions &expressions,
                        const EndedRun &run, const AttributeValues &inputs, std::vector<double> &values);

// The files that results are read from, in the run's folder: logs, and files that the study file names.
std::vector<std::string> resultFiles(const StudySolver &solver);

// The reason that a text of a failed run's record begins with; empty for one that is never tried again.
std::optional<FailureReason> failureReason(const std::string &reason);

} // namespace Workbench
