#include "Workbench/RowState.h"

namespace Workbench {

const char *statusWord(RowStatus status) {
  switch (status) {
  case RowStatus::NotRun:
    return "not run";
  case RowStatus::Running:
    return "running";
  case RowStatus::Ok:
    return "ok";
  case RowStatus::Stale:
    return "stale";
  case RowStatus::Failed:
    return "failed";
  case RowStatus::Infeasible:
    break;
  }
  return "infeasible";
}

std::string statusText(const RowState &state) {
  const std::string word = statusWord(state.status);
  const bool hasReason = state.status == RowStatus::Failed || state.status == RowStatus::Infeasible;
  return hasReason && !state.reason.empty() ? word + ": " + state.reason : word;
}

std::string reasonClass(const std::string &reason) {
  return reason.substr(0, reason.find(": "));
}

} // namespace Workbench
