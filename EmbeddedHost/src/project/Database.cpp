#include "EmbeddedHost/src/project/Database.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

namespace EmbeddedHost {

namespace {

// Nobody writes but for a moment.
constexpr std::chrono::milliseconds kLongestWaitToRead{5000};
constexpr std::chrono::milliseconds kLongestPause{20};

// What the library says of a locked file leaves open who is meant.
std::string messageOf(sqlite3 *database, int code) {
  return (code & 0xFF) == SQLITE_BUSY ? "another program keeps it locked" : sqlite3_errmsg(database);
}

// As the database wants names of files with options: percent signs for what has a meaning of its own.
std::string fileUri(const std::string &file, const char *options) {
  std::string uri = "file:";
  for (const char character : file) {
    if (character == '%' || character == '?' || character == '#') {
      constexpr std::string_view kHexDigits = "0123456789ABCDEF";
      const auto byte = static_cast<unsigned char>(character);
      uri += '%';
      uri += kHexDigits[byte >> 4U];
      uri += kHexDigits[byte & 15U];
    } else {
      uri += character;
    }
  }
  return uri + options;
}

int openFlags(Database::Access access) {
  switch (access) {
  case Database::Access::ReadOnly:
  case Database::Access::Header:
    return SQLITE_OPEN_READONLY;
  case Database::Access::ReadWrite:
    return SQLITE_OPEN_READWRITE;
  case Database::Access::Create:
    break;
  }
  return SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
}

} // namespace

DatabaseError::DatabaseError(int code, const std::string &message)
    : std::runtime_error(message), m_code(code) {}

Statement::Statement(sqlite3 *database, std::string_view sql) : m_database(database) {
  sqlite3_stmt *statement = nullptr;
  const int code =
      sqlite3_prepare_v2(database, sql.data(), static_cast<int>(sql.size()), &statement, nullptr);
  m_statement.reset(statement);
  check(code);
}

void Statement::fail(int code) const {
  throw DatabaseError(code, messageOf(m_database, code));
}

void Statement::check(int code) const {
  if (code != SQLITE_OK) {
    fail(code);
  }
}

Statement &Statement::bind(int parameter, std::int64_t value) {
  check(sqlite3_bind_int64(m_statement.get(), parameter, value));
  return *this;
}

Statement &Statement::bind(int parameter, double value) {
  if (std::isnan(value)) {
    return bindBytes(parameter, bytesOf(value));
  }
  check(sqlite3_bind_double(m_statement.get(), parameter, value));
  return *this;
}

Statement &Statement::bindText(int parameter, std::string_view value) {
  check(sqlite3_bind_text64(m_statement.get(), parameter, value.data() == nullptr ? "" : value.data(),
                            value.size(), SQLITE_TRANSIENT, SQLITE_UTF8));
  return *this;
}

Statement &Statement::bindBytes(int parameter, std::string_view value) {
  check(sqlite3_bind_blob64(m_statement.get(), parameter, value.data() == nullptr ? "" : value.data(),
                            value.size(), SQLITE_TRANSIENT));
  return *this;
}

Statement &Statement::bindNull(int parameter) {
  check(sqlite3_bind_null(m_statement.get(), parameter));
  return *this;
}

bool Statement::step() {
  const int code = sqlite3_step(m_statement.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) {
    fail(code);
  }
  return code == SQLITE_ROW;
}

void Statement::run() {
  step();
  reset();
}

void Statement::reset() {
  check(sqlite3_reset(m_statement.get()));
}

int Statement::type(int column) const {
  return sqlite3_column_type(m_statement.get(), column);
}

std::int64_t Statement::integer(int column) const {
  return sqlite3_column_int64(m_statement.get(), column);
}

double Statement::real(int column) const {
  return type(column) == SQLITE_BLOB ? doubleOf(text(column))
                                     : sqlite3_column_double(m_statement.get(), column);
}

std::string_view Statement::text(int column) const {
  const void *bytes = sqlite3_column_blob(m_statement.get(), column);
  const int size = sqlite3_column_bytes(m_statement.get(), column);
  return bytes == nullptr
             ? std::string_view()
             : std::string_view(static_cast<const char *>(bytes), static_cast<std::size_t>(size));
}

int Database::waitForOthers(void *waiting, int attempts) {
  using std::chrono::steady_clock;
  Waiting &own = *static_cast<Waiting *>(waiting);
  if (attempts == 0) {
    own.since = steady_clock::now();
  }
  const std::chrono::milliseconds longest = own.isWriting ? own.longestToWrite : kLongestWaitToRead;
  const steady_clock::duration left = own.since + longest - steady_clock::now();
  if (left <= steady_clock::duration::zero()) {
    return 0;
  }
  const std::chrono::milliseconds pause(attempts + 1);
  std::this_thread::sleep_for(std::min<steady_clock::duration>(left, std::min(pause, kLongestPause)));
  return 1;
}

void Database::setLongestWaitToWrite(std::chrono::milliseconds time) {
  m_waiting->longestToWrite = time;
}

Database::Database(const std::string &file, Access access) : m_waiting(std::make_unique<Waiting>()) {
  sqlite3 *database = nullptr;
  const std::string uri = fileUri(file, access == Access::Header ? "?immutable=1" : "");
  // A connection belongs to one thread, and without a lock for each value that is read, reading is faster by a tenth.
  const int flags = openFlags(access) | SQLITE_OPEN_URI | SQLITE_OPEN_NOMUTEX;
  const int code = sqlite3_open_v2(uri.c_str(), &database, flags, nullptr);
  m_database.reset(database);
  if (code != SQLITE_OK) {
    throw DatabaseError(code, database == nullptr ? "out of memory" : sqlite3_errmsg(database));
  }
  sqlite3_extended_result_codes(database, 1);
  sqlite3_busy_handler(database, &Database::waitForOthers, m_waiting.get());
  // Nothing that a file brings along is carried out.
  sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

bool Database::isReadOnly() const {
  return sqlite3_db_readonly(m_database.get(), "main") != 0;
}

bool Database::readBytes(unsigned char *bytes, int count, std::int64_t offset) {
  sqlite3_file *file = nullptr;
  const int code = sqlite3_file_control(m_database.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return code == SQLITE_OK && file != nullptr && file->pMethods != nullptr &&
         file->pMethods->xRead(file, bytes, count, offset) == SQLITE_OK;
}

void Database::execute(const char *sql) {
  const int code = sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    throw DatabaseError(code, messageOf(m_database.get(), code));
  }
}

std::int64_t Database::number(std::string_view sql) {
  Statement statement = prepare(sql);
  return statement.step() ? statement.integer(0) : 0;
}

Transaction::Transaction(Database &database) : m_database(database) {
  m_database.m_waiting->isWriting = true;
  try {
    m_database.execute("BEGIN IMMEDIATE");
  } catch (const DatabaseError &) {
    m_database.m_waiting->isWriting = false;
    throw;
  }
}

Transaction::~Transaction() {
  if (m_isOpen) {
    try {
      m_database.execute("ROLLBACK");
    } catch (const DatabaseError &) {
      // The database has undone it already, or does so when the file is opened next.
    }
  }
  m_database.m_waiting->isWriting = false;
}

void Transaction::commit() {
  m_database.execute("COMMIT");
  m_isOpen = false;
}

ReadTransaction::ReadTransaction(Database &database) : m_database(database) {
  m_database.execute("BEGIN");
}

ReadTransaction::~ReadTransaction() {
  try {
    m_database.execute("COMMIT");
  } catch (const DatabaseError &) {
    // After a failed read the database may have ended it itself.
  }
}

std::string bytesOf(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  std::string bytes(sizeof bits, '\0');
  for (char &byte : bytes) {
    byte = static_cast<char>(bits & 0xFFU);
    bits >>= 8U;
  }
  return bytes;
}

double doubleOf(std::string_view bytes) {
  double value = std::numeric_limits<double>::quiet_NaN();
  if (bytes.size() == sizeof value) {
    std::uint64_t bits = 0;
    for (std::size_t position = bytes.size(); position-- > 0;) {
      bits = (bits << 8U) | static_cast<unsigned char>(bytes[position]);
    }
    std::memcpy(&value, &bits, sizeof value);
  }
  return value;
}

} // namespace EmbeddedHost
