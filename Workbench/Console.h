#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>

namespace Workbench {

/// Where a command writes and what it may ask of the person at the terminal. Results go to one stream, everything else
/// to another, so that the results can be piped.
struct Console {
  std::ostream &out;       ///< results
  std::ostream &messages;  ///< progress, notes and errors
  bool isTerminal = false; ///< messages go to a terminal: progress may be drawn as a bar
  bool isQuiet = false;    ///< errors only
  bool isVerbose = false;
  /// How often somebody has asked to stop; see SolveObserver. May be empty.
  std::function<int()> interruptions = {};
  /// Asks a question that is answered by yes or no; empty when nobody can be asked.
  std::function<bool(const std::string &question)> confirm = {};
  /// How many columns the terminal of messages has at this moment, 0 when that is not known. May be empty.
  std::function<std::size_t()> width = {};

  /// What a person should know though nothing is wrong.
  void note(const std::string &text) const;
  /// What is said only on request.
  void detail(const std::string &text) const;
  /// What is wrong: said always.
  void error(const std::string &text) const;
};

} // namespace Workbench
