#pragma once

#include <string>
#include <vector>

namespace Workbench {

// A cell as it stands in a file: in quotes where it holds a comma, a quote, a line's end or a blank at either end.
std::string csvCell(const std::string &text);

// Appends a line.
void appendCsvLine(std::string &text, const std::vector<std::string> &cells);

} // namespace Workbench
