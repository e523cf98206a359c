#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "tests/study-property/ReferenceStudy.h"
#include "tests/study-property/Steps.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QTemporaryDir;

namespace StudyProperty {

/// How often something was reached, by its name.
using Tally = std::map<std::string, int>;

/// Carries steps out on a project, through the study manager and the host's commands, and on the reference, and
/// compares the two after every step.
class Session {
public:
  Session(Mistake mistake, Tally &tally);
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;
  ~Session();

  /// \return "" when the library was always as the reference, else the number of the first step after which it was not,
  ///         what was done there and what differs
  std::string run(const std::vector<Step> &steps);
  /// What was done, step by step.
  const Texts &log() const { return m_log; }

private:
  struct Place {
    int part;
    std::string path;
  };
  using Work = std::function<std::string()>;

  void show();
  void close();
  void act(const Step &step);
  void actOnHost(const Step &step, Draws &draws);
  bool actOnGroups(const Step &step, Draws &draws);
  bool actOnRows(const Step &step, Draws &draws);
  bool actOnCosts(const Step &step, Draws &draws);
  bool actOnVersions(const Step &step, Draws &draws);
  void both(const std::string &what, const Work &referenceWork, const Work &libraryWork);
  void bothDo(const std::string &what, const std::function<void()> &referenceWork,
              const std::function<void()> &libraryWork);

  void setLimits(Draws &draws);
  void loadAfresh();
  void solve(Draws &draws);
  void solveVersions(bool edits);
  void edit(Draws &draws);
  void changeVersions(const Step &step, Draws &draws);
  void saveAndReopen(const Step &step);

  void compare();
  void tallyState();

  Place anyPlace(Draws &draws, bool isInput) const;
  int anyGroup(Draws &draws, bool isInput, int beyond) const;
  std::string anyValue(Draws &draws, std::size_t group) const;
  Texts anyValues(Draws &draws) const;
  std::string anyCost(Draws &draws) const;
  int anyVersion(Draws &draws) const;
  EntityModel::Entity *part(int number) const;
  EntityModel::Attribute *attribute(const Place &place) const;
  EntityModel::ModelVersion *version(int number) const;
  static OptimizationTool::OptimizationManager &manager() {
    return OptimizationTool::OptimizationManager::instance();
  }
  static OptimizationTool::OptimizationData &data() { return *manager().getData(); }

  std::unique_ptr<QTemporaryDir> m_folder;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  std::unique_ptr<HostModel::HostInstallation> m_installation;
  std::unique_ptr<EmbeddedHost::Commands> m_commands;
  ReferenceStudy m_reference;
  std::optional<ReferenceStudy> m_saved; ///< what the file has to hold; none before the first save
  Tally &m_tally;
  Texts m_log;
  std::string m_operation;
  std::string m_problem;
};

} // namespace StudyProperty
