#include "EmbeddedHost/Units.h"

#include "EmbeddedHost/src/model/UnitDatabase.h"

namespace EmbeddedHost {

UnitSystem &UnitSystem::process() {
  // Never destroyed: values that are shown at process exit still name units.
  static auto *system = new UnitDatabase(nullptr);
  return *system;
}

} // namespace EmbeddedHost
