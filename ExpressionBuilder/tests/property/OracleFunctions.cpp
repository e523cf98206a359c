#include "ExpressionBuilder/tests/property/OracleFunctions.h"

#include "ExpressionBuilder/tests/property/OracleOperators.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace LanguageOracle {
namespace {

double ofOne(const std::string &name, double x) {
  static const std::vector<std::pair<std::string, double (*)(double)>> kFunctions = {
      {"sin", std::sin},     {"cos", std::cos},     {"tan", std::tan},     {"asin", std::asin},
      {"acos", std::acos},   {"atan", std::atan},   {"sinh", std::sinh},   {"cosh", std::cosh},
      {"tanh", std::tanh},   {"asinh", std::asinh}, {"acosh", std::acosh}, {"atanh", std::atanh},
      {"sqrt", std::sqrt},   {"cbrt", std::cbrt},   {"exp", std::exp},     {"log", std::log},
      {"log10", std::log10}, {"abs", std::fabs}};
  const auto found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                  [&name](const auto &entry) { return entry.first == name; });
  if (found == kFunctions.end()) {
    throw std::logic_error("no such function");
  }
  return found->second(x);
}

double ofTwo(const std::string &name, double a, double b) {
  if (name == "hypot") {
    return std::hypot(a, b);
  }
  if (name == "atan2") {
    return std::atan2(a, b);
  }
  if (name == "pow") {
    return std::pow(a, b);
  }
  if (name == "mod") {
    return std::fmod(a, b);
  }
  if (name == "max") {
    return a < b ? b : a;
  }
  if (name == "min") {
    return b < a ? b : a;
  }
  throw std::logic_error("no such function");
}

// The upper bound counts first, so that with crossed bounds it wins.
template <class T> T clamped(T x, T low, T high) {
  return x > high ? high : x < low ? low : x;
}

std::int64_t ofWholeNumbers(const std::string &name, const std::vector<std::int64_t> &arguments,
                            const Rules &rules) {
  if (name == "mod") {
    return remainderOf(arguments.at(0), arguments.at(1), rules);
  }
  if (name == "abs") {
    const std::int64_t x = arguments.at(0);
    return x < 0 ? apply(Prefix::Minus, Value::ofLongLong(x)).wide : x;
  }
  if (name == "clamp") {
    return clamped(arguments.at(0), arguments.at(1), arguments.at(2));
  }
  if (name == "max") {
    return std::max(arguments.at(0), arguments.at(1));
  }
  if (name == "min") {
    return std::min(arguments.at(0), arguments.at(1));
  }
  throw std::logic_error("no such function");
}

} // namespace

const std::vector<Function> &functions() {
  static const std::vector<Function> kFunctions = {
      {"sin", 1, false},   {"cos", 1, false},   {"tan", 1, false},  {"asin", 1, false}, {"acos", 1, false},
      {"atan", 1, false},  {"sinh", 1, false},  {"cosh", 1, false}, {"tanh", 1, false}, {"asinh", 1, false},
      {"acosh", 1, false}, {"atanh", 1, false}, {"sqrt", 1, false}, {"cbrt", 1, false}, {"hypot", 2, false},
      {"atan2", 2, false}, {"exp", 1, false},   {"pow", 2, false},  {"log", 1, false},  {"log10", 1, false},
      {"mod", 2, true},    {"abs", 1, true},    {"clamp", 3, true}, {"max", 2, true},   {"min", 2, true}};
  return kFunctions;
}

const Function *findFunction(const std::string &name) {
  const auto found = std::find_if(functions().begin(), functions().end(),
                                  [&name](const Function &function) { return function.name == name; });
  return found == functions().end() ? nullptr : &*found;
}

bool accepts(const Function &function, const std::vector<Type> &arguments) {
  if (arguments.size() != function.arity) {
    return false;
  }
  const Type type = arguments.front();
  const bool isUniform =
      std::all_of(arguments.begin(), arguments.end(), [type](Type argument) { return argument == type; });
  const bool isWhole = type == Type::Int || type == Type::LongLong;
  return isUniform && (type == Type::Double || (isWhole && function.forWholeNumbers));
}

Value call(const Function &function, const std::vector<Value> &arguments, const Rules &rules) {
  const Type type = arguments.front().type;
  if (type == Type::Double) {
    if (arguments.size() == 1) {
      return Value::ofDouble(ofOne(function.name, arguments[0].real));
    }
    if (arguments.size() == 2) {
      return Value::ofDouble(ofTwo(function.name, arguments[0].real, arguments[1].real));
    }
    return Value::ofDouble(clamped(arguments[0].real, arguments[1].real, arguments[2].real));
  }
  std::vector<std::int64_t> wholes;
  wholes.reserve(arguments.size());
  for (const Value &argument : arguments) {
    wholes.push_back(type == Type::Int ? argument.whole : argument.wide);
  }
  const std::int64_t result = ofWholeNumbers(function.name, wholes, rules);
  if (type == Type::LongLong) {
    return Value::ofLongLong(result);
  }
  // Only the magnitude of the most negative number does not fit; it stays that number.
  return Value::ofInt(result > INT32_MAX ? INT32_MIN : static_cast<std::int32_t>(result));
}

} // namespace LanguageOracle
