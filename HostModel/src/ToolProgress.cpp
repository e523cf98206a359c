#include "HostModel/ToolProgress.h"

namespace Tools {

ToolProgress::~ToolProgress() = default;

void setInnermostStepCount(ToolProgress &progress, std::uint32_t steps) {
  if (progress.stepCounts.empty()) {
    progress.pushLevel(steps);
  } else {
    progress.stepCounts.back() = steps;
  }
}

ProgressScope::ProgressScope(ToolProgress *progress)
    : m_progress(progress), m_wasRunning(progress != nullptr && progress->isRunning()) {}

ProgressScope::~ProgressScope() {
  try {
    if (m_progress != nullptr && !m_wasRunning && m_progress->isRunning()) {
      m_progress->finish();
    }
  } catch (...) {
    // Nothing to do: the task is over whether or not its end could be shown.
  }
}

} // namespace Tools
