#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/ElementFunctional.h"

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

class BuilderInterface;

/// Parsed arguments of a call, first to last.
using FunctionArguments = std::vector<std::unique_ptr<ElementAbstract>>;

/// Makes the nodes of one overload of a function.
class ElementFunctionConstructorOverloadAbstract {
public:
  virtual ~ElementFunctionConstructorOverloadAbstract();

  /// Sets `result` to a new node that owns the arguments, which are moved from.
  /// \throws std::runtime_error  "Invalid number of arguments"
  /// \throws std::logic_error    "Invalid Cast" when an argument has not the overload's type
  virtual void construct(std::unique_ptr<ElementAbstract> &result, const BuilderInterface &builder,
                         FunctionArguments &arguments) const = 0;

  ElementFunctionConstructorOverloadAbstract(const ElementFunctionConstructorOverloadAbstract &) = delete;
  ElementFunctionConstructorOverloadAbstract &
  operator=(const ElementFunctionConstructorOverloadAbstract &) = delete;

protected:
  ElementFunctionConstructorOverloadAbstract() = default;
};

/// The overload that applies the stateless function object F to arguments of the types Args.
template <class F, class... Args>
class ElementFunctionConstructorOverload : public ElementFunctionConstructorOverloadAbstract {
public:
  void construct(std::unique_ptr<ElementAbstract> &result, const BuilderInterface & /*builder*/,
                 FunctionArguments &arguments) const override {
    if (arguments.size() != sizeof...(Args)) {
      throw std::runtime_error("Invalid number of arguments");
    }
    result = make(arguments, std::index_sequence_for<Args...>());
  }

private:
  template <std::size_t... I>
  static std::unique_ptr<ElementAbstract> make(FunctionArguments &arguments,
                                               std::index_sequence<I...> /*indices*/) {
    return std::make_unique<ElementFunctional<F, Args...>>(elementAs<Args>(std::move(arguments[I]))...);
  }
};

} // namespace ExpressionBuilder
