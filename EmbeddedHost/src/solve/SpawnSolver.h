#pragma once

#include "EmbeddedHost/SolverProcess.h"

namespace EmbeddedHost {

// Starts the command's program in a process group of its own, with its standard streams at the given
// descriptors and nothing else of ours open. Returns 0, or the number of the system's error.
int spawnSolver(const SolverCommand &command, int output, int error, int &pid);

} // namespace EmbeddedHost
