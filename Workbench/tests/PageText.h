#pragma once

#include <map>
#include <string>
#include <vector>

namespace Workbench {

// An example of a page: its language, what stands behind that on the same line, and its text.
struct PageExample {
  std::string language;
  std::string name;
  std::string text;
};

std::vector<PageExample> examplesOf(const std::string &page);

// The parts of a study file by their keys in column 1.
std::map<std::string, std::string> studyParts(const std::string &text);

// The study file with other parts in the place of those of the same names.
std::string withParts(const std::string &study, const std::string &parts);

std::string fileText(const std::string &path);

} // namespace Workbench
