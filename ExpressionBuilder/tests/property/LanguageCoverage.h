#pragma once

#include "ExpressionBuilder/tests/property/OracleFunctions.h"
#include "ExpressionBuilder/tests/property/OracleOperators.h"

#include <array>
#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace LanguageOracle {

/// How often texts have brought each operator, conversion, conditional and function together with each
/// combination of operand types, supported or not.
class LanguageCoverage {
public:
  void countBinary(Binary op, Type left, Type right);
  void countPrefix(Prefix op, Type operand);
  void countCast(Type to, Type from);
  void countConditional(Type condition, Type whenTrue, Type whenFalse);
  void countCall(const Function &function, const std::vector<Type> &arguments);

  void print(std::ostream &stream) const;

  /// Every combination of an operator or conversion, of a function and argument types in their right number,
  /// and of the types in a conditional that was never met.
  std::vector<std::string> missing() const;
  /// Every function none of whose overloads was ever met.
  std::vector<std::string> missingFunctions() const;

private:
  using Pairs = std::array<std::array<std::size_t, 5>, 5>;

  std::array<Pairs, 12> m_binaries{};
  std::array<std::array<std::size_t, 5>, 3> m_prefixes{};
  Pairs m_casts{};
  std::array<std::size_t, 5> m_conditions{};
  Pairs m_branches{};
  std::map<std::string, std::size_t> m_calls;
};

} // namespace LanguageOracle
