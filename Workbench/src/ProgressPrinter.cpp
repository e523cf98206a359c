#include "Workbench/ProgressPrinter.h"

#include "EmbeddedHost/SolverNumber.h"

#include <ostream>

namespace Workbench {

ProgressPrinter::ProgressPrinter(const Console &console)
    : m_console(console), m_stream(console.messages), m_isTerminal(console.isTerminal && !console.isQuiet) {}

void ProgressPrinter::begun(std::size_t toSolve, std::size_t alreadySolved) {
  m_total = toSolve;
  if (m_console.isQuiet) {
    return;
  }
  m_stream << "Solving " << std::to_string(toSolve) << (toSolve == 1 ? " row" : " rows");
  if (alreadySolved > 0) {
    m_stream << "; " << std::to_string(alreadySolved) << (alreadySolved == 1 ? " is" : " are")
             << " solved already";
  }
  m_stream << std::endl;
  drawBar();
}

void ProgressPrinter::finished(const std::string &rowName, const RowState &state, double seconds) {
  ++m_done;
  const bool isFailed = state.status == RowStatus::Failed;
  m_failed += isFailed ? 1U : 0U;
  if (m_console.isQuiet) {
    return;
  }
  if (m_isTerminal && !isFailed) {
    drawBar();
    return;
  }
  if (m_isTerminal) {
    m_stream << "\r\x1b[K"; // a failure gets a line of its own above the bar
  }
  m_stream << "[" << std::to_string(m_done) << "/" << std::to_string(m_total) << "] " << rowName << ": "
           << (isFailed ? "failed: " + state.reason
                        : "ok, " + EmbeddedHost::writeSolverNumber(seconds) + " s")
           << std::endl;
  drawBar();
}

void ProgressPrinter::ended() {
  if (m_isTerminal) {
    m_stream << std::endl;
  }
}

int ProgressPrinter::interruptions() const {
  return m_console.interruptions ? m_console.interruptions() : 0;
}

void ProgressPrinter::drawBar() {
  if (!m_isTerminal || m_total == 0) {
    return;
  }
  constexpr std::size_t kWidth = 40;
  const std::size_t filled = m_done * kWidth / m_total;
  m_stream << "\r\x1b[K[" << std::string(filled, '#') << std::string(kWidth - filled, '.') << "] "
           << std::to_string(m_done) << "/" << std::to_string(m_total);
  if (m_failed > 0) {
    m_stream << ", " << std::to_string(m_failed) << " failed";
  }
  m_stream << std::flush;
}

} // namespace Workbench
