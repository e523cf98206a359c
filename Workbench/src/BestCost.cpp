#include "Workbench/src/BestCost.h"

#include "OptimizationTool/OptimizationData.h"

#include <cmath>

namespace Workbench {

namespace {

using MathematicalUtilities::OptimisationStrategy;

// What a cost may name: the first attribute of each group.
std::vector<std::string> namesOf(const ProjectSession &session) {
  std::vector<std::string> names;
  for (const bool isInput : {true, false}) {
    for (std::size_t group = 0; group < session.groupCount(isInput); ++group) {
      names.push_back(session.data().getGroup(isInput, static_cast<int>(group)).getAttributeMacro());
    }
  }
  return names;
}

} // namespace

BestCost::BestCost(const ProjectSession &session) : m_session(session) {
  const OptimisationStrategy target = session.data().getOptimisationTarget();
  const std::string text = session.data().getCostFunction();
  m_isLowest = target == OptimisationStrategy::Minimise;
  if (target != OptimisationStrategy::None && text.find_first_not_of(" \t") != std::string::npos) {
    std::vector<ExpressionNote> ignored;
    ExpressionNote problem;
    m_cost = StudyExpression::create(text, namesOf(session), ignored, problem);
  }
}

void BestCost::takeCurrent() {
  if (!m_cost) {
    return;
  }
  std::string problem;
  const std::optional<double> cost =
      m_cost->evaluate([this](const std::string &name) { return m_session.currentValue(name); }, problem);
  if (cost && std::isfinite(*cost) && (!m_value || (m_isLowest ? *cost < *m_value : *cost > *m_value))) {
    m_value = cost;
  }
}

} // namespace Workbench
