#pragma once

#include "EmbeddedHost/Project.h"
#include "HostModel/StudyEnumerations.h"
#include "OptimizationTool/OptimizationData.h"
#include "testing/FaultyHost.h"
#include "testing/RecordingHost.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace StudyTesting {

/// What stands for a cell that does not exist or is empty.
constexpr const char *kNoCell = "(none)";

/// What a call throws, its exact class and text, as in "std::out_of_range: Index out of range"; "nothing" when it
/// throws nothing.
std::string thrownBy(const std::function<void()> &call);

/// A project with two fans and the study data of its version "Base", without the study manager.
///
/// The fans are "FanA" and "FanB", with Speed "10 m/s" (a quantity), Ratio "1" (a number), Blades "5" (an
/// integer), Enabled "1", Mode "1" of three, Note "" (a text), and the results Power (in W) and Noise (a number), which
/// are not computed; the root entity has the number Load "2".
///
/// Look-ups go through the installed host, so that they answer proxies once a wrapper is installed. Attributes are
/// named as in "FanA.Speed", those of the root entity as in "Load", a fan itself as in "FanA".
class StudyDataFixture : public ::testing::Test {
protected:
  explicit StudyDataFixture(const EmbeddedHost::HostBehaviour &behaviour = {});
  ~StudyDataFixture() override;

  /// \name The host
  /// @{
  EmbeddedHost::Project &project() { return *m_project; }
  static EntityModel::ChangeManager &changeManager();
  /// The version with this label, or null.
  static EntityModel::ModelVersion *version(const std::string &label);
  static std::string currentLabel();
  /// Makes a version current, behind the study's back.
  static void switchTo(const std::string &label);
  static std::vector<std::string> versionLabels(const EmbeddedHost::Project &project);
  static EntityModel::Entity *root();
  static EntityModel::Entity *fan(const std::string &name);
  /// The attribute in the current version.
  static EntityModel::Attribute *attribute(const std::string &name);
  /// Sets a value in a version, of a result too, and goes back to the version that was current.
  void setIn(const std::string &label, const std::string &attributeName, const std::string &text);
  /// The text of a value in a version.
  static std::string valueIn(const std::string &label, const std::string &attributeName);
  /// Saves the project into a new file, which it lives in from then on. \return whether that was possible
  bool save(const std::string &file);
  /// @}

  /// \name Wrappers. Installed around the project; study data that exist are made again and loaded through them.
  /// @{

  /// Begins a recording, with the state of the study data; calls made before are not in it.
  HostTesting::RecordingHost &record();
  HostTesting::FaultyHost &injectFaults();
  /// @}

  /// \name The study
  /// @{

  /// Begins a study on the current version, as the manager does: marks the version, creates the study entity, and
  /// loads the data, which makes the copy version.
  OptimizationTool::OptimizationData &
  begin(EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric);
  /// A study with the inputs FanA.Speed, FanA.Blades and FanB.Ratio, the outputs FanA.Power and FanA.Noise, and
  /// after the baseline the rows "Row 1" ("20 m/s", "6", "2") and "Row 2" ("30 m/s", "7", "3").
  OptimizationTool::OptimizationData &beginWithRows();
  /// A study entity for the current version, without data for it.
  EntityModel::Entity *createStudyEntity();
  /// The stored study entity, or null.
  static EntityModel::Entity *studyEntity();
  OptimizationTool::OptimizationData &data() { return *m_data; }
  /// Makes the data of the stored study again, as a change of version does.
  OptimizationTool::OptimizationData &reload();
  /// Makes the data of the stored study again, without rows.
  OptimizationTool::OptimizationData &reconstruct();
  void drop() { m_data.reset(); }
  /// Adds a group for the attribute. \return its index
  int addInput(const std::string &attributeName);
  int addOutput(const std::string &attributeName);
  /// Appends a variable to a group; the matrix does not change.
  void addVariable(bool isInput, int group, const std::string &attributeName);
  /// The names "FanA.Speed" and so on of the variables of each group.
  std::vector<std::vector<std::string>> groups(bool isInput) const;
  /// @}

  /// \name The matrix
  /// @{

  /// Texts of the cells of a row, one for each group of the side.
  std::vector<std::string> row(bool isInput, std::size_t index) const;
  /// Texts of the cells of a column, one for each row.
  std::vector<std::string> column(bool isInput, std::size_t group) const;
  std::vector<std::string> rowNames();
  std::vector<std::optional<double>> costs();
  /// @}

private:
  void installWrapper(std::unique_ptr<HostTesting::WrappedHost> wrapper);

  std::unique_ptr<EmbeddedHost::Project> m_project;
  std::unique_ptr<HostModel::HostInstallation> m_installation;
  // Wrappers around each other, the outermost last.
  std::vector<std::unique_ptr<HostTesting::WrappedHost>> m_wrappers;
  std::vector<std::unique_ptr<HostModel::HostInstallation>> m_wrapperInstallations;
  std::unique_ptr<OptimizationTool::OptimizationData> m_data;
};

} // namespace StudyTesting
