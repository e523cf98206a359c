#pragma once

#include "HostModel/Export.h"

#include <string>
#include <vector>

namespace EntityModel {
class ChangeSet;
class Entity;
} // namespace EntityModel

namespace EntityGUI {

class Observer;

/// Registry that broadcasts model notifications to observers in the order of their registration.
class HOSTMODEL_EXPORT AbstractObserverManager {
public:
  AbstractObserverManager() = default;
  AbstractObserverManager(const AbstractObserverManager &) = delete;
  AbstractObserverManager &operator=(const AbstractObserverManager &) = delete;
  virtual ~AbstractObserverManager();

  /// Adding an observer twice, or null, has no effect.
  virtual void addObserver(Observer *observer) = 0;
  virtual void removeObserver(Observer *observer) = 0;

  /// \param toSender  also tell the observer that made the change
  virtual void broadcastChangedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                                       const std::string &versionName, bool reload, bool toSender) = 0;
  virtual void broadcastChangedEntities(EntityModel::ChangeSet &changes) = 0;
  virtual void broadcastUndoneOrRedone(EntityModel::ChangeSet &changes) = 0;
  virtual void broadcastSetCurrentEntity(EntityModel::Entity *entity, bool scrollTo) = 0;
  virtual void broadcastSelectEntities(const std::vector<EntityModel::Entity *> &entities) = 0;
};

/// The observer manager of the process, which every host hands out: the study manager registers once in the
/// life of the process, while projects and hosts come and go.
///
/// Observers may be added and removed during a broadcast: one that is added learns of later broadcasts only,
/// one that is removed is not called any more. Observers get a private copy of the change set, so that edits
/// which they cause do not alter it while it is walked. An exception of an observer ends the broadcast and
/// reaches the sender; the registry is as it was.
class HOSTMODEL_EXPORT ObserverManager final : public AbstractObserverManager {
public:
  /// Made on first use and never destroyed, so that it can be reached at process exit.
  static ObserverManager &process();

  void addObserver(Observer *observer) override;
  void removeObserver(Observer *observer) override;
  void broadcastChangedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                               const std::string &versionName, bool reload, bool toSender) override;
  void broadcastChangedEntities(EntityModel::ChangeSet &changes) override;
  void broadcastUndoneOrRedone(EntityModel::ChangeSet &changes) override;
  void broadcastSetCurrentEntity(EntityModel::Entity *entity, bool scrollTo) override;
  void broadcastSelectEntities(const std::vector<EntityModel::Entity *> &entities) override;

private:
  ObserverManager() = default;
  ~ObserverManager() override = default;

  template <class Call> void forEachObserver(Call call);

  std::vector<Observer *> m_observers;
};

} // namespace EntityGUI
