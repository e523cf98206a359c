#pragma once

#include "ExpressionBuilder/Conversions.h"
#include "ExpressionBuilder/FunctionObjects.h"
#include "ExpressionBuilder/Operators.h"
#include "ExpressionBuilder/ScalarCell.h"

#include <cstddef>
#include <functional>
#include <math.h>
#include <type_traits>
#include <utility>

namespace ExpressionBuilder {

/// What the lowering of a tree to a program knows of an operation on scalars. Only operations of this library
/// are lowered, because it is sure of them that nobody can see how often and in which order they are computed;
/// a function object that an application registers is left to the tree.
struct ScalarOperation {
  enum class Code : unsigned char {
    Unknown, ///< left to the tree
    // Two doubles to a double; these six in this order.
    Add,
    Subtract,
    Multiply,
    Divide,
    Minimum,
    Maximum,
    // Two doubles to a bool; these six in this order.
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    // A double to a double.
    Negate,
    SquareRoot,
    Absolute,
    Unary, ///< `unary` says which
    // Doubles to a double.
    Binary, ///< `binary` says which
    Clamp,
    // Two bools to a bool.
    And,
    Or,
    // A bool to a bool.
    Not,
    /// Any other; `apply` computes it and throws nothing.
    Other,
    /// Any other; `apply` may throw.
    OtherThrowing,
  };

  Code code = Code::Unknown;
  /// Takes the arguments from consecutive cells and puts the result into the first one.
  void (*apply)(ScalarCell *cells) = nullptr;
  double (*unary)(double) = nullptr;
  double (*binary)(double, double) = nullptr;
};

/// The code of a function object and, for functions of the mathematics library, the function; the one below
/// is for those that the lowering does not know.
template <class F> struct ScalarOperationCode {
  static constexpr ScalarOperation::Code code = ScalarOperation::Code::Unknown;
};

/// Base of the specialisations.
template <ScalarOperation::Code Code> struct KnownScalarOperation {
  static constexpr ScalarOperation::Code code = Code;
};

/// Operations on doubles have codes of their own, those on int and long long do not.
template <class T, ScalarOperation::Code Code>
using DoubleOr = KnownScalarOperation<std::is_same_v<T, double> ? Code : ScalarOperation::Code::Other>;
/// Texts cannot be lowered.
template <class T, ScalarOperation::Code Code>
using DoubleOrScalar = KnownScalarOperation<std::is_same_v<T, double> ? Code
                                            : ScalarCell::holds<T>()  ? ScalarOperation::Code::Other
                                                                      : ScalarOperation::Code::Unknown>;
template <class T, ScalarOperation::Code Code>
using BoolOr = KnownScalarOperation<std::is_same_v<T, bool> ? Code : ScalarOperation::Code::Other>;

template <class T>
struct ScalarOperationCode<std::plus<T>> : DoubleOrScalar<T, ScalarOperation::Code::Add> {};
template <class T>
struct ScalarOperationCode<std::minus<T>> : DoubleOrScalar<T, ScalarOperation::Code::Subtract> {};
template <class T>
struct ScalarOperationCode<std::multiplies<T>> : DoubleOrScalar<T, ScalarOperation::Code::Multiply> {};
template <>
struct ScalarOperationCode<std::divides<double>> : KnownScalarOperation<ScalarOperation::Code::Divide> {};
template <>
struct ScalarOperationCode<std::negate<double>> : KnownScalarOperation<ScalarOperation::Code::Negate> {};
template <class T>
struct ScalarOperationCode<std::equal_to<T>> : DoubleOrScalar<T, ScalarOperation::Code::Equal> {};
template <class T>
struct ScalarOperationCode<std::not_equal_to<T>> : DoubleOrScalar<T, ScalarOperation::Code::NotEqual> {};
template <class T>
struct ScalarOperationCode<std::less<T>> : DoubleOrScalar<T, ScalarOperation::Code::Less> {};
template <class T>
struct ScalarOperationCode<std::less_equal<T>> : DoubleOrScalar<T, ScalarOperation::Code::LessEqual> {};
template <class T>
struct ScalarOperationCode<std::greater<T>> : DoubleOrScalar<T, ScalarOperation::Code::Greater> {};
template <class T>
struct ScalarOperationCode<std::greater_equal<T>> : DoubleOrScalar<T, ScalarOperation::Code::GreaterEqual> {};
template <class T> struct ScalarOperationCode<std::logical_and<T>> : BoolOr<T, ScalarOperation::Code::And> {};
template <class T> struct ScalarOperationCode<std::logical_or<T>> : BoolOr<T, ScalarOperation::Code::Or> {};
template <class T> struct ScalarOperationCode<std::logical_not<T>> : BoolOr<T, ScalarOperation::Code::Not> {};
template <class T>
struct ScalarOperationCode<WrappingPlus<T>> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T>
struct ScalarOperationCode<WrappingMinus<T>> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T>
struct ScalarOperationCode<WrappingMultiplies<T>> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T>
struct ScalarOperationCode<WrappingNegate<T>> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T>
struct ScalarOperationCode<WrappingAbsolute<T>> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T>
struct ScalarOperationCode<CheckedDivides<T>> : KnownScalarOperation<ScalarOperation::Code::OtherThrowing> {};
template <class T>
struct ScalarOperationCode<CheckedModulus<T>> : KnownScalarOperation<ScalarOperation::Code::OtherThrowing> {};
template <> struct ScalarOperationCode<BoolPlus> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <> struct ScalarOperationCode<BoolMinus> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <>
struct ScalarOperationCode<BoolMultiplies> : KnownScalarOperation<ScalarOperation::Code::Other> {};
template <class T> struct ScalarOperationCode<Minimum<T>> : DoubleOr<T, ScalarOperation::Code::Minimum> {};
template <class T> struct ScalarOperationCode<Maximum<T>> : DoubleOr<T, ScalarOperation::Code::Maximum> {};
template <class T> struct ScalarOperationCode<Clamp<T>> : DoubleOr<T, ScalarOperation::Code::Clamp> {};
template <class To, class From>
struct ScalarOperationCode<Cast<To, From>>
    : KnownScalarOperation<ScalarCell::holds<To>() && ScalarCell::holds<From>()
                               ? ScalarOperation::Code::Other
                               : ScalarOperation::Code::Unknown> {};
template <>
struct ScalarOperationCode<UnaryMath<&::sqrt>> : KnownScalarOperation<ScalarOperation::Code::SquareRoot> {};
template <>
struct ScalarOperationCode<UnaryMath<&::fabs>> : KnownScalarOperation<ScalarOperation::Code::Absolute> {};
template <double (*Function)(double)>
struct ScalarOperationCode<UnaryMath<Function>> : KnownScalarOperation<ScalarOperation::Code::Unary> {
  static constexpr double (*unary)(double) = Function;
};
template <double (*Function)(double, double)>
struct ScalarOperationCode<BinaryMath<Function>> : KnownScalarOperation<ScalarOperation::Code::Binary> {
  static constexpr double (*binary)(double, double) = Function;
};

/// `ScalarOperation::apply` of a function object: argument I stands in cell I.
template <class F, class... Args> struct CellFunction {
  static void apply(ScalarCell *cells) { applyTo(cells, std::index_sequence_for<Args...>()); }

private:
  template <std::size_t... I> static void applyTo(ScalarCell *cells, std::index_sequence<I...> /*indices*/) {
    using Result = std::decay_t<std::invoke_result_t<const F &, Args...>>;
    cells[0].set<Result>(F{}(cells[I].template get<Args>()...));
  }
};

/// The description of a function object with these argument types, as a constant expression.
template <class F, class... Args> constexpr ScalarOperation scalarOperationOf() noexcept {
  using Known = ScalarOperationCode<F>;
  ScalarOperation operation;
  if constexpr (Known::code != ScalarOperation::Code::Unknown) {
    operation.code = Known::code;
    operation.apply = &CellFunction<F, Args...>::apply;
    if constexpr (Known::code == ScalarOperation::Code::Unary) {
      operation.unary = Known::unary;
    } else if constexpr (Known::code == ScalarOperation::Code::Binary) {
      operation.binary = Known::binary;
    }
  }
  return operation;
}

} // namespace ExpressionBuilder
