#include "EmbeddedHost/tests/DamageWalk.h"

#include "EmbeddedHost/src/project/ProjectParts.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/ModellingImpact.h"

#include <functional>
#include <unistd.h>

namespace EmbeddedHost {

namespace {

using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ModelVersion;

// What was read, so that reading is not left out.
class Sum {
public:
  void add(const std::string &text) { m_sum = m_sum * 31 + std::hash<std::string>()(text); }
  std::size_t value() const { return m_sum; }

private:
  std::size_t m_sum = 0;
};

void readList(EntityModel::Attribute &attribute, Sum &sum) {
  EntityModel::ListAttribute *list = attribute.asList();
  for (int index = 0; list != nullptr && index < list->getCount(); ++index) {
    const Entity *element = list->getEntity(index);
    sum.add(element == nullptr ? "" : element->getName(true));
    sum.add(std::to_string(list->indexOf(element)));
  }
}

void readValues(Project &project, Sum &sum) {
  for (const std::unique_ptr<ModelEntity> &entity : project.parts().model.entities()) {
    if (!entity->exists()) {
      continue;
    }
    for (const Entity *owner = entity.get(); owner != nullptr; owner = owner->getOwnerEntity()) {
      sum.add(owner->getName(true));
    }
    for (Slot &slot : entity->slots()) {
      EntityModel::Attribute &attribute = ModelEntity::attributeOf(slot);
      sum.add(attribute.getValueAsString() + attribute.getUnits(0) + attribute.getTypeDescription());
      sum.add(std::to_string(attribute.getNumericValue()));
      sum.add(attribute.getReferencedAttribute() == nullptr ? "" : "reference");
      readList(attribute, sum);
    }
    sum.add(project.getModellingImpact()->hasModellingImpact(entity.get(), "NoCFDImpact", true) ? "1" : "0");
  }
}

void readVersion(Project &project, ModelVersion &version, std::int64_t number, Sum &sum) {
  sum.add(version.getLabel());
  sum.add(version.getPrevious() == nullptr ? "" : version.getPrevious()->getLabel());
  std::vector<ModelVersion *> alternates;
  project.changeManager().getAlternates(&version, alternates);
  sum.add(std::to_string(alternates.size()) + std::to_string(static_cast<int>(version.getVersionType())));
  const RunRecord run = project.runRecord(version);
  sum.add(run.reason + run.solverVersion + run.logTail +
          std::to_string(run.command.size() + run.keys.size()));
  for (const std::unique_ptr<ModelEntity> &entity : project.parts().model.entities()) {
    // Each version by some, each entity by some.
    if ((entity->number() + number) % 4 == 0) {
      sum.add(project.changeManager().findVersion(version.getLabel(), entity.get()) == nullptr ? "0" : "1");
    }
    for (const Slot &slot : entity->slots()) {
      const EntityModel::EditOperation *edit =
          version.getDelta(true)->findEditOperation(entity.get(), slot.member->path);
      const EntityModel::Attribute *value = edit == nullptr ? nullptr : edit->getValue();
      sum.add(value == nullptr ? "" : value->getValueAsString());
    }
  }
}

bool walk(Project &project, Sum &sum) {
  std::int64_t number = 0;
  for (ModelVersion *version : project.versions()) {
    readVersion(project, *version, number++, sum);
    if (!project.changeManager().setCurrentVersion(version, nullptr, false, nullptr, true)) {
      return false;
    }
    readValues(project, sum);
  }
  return project.rootVersion() != nullptr && project.rootEntity()->getOwnerEntity() == nullptr;
}

// Changes of every kind in the last version; none of them is saved.
void edit(Project &project) {
  Entity *root = project.rootEntity();
  EntityModel::ListAttribute *parts =
      project.attribute(root, "Parts") == nullptr ? nullptr : project.attribute(root, "Parts")->asList();
  Entity *part = parts == nullptr ? nullptr : parts->getEntity(0);
  Entity *made = project.createEntity("Part", root, "Parts", "New");
  if (made != nullptr && part != nullptr) {
    EntityEditor::moveEntity(part, made, project.attribute(made, "Parts")->asLink(), false, -1);
    EntityEditor::deleteEntity(made, true, false);
  }
  EntityModel::ChangeManager &tree = project.changeManager();
  ModelVersion *last = project.versions().back();
  tree.startNewAlternate(last, nullptr, true, 0);
  ModelVersion *next = tree.startNewVersion("New", "", "", "", nullptr, last, false);
  bool isDestroyed = false;
  tree.destroyVersion(last == project.rootVersion() ? next : last, nullptr, isDestroyed);
}

bool isSavedSound(Project &project, const std::string &file) {
  std::string problem;
  const bool isSaved = project.saveAs(file, problem);
  // Two connections of one process to one file would disturb each other's locks no more than a reader's.
  const bool isSound = isSaved && Project::open(file, OpenMode::ReadOnly, problem) != nullptr;
  for (const char *ending : {"", "-journal", ".lock"}) {
    unlink((file + ending).c_str());
  }
  return isSound;
}

} // namespace

Opening openAndWalk(const std::string &file, OpenMode mode, const std::string &scratch) {
  std::string problem;
  const auto project = Project::open(file, mode, problem);
  if (project == nullptr) {
    return problem.find(file) == std::string::npos ? Opening::RefusedWithoutName : Opening::Refused;
  }
  const HostModel::HostInstallation installation(*project);
  Sum sum;
  if (!problem.empty() || !walk(*project, sum)) {
    return Opening::Contradicted;
  }
  if (mode == OpenMode::ReadOnly) {
    const bool isRefused = !project->save(problem) && problem.find(file) != std::string::npos;
    return isRefused && sum.value() != 0 ? Opening::Opened : Opening::Contradicted;
  }
  edit(*project);
  return isSavedSound(*project, scratch + "/copy.optstudy") ? Opening::Opened : Opening::Contradicted;
}

} // namespace EmbeddedHost
