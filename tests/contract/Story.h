#pragma once

#include "HostModel/StudyEnumerations.h"
#include "OptimizationTool/OptimizationData.h"
#include "OptimizationTool/OptimizationManager.h"
#include "tests/contract/Scene.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace HostContract {

using Numbers = std::vector<std::optional<double>>;

/// A study of the library on the current version: the inputs A.Width (4) and A.Ratio (0.5), the output A.Mass, and the
/// cost "%A.Mass% + %A.Ratio%". The solver finds ten times the width.
class Story {
public:
  explicit Story(Scene &scene,
                 EntityModel::ModelVersionStudyType type = EntityModel::ModelVersionStudyType::Parametric);
  /// A study that is stored already; the manager is looked at only.
  static Story resumed(Scene &scene) { return Story(scene, std::nullopt); }

  static OptimizationTool::OptimizationManager &manager() {
    return OptimizationTool::OptimizationManager::instance();
  }
  /// The study that the manager holds; a std::logic_error when it holds none.
  static OptimizationTool::OptimizationData &study();
  static bool isHeld() { return manager().getData() != nullptr; }

  /// Rows "One" (2, 0.1) and "Two" (3, 0.2).
  void addRows();
  void addRow(const std::string &name, const std::string &width, const std::string &ratio);
  /// Solves every row behind a guard, as a host does, and reads the results.
  void solve();
  /// Selects the root again, which loads the study from the model.
  void reload();

  static Texts rows();
  /// The cells of a row in standard units, without number where a cell is missing or empty.
  static Numbers cells(std::size_t row);
  static Numbers costs();
  EntityModel::ModelVersion *version(const std::string &label) const;
  EntityModel::ModelVersion *copy() const { return version(study().getCopyVersionName()); }

private:
  Story(Scene &scene, std::nullopt_t /*isStored*/) : m_scene(scene) {}

  Scene &m_scene;
};

} // namespace HostContract
