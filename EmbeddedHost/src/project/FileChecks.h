#pragma once

#include <cstdint>
#include <string>

namespace EmbeddedHost {

/// \name What is looked at before the database library opens a file
/// The library believes what it finds beside a file. Each answers "" or one sentence that says what is wrong, and
/// leaves everything as it is.
/// @{

/// Whether there is a file under that name.
std::string checkFile(const std::string &file);
/// Whether the file says that it is a project of a known format, the present or an older one.
/// \throws DatabaseError
std::string checkHeader(const std::string &file);
/// Whether what lies beside a project can be its own: a journal may, when a program was interrupted while saving.
std::string checkBesideProject(const std::string &file);
/// Whether a new project can have that name: what a former one has left there would become part of it.
std::string checkBesideNewProject(const std::string &file);
/// @}

/// The format that the header of a project file names; 0 when the file is no project.
/// \throws DatabaseError
std::int64_t formatOf(const std::string &file);

} // namespace EmbeddedHost
