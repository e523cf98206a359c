#include "tests/study-property/Session.h"
#include "tests/study-property/StateLines.h"

#include <algorithm>

// The comparison after each step.

namespace StudyProperty {

void Session::compare() {
  const Texts expected = stateLines(m_reference);
  const Texts actual = stateLines(*m_project);
  if (expected == actual) {
    // Nothing that is to be kept may be forgotten when the project is closed.
    if (m_saved.has_value() && storedLines(m_reference) != storedLines(*m_saved) && !m_project->needsSave()) {
      m_problem = "  the project does not need to be saved, though it differs from its file\n";
    }
    return tallyState();
  }
  const std::size_t count = std::max(expected.size(), actual.size());
  for (std::size_t line = 0; line < count; ++line) {
    const std::string wanted = line < expected.size() ? expected[line] : "(nothing)";
    const std::string found = line < actual.size() ? actual[line] : "(nothing)";
    if (wanted != found) {
      m_problem.append("  reference: ").append(wanted).append("\n  library:   ").append(found).append("\n");
    }
  }
}

// States that the steps are meant to reach.
void Session::tallyState() {
  if (!m_reference.held.has_value()) {
    return;
  }
  const ReferenceModel &model = m_reference.model;
  bool isPriced = false;
  bool hasUnset = false;
  bool hasShort = false;
  for (const ReferenceStudy::Row &row : m_reference.held->rows) {
    isPriced = isPriced || row.cost.has_value();
    hasShort = hasShort || row.cells[1].size() < m_reference.groups(true).size();
    for (const std::optional<Value> &cell : row.cells[0]) {
      hasUnset = hasUnset || (cell.has_value() && !cell->number.has_value());
    }
  }
  m_tally["a study with three rows"] += m_reference.held->rows.size() > 2 ? 1 : 0;
  m_tally["a priced row"] += isPriced ? 1 : 0;
  m_tally["a result without value"] += hasUnset ? 1 : 0;
  m_tally["a row with too few cells"] += hasShort ? 1 : 0;
  m_tally["a row without version"] += m_reference.allVersionsExist() ? 0 : 1;
  m_tally["a cost function that does not build"] += m_reference.held->hasError ? 1 : 0;
  m_tally["a study away from its baseline"] += m_reference.study().base == model.label(model.current) ? 0 : 1;
  m_tally["two studies"] += m_reference.studies.size() > 1 ? 1 : 0;
}

} // namespace StudyProperty
