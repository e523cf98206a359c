#include "HostModel/Attribute.h"
#include "HostModel/Lookup.h"
#include "OptimizationTool/OptimizationData.h"

#include <stdexcept>

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;

namespace {

// The copies in one column, null where a row does not reach so far. A negative index names no cell.
std::vector<Attribute *> columnOf(const OptimizationVariants &variants, bool isInput, int groupIndex) {
  std::vector<Attribute *> column;
  column.reserve(variants.size());
  for (const auto &variant : variants) {
    column.push_back(variant == nullptr || groupIndex < 0
                         ? nullptr
                         : variant->getAttribute(isInput, static_cast<std::size_t>(groupIndex)));
  }
  return column;
}

} // namespace

OptimizationGroup OptimizationData::getGroup(bool isInput, int groupIndex) const {
  return getGroups(isInput).getGroup(groupIndex);
}

OptimizationGroupVariable OptimizationData::getVariable(bool isInput, int flatIndex) const {
  return getGroups(isInput).getVariable(flatIndex);
}

std::pair<OptimizationGroup, OptimizationGroupVariable>
OptimizationData::getGroupAndVariable(bool isInput, int flatIndex) const {
  return getGroups(isInput).getGroupAndVariable(flatIndex);
}

std::pair<OptimizationGroup, Attribute *> OptimizationData::getGroupAndAttribute(bool isInput,
                                                                                 int flatIndex) const {
  return getGroups(isInput).getGroupAndAttribute(flatIndex);
}

int OptimizationData::getNumInputAttributes() const {
  return m_inputGroups.numberOfvariables();
}

int OptimizationData::getNumOutputAttributes() const {
  return m_outputGroups.numberOfvariables();
}

OptimizationGroup OptimizationData::getGroupContainingAttribute(bool isInput, Attribute *attribute) const {
  return getGroups(isInput).getGroupContainingAttribute(attribute);
}

OptimizationGroup OptimizationData::getGroupContainingAttribute(bool isInput, Entity *entity,
                                                                const AttributePath &path) const {
  return getGroups(isInput).getGroupContainingAttribute(EntityModel::findAttribute(entity, path));
}

OptimizationGroup OptimizationData::getGroupContainingAttribute(Attribute *attribute) const {
  const OptimizationGroup group = getGroupContainingAttribute(true, attribute);
  return group ? group : getGroupContainingAttribute(false, attribute);
}

OptimizationGroup OptimizationData::getGroupContainingAttribute(Entity *entity,
                                                                const AttributePath &path) const {
  return getGroupContainingAttribute(EntityModel::findAttribute(entity, path));
}

bool OptimizationData::doesGroupExist(const std::string &name) const {
  return m_inputGroups.getGroup(name) || m_outputGroups.getGroup(name);
}

std::pair<int, int> OptimizationData::getGroupIndex(bool isInput, int flatIndex) const {
  const OptimizationGroups &groups = getGroups(isInput);
  int offset = 0;
  for (int group = 0; group < groups.size(); ++group) {
    const int size = groups.getGroup(group).size();
    if (offset + size > flatIndex) {
      return {group, flatIndex - offset};
    }
    offset += size;
  }
  throw std::logic_error("OptimizationData::getGroupIndex: Invalid attribute index");
}

std::pair<int, int> OptimizationData::getGroupAttBound(bool isInput, int groupIndex) const {
  const OptimizationGroups &groups = getGroups(isInput);
  if (groupIndex < 0 || groupIndex >= groups.size()) {
    // The text names the operation by the name under which callers know it.
    throw std::out_of_range("OptimizationData::getGroupFirstIndex: Group index out of bounds");
  }
  int first = 0;
  for (int group = 0; group < groupIndex; ++group) {
    first += groups.getGroup(group).size();
  }
  return {first, first + groups.getGroup(groupIndex).size() - 1};
}

bool OptimizationData::isGroupSameValue(bool isInput, int groupA, int groupB) const {
  const std::vector<Attribute *> columnA = columnOf(m_variants, isInput, groupA);
  const std::vector<Attribute *> columnB = columnOf(m_variants, isInput, groupB);
  bool isSame = true;
  for (std::size_t row = 0; row < columnA.size(); ++row) {
    if (columnA[row] != nullptr && columnB[row] != nullptr) {
      isSame = isSame && columnA[row]->getValueAsString() == columnB[row]->getValueAsString();
    }
  }
  return isSame;
}

Attribute *OptimizationData::getVariantGroup(bool isInput, std::size_t variantIndex,
                                             std::size_t groupIndex) const {
  const OptimizationVariant *variant = m_variants.get(variantIndex);
  const int numGroups = isInput ? getNumInputs() : getNumOutputs();
  if (variant == nullptr || groupIndex >= static_cast<std::size_t>(numGroups)) {
    return nullptr;
  }
  return variant->getAttribute(isInput, groupIndex);
}

std::vector<Attribute *> OptimizationData::getAllVariantGroupAttributes(bool isInput, Entity *entity,
                                                                        const AttributePath &path) const {
  const OptimizationGroup group = getGroupContainingAttribute(isInput, entity, path);
  return group ? columnOf(m_variants, isInput, group.getIndex()) : std::vector<Attribute *>();
}

std::vector<Attribute *> OptimizationData::getAllVariantGroupAttributes(Entity *entity,
                                                                        const AttributePath &path) const {
  const OptimizationGroup group = getGroupContainingAttribute(entity, path);
  return group ? columnOf(m_variants, group.isInput(), group.getIndex()) : std::vector<Attribute *>();
}

} // namespace OptimizationTool
