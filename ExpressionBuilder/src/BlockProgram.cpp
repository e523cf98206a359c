#include "ExpressionBuilder/src/BlockProgram.h"

#include <algorithm>

namespace ExpressionBuilder {

void BlockProgram::run(std::size_t rows, double *results) const {
  std::vector<double> registers(m_registers * kRows);
  for (std::size_t first = 0; first < rows; first += kRows) {
    const std::size_t count = std::min(kRows, rows - first);
    for (const BlockInstruction &instruction : m_instructions) {
      BlockArguments arguments;
      for (std::size_t i = 0; i < 4; ++i) {
        const BlockPlace &place = instruction.operands[i];
        const double *const values =
            place.values == nullptr ? registers.data() + place.number * kRows : place.values;
        arguments.operands[i] = place.isColumn ? values + first : values;
      }
      // The last instruction's result is the tree's.
      arguments.result = &instruction == &m_instructions.back()
                             ? results + first
                             : registers.data() + instruction.result * kRows;
      arguments.operation = instruction.operation;
      arguments.types = instruction.types.data();
      arguments.arity = instruction.types.empty() ? 0 : instruction.types.size() - 1;
      instruction.kernel(arguments, count);
    }
  }
}

} // namespace ExpressionBuilder
