#pragma once

#include <string>
#include <vector>

namespace FaultTests {

/// What the log of a session says of one row that was reported as solved.
struct SolvedRow {
  std::string name;
  std::string problem; ///< what was not on the disk in time; "" when all was
};

/// Looks at every row: when its solver was started its begin had to be committed; when it was reported, its result
/// files, all their folders up to the project's, and the database had to be synced, in that order, and the journal to
/// be gone for good.
/// \param log     of strace -y, without the solvers' own calls
/// \param folder  of the project
std::vector<SolvedRow> solvedRows(const std::string &log, const std::string &folder);

} // namespace FaultTests
