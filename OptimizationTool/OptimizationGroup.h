#pragma once

#include "HostModel/AttributePath.h"
#include "OptimizationTool/Export.h"
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

class OptimizationGroups;

/// One group of a study: a named, ordered list of variables that share one value, and so one column of the
/// variant matrix.
///
/// A handle, passed by value. It owns nothing and caches nothing; all state is in the host model. Nothing
/// here throws of its own; a missing entity, list or attribute gives the neutral answer stated. Walks over
/// the variables go in list order and skip null entries.
class OPTIMIZATIONTOOL_EXPORT OptimizationGroup {
public:
  /// \param entity  of type OptimizationGroup_t, owned by the host; null gives the null group
  explicit OptimizationGroup(EntityModel::Entity *entity = nullptr);
  OptimizationGroup(const OptimizationGroup &other);
  OptimizationGroup &operator=(const OptimizationGroup &other);
  virtual ~OptimizationGroup();

  /// Whether this is not the null group.
  explicit operator bool() const noexcept { return m_entity != nullptr; }

  /// \name Access
  /// @{

  /// The group entity, owned by the host; null for the null group.
  EntityModel::Entity *get() const noexcept { return m_entity; }
  /// Number of entries of the variable list; 0 without a list.
  int size() const;
  /// Whether there is no list or no entry in it.
  bool empty() const;
  /// The variable list, owned by the host; null when the group is null or has none.
  EntityModel::ListAttribute *getVariableList() const;
  /// \param index  from 0; out of range gives a null variable
  OptimizationGroupVariable getVariable(int index) const;
  /// getVariable(0).
  OptimizationGroupVariable getFrontVariable() const;
  /// The attribute that a variable refers to, owned by the host; null when the variable is null or its
  /// attribute is not found.
  /// \param index  from 0
  EntityModel::Attribute *getAttribute(int index) const;
  /// getAttribute(0).
  EntityModel::Attribute *getFrontAttribute() const;
  /// Position in the list that holds the group, from 0; -1 when the group is null or in no list.
  int getIndex() const;
  /// The list that holds the group (include OptimizationGroups.h); for a null group and one in no list an
  /// output list without owner.
  OptimizationGroups getGroups() const;
  /// Whether the group is held by the input list of its study; false when it is in no list.
  bool isInput() const;
  /// @}

  /// \name Names
  /// @{

  /// The name given by the user; "" for an unnamed group.
  std::string getName() const;
  /// \param name  not checked for uniqueness; "" makes the group unnamed
  void setName(const std::string &name);
  /// getName(), or for an unnamed group the display name of its first variable.
  std::string getDisplayName() const;
  /// Display name of the variable at \p index; "" when there is none.
  std::string getAttributeDisplayName(int index) const;
  /// The name under which expressions find the group: the macro of its first variable; "" when there is none.
  std::string getAttributeMacro() const;
  /// Units of the first variable's attribute; "" when there is none.
  std::string getUnits() const;
  /// The tool tips of all variables. A line feed goes before a tool tip exactly when what was built so far is
  /// not empty, so an empty tool tip leaves an empty line.
  std::string getToolTip() const;
  /// @}

  /// \name Membership
  /// Nothing here checks for duplicates.
  /// @{

  /// Appends a variable that refers to the attribute; one that is an entity itself is referred to by an empty
  /// path.
  /// \return a null variable for null, without a list, and when the host creates nothing
  OptimizationGroupVariable appendVariable(EntityModel::Attribute *attribute);
  /// Appends a variable that refers to the attribute at \p path of \p owner. Its limits, step and bounds are
  /// left as the host makes them.
  /// \return a null variable without a list, and when the host creates nothing
  OptimizationGroupVariable appendVariable(EntityModel::Entity *owner,
                                           const EntityModel::AttributePath &path);
  /// Deletes the first variable that refers to the attribute.
  /// \return  whether there was one
  bool removeVariable(EntityModel::Attribute *attribute);
  /// The first variable with exactly this macro; a null variable when there is none.
  OptimizationGroupVariable getVariableFromMacro(const std::string &macro) const;
  /// Whether a variable refers to the attribute; false for null.
  bool containsAttribute(const EntityModel::Attribute *attribute) const;
  /// Whether a variable refers to the attribute that \p path finds on \p entity; false when it finds nothing.
  bool containsAttribute(const EntityModel::Entity *entity, const EntityModel::AttributePath &path) const;
  /// Whether variables refer to every one of the attributes; false as soon as one is not found.
  /// \param sameSize  also demand as many variables as attributes
  bool containsAttributes(
      const std::vector<std::pair<EntityModel::Entity *, EntityModel::AttributePath>> &attributes,
      bool sameSize) const;
  /// As the other form; false as soon as one is null.
  bool containsAttributes(const std::vector<EntityModel::Attribute *> &attributes, bool sameSize) const;
  /// @}

  /// \name Comparison and upkeep
  /// @{

  /// Whether the first variables of both groups can share one value; false when either group has no variable.
  bool isSameType(const OptimizationGroup &other) const;
  /// As the other form; false for null.
  bool isSameType(const OptimizationGroup *other) const;
  /// OptimizationGroupVariable::addToChangeSet() on every variable.
  void addToChangeSet(EntityModel::ChangeSet &changes) const;
  /// OptimizationGroupVariable::fixVariable() on every variable.
  void fixVariables();
  /// @}

private:
  EntityModel::Entity *m_entity;
};

/// Whether both are the same group. A null group equals nothing, not even another null group.
OPTIMIZATIONTOOL_EXPORT bool operator==(const OptimizationGroup &a, const OptimizationGroup &b);
/// True when either group is null.
OPTIMIZATIONTOOL_EXPORT bool operator!=(const OptimizationGroup &a, const OptimizationGroup &b);

} // namespace OptimizationTool
