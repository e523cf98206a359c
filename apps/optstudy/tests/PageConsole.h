#pragma once

#include "apps/optstudy/tests/CommandRun.h"

#include <string>
#include <vector>

// A command in a console that a page shows, and what the page says it prints. "# exit code 4" behind a command is what
// it ends with, 0 where nothing is said.
struct ConsoleStep {
  std::string command;
  int exitCode = 0;
  std::vector<std::string> shown;
};

// The steps of a console: a line with "$ " in front is a command, what follows is what it prints.
std::vector<ConsoleStep> stepsOf(const std::string &console);

// What differs between what the page shows and what came out; "" when nothing does. Everything that goes to standard
// output has to be shown, in its order; a line "..." stands for any number of lines, and "..." in a line for any text.
// Of the messages a page may show some, in their order, among the other lines.
std::string mismatch(const ConsoleStep &step, const CommandResult &result);
