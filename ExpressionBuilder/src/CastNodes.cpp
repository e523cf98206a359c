#include "ExpressionBuilder/Conversions.h"
#include "ExpressionBuilder/ElementFactory.h"
#include "ExpressionBuilder/ElementFunctional.h"

#include <stdexcept>
#include <utility>

namespace ExpressionBuilder {

std::unique_ptr<ElementAbstract> makeCast(ValueType to, std::unique_ptr<ElementAbstract> element) {
  if (element == nullptr || !isKnownValueType(element->type())) {
    throw std::logic_error("Invalid Cast");
  }
  return visitValueType(to, [&element](auto toTag) {
    return visitValueType(element->type(), [&element](auto fromTag) -> std::unique_ptr<ElementAbstract> {
      using To = typename decltype(toTag)::Type;
      using From = typename decltype(fromTag)::Type;
      return std::make_unique<ElementFunctional<Cast<To, From>, From>>(elementAs<From>(std::move(element)));
    });
  });
}

} // namespace ExpressionBuilder
