#include "ExpressionBuilder/Functions.h"

#include <math.h>

namespace ExpressionBuilder {

ElementFunctionConstructorOverloadAbstract::~ElementFunctionConstructorOverloadAbstract() = default;

namespace {

template <double (*Function)(double)> void enterUnary(FunctionTable &table, const char *name) {
  enterFunction<UnaryMath<Function>, double>(table, name);
}

template <double (*Function)(double, double)> void enterBinary(FunctionTable &table, const char *name) {
  enterFunction<BinaryMath<Function>, double, double>(table, name);
}

template <class T> void enterBounds(FunctionTable &table) {
  enterFunction<Clamp<T>, T, T, T>(table, "clamp");
  enterFunction<Maximum<T>, T, T>(table, "max");
  enterFunction<Minimum<T>, T, T>(table, "min");
}

} // namespace

template <class T> void enterDefaultFunctions(FunctionTable &table) {
  enterFunction<CheckedModulus<T>, T, T>(table, "mod");
  enterFunction<WrappingAbsolute<T>, T>(table, "abs");
  enterBounds<T>(table);
}

template <> void enterDefaultFunctions<double>(FunctionTable &table) {
  enterUnary<&::sin>(table, "sin");
  enterUnary<&::cos>(table, "cos");
  enterUnary<&::tan>(table, "tan");
  enterUnary<&::asin>(table, "asin");
  enterUnary<&::acos>(table, "acos");
  enterUnary<&::atan>(table, "atan");
  enterUnary<&::sinh>(table, "sinh");
  enterUnary<&::cosh>(table, "cosh");
  enterUnary<&::tanh>(table, "tanh");
  enterUnary<&::asinh>(table, "asinh");
  enterUnary<&::acosh>(table, "acosh");
  enterUnary<&::atanh>(table, "atanh");
  enterUnary<&::sqrt>(table, "sqrt");
  enterUnary<&::cbrt>(table, "cbrt");
  enterBinary<&::hypot>(table, "hypot");
  enterBinary<&::atan2>(table, "atan2");
  enterUnary<&::exp>(table, "exp");
  enterBinary<&::pow>(table, "pow");
  enterUnary<&::log>(table, "log");
  enterUnary<&::log10>(table, "log10");
  enterBinary<&::fmod>(table, "mod");
  enterUnary<&::fabs>(table, "abs");
  enterBounds<double>(table);
}

template void enterDefaultFunctions<int>(FunctionTable &);
template void enterDefaultFunctions<long long>(FunctionTable &);

} // namespace ExpressionBuilder
