#pragma once

namespace Workbench {

/// What a command of the program answers to whoever started it.
namespace ExitCode {
constexpr int kDone = 0;
constexpr int kInternalError = 1;
constexpr int kUsage = 2;
constexpr int kInvalid = 3; ///< the study file, the project or the solver cannot be used
constexpr int kSomeRowsFailed = 4;
constexpr int kNoRowSolved = 5;
constexpr int kHeld = 6; ///< the project is held by another process, or may only be read
constexpr int kInterrupted = 130;
constexpr int kTerminated = 143;
} // namespace ExitCode

} // namespace Workbench
