#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/Export.h"

#include <string>

namespace EntityModel {
class ChangeManager;
class ChangeSet;
class Entity;
} // namespace EntityModel

namespace EntityGUI {

class AbstractObserverManager;

/// The application's model checker.
class HOSTMODEL_EXPORT AbstractModelChecker {
public:
  AbstractModelChecker() = default;
  AbstractModelChecker(const AbstractModelChecker &) = delete;
  AbstractModelChecker &operator=(const AbstractModelChecker &) = delete;
  virtual ~AbstractModelChecker();

  /// Checks what has changed in the current version and may recompute attributes that depend on it. Must not
  /// switch versions, select the root entity or free attributes.
  virtual void check(EntityModel::ChangeSet &changes) = 0;
};

/// What a host writes to offer EntityManager.
class HOSTMODEL_EXPORT EntityManagerService {
public:
  EntityManagerService() = default;
  EntityManagerService(const EntityManagerService &) = delete;
  EntityManagerService &operator=(const EntityManagerService &) = delete;
  virtual ~EntityManagerService();

  virtual EntityModel::ChangeManager *getChangeManager() = 0;
  /// Every host hands out ObserverManager::process().
  virtual AbstractObserverManager *getObserverManager() = 0;
  virtual void setNeedsSave(bool needsSave) = 0;
  virtual bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                        const std::string &text, bool notify) = 0;
  virtual void checkSelectionsAreValid() = 0;
  virtual AbstractModelChecker *getModelChecker() = 0;
};

/// The running application. Without a host nothing happens and the answer is null, "" or false.
class HOSTMODEL_EXPORT EntityManager {
public:
  EntityManager() = delete;

  /// The entity that is selected; set by the host.
  static EntityModel::Entity *s_CurrentEntity;
  /// The file of the open project, "" when it was never saved; set by the host.
  static std::string s_CurrentFilename;

  /// The change manager, or null.
  static EntityModel::ChangeManager *getChangeManager();
  /// The observer manager, or null.
  static AbstractObserverManager *getObserverManager();
  /// s_CurrentEntity.
  static EntityModel::Entity *getCurrentEntity();
  /// The label of the change manager's current version at this moment; "" when there is none.
  static std::string getCurrentVersion();
  /// Marks the project as changed since it was saved, or not.
  static void setNeedsSave(bool needsSave);
  /// Sets a value from text and tells the observers of the changed attribute.
  /// \throws std::exception  the text is no value of the attribute; nothing has changed
  static bool setValue(EntityModel::Entity *entity, const EntityModel::AttributePath &path,
                       const std::string &text, bool notify);
  /// Drops selections that the current version does not have; must not select the root entity.
  static void checkSelectionsAreValid();
  /// The model checker, or null.
  static AbstractModelChecker *getModelChecker();
};

} // namespace EntityGUI
