#pragma once

#include "Workbench/Console.h"
#include "Workbench/ExitCode.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

/// How many rows may fail before a run counts as failed.
struct AllowedFailures {
  double amount = 0.0;
  bool isPercent = false; ///< of all rows that could be solved

  /// Reads "3" or "10%". \return empty when the text is neither
  static std::optional<AllowedFailures> parse(const std::string &text);
  bool allows(std::size_t failed, std::size_t rows) const;
};

struct RunOptions {
  std::string studyFile;
  std::size_t parallel = 2; ///< rows at a time
  std::string searchPath;   ///< where the solver is looked for, like PATH
  bool keepsGoing = false;  ///< goes on when the baseline fails
  bool isTrial = false;     ///< only says what would be run, and why
  bool isFresh = false;     ///< solves every row again; asks first
  bool prunes = false;      ///< removes rows that the study file does not have; asks first
  AllowedFailures allowedFailures;
};

/// Runs a study: creates its project or goes on with it, solves what is not solved, prices, and prints the matrix.
/// \return one of ExitCode
int runStudy(const RunOptions &options, const Console &console);

struct SolveRowsOptions {
  std::string project;           ///< a project with its study file beside it, or the study file
  std::vector<std::string> rows; ///< names or numbers; empty for all that need it
  bool onlyFailed = false;
  std::string reason; ///< with onlyFailed: of this reason only; "" for all
  bool onlyStale = false;
  bool onlyExtracts = false; ///< reads results again from the files that are kept, and runs nothing
  std::size_t parallel = 2;
  std::string searchPath;
};

/// Solves rows of a project as it is, without bringing it in line with the study file, which says how. Rows that are
/// named are solved although they are solved already.
/// \return one of ExitCode
int solveCommand(const SolveRowsOptions &options, const Console &console);

} // namespace Workbench
