#include "tests/fault/judge/Report.h"

#include <iostream>
#include <utility>

namespace FaultTests {

namespace {

constexpr int kShown = 30;

} // namespace

Report::Report(std::string suite) : m_suite(std::move(suite)) {}

void Report::add(const std::string &trial, const std::string &violation) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  ++m_trials;
  if (violation.empty()) {
    return;
  }
  if (m_violations++ < kShown) {
    std::cout << "  " << m_suite << ", " << trial << ": " << violation << std::endl;
  }
}

void Report::addMissed() {
  const std::lock_guard<std::mutex> lock(m_mutex);
  ++m_missed;
}

void Report::close() const {
  std::cout << m_suite << ": " << m_trials << " trials, " << m_violations << " violations";
  if (m_missed > 0) {
    std::cout << " (" << m_missed << " more ended before the point was reached)";
  }
  std::cout << std::endl;
}

} // namespace FaultTests
