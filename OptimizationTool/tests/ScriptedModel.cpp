#include "OptimizationTool/tests/ScriptedModel.h"

#include <algorithm>

namespace StudyTesting {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;

ScriptedAttribute::ScriptedAttribute(std::string valueText, Log *log)
    : text(std::move(valueText)), m_log(log) {}

ScriptedAttribute::~ScriptedAttribute() {
  if (m_log != nullptr) {
    m_log->push_back("destroy " + text);
  }
}

std::unique_ptr<Attribute> ScriptedAttribute::clone() const {
  if (m_log != nullptr) {
    m_log->push_back("clone " + text);
  }
  auto copy = std::make_unique<ScriptedAttribute>(text, m_log);
  copy->standardValue = standardValue;
  return copy;
}

bool ScriptedTypeAttribute::hasSameTypes(const EntityModel::TypeAttribute &other) const {
  const auto *scripted = dynamic_cast<const ScriptedTypeAttribute *>(&other);
  return scripted != nullptr && scripted->m_family == m_family;
}

Entity *ScriptedList::getEntity(int index) const {
  return index >= 0 && index < getCount() ? m_elements[static_cast<std::size_t>(index)] : nullptr;
}

int ScriptedList::indexOf(const Entity *entity) const {
  const auto found = std::find(m_elements.begin(), m_elements.end(), entity);
  return found == m_elements.end() ? -1 : static_cast<int>(found - m_elements.begin());
}

ScriptedEntity::ScriptedEntity(std::string name) : m_name(std::move(name)) {}
ScriptedEntity::~ScriptedEntity() = default;

Attribute *ScriptedEntity::findAttribute(const AttributePath &path) {
  if (path.empty()) {
    return this;
  }
  const auto found = m_members.find(path);
  return found == m_members.end() ? nullptr : found->second.get();
}

Attribute *ScriptedEntity::findAttribute(const EntityModel::TypeRef &type, bool searchMembers) {
  // Nothing here has members of members; the library never asks to search them.
  return searchMembers ? nullptr : findAttribute(AttributePath(type));
}

std::unique_ptr<ScriptedEntity> makeScriptedVariable(Entity *owner, const std::string &path) {
  auto variable = std::make_unique<ScriptedEntity>();
  if (owner != nullptr) {
    variable->add(AttributePath(EntityModel::ParentEntity_t), std::make_unique<ScriptedLink>(owner));
  }
  variable->add(AttributePath(EntityModel::Path_t), std::make_unique<ScriptedAttribute>(path));
  return variable;
}

std::unique_ptr<ScriptedEntity> makeScriptedGroup(const std::vector<Entity *> &variables) {
  auto group = std::make_unique<ScriptedEntity>();
  auto &list = group->add(AttributePath(EntityModel::OptimizationAttributes_t),
                          std::make_unique<ScriptedList>(variables));
  list.owner = group.get();
  return group;
}

} // namespace StudyTesting
