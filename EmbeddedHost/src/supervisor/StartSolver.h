#pragma once

#include "EmbeddedHost/src/supervisor/RunRequest.h"

#include <sys/types.h>

// Starts the solver of a request in a process group of its own, with nothing open but its three standard streams.
// \return its number; 0 when it could not be started, with errno set
pid_t startSolver(const RunRequest &request);
