#pragma once

#include "tests/study-fault/Stage.h"

#include <optional>
#include <string>
#include <vector>

namespace OptimizationTool {
class OptimizationVariants;
}

namespace StudyFaults {

/// A row of the matrix, with what it really holds.
struct SeenRow {
  std::string name;
  int inputs = 0;
  int outputs = 0;
  std::optional<double> cost;
};

/// What a study looks like at a moment when nothing fails.
struct Snapshot {
  /// The address of the study data that the manager holds, or null.
  const void *held = nullptr;
  bool isEditing = false;
  bool isSolving = false;
  std::string current;
  int inputs = 0;
  int outputs = 0;
  std::vector<SeenRow> rows;
  /// Labels in order of creation.
  std::vector<std::string> versions;
  /// The inputs that the baseline has in the model: Fan.Speed, Pump.Speed, Fan.Angle.
  std::vector<std::string> baseline;
  bool hasStudyType = false;
  int storedStudies = 0;
  bool needsSave = false;
};

Snapshot look(Stage &stage);

/// The matrix of the study data itself, of which hosts see only what the groups of the moment name.
OptimizationTool::OptimizationVariants &matrixOf(OptimizationTool::OptimizationData &data);

/// Whether there is a version with this label.
bool hasVersion(const Snapshot &snapshot, const std::string &label);

} // namespace StudyFaults
