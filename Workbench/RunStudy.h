#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace Workbench {

/// What a command of the program answers to whoever started it.
namespace ExitCode {
constexpr int kDone = 0;
constexpr int kInternalError = 1;
constexpr int kUsage = 2;
constexpr int kInvalid = 3; ///< the study file, the project or the solver cannot be used
constexpr int kSomeRowsFailed = 4;
constexpr int kNoRowSolved = 5;
constexpr int kInterrupted = 130;
} // namespace ExitCode

struct RunOptions {
  std::string studyFile;
  std::size_t parallel = 2;           ///< rows at a time
  std::string searchPath;             ///< where the solver is looked for, like PATH
  bool isTerminal = false;            ///< progress as a bar
  std::function<int()> interruptions; ///< see SolveObserver; may be empty
};

/// Runs a study: creates its project or goes on with it, solves what is not solved, prices, and prints the matrix.
/// \param out    receives the matrix and what it says
/// \param messages  receives progress and errors
/// \return one of ExitCode
int runStudy(const RunOptions &options, std::ostream &out, std::ostream &messages);

} // namespace Workbench
