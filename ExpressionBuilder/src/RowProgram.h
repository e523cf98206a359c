#pragma once

#include "ExpressionBuilder/ScalarCell.h"
#include "ExpressionBuilder/ValueType.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ExpressionBuilder {

struct RowInstruction;
struct RowState;

/// Does one instruction and goes on with the next one. `value` is the double computed last; it never leaves
/// the processor's register.
using RowHandler = double (*)(const RowInstruction *at, RowState *state, double value);

/// One step of a program: what it does and where its operands stand. Operands that are variables or constants
/// are addressed where they are; nothing is copied before a run.
struct RowInstruction {
  RowHandler handler = nullptr;
  /// Temporary that is read or written.
  std::uint32_t slot = 0;
  /// Instructions from this one to the one that follows when a condition says so.
  std::int32_t jump = 0;
  const double *a = nullptr;
  const double *b = nullptr;
  const double *c = nullptr;
  union {
    const double *d = nullptr;
    double (*unary)(double);
    double (*binary)(double, double);
    void (*apply)(ScalarCell *cells);
    const void *cell;
  };
};

struct RowState {
  ScalarCell *temporaries;
  /// Where to go on, null at the end; used only where a handler cannot call the next one in its own place.
  const RowInstruction *next;
};

/// A tree without variables to look up, recursion or virtual calls: the steps of one evaluation over values at
/// fixed places. It reads those places and nothing else, so any number of threads may run one program.
class RowProgram {
public:
  /// `temporaries` counts the cells that a run needs.
  RowProgram(std::vector<RowInstruction> instructions, std::size_t temporaries);

  /// The value of a program whose result is a double.
  /// \throws what an operation throws
  double runDouble() const;
  /// The value of a program of any type.
  ScalarCell run(ValueType type) const;

private:
  double execute(ScalarCell *temporaries) const;

  std::vector<RowInstruction> m_instructions;
  std::size_t m_temporaries;
};

} // namespace ExpressionBuilder
