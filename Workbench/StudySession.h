#pragma once

#include "Workbench/ProjectSession.h"
#include "Workbench/StudyFile.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace OptimizationTool {
class OptimizationGroup;
}

namespace Workbench {

class ModelChange;

/// Whether what opening does to a project is kept.
enum class Keeping {
  Changes,
  Nothing ///< nothing is written: for a look at what would be
};

/// The project of a study file: created, or opened and brought in line with the file.
class StudySession final : public ProjectSession {
public:
  /// Opens the project of the study, or creates it, and brings it in line with the study file: title, new entities and
  /// attributes, units, limits and options, inputs and outputs, baseline values, cost, target and missing rows. Rows
  /// that the study file does not have (any more) are kept; a model that cannot be had without losing what rows have is
  /// refused. Saves.
  /// \param study   kept by reference
  /// \return null with the reason in \p failure; a new project then leaves no file, an existing one is as it was
  static std::unique_ptr<StudySession> open(const StudyFile &study, const std::string &projectFile,
                                            Keeping keeping, OpenFailure &failure);

  const StudyFile &study() const { return m_study; }

  /// What opening has done to the project, one sentence each; empty when it only opened it.
  const std::vector<std::string> &changes() const { return m_changes; }
  bool isNew() const { return m_isNew; }

private:
  StudySession(const StudyFile &study, std::string fileName, std::unique_ptr<EmbeddedHost::Project> project);

  EntityModel::Attribute *attributeOf(const std::string &fullName) const;
  void markInStudyFile(std::size_t row, bool isInStudyFile);
  void applyTitle();
  void applyRule();
  static std::unique_ptr<EmbeddedHost::Project> openExisting(const std::string &projectFile,
                                                             const StudyFile &study, ModelChange &change,
                                                             OpenFailure &failure);
  std::string beginNew();
  std::string continueExisting(const ModelChange &change);
  OptimizationTool::OptimizationGroup groupAt(bool isInput, std::size_t index) const;
  std::vector<std::string> attributesOf(bool isInput, std::size_t index) const;
  std::optional<std::size_t> findGroupOf(bool isInput, const StudyGroup &declared) const;
  std::string addGroup(bool isInput, const StudyGroup &declared);
  bool removeOldGroups(bool isInput);
  std::string applyGroups(bool isInput);
  std::string applyBaselineValues();
  void applyLimits();
  std::string applyCost();
  std::string applyRows();
  std::string addRow(const StudyRow &row);
  std::string rowKey(std::size_t row) const;
  std::string rowKey(const StudyRow &row) const;
  std::vector<std::string> rowTexts(const StudyRow &row) const;

  const StudyFile &m_study;
  std::vector<std::string> m_changes;
  bool m_isNew = false;
};

} // namespace Workbench
