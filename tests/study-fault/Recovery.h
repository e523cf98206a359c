#pragma once

#include "tests/study-fault/Stage.h"

#include <string>
#include <vector>

namespace StudyFaults {

/// How an engineer went on after a fault that is gone.
struct Recovery {
  /// What had to be done before the next row could be added, in order; empty when nothing had.
  std::vector<std::string> steps;
  /// What did not work all the same; "" when the study is usable.
  std::string problem;
};

/// Adds a row to the study, updates it, loads the study again, and looks at what came of it.
Recovery goOn(Stage &stage);

} // namespace StudyFaults
