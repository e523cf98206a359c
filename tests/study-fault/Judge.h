#pragma once

#include "tests/study-fault/Trial.h"

#include <string>
#include <vector>

namespace StudyFaults {

/// What is not as the flow's description has it; empty when everything is.
std::vector<std::string> judge(const Flow &flow, const Fault &fault, const Aftermath &seen);

/// What became of the flow and of the study, in a few words each: outcome, flags, current version, matrix, costs, and
/// how the study went on.
std::vector<std::string> describe(const Aftermath &seen);

} // namespace StudyFaults
