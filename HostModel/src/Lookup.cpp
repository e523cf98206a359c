#include "HostModel/Lookup.h"

#include "HostModel/Attribute.h"

namespace EntityModel {

namespace {

// The views of an attribute under its own class are asked of a changeable one; reading them changes nothing.
Attribute *find(const CompositeAttribute *composite, const AttributePath &path) {
  return findAttribute(const_cast<CompositeAttribute *>(composite), path);
}

} // namespace

Attribute *findAttribute(CompositeAttribute *composite, const AttributePath &path) {
  return composite == nullptr ? nullptr : composite->findAttribute(path);
}

const Attribute *findAttribute(const CompositeAttribute *composite, const AttributePath &path) {
  return composite == nullptr ? nullptr : composite->findAttribute(path);
}

Entity *getLinkedEntity(const CompositeAttribute *composite, const AttributePath &path) {
  Attribute *attribute = find(composite, path);
  EntityLink *link = attribute == nullptr ? nullptr : attribute->asLink();
  return link == nullptr ? nullptr : link->getLinkedEntity();
}

std::vector<Entity *> getLinkedEntities(const CompositeAttribute *composite, const AttributePath &path) {
  std::vector<Entity *> entities;
  Attribute *attribute = find(composite, path);
  ListAttribute *list = attribute == nullptr ? nullptr : attribute->asList();
  if (list == nullptr) {
    return entities;
  }
  const int count = list->getCount();
  for (int index = 0; index < count; ++index) {
    if (Entity *entity = list->getEntity(index)) {
      entities.push_back(entity);
    }
  }
  return entities;
}

std::string getStringValue(const CompositeAttribute *composite, const AttributePath &path,
                           const std::string &defaultValue) {
  const Attribute *attribute = findAttribute(composite, path);
  return attribute == nullptr ? defaultValue : attribute->getValueAsString();
}

bool getBoolValue(const CompositeAttribute *composite, const AttributePath &path, bool defaultValue) {
  const Attribute *attribute = findAttribute(composite, path);
  if (attribute == nullptr || !attribute->isBoolean() || !attribute->hasValue()) {
    return defaultValue;
  }
  return attribute->getIntValue() != 0;
}

TypeRef getTypeValue(const CompositeAttribute *composite, const AttributePath &path,
                     const TypeRef &defaultValue) {
  Attribute *attribute = find(composite, path);
  TypeAttribute *type = attribute == nullptr ? nullptr : attribute->asTypeAttribute();
  if (type == nullptr || type->getTypeValue().isEmpty()) {
    return defaultValue;
  }
  return type->getTypeValue();
}

} // namespace EntityModel
