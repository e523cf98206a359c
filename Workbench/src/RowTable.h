#pragma once

#include "EmbeddedHost/TemplateFile.h"
#include "Workbench/EditCommands.h"
#include "Workbench/ProjectSession.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Workbench {

// A row of a table that somebody brings in.
struct TableRow {
  std::string name; // "" when the table has none for it
  TypedValues values;
  std::size_t line = 0;
};

// Reads the rows of a table for a study: a line of titles, an optional line of units, a line for each row. Titles are
// names or first attributes of inputs; "name" gives names; the leading columns, outputs and cost of an exported table
// are passed over, any other title is an error.
// \return empty when anything is wrong; every place is added to `problems`
std::optional<std::vector<TableRow>> readRowTable(const ProjectSession &session, const std::string &file,
                                                  const std::string &text,
                                                  std::vector<EmbeddedHost::FileProblem> &problems);

// The same for the JSON that export writes.
std::optional<std::vector<TableRow>> readRowJson(const ProjectSession &session, const std::string &file,
                                                 const std::string &text,
                                                 std::vector<EmbeddedHost::FileProblem> &problems);

} // namespace Workbench
