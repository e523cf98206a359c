#include "EmbeddedHost/src/project/ProjectReader.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/NumberText.h"
#include "EmbeddedHost/src/project/FolderName.h"
#include "EmbeddedHost/src/project/ValueReader.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace EmbeddedHost {

namespace {

// Far above any real one, far below what would overflow.
constexpr std::int64_t kHighestNumber = std::int64_t{1} << 60;

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
      throw DamagedProject("an entity of unknown type (entity " + std::to_string(number) + ")");
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

// A folder that a version has is never to be removed, nor shared with another version that would remove it.
void checkFolders(Database &database, const Model &model) {
  std::unordered_set<std::string_view> folders;
  for (const auto &[number, version] : model.tree().versions()) {
    if (!folders.insert(version->folder()).second) {
      throw DamagedProject("a folder of two versions (version " + std::to_string(number) + ")");
    }
  }
  Statement rows = database.prepare("SELECT folder FROM removed_folder");
  while (rows.step()) {
    if (folders.count(rows.text(0)) != 0) {
      throw DamagedProject("a removed folder that a version has: " + std::string(rows.text(0)));
    }
  }
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
      throw DamagedProject("a version without place (version " + std::to_string(number) + ")");
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
        throw DamagedProject("an alternate without place (version " + std::to_string(number) + ")");
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

/// Finds the slots of rows. The versions of a study edit the same slots in the same order, so each row is compared with
/// the one at its place in the version before first.
class SlotSequence {
public:
  SlotSequence(const Model &model, TextReader &texts) : m_model(model), m_texts(texts) {}

  void begin() { m_next = 0; }
  /// \return null when there is no such slot
  Slot *next(std::int64_t entity, std::int64_t path) {
    if (m_next == m_known.size()) {
      m_known.emplace_back();
    }
    Known &known = m_known[m_next++];
    if (known.entity != entity || known.path != path) {
      if (m_owner == nullptr || m_owner->number() != entity) {
        m_owner = m_model.findEntity(entity);
      }
      known = {entity, path, m_owner == nullptr ? nullptr : m_owner->findSlot(m_texts.path(path))};
    }
    return known.slot;
  }

private:
  struct Known {
    std::int64_t entity = 0; // which no entity has
    std::int64_t path = 0;
    Slot *slot = nullptr;
  };

  const Model &m_model;
  TextReader &m_texts;
  ModelEntity *m_owner = nullptr; // of the last row that was looked up
  std::vector<Known> m_known;
  std::size_t m_next = 0;
};

void readValues(Statement &rows, Database &database, Model &model) {
  TextReader texts(database);
  ValueReader values(model, texts);
  const auto &versions = model.tree().versions();
  Version *version = nullptr;
  std::int64_t versionNumber = kProjectLevel;
  SlotSequence slots(model, texts);
  std::vector<Edit> edits;
  const auto finishVersion = [&] {
    if (version != nullptr) {
      version->edits.take(edits);
    }
    edits.clear();
    slots.begin();
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
    Slot *slot = slots.next(rows.integer(1), rows.integer(2));
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

void readValues(Database &database, Model &model) {
  Statement rows = database.prepare(
      "SELECT version, entity, path, value, extra FROM value ORDER BY version, entity, path");
  try {
    readValues(rows, database, model);
  } catch (const DamagedProject &damage) {
    throw DamagedProject(damage.what() + (" (version " + std::to_string(rows.integer(0))) + ", entity " +
                         std::to_string(rows.integer(1)) + ")");
  }
}

} // namespace

void readModel(Database &database, Model &model) {
  readEntities(database, model);
  readVersions(database, model);
  checkFolders(database, model);
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
