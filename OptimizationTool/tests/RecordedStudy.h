#pragma once

#include "EmbeddedHost/Project.h"
#include "HostModel/Host.h"
#include "HostModel/Observer.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/tests/AdjustedHost.h"
#include "testing/FaultyHost.h"
#include "testing/RecordingHost.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace StudyTesting {

/// A study on the version "Base" of a model with two parts, "Fan" and "Pump", each with the inputs "Speed" (10)
/// and "Angle" (20) and the results "Power" (100) and "Noise" (50), over a host whose calls are recorded.
///
/// Input group 0 holds Fan.Speed and Pump.Speed, input group 1 Fan.Angle, output group 0 Fan.Power and output
/// group 1 Fan.Noise. The copy version is "Steady Copy of Base". No study manager is at work.
class RecordedStudy {
public:
  explicit RecordedStudy(const EmbeddedHost::HostBehaviour &behaviour = {});
  RecordedStudy(const RecordedStudy &) = delete;
  RecordedStudy &operator=(const RecordedStudy &) = delete;
  ~RecordedStudy();

  /// Makes the study entity, the copy version and the groups, and forgets the recorded calls.
  void begin();
  /// Makes the study entity for "Base" only, with its study data, and forgets the recorded calls.
  void makeEntity();
  /// Makes the groups.
  void addGroups();
  /// Adds a row with these input values as an engineer does, and forgets the recorded calls.
  std::size_t addRow(const std::string &name, const std::string &speed, const std::string &angle);
  /// Replaces the study data by a new one over the same entity, without rows, and forgets the recorded calls.
  void reopen();

  OptimizationTool::OptimizationData &data() { return *m_data; }
  bool isAlive() const { return m_data != nullptr; }
  /// Ends the study data, as a manager does that reloads.
  void drop() { m_data.reset(); }

  EmbeddedHost::Project &project() { return *m_project; }
  AdjustedHost &adjusted() { return m_adjusted; }
  HookedHost &hooked() { return m_hooked; }
  HostTesting::FaultyHost &faults() { return m_faults; }
  HostTesting::RecordingHost &host() { return m_host; }

  /// The part as the installed host shows it.
  EntityModel::Entity *fan() { return m_host.proxy(m_fan); }
  EntityModel::Entity *pump() { return m_host.proxy(m_pump); }
  EntityModel::Entity *studyEntity() { return m_studyEntity; }
  EntityModel::ModelVersion *version(const std::string &label);
  EntityModel::Attribute *attribute(EntityModel::Entity *entity, const std::string &path);
  /// Labels of all versions in order of creation.
  std::vector<std::string> versionLabels() const;
  std::string currentLabel() const;
  /// Makes a version current, or none for "", without a notification or a recorded call.
  void show(const std::string &label);
  /// Makes a version that follows another one, without a notification or a recorded call.
  EntityModel::ModelVersion *addVersion(const std::string &label, const std::string &origin);
  /// Takes a version away behind the study's back.
  void destroy(const std::string &label);
  /// The value that a version has, as text; does not touch the recording.
  std::string valueIn(const std::string &label, EntityModel::Entity *entity, const std::string &path);
  /// Sets a value in a version; does not touch the recording.
  void setValueIn(const std::string &label, EntityModel::Entity *entity, const std::string &path,
                  const std::string &text);
  /// The texts of a row's cells, inputs then outputs; "-" where a row has no such cell.
  std::vector<std::string> cells(std::size_t row);

private:
  std::unique_ptr<EmbeddedHost::Project> m_project;
  AdjustedHost m_adjusted;
  HookedHost m_hooked;
  HostTesting::FaultyHost m_faults;
  HostTesting::RecordingHost m_host;
  HostModel::HostInstallation m_installed;
  EntityModel::Entity *m_fan = nullptr;
  EntityModel::Entity *m_pump = nullptr;
  EntityModel::Entity *m_studyEntity = nullptr;
  std::unique_ptr<OptimizationTool::OptimizationData> m_data;
};

/// Calls a function at every change of version; registered for as long as it lives.
class VersionListener final : public EntityGUI::Observer {
public:
  using Action = std::function<void(const std::string &versionName)>;

  explicit VersionListener(Action action);
  ~VersionListener() override;

  void changedVersion(EntityModel::ChangeSet &changes, EntityModel::Entity *entity,
                      const std::string &versionName, bool reload) override;

private:
  Action m_action;
};

/// Calls a function at every check.
class ListeningChecker final : public EntityGUI::AbstractModelChecker {
public:
  std::function<void(EntityModel::ChangeSet &)> action;

  void check(EntityModel::ChangeSet &changes) override;
};

} // namespace StudyTesting
