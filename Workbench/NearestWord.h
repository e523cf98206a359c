#pragma once

#include <string>
#include <vector>

namespace Workbench {

/// The candidate that a mistyped word most likely means: the one with the fewest letters inserted, removed, replaced
/// or swapped, if these are few for the word's length; else one that the word is short for; "" when none is near.
std::string nearestWord(const std::string &word, const std::vector<std::string> &candidates);

/// ", did you mean "x"?" or "" when no candidate is near.
std::string didYouMean(const std::string &word, const std::vector<std::string> &candidates);

} // namespace Workbench
