#include "ExpressionBuilder/src/BlockKernels.h"

#include "ExpressionBuilder/FunctionObjects.h"

#include <array>
#include <cmath>
#include <functional>
#include <utility>

namespace ExpressionBuilder::BlockKernels {

namespace {

/// An operand with a value per row.
struct Vector {
  static double at(const double *values, std::size_t row) { return values[row]; }
};
/// An operand with one value.
struct Scalar {
  static double at(const double *values, std::size_t /*row*/) { return *values; }
};

template <class Op, class A, class B> void binaryRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  for (std::size_t i = 0; i < rows; ++i) {
    r[i] = Op{}(A::at(a, i), B::at(b, i));
  }
}

template <class Op, class Inner, bool PairFirst, class B, class C>
void pairRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  const double *const c = arguments.operands[2];
  for (std::size_t i = 0; i < rows; ++i) {
    const double pair = Inner{}(B::at(b, i), C::at(c, i));
    r[i] = PairFirst ? Op{}(pair, a[i]) : Op{}(a[i], pair);
  }
}

template <class Op, class A, class B> void squareRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  for (std::size_t i = 0; i < rows; ++i) {
    const double difference = Op{}(A::at(a, i), B::at(b, i));
    r[i] = difference * difference;
  }
}

template <class Op, class A, class B> void compareRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  for (std::size_t i = 0; i < rows; ++i) {
    r[i] = Op{}(A::at(a, i), B::at(b, i)) ? 1.0 : 0.0;
  }
}

template <class Op, class A, class B, class C, class D>
void selectComparedRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  const double *const c = arguments.operands[2];
  const double *const d = arguments.operands[3];
  for (std::size_t i = 0; i < rows; ++i) {
    const double yes = C::at(c, i);
    const double no = D::at(d, i);
    r[i] = Op{}(A::at(a, i), B::at(b, i)) ? yes : no;
  }
}

template <class B, class C> void selectRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  const double *const c = arguments.operands[2];
  for (std::size_t i = 0; i < rows; ++i) {
    const double yes = B::at(b, i);
    const double no = C::at(c, i);
    r[i] = a[i] != 0.0 ? yes : no;
  }
}

template <class Op> void unaryRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  for (std::size_t i = 0; i < rows; ++i) {
    r[i] = Op{}(a[i]);
  }
}

void unaryFunctionRows(const BlockArguments &arguments, std::size_t rows) {
  double (*const function)(double) = arguments.operation->unary;
  for (std::size_t i = 0; i < rows; ++i) {
    arguments.result[i] = function(arguments.operands[0][i]);
  }
}

template <class A, class B> void binaryFunctionRows(const BlockArguments &arguments, std::size_t rows) {
  double (*const function)(double, double) = arguments.operation->binary;
  for (std::size_t i = 0; i < rows; ++i) {
    arguments.result[i] = function(A::at(arguments.operands[0], i), B::at(arguments.operands[1], i));
  }
}

template <class B, class C> void clampRows(const BlockArguments &arguments, std::size_t rows) {
  double *__restrict const r = arguments.result;
  const double *const a = arguments.operands[0];
  const double *const b = arguments.operands[1];
  const double *const c = arguments.operands[2];
  for (std::size_t i = 0; i < rows; ++i) {
    const double low = B::at(b, i);
    const double high = C::at(c, i);
    const double value = a[i];
    const double raised = value < low ? low : value;
    r[i] = value > high ? high : raised;
  }
}

template <bool IsVector> void copyRows(const BlockArguments &arguments, std::size_t rows) {
  for (std::size_t i = 0; i < rows; ++i) {
    arguments.result[i] = IsVector ? arguments.operands[0][i] : *arguments.operands[0];
  }
}

struct And {
  double operator()(double a, double b) const { return a * b; }
};
struct Not {
  double operator()(double a) const { return 1.0 - a; }
};
struct Root {
  double operator()(double a) const { return std::sqrt(a); }
};
struct Magnitude {
  double operator()(double a) const { return std::fabs(a); }
};

ScalarCell toCell(double value, ValueType type) {
  ScalarCell cell{};
  switch (type) {
  case ValueType::Int:
    cell.set<int>(static_cast<int>(value));
    break;
  case ValueType::Bool:
    cell.set<bool>(value != 0.0);
    break;
  default:
    cell.set<double>(value);
    break;
  }
  return cell;
}

double fromCell(const ScalarCell &cell, ValueType type) {
  switch (type) {
  case ValueType::Int:
    return cell.get<int>();
  case ValueType::Bool:
    return cell.get<bool>() ? 1.0 : 0.0;
  default:
    return cell.get<double>();
  }
}

void otherRows(const BlockArguments &arguments, std::size_t rows) {
  ScalarCell cells[4];
  for (std::size_t i = 0; i < rows; ++i) {
    for (std::size_t k = 0; k < arguments.arity; ++k) {
      cells[k] = toCell(arguments.operands[k][i], arguments.types[k]);
    }
    arguments.operation->apply(cells);
    arguments.result[i] = fromCell(cells[0], arguments.types[arguments.arity]);
  }
}

template <class... Ops> struct OpList {};
using BasicOps = OpList<std::plus<double>, std::minus<double>, std::multiplies<double>, std::divides<double>>;
using ArithmeticOps = OpList<std::plus<double>, std::minus<double>, std::multiplies<double>,
                             std::divides<double>, Minimum<double>, Maximum<double>>;
using ComparisonOps = OpList<std::equal_to<double>, std::not_equal_to<double>, std::less<double>,
                             std::less_equal<double>, std::greater<double>, std::greater_equal<double>>;

using ByShape = std::array<BlockKernel, 4>;

template <class Op> constexpr ByShape binaryByShape() {
  return {&binaryRows<Op, Vector, Vector>, &binaryRows<Op, Vector, Scalar>, &binaryRows<Op, Scalar, Vector>,
          &binaryRows<Op, Scalar, Scalar>};
}

template <class Op> constexpr ByShape compareByShape() {
  return {&compareRows<Op, Vector, Vector>, &compareRows<Op, Vector, Scalar>,
          &compareRows<Op, Scalar, Vector>, &compareRows<Op, Scalar, Scalar>};
}

template <class Op> constexpr ByShape squareByShape() {
  return {&squareRows<Op, Vector, Vector>, &squareRows<Op, Vector, Scalar>, &squareRows<Op, Scalar, Vector>,
          &squareRows<Op, Scalar, Scalar>};
}

template <class Op, class Inner, bool PairFirst> constexpr ByShape pairByShape() {
  return {&pairRows<Op, Inner, PairFirst, Vector, Vector>, &pairRows<Op, Inner, PairFirst, Vector, Scalar>,
          &pairRows<Op, Inner, PairFirst, Scalar, Vector>, &pairRows<Op, Inner, PairFirst, Scalar, Scalar>};
}

template <class Op, class A, class B> constexpr ByShape selectComparedByValues() {
  return {&selectComparedRows<Op, A, B, Vector, Vector>, &selectComparedRows<Op, A, B, Vector, Scalar>,
          &selectComparedRows<Op, A, B, Scalar, Vector>, &selectComparedRows<Op, A, B, Scalar, Scalar>};
}

using ByBothShapes = std::array<ByShape, 4>;

template <class Op> constexpr ByBothShapes selectComparedByShapes() {
  return {selectComparedByValues<Op, Vector, Vector>(), selectComparedByValues<Op, Vector, Scalar>(),
          selectComparedByValues<Op, Scalar, Vector>(), selectComparedByValues<Op, Scalar, Scalar>()};
}

template <class... Ops> constexpr std::array<ByShape, sizeof...(Ops)> binaryTable(OpList<Ops...> /*ops*/) {
  return {binaryByShape<Ops>()...};
}
template <class... Ops> constexpr std::array<ByShape, sizeof...(Ops)> compareTable(OpList<Ops...> /*ops*/) {
  return {compareByShape<Ops>()...};
}
template <class... Ops>
constexpr std::array<ByBothShapes, sizeof...(Ops)> selectComparedTable(OpList<Ops...> /*ops*/) {
  return {selectComparedByShapes<Ops>()...};
}
template <bool PairFirst, class Op, class... Inner>
constexpr std::array<ByShape, 4> pairRow(OpList<Inner...> /*inner*/) {
  return {pairByShape<Op, Inner, PairFirst>()...};
}
template <bool PairFirst, class... Ops>
constexpr std::array<std::array<ByShape, 4>, 4> pairTable(OpList<Ops...> /*ops*/) {
  return {pairRow<PairFirst, Ops>(BasicOps{})...};
}

constexpr auto kBinary = binaryTable(ArithmeticOps{});
constexpr auto kCompare = compareTable(ComparisonOps{});
constexpr auto kSelectCompared = selectComparedTable(ComparisonOps{});
constexpr auto kVectorWithPair = pairTable<false>(BasicOps{});
constexpr auto kPairWithVector = pairTable<true>(BasicOps{});
constexpr ByShape kSquareOfSum = squareByShape<std::plus<double>>();
constexpr ByShape kSquareOfDifference = squareByShape<std::minus<double>>();
constexpr ByShape kSelect = {&selectRows<Vector, Vector>, &selectRows<Vector, Scalar>,
                             &selectRows<Scalar, Vector>, &selectRows<Scalar, Scalar>};
constexpr ByShape kBinaryFunction = {&binaryFunctionRows<Vector, Vector>, &binaryFunctionRows<Vector, Scalar>,
                                     &binaryFunctionRows<Scalar, Vector>,
                                     &binaryFunctionRows<Scalar, Scalar>};
constexpr ByShape kClamp = {&clampRows<Vector, Vector>, &clampRows<Vector, Scalar>,
                            &clampRows<Scalar, Vector>, &clampRows<Scalar, Scalar>};

std::size_t indexOf(Shape shape) {
  return static_cast<std::size_t>(shape);
}

std::size_t arithmeticIndex(Code code) {
  return static_cast<std::size_t>(code) - static_cast<std::size_t>(Code::Add);
}

std::size_t comparisonIndex(Code code) {
  return static_cast<std::size_t>(code) - static_cast<std::size_t>(Code::Equal);
}

} // namespace

Shape shapeOf(bool firstIsVector, bool secondIsVector) {
  if (firstIsVector) {
    return secondIsVector ? Shape::VectorVector : Shape::VectorScalar;
  }
  return secondIsVector ? Shape::ScalarVector : Shape::ScalarScalar;
}

BlockKernel copy(bool isVector) {
  return isVector ? &copyRows<true> : &copyRows<false>;
}

BlockKernel binary(Code operation, Shape shape) {
  return kBinary[arithmeticIndex(operation)][indexOf(shape)];
}

BlockKernel vectorWithPair(Code operation, Code inner, Shape shape) {
  return kVectorWithPair[arithmeticIndex(operation)][arithmeticIndex(inner)][indexOf(shape)];
}

BlockKernel pairWithVector(Code operation, Code inner, Shape shape) {
  return kPairWithVector[arithmeticIndex(operation)][arithmeticIndex(inner)][indexOf(shape)];
}

BlockKernel square(Code operation, Shape shape) {
  return (operation == Code::Add ? kSquareOfSum : kSquareOfDifference)[indexOf(shape)];
}

BlockKernel compare(Code comparison, Shape shape) {
  return kCompare[comparisonIndex(comparison)][indexOf(shape)];
}

BlockKernel selectCompared(Code comparison, Shape operands, Shape values) {
  return kSelectCompared[comparisonIndex(comparison)][indexOf(operands)][indexOf(values)];
}

BlockKernel select(Shape values) {
  return kSelect[indexOf(values)];
}

BlockKernel logicalAnd() {
  return &binaryRows<And, Vector, Vector>;
}

BlockKernel logicalOr() {
  return &binaryRows<Maximum<double>, Vector, Vector>;
}

BlockKernel logicalNot() {
  return &unaryRows<Not>;
}

BlockKernel negate() {
  return &unaryRows<std::negate<double>>;
}

BlockKernel squareRoot() {
  return &unaryRows<Root>;
}

BlockKernel absolute() {
  return &unaryRows<Magnitude>;
}

BlockKernel unaryFunction() {
  return &unaryFunctionRows;
}

BlockKernel binaryFunction(Shape shape) {
  return kBinaryFunction[indexOf(shape)];
}

BlockKernel clamp(Shape bounds) {
  return kClamp[indexOf(bounds)];
}

BlockKernel other() {
  return &otherRows;
}

} // namespace ExpressionBuilder::BlockKernels
