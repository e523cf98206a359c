#pragma once

#include "HostModel/AttributePath.h"
#include "OptimizationTool/Export.h"
#include "OptimizationTool/OptimizationGroup.h"
#include "OptimizationTool/OptimizationGroupVariable.h"

#include <string>
#include <utility>
#include <vector>

namespace EntityModel {
class Attribute;
class ChangeSet;
class Entity;
class ListAttribute;
} // namespace EntityModel

namespace OptimizationTool {

/// One side of a study: the ordered list of its input groups or of its output groups.
///
/// A variable is addressed by the index of its group and its index in the group, or by one flat index that
/// counts the variables of all groups in order; groups without variables take no flat index.
///
/// A handle, passed by value. It owns nothing and caches nothing; the lists are in the host model. Nothing
/// here throws of its own; a missing owner, list, group or variable gives the neutral answer stated. Walks
/// over the groups go in list order and skip null entries. Negative indices are not refused: as a position in
/// a list they find nothing.
class OPTIMIZATIONTOOL_EXPORT OptimizationGroups {
public:
  using EntityAndPath = std::pair<EntityModel::Entity *, EntityModel::AttributePath>;

  /// One side of the study that \p owner stores.
  OptimizationGroups(EntityModel::Entity *owner, bool isInput);
  /// The list at \p listPath of \p owner.
  OptimizationGroups(EntityModel::Entity *owner, const EntityModel::AttributePath &listPath);
  OptimizationGroups(const OptimizationGroups &other);
  OptimizationGroups &operator=(const OptimizationGroups &other);
  virtual ~OptimizationGroups();

  /// Whether there is an owner and a list.
  explicit operator bool() const;

  /// \name State
  /// @{

  /// Whether there is no list or no entry in it.
  bool empty() const;
  /// Whether this is the path of the input list.
  bool isInput() const;
  /// Number of groups; 0 without a list.
  int size() const;
  /// Number of variables of all groups.
  int numberOfvariables() const;
  /// The list, owned by the host; null when there is none.
  EntityModel::ListAttribute *getGroupList() const;
  /// @}

  /// \name Access
  /// @{

  /// \param index  from 0; out of range gives a null group
  OptimizationGroup getGroup(int index) const;
  /// The first group with exactly this name; "" finds the first unnamed group, nothing found gives a null
  /// group.
  OptimizationGroup getGroup(const std::string &name) const;
  /// A null variable when either index finds nothing.
  OptimizationGroupVariable getVariable(int groupIndex, int variableIndex) const;
  OptimizationGroupVariable getVariable(int flatIndex) const;
  /// Both null when the flat index is past the last variable. A negative one gives the first group and a null
  /// variable.
  std::pair<OptimizationGroup, OptimizationGroupVariable> getGroupAndVariable(int flatIndex) const;
  /// The group as in getGroupAndVariable(), and the attribute that the variable refers to, owned by the host;
  /// null when it is not found.
  std::pair<OptimizationGroup, EntityModel::Attribute *> getGroupAndAttribute(int flatIndex) const;
  /// The attribute that the variable refers to, owned by the host; null when there is none.
  EntityModel::Attribute *getAttribute(int flatIndex) const;
  EntityModel::Attribute *getAttribute(int groupIndex, int variableIndex) const;
  /// The first variable with exactly this macro; a null variable when there is none.
  OptimizationGroupVariable getVariableFromMacro(const std::string &macro) const;

  /// The first group with a variable that refers to the attribute; a null group for null and when there is
  /// none.
  OptimizationGroup getGroupContainingAttribute(const EntityModel::Attribute *attribute) const;
  /// As the other form, for the attribute that \p path finds on \p entity; a null group when it finds
  /// nothing.
  OptimizationGroup getGroupContainingAttribute(const EntityModel::Entity *entity,
                                                const EntityModel::AttributePath &path) const;
  /// The first group for which OptimizationGroup::containsAttributes() is true; a null group when there is
  /// none. Without attributes that is the first group of the right size.
  OptimizationGroup getGroupContainingAttributes(const std::vector<EntityAndPath> &attributes,
                                                 bool sameSize) const;
  OptimizationGroup getGroupContainingAttributes(const std::vector<EntityModel::Attribute *> &attributes,
                                                 bool sameSize) const;
  /// Whether a group contains the attribute that \p path finds on \p entity; false when it finds nothing.
  bool containsAttribute(const EntityModel::Entity *entity, const EntityModel::AttributePath &path) const;
  /// Whether a group contains the attribute, looked up again through its place in the model, so that a copy,
  /// which has none, is contained in nothing; false for null.
  bool containsAttribute(const EntityModel::Attribute *attribute) const;
  /// @}

  /// \name Editing
  /// The matrix of the study does not follow; the study data object edits both.
  /// @{

  /// Creates an unnamed group without variables at the end of the list.
  /// \return  a null group without a list and when the host creates nothing
  OptimizationGroup appendGroup();
  /// Moves a group before the one that is now at \p to.
  /// \param from  below size()
  /// \param to    may equal size(), which moves the group to the end
  /// \return      false, with nothing changed, when an index is out of range or the host refuses; true without any
  ///              change for equal indices below size()
  bool moveGroup(int from, int to);
  /// Deletes a group.
  /// \return  the host's answer; false when there is no such group
  bool remove(int index);
  /// Deletes a variable, and the group that held it when that has no variables left.
  /// \param removeEmptyGroup  false keeps the group
  /// \return                  whether there was such a variable
  bool removeVariable(int flatIndex, bool removeEmptyGroup);
  bool removeVariable(int groupIndex, int variableIndex, bool removeEmptyGroup);
  /// Moves a variable to the end of a group, whose first variable gives it its limits, step and bounds; in an
  /// empty group it keeps its own. A bound that is switched off is not copied, only its switch.
  /// \param removeEmptyGroup  deletes the group that held the variable when that has no variables left
  /// \return  false when there is no such variable or group, with nothing changed, and when the host refuses the
  ///          move, with the settings already copied
  bool moveVariable(int fromGroup, int fromVariable, int toGroup, bool removeEmptyGroup);
  /// @}

  /// \name Upkeep
  /// @{

  /// OptimizationGroup::addToChangeSet() on every group.
  void addToChangeSet(EntityModel::ChangeSet &changes) const;
  /// OptimizationGroup::fixVariables() on every group.
  void fixVariables();
  /// @}

private:
  EntityModel::Entity *m_owner;
  EntityModel::AttributePath m_listPath;
};

/// Whether both are views of one existing list. A view of a missing list equals nothing, itself included.
OPTIMIZATIONTOOL_EXPORT bool operator==(const OptimizationGroups &a, const OptimizationGroups &b);
OPTIMIZATIONTOOL_EXPORT bool operator!=(const OptimizationGroups &a, const OptimizationGroups &b);

} // namespace OptimizationTool
