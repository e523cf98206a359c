#pragma once

#include "ExpressionBuilder/tests/property/OracleFunctions.h"
#include "ExpressionBuilder/tests/property/OracleOperators.h"
#include "ExpressionBuilder/tests/property/OracleValue.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace LanguageOracle {

struct Node;
using NodePtr = std::shared_ptr<const Node>;

/// Definitions by name.
using Variables = std::map<std::string, NodePtr>;

struct Node {
  enum class Kind { Constant, Variable, Prefix, Binary, Cast, Conditional, Call };

  Kind kind = Kind::Constant;
  Type type = Type::Int;
  Value value;                        ///< of a constant
  std::string name;                   ///< of a variable
  Prefix prefix = Prefix::Not;        ///< of a prefix operation
  Binary binary = Binary::Add;        ///< of a binary operation
  const Function *function = nullptr; ///< of a call
  std::vector<NodePtr> children;      ///< of a conditional: condition, true branch, false branch
};

NodePtr constantNode(Value value);

/// Whether the value can be known without variables. A conditional is constant when its condition and the
/// branch that this selects are.
bool isConstant(const Node &node, const Rules &rules);

/// Computes trees against variables.
class Evaluation {
public:
  Evaluation(const Variables &variables, const Rules &rules);

  /// \throws Error  the first error in the order of evaluation, the last operand first
  Value evaluate(const Node &node);

  /// Looks for variables that are missing, of another type or defined by themselves, without computing.
  /// \throws Error  the first one found, or what the computation of a constant condition gives
  void validate(const Node &node);

private:
  std::vector<Value> evaluateChildren(const Node &node);
  const Node &beginVariable(const std::string &name);

  const Variables &m_variables;
  const Rules &m_rules;
  std::set<std::string> m_inProgress;
};

} // namespace LanguageOracle
