#pragma once

#include "OptimizationTool/Export.h"

namespace OptimizationTool {

class OptimizationData;

/// Marks the time during which the host solves versions of a study: the study data counts as solving while at
/// least one guard is alive, and the study manager reloads nothing and ignores every change.
///
/// The guard must end before the study data does: end no study and close no project meanwhile, for nothing
/// refuses it. Make the baseline current again before the guard ends; no reload happens at its end.
class OPTIMIZATIONTOOL_EXPORT OptimizationDataSolvingGuard {
public:
  explicit OptimizationDataSolvingGuard(OptimizationData &data);
  OptimizationDataSolvingGuard(const OptimizationDataSolvingGuard &) = delete;
  OptimizationDataSolvingGuard &operator=(const OptimizationDataSolvingGuard &) = delete;
  virtual ~OptimizationDataSolvingGuard();

private:
  OptimizationData &m_data;
};

} // namespace OptimizationTool
