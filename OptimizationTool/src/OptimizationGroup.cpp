#include "OptimizationTool/OptimizationGroup.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationGroups.h"
#include "OptimizationTool/src/EntityLists.h"

#include <algorithm>

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ListAttribute;

OptimizationGroup::OptimizationGroup(Entity *entity) : m_entity(entity) {}
OptimizationGroup::OptimizationGroup(const OptimizationGroup &other) = default;
OptimizationGroup &OptimizationGroup::operator=(const OptimizationGroup &other) = default;
OptimizationGroup::~OptimizationGroup() = default;

int OptimizationGroup::size() const {
  const ListAttribute *list = getVariableList();
  return list == nullptr ? 0 : list->getCount();
}

bool OptimizationGroup::empty() const {
  return size() == 0;
}

ListAttribute *OptimizationGroup::getVariableList() const {
  return findEntityList(m_entity, EntityModel::OptimizationAttributes_t);
}

OptimizationGroupVariable OptimizationGroup::getVariable(int index) const {
  const ListAttribute *list = getVariableList();
  return OptimizationGroupVariable(list == nullptr ? nullptr : list->getEntity(index));
}

OptimizationGroupVariable OptimizationGroup::getFrontVariable() const {
  return getVariable(0);
}

Attribute *OptimizationGroup::getAttribute(int index) const {
  return getVariable(index).getAttribute();
}

Attribute *OptimizationGroup::getFrontAttribute() const {
  return getAttribute(0);
}

int OptimizationGroup::getIndex() const {
  return findIndexInHoldingList(m_entity);
}

OptimizationGroups OptimizationGroup::getGroups() const {
  EntityModel::EntityLink *link = m_entity == nullptr ? nullptr : m_entity->getOwnerEntityLink();
  if (link == nullptr) {
    return OptimizationGroups(nullptr, false);
  }
  return OptimizationGroups(link->getOwnerEntity(), link->getAttributePath());
}

bool OptimizationGroup::isInput() const {
  return getGroups().isInput();
}

std::string OptimizationGroup::getName() const {
  return EntityModel::getStringValue(m_entity, AttributePath(EntityModel::Group_Name_t), "");
}

void OptimizationGroup::setName(const std::string &name) {
  if (m_entity != nullptr) {
    EntityEditor::setValueNoThrow(m_entity, AttributePath(EntityModel::Group_Name_t), name, false, nullptr,
                                  true);
  }
}

std::string OptimizationGroup::getDisplayName() const {
  std::string name = getName();
  return name.empty() ? getAttributeDisplayName(0) : name;
}

std::string OptimizationGroup::getAttributeDisplayName(int index) const {
  return getVariable(index).getDisplayName();
}

std::string OptimizationGroup::getAttributeMacro() const {
  return getFrontVariable().getAttributeMacro();
}

std::string OptimizationGroup::getUnits() const {
  return getFrontVariable().getUnits();
}

std::string OptimizationGroup::getToolTip() const {
  std::string toolTip;
  forEachInList(getVariableList(), [&toolTip](Entity *entity) {
    if (!toolTip.empty()) {
      toolTip += '\n';
    }
    toolTip += OptimizationGroupVariable(entity).getToolTip();
  });
  return toolTip;
}

OptimizationGroupVariable OptimizationGroup::appendVariable(Attribute *attribute) {
  if (attribute == nullptr) {
    return {};
  }
  if (attribute->isEntity()) {
    return appendVariable(attribute->asEntity(), AttributePath());
  }
  return appendVariable(attribute->getOwnerEntity(), attribute->getAttributePath());
}

OptimizationGroupVariable OptimizationGroup::appendVariable(Entity *owner, const AttributePath &path) {
  if (getVariableList() == nullptr) {
    return {};
  }
  Entity *variable = EntityEditor::createEntity(EntityModel::OptimizationAttribute_t, m_entity,
                                                AttributePath(EntityModel::OptimizationAttributes_t), nullptr,
                                                true, true, false, "", -1);
  if (variable == nullptr) {
    return {};
  }
  if (owner != nullptr) {
    EntityEditor::addEntity(variable, AttributePath(EntityModel::ParentEntity_t), owner, false, true, true,
                            true, false, -1);
  }
  EntityEditor::setValueNoThrow(variable, AttributePath(EntityModel::Path_t), path.toString('.'), false,
                                nullptr, true);
  return OptimizationGroupVariable(variable);
}

bool OptimizationGroup::removeVariable(Attribute *attribute) {
  if (attribute == nullptr) {
    return false;
  }
  Entity *variable = findInList(getVariableList(), [attribute](Entity *entity) {
    return OptimizationGroupVariable(entity).isAttribute(attribute);
  });
  if (variable == nullptr) {
    return false;
  }
  EntityEditor::deleteEntity(variable, false, true);
  return true;
}

OptimizationGroupVariable OptimizationGroup::getVariableFromMacro(const std::string &macro) const {
  return OptimizationGroupVariable(findInList(getVariableList(), [&macro](Entity *entity) {
    return OptimizationGroupVariable(entity).getAttributeMacro() == macro;
  }));
}

bool OptimizationGroup::containsAttribute(const Attribute *attribute) const {
  return attribute != nullptr && findInList(getVariableList(), [attribute](Entity *entity) {
                                   return OptimizationGroupVariable(entity).isAttribute(attribute);
                                 }) != nullptr;
}

bool OptimizationGroup::containsAttribute(const Entity *entity, const AttributePath &path) const {
  return containsAttribute(EntityModel::findAttribute(entity, path));
}

bool OptimizationGroup::containsAttributes(const std::vector<std::pair<Entity *, AttributePath>> &attributes,
                                           bool sameSize) const {
  if (sameSize && static_cast<std::size_t>(size()) != attributes.size()) {
    return false;
  }
  return std::all_of(attributes.begin(), attributes.end(), [this](const auto &attribute) {
    return containsAttribute(attribute.first, attribute.second);
  });
}

bool OptimizationGroup::containsAttributes(const std::vector<Attribute *> &attributes, bool sameSize) const {
  if (sameSize && static_cast<std::size_t>(size()) != attributes.size()) {
    return false;
  }
  return std::all_of(attributes.begin(), attributes.end(),
                     [this](const Attribute *attribute) { return containsAttribute(attribute); });
}

bool OptimizationGroup::isSameType(const OptimizationGroup &other) const {
  return !empty() && !other.empty() && getFrontVariable().isSameType(other.getFrontVariable());
}

bool OptimizationGroup::isSameType(const OptimizationGroup *other) const {
  return other != nullptr && isSameType(*other);
}

void OptimizationGroup::addToChangeSet(EntityModel::ChangeSet &changes) const {
  forEachInList(getVariableList(),
                [&changes](Entity *entity) { OptimizationGroupVariable(entity).addToChangeSet(changes); });
}

void OptimizationGroup::fixVariables() {
  forEachInList(getVariableList(), [](Entity *entity) { OptimizationGroupVariable(entity).fixVariable(); });
}

bool operator==(const OptimizationGroup &a, const OptimizationGroup &b) {
  return a.get() != nullptr && a.get() == b.get();
}

bool operator!=(const OptimizationGroup &a, const OptimizationGroup &b) {
  return !(a == b);
}

} // namespace OptimizationTool
