#pragma once

#include <string>
#include <string_view>

namespace EmbeddedHost {

/// What to do with a unit as an engineer wrote it.
struct UnitSpelling {
  std::string text;    ///< what the database reads; "" when refused
  std::string problem; ///< then one sentence for people
};

/// Turns common spellings into those of the database, and refuses what it would read as something else.
UnitSpelling spellUnit(std::string_view text);

} // namespace EmbeddedHost
