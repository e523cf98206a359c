#pragma once

#include "Workbench/Console.h"

#include <string>
#include <vector>

namespace Workbench {

/// The example that needs no solver which may be missing.
constexpr const char *kDefaultExample = "beam";

/// The examples that the program carries, in the order of their names.
std::vector<std::string> exampleNames();

/// Writes an example's study file and what its solver reads, which run as they are, and prints the paths.
/// \param folder   where to; made when it is missing, with those above it
/// \param example  one of exampleNames(); "" for the default one
/// \return one of ExitCode. When a file exists already or cannot be written, nothing is left of what was made.
int initCommand(const std::string &folder, const std::string &example, const Console &console);

} // namespace Workbench
