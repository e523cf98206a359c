#pragma once

#include "HostModel/AttributePath.h"
#include "OptimizationTool/Export.h"

#include <optional>
#include <string>

namespace EntityModel {
class Attribute;
class ChangeSet;
class Entity;
} // namespace EntityModel

namespace OptimizationTool {

class OptimizationGroup;

/// One variable of a group: a reference from the study to one attribute of the model, with the limits, the
/// step and the bounds within which a study varies it.
///
/// A handle, one pointer wide, passed by value. It owns nothing and caches nothing: every query reads the
/// model afresh and every setter writes through the host's editor, whose answer is ignored. It must not be
/// used after its entity was deleted; fetch handles from the group lists again instead. Nothing here throws
/// of its own; a null handle, a missing owner entity or a path that finds nothing give the neutral answer
/// stated.
///
/// Limits, step and bound values are kept as text, in the form of the attribute's values, and are neither
/// parsed nor formatted here, fixVariable() excepted.
class OPTIMIZATIONTOOL_EXPORT OptimizationGroupVariable {
public:
  /// The null handle.
  OptimizationGroupVariable() noexcept = default;
  /// \param entity  of type OptimizationAttribute_t, owned by the host; null gives the null handle
  explicit OptimizationGroupVariable(EntityModel::Entity *entity) noexcept : m_entity(entity) {}

  /// Whether this is not the null handle.
  explicit operator bool() const noexcept { return m_entity != nullptr; }

  /// \name Identity and resolution
  /// @{

  /// The variable entity, owned by the host; null for the null handle.
  EntityModel::Entity *get() const noexcept { return m_entity; }
  /// The entity that has the attribute; null when the variable is null or its link leads nowhere.
  EntityModel::Entity *getOwnerEntity() const;
  /// The path from the owner entity to the attribute; empty when the variable is null or stands for an
  /// entity.
  EntityModel::AttributePath getAttributePath() const;
  /// The attribute in the current version, owned by the host; null without an owner entity and when the path
  /// finds nothing.
  EntityModel::Attribute *getAttribute() const;
  /// The group that holds the variable (include OptimizationGroup.h); a null group when the variable is null
  /// or is held by nothing.
  OptimizationGroup getGroup() const;
  /// Position in the list that holds the variable, from 0; -1 when it is null or in no list.
  int getIndex() const;
  /// Records the owner entity as modified and, where it is found, the attribute; nothing without an owner
  /// entity.
  void addToChangeSet(EntityModel::ChangeSet &changes) const;
  /// @}

  /// \name Names
  /// @{

  /// The owner's name, ".", and the path; for an attribute of the root entity and without an owner the path
  /// alone.
  std::string getDisplayName() const;
  /// The name under which expressions find the variable: the owner's name, ".", and the path, for the root
  /// entity too; without an owner the path alone.
  std::string getAttributeMacro() const;
  /// The owner's name followed directly by a path of one element, or by "..." and the last element of a
  /// longer path; "" without an owner.
  std::string getToolTip() const;
  /// The unit in which the attribute is displayed; "" when the attribute is not found.
  std::string getUnits() const;
  /// @}

  /// \name Limits, step and bounds
  /// The texts are "" and the switches false where nothing is stored, and on a null handle, on which the
  /// setters do nothing.
  /// @{
  std::string getMinimumValue() const;
  std::string getMaximumValue() const;
  std::string getStepValue() const;
  void setMinimumValue(const std::string &text);
  void setMaximumValue(const std::string &text);
  void setStepValue(const std::string &text);

  bool isLowBoundEnabled() const;
  bool isHighBoundEnabled() const;
  void setLowBoundEnabled(bool enabled);
  void setHighBoundEnabled(bool enabled);

  /// The stored lower bound, whether it is enabled or not.
  std::string getLowBoundValue() const;
  /// The stored upper bound, whether it is enabled or not.
  std::string getHighBoundValue() const;
  void setLowBoundValue(const std::string &text);
  void setHighBoundValue(const std::string &text);

  /// The lower bound; empty when it is not enabled. An enabled bound may be the text "".
  std::optional<std::string> getLowBound() const;
  /// The upper bound; empty when it is not enabled. An enabled bound may be the text "".
  std::optional<std::string> getHighBound() const;
  /// Switches the lower bound on and stores it, or switches it off and leaves the stored text, so that
  /// setLowBoundEnabled(true) brings it back.
  void setLowBound(const std::optional<std::string> &bound);
  /// As setLowBound(), for the upper bound.
  void setHighBound(const std::optional<std::string> &bound);

  /// Makes the stored texts consistent, judged by values of the attribute: raises the maximum to the minimum,
  /// gives an integer (or a choice) without step the step "1", shrinks an integer step that leaves the range
  /// in one move to the whole range, and raises the upper bound to the lower one, enabled or not. Limits and
  /// step are looked at only when a bound or the step is stored. A text that the attribute does not accept
  /// switches off the repairs that need it. Writes only stored texts, "1" or the integer range; never throws.
  void fixVariable();
  /// @}

  /// \name Comparison
  /// @{

  /// Whether the variable refers to this attribute; false for null.
  bool isAttribute(const EntityModel::Attribute *attribute) const;
  /// Whether the variable refers to the attribute at \p path of \p entity: the owner is \p entity, and the
  /// paths are equal or find the same attribute.
  bool isAttribute(const EntityModel::Entity *entity, const EntityModel::AttributePath &path) const;
  /// Whether both variables can share one value. True when either attribute is not found, so that such a
  /// variable never stands in the way of grouping.
  bool isSameType(const OptimizationGroupVariable &other) const;
  /// As the other form; false for null.
  bool isSameType(const OptimizationGroupVariable *other) const;
  /// @}

private:
  EntityModel::Entity *m_entity = nullptr;
};

} // namespace OptimizationTool
