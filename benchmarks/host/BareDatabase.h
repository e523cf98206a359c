#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>

namespace HostBenchmark {

struct CloseDatabase {
  void operator()(sqlite3 *database) const { sqlite3_close(database); }
};
struct FinalizeStatement {
  void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using BareStatement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

/// The database library with nothing around it: the floor of what saving and opening can cost.
class BareDatabase {
public:
  /// \throws std::runtime_error  as do all operations
  BareDatabase(const std::string &file, bool isReadOnly);

  void execute(const char *sql);
  BareStatement prepare(const char *sql);
  /// Steps to a row. \return whether there is one
  bool step(sqlite3_stmt &statement);

private:
  void check(bool isFine) const;

  std::unique_ptr<sqlite3, CloseDatabase> m_database;
};

/// Checks a project file and reads every column of the rows that make up its model.
/// \return a sum over them, so that nothing is left out
std::uint64_t readBare(const std::string &file);

/// Writes the row of one value of the last version again and again, each time in a transaction of its own.
class BareSave {
public:
  /// \param synchronous  the pragma's value
  BareSave(const std::string &file, const char *synchronous);
  void save(double value);

private:
  BareDatabase m_database;
  BareStatement m_begin;
  BareStatement m_put;
  BareStatement m_commit;
};

} // namespace HostBenchmark
