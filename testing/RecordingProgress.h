#pragma once

#include "HostModel/ToolProgress.h"

#include <cstdint>
#include <string>
#include <vector>

namespace HostTesting {

/// One call of a progress object.
struct ProgressCall {
  /// As in "advance(1, none)"; the additional progress is "none" for the shared instance that says so, and
  /// "other" for any other object.
  std::string text;
  /// The step counts before the call took effect.
  std::vector<std::uint32_t> stepCounts;
};

/// A progress object that runs from start to finish and records every call.
class RecordingProgress : public Tools::ToolProgress {
public:
  RecordingProgress();
  ~RecordingProgress() override;

  void setText(const std::string &text) override;
  void finish() override;
  void start() override;
  void start(int position) override;
  bool isRunning() const override;
  void pushLevel(std::uint32_t steps) override;
  void advance(std::uint32_t steps, const Tools::Progress::AdditionalProgressAbstract &additional) override;
  void reset() override;
  void setNumberOfSteps(int steps) override;
  void setPosition(int position) override;

  /// Lets finish() throw std::runtime_error "injected fault", after which the task still runs.
  void throwFromFinish(bool doThrow) { m_throwsFromFinish = doThrow; }

  const std::vector<ProgressCall> &calls() const { return m_calls; }
  /// The texts of all calls.
  std::vector<std::string> texts() const;
  /// The texts of all calls but isRunning().
  std::vector<std::string> actions() const;
  void clear();

private:
  void record(const std::string &text) const;

  mutable std::vector<ProgressCall> m_calls;
  bool m_isRunning = false;
  bool m_throwsFromFinish = false;
};

} // namespace HostTesting
