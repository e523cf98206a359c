#pragma once

#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <cstddef>
#include <string>
#include <vector>

namespace LanguageOracle {

struct Function {
  const char *name;
  std::size_t arity;
  /// Whether there are overloads for int and for long long beside the one for double.
  bool forWholeNumbers;
};

const std::vector<Function> &functions();

/// Null when there is none of this name.
const Function *findFunction(const std::string &name);

/// Whether the function has an overload for exactly these argument types.
bool accepts(const Function &function, const std::vector<Type> &arguments);

/// \param arguments  of types that the function accepts
/// \throws Error "Integer division by zero"
Value call(const Function &function, const std::vector<Value> &arguments, const Rules &rules);

} // namespace LanguageOracle
