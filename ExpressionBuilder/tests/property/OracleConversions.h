#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

namespace LanguageOracle {

/// The value as one of the given type. Raises nothing: numbers out of range give the processor's "indefinite"
/// value, texts without a number give zero.
Value convert(const Value &value, Type type, const Rules &rules);

} // namespace LanguageOracle
