#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace StudyProperty {

/// A project window with a file of its own: two beams, "Main" and "Side", each with "Length" (shown in mm), "Count", and
/// the results "Mass" (kg) and "Deflection" (shown in mm). The solver is a formula: the mass is 2 kg for each metre of
/// each of Count pieces, the deflection a tenth of the length shared by Count.
class ProjectStoryTest : public ::testing::Test {
protected:
  using Texts = std::vector<std::string>;
  using Matrix = std::vector<Texts>;
  using Costs = std::vector<std::optional<double>>;
  static constexpr std::uint64_t kAtEnd = std::numeric_limits<std::uint64_t>::max();

  ProjectStoryTest();
  ~ProjectStoryTest() override;

  void create();
  void open(const std::string &file);
  void close();
  void saveAs(const std::string &file);
  void save();
  /// Saves under that name, closes and opens again.
  void saveAndReopen(const std::string &file);

  static OptimizationTool::OptimizationManager &manager() {
    return OptimizationTool::OptimizationManager::instance();
  }
  static OptimizationTool::OptimizationData &data() { return *manager().getData(); }
  EntityModel::Entity *beam(std::size_t number) const;
  EntityModel::Attribute *value(const char *path, std::size_t number = 0) const;
  std::string shown(const char *path, std::size_t number = 0) const;
  EntityModel::ModelVersion *version(const std::string &label) const;
  std::string current() const { return project->currentVersion()->getLabel(); }

  /// A study of the main beam, priced by its mass and its deflection, with the inputs Length and Count.
  void begin();
  void solve();
  void solveCurrent(std::size_t number);
  void switchTo(const std::string &label);
  std::string edit(const char *path, const std::string &text, std::size_t number = 0);
  Texts versions() const;
  /// Every row: its name, then its inputs, then its outputs.
  static Matrix matrix();
  static Costs costs();
  std::string path(const std::string &file) const;

  QTemporaryDir folder;
  std::unique_ptr<EmbeddedHost::Project> project;
  std::unique_ptr<HostModel::HostInstallation> installation;
  std::unique_ptr<EmbeddedHost::Commands> commands;

private:
  void show();
};

} // namespace StudyProperty
