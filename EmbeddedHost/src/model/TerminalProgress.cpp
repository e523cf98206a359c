#include "EmbeddedHost/TerminalProgress.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr double kSecondsBetweenBars = 0.1;
constexpr double kSecondsBetweenLines = 1.0;
constexpr int kUsualColumns = 80;
constexpr std::size_t kBarWidth = 20;
constexpr const char *kEraseLine = "\r\033[K";

void writeToStandardError(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

double steadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

ProgressStyle resolved(ProgressStyle style) {
  if (style != ProgressStyle::Automatic) {
    return style;
  }
  const char *terminal = std::getenv("TERM");
  const bool canRedraw = terminal != nullptr && std::string_view(terminal) != "dumb";
  return isatty(STDERR_FILENO) != 0 && canRedraw ? ProgressStyle::Bar : ProgressStyle::Lines;
}

int terminalColumns() {
  winsize size = {};
  return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

// With one digit after the point, whatever the locale.
std::string tenths(double number) {
  const auto whole = static_cast<std::int64_t>(std::llround(number * 10.0));
  return std::to_string(whole / 10) + "." + std::to_string(whole % 10);
}

std::string duration(double seconds) {
  const auto whole = static_cast<std::int64_t>(std::llround(seconds));
  if (whole < 60) {
    return std::to_string(whole) + " s";
  }
  if (whole < 3600) {
    return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
  }
  return std::to_string(whole / 3600) + " h " + std::to_string(whole / 60 % 60) + " min";
}

} // namespace

TerminalProgress::TerminalProgress(ProgressStyle style) : TerminalProgress(style, Surroundings()) {}

TerminalProgress::TerminalProgress(ProgressStyle style, Surroundings surroundings)
    : m_style(resolved(style)), m_surroundings(std::move(surroundings)) {
  if (!m_surroundings.write) {
    m_surroundings.write = writeToStandardError;
  }
  if (!m_surroundings.seconds) {
    m_surroundings.seconds = steadySeconds;
  }
}

TerminalProgress::~TerminalProgress() {
  if (m_isRunning) {
    show(true);
  }
}

void TerminalProgress::start() {
  reset();
  m_text.clear();
  m_shownText.clear();
  m_isRunning = true;
  m_isShown = false;
  m_startedAt = m_surroundings.seconds();
}

void TerminalProgress::start(int position) {
  if (!m_isRunning) {
    start();
  }
  setPosition(position);
}

void TerminalProgress::finish() {
  if (m_isRunning) {
    show(true);
    m_isRunning = false;
  }
}

bool TerminalProgress::isRunning() const {
  return m_isRunning;
}

void TerminalProgress::reset() {
  stepCounts.clear();
  m_positions.clear();
  m_startedAt = m_surroundings.seconds();
}

void TerminalProgress::setText(const std::string &text) {
  m_text = text;
  show(false);
}

void TerminalProgress::pushLevel(std::uint32_t steps) {
  m_positions.resize(stepCounts.size(), 0);
  stepCounts.push_back(steps);
  m_positions.push_back(0);
  show(false);
}

void TerminalProgress::setNumberOfSteps(int steps) {
  const auto count = static_cast<std::uint32_t>(std::max(steps, 0));
  if (stepCounts.empty()) {
    pushLevel(count);
  } else {
    stepCounts.back() = count;
  }
}

void TerminalProgress::setPosition(int position) {
  setInnermostPosition(static_cast<std::uint32_t>(std::max(position, 0)));
}

void TerminalProgress::advance(std::uint32_t steps,
                               const Tools::Progress::AdditionalProgressAbstract & /*additional*/) {
  setInnermostPosition(innermostPosition() + steps);
}

void TerminalProgress::setInnermostPosition(std::uint32_t position) {
  if (stepCounts.empty()) {
    return;
  }
  m_positions.resize(stepCounts.size(), 0);
  m_positions.back() = position;
  show(false);
}

std::uint32_t TerminalProgress::innermostCount() const {
  return stepCounts.empty() ? 0 : stepCounts.back();
}

std::uint32_t TerminalProgress::innermostPosition() const {
  return stepCounts.empty() || m_positions.size() < stepCounts.size() ? 0 : m_positions.back();
}

double TerminalProgress::fraction() const {
  double inner = 0.0;
  for (std::size_t level = stepCounts.size(); level-- > 0;) {
    const double position = level < m_positions.size() ? m_positions[level] : 0.0;
    const double count = stepCounts[level];
    inner = count > 0.0 ? std::min((position + inner) / count, 1.0) : 0.0;
  }
  return inner;
}

std::string TerminalProgress::counts() const {
  const std::uint32_t count = innermostCount();
  if (count == 0) {
    return {};
  }
  const double elapsed = m_surroundings.seconds() - m_startedAt;
  const double done = fraction();
  std::string text = std::to_string(std::min(innermostPosition(), count)) + "/" + std::to_string(count);
  if (elapsed > 0.0 && done > 0.0) {
    text += "  " + tenths(innermostPosition() / elapsed) + "/s";
    text += "  " + duration(elapsed * (1.0 - done) / done) + " left";
  }
  return text;
}

void TerminalProgress::show(bool isLast) {
  if (!m_isRunning) {
    return;
  }
  if (m_style == ProgressStyle::Bar) {
    showBar(isLast);
  } else if (m_style == ProgressStyle::Lines) {
    showLine(isLast);
  }
}

void TerminalProgress::showLine(bool isLast) {
  const double now = m_surroundings.seconds();
  const std::string progress = counts();
  const std::string line = progress.empty() ? m_text : m_text + (m_text.empty() ? "" : "  ") + progress;
  const bool isDue = !m_isShown || isLast || now - m_shownAt >= kSecondsBetweenLines;
  if (line.empty() || line == m_shownText || !isDue) {
    return;
  }
  m_surroundings.write(line + "\n");
  m_shownText = line;
  m_shownAt = now;
  m_isShown = true;
}

void TerminalProgress::showBar(bool isLast) {
  const double now = m_surroundings.seconds();
  if (m_isShown && !isLast && now - m_shownAt < kSecondsBetweenBars) {
    return;
  }
  std::string line;
  const std::string progress = counts();
  if (!progress.empty()) {
    const auto done = static_cast<std::size_t>(fraction() * static_cast<double>(kBarWidth));
    line = "[" + std::string(done, '#') + std::string(kBarWidth - done, '-') + "] " + progress;
  }
  line += line.empty() || m_text.empty() ? m_text : "  " + m_text;
  const int columns = m_surroundings.columns > 0 ? m_surroundings.columns : terminalColumns();
  // A line that wraps could not be erased.
  std::size_t length = std::min(line.size(), static_cast<std::size_t>(columns - 1));
  while (length < line.size() && length > 0 && (static_cast<unsigned char>(line[length]) & 0xC0U) == 0x80U) {
    --length;
  }
  m_surroundings.write(kEraseLine + line.substr(0, length) + (isLast ? "\n" : ""));
  m_shownAt = now;
  m_isShown = true;
}

} // namespace EmbeddedHost
