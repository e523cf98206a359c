#pragma once

#include <string>

namespace FaultTests {

/// A study whose solver is a script: x, y and z go in, their sum and the product of x and y come out.
/// \param rows  how many variants it declares, named "Row 1" and so on
std::string boxStudyText(int rows);

/// Writes the template and the solver's script of that study into a folder.
/// \return "" when done, else why not
std::string writeBoxFiles(const std::string &folder);

} // namespace FaultTests
