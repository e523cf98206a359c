#pragma once

#include <string>

namespace EmbeddedHost {

// Starts a supervisor with the given end of a socket, in a session of its own and with nothing else of ours open.
// Costs the same however large this process is. Returns 0, or the number of the system's error.
int spawnSupervisor(const std::string &program, int socket, int &process);

} // namespace EmbeddedHost
