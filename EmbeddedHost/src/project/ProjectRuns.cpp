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

} // namespace

RunRecord Project::runRecord(const EntityModel::ModelVersion &version) const {
  const Version *known = m_parts->model.tree().own(&version);
  if (known == nullptr) {
    return {};
  }
  if (m_parts->file == nullptr) {
    const auto found = m_parts->runs.find(known->number());
    return found == m_parts->runs.end() ? RunRecord() : found->second;
  }
  try {
    Statement row = m_parts->file->database().prepare(
        "SELECT status, reason, keys, started_at, duration, command, exit_code, solver_version, log_tail "
        "FROM run WHERE version = ?");
    row.bind(1, known->number());
    return row.step() ? readRun(row, 0) : RunRecord();
  } catch (const DatabaseError &) {
    // A record that cannot be read is as good as none: the version is solved again.
    return {};
  }
}

bool Project::recordRun(EntityModel::ModelVersion &version, const RunRecord &record,
                        const std::vector<ResultValue> &results, std::string &problem) {
  problem.clear();
  Parts &own = *m_parts;
  Version *known = own.model.tree().own(&version);
  if (known == nullptr) {
    problem = "There is no such version.";
    return false;
  }
  if (own.file != nullptr && (own.isReadOnly || !known->isInFile)) {
    problem = own.isReadOnly
                  ? "The project " + own.filePath + " was opened for reading only."
                  : "The version \"" + known->getLabel() + "\" has to be saved before it is solved.";
    return false;
  }
  std::vector<SlotResult> values;
  values.reserve(results.size());
  for (const ResultValue &result : results) {
    ModelEntity *entity = ModelEntity::from(result.entity, own.model);
    SlotResult value;
    value.slot = entity == nullptr ? nullptr : entity->findSlot(result.path);
    if (value.slot == nullptr || !valueOf(*value.slot, result.value, value.value)) {
      problem = "The result " + result.path.toString('.') + " is no number that can be stored.";
      return false;
    }
    if (own.file != nullptr && own.model.unsavedEntities().count(entity) != 0) {
      problem = "The entity \"" + entity->name() + "\" has to be saved before its results are.";
      return false;
    }
    values.push_back(std::move(value));
  }

  if (own.file == nullptr) {
    own.runs[known->number()] = record;
  } else {
    if (!syncVersionFolder(own.filePath, known->folder())) {
      problem = "The files of the version \"" + known->getLabel() + "\" cannot be written to the disk: " +
                versionFolderPath(own.filePath, known->folder(), false) + ".";
      return false;
    }
    const bool isStored = own.file->change(
        [&](Database &database, TextTable &texts) {
          ProjectWriter writer(database, texts);
          writer.putRun(known->number(), record);
          for (const SlotResult &value : values) {
            writer.putValue(known->number(), *value.slot, value.value);
          }
        },
        problem);
    if (!isStored) {
      return false;
    }
  }
  const bool neededSave = own.model.needsSave;
  for (SlotResult &value : values) {
    own.model.setValueIn(*known, *value.slot, std::move(value.value));
    if (own.file != nullptr) {
      own.model.tree().markEditSaved(*known, *value.slot);
    }
  }
  own.model.needsSave = neededSave || own.file == nullptr;
  return true;
}

} // namespace EmbeddedHost
