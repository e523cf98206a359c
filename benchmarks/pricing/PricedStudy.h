#pragma once

#include "EmbeddedHost/Project.h"
#include "HostModel/Host.h"
#include "OptimizationTool/OptimizationData.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace PricingBenchmark {

/// What the inputs and outputs of a study hold.
enum class ValueKind {
  Number,          ///< without units
  Quantity,        ///< a length, in every row in the unit of the baseline, which is not the standard one
  OtherQuantities, ///< a length, in all rows but the baseline in another unit than there
};

/// A project with one part, and a study of it, whose inputs are "Part.x0", "Part.x1" and so on, and whose outputs are
/// "Part.y0" and so on. The project is the installed host for as long as the study lives.
class PricedStudy {
public:
  /// With the number behind it, the name of an input in a cost function.
  static constexpr const char *kInputPrefix = "Part.x";

  PricedStudy(std::size_t inputs, std::size_t outputs, std::size_t rows, ValueKind kind);
  PricedStudy(const PricedStudy &) = delete;
  PricedStudy &operator=(const PricedStudy &) = delete;
  ~PricedStudy();

  OptimizationTool::OptimizationData &data() { return *m_data; }
  /// All cells, row by row, the inputs of a row before its outputs.
  std::vector<EntityModel::Attribute *> cells() const;

private:
  void addGroups(bool isInput, std::size_t count);
  void addRows(std::size_t count, ValueKind kind);

  std::size_t m_numInputs;
  std::size_t m_numOutputs;
  std::unique_ptr<EmbeddedHost::Project> m_project;
  HostModel::HostInstallation m_installed;
  EntityModel::Entity *m_part = nullptr;
  std::unique_ptr<OptimizationTool::OptimizationData> m_data;
};

} // namespace PricingBenchmark
