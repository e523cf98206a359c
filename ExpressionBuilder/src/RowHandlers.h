#pragma once

#include "ExpressionBuilder/ScalarOperation.h"
#include "ExpressionBuilder/ValueType.h"
#include "ExpressionBuilder/src/RowProgram.h"

namespace ExpressionBuilder {

/// The handlers by what they do. In the names below *value* is the double computed last, *a* to *d* are the
/// operands of the instruction, *temporary* is the cell of its slot; one that *pushes* first keeps the value
/// in its temporary. `operation` is one of the six codes from Add to Maximum, in places marked "basic" one of
/// the four from Add to Divide; `comparison` is one of the six from Equal to GreaterEqual.
namespace RowHandlers {

using Code = ScalarOperation::Code;

RowHandler stop();
/// The value becomes a; pushes on demand.
RowHandler load(bool pushes);
RowHandler loadTemporary();
/// The temporary becomes the value.
RowHandler store();
/// The temporary becomes the T at `cell`.
RowHandler copyCell(ValueType type);

/// Which operands an operation takes.
enum class Operands : unsigned char { AB, PushAB, ValueA, AValue, TemporaryValue, ValueTemporary };
RowHandler binary(Code operation, Operands operands);
/// The temporary with the number `jump` becomes the bool.
RowHandler compare(Code comparison, Operands operands);
RowHandler binaryFunction(Operands operands); ///< `binary`

/// (a inner b), basic, on one side and the value on the other.
RowHandler valueWithPair(Code operation, Code inner);
RowHandler pairWithValue(Code operation, Code inner);

/// An operation on three or four leaves, all basic.
struct Composite {
  enum class Form : unsigned char { PairC, CPair, PairPair };
  Form form; ///< (a first b) outer c, c outer (a first b), (a first b) outer (c second d)
  Code outer;
  Code first;
  Code second; ///< Add where there is none
};
RowHandler composite(const Composite &composite, bool pushes);
/// The value plus or minus a composite.
RowHandler valueWithComposite(bool minus, const Composite &composite);

enum class Single : unsigned char { Value, A, PushA };
RowHandler negate(Single operand);
RowHandler squareRoot(Single operand);
RowHandler absolute(Single operand);
RowHandler unaryFunction(Single operand); ///< `unary`

/// clamp(a, b, c) or clamp(value, b, c).
RowHandler clamp(Single operand);

/// Jumps unless a is in this relation to b.
RowHandler jumpUnless(Code comparison, Operands operands);
/// When the relation of a and b holds, the value becomes c and the program jumps; and the other way round.
RowHandler takeIf(Code comparison);
RowHandler takeUnless(Code comparison);
RowHandler jumpUnlessTemporary();
RowHandler jumpUnlessCell(); ///< the bool at `cell`
RowHandler jump();

/// Logic on the temporaries of the slot and the next one.
RowHandler logicalAnd();
RowHandler logicalOr();
RowHandler logicalNot();
/// `apply` on the temporaries from the slot on.
RowHandler applyToTemporaries();

} // namespace RowHandlers

} // namespace ExpressionBuilder
