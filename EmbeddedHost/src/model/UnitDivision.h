#pragma once

#include "EmbeddedHost/src/model/UnitTokens.h"

#include <string>
#include <vector>

namespace EmbeddedHost {

/// The texts that may be meant by a unit with a further factor after a division, such as "W/m2.K": all below the
/// line, or that factor above it. Empty when there is no such factor; the first group of brackets that has one
/// counts.
/// \param text  the unit; the tokens say where they stand in it
std::vector<std::string> readingsOfDivision(const std::string &text, const std::vector<UnitToken> &tokens);

} // namespace EmbeddedHost
