#pragma once

#include "Workbench/SolveRunner.h"

#include <functional>
#include <iosfwd>

namespace Workbench {

/// Shows the progress of a solve: as a bar that is drawn again and again on a terminal, as one line for each finished
/// row anywhere else.
class ProgressPrinter final : public SolveObserver {
public:
  /// \param stream         kept by reference
  /// \param interruptions  answers SolveObserver::interruptions(); empty for never
  ProgressPrinter(std::ostream &stream, bool isTerminal, std::function<int()> interruptions);

  void begun(std::size_t toSolve, std::size_t alreadySolved) override;
  void finished(const std::string &rowName, const RowState &state, double seconds) override;
  void ended() override;
  int interruptions() const override;

private:
  void drawBar();

  std::ostream &m_stream;
  bool m_isTerminal;
  std::function<int()> m_interruptions;
  std::size_t m_total = 0;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;
};

} // namespace Workbench
