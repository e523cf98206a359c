#pragma once

#include <mutex>
#include <string>

namespace FaultTests {

/// Counts trials and violations, and prints the first of these.
class Report {
public:
  explicit Report(std::string suite);

  /// \param violation  "" when there is none; from any thread
  void add(const std::string &trial, const std::string &violation);
  /// A trial that did not come to what it was about.
  void addMissed();
  /// Prints the closing line.
  void close() const;

  int trials() const { return m_trials; }
  int violations() const { return m_violations; }
  int missed() const { return m_missed; }

private:
  std::string m_suite;
  std::mutex m_mutex;
  int m_trials = 0;
  int m_violations = 0;
  int m_missed = 0;
};

} // namespace FaultTests
