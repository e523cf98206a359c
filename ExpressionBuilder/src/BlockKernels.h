#pragma once

#include "ExpressionBuilder/ScalarOperation.h"
#include "ExpressionBuilder/ValueType.h"

#include <cstddef>
#include <vector>

namespace ExpressionBuilder {

/// Where the operands of one operation on a block of rows stand. A vector has one double per row, a scalar one
/// for all rows; the result is a vector and overlaps no operand. Values of bool are 0.0 and 1.0,
/// those of int their own number.
struct BlockArguments {
  double *result = nullptr;
  const double *operands[4] = {};
  /// The operation where the kernel alone does not say.
  const ScalarOperation *operation = nullptr;
  /// Types of the arguments, then of the result; used by `other` only.
  const ValueType *types = nullptr;
  std::size_t arity = 0;
};

/// Computes the first `rows` rows of a block.
using BlockKernel = void (*)(const BlockArguments &arguments, std::size_t rows);

/// The kernels by what they do. a to d are the operands; `operation` is one of the codes from Add to Maximum,
/// `inner` and what is marked basic one from Add to Divide, `comparison` one from Equal to GreaterEqual.
namespace BlockKernels {

using Code = ScalarOperation::Code;

/// Which of two operands are vectors. Two scalars give a vector of equal values.
enum class Shape : unsigned char { VectorVector, VectorScalar, ScalarVector, ScalarScalar };
Shape shapeOf(bool firstIsVector, bool secondIsVector);

BlockKernel copy(bool isVector);
BlockKernel binary(Code operation, Shape shape);
/// a operation (b inner c) with a vector a, and (b inner c) operation a; both basic.
BlockKernel vectorWithPair(Code operation, Code inner, Shape shape);
BlockKernel pairWithVector(Code operation, Code inner, Shape shape);
/// (a operation b) squared; operation is Add or Subtract.
BlockKernel square(Code operation, Shape shape);
/// 1.0 where the relation holds, 0.0 elsewhere.
BlockKernel compare(Code comparison, Shape shape);
/// c where a is in the relation to b, d elsewhere; `values` says which of c and d are vectors.
BlockKernel selectCompared(Code comparison, Shape operands, Shape values);
/// b where the vector a is not 0.0, c elsewhere.
BlockKernel select(Shape values);
BlockKernel logicalAnd();
BlockKernel logicalOr();
BlockKernel logicalNot();
BlockKernel negate();
BlockKernel squareRoot();
BlockKernel absolute();
BlockKernel unaryFunction();
BlockKernel binaryFunction(Shape shape);
/// clamp(a, b, c) with a vector a; `bounds` says which of b and c are vectors.
BlockKernel clamp(Shape bounds);
/// The operation applied row by row to vectors.
BlockKernel other();

} // namespace BlockKernels

} // namespace ExpressionBuilder
