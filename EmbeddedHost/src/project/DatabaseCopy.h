#pragma once

#include "EmbeddedHost/src/project/Database.h"

namespace EmbeddedHost {

/// The name of a database that is only in memory.
constexpr const char *kInMemory = ":memory:";

/// Makes one database the copy of another at one moment, whatever others save meanwhile; everything that it held is
/// replaced. A copy in a file is on the disk afterwards.
/// \throws DatabaseError
void copyDatabase(const Database &from, const Database &to);

} // namespace EmbeddedHost
