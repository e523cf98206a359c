#include "EmbeddedHost/Commands.h"

#include "EmbeddedHost/src/model/Model.h"
#include "EmbeddedHost/src/model/ModelAttributes.h"
#include "EmbeddedHost/src/model/ValueText.h"
#include "EmbeddedHost/src/project/ProjectParts.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/Lookup.h"
#include "HostModel/ObserverManager.h"
#include "HostModel/TypeConstants.h"

#include <algorithm>
#include <exception>
#include <unordered_set>

namespace EmbeddedHost {

using EntityGUI::EntityManager;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::ModelVersion;

namespace {

CommandResult refused(const std::string &problem) {
  return {problem};
}

std::string quoted(const std::string &label) {
  return "\"" + label + "\"";
}

// Whether the attribute is a variable of an input group of a study whose baseline has this label.
bool isStudyInput(const Entity &root, const std::string &label, const EntityModel::Attribute &attribute) {
  for (const Entity *study : getLinkedEntities(&root, AttributePath(EntityModel::OptimizationDataList_t))) {
    if (getStringValue(study, AttributePath(EntityModel::BaseVersionName_t), "") != label) {
      continue;
    }
    for (const Entity *group : getLinkedEntities(study, AttributePath(EntityModel::OptimizationInputs_t))) {
      for (const Entity *variable :
           getLinkedEntities(group, AttributePath(EntityModel::OptimizationAttributes_t))) {
        Entity *owner = getLinkedEntity(variable, AttributePath(EntityModel::ParentEntity_t));
        const AttributePath path(getStringValue(variable, AttributePath(EntityModel::Path_t), ""));
        if (EntityModel::findAttribute(owner, path) == &attribute) {
          return true;
        }
      }
    }
  }
  return false;
}

} // namespace

Commands::Commands(Project &project) : m_project(project) {}

Commands::SolverRun::SolverRun(Commands &commands) : m_commands(commands) {
  ++m_commands.m_solverRuns;
}

Commands::SolverRun::~SolverRun() {
  --m_commands.m_solverRuns;
}

void Commands::announceOpened() {
  EntityManager::s_CurrentFilename = m_project.file();
  EntityManager::s_CurrentEntity = m_project.rootEntity();
  if (EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager()) {
    observers->broadcastSetCurrentEntity(m_project.rootEntity(), false);
  }
}

CommandResult Commands::close() {
  if (m_solverRuns > 0) {
    return refused("The project cannot be closed while a solver runs.");
  }
  m_project.parts().model.tree().makeCurrent(nullptr);
  // Finding no current version, an observer that holds a study of this project lets go of it.
  Entity *root = m_project.rootEntity();
  EntityManager::s_CurrentEntity = nullptr;
  EntityManager::s_CurrentFilename.clear();
  if (EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager()) {
    observers->broadcastSetCurrentEntity(root, false);
  }
  return {};
}

CommandResult Commands::switchVersion(ModelVersion *version) {
  VersionTree &tree = m_project.parts().model.tree();
  if (tree.own(version) == nullptr) {
    return refused("There is no such version.");
  }
  EntityManager::s_CurrentEntity = m_project.rootEntity();
  // Through the facade, so that a host that wraps this one sees the switch too.
  EntityModel::ChangeManager *changeManager = EntityManager::getChangeManager();
  const bool wasCurrent = tree.current() == version;
  EntityModel::ChangeSet changes;
  if (changeManager == nullptr ||
      !changeManager->setCurrentVersion(version, &changes, false, nullptr, true)) {
    return refused("The version " + quoted(version->getLabel()) + " could not be made current.");
  }
  EntityGUI::AbstractObserverManager *observers = EntityManager::getObserverManager();
  if (!wasCurrent && !tree.switchesNotify && observers != nullptr) {
    observers->broadcastChangedVersion(changes, m_project.rootEntity(), version->getLabel(), false, true);
  }
  return {};
}

CommandResult Commands::switchVersion(const std::string &label) {
  ModelVersion *version = m_project.changeManager().findVersion(label, nullptr);
  return version == nullptr ? refused("There is no version " + quoted(label) + ".") : switchVersion(version);
}

CommandResult Commands::edit(Entity *entity, const AttributePath &path, const std::string &text) {
  Model &model = m_project.parts().model;
  const Version *current = model.tree().current();
  EntityModel::Attribute *attribute = EntityModel::findAttribute(entity, path);
  if (current == nullptr || attribute == nullptr || ModelEntity::from(entity, model) == nullptr) {
    return refused("There is no such value in the current version.");
  }
  const std::string name = entity->getName(true) + (path.empty() ? "" : "." + path.toString('.'));
  if (current->marks().isReadOnly) {
    return refused("The version " + quoted(current->getLabel()) + " is read-only.");
  }
  if (attribute->isReadOnly(false)) {
    return refused(name + " is a result; it cannot be edited.");
  }
  if (attribute->isLocked()) {
    return refused(name + " is locked.");
  }
  if (attribute->isInternal()) {
    return refused(name + " is internal; it cannot be edited.");
  }
  const Slot *slot = slotOf(*attribute);
  const bool unsets = text.empty() && slot != nullptr && isNumberKind(slot->member->kind);
  if (unsets && isStudyInput(model.root(), current->getLabel(), *attribute)) {
    return refused(name + " is an input of the study; it needs a value.");
  }
  if (!unsets) {
    // Found out before the change, so that an exception of an observer is not taken for a refusal.
    try {
      if (slot != nullptr) {
        readValue(*slot, text, &model);
      }
    } catch (const std::exception &error) {
      return refused(std::string(error.what()) + ".");
    }
  }
  return EntityManager::setValue(entity, path, text, true) ? CommandResult()
                                                           : refused(name + " could not be set.");
}

CommandResult Commands::renameVersion(ModelVersion *version, const std::string &label) {
  VersionTree &tree = m_project.parts().model.tree();
  const Version *known = tree.own(version);
  if (known == nullptr) {
    return refused("There is no such version.");
  }
  if (label == known->getLabel()) {
    return {};
  }
  const std::string name = "The version " + quoted(known->getLabel());
  if (m_solverRuns > 0) {
    return refused(name + " cannot be renamed while a solver runs.");
  }
  if (known->marks().isReadOnly) {
    return refused(name + " is read-only.");
  }
  if (known->getVersionType() != ModelVersion::VersionType::Ordinary) {
    return refused(name + " belongs to a study, which finds it by its label.");
  }
  if (label.empty()) {
    return refused("A version needs a label.");
  }
  if (tree.findVersion(label, nullptr) != nullptr) {
    return refused("There is a version " + quoted(label) + " already.");
  }
  version->setLabel(label);
  return {};
}

CommandResult Commands::deleteVersion(ModelVersion *version) {
  VersionTree &tree = m_project.parts().model.tree();
  const Version *known = tree.own(version);
  if (known == nullptr) {
    return refused("There is no such version.");
  }
  if (known == tree.root()) {
    return refused("The first version cannot be deleted.");
  }
  if (m_solverRuns > 0) {
    return refused("No version can be deleted while a solver runs.");
  }
  std::vector<const Version *> doomed = {known};
  for (std::size_t position = 0; position < doomed.size(); ++position) {
    const Version &each = *doomed[position];
    if (each.marks().isReadOnly || each.getVersionType() != ModelVersion::VersionType::Ordinary) {
      return refused("The version " + quoted(each.getLabel()) +
                     (each.marks().isReadOnly ? " is read-only." : " belongs to a study."));
    }
    for (const ModelVersion *follower : each.followers()) {
      doomed.push_back(tree.own(follower));
    }
  }
  Version *next = tree.current();
  while (next != nullptr && std::find(doomed.begin(), doomed.end(), next) != doomed.end()) {
    next = next->previous();
  }
  // A version that goes is left like any other first, so that the observers are told.
  if (next != nullptr && next != tree.current()) {
    if (CommandResult left = switchVersion(next); !left) {
      return left;
    }
  }
  bool isDestroyed = false;
  EntityModel::ChangeSet changes;
  tree.destroyVersion(version, &changes, isDestroyed);
  return {};
}

CommandResult Commands::save() {
  CommandResult result;
  m_project.save(result.problem);
  return result;
}

CommandResult Commands::saveAs(const std::string &file) {
  CommandResult result;
  if (m_solverRuns > 0) {
    return refused("The project cannot be saved under another name while a solver runs.");
  }
  if (m_project.saveAs(file, result.problem)) {
    EntityManager::s_CurrentFilename = m_project.file();
  }
  return result;
}

} // namespace EmbeddedHost
