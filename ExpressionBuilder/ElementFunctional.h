#pragma once

#include "ExpressionBuilder/ElementWithChildren.h"

#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

namespace ExpressionBuilder {

/// The value type that F gives for arguments of the types Args.
template <class F, class... Args>
using FunctionResult = std::decay_t<std::invoke_result_t<const F &, Args...>>;

/// A node that applies the stateless function object F to its children: an operator, a conversion or a
/// function. The arguments are computed last to first. What F throws leaves the evaluation unchanged.
template <class F, class... Args>
class ElementFunctional : public ElementWithChildren<FunctionResult<F, Args...>, sizeof...(Args)> {
  using Base = ElementWithChildren<FunctionResult<F, Args...>, sizeof...(Args)>;
  using Children = typename Base::Children;
  static_assert(sizeof...(Args) > 0, "a function takes at least one argument");

public:
  using Result = FunctionResult<F, Args...>;

  /// An argument may be missing; validating or computing the node then reports "No Element in container".
  explicit ElementFunctional(std::unique_ptr<Element<Args>>... arguments)
      : ElementFunctional(Children{std::move(arguments)...}) {}

  /// The child for argument I, counted from 0; null when it is missing.
  template <std::size_t I> const Element<std::tuple_element_t<I, std::tuple<Args...>>> *argument() const {
    return static_cast<const Element<std::tuple_element_t<I, std::tuple<Args...>>> *>(this->child(I));
  }

  ElementKind kind() const override { return ElementKind::Function; }

private:
  explicit ElementFunctional(Children &&children)
      : Base(functionalShape(), std::move(children), areConstant(children)) {}
  explicit ElementFunctional(bool constant) : Base(functionalShape(), Children{}, constant) {}

  static bool areConstant(const Children &children) {
    for (const std::unique_ptr<ElementAbstract> &child : children) {
      if (child == nullptr || !child->isConstant()) {
        return false;
      }
    }
    return true;
  }

  static void compute(const ElementAbstract & /*node*/, const VariableCollectionAbstract & /*collection*/,
                      EvaluationStack &stack) {
    // Braces fix the order: the first argument was computed last and lies on top.
    std::tuple<Args...> arguments{stack.pop<Args>()...};
    stack.push<Result>(std::apply(F{}, std::move(arguments)));
  }

  static std::unique_ptr<ElementAbstract> copyAlone(const ElementAbstract &node) {
    const bool constant = static_cast<const ElementFunctional &>(node).isConstant();
    return std::unique_ptr<ElementAbstract>(new ElementFunctional(constant));
  }

  static const ElementShape &functionalShape() noexcept {
    static constexpr ElementShape shape{ElementShape::Form::Functional,
                                        ValueTypeOf<Result>::code,
                                        sizeof...(Args),
                                        &Base::childrenOfNode,
                                        &compute,
                                        &copyAlone,
                                        nullptr,
                                        nullptr,
                                        nullptr,
                                        scalarOperationOf<F, Args...>(),
                                        nullptr};
    return shape;
  }
};

} // namespace ExpressionBuilder
