#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace Benchmarking {

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

/// Seconds by the clock on the wall, in which waiting for a disk counts.
double wallSeconds();

/// Has the process get as much memory as any measurement needs, and keep it. Else large data would pay for pages that the
/// system hands out and clears anew each time, and small data would not: what measures that seems to grow faster than
/// its data, and so does what it is compared with.
void keepMemory();

/// Does one thing the given number of times.
using Way = std::function<void(std::size_t times)>;

/// Seconds that each way takes for doing its thing once: medians over the repetitions.
///
/// The ways take turns within every repetition, and the turns rotate, so that a change of the machine's speed
/// meets all of them alike: a ratio wants its two sides within milliseconds of each other.
/// \param now  what is counted: processor time, or the wall's
std::vector<double> measureInterleaved(const std::vector<Way> &ways, const Effort &effort,
                                       double (*now)() = &processorSeconds);

/// Does one thing once and says how many seconds of it count.
using TimedWay = std::function<double()>;

/// As measureInterleaved(), for things that take long or whose preparation is not to be counted: each is done once in
/// every repetition.
std::vector<double> measureOneByOne(const std::vector<TimedWay> &ways, std::size_t repetitions);

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

} // namespace Benchmarking
