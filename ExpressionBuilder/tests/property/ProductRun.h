#pragma once

#include "ExpressionBuilder/tests/property/LanguageCase.h"

#include <vector>

namespace LanguageOracle {

/// What the library makes of the case: the same observations in the same order as those of the oracle.
/// Exceptions that are no std::runtime_error are let out.
std::vector<Observation> observeProduct(const LanguageCase &languageCase);

} // namespace LanguageOracle
