#pragma once

#include "EmbeddedHost/Project.h"
#include "Workbench/Console.h"
#include "Workbench/ProjectSession.h"

#include <functional>
#include <optional>
#include <string>

namespace Workbench {

// The project that an argument names: a project file, or a study file, which has its project beside it.
std::string projectNamed(const std::string &argument);

// Opens a project and does something with it. \return what `action` answers, or why it could not be opened as a code
int withProject(const std::string &argument, EmbeddedHost::OpenMode mode, const Console &console,
                const std::function<int(ProjectSession &)> &action);

// As withProject(), for a project that must have a study.
int withStudy(const std::string &argument, EmbeddedHost::OpenMode mode, const Console &console,
              const std::function<int(ProjectSession &)> &action);

// The row of that name or, where no row has that name, of that number. Reports when there is none.
std::optional<std::size_t> rowNamed(const ProjectSession &session, const std::string &row,
                                    const Console &console);

} // namespace Workbench
