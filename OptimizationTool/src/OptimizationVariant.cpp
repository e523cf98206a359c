#include "OptimizationTool/OptimizationVariant.h"

#include "HostModel/Attribute.h"

#include <stdexcept>

namespace OptimizationTool {

namespace {

using Cells = std::vector<OptimizationVariantGroup>;

void removeCell(Cells &cells, std::size_t index) {
  if (index < cells.size()) {
    cells.erase(cells.begin() + static_cast<Cells::difference_type>(index));
  }
}

void replaceCell(Cells &cells, std::size_t index, const EntityModel::Attribute *attribute) {
  if (index >= cells.size()) {
    throw std::out_of_range("invalid vector subscript");
  }
  cells[index].replace(attribute);
}

EntityModel::Attribute *cellAttribute(const Cells &cells, std::size_t index) {
  return index < cells.size() ? cells[index].get() : nullptr;
}

} // namespace

OptimizationVariant::OptimizationVariant(const std::string &name) : m_name(name) {}
OptimizationVariant::OptimizationVariant(OptimizationVariant &&other) noexcept = default;
OptimizationVariant &OptimizationVariant::operator=(OptimizationVariant &&other) noexcept = default;
OptimizationVariant::~OptimizationVariant() = default;

void OptimizationVariant::setName(const std::string &name) {
  m_name = name;
}

void OptimizationVariant::setCost(const std::optional<double> &cost) noexcept {
  m_cost = cost;
}

void OptimizationVariant::reserveCells(std::size_t inputs, std::size_t outputs) {
  m_inputs.reserve(inputs);
  m_outputs.reserve(outputs);
}

void OptimizationVariant::addInput(const EntityModel::Attribute *attribute) {
  m_inputs.emplace_back(attribute);
}

void OptimizationVariant::addOutput(const EntityModel::Attribute *attribute) {
  m_outputs.emplace_back(attribute);
}

void OptimizationVariant::removeInput(std::size_t index) {
  removeCell(m_inputs, index);
}

void OptimizationVariant::removeOutput(std::size_t index) {
  removeCell(m_outputs, index);
}

void OptimizationVariant::replaceInput(std::size_t index, const EntityModel::Attribute *attribute) {
  replaceCell(m_inputs, index, attribute);
}

void OptimizationVariant::replaceOutput(std::size_t index, const EntityModel::Attribute *attribute) {
  replaceCell(m_outputs, index, attribute);
}

EntityModel::Attribute *OptimizationVariant::getInput(std::size_t index) const {
  return cellAttribute(m_inputs, index);
}

EntityModel::Attribute *OptimizationVariant::getOutput(std::size_t index) const {
  return cellAttribute(m_outputs, index);
}

EntityModel::Attribute *OptimizationVariant::getAttribute(bool isInput, std::size_t index) const {
  return isInput ? getInput(index) : getOutput(index);
}

double OptimizationVariant::standardVal(bool isInput, std::size_t index) const {
  const EntityModel::Attribute *attribute = getAttribute(isInput, index);
  return attribute == nullptr ? 0.0 : attribute->getStandardValue();
}

} // namespace OptimizationTool
