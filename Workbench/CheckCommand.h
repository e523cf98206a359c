#pragma once

#include "Workbench/Console.h"

#include <string>

namespace Workbench {

struct CheckOptions {
  std::string studyFile;
  bool runs = true; ///< runs the baseline once; without it nothing is started
  std::string searchPath;
};

/// Checks a study file: everything in it, what the solver gets for the first row beside what it gets for the baseline,
/// and one run of the baseline in a folder that is removed again, with each result, its unit and where it was found.
/// \return one of ExitCode
int checkCommand(const CheckOptions &options, const Console &console);

} // namespace Workbench
