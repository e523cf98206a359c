#include "EmbeddedHost/src/project/ProjectReader.h"

#include "EmbeddedHost/Units.h"
#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/MemberFlags.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kDeepestComposite = 64;
// Far above any real one, far below what would overflow.
constexpr std::int64_t kHighestNumber = std::int64_t{1} << 60;

struct DeclaredMember {
  std::int64_t number = 0;
  std::int64_t parent = 0;
  MemberType member;
};

std::optional<double> limit(const Statement &row, int column) {
  return row.isNull(column) ? std::nullopt : std::optional<double>(row.real(column));
}

DeclaredMember readMember(const Statement &row) {
  DeclaredMember declared;
  declared.number = row.integer(0);
  declared.parent = row.integer(1);
  MemberType &member = declared.member;
  member.label = row.text(2);
  const std::int64_t kind = row.integer(3);
  if (kind < static_cast<int>(MemberKind::Real) || kind > static_cast<int>(MemberKind::Composite)) {
    throw DamagedProject("a member of unknown kind");
  }
  member.kind = static_cast<MemberKind>(kind);
  member.standardUnit = row.text(4);
  member.displayUnit = row.text(5);
  member.minimum = limit(row, 6);
  member.maximum = limit(row, 7);
  member.defaultText = row.text(8);
  member.targetType = row.text(9);
  setFlags(member, row.integer(10));
  member.options = unpackTexts(row.text(11));
  return declared;
}

std::vector<MemberType> membersOf(const std::vector<DeclaredMember> &all, std::int64_t parent,
                                  std::size_t depth) {
  if (depth > kDeepestComposite) {
    throw DamagedProject("a composite that holds itself");
  }
  std::vector<MemberType> members;
  for (const DeclaredMember &declared : all) {
    if (declared.parent == parent) {
      members.push_back(declared.member);
      members.back().members = membersOf(all, declared.number, depth + 1);
    }
  }
  return members;
}

/// The texts behind the numbers in rows of values, as paths and as units where they are asked for.
class TextReader {
public:
  explicit TextReader(Database &database) {
    Statement rows = database.prepare("SELECT number, text FROM text");
    while (rows.step()) {
      m_texts.emplace(rows.integer(0), Entry{std::string(rows.text(1)), {}, nullptr});
    }
    for (auto &[number, entry] : m_texts) {
      entry.path = EntityModel::AttributePath(entry.text);
    }
  }

  const EntityModel::AttributePath &path(std::int64_t number) { return find(number).path; }

  const Unit &unit(std::int64_t number) {
    Entry &entry = find(number);
    if (entry.unit == nullptr) {
      const UnitResult result = UnitSystem::process().parse(entry.text);
      if (result.unit == nullptr) {
        throw DamagedProject("a value whose unit cannot be read: " + result.problem);
      }
      entry.unit = result.unit;
    }
    return *entry.unit;
  }

private:
  struct Entry {
    std::string text;
    EntityModel::AttributePath path;
    const Unit *unit = nullptr;
  };

  Entry &find(std::int64_t number) {
    const auto found = m_texts.find(number);
    if (found == m_texts.end()) {
      throw DamagedProject("a row that refers to an unknown text");
    }
    return found->second;
  }

  std::unordered_map<std::int64_t, Entry> m_texts;
};

/// Turns rows of values into values.
class ValueReader {
public:
  ValueReader(const Model &model, TextReader &texts) : m_model(model), m_texts(texts) {}

  /// \param column  of the value; the next one holds what belongs to it
  Value read(const Statement &row, int column, const Slot &slot) {
    if (row.isNull(column)) {
      return {};
    }
    switch (slot.member->kind) {
    case MemberKind::Real:
      return readReal(row, column, slot);
    case MemberKind::Integer:
    case MemberKind::Boolean:
    case MemberKind::Choice:
      return readNumber(row, column, slot);
    case MemberKind::Text:
      return makeText(row.text(column));
    case MemberKind::TypeReference:
      return readType(row, column, slot);
    case MemberKind::EntityLink:
      return readLink(row, column);
    case MemberKind::AttributeReference:
      return readReference(row, column);
    case MemberKind::EntityList:
      return readList(row.text(column));
    case MemberKind::Composite:
      break;
    }
    throw DamagedProject("a value for a composite");
  }

private:
  Value readReal(const Statement &row, int column, const Slot &slot) {
    RealValue real{row.real(column), nullptr};
    if (slot.member->standard != nullptr && !row.isNull(column + 1)) {
      real.unit = &m_texts.unit(row.integer(column + 1));
      if (!UnitSystem::process().areConvertible(*real.unit, *slot.member->standard)) {
        throw DamagedProject("a value in a unit of another quantity");
      }
    }
    return real;
  }

  static Value readNumber(const Statement &row, int column, const Slot &slot) {
    const std::int64_t number = row.integer(column);
    const bool isChoice = slot.member->kind == MemberKind::Choice;
    const bool isBoolean = slot.member->kind == MemberKind::Boolean;
    const auto highest = isChoice ? static_cast<std::int64_t>(slot.member->options.size()) : std::int64_t{1};
    if ((isChoice || isBoolean) && (number < (isChoice ? 1 : 0) || number > highest)) {
      throw DamagedProject("a choice of an option that there is not");
    }
    return number;
  }

  static Value readType(const Statement &row, int column, const Slot &slot) {
    const std::string_view label = row.text(column);
    const std::vector<std::string> &options = slot.member->options;
    if (std::find(options.begin(), options.end(), label) == options.end()) {
      throw DamagedProject("a type that may not stand where it stands");
    }
    return EntityModel::TypeRef::fromLabel(label);
  }

  // An entity that was deleted is no damage: a link to it is empty.
  Value readLink(const Statement &row, int column) const {
    ModelEntity *entity = m_model.findEntity(row.integer(column));
    return entity == nullptr ? Value() : Value(LinkValue{entity, row.integer(column + 1) != 0});
  }

  Value readReference(const Statement &row, int column) const {
    ModelEntity *entity = m_model.findEntity(row.integer(column + 1));
    if (entity == nullptr) {
      return {};
    }
    return std::make_shared<const AttributeTarget>(
        AttributeTarget{entity, EntityModel::AttributePath(std::string(row.text(column)))});
  }

  Value readList(std::string_view text) const {
    auto list = std::make_shared<ListContent>();
    while (!text.empty()) {
      const std::size_t end = text.find_first_of("+-");
      const std::optional<std::int64_t> number =
          end == std::string_view::npos ? std::nullopt : readInteger(text.substr(0, end));
      if (!number.has_value()) {
        throw DamagedProject("a list that cannot be read");
      }
      if (ModelEntity *entity = m_model.findEntity(*number)) {
        list->elements.push_back({entity, text[end] == '+'});
      }
      text.remove_prefix(end + 1);
    }
    return list;
  }

  const Model &m_model;
  TextReader &m_texts;
};

std::int64_t property(Database &database, const char *key) {
  Statement row = database.prepare("SELECT value FROM property WHERE key = ?");
  row.bindText(1, key);
  if (!row.step()) {
    throw DamagedProject(std::string("the property ") + key + " is missing");
  }
  const std::int64_t number = row.integer(0);
  if (number < 1 || number > kHighestNumber) {
    throw DamagedProject(std::string("the property ") + key + " is out of range");
  }
  return number;
}

void readEntities(Database &database, Model &model) {
  Statement rows = database.prepare("SELECT number, type, name, project_level FROM entity ORDER BY number");
  bool hasRoot = false;
  while (rows.step()) {
    const std::int64_t number = rows.integer(0);
    const std::shared_ptr<const EntityType> type = model.schema().findType(rows.text(1));
    const std::string name(rows.text(2));
    const bool isRoot = type == model.schema().rootType();
    if (type == nullptr || number < 1 || number > kHighestNumber ||
        isRoot != (number == model.root().number())) {
      throw DamagedProject("an entity of unknown type");
    }
    if (isRoot) {
      hasRoot = true;
      model.root().setName(name);
    } else {
      model.restore(number, type, name, rows.integer(3) != 0);
    }
  }
  if (!hasRoot) {
    throw DamagedProject("the root entity is missing");
  }
}

std::set<EntityModel::ModelVersionStudyCaseFlag> readCaseFlags(std::string_view text) {
  std::set<EntityModel::ModelVersionStudyCaseFlag> flags;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(','), text.size());
    const std::optional<std::int64_t> number = readInteger(text.substr(0, end));
    if (!number.has_value()) {
      throw DamagedProject("a version with unreadable marks");
    }
    flags.insert(static_cast<EntityModel::ModelVersionStudyCaseFlag>(*number));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return flags;
}

void readVersions(Database &database, Model &model) {
  std::map<std::int64_t, std::vector<Version *>> families;
  std::unordered_map<std::int64_t, Version *> known;
  Statement rows = database.prepare("SELECT number, folder, previous, label, description, author, comment, "
                                    "study_type, case_flags, removed, read_only, edited, family, rank "
                                    "FROM version ORDER BY number");
  while (rows.step()) {
    const std::int64_t number = rows.integer(0);
    const auto previous = known.find(rows.integer(2));
    const bool isFirst = known.empty();
    // A version is always made after the one that it follows, so there can be no circle.
    if (number <= kProjectLevel || number > kHighestNumber || isFirst != rows.isNull(2) ||
        (!isFirst && previous == known.end()) || !isFolderName(rows.text(1))) {
      throw DamagedProject("a version without place");
    }
    VersionMarks marks;
    marks.label = rows.text(3);
    marks.description = rows.text(4);
    marks.author = rows.text(5);
    marks.comment = rows.text(6);
    marks.studyType = static_cast<EntityModel::ModelVersionStudyType>(rows.integer(7));
    marks.caseFlags = readCaseFlags(rows.text(8));
    marks.isRemovedFromStudy = rows.integer(9) != 0;
    marks.isReadOnly = rows.integer(10) != 0;
    marks.isEdited = rows.integer(11) != 0;
    Version &version = model.tree().restore(number, std::string(rows.text(1)),
                                            isFirst ? nullptr : previous->second, std::move(marks));
    known.emplace(number, &version);
    if (!rows.isNull(12)) {
      std::vector<Version *> &members = families[rows.integer(12)];
      version.rank = rows.real(13);
      if (std::isnan(version.rank)) {
        throw DamagedProject("an alternate without place");
      }
      if (rows.integer(12) != number) {
        members.push_back(&version);
      }
    }
  }
  if (known.empty()) {
    throw DamagedProject("the first version is missing");
  }
  for (auto &[number, members] : families) {
    std::stable_sort(members.begin(), members.end(),
                     [](const Version *a, const Version *b) { return a->rank < b->rank; });
    const auto origin = known.find(number);
    VersionTree::restoreFamily(number, origin == known.end() ? nullptr : origin->second, members);
  }
}

void readValues(Database &database, Model &model) {
  TextReader texts(database);
  ValueReader values(model, texts);
  const auto &versions = model.tree().versions();
  Statement rows = database.prepare(
      "SELECT version, entity, path, value, extra FROM value ORDER BY version, entity, path");
  Version *version = nullptr;
  std::int64_t versionNumber = kProjectLevel;
  ModelEntity *entity = nullptr;
  std::vector<Edit> edits;
  const auto finishVersion = [&] {
    if (version != nullptr) {
      version->edits.assign(edits);
    }
    edits.clear();
  };
  while (rows.step()) {
    if (rows.integer(0) != versionNumber) {
      finishVersion();
      versionNumber = rows.integer(0);
      const auto found = versions.find(versionNumber);
      if (found == versions.end()) {
        throw DamagedProject("a value of an unknown version");
      }
      version = found->second.get();
    }
    if (entity == nullptr || entity->number() != rows.integer(1)) {
      entity = model.findEntity(rows.integer(1));
    }
    Slot *slot = entity == nullptr ? nullptr : entity->findSlot(texts.path(rows.integer(2)));
    if (slot == nullptr || Model::isProjectLevel(*slot) != (version == nullptr)) {
      throw DamagedProject("a value of an unknown attribute");
    }
    if (!edits.empty() && edits.back().slot == slot) {
      throw DamagedProject("a value that is there twice");
    }
    Value value = values.read(rows, 3, *slot);
    if (version == nullptr) {
      Model::show(*slot, std::move(value));
    } else {
      edits.push_back({slot, std::move(value)});
    }
  }
  finishVersion();
}

} // namespace

ModelSchema readSchema(Database &database) {
  ModelSchema schema;
  Statement types = database.prepare("SELECT label FROM type ORDER BY position");
  while (types.step()) {
    const std::string label(types.text(0));
    Statement rows = database.prepare(
        "SELECT number, parent, label, kind, standard_unit, display_unit, minimum, maximum, "
        "default_text, target_type, flags, options FROM member WHERE type = ? ORDER BY number");
    rows.bindText(1, label);
    std::vector<DeclaredMember> members;
    while (rows.step()) {
      members.push_back(readMember(rows));
    }
    const std::string problem = schema.declareType(label, membersOf(members, 0, 0));
    if (!problem.empty()) {
      throw DamagedProject("a type that cannot be declared: " + problem);
    }
  }
  return schema;
}

void readModel(Database &database, Model &model) {
  readEntities(database, model);
  readVersions(database, model);
  readValues(database, model);
  model.reserveNumbers(property(database, "next_entity"));
  model.tree().reserveNumbers(property(database, "next_version"));
  const auto &versions = model.tree().versions();
  const auto current = versions.find(property(database, "current_version"));
  if (current == versions.end()) {
    throw DamagedProject("the current version is missing");
  }
  model.tree().makeCurrent(current->second.get());
  model.forgetUnsaved();
}

} // namespace EmbeddedHost
