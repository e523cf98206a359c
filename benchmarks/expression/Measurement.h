#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ExpressionBenchmark {

/// How long to measure.
struct Effort {
  /// At least kFewestRepetitions unless a quick run is asked for.
  std::size_t repetitions = 15;
  /// Processor time of one repetition at least.
  double secondsPerRepetition = 0.004;

  static constexpr std::size_t kFewestRepetitions = 9;
};

/// Processor time used by all threads of the process so far. What other processes take of the core is not in it.
double processorSeconds();

/// Does one thing the given number of times.
using Way = std::function<void(std::size_t times)>;

/// Processor seconds that each way takes for doing its thing once: medians over the repetitions.
///
/// The ways take turns within every repetition, and the turns rotate, so that a change of the machine's speed
/// meets all of them alike: a ratio wants its two sides within milliseconds of each other.
std::vector<double> measureInterleaved(const std::vector<Way> &ways, const Effort &effort);

/// The value in the middle; there must be one.
double median(std::vector<double> values);

/// Ratios of several expressions, and what is judged of them.
class Ratios {
public:
  void add(const std::string &name, double ratio);

  double geometricMean() const;
  /// The largest.
  double worst() const;
  /// Whose ratio is the largest.
  std::string worstName() const;

private:
  std::vector<double> m_ratios;
  std::size_t m_worst = 0;
  std::vector<std::string> m_names;
};

} // namespace ExpressionBenchmark
