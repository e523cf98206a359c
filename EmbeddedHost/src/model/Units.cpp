#include "EmbeddedHost/Units.h"

#include "EmbeddedHost/RoundingNoise.h"
#include "EmbeddedHost/src/model/UnitDatabase.h"

#include <algorithm>
#include <cmath>

namespace EmbeddedHost {

std::string conversionHint(std::string_view first, std::string_view second) {
  if (first == "C" || second == "C") {
    return R"( ("C" is the coulomb; degrees Celsius are "degC"))";
  }
  if (first == "F" || second == "F") {
    return R"( ("F" is the farad; degrees Fahrenheit are "degF"))";
  }
  return {};
}

double convertReadably(double value, const Unit &from, const Unit &to) {
  UnitSystem &units = UnitSystem::process();
  const double converted = units.convert(value, from, to);
  if (&from == &to) {
    return converted;
  }
  const double offset = units.convert(0.0, from, to);
  return withoutRoundingNoise(converted, std::max(std::abs(converted), std::abs(offset)));
}

UnitSystem &UnitSystem::process() {
  // Never destroyed: values that are shown at process exit still name units.
  static auto *system = new UnitDatabase(nullptr);
  return *system;
}

} // namespace EmbeddedHost
