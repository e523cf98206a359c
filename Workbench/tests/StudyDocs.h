#pragma once

#include "Workbench/tests/PageText.h"

#include <map>
#include <string>
#include <vector>

namespace Workbench {

// The study files that docs/study-file.md shows, one for each example: the first examples that are one part alone are a
// study file together, and what an example shows takes the place of its parts of the same names.
std::vector<std::string> studiesOfThePage();

// The other files that the page shows, by name.
std::map<std::string, std::string> filesOfThePage();

// The study files of examples/.
std::vector<std::string> exampleStudyFiles();

} // namespace Workbench
