#pragma once

#include <cstddef>
#include <string>

namespace SolveBenchmark {

/// A study in a folder of its own, whose rows are all to be solved.
class SolvedStudy {
public:
  /// \param folder  where its folder is made
  /// \param rows    the baseline included
  SolvedStudy(const std::string &folder, const std::string &solver, std::size_t rows);

  /// Creates the project and solves every row.
  /// \param parallel  rows at a time
  /// \return          seconds that solving took, without those for creating and opening
  /// \throws std::runtime_error  something failed, or a row has not been solved
  double solve(std::size_t parallel) const;

  /// The project's file, when it has been solved.
  std::string projectFile() const;

private:
  std::string m_file;
  std::string m_solver;
  std::size_t m_rows;
};

} // namespace SolveBenchmark
