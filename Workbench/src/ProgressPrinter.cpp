#include "Workbench/ProgressPrinter.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/PlainText.h"
#include "Workbench/src/ProgressText.h"

#include <algorithm>
#include <chrono>
#include <ostream>
#include <utility>

namespace Workbench {

namespace {

constexpr double kBetweenBars = 0.1;  // seconds
constexpr double kBetweenLines = 5.0; // seconds
// Somebody asks several times a second. A longer gap is one in which the program was suspended, and which says nothing
// of how fast rows are solved.
constexpr double kLongestGap = 5.0;
constexpr std::size_t kUsualWidth = 80;

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

} // namespace

ProgressPrinter::ProgressPrinter(const Console &console, Clock clock)
    : m_console(console), m_stream(console.messages), m_isTerminal(console.isTerminal && !console.isQuiet),
      m_clock(clock ? std::move(clock) : steadySeconds), m_state(std::make_unique<ProgressState>()),
      m_now(m_clock()) {}

ProgressPrinter::~ProgressPrinter() = default;

// \return the time now
double ProgressPrinter::passTime() {
  const double now = m_clock();
  m_state->seconds += std::clamp(now - m_now, 0.0, kLongestGap);
  m_now = now;
  return now;
}

void ProgressPrinter::begun(std::size_t toSolve, std::size_t alreadySolved) {
  *m_state = ProgressState();
  m_state->total = toSolve;
  m_now = m_clock();
  m_shown = m_now;
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

void ProgressPrinter::progressed(const SolveProgress &progress) {
  const double now = passTime();
  m_state->running = progress.running;
  m_state->isStopping = progress.isStopping;
  m_state->bestCost = progress.bestCost;
  if (m_console.isQuiet) {
    return;
  }
  sayThatItStops();
  if (m_shown && now - *m_shown < (m_isTerminal ? kBetweenBars : kBetweenLines)) {
    return;
  }
  m_shown = now;
  if (m_isTerminal) {
    drawBar();
  } else {
    printLine(progressText(*m_state));
  }
}

// Whoever has pressed Ctrl-C is to see that it was noticed, and what it does.
void ProgressPrinter::sayThatItStops() {
  if (m_hasSaidThatItStops || m_state->running == 0 || interruptions() != 1) {
    return;
  }
  m_hasSaidThatItStops = true;
  printLine("Stopping when the rows that run are finished; Ctrl-C again ends them now.");
  drawBar();
}

void ProgressPrinter::finished(const std::string &rowName, const RowState &state, double seconds) {
  passTime();
  ++m_state->done;
  const bool isFailed = state.status == RowStatus::Failed;
  if (isFailed) {
    ++m_state->failures[reasonClass(state.reason)];
  }
  if (m_console.isQuiet || (!isFailed && !m_console.isVerbose)) {
    return;
  }
  printLine("[" + std::to_string(m_state->done) + "/" + std::to_string(m_state->total) + "] " +
            inOneLine(rowName) + ": " +
            (isFailed ? "failed: " + inOneLine(state.reason)
                      : "ok, " + EmbeddedHost::writeSolverNumber(seconds) + " s"));
  drawBar();
}

void ProgressPrinter::ended() {
  m_state->running = 0;
  if (m_console.isQuiet) {
    return;
  }
  if (m_isTerminal) {
    drawBar();
    m_stream << std::endl;
  } else {
    printLine(progressText(*m_state));
  }
}

int ProgressPrinter::interruptions() const {
  return m_console.interruptions ? m_console.interruptions() : 0;
}

// A line of its own; on a terminal it takes the place of the bar, which is drawn anew below it.
void ProgressPrinter::printLine(const std::string &text) {
  m_stream << (m_isTerminal ? "\r\x1b[K" : "") << text << std::endl;
}

void ProgressPrinter::drawBar() {
  if (!m_isTerminal) {
    return;
  }
  const std::size_t width = m_console.width ? m_console.width() : 0;
  m_stream << "\r\x1b[K" << progressBar(*m_state, width == 0 ? kUsualWidth : width) << std::flush;
}

} // namespace Workbench
