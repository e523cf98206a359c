#include "tests/contract/Notes.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityManager.h"
#include "HostModel/ObserverManager.h"
#include "tests/contract/Scene.h"

namespace HostContract {

// The manager of the process is where every observer is registered, whoever hands it out.
Notes::Notes(Scene &scene) : Observer(false, true), m_root(scene.root()) {
  EntityGUI::ObserverManager::process().addObserver(this);
}

Notes::~Notes() {
  EntityGUI::ObserverManager::process().removeObserver(this);
}

void Notes::setCurrentEntity(EntityModel::Entity *entity, bool /*scrollTo*/) {
  m_lines.push_back("entity " + nameOf(entity));
}

void Notes::changedEntities(EntityModel::ChangeSet &changes) {
  m_lines.push_back("edit" + describe(changes));
}

void Notes::changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                           const std::string &versionName, bool reload) {
  m_lines.push_back("version " + versionName + " of " + nameOf(entity) + (reload ? " reloaded" : "") +
                    describe(changes));
}

std::string Notes::nameOf(const EntityModel::Entity *entity) const {
  if (entity == m_root) {
    return "root";
  }
  const std::string name = entity == nullptr ? "" : entity->getName(true);
  return name.empty() ? "?" : name;
}

std::string Notes::describe(const EntityModel::ChangeSet &changes) const {
  std::string text;
  for (const EntityModel::ChangeSet::ModifiedEntity &entry : changes.getModifiedEntities()) {
    for (const EntityModel::Attribute *attribute : entry.attributes) {
      text += " " + nameOf(entry.entity) + "." + attribute->getAttributePath().toString('.') + "=" +
              attribute->getValueAsString();
    }
  }
  return text;
}

} // namespace HostContract
