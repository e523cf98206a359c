#pragma once

#include <cstddef>
#include <string>

namespace ExpressionBenchmark {

/// Compares values before anything is timed: figures for different results would mean nothing.
class Agreement {
public:
  /// The largest relative difference that muparser, which computes some products and sums in another order, may
  /// show.
  static constexpr double kRivalTolerance = 1e-12;

  /// \throws std::runtime_error  `own` is not, bit for bit, `native`, or is too far from `rival`
  void expect(const std::string &name, std::size_t row, double own, double native, double rival);

  /// What has been compared, as a sentence.
  std::string summary() const;

private:
  std::size_t m_values = 0;
  double m_largest = 0.0;
};

/// True when every bit is the same: unlike "==" it tells the zeros apart and finds a NaN equal to itself.
bool sameBits(double a, double b) noexcept;

} // namespace ExpressionBenchmark
