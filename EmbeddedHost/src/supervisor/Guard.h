#pragma once

#include <sys/types.h>

// Waits for the end of the worker and ends whatever it has left: a worker that is killed, too, leaves nothing behind.
// \return the worker's exit status, or 128 and the number of the signal that ended it
int guard(int socket, pid_t worker);
