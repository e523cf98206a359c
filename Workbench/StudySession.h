#pragma once

#include "EmbeddedHost/Commands.h"
#include "EmbeddedHost/Project.h"
#include "EmbeddedHost/RunRecord.h"
#include "HostModel/Host.h"
#include "Workbench/ModelDeclaration.h"
#include "Workbench/StudyFile.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace OptimizationTool {
class OptimizationData;
}

namespace Workbench {

/// What is known about the results of one row.
enum class RowStatus {
  NotRun,
  Ok,
  Stale, ///< solved, but for inputs, files or a solver that have changed since
  Failed
};

struct RowState {
  RowStatus status = RowStatus::NotRun;
  std::string reason; ///< of a failed row
  bool isInStudyFile = true;
};

/// The project of a study file, open and installed as the host of the process, with its study held by the study
/// manager. It drives the library as a host's user interface does.
///
/// A row whose status is not Ok never has a cost: the library may price a row without results, so the costs of such
/// rows are cleared again after everything that prices. Call clearUnreliableCosts() after using data() in such a way.
class StudySession {
public:
  /// The project file that belongs to a study file: beside it, "x.study.yaml" gives "x.optstudy".
  static std::string projectFileOf(const std::string &studyFile);

  /// Opens the project of the study, or creates it, and brings it in line with the study file: baseline values,
  /// limits, cost, target and missing rows. Rows that the study file does not have (any more) are kept. Saves.
  /// \param study   kept by reference
  /// \param problem receives one sentence when this fails; a new project then leaves no file, an existing one is as it
  ///                was
  static std::unique_ptr<StudySession> open(const StudyFile &study, const std::string &projectFile,
                                            std::string &problem);

  StudySession(const StudySession &) = delete;
  StudySession &operator=(const StudySession &) = delete;
  /// Closes the project; changes that were not saved are lost.
  ~StudySession();

  const StudyFile &study() const { return m_study; }
  /// The project's file as it was given, which messages name it by.
  const std::string &fileName() const { return m_fileName; }
  EmbeddedHost::Project &project() const { return *m_project; }
  EmbeddedHost::Commands &commands() { return m_commands; }
  const ModelAttributes &attributes() const { return *m_attributes; }
  /// The study that the manager holds for the baseline. Fetch it again after every switch of versions.
  OptimizationTool::OptimizationData &data() const;
  EntityModel::ModelVersion *baseline() const { return m_baseline; }

  /// What opening has done to the project, one sentence each; empty when it only opened it.
  const std::vector<std::string> &changes() const { return m_changes; }
  bool isNew() const { return m_isNew; }

  std::size_t rowCount() const { return m_states.size(); }
  std::string rowName(std::size_t row) const;
  /// Null when the row's version is gone.
  EntityModel::ModelVersion *rowVersion(std::size_t row) const;
  const RowState &rowState(std::size_t row) const { return m_states[row]; }
  void setRowState(std::size_t row, RowState state);

  /// Reads the results of every row from its version, prices the rows and clears what is not to be trusted.
  /// \return "" or why the cost of a row with results cannot be computed, for the first such row
  std::string updateAndPrice();
  /// Clears the cost of every row whose status is not Ok.
  void clearUnreliableCosts();
  /// \return "" or why it could not be saved
  std::string save();

private:
  StudySession(const StudyFile &study, std::string fileName, std::unique_ptr<EmbeddedHost::Project> project);

  void tolerateUnpriced(const std::function<void()> &call);
  std::string beginNew();
  std::string continueExisting();
  std::string addGroups(bool isInput);
  std::string compareGroups(bool isInput) const;
  std::string applyBaselineValues();
  std::string applyLimits();
  std::string applyCost();
  std::string applyRows();
  std::string addRow(const StudyRow &row);
  std::string rowKey(std::size_t row) const;
  std::string rowKey(const StudyRow &row) const;
  std::vector<std::string> rowTexts(const StudyRow &row) const;
  std::string freeRowName() const;

  const StudyFile &m_study;
  std::string m_fileName;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  HostModel::HostInstallation m_installation;
  EmbeddedHost::Commands m_commands;
  EntityModel::ModelVersion *m_baseline;
  std::unique_ptr<ModelAttributes> m_attributes;
  std::vector<RowState> m_states;
  std::vector<std::string> m_changes;
  bool m_isNew = false;
};

} // namespace Workbench
