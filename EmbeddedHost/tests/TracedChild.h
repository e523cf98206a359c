#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace EmbeddedHost {

/// The system calls of a piece of work.
struct Trace {
  int result = -1; ///< what the work answered, -1 when it did not come to that
  std::vector<std::string> calls;

  /// Position of the first call at or after \p from that holds both texts; npos when there is none.
  std::size_t find(const std::string &call, const std::string &argument, std::size_t from = 0) const;
  std::size_t count(const std::string &call, const std::string &argument = "") const;
  /// All calls, one per line.
  std::string text() const;

  static constexpr std::size_t npos = static_cast<std::size_t>(-1);
};

/// Carries something out in a child process that is traced and, where the test is run by the superuser, belongs to
/// nobody; it is killed after twenty seconds.
/// \param options  of strace, such as {"-e", "inject=syncfs:error=EIO"}
Trace traced(const std::vector<std::string> &options, const std::function<int()> &work);

/// Gives a temporary folder, and what is in it, to the user of traced().
/// \throws std::invalid_argument  the folder is no direct member of the folder for temporary files
void handOver(const std::string &temporaryFolder);

} // namespace EmbeddedHost
