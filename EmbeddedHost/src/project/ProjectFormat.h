#pragma once

#include "EmbeddedHost/ModelSchema.h"
#include "EmbeddedHost/RunRecord.h"
#include "EmbeddedHost/src/model/Value.h"
#include "EmbeddedHost/src/project/Database.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace EmbeddedHost {

class Model;

/// Marks a file as a project of this program.
constexpr std::int64_t kApplicationId = 0x4F537479;
/// The present layout of the tables. Files of older ones are brought to it, see Migrations.h.
constexpr std::int64_t kFormatVersion = 2;
/// The oldest version of the program that can read the present format. Every file says it, so that an older program can
/// name what it takes.
constexpr const char *kNeededProgram = "0.1";
/// Stands for the version in rows of values that belong to the project as a whole.
constexpr std::int64_t kProjectLevel = 0;

/// Makes the tables in an empty database, in a transaction of the caller.
void createTables(Database &database);
/// Notes which version of the program can read the file.
void putNeededProgram(Database &database);

/// The numbers that stand for texts (paths and units) in rows of values.
class TextTable {
public:
  explicit TextTable(Database &database);
  /// The number of a text, which gets one in the running transaction when it has none.
  std::int64_t number(const std::string &text);
  /// After a transaction was undone: what was added may not be there.
  void forget();

private:
  void load();

  Database &m_database;
  bool m_isLoaded = false;
  std::unordered_map<std::string, std::int64_t> m_numbers;
  std::int64_t m_next = 1;
};

/// A value in the two columns of a row. The member says how to read them.
void bindValue(Statement &statement, int column, const Value &value, TextTable &texts);

/// Texts one after the other, each with its length.
std::string packTexts(const std::vector<std::string> &texts);
/// Empty when the bytes are no packed texts.
std::vector<std::string> unpackTexts(std::string_view bytes);

void bindRun(Statement &statement, std::int64_t version, const RunRecord &record);
/// Reads the columns of a run after its version.
RunRecord readRun(const Statement &statement, int column);

/// The statement that bindRun() fills in.
constexpr const char *kPutRun = "INSERT OR REPLACE INTO run VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)";
constexpr const char *kPutValue = "INSERT OR REPLACE INTO value VALUES (?, ?, ?, ?, ?)";

} // namespace EmbeddedHost
