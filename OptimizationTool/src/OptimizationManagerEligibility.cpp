#include "HostModel/Attribute.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModellingImpact.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <QString>

#include <algorithm>
#include <array>

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::AttributeSorter;
using EntityModel::Entity;
using EntityModel::ModelVersionStudyType;

namespace {

bool hasEligibleKind(const Attribute &attribute, ModelVersionStudyType type) {
  if (type == ModelVersionStudyType::Optimality || type == ModelVersionStudyType::Calibration) {
    return attribute.isReal() || attribute.isChoice() || attribute.isBoolean();
  }
  return attribute.isInteger() || attribute.isReal() || attribute.isTypeReference() || attribute.isChoice() ||
         attribute.isText() || attribute.isBoolean() ||
         (attribute.isEntityLink() && !attribute.isEntityList());
}

// Attributes of displays and summaries of results never take part in a study.
bool isDisplayOrSummary(const Entity &entity) {
  const std::array<EntityModel::TypeRef, 10> types = {
      EntityModel::Result_Plane_t,    EntityModel::Result_Cloud_t, EntityModel::Streamline_Plot_t,
      EntityModel::Max_and_Min_t,     EntityModel::Push_Pin_t,     EntityModel::Overlay_Text_Box_t,
      EntityModel::Chassis_Summary_t, EntityModel::Room_Summary_t, EntityModel::External_Domain_Summary_t,
      EntityModel::PCB_Summary_t};
  const EntityModel::Type type = entity.getType();
  return std::any_of(types.begin(), types.end(),
                     [&](const EntityModel::TypeRef &other) { return type == other; });
}

void seedLimits(OptimizationGroupVariable variable, const Attribute &attribute) {
  if (attribute.isBoolean()) {
    variable.setMinimumValue("0");
    variable.setMaximumValue("1");
    return;
  }
  variable.setMinimumValue(attribute.getValueAsString());
  if (attribute.isChoice()) {
    variable.setMaximumValue(QString::number(attribute.getUpperIndex() + 1, 10).toStdString());
    variable.setStepValue("1");
  } else {
    variable.setMaximumValue(attribute.getValueAsString());
  }
}

} // namespace

bool OptimizationManager::isItemValid(const Attribute *attribute, bool isInput, bool isResult,
                                      ModelVersionStudyType type) {
  if (!versionHasStudy(nullptr) || attribute == nullptr) {
    return false;
  }
  const bool isReadOnly = attribute->isReadOnly(false);
  if (isInput ? (isReadOnly || isResult) : (!isReadOnly && !isResult)) {
    return false;
  }
  if (attribute->isLocked() || attribute->isInternal() || !hasEligibleKind(*attribute, type)) {
    return false;
  }
  const Entity *owner = attribute->getOwnerEntity();
  if (owner != nullptr && isDisplayOrSummary(*owner)) {
    return false;
  }
  // An input that leaves the simulation as it is, is useless to vary.
  if (isInput && EntityModel::ModellingImpact::hasModellingImpact(attribute, "NoCFDImpact", true)) {
    return false;
  }
  // Calibration shares the kinds of Optimality, but not its monitors.
  return !attribute->isMonitor() || (!isInput && type == ModelVersionStudyType::Optimality);
}

void OptimizationManager::addInputAttribute(Attribute *attribute) {
  if (m_data == nullptr || m_data->getGroups(true).containsAttribute(attribute)) {
    return;
  }
  const int index = m_data->addGroup(true, attribute);
  if (getStudyType() != ModelVersionStudyType::Optimality || attribute == nullptr) {
    return;
  }
  const OptimizationGroup group = m_data->getGroup(true, index);
  const OptimizationGroupVariable variable = group.getFrontVariable();
  if (group && variable) {
    seedLimits(variable, *attribute);
  }
}

void OptimizationManager::addInputAttribute(EntityModel::CompositeAttribute *owner,
                                            const AttributePath &path) {
  addInputAttribute(EntityModel::findAttribute(owner, path));
}

void OptimizationManager::addOutputAttribute(Attribute *attribute) {
  if (m_data != nullptr && !m_data->getGroups(false).containsAttribute(attribute)) {
    m_data->addGroup(false, attribute);
  }
}

void OptimizationManager::addOutputAttribute(EntityModel::CompositeAttribute *owner,
                                             const AttributePath &path) {
  addOutputAttribute(EntityModel::findAttribute(owner, path));
}

void OptimizationManager::removeInputAttribute(Attribute *attribute) {
  if (m_data != nullptr) {
    m_data->removeFromGroup(true, attribute);
  }
}

void OptimizationManager::removeOutputAttribute(Attribute *attribute) {
  if (m_data != nullptr) {
    m_data->removeFromGroup(false, attribute);
  }
}

std::set<Attribute *, AttributeSorter> OptimizationManager::getInputAttributes() {
  return attributesOf(true);
}

std::set<Attribute *, AttributeSorter> OptimizationManager::getOutputAttributes() {
  return attributesOf(false);
}

std::set<Attribute *, AttributeSorter> OptimizationManager::attributesOf(bool isInput) const {
  std::set<Attribute *, AttributeSorter> attributes;
  if (m_data == nullptr) {
    return attributes;
  }
  const OptimizationGroups &groups = m_data->getGroups(isInput);
  for (int index = 0; index < groups.size(); ++index) {
    const OptimizationGroup group = groups.getGroup(index);
    for (int variable = 0; variable < group.size(); ++variable) {
      if (Attribute *attribute = group.getAttribute(variable)) {
        attributes.insert(attribute);
      }
    }
  }
  return attributes;
}

} // namespace OptimizationTool
