#pragma once

#include "EmbeddedHost/Commands.h"
#include "HostModel/Observer.h"
#include "HostModel/StudyEnumerations.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "OptimizationTool/tests/StudyFixture.h"

#include <cstddef>
#include <string>
#include <vector>

namespace StudyTesting {

/// Lets the study manager hear of what happens, for as long as one lives: afterwards it is out of the registry of
/// observers, so that cases without a manager can follow in the same process. Made after the host is installed.
class ManagerAtWork {
public:
  ManagerAtWork();
  ManagerAtWork(const ManagerAtWork &) = delete;
  ManagerAtWork &operator=(const ManagerAtWork &) = delete;
  ~ManagerAtWork();
};

/// The study manager at work on a project that is opened and closed as a user does. The project has two parts,
/// "Fan" and "Pump", and one version, "Base"; it has never been saved, so that its versions have no folders.
///
/// Recorded calls name the root entity "Root" and the study that begin() makes "Study".
class ManagedStudy : public StudyFixture {
public:
  explicit ManagedStudy(const EmbeddedHost::HostBehaviour &behaviour = {});
  /// Closes the project, which leaves the manager without a study.
  ~ManagedStudy();

  static OptimizationTool::OptimizationManager &manager();
  static OptimizationTool::OptimizationData &data() { return *manager().getData(); }
  EmbeddedHost::Commands &commands() { return m_commands; }
  EntityModel::Entity *fan() const { return m_fan; }
  EntityModel::Entity *pump() const { return m_pump; }

  /// Begins a study on the current version and forgets the recorded calls.
  void begin(EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric);
  /// A study with the inputs Fan.Length ("100 mm") and Fan.Ratio ("0.5"), the output Fan.Power, and after the
  /// baseline the rows "A" ("110 mm", "1.5") and "B" ("120 mm", "2.5").
  void beginWithRows();

  /// The version with this label as the installed host shows it, or null.
  static EntityModel::ModelVersion *version(const std::string &label);
  /// Makes a version that follows another one, and goes back to the version that was current.
  EntityModel::ModelVersion *addVersion(const std::string &label, const std::string &origin);
  std::vector<std::string> versionLabels();
  static std::string currentLabel();
  /// Makes a version current, as a user does.
  void switchTo(const std::string &label);
  /// Makes no version current, and tells nobody.
  void showNoVersion();
  /// Edits a value in the current version, as a user does.
  void edit(EntityModel::Entity *entity, const std::string &path, const std::string &text);
  /// A study entity for a version with this label, at the end of the list, without the manager's knowledge.
  EntityModel::Entity *storeStudy(const std::string &baseVersionName);
  /// The stored study entities.
  static std::vector<EntityModel::Entity *> storedStudies();

  /// The texts of a row's cells, inputs then outputs; "(none)" where a row has no such cell.
  static std::vector<std::string> cells(std::size_t row);
  static std::vector<std::string> rowNames();

private:
  ManagerAtWork m_managerAtWork;
  EmbeddedHost::Commands m_commands;
  EntityModel::Entity *m_fan;
  EntityModel::Entity *m_pump;
};

/// Writes down the changes of version that are broadcast, for as long as it lives, as in
/// "Base, root, 0 changes".
class VersionChangeLog final : public EntityGUI::Observer {
public:
  VersionChangeLog();
  ~VersionChangeLog() override;

  void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                      const std::string &versionName, bool reload) override;

  const std::vector<std::string> &texts() const { return m_texts; }

private:
  std::vector<std::string> m_texts;
};

} // namespace StudyTesting
