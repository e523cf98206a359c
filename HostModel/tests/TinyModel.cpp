#include "HostModel/tests/TinyModel.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace TinyModel {

template <class Base> void AttributeOf<Base>::setValueFromString(const std::string &text) {
  if (isNumeric() && text.empty()) {
    throw std::runtime_error("Not a number");
  }
  answers.text = text;
  answers.isHeld = true;
}

template <class Base> void AttributeOf<Base>::assignValue(const EntityModel::Attribute &other) {
  answers.text = other.getValueAsString();
  answers.isHeld = other.hasValue();
}

template <class Base> double AttributeOf<Base>::getStandardValue() const {
  double value = 0.0;
  if (answers.isHeld) {
    std::from_chars(answers.text.data(), answers.text.data() + answers.text.size(), value);
  }
  return value * answers.factor;
}

template <class Base> double AttributeOf<Base>::getValueInUnits(const std::string &units) const {
  return units == answers.units && !units.empty() ? getStandardValue() / answers.factor : getStandardValue();
}

template <class Base> std::unique_ptr<EntityModel::Attribute> AttributeOf<Base>::clone() const {
  Answers copy = answers;
  copy.owner = nullptr;
  return std::make_unique<Value>(std::move(copy));
}

template class AttributeOf<EntityModel::Attribute>;
template class AttributeOf<EntityModel::EntityLink>;
template class AttributeOf<EntityModel::ListAttribute>;
template class AttributeOf<EntityModel::TypeAttribute>;
template class AttributeOf<EntityModel::Entity>;

EntityModel::Entity *List::getEntity(int index) const {
  return index < 0 || index >= getCount() ? nullptr : entities[static_cast<std::size_t>(index)];
}

int List::indexOf(const EntityModel::Entity *entity) const {
  const auto found = std::find(entities.begin(), entities.end(), entity);
  return found == entities.end() ? -1 : static_cast<int>(found - entities.begin());
}

bool List::moveEntity(EntityModel::Entity *entity, int to) {
  const int from = indexOf(entity);
  if (from < 0 || to < 0 || to > getCount()) {
    return false;
  }
  entities.insert(entities.begin() + to, entity);
  entities.erase(entities.begin() + (from < to ? from : from + 1));
  return true;
}

namespace {

Answers entityAnswers(const EntityModel::TypeRef &type) {
  Answers answers;
  answers.kind = Kind::Entity;
  answers.type = EntityModel::Type(type, 7);
  return answers;
}

} // namespace

Entity::Entity(std::string entityName, const EntityModel::TypeRef &type)
    : AttributeOf(entityAnswers(type)), name(std::move(entityName)) {
  answers.owner = this;
  answers.text = name;
}

EntityModel::Attribute *Entity::findAttribute(const EntityModel::AttributePath &path) {
  if (path.empty()) {
    return this;
  }
  for (const auto &member : members) {
    if (member->getAttributePath() == path) {
      return member.get();
    }
  }
  return nullptr;
}

EntityModel::Attribute *Entity::findAttribute(const EntityModel::TypeRef &type, bool searchMembers) {
  for (const auto &member : members) {
    const EntityModel::AttributePath path = member->getAttributePath();
    if (path.back() == type && (searchMembers || path.size() == 1)) {
      return member.get();
    }
  }
  return nullptr;
}

Value &Entity::addValue(const char *path, Kind kind, const std::string &text) {
  Answers given;
  given.kind = kind;
  given.text = text;
  return add(path, std::move(given));
}

List &Entity::addList(const char *path) {
  Answers given;
  given.kind = Kind::List;
  return add<List>(path, std::move(given));
}

Link &Entity::addLink(const char *path, EntityModel::Entity *linked) {
  Answers given;
  given.kind = Kind::Link;
  Link &link = add<Link>(path, std::move(given));
  link.linked = linked;
  return link;
}

TypeValue &Entity::addType(const char *path, const EntityModel::TypeRef &held) {
  Answers given;
  given.kind = Kind::Type;
  TypeValue &value = add<TypeValue>(path, std::move(given));
  value.held = held;
  return value;
}

void own(List &list, Entity &entity) {
  list.entities.push_back(&entity);
  entity.ownerLink = &list;
}

} // namespace TinyModel
