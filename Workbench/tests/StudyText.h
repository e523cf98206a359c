#pragma once

#include "Workbench/StudyFile.h"

#include <string>

namespace Workbench {

// What is wrong with a study file's text, one line a problem; its name is "dir/s.yaml" unless given.
std::string problemsIn(const std::string &text, const std::string &path = "dir/s.yaml");

// The warnings of a text that is right, one line each.
std::string warningsIn(const std::string &text);

// The study of a text that is right; a failure of the test when it is not.
StudyFile studyIn(const std::string &text, const std::string &path = "dir/s.yaml");

// The text with one part replaced, which must be there.
std::string with(const std::string &text, const std::string &from, const std::string &to);

} // namespace Workbench
