#pragma once

#include <set>
#include <string>

namespace CommandTests {

/// What the page about the command names.
struct CommandPage {
  std::set<std::string> commands; ///< "show", "input add"
  std::set<std::string> options;  ///< "-q", "--quiet"
  std::set<int> exitCodes;

  static CommandPage read(const std::string &text);
};

} // namespace CommandTests
