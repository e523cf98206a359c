#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <cstddef>
#include <string>

namespace LanguageOracle {

bool isDigit(char byte);
bool isLetter(char byte);

/// Reads the number or the string that begins at the position and moves the position behind it.
/// \throws Error "Number out of range", "Syntax error"
Value readLiteral(const std::string &text, std::size_t &position);

} // namespace LanguageOracle
