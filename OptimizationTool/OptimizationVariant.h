#pragma once

#include "OptimizationTool/Export.h"
#include "OptimizationTool/OptimizationVariantGroup.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace EntityModel {
class Attribute;
}

namespace OptimizationTool {

/// One row of the variant matrix: the values of one model version, found by its label. Input cell i belongs
/// to input group i, output cell i to output group i.
class OPTIMIZATIONTOOL_EXPORT OptimizationVariant {
public:
  /// A row without cells and cost.
  explicit OptimizationVariant(const std::string &name);
  OptimizationVariant(const OptimizationVariant &) = delete;
  OptimizationVariant &operator=(const OptimizationVariant &) = delete;
  OptimizationVariant(OptimizationVariant &&other) noexcept;
  OptimizationVariant &operator=(OptimizationVariant &&other) noexcept;
  ~OptimizationVariant();

  /// The label of the version that the row stands for.
  const std::string &getName() const noexcept { return m_name; }
  void setName(const std::string &name);

  /// The value of the cost function for this row; empty when it is not known.
  std::optional<double> getCost() const noexcept { return m_cost; }
  void setCost(const std::optional<double> &cost) noexcept;

  /// \name Cells
  /// @{

  /// Makes room for so many cells, so that appending them needs no more.
  void reserveCells(std::size_t inputs, std::size_t outputs);
  /// Appends a cell with a clone of the attribute; an empty cell for null.
  void addInput(const EntityModel::Attribute *attribute);
  void addOutput(const EntityModel::Attribute *attribute);
  /// Removes a cell; later cells move up by one. Ignores an index out of range.
  void removeInput(std::size_t index);
  void removeOutput(std::size_t index);
  /// Replaces the copy in a cell by a clone of the attribute; null empties the cell.
  /// \throws std::out_of_range "invalid vector subscript" for an index out of range, before any change
  void replaceInput(std::size_t index, const EntityModel::Attribute *attribute);
  void replaceOutput(std::size_t index, const EntityModel::Attribute *attribute);
  /// The copy in a cell, owned by the row; null for an index out of range and for an empty cell.
  EntityModel::Attribute *getInput(std::size_t index) const;
  EntityModel::Attribute *getOutput(std::size_t index) const;
  /// getInput() or getOutput().
  EntityModel::Attribute *getAttribute(bool isInput, std::size_t index) const;
  /// The value of a cell in the host's standard units; 0.0 for an index out of range and for an empty cell.
  double standardVal(bool isInput, std::size_t index) const;
  /// @}

private:
  using Cells = std::vector<OptimizationVariantGroup>;

  std::string m_name;
  Cells m_inputs;
  Cells m_outputs;
  std::optional<double> m_cost;
};

} // namespace OptimizationTool
