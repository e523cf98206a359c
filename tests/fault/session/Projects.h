#pragma once

#include "EmbeddedHost/Project.h"

#include <memory>
#include <string>

namespace FaultTests {

/// \name The projects of a session's folder
/// @{
std::string boxProject(const std::string &folder);  ///< the one that is worked on
std::string keptProject(const std::string &folder); ///< its backup
std::string oldProject(const std::string &folder);  ///< one of the first format
/// @}

/// \throws StepFailed
std::unique_ptr<EmbeddedHost::Project> openProject(const std::string &file, EmbeddedHost::OpenMode mode);

/// Makes a project file from the statements that were dumped from one.
/// \throws StepFailed
void buildProject(const std::string &file, const std::string &statementsFile);

} // namespace FaultTests
