#pragma once

#include "Workbench/Console.h"
#include "Workbench/LookCommands.h"

#include <string>

namespace Workbench {

/// \name Commands that bring a study in and out
/// None of them runs a solver. `project` names a project, or the study file that it belongs to. Each answers one of
/// ExitCode.
/// @{

/// Writes the matrix: the leading columns row, name, status and reason, then inputs, outputs and cost, a row of units
/// under the titles, every number in its shortest exact form, nothing for what is missing.
/// \param file  a new file; "" or "-" for the console's results. One that exists is replaced only after asking
int exportCommand(const std::string &project, OutputFormat format, const std::string &file,
                  const Console &console);

/// Takes rows from a table that export wrote, or from any with a line of titles: rows are found by name, else by their
/// inputs; those that are new are added, inputs that differ are set. Results are not taken: only a run makes them. A
/// table with anything wrong in it changes nothing, and every place is named.
/// \param file  CSV, or JSON when its name ends in ".json"
int importCommand(const std::string &project, const std::string &file, const Console &console);

/// Copies the project with its results into a new file; safe while another program solves it.
int backupCommand(const std::string &project, const std::string &file, const Console &console);

/// Checks everything about a project and says how to mend what is wrong.
int doctorCommand(const std::string &project, const Console &console);
/// @}

} // namespace Workbench
