#include "OptimizationTool/OptimizationGroupVariable.h"

#include "HostModel/Attribute.h"
#include "HostModel/ChangeSet.h"
#include "HostModel/EntityEditor.h"
#include "HostModel/Lookup.h"
#include "HostModel/Type.h"
#include "HostModel/TypeConstants.h"
#include "OptimizationTool/OptimizationGroup.h"
#include "OptimizationTool/src/EntityLists.h"

namespace OptimizationTool {

using EntityModel::Attribute;
using EntityModel::AttributePath;
using EntityModel::Entity;
using EntityModel::EntityEditor;

namespace {

const AttributePath &lowBoundEnabledPath() {
  static const AttributePath path("LowBoundEnabled");
  return path;
}

const AttributePath &lowBoundValuePath() {
  static const AttributePath path("LowBoundValue");
  return path;
}

const AttributePath &highBoundEnabledPath() {
  static const AttributePath path("HighBoundEnabled");
  return path;
}

const AttributePath &highBoundValuePath() {
  static const AttributePath path("HighBoundValue");
  return path;
}

std::string readText(const Entity *variable, const AttributePath &path) {
  return EntityModel::getStringValue(variable, path, "");
}

void writeText(Entity *variable, const AttributePath &path, const std::string &text) {
  if (variable != nullptr) {
    EntityEditor::setValueNoThrow(variable, path, text, false, nullptr, true);
  }
}

void writeFlag(Entity *variable, const AttributePath &path, bool flag) {
  if (variable != nullptr) {
    EntityEditor::setValueNoThrow(variable, path, flag, true);
  }
}

// The name under which a variable is addressed through its owner; the path alone without one.
std::string qualifiedPath(const Entity *owner, const AttributePath &path) {
  return owner == nullptr ? path.toString('.') : owner->getName(true) + "." + path.toString('.');
}

EntityModel::Type referencedType(const Attribute &reference) {
  const Attribute *attribute = reference.getReferencedAttribute();
  return attribute == nullptr ? EntityModel::Type() : attribute->getType();
}

} // namespace

Entity *OptimizationGroupVariable::getOwnerEntity() const {
  return EntityModel::getLinkedEntity(m_entity, AttributePath(EntityModel::ParentEntity_t));
}

AttributePath OptimizationGroupVariable::getAttributePath() const {
  return m_entity == nullptr ? AttributePath()
                             : AttributePath(readText(m_entity, AttributePath(EntityModel::Path_t)));
}

Attribute *OptimizationGroupVariable::getAttribute() const {
  Entity *owner = getOwnerEntity();
  return owner == nullptr ? nullptr : owner->findAttribute(getAttributePath());
}

OptimizationGroup OptimizationGroupVariable::getGroup() const {
  return OptimizationGroup(findHoldingEntity(m_entity));
}

int OptimizationGroupVariable::getIndex() const {
  return findIndexInHoldingList(m_entity);
}

void OptimizationGroupVariable::addToChangeSet(EntityModel::ChangeSet &changes) const {
  Entity *owner = getOwnerEntity();
  if (owner == nullptr) {
    return;
  }
  changes.addModified(owner);
  if (Attribute *attribute = owner->findAttribute(getAttributePath())) {
    changes.addModifiedAttribute(owner, attribute);
  }
}

std::string OptimizationGroupVariable::getDisplayName() const {
  const Entity *owner = getOwnerEntity();
  const bool isRoot = owner != nullptr && owner == EntityEditor::getRootEntity();
  return qualifiedPath(isRoot ? nullptr : owner, getAttributePath());
}

std::string OptimizationGroupVariable::getAttributeMacro() const {
  return qualifiedPath(getOwnerEntity(), getAttributePath());
}

std::string OptimizationGroupVariable::getToolTip() const {
  const Entity *owner = getOwnerEntity();
  if (owner == nullptr) {
    return {};
  }
  std::string toolTip = owner->getName(true);
  const AttributePath path = getAttributePath();
  if (path.size() == 1) {
    toolTip += path.toString('.');
  } else if (path.size() > 1) {
    toolTip += "...";
    toolTip += path.back().getLabel();
  }
  return toolTip;
}

std::string OptimizationGroupVariable::getUnits() const {
  const Attribute *attribute = getAttribute();
  return attribute == nullptr ? std::string() : attribute->getUnits(0);
}

std::string OptimizationGroupVariable::getMinimumValue() const {
  return readText(m_entity, AttributePath(EntityModel::MinimumValue_t));
}

std::string OptimizationGroupVariable::getMaximumValue() const {
  return readText(m_entity, AttributePath(EntityModel::MaximumValue_t));
}

std::string OptimizationGroupVariable::getStepValue() const {
  return readText(m_entity, AttributePath(EntityModel::StepValue_t));
}

void OptimizationGroupVariable::setMinimumValue(const std::string &text) {
  writeText(m_entity, AttributePath(EntityModel::MinimumValue_t), text);
}

void OptimizationGroupVariable::setMaximumValue(const std::string &text) {
  writeText(m_entity, AttributePath(EntityModel::MaximumValue_t), text);
}

void OptimizationGroupVariable::setStepValue(const std::string &text) {
  writeText(m_entity, AttributePath(EntityModel::StepValue_t), text);
}

bool OptimizationGroupVariable::isLowBoundEnabled() const {
  return EntityModel::getBoolValue(m_entity, lowBoundEnabledPath(), false);
}

bool OptimizationGroupVariable::isHighBoundEnabled() const {
  return EntityModel::getBoolValue(m_entity, highBoundEnabledPath(), false);
}

void OptimizationGroupVariable::setLowBoundEnabled(bool enabled) {
  writeFlag(m_entity, lowBoundEnabledPath(), enabled);
}

void OptimizationGroupVariable::setHighBoundEnabled(bool enabled) {
  writeFlag(m_entity, highBoundEnabledPath(), enabled);
}

std::string OptimizationGroupVariable::getLowBoundValue() const {
  return readText(m_entity, lowBoundValuePath());
}

std::string OptimizationGroupVariable::getHighBoundValue() const {
  return readText(m_entity, highBoundValuePath());
}

void OptimizationGroupVariable::setLowBoundValue(const std::string &text) {
  writeText(m_entity, lowBoundValuePath(), text);
}

void OptimizationGroupVariable::setHighBoundValue(const std::string &text) {
  writeText(m_entity, highBoundValuePath(), text);
}

std::optional<std::string> OptimizationGroupVariable::getLowBound() const {
  return isLowBoundEnabled() ? std::optional<std::string>(getLowBoundValue()) : std::nullopt;
}

std::optional<std::string> OptimizationGroupVariable::getHighBound() const {
  return isHighBoundEnabled() ? std::optional<std::string>(getHighBoundValue()) : std::nullopt;
}

void OptimizationGroupVariable::setLowBound(const std::optional<std::string> &bound) {
  setLowBoundEnabled(bound.has_value());
  if (bound) {
    setLowBoundValue(*bound);
  }
}

void OptimizationGroupVariable::setHighBound(const std::optional<std::string> &bound) {
  setHighBoundEnabled(bound.has_value());
  if (bound) {
    setHighBoundValue(*bound);
  }
}

bool OptimizationGroupVariable::isAttribute(const Attribute *attribute) const {
  return attribute != nullptr && attribute == getAttribute();
}

bool OptimizationGroupVariable::isAttribute(const Entity *entity, const AttributePath &path) const {
  if (getOwnerEntity() != entity) {
    return false;
  }
  if (getAttributePath() == path) {
    return true;
  }
  return isAttribute(EntityModel::findAttribute(entity, path));
}

bool OptimizationGroupVariable::isSameType(const OptimizationGroupVariable &other) const {
  Attribute *mine = getAttribute();
  Attribute *theirs = other.getAttribute();
  if (mine == nullptr || theirs == nullptr) {
    return true;
  }
  const EntityModel::TypeAttribute *myType = mine->isTypeReference() ? mine->asTypeAttribute() : nullptr;
  const EntityModel::TypeAttribute *theirType =
      theirs->isTypeReference() ? theirs->asTypeAttribute() : nullptr;
  if (myType != nullptr && theirType != nullptr) {
    return myType->hasSameTypes(*theirType);
  }
  if (mine->isAttributeReference() && theirs->isAttributeReference() &&
      referencedType(*mine).getKindCode() != referencedType(*theirs).getKindCode()) {
    return false;
  }
  return mine->getTypeDescription() == theirs->getTypeDescription();
}

bool OptimizationGroupVariable::isSameType(const OptimizationGroupVariable *other) const {
  return other != nullptr && isSameType(*other);
}

} // namespace OptimizationTool
