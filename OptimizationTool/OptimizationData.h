#pragma once

#include "HostModel/AttributePath.h"
#include "HostModel/StudyEnumerations.h"
#include "OptimizationTool/CostFunctionBuilder.h"
#include "OptimizationTool/Export.h"
#include "OptimizationTool/OptimizationDataSolvingGuard.h"
#include "OptimizationTool/OptimizationGroups.h"
#include "OptimizationTool/OptimizationVariants.h"

#include <QFlags>
#include <QObject>
#include <QPointer>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace EntityGUI {
class AbstractObserverManager;
}
namespace EntityModel {
class Attribute;
class ChangeManager;
class ChangeSet;
class Entity;
class ModelVersion;
} // namespace EntityModel
namespace Tools {
class ToolProgress;
}

namespace OptimizationTool {

/// One optimisation study: a view of the study entity in the host's model, and the matrix of its variants.
///
/// Made and owned by OptimizationManager, which replaces it whenever another version becomes current: hold no
/// pointer to it across a change of version. Row 0 of the matrix is the baseline, every further row an
/// alternate version. Every operation on groups takes a side first: \c true for inputs, \c false for outputs.
/// A variable of one side is addressed by group index and index in the group, or by a flat index that counts
/// the variables of all groups of that side in group order.
///
/// All operations run on the host's user-interface thread. Exceptions of the host pass through. An operation
/// whose calls to the host lead to the end of this object stops quietly.
class OPTIMIZATIONTOOL_EXPORT OptimizationData : public QObject {
  Q_OBJECT

public:
  /// What an update of alternates does; combined as UpdateTypes.
  enum UpdateType {
    /// Write the row's input and output cells into its version.
    WriteToModel = 1,
    /// Read the outputs of the version into the row and price the row.
    ReadFromModel = 2,
  };
  Q_DECLARE_FLAGS(UpdateTypes, UpdateType)

  /// Binds to a study entity and repairs its stored variables; for a study of type Optimality on the current
  /// version also creates the optimality configuration where it is missing. The matrix stays empty until
  /// initializeVariants().
  /// \param studyEntity  not owned; null gives a study without groups and names
  explicit OptimizationData(EntityModel::Entity *studyEntity, QObject *parent);
  OptimizationData(const OptimizationData &) = delete;
  OptimizationData &operator=(const OptimizationData &) = delete;
  /// Leaves the study entity in the model.
  ~OptimizationData() override;

  /// \name The study (OptimizationData.cpp)
  /// @{

  /// The study entity; may be null.
  EntityModel::Entity *get() const { return m_studyEntity; }
  OptimizationGroups &getGroups(bool isInput) const;
  /// Number of stored groups, not of variables; 0 without study entity or list.
  int getNumInputs() const;
  int getNumOutputs() const;
  std::size_t getNumVariants() const;
  /// Whether the study itself switches or edits versions at the moment.
  bool isEditingVersions() const { return m_isEditingVersions; }
  /// Whether at least one OptimizationDataSolvingGuard is alive.
  bool isSolvingVersions() const { return m_solvingCounter > 0; }
  /// Whether the editing flag was set by an operation that is still running. A flag that an exception left
  /// set does not count, so that the study can be reloaded after it.
  bool isEditingOperationRunning() const { return m_isEditingVersions && m_runningOperations > 0; }
  /// Study type of the host's current version; None when there is no current version.
  EntityModel::ModelVersionStudyType getStudyType();
  /// Labels of the baseline and of the copy version; "" when not stored.
  std::string getBaseVersionName() const;
  std::string getCopyVersionName() const;
  void setBaseVersionName(const std::string &name);
  void setCopyVersionName(const std::string &name);
  /// @}

  /// \name Groups: queries (OptimizationDataGroupQueries.cpp)
  /// @{

  /// A null group when the list is missing or the index names none.
  OptimizationGroup getGroup(bool isInput, int groupIndex) const;
  OptimizationGroupVariable getVariable(bool isInput, int flatIndex) const;
  std::pair<OptimizationGroup, OptimizationGroupVariable> getGroupAndVariable(bool isInput,
                                                                              int flatIndex) const;
  std::pair<OptimizationGroup, EntityModel::Attribute *> getGroupAndAttribute(bool isInput,
                                                                              int flatIndex) const;
  /// Number of variables of a side.
  int getNumInputAttributes() const;
  int getNumOutputAttributes() const;
  OptimizationGroup getGroupContainingAttribute(bool isInput, EntityModel::Attribute *attribute) const;
  OptimizationGroup getGroupContainingAttribute(bool isInput, EntityModel::Entity *entity,
                                                const EntityModel::AttributePath &path) const;
  /// Searches the inputs first.
  OptimizationGroup getGroupContainingAttribute(EntityModel::Attribute *attribute) const;
  OptimizationGroup getGroupContainingAttribute(EntityModel::Entity *entity,
                                                const EntityModel::AttributePath &path) const;
  /// Whether a group of either side has exactly this name. An unnamed group has the name "".
  bool doesGroupExist(const std::string &name) const;
  /// Group index and index in the group of a flat index; (0, flatIndex) for a negative one.
  /// \throws std::logic_error "OptimizationData::getGroupIndex: Invalid attribute index" past the last
  /// variable
  std::pair<int, int> getGroupIndex(bool isInput, int flatIndex) const;
  /// First and last flat index of a group's variables; last is first - 1 for an empty group.
  /// \throws std::out_of_range "OptimizationData::getGroupFirstIndex: Group index out of bounds"
  std::pair<int, int> getGroupAttBound(bool isInput, int groupIndex) const;
  /// Whether the cells of both groups have the same text in every row that has both; true without rows.
  bool isGroupSameValue(bool isInput, int groupA, int groupB) const;
  /// The attribute copy in a cell; null when row or cell do not exist or the group does not.
  EntityModel::Attribute *getVariantGroup(bool isInput, std::size_t variantIndex,
                                          std::size_t groupIndex) const;
  /// The column of the group that contains the attribute: one element per row, null where the row has no such
  /// cell; empty when no group contains it.
  std::vector<EntityModel::Attribute *>
  getAllVariantGroupAttributes(bool isInput, EntityModel::Entity *entity,
                               const EntityModel::AttributePath &path) const;
  /// As the form for one side; searches the inputs first.
  std::vector<EntityModel::Attribute *>
  getAllVariantGroupAttributes(EntityModel::Entity *entity, const EntityModel::AttributePath &path) const;
  /// @}

  /// \name Groups: editing (OptimizationDataGroups.cpp)
  /// The calculator keeps the variables of the last build: after a change of groups set the cost function
  /// again.
  /// @{

  /// Adds an unnamed group with one variable; every row gets a cell with the model's current value. Does not
  /// look for duplicates.
  /// \return index of the new group; -1 for a null attribute or when the host refuses,
  /// and then no cell is added
  int addGroup(bool isInput, EntityModel::Attribute *attribute);
  int addGroup(bool isInput, EntityModel::Entity *entity, const EntityModel::AttributePath &path);
  /// Adds an unnamed group without variables, whose column copies that of another group.
  int addGroupFromGroup(bool isInput, int sourceGroupIndex);
  /// Removes a group and its column. An index equal to the number of groups, or negative, removes no group,
  /// but an index equal to the number of groups removes a surplus cell of rows that have one.
  /// \throws
  /// std::out_of_range "OptimizationData::removeGroup: Group index out of range" above the number of groups
  void removeGroup(bool isInput, int groupIndex);
  /// Removes the first variable of the attribute from its group, and the group when that leaves it empty.
  void removeFromGroup(bool isInput, EntityModel::Attribute *attribute);
  /// Removes an input attribute. An attribute that is an output only stays: use the form with a side.
  void removeFromGroup(EntityModel::Attribute *attribute);
  /// Removes a variable, and its group when that leaves it empty.
  void removeAttributeFromGroup(bool isInput, int flatIndex);
  /// Moves a variable to the end of another group, whose limits and bounds it takes; a source group left
  /// empty goes, with its column, also when nothing was moved. The cells of the target group stay as they
  /// are.
  /// \throws std::logic_error "OptimizationData::moveAttribute: Can't move attribute to same group"
  void moveAttribute(bool isInput, int fromGroup, int indexInGroup, int toGroup);
  /// Reorders the groups only; the cells of the rows stay where they are, for the caller to reorder.
  void moveGroup(bool isInput, int from, int to);
  /// Names need not be unique, see doesGroupExist().
  /// \throws std::out_of_range "OptimizationData::setGroupName: Group index out of range"
  void setGroupName(bool isInput, int groupIndex, const std::string &name);
  /// @}

  /// \name Variants: queries (OptimizationDataVariants.cpp)
  /// @{
  bool containsVariant(const std::string &name);
  /// "" when there is no such row.
  std::string getVariantName(std::size_t index);
  std::optional<std::size_t> getVariantIndex(const std::string &name) const;
  /// Empty when there is no such row or its cost is not known.
  std::optional<double> getVariantCost(std::size_t index);
  /// One value per row in standard units, 0.0 for a missing cell.
  OptimizationVariantValues<double> variantStandardVal(bool isInput, std::size_t group);
  /// @}

  /// \name Variants: editing (OptimizationDataVariants.cpp)
  /// @{

  /// Makes an alternate of the copy version with these input values and appends its row. The row is not
  /// priced.
  /// \param values             one text per input group, in the host's own form of a value
  /// \param name               "" takes the first free default name; a name in use is varied by the host
  /// \param alternateArgument  position among the alternates, handed to the host as it is
  /// \return                   index of the row; 0 when the number of values is wrong, the copy version is
  ///                           missing or the host refuses
  std::size_t addVariant(const std::vector<std::string> &values, const std::string &name,
                         std::uint64_t alternateArgument);
  /// As the form for a vector; without it an empty list would be taken for row 0.
  std::size_t addVariant(std::initializer_list<std::string> values, const std::string &name,
                         std::uint64_t alternateArgument);
  /// Makes an alternate with the input values of a row. A row that lacks an input cell gives 0.
  /// \throws std::out_of_range "OptimizationData::addVariant: Variant index out of range"
  std::size_t addVariant(std::size_t variant, const std::string &name, std::uint64_t alternateArgument);
  /// Removes a row. A row without a version goes all the same.
  /// \param destroyVersion  destroy the row's version; otherwise it is released from the study
  /// \throws std::out_of_range "OptimizationData::removeVariant: Variant index out of range"
  /// \throws std::out_of_range "OptimizationData::removeVariant: removeVariant called on baseline"
  void removeVariant(std::size_t variant, bool destroyVersion);
  /// Gives a row and its version another name, which is not checked for uniqueness.
  /// \throws std::out_of_range "OptimizationData::setVariantName: Variant index out of range"
  /// \throws std::logic_error "OptimizationData::setVariantName: setVariantName called on baseline"
  void setVariantName(std::size_t variant, const std::string &name);
  /// Sets all input values of a row and pushes the row into its version.
  /// \throws std::logic_error "Incorrect number of values provided to setVariantValues"
  /// \throws std::logic_error "Invalid variant name provided to setVariantValues"
  /// \throws std::exception   a text is no value of its cell, "" for a number included; the row is not
  ///                          pushed, and the cells before the refused one have their new values
  void setVariantValues(const std::string &name, const std::vector<std::string> &values);
  /// Sets one input value of a row and pushes the row into its version, also when it has no such cell. A row
  /// that does not exist is ignored.
  /// \throws std::exception   the text is no value of the cell, "" for a number included; nothing has changed
  void setVariantValue(std::size_t variant, std::size_t group, const std::string &value);
  /// @}

  /// \name Versions (OptimizationDataVersions.cpp)
  /// @{

  /// Default name of the copy version; \p n is shown unless it is 0.
  std::string getDefaultCopyVersionName(int n) const;
  std::string getDefaultAlternateVersionName(int n) const;
  /// Makes the copy version, from the version that is current. In a running study the new copy becomes the
  /// one that alternates are made from, while the rows stay with the alternates of the old one.
  /// \param forceNew  make one even when there is one; otherwise one with the default name is adopted
  void createCopyVersion(bool forceNew);
  /// Makes an alternate for each row whose version is gone. A copy version that is gone but named is not made
  /// again.
  void createMissingVersions();
  /// Whether every row has its version; true without rows.
  bool allVersionsExist() const;
  /// @}

  /// \name Exchange with the versions (OptimizationDataAlternates.cpp)
  /// A pass switches to the version of each row and back at its end; an exception leaves the version of the
  /// row current. \p progress may be null.
  ///
  /// After a solve only ReadFromModel is right: WriteToModel also writes the output cells, and so the results
  /// of the last solve, over the fresh ones.
  /// @{

  /// Updates every row, the baseline included.
  void updateAlternates(UpdateTypes types, Tools::ToolProgress *progress);
  /// Updates the rows with these names in this order; names without a row are skipped.
  void updateAlternates(UpdateTypes types, const std::vector<std::string> &names,
                        Tools::ToolProgress *progress);
  void updateAlternates(UpdateTypes types, std::initializer_list<std::string> names,
                        Tools::ToolProgress *progress);
  /// Updates the rows at these indices in this order; indices out of range are skipped.
  void updateAlternates(UpdateTypes types, const std::vector<std::size_t> &variants,
                        Tools::ToolProgress *progress);
  /// As the form for a vector, for a list of literals of any integer type.
  template <class Index, std::enable_if_t<std::is_integral_v<Index>, int> = 0>
  void updateAlternates(UpdateTypes types, std::initializer_list<Index> variants,
                        Tools::ToolProgress *progress) {
    std::vector<std::size_t> indices;
    for (const Index index : variants) {
      indices.push_back(static_cast<std::size_t>(index));
    }
    updateAlternates(types, indices, progress);
  }
  void updateAlternate(UpdateTypes types, const std::string &name);
  void updateAlternate(UpdateTypes types, std::size_t variant);
  /// @}

  /// \name Cost (OptimizationDataCosts.cpp)
  /// Pricing throws std::out_of_range "Variable does not exist" when a group is not among the variables of
  /// the last build (it was added, or the owner of its first variable renamed, since), and std::runtime_error
  /// "Invalid Type" when the variable there is no double; the row keeps its cost. Setting the same cost
  /// function again rebuilds. Variables of groups removed since the last build keep their last value.
  /// @{

  std::string getCostFunction() const;
  /// Stores the text, rebuilds the calculator, prices every row and emits costFunctionChanged(). A text that
  /// does not build leaves no row priced, see getLastCostFunctionError(). Does nothing when the host does not
  /// store the text.
  void setCostFunction(const std::string &text);
  /// Prices one row; an index out of range is ignored.
  void recalculateCost(std::size_t variant);
  void recalculateCosts();
  void clearCosts();
  void clearCosts(std::size_t variant);
  /// Whether the name of a group, or the display name of its first variable when it has no name, occurs
  /// anywhere in the text of the cost function. Takes the group first and the side second.
  bool isVariableInCostFunction(int group, bool isInput);
  /// Stores Minimise or Maximise; any other value changes nothing.
  void setOptimisationTarget(MathematicalUtilities::OptimisationStrategy target);
  MathematicalUtilities::OptimisationStrategy getOptimisationTarget() const;
  const std::string &getLastCostFunctionError() const;
  /// Place of the last build error in the text, in bytes from its start, where the error has one.
  std::optional<std::size_t> getLastCostFunctionErrorPosition() const;
  std::vector<std::string> getAvailableFunctionsInCostFunctionBuilder() const;
  /// @}

  /// \name Loading (OptimizationDataLoading.cpp)
  /// @{

  /// Loads the rows of a stored study.
  void initializeVariants(Tools::ToolProgress *progress);
  /// Appends a row for the baseline and for each study case among the alternates of the copy version, makes
  /// the baseline current and prices the rows. Expects an empty matrix: rows of a filled one stay before the
  /// new ones.
  /// \param newStudy  also record the current version as baseline and make the copy version
  void initializeVariants(bool newStudy, Tools::ToolProgress *progress);
  /// @}

Q_SIGNALS:
  /// A cost function was stored and the rows were priced with it.
  void costFunctionChanged();

private:
  friend class OptimizationDataSolvingGuard;

  /// Sets the editing flag and restores its previous value, and counts the operation as running meanwhile.
  /// Survives the end of the study data.
  class EditingVersionsScope {
  public:
    explicit EditingVersionsScope(OptimizationData &data);
    EditingVersionsScope(const EditingVersionsScope &) = delete;
    EditingVersionsScope &operator=(const EditingVersionsScope &) = delete;
    ~EditingVersionsScope();

  private:
    QPointer<OptimizationData> m_data;
    bool m_previous;
  };

  /// Counts an operation as running, without touching the flag.
  class RunningOperationScope {
  public:
    explicit RunningOperationScope(OptimizationData &data);
    RunningOperationScope(const RunningOperationScope &) = delete;
    RunningOperationScope &operator=(const RunningOperationScope &) = delete;
    ~RunningOperationScope();

  private:
    QPointer<OptimizationData> m_data;
  };

  /// While one lives, rows that are removed stay allocated, so that an operation may hold on to rows across
  /// calls to the host. Survives the end of the study data.
  class RowsInUseScope {
  public:
    explicit RowsInUseScope(OptimizationData &data);
    RowsInUseScope(const RowsInUseScope &) = delete;
    RowsInUseScope &operator=(const RowsInUseScope &) = delete;
    ~RowsInUseScope();

  private:
    QPointer<OptimizationData> m_data;
  };

  QString getStudyTypeName() const;
  EntityModel::ModelVersion *currentVersion() const;
  EntityModel::ModelVersion *findVersion(const std::string &label) const;
  void notifyVersionChange(EntityModel::ChangeSet &changes, const std::string &versionName) const;

  OptimizationVariant *getVariant(std::size_t index);
  OptimizationVariant *getVariant(const std::string &name);
  /// Takes a row out of the matrix. Does nothing when it was taken out before.
  void takeRow(const OptimizationVariant *row);
  /// Whether a row was taken out of the matrix since the outermost RowsInUseScope was opened.
  bool isTaken(const OptimizationVariant *row) const;
  /// What a group's first variable refers to: the cells of one column are values of this attribute.
  struct ColumnSource {
    EntityModel::Entity *entity = nullptr;
    EntityModel::AttributePath path;
  };
  /// The columns of both sides, without groups whose first variable has no owner: they have no cells.
  struct RowSource {
    std::vector<ColumnSource> inputs;
    std::vector<ColumnSource> outputs;
  };
  /// Good for as long as nothing but queries is asked of the host.
  RowSource getRowSource() const;
  std::vector<ColumnSource> getColumnSources(bool isInput) const;
  std::size_t addVariant(EntityModel::ModelVersion *version);
  std::size_t addVariant(EntityModel::ModelVersion *version, const RowSource &source);
  /// A free label for a version: a variation of the name, or the first free default name for "".
  std::string chooseVariantName(const std::string &name);
  void writeInputValues(const std::vector<std::string> &values);
  void switchBack(EntityModel::ModelVersion *version, EntityModel::ChangeSet &changes);
  void processNewVersion(EntityModel::ModelVersion *version, EntityModel::ModelVersion *origin,
                         EntityModel::ChangeSet &changes);
  std::string storeNewCopyVersionName();

  void do_updateAlternates(UpdateTypes types, const std::vector<OptimizationVariant *> &variants,
                           Tools::ToolProgress *progress);
  void do_updateAlternate(UpdateTypes types, OptimizationVariant *variant);
  bool writeRow(const OptimizationVariant &variant, bool isInput);
  void readOutputs(OptimizationVariant &variant);

  void updateCostCalculator();
  void do_recalculateCost(OptimizationVariant *variant);
  void do_clearCost(OptimizationVariant *variant);
  void priceRows(const std::vector<OptimizationVariant *> &rows);

  bool m_isEditingVersions = false;
  std::uint64_t m_solvingCounter = 0;
  EntityModel::Entity *m_studyEntity;
  // Shared with the pricing of rows, during which the host may set another cost function.
  std::shared_ptr<CostFunctionBuilder::CostExpression> m_costCalculator;
  // A group list is a handle, which the queries hand out for changes of the model; the study data stays as it
  // is.
  mutable OptimizationGroups m_inputGroups;
  mutable OptimizationGroups m_outputGroups;
  OptimizationVariants m_variants;
  // Rows that were removed while an operation was at work on rows.
  std::vector<std::unique_ptr<OptimizationVariant>> m_takenRows;
  int m_rowsInUse = 0;
  EntityModel::ChangeManager *m_changeManager;
  EntityGUI::AbstractObserverManager *m_observerManager;
  CostFunctionBuilder m_costFunctionBuilder;
  int m_runningOperations = 0;
  /// Default names that the host was asked for: all with a lower number are taken for as long as the host has freed no
  /// label. What the names are made of may change meanwhile.
  struct TriedNames {
    QString pattern;
    QString type;
    std::string base;
    std::uint64_t freedLabels = 0;
    int number = 1;
  };
  TriedNames m_triedNames;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(OptimizationData::UpdateTypes)

} // namespace OptimizationTool
