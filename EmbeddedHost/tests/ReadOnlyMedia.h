#pragma once

#include <map>
#include <string>

namespace EmbeddedHost {

/// Makes a project with values, versions and a run. \return its file
std::string makeProjectToRead(const std::string &folder);
/// Kills a process in the middle of a change of the project.
void interruptAChangeOf(const std::string &file);
/// Reads the project and tries to write it; nothing can be written where it lies.
/// \return what was read and what was refused, "<file>" for the file's name
std::string reportOfReading(const std::string &file);
/// What that has to answer for the whole project, and for one whose change was interrupted.
/// \param reason  why nothing can be written, as the system says it
std::string wholeReport(const std::string &reason);
std::string interruptedReport(const std::string &reason);
/// The content of every file below a folder.
std::map<std::string, std::string> everythingIn(const std::string &folder);

} // namespace EmbeddedHost
