#pragma once

#include "Workbench/Console.h"
#include "Workbench/MatrixSelection.h"
#include "Workbench/OutputFormat.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Workbench {

struct ShowOptions {
  std::string project; ///< a project, or the study file that it belongs to
  OutputFormat format = OutputFormat::Table;
  MatrixSelection selection;
  Differences differences = Differences::Percent;
};

/// \name Commands that look at a project and change nothing
/// None of them starts a process, and all of them work while another program solves the project. Each answers one of
/// ExitCode.
/// @{

/// Prints the matrix.
int showCommand(const ShowOptions &options, const Console &console);
/// Prints the best row: its inputs, outputs and cost with the differences to the baseline.
int bestCommand(const std::string &project, OutputFormat format, const Console &console);
/// Prints how many rows are what, failures by reason, the cost and the target.
int statusCommand(const std::string &project, OutputFormat format, const Console &console);
/// Prints the tree of versions.
int versionsCommand(const std::string &project, const Console &console);
/// Prints the record of a row's last run, with the end of what the solver printed.
/// \param row  its name, or its number
int logCommand(const std::string &project, const std::string &row, const Console &console);
/// Prints the folder that holds the files of a row's last run.
int folderCommand(const std::string &project, const std::string &row, const Console &console);
/// @}

} // namespace Workbench
