#include "HostModel/Attribute.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/EntityManager.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"

#include <stdexcept>

namespace OptimizationTool {

using EntityGUI::EntityManager;
using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;

namespace {

void addCell(OptimizationVariant &variant, bool isInput, const Attribute *attribute) {
  if (isInput) {
    variant.addInput(attribute);
  } else {
    variant.addOutput(attribute);
  }
}

// Appends a cell to every row. When a value cannot be had, that row and the ones after it get an empty cell before the
// exception goes on: the group is stored by then, and each row has one cell for each group.
template <class ValueOf> void appendColumn(OptimizationVariants &rows, bool isInput, const ValueOf &valueOf) {
  std::size_t index = 0;
  try {
    for (; index < rows.size(); ++index) {
      if (OptimizationVariant *row = rows.get(index)) {
        addCell(*row, isInput, valueOf(*row));
      }
    }
  } catch (...) {
    for (; index < rows.size(); ++index) {
      if (OptimizationVariant *row = rows.get(index)) {
        addCell(*row, isInput, nullptr);
      }
    }
    throw;
  }
}

} // namespace

int OptimizationData::addGroup(bool isInput, Attribute *attribute) {
  if (attribute == nullptr) {
    return -1;
  }
  if (attribute->isEntity()) {
    return addGroup(isInput, attribute->asEntity(), AttributePath());
  }
  return addGroup(isInput, attribute->getOwnerEntity(), attribute->getAttributePath());
}

int OptimizationData::addGroup(bool isInput, Entity *entity, const AttributePath &path) {
  const QPointer<OptimizationData> self(this);
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  OptimizationGroup group = groups.appendGroup();
  if (!group || !self) {
    return -1;
  }
  const Attribute *value = nullptr;
  try {
    group.appendVariable(entity, path);
    if (!self) {
      return -1;
    }
    value = group.getAttribute(0);
  } catch (...) {
    if (self) {
      appendColumn(m_variants, isInput, [](const OptimizationVariant & /*row*/) { return nullptr; });
    }
    throw;
  }
  appendColumn(m_variants, isInput, [value](const OptimizationVariant & /*row*/) { return value; });
  EntityManager::setNeedsSave(true);
  return group.getIndex();
}

int OptimizationData::addGroupFromGroup(bool isInput, int sourceGroupIndex) {
  const QPointer<OptimizationData> self(this);
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  const OptimizationGroup group = groups.appendGroup();
  if (!group || !self) {
    return -1;
  }
  appendColumn(m_variants, isInput, [isInput, sourceGroupIndex](const OptimizationVariant &row) {
    return sourceGroupIndex < 0 ? nullptr
                                : row.getAttribute(isInput, static_cast<std::size_t>(sourceGroupIndex));
  });
  EntityManager::setNeedsSave(true);
  return group.getIndex();
}

void OptimizationData::removeGroup(bool isInput, int groupIndex) {
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  // Strictly greater on purpose: an index equal to the number of groups removes the surplus cell of rows that
  // kept one, and callers that found no group pass -1.
  if (groupIndex > groups.size()) {
    throw std::out_of_range("OptimizationData::removeGroup: Group index out of range");
  }
  const QPointer<OptimizationData> self(this);
  const bool isRemoved = groups.remove(groupIndex);
  if (!self) {
    return;
  }
  // The cells go whatever the host answered. The matrix is not stored, so they are nothing to be saved.
  for (const auto &variant : m_variants) {
    if (variant == nullptr || groupIndex < 0) {
      continue;
    }
    if (isInput) {
      variant->removeInput(static_cast<std::size_t>(groupIndex));
    } else {
      variant->removeOutput(static_cast<std::size_t>(groupIndex));
    }
  }
  if (isRemoved) {
    EntityManager::setNeedsSave(true);
  }
}

void OptimizationData::removeFromGroup(bool isInput, Attribute *attribute) {
  const QPointer<OptimizationData> self(this);
  OptimizationGroup group = getGroupContainingAttribute(isInput, attribute);
  if (attribute != nullptr && group) {
    group.removeVariable(attribute);
    EntityManager::setNeedsSave(true);
  }
  if (!self || (group && !group.empty())) {
    return;
  }
  removeGroup(isInput, group.getIndex());
}

void OptimizationData::removeFromGroup(Attribute *attribute) {
  const QPointer<OptimizationData> self(this);
  if (m_inputGroups.containsAttribute(attribute)) {
    removeFromGroup(true, attribute);
  }
  // The input side again on purpose: hosts rely on this form leaving outputs in place.
  if (self && m_outputGroups.containsAttribute(attribute)) {
    removeFromGroup(true, attribute);
  }
}

void OptimizationData::removeAttributeFromGroup(bool isInput, int flatIndex) {
  const QPointer<OptimizationData> self(this);
  const auto [group, variable] = getGroupAndVariable(isInput, flatIndex);
  if (variable) {
    EntityEditor::deleteEntity(variable.get(), false, true);
    EntityManager::setNeedsSave(true);
  }
  if (!self || (group && !group.empty())) {
    return;
  }
  removeGroup(isInput, group.getIndex());
}

void OptimizationData::moveAttribute(bool isInput, int fromGroup, int indexInGroup, int toGroup) {
  if (fromGroup == toGroup) {
    throw std::logic_error("OptimizationData::moveAttribute: Can't move attribute to same group");
  }
  const QPointer<OptimizationData> self(this);
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  if (groups.moveVariable(fromGroup, indexInGroup, toGroup, false)) {
    EntityManager::setNeedsSave(true);
  }
  if (self && groups.getGroup(fromGroup).empty()) {
    removeGroup(isInput, fromGroup);
  }
}

void OptimizationData::moveGroup(bool isInput, int from, int to) {
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  if (from != to && groups.moveGroup(from, to)) {
    EntityManager::setNeedsSave(true);
  }
}

void OptimizationData::setGroupName(bool isInput, int groupIndex, const std::string &name) {
  OptimizationGroups groups = getGroups(isInput); // a copy, which outlives the study
  if (groupIndex < 0 || groupIndex >= groups.size()) {
    throw std::out_of_range("OptimizationData::setGroupName: Group index out of range");
  }
  groups.getGroup(groupIndex).setName(name);
  EntityManager::setNeedsSave(true);
}

} // namespace OptimizationTool
