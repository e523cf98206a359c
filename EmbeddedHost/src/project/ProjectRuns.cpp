#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/src/model/ValueText.h"
#include "EmbeddedHost/src/project/ProjectParts.h"
#include "EmbeddedHost/src/project/ProjectWriter.h"

#include <cmath>
#include <utility>

namespace EmbeddedHost {

namespace {

struct SlotResult {
  Slot *slot = nullptr;
  Value value;
};

// The largest double below which every whole number is one.
constexpr double kLargestWhole = 9007199254740992.0;

// The value that a number is for a slot; false when it is none.
bool valueOf(const Slot &slot, const std::optional<double> &number, Value &value) {
  if (!isNumberKind(slot.member->kind) || Model::isProjectLevel(slot)) {
    return false;
  }
  if (!number.has_value()) {
    value = Value();
    return true;
  }
  if (slot.member->kind == MemberKind::Real) {
    value = RealValue{*number, slot.member->display};
    return true;
  }
  if (std::trunc(*number) != *number || std::abs(*number) > kLargestWhole) {
    return false;
  }
  const auto whole = static_cast<std::int64_t>(*number);
  value = whole;
  const bool isChoice = slot.member->kind == MemberKind::Choice;
  const bool isBoolean = slot.member->kind == MemberKind::Boolean;
  const std::int64_t highest = isChoice ? static_cast<std::int64_t>(slot.member->options.size()) : 1;
  return !(isChoice || isBoolean) || (whole >= (isChoice ? 1 : 0) && whole <= highest);
}

// In the order in which readRun() takes them.
constexpr const char *kRunColumns =
    "status, reason, keys, started_at, duration, command, exit_code, solver_version, log_tail";

// What a run that begins is stored with, whatever the caller had in mind for its end.
RunRecord begun(const RunRecord &record) {
  RunRecord running = record;
  running.status = RunStatus::Running;
  running.reason.clear();
  running.exitCode.reset();
  return running;
}

// Whether the file knows the entity, which may have got another name since.
bool hasEntity(Database &database, std::int64_t number) {
  try {
    return database.prepare("SELECT 1 FROM entity WHERE number = ?").bind(1, number).step();
  } catch (const DatabaseError &) {
    return false;
  }
}

// A record that cannot be read is as good as none: the version is solved again.
RunRecord readRunOf(Database &database, std::int64_t version) {
  try {
    Statement row = database.prepare(std::string("SELECT ") + kRunColumns + " FROM run WHERE version = ?");
    row.bind(1, version);
    return row.step() ? readRun(row, 0) : RunRecord();
  } catch (const DatabaseError &) {
    return {};
  }
}

// Only one program writes at a time, so a run that this one did not begin has nobody left to finish it.
bool isLost(const Project::Parts &own, std::int64_t version, const RunRecord &record) {
  return record.status == RunStatus::Running && !own.isReadOnly && own.begunRuns.count(version) == 0;
}

RunRecord asSeenHere(const Project::Parts &own, std::int64_t version, RunRecord record) {
  if (isLost(own, version, record)) {
    record.status = RunStatus::Failed;
    record.reason = kLostRun;
  }
  return record;
}

std::string whyNotStored(const Project::Parts &own, const Version *version) {
  if (version == nullptr) {
    return "There is no such version.";
  }
  if (own.file != nullptr && own.isReadOnly) {
    return "The project " + own.filePath + " was opened for reading only.";
  }
  if (own.isSchemaUnsaved) {
    return "The project " + own.filePath + " has to be saved with its changed types before it is solved.";
  }
  if (own.file != nullptr && !version->isInFile) {
    return "The version \"" + version->getLabel() + "\" has to be saved before it is solved.";
  }
  return {};
}

bool findSlots(Project::Parts &own, const std::vector<ResultValue> &results, std::vector<SlotResult> &values,
               std::string &problem) {
  values.reserve(results.size());
  for (const ResultValue &result : results) {
    ModelEntity *entity = ModelEntity::from(result.entity, own.model);
    SlotResult value;
    value.slot = entity == nullptr ? nullptr : entity->findSlot(result.path);
    if (value.slot == nullptr || !valueOf(*value.slot, result.value, value.value)) {
      problem = "The result " + result.path.toString('.') + " is no number that can be stored.";
      return false;
    }
    if (own.file != nullptr && own.model.unsavedEntities().count(entity) != 0 &&
        !hasEntity(own.file->database(), entity->number())) {
      problem = "The entity \"" + entity->name() + "\" has to be saved before its results are.";
      return false;
    }
    values.push_back(std::move(value));
  }
  return true;
}

// What a record says about files must be true of the disk before the record is there.
bool syncFiles(Project::Parts &own, const Version &version, std::string &problem) {
  std::string reason;
  if (!syncVersionFolder(own.filePath, version.folder(), reason)) {
    problem =
        "The files of the version \"" + version.getLabel() + "\" cannot be written to the disk: " + reason;
    return false;
  }
  return own.stores.syncCopies(problem);
}

// One transaction of its own, with nothing else in it.
bool store(Project::Parts &own, const Version &version, const RunRecord &record,
           const std::vector<SlotResult> &values, std::string &problem) {
  return own.file->change(
      [&](Database &database, TextTable &texts) {
        ProjectWriter writer(database, texts);
        writer.putRun(version.number(), record);
        for (const SlotResult &value : values) {
          writer.putValue(version.number(), *value.slot, value.value);
        }
      },
      problem);
}

void show(Project::Parts &own, Version &version, std::vector<SlotResult> values) {
  const bool neededSave = own.model.needsSave;
  for (SlotResult &value : values) {
    own.model.setValueIn(version, *value.slot, std::move(value.value));
    if (own.file != nullptr) {
      own.model.tree().markEditSaved(version, *value.slot);
    }
  }
  own.model.needsSave = neededSave || own.file == nullptr;
}

enum class Files { AreSynced, AreLeftAlone };

bool putRun(Project::Parts &own, Version *version, const RunRecord &record,
            const std::vector<ResultValue> &results, Files files, std::string &problem) {
  problem = whyNotStored(own, version);
  std::vector<SlotResult> values;
  if (!problem.empty() || !findSlots(own, results, values, problem)) {
    return false;
  }
  if (own.file == nullptr) {
    own.runs[version->number()] = record;
  } else if ((files == Files::AreSynced && !syncFiles(own, *version, problem)) ||
             !store(own, *version, record, values, problem)) {
    return false;
  }
  own.begunRuns.insert(version->number());
  show(own, *version, std::move(values));
  return true;
}

} // namespace

std::unordered_map<std::int64_t, RunRecord> Project::Parts::readRuns(Database &database) const {
  std::unordered_map<std::int64_t, RunRecord> records;
  try {
    Statement row = database.prepare(std::string("SELECT version, ") + kRunColumns + " FROM run");
    while (row.step()) {
      records.emplace(row.integer(0), readRun(row, 1));
    }
  } catch (const DatabaseError &) {
    // What cannot be read with all others may be readable by itself.
    records.clear();
    for (const auto &[number, version] : model.tree().versions()) {
      RunRecord record = readRunOf(database, number);
      if (record.status != RunStatus::None) {
        records.emplace(number, std::move(record));
      }
    }
  }
  return records;
}

RunRecord Project::runRecord(const EntityModel::ModelVersion &version) const {
  const Parts &own = *m_parts;
  const Version *known = own.model.tree().own(&version);
  if (known == nullptr) {
    return {};
  }
  if (own.keepsRuns()) {
    const auto found = own.runs.find(known->number());
    return found == own.runs.end() ? RunRecord() : found->second;
  }
  return asSeenHere(own, known->number(), readRunOf(own.file->database(), known->number()));
}

void Project::forEachRun(
    const std::function<void(const EntityModel::ModelVersion &, const RunRecord &)> &visit) const {
  const Parts &own = *m_parts;
  const auto &versions = own.model.tree().versions();
  const auto visitAll = [&](const std::unordered_map<std::int64_t, RunRecord> &runs) {
    for (const auto &[number, record] : runs) {
      const auto version = versions.find(number);
      if (version == versions.end()) {
        continue;
      }
      if (isLost(own, number, record)) {
        visit(*version->second, asSeenHere(own, number, record));
      } else {
        visit(*version->second, record);
      }
    }
  };
  if (own.keepsRuns()) {
    visitAll(own.runs);
  } else {
    visitAll(own.readRuns(own.file->database()));
  }
}

Project::RunRecords Project::runRecords() const {
  RunRecords records;
  forEachRun([&records](const EntityModel::ModelVersion &version, const RunRecord &record) {
    records.emplace(&version, record);
  });
  return records;
}

bool Project::beginRun(EntityModel::ModelVersion &version, const RunRecord &record,
                       const std::vector<ResultValue> &results, std::string &problem) {
  std::vector<ResultValue> unset = results;
  for (ResultValue &result : unset) {
    result.value.reset();
  }
  return putRun(*m_parts, m_parts->model.tree().own(&version), begun(record), unset, Files::AreLeftAlone,
                problem);
}

bool Project::recordRun(EntityModel::ModelVersion &version, const RunRecord &record,
                        const std::vector<ResultValue> &results, std::string &problem) {
  return putRun(*m_parts, m_parts->model.tree().own(&version), record, results, Files::AreSynced, problem);
}

} // namespace EmbeddedHost
