#include "tests/study-fault/Snapshot.h"

#include "HostModel/Attribute.h"
#include "HostModel/Lookup.h"
#include "HostModel/ModelVersion.h"
#include "HostModel/TypeConstants.h"

#include <algorithm>
#include <stdexcept>

namespace StudyFaults {

using OptimizationTool::OptimizationData;
using OptimizationTool::OptimizationVariant;
using OptimizationTool::OptimizationVariants;

namespace {

// The queries of the study show no cell beyond the groups and none that is empty, and both are what a lost cell is
// told by. Naming a private member in an explicit instantiation is allowed, and needs nothing of the class.
template <class Tag, typename Tag::Member Pointer> struct Reach {
  friend typename Tag::Member reach(Tag /*tag*/) { return Pointer; }
};

struct Matrix {
  using Member = OptimizationVariants OptimizationData::*;
  friend Member reach(Matrix);
};

template struct Reach<Matrix, &OptimizationData::m_variants>;

// A cell is put back in its own place, which is refused where there is none.
int countCells(OptimizationVariant &row, bool isInput) {
  for (std::size_t index = 0;; ++index) {
    const EntityModel::Attribute *cell = row.getAttribute(isInput, index);
    const std::unique_ptr<EntityModel::Attribute> copy = cell == nullptr ? nullptr : cell->clone();
    try {
      if (isInput) {
        row.replaceInput(index, copy.get());
      } else {
        row.replaceOutput(index, copy.get());
      }
    } catch (const std::out_of_range &) {
      return static_cast<int>(index);
    }
  }
}

int countStoredStudies(const Stage &stage) {
  const auto &project = const_cast<Stage &>(stage).project();
  return static_cast<int>(
      EntityModel::getLinkedEntities(project.rootEntity(),
                                     EntityModel::AttributePath(EntityModel::OptimizationDataList_t))
          .size());
}

} // namespace

OptimizationVariants &matrixOf(OptimizationData &data) {
  return data.*reach(Matrix());
}

Snapshot look(Stage &stage) {
  Snapshot seen;
  seen.needsSave = stage.project().needsSave();
  seen.current = stage.currentLabel();
  for (const EntityModel::ModelVersion *version : stage.project().versions()) {
    seen.versions.push_back(version->getLabel());
  }
  seen.hasStudyType =
      stage.project().rootVersion()->getStudyType() != EntityModel::ModelVersionStudyType::None;
  seen.storedStudies = countStoredStudies(stage);
  if (OptimizationData *data = Stage::held()) {
    seen.held = data;
    seen.isEditing = data->isEditingVersions();
    seen.isSolving = data->isSolvingVersions();
    seen.inputs = data->getNumInputs();
    seen.outputs = data->getNumOutputs();
    for (const auto &row : matrixOf(*data)) {
      seen.rows.push_back({row->getName(), countCells(*row, true), countCells(*row, false), row->getCost()});
    }
  }
  seen.baseline = {stage.valueIn("Base", "Fan", "Speed"), stage.valueIn("Base", "Pump", "Speed"),
                   stage.valueIn("Base", "Fan", "Angle")};
  return seen;
}

bool hasVersion(const Snapshot &snapshot, const std::string &label) {
  return std::find(snapshot.versions.begin(), snapshot.versions.end(), label) != snapshot.versions.end();
}

} // namespace StudyFaults
