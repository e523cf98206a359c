#pragma once

#include "ExpressionBuilder/FunctionOverload.h"
#include "ExpressionBuilder/ValueType.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ExpressionBuilder {

/// The overloads of one function by the exact types of the arguments. An entry may lack its constructor.
using OverloadTable =
    std::map<std::vector<ValueType>, std::unique_ptr<ElementFunctionConstructorOverloadAbstract>>;

/// The functions by name; names are bytes and case counts.
using FunctionTable = std::map<std::string, OverloadTable>;

/// Enters the overload F(Args...), in the place of one with the same argument types.
template <class F, class... Args> void enterFunction(FunctionTable &table, const std::string &name) {
  table[name][std::vector<ValueType>{ValueTypeOf<Args>::code...}] =
      std::make_unique<ElementFunctionConstructorOverload<F, Args...>>();
}

} // namespace ExpressionBuilder
