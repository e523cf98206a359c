#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementFunctional.h"
#include "ExpressionBuilder/Operators.h"

#include <functional>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace ExpressionBuilder {

namespace {

using Operand = std::unique_ptr<ElementAbstract>;

template <class T> constexpr bool kIsText = std::is_same_v<T, std::string>;
template <class T> constexpr bool kIsBool = std::is_same_v<T, bool>;
template <class T> constexpr bool kIsDouble = std::is_same_v<T, double>;

[[noreturn]] void throwUnsupported() {
  throw std::runtime_error("Unsupported Operator");
}

template <class F, class T> Operand unaryNode(Operand operand) {
  return std::make_unique<ElementFunctional<F, T>>(elementAs<T>(std::move(operand)));
}

template <class F, class T> Operand binaryNode(Operand left, Operand right) {
  return std::make_unique<ElementFunctional<F, T, T>>(elementAs<T>(std::move(left)),
                                                      elementAs<T>(std::move(right)));
}

template <class T> Operand makeUnaryOf(UnaryOperator operation, Operand operand) {
  if constexpr (!kIsText<T>) {
    if (operation == UnaryOperator::LogicalNot) {
      return unaryNode<std::logical_not<T>, T>(std::move(operand));
    }
    if constexpr (kIsDouble<T>) {
      return unaryNode<std::negate<double>, double>(std::move(operand));
    } else if constexpr (!kIsBool<T>) {
      return unaryNode<WrappingNegate<T>, T>(std::move(operand));
    }
  }
  throwUnsupported();
}

template <class T> Operand makeArithmeticOf(BinaryOperator operation, Operand left, Operand right) {
  using Plus = std::conditional_t<kIsDouble<T>, std::plus<double>,
                                  std::conditional_t<kIsBool<T>, BoolPlus, WrappingPlus<T>>>;
  using Minus = std::conditional_t<kIsDouble<T>, std::minus<double>,
                                   std::conditional_t<kIsBool<T>, BoolMinus, WrappingMinus<T>>>;
  using Multiplies =
      std::conditional_t<kIsDouble<T>, std::multiplies<double>,
                         std::conditional_t<kIsBool<T>, BoolMultiplies, WrappingMultiplies<T>>>;
  using Divides = std::conditional_t<kIsDouble<T>, std::divides<double>, CheckedDivides<T>>;
  switch (operation) {
  case BinaryOperator::Add:
    return binaryNode<Plus, T>(std::move(left), std::move(right));
  case BinaryOperator::Subtract:
    return binaryNode<Minus, T>(std::move(left), std::move(right));
  case BinaryOperator::Multiply:
    return binaryNode<Multiplies, T>(std::move(left), std::move(right));
  default:
    break;
  }
  if constexpr (!kIsBool<T>) {
    return binaryNode<Divides, T>(std::move(left), std::move(right));
  } else {
    throwUnsupported();
  }
}

template <class T> Operand makeBinaryOf(BinaryOperator operation, Operand left, Operand right) {
  switch (operation) {
  case BinaryOperator::Equal:
    return binaryNode<std::equal_to<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::NotEqual:
    return binaryNode<std::not_equal_to<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::Less:
    return binaryNode<std::less<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::LessEqual:
    return binaryNode<std::less_equal<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::Greater:
    return binaryNode<std::greater<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::GreaterEqual:
    return binaryNode<std::greater_equal<T>, T>(std::move(left), std::move(right));
  case BinaryOperator::And:
  case BinaryOperator::Or:
    if constexpr (!kIsText<T>) {
      if (operation == BinaryOperator::And) {
        return binaryNode<std::logical_and<T>, T>(std::move(left), std::move(right));
      }
      return binaryNode<std::logical_or<T>, T>(std::move(left), std::move(right));
    }
    break;
  case BinaryOperator::Add:
    if constexpr (kIsText<T>) {
      return binaryNode<std::plus<std::string>, std::string>(std::move(left), std::move(right));
    }
    [[fallthrough]];
  case BinaryOperator::Subtract:
  case BinaryOperator::Multiply:
  case BinaryOperator::Divide:
    if constexpr (!kIsText<T>) {
      return makeArithmeticOf<T>(operation, std::move(left), std::move(right));
    }
    break;
  }
  throwUnsupported();
}

} // namespace

std::unique_ptr<ElementAbstract> makeUnary(UnaryOperator operation,
                                           std::unique_ptr<ElementAbstract> operand) {
  if (operand == nullptr) {
    throw std::runtime_error("No right hand side of unary operator");
  }
  return visitValueType(operand->type(), [&](auto tag) {
    return makeUnaryOf<typename decltype(tag)::Type>(operation, std::move(operand));
  });
}

std::unique_ptr<ElementAbstract> makeBinary(BinaryOperator operation, ValueType type,
                                            std::unique_ptr<ElementAbstract> left,
                                            std::unique_ptr<ElementAbstract> right) {
  if (left == nullptr) {
    throw std::runtime_error("No left hand side of binary operator");
  }
  if (right == nullptr) {
    throw std::runtime_error("No right hand side of binary operator");
  }
  return visitValueType(type, [&](auto tag) {
    return makeBinaryOf<typename decltype(tag)::Type>(operation, std::move(left), std::move(right));
  });
}

} // namespace ExpressionBuilder
