#pragma once

#include "EmbeddedHost/src/project/Database.h"

#include <string>

namespace EmbeddedHost {

/// Brings a project of an older format to the present one, if it is of an older one. The steps are carried out on a copy
/// that takes the project's place when it was read without a complaint and is on the disk; the project as it was stays
/// beside it as "<file>.format-<number>". Killed at any instant it leaves the one or the other project. The caller
/// holds the project's lock and has no connection to it.
/// \return false with one sentence in \p problem; the project is as it was then
/// \throws DatabaseError
bool upgradeProject(const std::string &file, std::string &problem);

/// The same for somebody who only reads: a copy in memory.
/// \throws DatabaseError
Database upgradedCopy(const Database &project, std::int64_t format);

} // namespace EmbeddedHost
