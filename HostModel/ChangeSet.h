#pragma once

#include "HostModel/Export.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace EntityModel {

class Attribute;
class Entity;

/// A record of modified entities and attributes, filled by edits and handed to observers. Entities stand in
/// the order of their first addition, the attributes of each in the order of addition, without repetition.
/// Null pointers are not recorded.
class HOSTMODEL_EXPORT ChangeSet {
public:
  /// One modified entity and those of its attributes that were modified.
  struct ModifiedEntity {
    Entity *entity = nullptr;
    std::vector<Attribute *> attributes;
  };

  ChangeSet();
  ChangeSet(const ChangeSet &other);
  ChangeSet &operator=(const ChangeSet &other);
  ~ChangeSet();

  void clear();
  void addModified(Entity *entity);
  /// Adds the entity too where it is not yet recorded.
  void addModifiedAttribute(Entity *entity, Attribute *attribute);

  const std::vector<ModifiedEntity> &getModifiedEntities() const { return m_entities; }
  bool isEmpty() const { return m_entities.empty(); }

private:
  ModifiedEntity &entry(Entity *entity);

  std::vector<ModifiedEntity> m_entities;
  std::unordered_map<const Entity *, std::size_t> m_positions;
};

} // namespace EntityModel
