#pragma once

#include "ExpressionBuilder/Element.h"

#include <memory>
#include <string>

namespace ExpressionBuilder {

enum class UnaryOperator { Negate, LogicalNot };

enum class BinaryOperator {
  Add,
  Subtract,
  Multiply,
  Divide,
  Equal,
  NotEqual,
  Less,
  LessEqual,
  Greater,
  GreaterEqual,
  And,
  Or,
};

/// Where an operand's real type is not the one wanted, every factory throws std::logic_error "Invalid Cast";
/// for a type code outside 1..5 std::logic_error "Not implemented". On an exception the operands are released.

/// A constant node of T.
template <class T> std::unique_ptr<Element<T>> makeConstant(T value);

extern template std::unique_ptr<Element<double>> makeConstant<double>(double);
extern template std::unique_ptr<Element<int>> makeConstant<int>(int);
extern template std::unique_ptr<Element<bool>> makeConstant<bool>(bool);
extern template std::unique_ptr<Element<std::string>> makeConstant<std::string>(std::string);
extern template std::unique_ptr<Element<long long>> makeConstant<long long>(long long);

/// A variable node.
std::unique_ptr<ElementAbstract> makeVariable(ValueType type, std::string name);

/// The operator for the operand's type.
/// \throws std::runtime_error  "No right hand side of unary operator" when there is no operand, "Unsupported
///                             Operator" when the operator does not exist for the type: both on a string,
///                             negation of a bool
std::unique_ptr<ElementAbstract> makeUnary(UnaryOperator operation, std::unique_ptr<ElementAbstract> operand);

/// The operator for operands of the given type; both must have it already. Comparisons, equality and logical
/// operators give a bool; "+", "-" and "*" of two bools an int; everything else the type itself.
/// \throws std::runtime_error  "No left hand side of binary operator", "No right hand side of binary
///                             operator" when an operand is missing, "Unsupported Operator" when the operator
///                             does not exist for the type: "/" for bool; "-", "*", "/", "&&", "||" for
///                             string
std::unique_ptr<ElementAbstract> makeBinary(BinaryOperator operation, ValueType type,
                                            std::unique_ptr<ElementAbstract> left,
                                            std::unique_ptr<ElementAbstract> right);

/// A conditional of the given type; the condition must be a bool and both branches of that type. Any of them
/// may be missing, which validation will find.
std::unique_ptr<ElementAbstract> makeConditional(ValueType type, std::unique_ptr<ElementAbstract> condition,
                                                 std::unique_ptr<ElementAbstract> trueBranch,
                                                 std::unique_ptr<ElementAbstract> falseBranch);

/// The node that converts the element to the type, also when it has that type already.
/// \throws std::logic_error  "Invalid Cast" when there is no element or its type code is not its real type
std::unique_ptr<ElementAbstract> makeCast(ValueType to, std::unique_ptr<ElementAbstract> element);

/// The constant node with the value that the element has without variables.
std::unique_ptr<ElementAbstract> makeConstantFrom(const ElementAbstract &element);

} // namespace ExpressionBuilder
