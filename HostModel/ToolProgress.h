#pragma once

#include "HostModel/Export.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Tools {

namespace Progress {
class AdditionalProgressAbstract;
}

/// Reports the progress of one task to a person. Passed in by the host as a pointer; null reports nothing.
class HOSTMODEL_EXPORT ToolProgress {
public:
  ToolProgress() = default;
  ToolProgress(const ToolProgress &) = delete;
  ToolProgress &operator=(const ToolProgress &) = delete;
  virtual ~ToolProgress();

  virtual void setText(const std::string &text) = 0;
  /// Ends the running task.
  virtual void finish() = 0;
  /// Begins a task.
  virtual void start() = 0;
  /// Begins at a position, counted in steps.
  virtual void start(int position) = 0;
  virtual bool isRunning() const = 0;
  /// Opens a nested range of \p steps steps, which divides one step of the range around it.
  virtual void pushLevel(std::uint32_t steps) = 0;
  /// Advances the innermost range.
  /// \param additional  what comes with the steps besides their number
  virtual void advance(std::uint32_t steps, const Progress::AdditionalProgressAbstract &additional) = 0;
  /// Forgets position and ranges of the running task.
  virtual void reset() = 0;
  virtual void setNumberOfSteps(int steps) = 0;
  /// Sets the position in the innermost range; the nested ranges map it to the position that is shown.
  virtual void setPosition(int position) = 0;

  /// Step count of each nested range, the innermost last. Open to the library, which sets the innermost
  /// count.
  std::vector<std::uint32_t> stepCounts;
};

/// Sets the step count of the innermost range; opens one where there is none.
HOSTMODEL_EXPORT void setInnermostStepCount(ToolProgress &progress, std::uint32_t steps);

/// Ends at scope exit a task that was begun inside the scope; one that ran before is left alone. An exception
/// of finishing is swallowed: an operation must not fail because its progress cannot be shown.
class HOSTMODEL_EXPORT ProgressScope {
public:
  /// \param progress  null is allowed
  explicit ProgressScope(ToolProgress *progress);
  ProgressScope(const ProgressScope &) = delete;
  ProgressScope &operator=(const ProgressScope &) = delete;
  ~ProgressScope();

private:
  ToolProgress *m_progress;
  bool m_wasRunning;
};

} // namespace Tools
