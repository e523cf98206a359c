#include "HostModel/Observer.h"

#include "HostModel/ObserverManager.h"

namespace EntityGUI {

Observer::Observer(bool isModal, bool receivesOwnChanges)
    : m_isModal(isModal), m_receivesOwnChanges(receivesOwnChanges) {}

// The host may be uninstalled by now, so the process-wide manager is asked directly.
Observer::~Observer() {
  ObserverManager::process().removeObserver(this);
}

void Observer::setCurrentEntity(EntityModel::Entity * /*entity*/, bool /*scrollTo*/) {}
void Observer::changedEntities(EntityModel::ChangeSet & /*changes*/) {}
void Observer::selectEntities(const std::vector<EntityModel::Entity *> & /*entities*/) {}
void Observer::changedVersion(EntityModel::ChangeSet & /*changes*/, EntityModel::Entity * /*entity*/,
                              const std::string & /*versionName*/, bool /*reload*/) {}
void Observer::undoneOrRedone(EntityModel::ChangeSet &changes) {
  changedEntities(changes);
}

} // namespace EntityGUI
