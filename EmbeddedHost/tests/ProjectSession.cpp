#include "EmbeddedHost/tests/ProjectSession.h"

#include "EmbeddedHost/src/project/ProjectParts.h"

#include <algorithm>
#include <array>

// The steps; what is compared after them is in ProjectSessionCompare.cpp.

namespace EmbeddedHost {

using EntityModel::AttributePath;
using EntityModel::ModelVersion;
using EntityModel::TypeRef;

namespace {

constexpr std::size_t kMostVersions = 9;
constexpr std::size_t kMostEntities = 11;
constexpr int kSwitchEvery = 10;

} // namespace

ProjectSession::ProjectSession(unsigned firstSeed, ProjectReference::Mistake mistake)
    : seed(firstSeed), random(firstSeed) {
  reference.mistake = mistake;
  reference.versions[0].marks.label = "Base";
}

std::string ProjectSession::run(int steps) {
  for (int step = 0; step < steps && problem.empty(); ++step) {
    act(step);
    if (problem.empty()) {
      compare(step % kSwitchEvery == kSwitchEvery - 1);
    }
    if (!problem.empty()) {
      problem =
          "seed " + std::to_string(seed) + ", step " + std::to_string(step) + ", " + action + ": " + problem;
    }
  }
  return problem;
}

void ProjectSession::act(int step) {
  struct Choice {
    Action action;
    int weight;
  };
  constexpr std::array<Choice, 14> kChoices = {{{&ProjectSession::edit, 22},
                                                {&ProjectSession::switchVersion, 14},
                                                {&ProjectSession::create, 9},
                                                {&ProjectSession::move, 9},
                                                {&ProjectSession::remove, 4},
                                                {&ProjectSession::rename, 3},
                                                {&ProjectSession::relabel, 4},
                                                {&ProjectSession::mark, 8},
                                                {&ProjectSession::addVersion, 9},
                                                {&ProjectSession::destroyVersion, 3},
                                                {&ProjectSession::recordRun, 5},
                                                {&ProjectSession::save, 4},
                                                {&ProjectSession::saveAs, 2},
                                                {&ProjectSession::reopen, 4}}};
  if (step < 3) {
    return create();
  }
  auto choice = static_cast<int>(below(100));
  for (const Choice &each : kChoices) {
    choice -= each.weight;
    if (choice < 0) {
      return (this->*each.action)();
    }
  }
}

int ProjectSession::anyVersion() {
  auto version = reference.versions.begin();
  std::advance(version, below(reference.versions.size()));
  return version->first;
}

// One that the current version has.
int ProjectSession::anyEntity() {
  std::vector<int> existing;
  for (const auto &[number, name] : reference.entities) {
    if (reference.exists(reference.current, number)) {
      existing.push_back(number);
    }
  }
  return existing[below(existing.size())];
}

int ProjectSession::anyPart() {
  const int entity = anyEntity();
  return entity == ProjectReference::kRoot ? ProjectReference::kNone : entity;
}

std::string ProjectSession::anyPath() {
  constexpr std::array<const char *, 4> kPaths = {"Ratio", "Count", "Note", "Size.Depth"};
  return kPaths[below(kPaths.size())];
}

ModelVersion *ProjectSession::own(int version) const {
  const auto place = std::distance(reference.versions.begin(), reference.versions.find(version));
  return project->versions()[static_cast<std::size_t>(place)];
}

EntityModel::Entity *ProjectSession::own(const std::optional<int> &entity) const {
  return project->parts().model.findEntity(*entity);
}

void ProjectSession::create() {
  const std::string name = "E" + std::to_string(below(1000));
  const std::size_t position = below(4);
  const int owner = anyEntity();
  if (reference.entities.size() >= kMostEntities) {
    return;
  }
  action = "create an entity in " + std::to_string(owner);
  const EntityModel::Entity *made =
      editor().createEntity(TypeRef::fromLabel("Part"), own(std::optional(owner)), AttributePath("Parts"),
                            nullptr, true, false, false, name, static_cast<int>(position));
  if (made == nullptr) {
    return fail("none was made");
  }
  const auto number = static_cast<int>(Project::entityNumber(*made));
  expect("there was such an entity", reference.entities.count(number), std::size_t{0});
  reference.entities[number] = name;
  reference.insert(owner, number, position);
}

void ProjectSession::move() {
  const int entity = anyPart();
  const int owner = anyEntity();
  const std::size_t position = below(4);
  if (entity == ProjectReference::kNone) {
    return;
  }
  action = "move " + std::to_string(entity) + " into " + std::to_string(owner);
  EntityModel::Entity *target = own(std::optional(owner));
  const bool isMoved = editor().moveEntity(own(std::optional(entity)), target,
                                           target->findAttribute(AttributePath("Parts"))->asLink(), false,
                                           static_cast<int>(position));
  const bool mayMove = !reference.isInside(reference.current, owner, entity);
  expect("moved", isMoved, mayMove);
  if (mayMove) {
    reference.takeOut(entity);
    reference.insert(owner, entity, position);
  }
}

void ProjectSession::remove() {
  const int entity = anyPart();
  if (entity == ProjectReference::kNone) {
    return;
  }
  action = "delete " + std::to_string(entity);
  expect("deleted", editor().deleteEntity(own(std::optional(entity)), true, false), true);
  reference.takeOut(entity);
}

void ProjectSession::rename() {
  const int entity = anyEntity();
  reference.entities[entity] = "N" + std::to_string(below(1000));
  action = "rename " + std::to_string(entity);
  project->renameEntity(own(std::optional(entity)), reference.entities[entity]);
}

void ProjectSession::edit() {
  const int entity = anyPart();
  const std::string path = anyPath();
  const std::string text = std::to_string(below(90));
  if (entity == ProjectReference::kNone) {
    return;
  }
  action = "edit " + path + " of " + std::to_string(entity);
  expect("set", project->setValue(own(std::optional(entity)), path, text), true);
  reference.setValue(reference.current, entity, path, text);
}

void ProjectSession::switchVersion() {
  reference.current = anyVersion();
  action = "switch to " + std::to_string(reference.current);
  expect("switched",
         project->changeManager().setCurrentVersion(own(reference.current), nullptr, false, nullptr, true),
         true);
}

void ProjectSession::relabel() {
  const int version = anyVersion();
  reference.versions[version].marks.label = "L" + std::to_string(below(20));
  action = "relabel " + std::to_string(version);
  own(version)->setLabel(reference.versions[version].marks.label);
}

void ProjectSession::mark() {
  const int version = anyVersion();
  ProjectReference::Marks &marks = reference.versions[version].marks;
  ModelVersion *known = own(version);
  const bool sets = below(2) == 0;
  action = "mark " + std::to_string(version);
  bool isEdited = false;
  switch (below(6)) {
  case 0:
    marks.isCase = sets;
    return known->setStudyCaseFlag(EntityModel::ModelVersionStudyCaseFlag::Copy, sets);
  case 1:
    marks.studyType = sets ? 1 : 0;
    return known->setStudyType(static_cast<EntityModel::ModelVersionStudyType>(marks.studyType));
  case 2:
    marks.studyType = 0;
    marks.isCase = false;
    marks.isRemoved = true;
    return known->removeFromStudy();
  case 3:
    marks.studyType = 0;
    marks.isCase = false;
    marks.isRemoved = false;
    return known->clearStudy();
  case 4:
    marks.isReadOnly = sets;
    return known->setReadOnlyVersion(sets ? "true" : "false");
  default:
    marks.isEdited = true;
    return project->changeManager().editedVersion(known, nullptr, isEdited, false);
  }
}

void ProjectSession::addVersion() {
  const int origin = anyVersion();
  const std::size_t position = below(4);
  const bool isAlternate = below(2) == 0 && reference.versions[origin].previous != ProjectReference::kNone;
  if (reference.versions.size() >= kMostVersions) {
    return;
  }
  const std::string label = "V" + std::to_string(reference.nextVersion);
  action = (isAlternate ? "new alternate of " : "new version after ") + std::to_string(origin);
  EntityModel::ChangeManager &tree = project->changeManager();
  ModelVersion *made = isAlternate
                           ? tree.startNewAlternate(own(origin), nullptr, true, position)
                           : tree.startNewVersion(label, "of " + label, "", "", nullptr, own(origin), false);
  if (made == nullptr) {
    return fail("none was made");
  }
  made->setLabel(label);
  if (isAlternate) {
    reference.addAlternate(origin, label, position);
  } else {
    reference.versions[reference.addFollower(origin, label)].marks.description = "of " + label;
  }
}

void ProjectSession::destroyVersion() {
  const int doomed = anyVersion();
  if (doomed == 0) {
    return;
  }
  action = "destroy " + std::to_string(doomed);
  bool isDestroyed = false;
  project->changeManager().destroyVersion(own(doomed), nullptr, isDestroyed);
  expect("destroyed", isDestroyed, true);
  reference.destroy(doomed);
}

// A run is kept at once, also when the session's other changes are given up.
void ProjectSession::recordRun() {
  const int version = anyVersion();
  const int entity = anyPart();
  const std::size_t number = below(1000);
  if (entity == ProjectReference::kNone) {
    return;
  }
  action = "record a run of " + std::to_string(version);
  RunRecord record;
  record.status = RunStatus::Failed;
  record.reason = "run " + std::to_string(number);
  std::string refusal;
  const bool isRecorded = project->recordRun(
      *own(version), record,
      {{own(std::optional(entity)), AttributePath("Field"), static_cast<double>(number)}}, refusal);
  const bool isSaved =
      saved.has_value() && saved->versions.count(version) != 0 && saved->entities.count(entity) != 0;
  expect("recorded", isRecorded, !saved.has_value() || isSaved);
  for (ProjectReference *each : {isRecorded ? &reference : nullptr, isSaved ? &*saved : nullptr}) {
    if (each != nullptr) {
      each->versions[version].values[{entity, "Field"}] = std::to_string(number);
      each->versions[version].marks.run = record.reason;
    }
  }
}

void ProjectSession::save() {
  if (!saved.has_value()) {
    return saveAs();
  }
  action = "save";
  std::string refusal;
  expect("saved", project->save(refusal), true);
  saved = reference;
}

void ProjectSession::saveAs() {
  action = "save as another file";
  std::string refusal;
  const std::string file = folder.path("p" + std::to_string(files++) + ".optstudy");
  if (!project->saveAs(file, refusal)) {
    return fail(refusal);
  }
  saved = reference;
}

void ProjectSession::reopen() {
  if (!saved.has_value()) {
    return;
  }
  action = "reopen";
  const std::string file = project->file();
  project.reset();
  std::string refusal;
  project = Project::open(file, OpenMode::ReadWrite, refusal);
  if (project == nullptr) {
    return fail(refusal);
  }
  if (reference.mistake != ProjectReference::Mistake::ReopeningKeepsUnsaved) {
    reference = *saved;
  }
}

} // namespace EmbeddedHost
