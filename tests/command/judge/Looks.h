#pragma once

#include "tests/command/judge/Box.h"

namespace CommandTests {

using Words = std::vector<std::string>;

std::string joined(const Words &words);

/// A use of the command that only looks at a project, and what it has to print of a solved row 1.
struct Look {
  Words words;
  std::string prints;
};

/// Each way to look at the project box.optstudy.
const std::vector<Look> &looks();
/// Each way to change it, which all wait for nobody who does.
const std::vector<Words> &changes();

/// "" when it prints what it has to.
std::string problemOfLook(const Box &box, const Look &look);
/// "" when it is refused, since the project cannot be written, and says why.
std::string problemOfRefusal(const Box &box, const Words &words, const std::string &why);

} // namespace CommandTests
