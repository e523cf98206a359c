#include "HostModel/AttributeSorter.h"

#include "HostModel/Attribute.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace EntityModel {

namespace {

using TreePosition = std::vector<std::pair<std::string, int>>;

// From the root down: the path text of each owning link and the position in it.
TreePosition treePosition(const Entity *entity) {
  TreePosition position;
  while (entity != nullptr) {
    EntityLink *link = entity->getOwnerEntityLink();
    if (link == nullptr) {
      break;
    }
    ListAttribute *list = link->asList();
    position.emplace_back(link->getAttributePath().toString('.'),
                          list == nullptr ? 0 : list->indexOf(entity));
    entity = link->getOwnerEntity();
  }
  std::reverse(position.begin(), position.end());
  return position;
}

} // namespace

bool AttributeSorter::operator()(const Attribute *a, const Attribute *b) const {
  if (a == b || a == nullptr || b == nullptr) {
    return a == nullptr && b != nullptr;
  }
  if (a->getOwnerEntity() != b->getOwnerEntity()) {
    const TreePosition left = treePosition(a->getOwnerEntity());
    const TreePosition right = treePosition(b->getOwnerEntity());
    if (left != right) {
      return left < right;
    }
  }
  const std::string left = a->getAttributePath().toString('.');
  const std::string right = b->getAttributePath().toString('.');
  return left == right ? std::less<>()(a, b) : left < right;
}

} // namespace EntityModel
