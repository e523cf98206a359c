#include "HostModel/Attribute.h"

namespace EntityModel {

Attribute::~Attribute() = default;
CompositeAttribute::~CompositeAttribute() = default;
Entity::~Entity() = default;
EntityLink::~EntityLink() = default;
ListAttribute::~ListAttribute() = default;
TypeAttribute::~TypeAttribute() = default;

Entity *Attribute::asEntity() {
  return nullptr;
}
EntityLink *Attribute::asLink() {
  return nullptr;
}
ListAttribute *Attribute::asList() {
  return nullptr;
}
TypeAttribute *Attribute::asTypeAttribute() {
  return nullptr;
}
Attribute *Attribute::getReferencedAttribute() const {
  return nullptr;
}

// A look-up changes nothing; a host writes it once, in the form that can also be used for changes.
const Attribute *CompositeAttribute::findAttribute(const AttributePath &path) const {
  return const_cast<CompositeAttribute *>(this)->findAttribute(path);
}

const Attribute *CompositeAttribute::findAttribute(const TypeRef &type, bool searchMembers) const {
  return const_cast<CompositeAttribute *>(this)->findAttribute(type, searchMembers);
}

} // namespace EntityModel
