#pragma once

#include <set>
#include <string>

namespace ExpressionBuilder {

/// What building says of a text that is no expression, names of variables aside.
inline std::set<std::string> textErrors() {
  return {"Empty expression",
          "Syntax error",
          "Syntax Error",
          "Syntax error - Unexpected left hand side",
          "Syntax error - Right hand side invalid",
          "Syntax error - No left hand side expected",
          "Syntax error : unbalanced brackets",
          "Syntax error - Condition",
          "Syntax error - True expression",
          "Syntax error - False expression",
          "No right hand side of unary operator",
          "Number out of range",
          "Unsupported Operator",
          "Function does not support the current argument types"};
}

/// Of building, when a constant part is computed, and of evaluating.
inline std::set<std::string> arithmeticErrors() {
  return {"Integer division by zero", "Integer overflow"};
}

/// Both, and the others given.
inline std::set<std::string> textErrorsAnd(std::set<std::string> others) {
  others.merge(textErrors());
  others.merge(arithmeticErrors());
  return others;
}

} // namespace ExpressionBuilder
