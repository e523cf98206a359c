#pragma once

#include "HostModel/Export.h"

#include <string>
#include <vector>

namespace EntityModel {
class ChangeSet;
class Entity;
} // namespace EntityModel

namespace EntityGUI {

/// Learns of changes to the running application's model. Does nothing by default.
/// An observer that is destroyed while registered with the process-wide observer manager is taken out of it.
class HOSTMODEL_EXPORT Observer {
public:
  /// \param isModal             the observer blocks others; read and set by hosts only
  /// \param receivesOwnChanges  the observer also learns of changes that it made; read and set by hosts only
  Observer(bool isModal, bool receivesOwnChanges);
  Observer(const Observer &) = delete;
  Observer &operator=(const Observer &) = delete;
  virtual ~Observer();

  /// The user selected an entity; the root entity stands for the project as a whole.
  virtual void setCurrentEntity(EntityModel::Entity *entity, bool scrollTo);
  /// Attributes of entities have new values.
  virtual void changedEntities(EntityModel::ChangeSet &changes);
  virtual void selectEntities(const std::vector<EntityModel::Entity *> &entities);
  /// The current version has changed.
  /// \param versionName  label that the sender names; not always the version that is current now
  virtual void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                              const std::string &versionName, bool reload);
  /// An edit was undone or redone; forwards to changedEntities().
  virtual void undoneOrRedone(EntityModel::ChangeSet &changes);

  bool isModal() const { return m_isModal; }
  void setModal(bool isModal) { m_isModal = isModal; }
  bool receivesOwnChanges() const { return m_receivesOwnChanges; }
  void setReceivesOwnChanges(bool receives) { m_receivesOwnChanges = receives; }

private:
  bool m_isModal;
  bool m_receivesOwnChanges;
};

} // namespace EntityGUI
