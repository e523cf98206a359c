#pragma once

#include <functional>
#include <string>
#include <vector>

namespace StudyFaults {

/// What a process does before it ends by itself.
struct ExitScene {
  std::string name;
  /// Called from main, which then returns \return its answer.
  std::function<int()> run;
  /// What it says on the standard output before it ends.
  std::string said;
};

/// Ways for a process to end while a study is held, or after one was.
const std::vector<ExitScene> &exitScenes();

/// Processes that do not end well, which must be found.
const std::vector<ExitScene> &exitControls();

} // namespace StudyFaults
