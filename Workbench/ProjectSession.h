#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/RunRecord.h"
#include "HostModel/Host.h"
#include "HostModel/StudyEnumerations.h"
#include "Workbench/ProjectModel.h"
#include "Workbench/RowState.h"
#include "Workbench/StudyExpression.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OptimizationTool {
class OptimizationData;
}

namespace Workbench {

/// Why a project could not be opened.
struct OpenFailure {
  std::string problem;
  /// It cannot be changed or made now: another program holds it, or it may not be written.
  bool isHeld = false;
};

/// A project that is open and installed as the host of the process, with its study held by the study manager. It drives
/// the library as a host's user interface does.
///
/// A row whose status is not Ok never has a cost: the library may price a row without results, so the costs of such
/// rows are cleared again after everything that prices. Call clearUnreliableCosts() after using data() in such a way.
class ProjectSession {
public:
  /// The project file that belongs to a study file: beside it, "x.study.yaml" gives "x.optstudy".
  static std::string projectFileOf(const std::string &studyFile);
  /// The study file beside a project: the first that exists of "x.study.yaml", "x.study.yml", "x.study.json", "x.yaml",
  /// "x.yml" and "x.json" for "x.optstudy"; "" when there is none.
  static std::string studyFileOf(const std::string &projectFile);

  /// Opens a project as it was left, makes the baseline of its study current and knows every row by its record.
  /// \return null with the reason in \p failure
  static std::unique_ptr<ProjectSession> open(const std::string &projectFile, EmbeddedHost::OpenMode mode,
                                              OpenFailure &failure);

  ProjectSession(const ProjectSession &) = delete;
  ProjectSession &operator=(const ProjectSession &) = delete;
  /// Closes the project; changes that were not saved are lost.
  virtual ~ProjectSession();

  /// The project's file as it was given, which messages name it by.
  const std::string &fileName() const { return m_fileName; }
  EmbeddedHost::Project &project() const { return *m_project; }
  EmbeddedHost::Commands &commands() { return m_commands; }
  const ProjectModel &model() const { return *m_model; }
  /// What the study file calls its title; "" when it has none.
  std::string title() const;
  void setTitle(const std::string &title);

  /// The rule that the inputs of every row have to meet; "" for none.
  std::string rule() const;
  /// Why a row must not be run; "" when it meets the rule. \param inputs  its values in declared units
  std::string infeasibility(const AttributeValues &inputs) const;

  /// Whether the project has a study. Without one there are no rows, and data() must not be called.
  bool hasStudy() const;
  /// The study that the manager holds for the baseline. Fetch it again after every switch of versions.
  OptimizationTool::OptimizationData &data() const;
  /// Says what the best row is. The library itself keeps a target that was set once.
  void setTarget(MathematicalUtilities::OptimisationStrategy target);
  /// The version that the study begins with; the root version without a study.
  EntityModel::ModelVersion *baseline() const { return m_baseline; }

  /// The attribute that stands for a group: its first one. Null for a group whose attribute the model does not have.
  const ModelAttribute *groupAttribute(bool isInput, std::size_t group) const;
  std::size_t groupCount(bool isInput) const;
  /// Whether every group of a side has an attribute. Where one has none the cells of those behind it stand one place
  /// before theirs, and nothing in them can be trusted.
  bool hasAllAttributes(bool isInput) const;

  std::size_t rowCount() const { return m_states.size(); }
  std::string rowName(std::size_t row) const;
  std::optional<std::size_t> findRow(const std::string &name) const;
  /// A name for a new row that no version has: "Variant 3" for the row that will be number 3, or a later one.
  std::string freeRowName() const;
  /// Null when the row's version is gone.
  EntityModel::ModelVersion *rowVersion(std::size_t row) const;
  const RowState &rowState(std::size_t row) const { return m_states[row]; }
  void setRowState(std::size_t row, RowState state);

  /// Sets the state of every row from the record of its last run: stale when its inputs have changed since, infeasible
  /// when they break the rule. Reads no study file and starts nothing; what a solver would be given besides the inputs
  /// is not looked at.
  void assessFromRecords();
  /// The value of an attribute in the current version, in its declared unit; empty without one.
  std::optional<double> currentValue(const std::string &fullName) const;
  /// What a row's results depend on in the model: all values of the current version but results.
  std::string inputsKey() const;

  /// Reads the results of every row from its version, prices the rows and clears what is not to be trusted.
  /// \return "" or why the cost of a row with results cannot be computed, for the first such row
  std::string updateAndPrice();
  /// Clears the cost of every row whose status is not Ok, and of every other that lacks a value which the cost names:
  /// the library prices that as 0 where the cost does not mention the group by its own name.
  void clearUnreliableCosts();
  /// \return "" or why it could not be saved
  std::string save();
  /// Carries out something that prices rows on the way, whether or not every cost can be computed.
  void tolerateUnpriced(const std::function<void()> &call);
  /// Takes the rows as the study has them now; known rows keep their states by their names.
  void refreshRows();
  /// Takes a row that was added at the end.
  void rowWasAdded();

protected:
  /// As open(), without looking into the project.
  static std::unique_ptr<EmbeddedHost::Project> openForWriting(const std::string &projectFile,
                                                               OpenFailure &failure);
  ProjectSession(std::string fileName, std::unique_ptr<EmbeddedHost::Project> project);

  /// Announces the project and finds its study. \return "" or why that failed
  std::string announce();
  void readModel();
  void setRule(const std::string &rule);

private:
  void makeStudyCurrent();
  struct PricedGroup {
    bool isInput = true;
    std::size_t index = 0;
  };
  // An attribute that is no result, with what stands for its name in inputsKey(), which is asked for every row.
  struct KeyedInput {
    const ModelAttribute *attribute;
    std::string countedName;
  };
  std::vector<PricedGroup> pricedGroups() const;
  bool lacksValue(std::size_t row, const std::vector<PricedGroup> &groups) const;
  void buildRule();

  std::string m_fileName;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  HostModel::HostInstallation m_installation;
  EmbeddedHost::Commands m_commands;
  EntityModel::ModelVersion *m_baseline;
  std::unique_ptr<ProjectModel> m_model;
  std::vector<KeyedInput> m_keyedInputs; // of the model
  std::optional<StudyExpression> m_rule;
  std::vector<std::string> m_names;
  std::vector<RowState> m_states;
};

/// Switches the versions of a session for as long as it lives; the study takes no notice, and the baseline is current
/// again afterwards.
class VersionTour {
public:
  explicit VersionTour(ProjectSession &session);
  VersionTour(const VersionTour &) = delete;
  VersionTour &operator=(const VersionTour &) = delete;
  ~VersionTour();

private:
  class Parts;

  std::unique_ptr<Parts> m_parts;
};

} // namespace Workbench
