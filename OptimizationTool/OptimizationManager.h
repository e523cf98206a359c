#pragma once

#include "HostModel/AttributeSorter.h"
#include "HostModel/Observer.h"
#include "HostModel/StudyEnumerations.h"
#include "OptimizationTool/Export.h"

#include <QObject>

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace EntityModel {
class Attribute;
class AttributePath;
class ChangeSet;
class CompositeAttribute;
class Entity;
class ModelVersion;
} // namespace EntityModel
namespace Tools {
class ToolProgress;
}

namespace OptimizationTool {

class OptimizationData;

/// The library's entry point for a host: one object per process, which holds the study of the current
/// version.
///
/// A study belongs to the version whose label its entity stores; that is the only link between the two. The
/// manager follows the host through its observer manager, with which it registers once, when it is made:
/// install a host before the first instance().
///
/// No operation reports an error; exceptions of the host pass through. A host that frees its model makes the
/// current version null first and broadcasts the selection of the root entity, so that the manager drops its
/// study.
class OPTIMIZATIONTOOL_EXPORT OptimizationManager : public QObject, private EntityGUI::Observer {
  Q_OBJECT

public:
  /// The one manager, made on first use and destroyed at process exit.
  static OptimizationManager &instance();

  OptimizationManager(const OptimizationManager &) = delete;
  OptimizationManager &operator=(const OptimizationManager &) = delete;
  ~OptimizationManager() override;

  /// \name Studies (OptimizationManager.cpp)
  /// A null version means the current one.
  /// @{

  /// Marks the current version, creates its study entity and the copy version. Without a version, or when the
  /// host refuses the entity, no study is held then. Does nothing when a study has begun on the version.
  void beginStudy(EntityModel::ModelVersionStudyType type);
  /// Ends the study of the current version: deletes its study entity and releases the baseline. From an
  /// alternate it clears the studies recorded for the alternate's own label.
  /// \param deleteVersions  destroy every version that directly follows the baseline, whether or not the
  ///                        study made it, except the root version; otherwise they become ordinary, editable
  ///                        versions
  void endStudy(bool deleteVersions);
  /// Whether a study may begin, or be continued, on the version.
  bool canBeginStudy(EntityModel::ModelVersion *version) const;
  /// Loads the study of the current version, or drops the one held when the version has none. Does nothing
  /// while versions are solved.
  void initializeVersion();
  /// Sets the progress that loading reports to; not owned, null for none. Detach it before it ends.
  void attachProgress(Tools::ToolProgress *progress);
  /// The study held; null when there is none. Replaced when the version changes.
  OptimizationData *getData() const;
  EntityModel::ModelVersionStudyType getStudyType();
  /// "" when no study is held.
  std::string getBaseVersionName();
  bool isEditingVersions() const;
  bool isSolvingVersions() const;
  static bool versionHasStudy(EntityModel::ModelVersion *version);
  /// @}

  /// \name Inputs and outputs (OptimizationManagerEligibility.cpp)
  /// Without a study nothing happens and the sets are empty.
  /// @{

  /// Whether an attribute may take part in the study of the current version.
  /// \param isResult  the attribute is offered as a result
  static bool isItemValid(const EntityModel::Attribute *attribute, bool isInput, bool isResult,
                          EntityModel::ModelVersionStudyType type);
  /// Adds a group with this attribute, unless a group of the side contains it. In a study of type Optimality
  /// an input is given limits: those of its kind, or its current value.
  void addInputAttribute(EntityModel::Attribute *attribute);
  void addInputAttribute(EntityModel::CompositeAttribute *owner, const EntityModel::AttributePath &path);
  void addOutputAttribute(EntityModel::Attribute *attribute);
  void addOutputAttribute(EntityModel::CompositeAttribute *owner, const EntityModel::AttributePath &path);
  void removeInputAttribute(EntityModel::Attribute *attribute);
  void removeOutputAttribute(EntityModel::Attribute *attribute);
  /// Variables that the current version does not have are left out.
  std::set<EntityModel::Attribute *, EntityModel::AttributeSorter> getInputAttributes();
  std::set<EntityModel::Attribute *, EntityModel::AttributeSorter> getOutputAttributes();
  /// @}

  /// Follows edits of the baseline: a changed input attribute becomes the value of row 0 in every input group
  /// that holds it (OptimizationManagerObserver.cpp).
  void changedEntities(EntityModel::ChangeSet &changes) override;

private:
  OptimizationManager();

  void setCurrentEntity(EntityModel::Entity *entity, bool scrollTo) override;
  void selectEntities(const std::vector<EntityModel::Entity *> &entities) override;
  void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                      const std::string &versionName, bool reload) override;
  bool mustNotReload() const;

  static EntityModel::Entity *getOptimizationDataEnt(EntityModel::ModelVersion *version);
  static std::unique_ptr<OptimizationData> getOptimizationData(EntityModel::ModelVersion *version,
                                                               QObject *parent);
  static std::unique_ptr<OptimizationData> createOptimizationData(QObject *parent);
  static void clearOptimizationData();

  std::set<EntityModel::Attribute *, EntityModel::AttributeSorter> attributesOf(bool isInput) const;

  std::unique_ptr<OptimizationData> m_data;
  Tools::ToolProgress *m_progress = nullptr;
};

} // namespace OptimizationTool
