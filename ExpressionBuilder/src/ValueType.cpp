#include "ExpressionBuilder/ValueType.h"

namespace ExpressionBuilder {

bool isKnownValueType(ValueType type) noexcept {
  const int code = static_cast<int>(type);
  return code >= 1 && code <= 5;
}

const char *valueTypeName(ValueType type) {
  switch (type) {
  case ValueType::Double:
    return "double";
  case ValueType::Int:
    return "int";
  case ValueType::Bool:
    return "bool";
  case ValueType::String:
    return "string";
  case ValueType::LongLong:
    return "long long";
  }
  throw std::logic_error("Not implemented");
}

ValueType mergedValueType(ValueType first, ValueType second) {
  for (const ValueType type :
       {ValueType::String, ValueType::Double, ValueType::Int, ValueType::LongLong, ValueType::Bool}) {
    if (first == type || second == type) {
      return type;
    }
  }
  throw std::logic_error("Invalid option");
}

} // namespace ExpressionBuilder
