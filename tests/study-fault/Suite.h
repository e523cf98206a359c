#pragma once

#include "tests/study-fault/Trial.h"

#include <cstdint>
#include <string>
#include <vector>

namespace StudyFaults {

/// What was seen of one trial, in texts.
struct Result {
  std::string operation;
  std::string kind;
  std::string where;
  /// What became of the study; see describe().
  std::vector<std::string> seen;
  std::vector<std::string> findings;
};

/// Which of the trials of a flow are made.
struct Selection {
  /// 0 for all.
  int sample = 0;
  std::uint32_t seed = 0;
};

/// Makes the trials of a flow, each in a process of its own: one without a fault, then every operation that the flow
/// calls, in every kind in which it can fail, at its first, its middle, its last and at every call.
std::vector<Result> runTrials(const Flow &flow, const Selection &selection);

} // namespace StudyFaults
