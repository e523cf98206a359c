#include "EmbeddedHost/RoundingNoise.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace EmbeddedHost {

namespace {

constexpr int kDigits = 14;

// The power of ten of the first digit.
int powerOf(double value) {
  return static_cast<int>(std::floor(std::log10(std::abs(value))));
}

} // namespace

double withoutRoundingNoise(double value, double scale) {
  const double size = std::max(std::abs(value), std::abs(scale));
  if (value == 0.0 || !std::isfinite(size)) {
    return value;
  }
  // A constant and a product, their sum, and the decimal itself: each is off by half a unit in the last place at most.
  const double noise = 2.0 * std::numeric_limits<double>::epsilon() * size;
  if (std::abs(value) <= noise) {
    return 0.0;
  }
  const int digits = kDigits - (powerOf(size) - powerOf(value));
  if (digits < 1) {
    return value;
  }
  std::array<char, 64> text{};
  const std::to_chars_result written =
      std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific, digits - 1);
  double decimal = value;
  const std::from_chars_result read = std::from_chars(text.data(), written.ptr, decimal);
  return read.ec == std::errc() && std::abs(decimal - value) <= noise ? decimal : value;
}

} // namespace EmbeddedHost
