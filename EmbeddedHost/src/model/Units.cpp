#include "EmbeddedHost/Units.h"

#include "EmbeddedHost/src/model/UnitDatabase.h"

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

UnitSystem &UnitSystem::process() {
  // Never destroyed: values that are shown at process exit still name units.
  static auto *system = new UnitDatabase(nullptr);
  return *system;
}

} // namespace EmbeddedHost
