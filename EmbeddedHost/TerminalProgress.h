#pragma once

#include "HostModel/ToolProgress.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace EmbeddedHost {

/// How progress is shown.
enum class ProgressStyle {
  Automatic, ///< a bar when standard error is a terminal, else lines
  Bar,       ///< one line that is redrawn, with count, rate and time left
  Lines,     ///< a line for a new text, and at most one a second for the count
  Quiet      ///< nothing
};

/// Shows the progress of a task on standard error.
class TerminalProgress final : public Tools::ToolProgress {
public:
  /// Where the output goes and where the time comes from; for tests. Left empty: standard error, the steady clock.
  struct Surroundings {
    std::function<void(std::string_view)> write;
    std::function<double()> seconds;
    int columns = 0; ///< width of a line; 0 asks the terminal
  };

  explicit TerminalProgress(ProgressStyle style);
  TerminalProgress(ProgressStyle style, Surroundings surroundings);
  /// Ends a task that still runs, so that the next output starts on a line of its own.
  ~TerminalProgress() override;

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

  /// The part of the task that is done, 0.0 to 1.0, over all nested ranges.
  double fraction() const;

private:
  void show(bool isLast);
  void showLine(bool isLast);
  void showBar(bool isLast);
  std::string counts() const;
  std::uint32_t innermostCount() const;
  std::uint32_t innermostPosition() const;
  void setInnermostPosition(std::uint32_t position);

  ProgressStyle m_style;
  Surroundings m_surroundings;
  std::string m_text;
  std::vector<std::uint32_t>
      m_positions; ///< one for each of stepCounts; shorter where nothing was reported yet
  bool m_isRunning = false;
  double m_startedAt = 0.0;
  double m_shownAt = 0.0;
  bool m_isShown = false;
  std::string m_shownText;
};

} // namespace EmbeddedHost
