#pragma once

#include "ExpressionBuilder/tests/property/LanguageCase.h"
#include "ExpressionBuilder/tests/property/LanguageCoverage.h"

#include <vector>

namespace LanguageOracle {

/// What the language demands for the case: as it stands, converted to the target type and disturbed, with and
/// without folding. The first observation is that of the plain text with folding.
/// \param coverage  counts what the text brings together; may be null
std::vector<Observation> observeOracle(const LanguageCase &languageCase, const Rules &rules,
                                       LanguageCoverage *coverage);

} // namespace LanguageOracle
