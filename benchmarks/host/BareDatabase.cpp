#include "benchmarks/host/BareDatabase.h"

#include <cstddef>
#include <initializer_list>
#include <stdexcept>

namespace HostBenchmark {

BareDatabase::BareDatabase(const std::string &file, bool isReadOnly) {
  sqlite3 *database = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &database,
                                   isReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE, nullptr);
  m_database.reset(database);
  check(code == SQLITE_OK);
}

void BareDatabase::check(bool isFine) const {
  if (!isFine) {
    throw std::runtime_error(sqlite3_errmsg(m_database.get()));
  }
}

void BareDatabase::execute(const char *sql) {
  check(sqlite3_exec(m_database.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK);
}

BareStatement BareDatabase::prepare(const char *sql) {
  sqlite3_stmt *statement = nullptr;
  check(sqlite3_prepare_v2(m_database.get(), sql, -1, &statement, nullptr) == SQLITE_OK);
  return BareStatement(statement);
}

bool BareDatabase::step(sqlite3_stmt &statement) {
  const int code = sqlite3_step(&statement);
  check(code == SQLITE_ROW || code == SQLITE_DONE);
  return code == SQLITE_ROW;
}

namespace {

std::uint64_t readColumn(sqlite3_stmt &row, int column) {
  switch (sqlite3_column_type(&row, column)) {
  case SQLITE_INTEGER:
    return static_cast<std::uint64_t>(sqlite3_column_int64(&row, column));
  case SQLITE_FLOAT:
    return sqlite3_column_double(&row, column) > 0.0 ? 1 : 0;
  case SQLITE_NULL:
    return 0;
  default:
    break;
  }
  const auto *bytes = static_cast<const unsigned char *>(sqlite3_column_blob(&row, column));
  const int size = sqlite3_column_bytes(&row, column);
  return size == 0 ? 0 : bytes[0] + static_cast<std::uint64_t>(size);
}

} // namespace

std::uint64_t readBare(const std::string &file) {
  BareDatabase database(file, true);
  database.execute("BEGIN");
  const BareStatement check = database.prepare("PRAGMA quick_check(1)");
  std::uint64_t sum = database.step(*check) ? readColumn(*check, 0) : 0;
  for (const char *sql :
       {"SELECT number, text FROM text",
        "SELECT number, type, name, project_level FROM entity ORDER BY number",
        "SELECT number, folder, previous, label, description, author, comment, study_type, case_flags, "
        "removed, "
        "read_only, edited, family, rank FROM version ORDER BY number",
        "SELECT version, entity, path, value, extra FROM value ORDER BY version, entity, path"}) {
    const BareStatement rows = database.prepare(sql);
    const int columns = sqlite3_column_count(rows.get());
    while (database.step(*rows)) {
      for (int column = 0; column < columns; ++column) {
        sum += readColumn(*rows, column);
      }
    }
  }
  return sum;
}

BareSave::BareSave(const std::string &file, const char *synchronous) : m_database(file, false) {
  m_database.execute((std::string("PRAGMA synchronous = ") + synchronous).c_str());
  m_begin = m_database.prepare("BEGIN IMMEDIATE");
  m_commit = m_database.prepare("COMMIT");
  const BareStatement row = m_database.prepare(
      "SELECT version, entity, path, extra FROM value ORDER BY version DESC, entity, path LIMIT 1");
  if (!m_database.step(*row)) {
    throw std::runtime_error("There is no value to be saved");
  }
  m_put = m_database.prepare("INSERT OR REPLACE INTO value VALUES (?1, ?2, ?3, ?5, ?4)");
  for (int column = 0; column < 4; ++column) {
    sqlite3_bind_int64(m_put.get(), column + 1, sqlite3_column_int64(row.get(), column));
  }
}

void BareSave::save(double value) {
  sqlite3_bind_double(m_put.get(), 5, value);
  for (sqlite3_stmt *statement : {m_begin.get(), m_put.get(), m_commit.get()}) {
    m_database.step(*statement);
    sqlite3_reset(statement);
  }
}

} // namespace HostBenchmark
