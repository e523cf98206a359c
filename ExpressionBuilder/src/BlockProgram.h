#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/src/BlockKernels.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ExpressionBuilder {

/// A place from which one operand is read: for a column the address of row 0.
struct BlockPlace {
  const double *values = nullptr;
  /// Number of the register that holds the vector, when `values` is null.
  std::size_t number = 0;
  bool isVector = false;
  /// Whether the place moves on from block to block.
  bool isColumn = false;
};

struct BlockInstruction {
  BlockKernel kernel = nullptr;
  std::size_t result = 0; ///< number of a register
  BlockPlace operands[4];
  const ScalarOperation *operation = nullptr;
  std::vector<ValueType> types; ///< for `BlockKernels::other` only
};

/// A tree lowered to operations on blocks of rows. All operations of a block are done before those of the
/// next one, so that the intermediate values stay in the processor's first cache. Every row's value is computed
/// by the operations of the plain evaluation, in an order that cannot be seen: conditionals compute both
/// branches, which is why nothing that can throw is lowered.
class BlockProgram {
public:
  /// Rows in a block.
  static constexpr std::size_t kRows = 256;

  /// The columns by the place of the variable's value in the collection. The tree, the columns and the
  /// collection's layout must stay.
  using Columns = std::unordered_map<const void *, const double *>;

  /// Nothing when the tree cannot be lowered: what `compileRow` refuses, besides long long, operations that
  /// may throw, and trees that need very many registers.
  static std::optional<BlockProgram>
  compile(const ElementAbstract &root, const SimpleVariableCollection &variables, const Columns &columns);

  /// Computes all rows. Values of bool are 0.0 and 1.0, those of int their number.
  void run(std::size_t rows, double *results) const;

private:
  friend class BlockCompiler;
  BlockProgram() = default;

  std::vector<BlockInstruction> m_instructions;
  std::size_t m_registers = 0;
  /// Constants of the types that do not stand as a double in the tree; addresses stay.
  std::deque<double> m_scalars;
};

} // namespace ExpressionBuilder
