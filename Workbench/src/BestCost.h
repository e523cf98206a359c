#pragma once

#include "Workbench/ProjectSession.h"
#include "Workbench/StudyExpression.h"

#include <optional>

namespace Workbench {

// The best cost of a study while its rows are solved. The matrix is priced when all of them are, so the cost is
// computed here from the version of each row.
class BestCost {
public:
  // Has no value for a study without cost or without target. The session is kept by reference.
  explicit BestCost(const ProjectSession &session);

  // Takes the row whose version is current; it has to be ok.
  void takeCurrent();

  const std::optional<double> &value() const { return m_value; }
  // Whether there will ever be one.
  bool isWanted() const { return m_cost.has_value(); }

private:
  const ProjectSession &m_session;
  std::optional<StudyExpression> m_cost;
  bool m_isLowest = true;
  std::optional<double> m_value;
};

} // namespace Workbench
