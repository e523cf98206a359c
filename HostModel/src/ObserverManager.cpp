#include "HostModel/ObserverManager.h"

#include "HostModel/ChangeSet.h"
#include "HostModel/Observer.h"

#include <algorithm>

namespace EntityGUI {

AbstractObserverManager::~AbstractObserverManager() = default;

ObserverManager &ObserverManager::process() {
  static auto *manager = new ObserverManager;
  return *manager;
}

void ObserverManager::addObserver(Observer *observer) {
  if (observer != nullptr &&
      std::find(m_observers.begin(), m_observers.end(), observer) == m_observers.end()) {
    m_observers.push_back(observer);
  }
}

void ObserverManager::removeObserver(Observer *observer) {
  m_observers.erase(std::remove(m_observers.begin(), m_observers.end(), observer), m_observers.end());
}

template <class Call> void ObserverManager::forEachObserver(Call call) {
  const std::vector<Observer *> observers = m_observers;
  for (Observer *observer : observers) {
    if (std::find(m_observers.begin(), m_observers.end(), observer) != m_observers.end()) {
      call(*observer);
    }
  }
}

void ObserverManager::broadcastChangedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                                              const std::string &versionName, bool reload,
                                              bool /*toSender*/) {
  EntityModel::ChangeSet copy = changes;
  const std::string name = versionName;
  forEachObserver([&](Observer &observer) { observer.changedVersion(copy, entity, name, reload); });
}

void ObserverManager::broadcastChangedEntities(EntityModel::ChangeSet &changes) {
  EntityModel::ChangeSet copy = changes;
  forEachObserver([&](Observer &observer) { observer.changedEntities(copy); });
}

void ObserverManager::broadcastUndoneOrRedone(EntityModel::ChangeSet &changes) {
  EntityModel::ChangeSet copy = changes;
  forEachObserver([&](Observer &observer) { observer.undoneOrRedone(copy); });
}

void ObserverManager::broadcastSetCurrentEntity(EntityModel::Entity *entity, bool scrollTo) {
  forEachObserver([&](Observer &observer) { observer.setCurrentEntity(entity, scrollTo); });
}

void ObserverManager::broadcastSelectEntities(const std::vector<EntityModel::Entity *> &entities) {
  const std::vector<EntityModel::Entity *> copy = entities;
  forEachObserver([&](Observer &observer) { observer.selectEntities(copy); });
}

} // namespace EntityGUI
