#pragma once

#include "ExpressionBuilder/FunctionObjects.h"
#include "ExpressionBuilder/FunctionTable.h"

namespace ExpressionBuilder {

/// Enters the built-in functions for one argument type.
///
/// For double: sin cos tan asin acos atan sinh cosh tanh asinh acosh atanh sqrt cbrt hypot atan2 exp pow log
/// log10 mod abs clamp max min. For int and long long: mod abs clamp max min. Arguments and result are of
/// that type. Integer mod by zero throws std::runtime_error "Integer division by zero" when it is evaluated.
template <class T> void enterDefaultFunctions(FunctionTable &table);

extern template void enterDefaultFunctions<int>(FunctionTable &);
extern template void enterDefaultFunctions<long long>(FunctionTable &);
template <> void enterDefaultFunctions<double>(FunctionTable &table);

} // namespace ExpressionBuilder
