#include "OptimizationTool/OptimizationDataSolvingGuard.h"

#include "OptimizationTool/OptimizationData.h"

namespace OptimizationTool {

OptimizationDataSolvingGuard::OptimizationDataSolvingGuard(OptimizationData &data) : m_data(data) {
  ++m_data.m_solvingCounter;
}

OptimizationDataSolvingGuard::~OptimizationDataSolvingGuard() {
  --m_data.m_solvingCounter;
}

} // namespace OptimizationTool
