#include "OptimizationTool/OptimizationGroups.h"

#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/src/EntityLists.h"

#include <optional>

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;
using EntityModel::ListAttribute;

namespace {

const AttributePath &sidePath(bool isInput) {
  static const AttributePath inputs(EntityModel::OptimizationInputs_t);
  static const AttributePath outputs(EntityModel::OptimizationOutputs_t);
  return isInput ? inputs : outputs;
}

// Deletes the group that held a variable before, unless that group has variables left or there was none.
void deleteIfEmpty(const OptimizationGroup &group) {
  if (group && group.empty()) {
    EntityEditor::deleteEntity(group.get(), false, true);
  }
}

bool deleteVariable(const OptimizationGroupVariable &variable, bool removeEmptyGroup) {
  if (!variable) {
    return false;
  }
  const OptimizationGroup group = variable.getGroup();
  EntityEditor::deleteEntity(variable.get(), false, true);
  if (removeEmptyGroup) {
    deleteIfEmpty(group);
  }
  return true;
}

} // namespace

OptimizationGroups::OptimizationGroups(Entity *owner, bool isInput)
    : m_owner(owner), m_listPath(sidePath(isInput)) {}
OptimizationGroups::OptimizationGroups(Entity *owner, const AttributePath &listPath)
    : m_owner(owner), m_listPath(listPath) {}
OptimizationGroups::OptimizationGroups(const OptimizationGroups &other) = default;
OptimizationGroups &OptimizationGroups::operator=(const OptimizationGroups &other) = default;
OptimizationGroups::~OptimizationGroups() = default;

OptimizationGroups::operator bool() const {
  return getGroupList() != nullptr;
}

bool OptimizationGroups::empty() const {
  return size() == 0;
}

bool OptimizationGroups::isInput() const {
  return m_listPath == sidePath(true);
}

int OptimizationGroups::size() const {
  const ListAttribute *list = getGroupList();
  return list == nullptr ? 0 : list->getCount();
}

int OptimizationGroups::numberOfvariables() const {
  int count = 0;
  forEachInList(getGroupList(), [&count](Entity *entity) { count += OptimizationGroup(entity).size(); });
  return count;
}

ListAttribute *OptimizationGroups::getGroupList() const {
  return m_owner == nullptr ? nullptr : toEntityList(m_owner->findAttribute(m_listPath));
}

OptimizationGroup OptimizationGroups::getGroup(int index) const {
  const ListAttribute *list = getGroupList();
  return OptimizationGroup(list == nullptr ? nullptr : list->getEntity(index));
}

OptimizationGroup OptimizationGroups::getGroup(const std::string &name) const {
  return OptimizationGroup(findInList(
      getGroupList(), [&name](Entity *entity) { return OptimizationGroup(entity).getName() == name; }));
}

OptimizationGroupVariable OptimizationGroups::getVariable(int groupIndex, int variableIndex) const {
  return getGroup(groupIndex).getVariable(variableIndex);
}

OptimizationGroupVariable OptimizationGroups::getVariable(int flatIndex) const {
  return getGroupAndVariable(flatIndex).second;
}

std::pair<OptimizationGroup, OptimizationGroupVariable>
OptimizationGroups::getGroupAndVariable(int flatIndex) const {
  int index = flatIndex;
  const OptimizationGroup group(findInList(getGroupList(), [&index](Entity *entity) {
    const int count = OptimizationGroup(entity).size();
    if (index < count) {
      return true;
    }
    index -= count;
    return false;
  }));
  return {group, group.getVariable(index)};
}

std::pair<OptimizationGroup, Attribute *> OptimizationGroups::getGroupAndAttribute(int flatIndex) const {
  const auto [group, variable] = getGroupAndVariable(flatIndex);
  return {group, variable.getAttribute()};
}

Attribute *OptimizationGroups::getAttribute(int flatIndex) const {
  return getVariable(flatIndex).getAttribute();
}

Attribute *OptimizationGroups::getAttribute(int groupIndex, int variableIndex) const {
  return getVariable(groupIndex, variableIndex).getAttribute();
}

OptimizationGroupVariable OptimizationGroups::getVariableFromMacro(const std::string &macro) const {
  OptimizationGroupVariable variable;
  findInList(getGroupList(), [&variable, &macro](Entity *entity) {
    variable = OptimizationGroup(entity).getVariableFromMacro(macro);
    return static_cast<bool>(variable);
  });
  return variable;
}

OptimizationGroup OptimizationGroups::getGroupContainingAttribute(const Attribute *attribute) const {
  if (attribute == nullptr) {
    return OptimizationGroup();
  }
  return OptimizationGroup(findInList(getGroupList(), [attribute](Entity *entity) {
    return OptimizationGroup(entity).containsAttribute(attribute);
  }));
}

OptimizationGroup OptimizationGroups::getGroupContainingAttribute(const Entity *entity,
                                                                  const AttributePath &path) const {
  return getGroupContainingAttribute(EntityModel::findAttribute(entity, path));
}

OptimizationGroup
OptimizationGroups::getGroupContainingAttributes(const std::vector<EntityAndPath> &attributes,
                                                 bool sameSize) const {
  return OptimizationGroup(findInList(getGroupList(), [&attributes, sameSize](Entity *entity) {
    return OptimizationGroup(entity).containsAttributes(attributes, sameSize);
  }));
}

OptimizationGroup OptimizationGroups::getGroupContainingAttributes(const std::vector<Attribute *> &attributes,
                                                                   bool sameSize) const {
  return OptimizationGroup(findInList(getGroupList(), [&attributes, sameSize](Entity *entity) {
    return OptimizationGroup(entity).containsAttributes(attributes, sameSize);
  }));
}

bool OptimizationGroups::containsAttribute(const Entity *entity, const AttributePath &path) const {
  return static_cast<bool>(getGroupContainingAttribute(entity, path));
}

bool OptimizationGroups::containsAttribute(const Attribute *attribute) const {
  if (attribute == nullptr) {
    return false;
  }
  if (attribute->isEntity()) {
    // An entity is given to be changed or not, as its attribute was; looking it up changes nothing.
    return containsAttribute(const_cast<Attribute *>(attribute)->asEntity(), AttributePath());
  }
  return containsAttribute(attribute->getOwnerEntity(), attribute->getAttributePath());
}

OptimizationGroup OptimizationGroups::appendGroup() {
  if (getGroupList() == nullptr) {
    return OptimizationGroup();
  }
  return OptimizationGroup(EntityEditor::createEntity(EntityModel::OptimizationGroup_t, m_owner, m_listPath,
                                                      nullptr, true, true, false, "", -1));
}

bool OptimizationGroups::moveGroup(int from, int to) {
  ListAttribute *list = getGroupList();
  const int count = list == nullptr ? 0 : list->getCount();
  // A group can be moved to the place behind the last one, where there is none to be moved from.
  if (from >= count || to > count) {
    return false;
  }
  if (from == to) {
    return true;
  }
  Entity *group = list == nullptr ? nullptr : list->getEntity(from);
  return group != nullptr && list->moveEntity(group, to);
}

bool OptimizationGroups::remove(int index) {
  const OptimizationGroup group = getGroup(index);
  return group && EntityEditor::deleteEntity(group.get(), false, true);
}

bool OptimizationGroups::removeVariable(int flatIndex, bool removeEmptyGroup) {
  return deleteVariable(getVariable(flatIndex), removeEmptyGroup);
}

bool OptimizationGroups::removeVariable(int groupIndex, int variableIndex, bool removeEmptyGroup) {
  return deleteVariable(getVariable(groupIndex, variableIndex), removeEmptyGroup);
}

bool OptimizationGroups::moveVariable(int fromGroup, int fromVariable, int toGroup, bool removeEmptyGroup) {
  OptimizationGroupVariable variable = getVariable(fromGroup, fromVariable);
  if (!variable) {
    return false;
  }
  const OptimizationGroup source = variable.getGroup();
  const OptimizationGroup target = getGroup(toGroup);
  if (!target) {
    return false;
  }
  if (const OptimizationGroupVariable first = target.getFrontVariable()) {
    variable.setMinimumValue(first.getMinimumValue());
    variable.setMaximumValue(first.getMaximumValue());
    variable.setStepValue(first.getStepValue());
    variable.setHighBound(first.getHighBound());
    variable.setLowBound(first.getLowBound());
  }
  ListAttribute *list = target.getVariableList();
  if (list == nullptr || !EntityEditor::moveEntity(variable.get(), target.get(), list, true, -1)) {
    return false;
  }
  if (removeEmptyGroup) {
    deleteIfEmpty(source);
  }
  return true;
}

void OptimizationGroups::addToChangeSet(EntityModel::ChangeSet &changes) const {
  forEachInList(getGroupList(),
                [&changes](Entity *entity) { OptimizationGroup(entity).addToChangeSet(changes); });
}

void OptimizationGroups::fixVariables() {
  forEachInList(getGroupList(), [](Entity *entity) { OptimizationGroup(entity).fixVariables(); });
}

bool operator==(const OptimizationGroups &a, const OptimizationGroups &b) {
  const ListAttribute *list = a.getGroupList();
  return list != nullptr && list == b.getGroupList();
}

bool operator!=(const OptimizationGroups &a, const OptimizationGroups &b) {
  return !(a == b);
}

} // namespace OptimizationTool
