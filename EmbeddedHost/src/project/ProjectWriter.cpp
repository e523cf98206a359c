#include "EmbeddedHost/src/project/ProjectWriter.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/project/MemberFlags.h"

#include <algorithm>
#include <array>

namespace EmbeddedHost {

namespace {

void bindLimit(Statement &statement, int parameter, const std::optional<double> &limit) {
  if (limit.has_value()) {
    statement.bind(parameter, *limit);
  } else {
    statement.bindNull(parameter);
  }
}

std::int64_t flag(bool isSet) {
  return isSet ? 1 : 0;
}

struct Property {
  const char *key;
  std::int64_t value;
};

std::array<Property, 3> propertiesOf(const Model &model) {
  const Version *current = model.tree().current();
  return {{{"current_version", current == nullptr ? model.tree().root()->number() : current->number()},
           // So that the number of what was destroyed is never given to something else.
           {"next_version", model.tree().nextNumber()},
           {"next_entity", model.nextNumber()}}};
}

} // namespace

ProjectWriter::ProjectWriter(Database &database, TextTable &texts)
    : m_database(database), m_texts(texts), m_putValue(database.prepare(kPutValue)),
      m_putVersion(database.prepare(
          "INSERT OR REPLACE INTO version VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")),
      m_putEntity(database.prepare("INSERT OR REPLACE INTO entity VALUES (?, ?, ?, ?)")) {}

void ProjectWriter::putValue(std::int64_t version, const Slot &slot, const Value &value) {
  m_putValue.bind(1, version)
      .bind(2, slot.owner->number())
      .bind(3, m_texts.number(slot.member->path.toString('.')));
  bindValue(m_putValue, 4, value, m_texts);
  m_putValue.run();
}

void ProjectWriter::putRun(std::int64_t version, const RunRecord &record) {
  Statement statement = m_database.prepare(kPutRun);
  bindRun(statement, version, record);
  statement.run();
}

void ProjectWriter::putMembers(const std::string &type, const std::vector<MemberType> &members,
                               std::int64_t parent) {
  for (const MemberType &member : members) {
    const std::int64_t number = ++m_members;
    Statement row = m_database.prepare("INSERT INTO member VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, number).bindText(2, type).bind(3, parent).bindText(4, member.label);
    row.bind(5, std::int64_t{static_cast<int>(member.kind)});
    row.bindText(6, member.standardUnit).bindText(7, member.displayUnit);
    bindLimit(row, 8, member.minimum);
    bindLimit(row, 9, member.maximum);
    row.bindText(10, member.defaultText).bindText(11, member.targetType);
    row.bind(12, flagsOf(member)).bindText(13, packTexts(member.options));
    row.run();
    putMembers(type, member.members, number);
  }
}

void ProjectWriter::putSchema(const ModelSchema &schema) {
  std::int64_t position = 0;
  for (const std::shared_ptr<const EntityType> &type : schema.declaredTypes()) {
    m_database.prepare("INSERT INTO type VALUES (?, ?)").bindText(1, type->label()).bind(2, position++).run();
    putMembers(type->label(), schema.declaration(type->label()), 0);
  }
}

void ProjectWriter::replaceSchema(const ModelSchema &schema) {
  m_database.execute("DELETE FROM member; DELETE FROM type");
  putSchema(schema);
}

void ProjectWriter::putEntity(const ModelEntity &entity) {
  m_putEntity.bind(1, entity.number())
      .bindText(2, entity.type().label())
      .bindText(3, entity.name())
      .bind(4, flag(entity.isProjectLevel()))
      .run();
}

void ProjectWriter::putVersion(const Version &version) {
  const VersionMarks &marks = version.marks();
  std::string caseFlags;
  for (const EntityModel::ModelVersionStudyCaseFlag caseFlag : marks.caseFlags) {
    caseFlags += (caseFlags.empty() ? "" : ",") + std::to_string(static_cast<int>(caseFlag));
  }
  Statement &row = m_putVersion;
  row.bind(1, version.number()).bindText(2, version.folder());
  if (version.previous() == nullptr) {
    row.bindNull(3);
  } else {
    row.bind(3, version.previous()->number());
  }
  row.bindText(4, marks.label).bindText(5, marks.description).bindText(6, marks.author);
  row.bindText(7, marks.comment).bind(8, std::int64_t{static_cast<int>(marks.studyType)});
  row.bindText(9, caseFlags).bind(10, flag(marks.isRemovedFromStudy)).bind(11, flag(marks.isReadOnly));
  row.bind(12, flag(marks.isEdited));
  if (version.family() == nullptr) {
    row.bindNull(13);
  } else {
    row.bind(13, version.family()->number);
  }
  row.bind(14, version.rank);
  row.run();
}

bool ProjectWriter::isSaved(const char *key, std::int64_t value) {
  Statement row = m_database.prepare("SELECT 1 FROM property WHERE key = ? AND value = ?");
  return row.bindText(1, key).bind(2, value).step();
}

void ProjectWriter::putProperties(const Model &model) {
  for (const Property &property : propertiesOf(model)) {
    if (!isSaved(property.key, property.value)) {
      Statement row = m_database.prepare("INSERT OR REPLACE INTO property VALUES (?, ?)");
      row.bindText(1, property.key).bind(2, property.value).run();
    }
  }
}

void ProjectWriter::writeAll(const Model &model) {
  putSchema(model.schema());
  for (const std::unique_ptr<ModelEntity> &entity : model.entities()) {
    if (entity->isProjectLevel() && !entity->exists()) {
      continue;
    }
    putEntity(*entity);
    for (const Slot &slot : entity->slots()) {
      if (Model::isProjectLevel(slot)) {
        putValue(kProjectLevel, slot, slot.value);
      }
    }
  }
  for (const auto &[number, version] : model.tree().versions()) {
    putVersion(*version);
    for (const Edit &edit : version->edits.edits()) {
      putValue(number, *edit.slot, edit.value);
    }
  }
  putProperties(model);
}

void ProjectWriter::removeVersions(const Model &model) {
  Statement version = m_database.prepare("DELETE FROM version WHERE number = ?");
  Statement values = m_database.prepare("DELETE FROM value WHERE version = ?");
  Statement run = m_database.prepare("DELETE FROM run WHERE version = ?");
  Statement folder = m_database.prepare("INSERT OR REPLACE INTO removed_folder VALUES (?)");
  for (const DestroyedVersion &destroyed : model.tree().destroyed()) {
    if (destroyed.isInFile) {
      version.bind(1, destroyed.number).run();
      values.bind(1, destroyed.number).run();
      run.bind(1, destroyed.number).run();
      folder.bindText(1, destroyed.folder).run();
    }
  }
}

void ProjectWriter::removeEntities(const Model &model) {
  Statement entity = m_database.prepare("DELETE FROM entity WHERE number = ?");
  Statement values = m_database.prepare("DELETE FROM value WHERE version = ? AND entity = ?");
  for (const std::int64_t number : model.deletedEntities()) {
    entity.bind(1, number).run();
    values.bind(1, kProjectLevel).bind(2, number).run();
  }
}

bool ProjectWriter::hasChanges(const Model &model) {
  const auto &destroyed = model.tree().destroyed();
  const auto properties = propertiesOf(model);
  return !model.unsavedEntities().empty() || !model.unsavedSlots().empty() ||
         !model.deletedEntities().empty() || !model.tree().unsaved().empty() ||
         std::any_of(destroyed.begin(), destroyed.end(),
                     [](const DestroyedVersion &version) { return version.isInFile; }) ||
         !std::all_of(properties.begin(), properties.end(),
                      [this](const Property &property) { return isSaved(property.key, property.value); });
}

void ProjectWriter::writeChanges(const Model &model) {
  removeVersions(model);
  removeEntities(model);
  for (const ModelEntity *entity : model.unsavedEntities()) {
    putEntity(*entity);
  }
  for (const Slot *slot : model.unsavedSlots()) {
    putValue(kProjectLevel, *slot, slot->value);
  }
  for (const Version *version : model.tree().unsaved()) {
    if (version->isUnsaved) {
      putVersion(*version);
    }
    if (version->unsavedEdits != nullptr) {
      for (const Slot *slot : *version->unsavedEdits) {
        putValue(version->number(), *slot, version->edits.at(version->edits.find(slot)).value);
      }
    }
  }
  putProperties(model);
}

} // namespace EmbeddedHost
