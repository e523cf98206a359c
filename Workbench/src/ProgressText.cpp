#include "Workbench/src/ProgressText.h"

#include "EmbeddedHost/SolverNumber.h"
#include "Workbench/src/MatrixSummary.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Workbench {

namespace {

constexpr double kMinute = 60.0;
constexpr double kHour = 3600.0;
// Nobody waits for longer, and it would be no estimate any more.
constexpr double kLongestTimeLeft = 1000.0 * kHour;
constexpr std::size_t kWidestBar = 40;
constexpr std::size_t kNarrowestBar = 8;

// The parts of the text, in their order.
enum Part : std::size_t { kDone, kFailed, kRunning, kRate, kTimeLeft, kBest, kParts };
using Parts = std::array<std::string, kParts>;

// Two digits, which is all that a rate is worth.
std::string roughNumber(double value) {
  if (value >= 9.95) {
    return std::to_string(std::llround(value));
  }
  std::string problem;
  const auto format = EmbeddedHost::SolverNumberFormat::parse("%.1f", problem);
  return format->write(value).value_or("");
}

std::string rateText(double perSecond) {
  if (perSecond >= 1.0) {
    return roughNumber(perSecond) + "/s";
  }
  return perSecond * kMinute >= 1.0 ? roughNumber(perSecond * kMinute) + "/min"
                                    : roughNumber(perSecond * kHour) + "/h";
}

std::string timeLeftText(double seconds) {
  const auto whole = [](double value) {
    return std::to_string(std::llround(std::ceil(value)));
  };
  if (seconds <= kMinute) {
    return whole(seconds) + " s left";
  }
  if (seconds <= kHour) {
    return whole(seconds / kMinute) + " min left";
  }
  const double minutes = std::ceil(seconds / kMinute);
  const double hours = std::floor(minutes / kMinute);
  return whole(hours) + " h " + whole(minutes - hours * kMinute) + " min left";
}

std::string failedText(const ProgressState &state, bool hasReasons) {
  if (state.failed() == 0) {
    return "";
  }
  std::string reasons;
  for (const auto &[reason, count] : state.failures) {
    reasons += (reasons.empty() ? "" : ", ") + std::to_string(count) + " " + reason;
  }
  return std::to_string(state.failed()) + " failed" + (hasReasons ? " (" + reasons + ")" : "");
}

Parts partsOf(const ProgressState &state) {
  Parts parts;
  parts[kDone] = std::to_string(state.done) + "/" + std::to_string(state.total);
  parts[kFailed] = failedText(state, true);
  const std::string running = state.running == 0 ? "" : std::to_string(state.running) + " running";
  const bool hasMore = state.done < state.total;
  const bool isStopping = state.isStopping && hasMore;
  parts[kRunning] = !isStopping ? running : running.empty() ? "stopping" : "stopping, " + running;
  if (state.done > 0 && state.seconds > 0.0) {
    const double rate = static_cast<double>(state.done) / state.seconds;
    parts[kRate] = rateText(rate);
    const double left = static_cast<double>(state.total - state.done) / rate;
    if (hasMore && !isStopping && left < kLongestTimeLeft) {
      parts[kTimeLeft] = timeLeftText(left);
    }
  }
  if (state.bestCost) {
    parts[kBest] = "best " + shortNumber(*state.bestCost);
  }
  return parts;
}

std::string joined(const Parts &parts) {
  std::string text;
  for (const std::string &part : parts) {
    text.append(text.empty() || part.empty() ? "" : ", ").append(part);
  }
  return text;
}

} // namespace

std::size_t ProgressState::failed() const {
  std::size_t sum = 0;
  for (const auto &[reason, count] : failures) {
    sum += count;
  }
  return sum;
}

std::string progressText(const ProgressState &state) {
  return joined(partsOf(state));
}

std::string progressBar(const ProgressState &state, std::size_t width) {
  const std::size_t room = std::max<std::size_t>(width, 2) - 1;
  constexpr std::size_t kFrame = 3; // two brackets and a blank
  Parts parts = partsOf(state);
  std::string text = joined(parts);
  const auto fits = [&text, room] {
    return text.size() + kNarrowestBar + kFrame <= room;
  };
  if (!fits()) {
    parts[kFailed] = failedText(state, false);
    text = joined(parts);
  }
  for (const Part part : {kRate, kRunning, kTimeLeft, kBest}) {
    if (!fits()) {
      parts[part].clear();
      text = joined(parts);
    }
  }
  if (!fits() || state.total == 0) {
    return text.substr(0, room);
  }
  const std::size_t bar = std::min(kWidestBar, room - text.size() - kFrame);
  const std::size_t filled = std::min(state.done, state.total) * bar / state.total;
  return "[" + std::string(filled, '#') + std::string(bar - filled, '.') + "] " + text;
}

} // namespace Workbench
