#pragma once

#include <string>
#include <string_view>

namespace EmbeddedHost {

/// What to do with a unit as an engineer wrote it.
struct UnitText {
  std::string text;    ///< what the database reads; "" when refused
  std::string problem; ///< then one sentence for people
};

/// Turns what engineers write into what the database reads, and refuses what it would read as something else:
/// spellings by the table of UnitSpellings; products after a division, powers that are no whole numbers and a
/// bracket after a blank by their form.
/// \param written  without blanks around it
UnitText readUnitText(std::string_view written);

} // namespace EmbeddedHost
