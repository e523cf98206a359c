#include "ExpressionBuilder/src/RowProgram.h"

#include <utility>

namespace ExpressionBuilder {

namespace {

/// Runs that need no more cells than this do not allocate.
constexpr std::size_t kCellsOnStack = 32;

} // namespace

RowProgram::RowProgram(std::vector<RowInstruction> instructions, std::size_t temporaries)
    : m_instructions(std::move(instructions)), m_temporaries(temporaries) {}

double RowProgram::execute(ScalarCell *temporaries) const {
  RowState state{temporaries, nullptr};
  const RowInstruction *const first = m_instructions.data();
  double value = first->handler(first, &state, 0.0);
  while (state.next != nullptr) {
    value = state.next->handler(state.next, &state, value);
  }
  return value;
}

double RowProgram::runDouble() const {
  if (m_temporaries <= kCellsOnStack) {
    ScalarCell temporaries[kCellsOnStack];
    return execute(temporaries);
  }
  std::vector<ScalarCell> temporaries(m_temporaries);
  return execute(temporaries.data());
}

ScalarCell RowProgram::run(ValueType type) const {
  std::vector<ScalarCell> temporaries(m_temporaries + 1);
  const double value = execute(temporaries.data());
  if (type == ValueType::Double) {
    temporaries[0].asDouble = value;
  }
  return temporaries[0];
}

} // namespace ExpressionBuilder
