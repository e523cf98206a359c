#pragma once

#include "ExpressionBuilder/tests/property/LanguageCase.h"
#include "ExpressionBuilder/tests/property/RandomChoice.h"

#include <string>
#include <vector>

namespace LanguageOracle {

/// A value from the edges of its type.
Value edgeValue(Type type, RandomChoice &random);

/// A literal of the type; there are none of bool and long long.
std::string literal(Type type, RandomChoice &random);

/// What looks like a literal and is out of range or wrong.
std::string badLiteral(RandomChoice &random);

/// Names of the variables of a type that every case binds, the last one defined by a text.
const std::vector<std::string> &variableNames(Type type);

/// Binds all of them, sometimes two of them to each other.
std::vector<Binding> randomBindings(RandomChoice &random);

} // namespace LanguageOracle
