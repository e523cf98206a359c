#include "OptimizationTool/OptimizationVariantGroup.h"

#include "HostModel/Attribute.h"

#include <utility>

namespace OptimizationTool {

namespace {

std::unique_ptr<EntityModel::Attribute> cloneOf(const EntityModel::Attribute *attribute) {
  return attribute == nullptr ? nullptr : attribute->clone();
}

} // namespace

OptimizationVariantGroup::OptimizationVariantGroup(const EntityModel::Attribute *attribute)
    : m_attribute(cloneOf(attribute)) {}
OptimizationVariantGroup::OptimizationVariantGroup(OptimizationVariantGroup &&other) noexcept = default;
OptimizationVariantGroup::~OptimizationVariantGroup() = default;

OptimizationVariantGroup &OptimizationVariantGroup::operator=(OptimizationVariantGroup &&other) noexcept {
  if (this != &other) {
    m_attribute.reset();
    m_attribute = std::move(other.m_attribute);
  }
  return *this;
}

void OptimizationVariantGroup::replace(const EntityModel::Attribute *attribute) {
  m_attribute = cloneOf(attribute);
}

} // namespace OptimizationTool
