#pragma once

#include "Workbench/Console.h"
#include "Workbench/SolveRunner.h"

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>

namespace Workbench {

struct ProgressState;

/// Shows the progress of a solve: how many rows are done, failed and running, how fast, how long it will take, and the
/// best cost so far. On a terminal that is a bar that is drawn again and again in one line; anywhere else a line every
/// few seconds, and one at the end. A row that failed has a line of its own, with -v every row has.
class ProgressPrinter final : public SolveObserver {
public:
  /// Seconds since any moment.
  using Clock = std::function<double()>;

  /// \param console  kept by reference
  /// \param clock    one that never goes back; the steady clock when left out
  explicit ProgressPrinter(const Console &console, Clock clock = {});
  ~ProgressPrinter() override;

  void begun(std::size_t toSolve, std::size_t alreadySolved) override;
  void progressed(const SolveProgress &progress) override;
  void finished(const std::string &rowName, const RowState &state, double seconds) override;
  void ended() override;
  int interruptions() const override;

private:
  double passTime();
  void sayThatItStops();
  void printLine(const std::string &text);
  void drawBar();

  const Console &m_console;
  std::ostream &m_stream;
  bool m_isTerminal;
  Clock m_clock;
  std::unique_ptr<ProgressState> m_state;
  double m_now = 0.0;
  std::optional<double> m_shown; // when the bar was drawn, or a line was written
  bool m_hasSaidThatItStops = false;
};

} // namespace Workbench
