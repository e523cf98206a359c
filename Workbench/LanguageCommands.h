#pragma once

#include "Workbench/Console.h"
#include "Workbench/OutputFormat.h"

#include <string>
#include <vector>

namespace Workbench {

struct EvalOptions {
  std::vector<std::string> texts;     ///< one; several are a text that was not put in quotes
  std::vector<std::string> variables; ///< "NAME=VALUE", where the value is a literal of the language
};

/// Prints type and value of a text of the cost language, as it is by itself: "int 4". What is legal in it and seldom
/// meant is said besides, with its place and what to write instead.
/// \return one of ExitCode
int evalCommand(const EvalOptions &options, const Console &console);

/// Prints the operators and functions of the cost language, each with the types that it takes and gives.
int functionsCommand(OutputFormat format, const Console &console);

} // namespace Workbench
