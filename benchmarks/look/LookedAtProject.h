#pragma once

#include <cstddef>
#include <string>

namespace LookBenchmark {

/// A project of solved rows, twenty inputs and ten outputs each, and a database of one table with the same numbers.
/// Both are made by the programs that are measured: the project by `optstudy run`, whose formulas need no solver, the
/// table by the import of what `optstudy export` writes.
class LookedAtProject {
public:
  /// \param folder  an empty one on the disk, for the files that are read when it is measured
  /// \param rows    with the baseline
  /// \throws std::runtime_error, std::system_error  a program is missing or fails
  LookedAtProject(const std::string &folder, std::size_t rows);

  const std::string &projectFile() const { return m_project; }
  const std::string &databaseFile() const { return m_database; }
  std::size_t rows() const { return m_rows; }

private:
  std::string m_project;
  std::string m_database;
  std::size_t m_rows;
};

/// The program that is measured.
std::string optstudyProgram();
/// The shell of the database library, for the same work on a bare table.
std::string sqliteShell();

} // namespace LookBenchmark
