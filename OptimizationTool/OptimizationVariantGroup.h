#pragma once

#include "OptimizationTool/Export.h"

#include <memory>

namespace EntityModel {
class Attribute;
}

namespace OptimizationTool {

/// One cell of the variant matrix: a private, detached copy of an attribute as one version has it, or
/// nothing.
class OPTIMIZATIONTOOL_EXPORT OptimizationVariantGroup {
public:
  /// \param attribute  is cloned, not kept; null makes an empty cell
  explicit OptimizationVariantGroup(const EntityModel::Attribute *attribute);
  OptimizationVariantGroup(const OptimizationVariantGroup &) = delete;
  OptimizationVariantGroup &operator=(const OptimizationVariantGroup &) = delete;
  /// Leaves \p other empty.
  OptimizationVariantGroup(OptimizationVariantGroup &&other) noexcept;
  /// Destroys the copy held so far, then takes that of \p other and leaves it empty.
  OptimizationVariantGroup &operator=(OptimizationVariantGroup &&other) noexcept;
  virtual ~OptimizationVariantGroup();

  /// The copy, owned by the cell, which may be changed; null for an empty cell.
  EntityModel::Attribute *get() const noexcept { return m_attribute.get(); }
  /// Stores a clone of \p attribute, which may be this cell's own copy, and then destroys the copy held so
  /// far.
  /// \param attribute  null makes the cell empty
  void replace(const EntityModel::Attribute *attribute);

private:
  std::unique_ptr<EntityModel::Attribute> m_attribute;
};

} // namespace OptimizationTool
