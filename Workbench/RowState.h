#pragma once

#include <string>

namespace Workbench {

/// What is known about the results of one row. Only a row that is Ok has outputs and a cost anywhere.
enum class RowStatus {
  NotRun,
  Running, ///< by another program at this moment
  Ok,
  Stale, ///< solved, but for inputs, files or a solver that have changed since
  Failed,
  Infeasible ///< breaks the rule on inputs and is never run
};

struct RowState {
  RowStatus status = RowStatus::NotRun;
  std::string reason; ///< of a failed or infeasible row
  bool isInStudyFile = true;
};

/// One word for people and files: "not run", "running", "ok", "stale", "failed" or "infeasible".
const char *statusWord(RowStatus status);

/// The status with its reason: "failed: exit code: 1".
std::string statusText(const RowState &state);

/// What a reason begins with, such as "exit code", by which failures are counted; "" without a reason.
std::string reasonClass(const std::string &reason);

} // namespace Workbench
