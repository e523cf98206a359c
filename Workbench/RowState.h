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
  /// Of a failed or infeasible row; of a stale one what has changed, where that is known.
  std::string reason;
  bool isInStudyFile = true;
};

/// The reason of a stale row that need not be run again while the files of its last run are kept.
constexpr const char *kReadAnew = "its results are read in another way";

/// One word for people and files: "not run", "running", "ok", "stale", "failed" or "infeasible".
const char *statusWord(RowStatus status);

/// The status with its reason: "failed: exit code: 1".
std::string statusText(const RowState &state);

/// What a reason begins with, such as "exit code", by which failures are counted; "" without a reason.
std::string reasonClass(const std::string &reason);

} // namespace Workbench
