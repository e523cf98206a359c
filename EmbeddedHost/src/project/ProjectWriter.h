#pragma once

#include "EmbeddedHost/src/project/ProjectFormat.h"

namespace EmbeddedHost {

class Model;
class Version;
struct Slot;

/// Writes a model into the tables of a project, in a transaction of the caller. One object serves one transaction.
class ProjectWriter {
public:
  ProjectWriter(Database &database, TextTable &texts);

  /// Everything, into empty tables.
  void writeAll(const Model &model);
  /// Whether anything has changed since the last save.
  bool hasChanges(const Model &model);
  /// What has changed since the last save, apart from the types.
  void writeChanges(const Model &model);
  /// The types, in the place of those that are there.
  void replaceSchema(const ModelSchema &schema);
  void putRun(std::int64_t version, const RunRecord &record);
  /// \param version  its number, or kProjectLevel
  void putValue(std::int64_t version, const Slot &slot, const Value &value);

private:
  void putSchema(const ModelSchema &schema);
  void putMembers(const std::string &type, const std::vector<MemberType> &members, std::int64_t parent);
  void putEntity(const ModelEntity &entity);
  void putVersion(const Version &version);
  void putProperties(const Model &model);
  bool isSaved(const char *key, std::int64_t value);
  void removeVersions(const Model &model);
  void removeEntities(const Model &model);

  Database &m_database;
  TextTable &m_texts;
  Statement m_putValue;
  Statement m_putVersion;
  Statement m_putEntity;
  std::int64_t m_members = 0;
};

} // namespace EmbeddedHost
