#include "testing/RecordingProgress.h"

#include "HostModel/NullProgress.h"

#include <stdexcept>

namespace HostTesting {

RecordingProgress::RecordingProgress() = default;

RecordingProgress::~RecordingProgress() = default;

void RecordingProgress::record(const std::string &text) const {
  m_calls.push_back({text, stepCounts});
}

void RecordingProgress::setText(const std::string &text) {
  record("setText(\"" + text + "\")");
}

void RecordingProgress::finish() {
  record("finish()");
  if (m_throwsFromFinish) {
    throw std::runtime_error("injected fault");
  }
  m_isRunning = false;
}

void RecordingProgress::start() {
  record("start()");
  m_isRunning = true;
}

void RecordingProgress::start(int position) {
  record("start(" + std::to_string(position) + ")");
  m_isRunning = true;
}

bool RecordingProgress::isRunning() const {
  record("isRunning()");
  return m_isRunning;
}

void RecordingProgress::pushLevel(std::uint32_t steps) {
  record("pushLevel(" + std::to_string(steps) + ")");
  stepCounts.push_back(steps);
}

void RecordingProgress::advance(std::uint32_t steps,
                                const Tools::Progress::AdditionalProgressAbstract &additional) {
  const bool isNone = &additional == &Tools::Progress::AdditionalProgressNone::shared();
  record("advance(" + std::to_string(steps) + ", " + (isNone ? "none" : "other") + ")");
}

void RecordingProgress::reset() {
  record("reset()");
  stepCounts.clear();
}

void RecordingProgress::setNumberOfSteps(int steps) {
  record("setNumberOfSteps(" + std::to_string(steps) + ")");
}

void RecordingProgress::setPosition(int position) {
  record("setPosition(" + std::to_string(position) + ")");
}

std::vector<std::string> RecordingProgress::texts() const {
  std::vector<std::string> result;
  for (const ProgressCall &call : m_calls) {
    result.push_back(call.text);
  }
  return result;
}

std::vector<std::string> RecordingProgress::actions() const {
  std::vector<std::string> result;
  for (const ProgressCall &call : m_calls) {
    if (call.text != "isRunning()") {
      result.push_back(call.text);
    }
  }
  return result;
}

void RecordingProgress::clear() {
  m_calls.clear();
}

} // namespace HostTesting
