#pragma once

#include "HostModel/Attribute.h"

namespace OptimizationTool {

// The attribute as a list of entities; null when it is null or of another kind.
inline EntityModel::ListAttribute *toEntityList(EntityModel::Attribute *attribute) {
  return attribute != nullptr && attribute->isEntityList() ? attribute->asList() : nullptr;
}

// The entity's own member of that type as a list of entities; null without entity, member or list.
inline EntityModel::ListAttribute *findEntityList(EntityModel::Entity *entity,
                                                  const EntityModel::TypeRef &type) {
  return entity == nullptr ? nullptr : toEntityList(entity->findAttribute(type, false));
}

// The first entity of the list, in list order, for which the predicate is true; null without list and when
// there is none. Null entries are skipped.
template <typename Predicate>
EntityModel::Entity *findInList(const EntityModel::ListAttribute *list, Predicate predicate) {
  const int count = list == nullptr ? 0 : list->getCount();
  for (int index = 0; index < count; ++index) {
    EntityModel::Entity *entity = list->getEntity(index);
    if (entity != nullptr && predicate(entity)) {
      return entity;
    }
  }
  return nullptr;
}

// Calls the function with every entity of the list in list order. Null entries are skipped.
template <typename Function> void forEachInList(const EntityModel::ListAttribute *list, Function function) {
  findInList(list, [&function](EntityModel::Entity *entity) {
    function(entity);
    return false;
  });
}

// The entity that holds this one in a list or link; null when nothing does.
inline EntityModel::Entity *findHoldingEntity(const EntityModel::Entity *entity) {
  EntityModel::EntityLink *link = entity == nullptr ? nullptr : entity->getOwnerEntityLink();
  return link == nullptr ? nullptr : link->getOwnerEntity();
}

// Position in the list that holds the entity; -1 when no list does.
inline int findIndexInHoldingList(const EntityModel::Entity *entity) {
  EntityModel::EntityLink *link = entity == nullptr ? nullptr : entity->getOwnerEntityLink();
  EntityModel::ListAttribute *list = toEntityList(link);
  return list == nullptr ? -1 : list->indexOf(entity);
}

} // namespace OptimizationTool
