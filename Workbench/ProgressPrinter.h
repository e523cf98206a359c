#pragma once

#include "Workbench/Console.h"
#include "Workbench/SolveRunner.h"

#include <cstddef>
#include <iosfwd>

namespace Workbench {

/// Shows the progress of a solve: as a bar that is drawn again and again on a terminal, as one line for each finished
/// row anywhere else.
class ProgressPrinter final : public SolveObserver {
public:
  /// \param console  kept by reference
  explicit ProgressPrinter(const Console &console);

  void begun(std::size_t toSolve, std::size_t alreadySolved) override;
  void finished(const std::string &rowName, const RowState &state, double seconds) override;
  void ended() override;
  int interruptions() const override;

private:
  void drawBar();

  const Console &m_console;
  std::ostream &m_stream;
  bool m_isTerminal;
  std::size_t m_total = 0;
  std::size_t m_done = 0;
  std::size_t m_failed = 0;
};

} // namespace Workbench
