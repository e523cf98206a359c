#pragma once

#include "EmbeddedHost/src/project/Database.h"

#include <cstdint>

namespace EmbeddedHost {

/// Brings the tables of an older format to the present one, step by step, in a transaction of the caller. Only ever
/// done to a copy.
/// \param format  from 1 to kFormatVersion
/// \throws DatabaseError
void migrate(Database &database, std::int64_t format);

} // namespace EmbeddedHost
