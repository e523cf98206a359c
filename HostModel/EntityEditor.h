#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/Export.h"
#include "HostModel/TypeRef.h"

#include <string>
#include <vector>

namespace EntityModel {

class ChangeManager;
class Entity;
class EntityLink;
class LibraryInterface;

/// What a host writes to offer EntityEditor. Editing is the model layer: it marks the project as needing to
/// be saved, is never refused because a version is read-only, and tells no observer.
class HOSTMODEL_EXPORT EntityEditorService {
public:
  EntityEditorService() = default;
  EntityEditorService(const EntityEditorService &) = delete;
  EntityEditorService &operator=(const EntityEditorService &) = delete;
  virtual ~EntityEditorService();

  virtual Entity *getRootEntity() = 0;
  virtual ChangeManager *getChangeManager() = 0;
  virtual Entity *createEntity(const TypeRef &type, Entity *owner, const AttributePath &listPath,
                               LibraryInterface *library, bool setDefaults, bool notify, bool select,
                               const std::string &name, int position) = 0;
  virtual bool addEntity(Entity *owner, const AttributePath &listPath, Entity *entity, bool takeOwnership,
                         bool checkType, bool notify, bool markEdited, bool select, int position) = 0;
  virtual bool moveEntity(Entity *entity, Entity *newOwner, EntityLink *link, bool notify, int position) = 0;
  virtual bool deleteEntity(Entity *entity, bool force, bool notify) = 0;
  virtual bool deleteEntities(std::vector<Entity *> &entities, bool force, bool notify) = 0;
  virtual bool setValue(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                        std::vector<Entity *> *affected, bool notify, bool markEdited) = 0;
  virtual bool setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                               std::vector<Entity *> *affected, bool notify) = 0;
  virtual bool setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool notify) = 0;
};

/// Editing of the installed host's model. Without a host nothing happens and the answer is null or false.
class HOSTMODEL_EXPORT EntityEditor {
public:
  EntityEditor() = delete;

  /// The root entity, or null.
  static Entity *getRootEntity();
  /// The change manager, or null.
  static ChangeManager *getChangeManager();
  /// Creates an entity with all members that its type declares, in the list or link of its owner.
  /// \param position  in the list; -1 appends
  /// \return null for an unknown type or list, or when the host refuses
  static Entity *createEntity(const TypeRef &type, Entity *owner, const AttributePath &listPath,
                              LibraryInterface *library, bool setDefaults, bool notify, bool select,
                              const std::string &name, int position);
  /// Links an existing entity at a list or link of \p owner, which does not own it unless \p takeOwnership.
  static bool addEntity(Entity *owner, const AttributePath &listPath, Entity *entity, bool takeOwnership,
                        bool checkType, bool notify, bool markEdited, bool select, int position);
  /// Moves an entity into another owner's link; position -1 is the end, also within one list.
  static bool moveEntity(Entity *entity, Entity *newOwner, EntityLink *link, bool notify, int position);
  /// Deletes the entity and everything that it owns; links to it become null.
  /// \return false for null
  static bool deleteEntity(Entity *entity, bool force, bool notify);
  static bool deleteEntities(std::vector<Entity *> &entities, bool force, bool notify);
  /// Sets a value from text, of a read-only attribute too. "" unsets a number.
  /// \return true also when the value was the same before; false for a null entity or a missing path
  /// \throws std::exception  the text is no value of the attribute; nothing has changed
  static bool setValue(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                       std::vector<Entity *> *affected, bool notify, bool markEdited);
  /// As setValue(), but answers false where that throws.
  static bool setValueNoThrow(Entity *entity, const AttributePath &path, const std::string &text, bool force,
                              std::vector<Entity *> *affected, bool notify);
  /// Sets a boolean.
  static bool setValueNoThrow(Entity *entity, const AttributePath &path, bool value, bool notify);
};

} // namespace EntityModel
