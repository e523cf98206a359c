#pragma once

#include "EmbeddedHost/Project.h"
#include "OptimizationTool/OptimizationData.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace StudyBenchmark {

constexpr std::size_t kInputs = 20;
constexpr std::size_t kOutputs = 10;

/// One attribute of the model, as the host's interface names it.
struct AttributeName {
  EntityModel::Entity *entity = nullptr;
  EntityModel::AttributePath path;
};

/// How many groups a study has on each side, and variables each of them.
struct StudySize {
  std::size_t inputs = kInputs;
  std::size_t outputs = kOutputs;
  std::size_t variables = 1;
};

/// A study of one project, which is the installed host meanwhile. Row 0 is its only row; its copy version has no
/// alternates.
class StudyProject {
public:
  explicit StudyProject(const StudySize &size = {});
  StudyProject(const StudyProject &) = delete;
  StudyProject &operator=(const StudyProject &) = delete;
  ~StudyProject();

  /// Adds alternates of the copy version that give a value to every variable, without rows for them.
  void addAlternates(std::size_t count);
  /// Study data over the same study without rows, in the place of what there was.
  void reopen();

  OptimizationTool::OptimizationData &data() { return *m_data; }
  EmbeddedHost::Project &project() { return *m_project; }
  /// The variables of one side, group by group.
  const std::vector<AttributeName> &names(bool isInput) const { return isInput ? m_inputs : m_outputs; }
  EntityModel::Attribute *attribute(const AttributeName &name) const;
  const std::vector<EntityModel::ModelVersion *> &alternates() const { return m_alternates; }

private:
  void addGroups(bool isInput, std::size_t groups, std::size_t variables);

  std::unique_ptr<EmbeddedHost::Project> m_project;
  HostModel::HostInstallation m_installed;
  EntityModel::Entity *m_study = nullptr;
  std::unique_ptr<OptimizationTool::OptimizationData> m_data;
  EntityModel::ModelVersion *m_copy = nullptr;
  std::vector<AttributeName> m_inputs;
  std::vector<AttributeName> m_outputs;
  std::vector<EntityModel::ModelVersion *> m_alternates;
};

/// The text of a value that differs from row to row and from variable to variable.
std::string valueText(std::size_t row, std::size_t variable);

} // namespace StudyBenchmark
