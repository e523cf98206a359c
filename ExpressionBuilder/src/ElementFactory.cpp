#include "ExpressionBuilder/ElementFactory.h"

#include "ExpressionBuilder/ElementConditional.h"
#include "ExpressionBuilder/ElementConstant.h"
#include "ExpressionBuilder/ElementVariable.h"
#include "ExpressionBuilder/EmptyVariableCollection.h"

#include <stdexcept>
#include <utility>

namespace ExpressionBuilder {

template <class T> std::unique_ptr<Element<T>> makeConstant(T value) {
  return std::make_unique<ElementConstant<T>>(std::move(value));
}

template std::unique_ptr<Element<double>> makeConstant<double>(double);
template std::unique_ptr<Element<int>> makeConstant<int>(int);
template std::unique_ptr<Element<bool>> makeConstant<bool>(bool);
template std::unique_ptr<Element<std::string>> makeConstant<std::string>(std::string);
template std::unique_ptr<Element<long long>> makeConstant<long long>(long long);

std::unique_ptr<ElementAbstract> makeVariable(ValueType type, std::string name) {
  return visitValueType(type, [&name](auto tag) -> std::unique_ptr<ElementAbstract> {
    return std::make_unique<ElementVariable<typename decltype(tag)::Type>>(std::move(name));
  });
}

std::unique_ptr<ElementAbstract> makeConditional(ValueType type, std::unique_ptr<ElementAbstract> condition,
                                                 std::unique_ptr<ElementAbstract> trueBranch,
                                                 std::unique_ptr<ElementAbstract> falseBranch) {
  return visitValueType(type, [&](auto tag) -> std::unique_ptr<ElementAbstract> {
    using T = typename decltype(tag)::Type;
    const auto orMissing = [](auto wanted, std::unique_ptr<ElementAbstract> element) {
      using Wanted = typename decltype(wanted)::Type;
      return element == nullptr ? nullptr : elementAs<Wanted>(std::move(element));
    };
    return std::make_unique<ElementConditional<T>>(orMissing(ValueTag<bool>{}, std::move(condition)),
                                                   orMissing(tag, std::move(trueBranch)),
                                                   orMissing(tag, std::move(falseBranch)));
  });
}

std::unique_ptr<ElementAbstract> makeConstantFrom(const ElementAbstract &element) {
  return visitValueType(element.shape().type, [&element](auto tag) -> std::unique_ptr<ElementAbstract> {
    using T = typename decltype(tag)::Type;
    return makeConstant<T>(
        static_cast<const Element<T> &>(element).evaluate(EmptyVariableCollection::instance()));
  });
}

} // namespace ExpressionBuilder
