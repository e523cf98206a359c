#include "EmbeddedHost/src/project/ProjectFormat.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/ModelEntity.h"
#include "EmbeddedHost/src/model/NumberText.h"

#include <algorithm>

namespace EmbeddedHost {

namespace {

// Columns have no declared type, so that every value comes back as it went in: a declared one would turn -0.0
// into 0.0 and "1" into 1.
constexpr const char *kTables = R"(
CREATE TABLE property (key PRIMARY KEY, value) WITHOUT ROWID;
CREATE TABLE type (label PRIMARY KEY, position) WITHOUT ROWID;
CREATE TABLE member (number INTEGER PRIMARY KEY, type, parent, label, kind, standard_unit, display_unit,
                     minimum, maximum, default_text, target_type, flags, options);
CREATE TABLE entity (number INTEGER PRIMARY KEY, type, name, project_level);
CREATE TABLE version (number INTEGER PRIMARY KEY, folder, previous, label, description, author, comment,
                      study_type, case_flags, removed, read_only, edited, family, rank);
CREATE TABLE text (number INTEGER PRIMARY KEY, text);
CREATE TABLE value (version, entity, path, value, extra, PRIMARY KEY (version, entity, path)) WITHOUT ROWID;
CREATE TABLE run (version INTEGER PRIMARY KEY, status, reason, keys, started_at, duration, command, exit_code,
                  solver_version, log_tail);
CREATE TABLE removed_folder (folder PRIMARY KEY) WITHOUT ROWID;
)";

struct ValueBinder {
  Statement &statement;
  int column;
  TextTable &texts;

  void operator()(std::monostate /*none*/) const { statement.bindNull(column).bindNull(column + 1); }
  void operator()(const RealValue &real) const {
    statement.bind(column, real.number);
    if (real.unit == nullptr) {
      statement.bindNull(column + 1);
    } else {
      statement.bind(column + 1, texts.number(real.unit->text()));
    }
  }
  void operator()(std::int64_t number) const { statement.bind(column, number).bindNull(column + 1); }
  void operator()(const TextValue &text) const {
    statement.bindText(column, textOf(text)).bindNull(column + 1);
  }
  void operator()(const EntityModel::TypeRef &type) const {
    statement.bindText(column, type.getLabel()).bindNull(column + 1);
  }
  void operator()(const LinkValue &link) const {
    statement.bind(column, link.entity->number()).bind(column + 1, std::int64_t{link.isOwned ? 1 : 0});
  }
  void operator()(const std::shared_ptr<const AttributeTarget> &target) const {
    statement.bindText(column, target->path.toString('.')).bind(column + 1, target->entity->number());
  }
  void operator()(const std::shared_ptr<ListContent> &list) const {
    // A decimal number for each element, with a "+" where it is owned.
    std::string elements;
    if (list != nullptr) {
      for (const LinkValue &element : list->elements) {
        elements += numberText(element.entity->number()) + (element.isOwned ? "+" : "-");
      }
    }
    statement.bindText(column, elements).bindNull(column + 1);
  }
};

} // namespace

void createTables(Database &database) {
  database.execute(kTables);
  putNeededProgram(database);
  database.execute(("PRAGMA application_id = " + std::to_string(kApplicationId)).c_str());
  database.execute(("PRAGMA user_version = " + std::to_string(kFormatVersion)).c_str());
}

void putNeededProgram(Database &database) {
  database.prepare("INSERT OR REPLACE INTO property VALUES ('needs', ?)").bindText(1, kNeededProgram).run();
}

TextTable::TextTable(Database &database) : m_database(database) {}

void TextTable::load() {
  Statement rows = m_database.prepare("SELECT number, text FROM text");
  while (rows.step()) {
    m_numbers.emplace(rows.text(1), rows.integer(0));
    m_next = std::max(m_next, rows.integer(0) + 1);
  }
  m_isLoaded = true;
}

std::int64_t TextTable::number(const std::string &text) {
  if (!m_isLoaded) {
    load();
  }
  const auto known = m_numbers.find(text);
  if (known != m_numbers.end()) {
    return known->second;
  }
  m_database.prepare("INSERT INTO text VALUES (?, ?)").bind(1, m_next).bindText(2, text).run();
  m_numbers.emplace(text, m_next);
  return m_next++;
}

void TextTable::forget() {
  m_isLoaded = false;
  m_numbers.clear();
}

void bindValue(Statement &statement, int column, const Value &value, TextTable &texts) {
  std::visit(ValueBinder{statement, column, texts}, value);
}

std::string packTexts(const std::vector<std::string> &texts) {
  std::string packed;
  for (const std::string &text : texts) {
    packed += std::to_string(text.size()) + ":" + text;
  }
  return packed;
}

std::vector<std::string> unpackTexts(std::string_view bytes) {
  std::vector<std::string> texts;
  while (!bytes.empty()) {
    const std::size_t colon = bytes.find(':');
    const std::optional<std::int64_t> size =
        colon == std::string_view::npos ? std::nullopt : readInteger(bytes.substr(0, colon));
    if (!size.has_value() || *size < 0 || static_cast<std::uint64_t>(*size) > bytes.size() - colon - 1) {
      return {};
    }
    const auto length = static_cast<std::size_t>(*size);
    texts.emplace_back(bytes.substr(colon + 1, length));
    bytes.remove_prefix(colon + 1 + length);
  }
  return texts;
}

void bindRun(Statement &statement, std::int64_t version, const RunRecord &record) {
  statement.bind(1, version)
      .bind(2, std::int64_t{static_cast<int>(record.status)})
      .bindText(3, record.reason)
      .bindText(4, packTexts(record.keys))
      .bind(5, record.startedAt)
      .bind(6, record.durationSeconds)
      .bindText(7, packTexts(record.command));
  if (record.exitCode.has_value()) {
    statement.bind(8, std::int64_t{*record.exitCode});
  } else {
    statement.bindNull(8);
  }
  statement.bindText(9, record.solverVersion).bindText(10, record.logTail);
}

RunRecord readRun(const Statement &statement, int column) {
  RunRecord record;
  const std::int64_t status = statement.integer(column);
  if (status >= 0 && status <= static_cast<int>(RunStatus::Failed)) {
    record.status = static_cast<RunStatus>(status);
  }
  record.reason = statement.text(column + 1);
  record.keys = unpackTexts(statement.text(column + 2));
  record.startedAt = statement.integer(column + 3);
  record.durationSeconds = statement.real(column + 4);
  record.command = unpackTexts(statement.text(column + 5));
  if (!statement.isNull(column + 6)) {
    record.exitCode = static_cast<int>(statement.integer(column + 6));
  }
  record.solverVersion = statement.text(column + 7);
  record.logTail = statement.text(column + 8);
  return record;
}

} // namespace EmbeddedHost
