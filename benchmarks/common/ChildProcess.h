#pragma once

#include <string>
#include <vector>

namespace Benchmarking {

/// Runs a program to its end.
/// \param command  its file and its arguments
/// \return         what it wrote to standard output
/// \throws std::runtime_error, std::system_error  it cannot be run, or ends otherwise than with 0
std::string outputOf(const std::vector<std::string> &command);

} // namespace Benchmarking
