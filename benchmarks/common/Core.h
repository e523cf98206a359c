#pragma once

#include <optional>

namespace Benchmarking {

/// Confines the process to one core, and starts the program anew when that was not so from its beginning: a
/// library that counts the cores when it is loaded must see one, too.
/// \param wanted     the core; otherwise the last one that the process may use
/// \param arguments  main's
/// \return           the core
/// \throws std::system_error  the system refuses
int runOnOneCore(std::optional<int> wanted, char **arguments);

} // namespace Benchmarking
