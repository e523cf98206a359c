#pragma once

#include "EmbeddedHost/SolverProcess.h"
#include "EmbeddedHost/src/solve/FileDescriptor.h"

#include <string>

namespace EmbeddedHost {

// What a supervisor is to run, as a file in memory. None with a problem when it cannot be made.
FileDescriptor makeSolverRequest(const SolverCommand &command, std::string &problem);

} // namespace EmbeddedHost
