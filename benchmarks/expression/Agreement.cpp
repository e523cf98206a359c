#include "benchmarks/expression/Agreement.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace ExpressionBenchmark {

bool sameBits(double a, double b) noexcept {
  std::uint64_t bitsOfA = 0;
  std::uint64_t bitsOfB = 0;
  static_assert(sizeof(bitsOfA) == sizeof(a));
  std::memcpy(&bitsOfA, &a, sizeof(a));
  std::memcpy(&bitsOfB, &b, sizeof(b));
  return bitsOfA == bitsOfB;
}

void Agreement::expect(const std::string &name, std::size_t row, double own, double native, double rival) {
  const double larger = std::max(std::fabs(own), std::fabs(rival));
  const double difference = own == rival ? 0.0 : std::fabs(own - rival) / larger;
  // Written so that a NaN is no agreement.
  if (!sameBits(own, native) || !(difference <= kRivalTolerance)) {
    std::ostringstream text;
    text << std::setprecision(17) << name << ", row " << row << ": own " << own << ", native " << native
         << ", muparser " << rival;
    throw std::runtime_error(text.str());
  }
  ++m_values;
  m_largest = std::max(m_largest, difference);
}

std::string Agreement::summary() const {
  std::ostringstream text;
  text << m_values
       << " values compared: all bit-identical to native, largest relative difference from muparser "
       << std::setprecision(2) << m_largest;
  return text.str();
}

} // namespace ExpressionBenchmark
