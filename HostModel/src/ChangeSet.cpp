#include "HostModel/ChangeSet.h"

#include <algorithm>

namespace EntityModel {

ChangeSet::ChangeSet() = default;
ChangeSet::ChangeSet(const ChangeSet &other) = default;
ChangeSet &ChangeSet::operator=(const ChangeSet &other) = default;
ChangeSet::~ChangeSet() = default;

void ChangeSet::clear() {
  m_entities.clear();
  m_positions.clear();
}

ChangeSet::ModifiedEntity &ChangeSet::entry(Entity *entity) {
  const auto [position, isNew] = m_positions.emplace(entity, m_entities.size());
  if (isNew) {
    m_entities.push_back({entity, {}});
  }
  return m_entities[position->second];
}

void ChangeSet::addModified(Entity *entity) {
  if (entity != nullptr) {
    entry(entity);
  }
}

void ChangeSet::addModifiedAttribute(Entity *entity, Attribute *attribute) {
  if (entity == nullptr || attribute == nullptr) {
    return;
  }
  std::vector<Attribute *> &attributes = entry(entity).attributes;
  if (std::find(attributes.begin(), attributes.end(), attribute) == attributes.end()) {
    attributes.push_back(attribute);
  }
}

} // namespace EntityModel
