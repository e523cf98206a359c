#pragma once

#include <string>

namespace EmbeddedHost {

/// Finds out on a copy whether a sound project comes out when the journal of an interrupted save beside it is played
/// back: the library plays back what it can of a damaged journal and removes it, and with it the only way back.
/// Without a journal there is nothing to find out. The caller holds the project's lock, so the journal is nobody's
/// who still writes. Where no copy can be made nothing is said.
/// \throws DatabaseError  why the project is damaged
void checkRecovery(const std::string &file);

} // namespace EmbeddedHost
