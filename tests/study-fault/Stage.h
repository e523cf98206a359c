#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "OptimizationTool/tests/AdjustedHost.h"
#include "testing/FaultyHost.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace StudyFaults {

/// A project with a study, as an application shows it, over a host of which every operation can be made to fail.
///
/// Two parts, "Fan" and "Pump", have the inputs "Speed" ("10 m/s") and "Angle" ("20") and the results "Power" ("100")
/// and "Noise" ("50"). The study of the version "Base" has the input groups Fan.Speed with Pump.Speed, and Fan.Angle, the
/// output groups Fan.Power and Fan.Noise, the rows "A" (11 m/s, 21) and "B" (12 m/s, 22), the copy version
/// "Steady Copy of Base", and the cost kCost.
class Stage {
public:
  static constexpr const char *kCost = "%Fan.Speed% + 2 * %Fan.Angle% + %Fan.Power%";
  static constexpr const char *kCopy = "Steady Copy of Base";

  Stage();
  Stage(const Stage &) = delete;
  Stage &operator=(const Stage &) = delete;
  /// Closes the project, which leaves the manager without a study.
  ~Stage();

  /// No host is installed any more; the manager keeps its study.
  void uninstall() { m_installed.reset(); }

  void beginStudy();
  void addGroups();
  void addRows();

  EmbeddedHost::Project &project() { return *m_project; }
  EmbeddedHost::Commands &commands() { return m_commands; }
  StudyTesting::AdjustedHost &adjusted() { return m_adjusted; }
  HostTesting::FaultyHost &faults() { return m_faults; }
  static OptimizationTool::OptimizationManager &manager() {
    return OptimizationTool::OptimizationManager::instance();
  }
  static OptimizationTool::OptimizationData *held() { return manager().getData(); }
  static OptimizationTool::OptimizationData &data() { return *held(); }

  /// As the installed host shows it.
  EntityModel::Attribute *attribute(const std::string &part, const std::string &path);
  EntityModel::Entity *part(const std::string &name);
  /// The text of a value in a version, or "-"; tells nobody.
  std::string valueIn(const std::string &version, const std::string &part, const std::string &path);
  std::string currentLabel() const;
  /// Makes a version current, without a call of the installed host.
  void show(const std::string &label);
  /// Takes a version away behind the study's back.
  void destroy(const std::string &label);

private:
  std::unique_ptr<EmbeddedHost::Project> m_project;
  StudyTesting::AdjustedHost m_adjusted;
  HostTesting::FaultyHost m_faults;
  std::optional<HostModel::HostInstallation> m_installed;
  EmbeddedHost::Commands m_commands;
  EntityModel::Entity *m_fan = nullptr;
  EntityModel::Entity *m_pump = nullptr;
};

} // namespace StudyFaults
