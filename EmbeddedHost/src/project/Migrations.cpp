#include "EmbeddedHost/src/project/Migrations.h"

#include "EmbeddedHost/src/project/ProjectFormat.h"

#include <array>
#include <string>

namespace EmbeddedHost {

namespace {

// A step is never changed once files of its format may exist. It must not use what describes the present format; what
// it needs of its own time is repeated in it.
struct Step {
  std::int64_t from;
  const char *sql;
};

constexpr std::array<Step, 1> kSteps = {{
    // A file says which version of the program it takes.
    {1, "INSERT OR REPLACE INTO property VALUES ('needs', '0.1')"},
}};

constexpr bool areNumberedInOrder() {
  std::int64_t expected = 1;
  for (const Step &step : kSteps) {
    if (step.from != expected++) {
      return false;
    }
  }
  return expected == kFormatVersion;
}
static_assert(areNumberedInOrder(), "one step from every format to the next one");

} // namespace

void migrate(Database &database, std::int64_t format) {
  for (const Step &step : kSteps) {
    if (step.from >= format) {
      database.execute(step.sql);
    }
  }
  database.execute(("PRAGMA user_version = " + std::to_string(kFormatVersion)).c_str());
}

} // namespace EmbeddedHost
