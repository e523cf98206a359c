#pragma once

#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// A database operation failed. Does not leave the project's own operations, which report it as text.
class DatabaseError : public std::runtime_error {
public:
  DatabaseError(int code, const std::string &message);
  /// The database's extended result code.
  int code() const { return m_code; }

private:
  int m_code;
};

/// One prepared statement.
class Statement {
public:
  Statement(sqlite3 *database, std::string_view sql);

  /// \name Parameters, from 1
  /// @{
  Statement &bind(int parameter, std::int64_t value);
  /// Any double; one that is no number is stored as its eight bytes, because the database has no such value.
  Statement &bind(int parameter, double value);
  Statement &bindText(int parameter, std::string_view value);
  Statement &bindBytes(int parameter, std::string_view value);
  Statement &bindNull(int parameter);
  /// @}

  /// Goes to the next row. \return whether there is one
  bool step();
  /// Carries out a statement without rows, and makes it ready for other parameters.
  void run();
  void reset();

  /// \name Columns of the row, from 0
  /// @{
  int type(int column) const;
  bool isNull(int column) const { return type(column) == SQLITE_NULL; }
  std::int64_t integer(int column) const;
  double real(int column) const;
  /// Text or bytes; valid until the next step.
  std::string_view text(int column) const;
  /// @}

private:
  struct Finalize {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
  };

  [[noreturn]] void fail(int code) const;
  void check(int code) const;

  sqlite3 *m_database;
  std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
};

/// What is written has to wait for everybody who reads, and whoever opens a large project does so for its whole reading.
/// Giving up too early would lose the result of a finished solve.
constexpr std::chrono::milliseconds kLongestWaitToWrite{60000};

/// One connection to a database file.
class Database {
public:
  enum class Access { ReadOnly, ReadWrite, Create, Header };

  /// \param access  Header looks at the file without locks and journals, for a first glance that changes nothing
  /// \throws DatabaseError
  Database(const std::string &file, Access access);

  /// Whether the file can only be read, whatever was asked for.
  bool isReadOnly() const;
  /// Reads bytes of the file as they are. \return whether there are so many
  bool readBytes(unsigned char *bytes, int count, std::int64_t offset);
  /// How long a Transaction waits for other programs that hold a lock before it fails; it goes on as soon as they let
  /// go. Whoever reads waits for five seconds, because others write but for a moment.
  void setLongestWaitToWrite(std::chrono::milliseconds time);
  void execute(const char *sql);
  Statement prepare(std::string_view sql) { return {m_database.get(), sql}; }
  /// The number that a statement without parameters gives, 0 for none.
  std::int64_t number(std::string_view sql);
  /// For what the database library offers only by connection. Not to be closed.
  sqlite3 *handle() const { return m_database.get(); }

private:
  struct Close {
    void operator()(sqlite3 *database) const { sqlite3_close_v2(database); }
  };

  friend class Transaction;
  struct Waiting {
    std::chrono::milliseconds longestToWrite = kLongestWaitToWrite;
    bool isWriting = false;
    std::chrono::steady_clock::time_point since;
  };
  // For the database library: 0 when it is to give up.
  static int waitForOthers(void *waiting, int attempts);

  std::unique_ptr<Waiting> m_waiting;
  std::unique_ptr<sqlite3, Close> m_database;
};

/// A transaction that is undone unless it is committed.
class Transaction {
public:
  /// Begins at once, so that nothing can come between it and its commit.
  explicit Transaction(Database &database);
  Transaction(const Transaction &) = delete;
  Transaction &operator=(const Transaction &) = delete;
  ~Transaction();

  void commit();

private:
  Database &m_database;
  bool m_isOpen = true;
};

/// Everything that is read while it lives is as it was at the first reading. Nothing can be written meanwhile.
class ReadTransaction {
public:
  explicit ReadTransaction(Database &database);
  ReadTransaction(const ReadTransaction &) = delete;
  ReadTransaction &operator=(const ReadTransaction &) = delete;
  ~ReadTransaction();

private:
  Database &m_database;
};

/// Which bytes stand for a double that is no number, and back.
std::string bytesOf(double value);
double doubleOf(std::string_view bytes);

} // namespace EmbeddedHost
