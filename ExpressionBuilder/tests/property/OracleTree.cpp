#include "ExpressionBuilder/tests/property/OracleTree.h"

#include "ExpressionBuilder/tests/property/OracleConversions.h"

#include <algorithm>
#include <utility>

namespace LanguageOracle {

NodePtr constantNode(Value value) {
  Node node;
  node.type = value.type;
  node.value = std::move(value);
  return std::make_shared<const Node>(std::move(node));
}

bool isConstant(const Node &node, const Rules &rules) {
  switch (node.kind) {
  case Node::Kind::Constant:
    return true;
  case Node::Kind::Variable:
    return false;
  case Node::Kind::Conditional: {
    if (!isConstant(*node.children[0], rules)) {
      return false;
    }
    const Variables none;
    const bool chosen = Evaluation(none, rules).evaluate(*node.children[0]).truth;
    return isConstant(*node.children[chosen ? 1 : 2], rules);
  }
  default:
    return std::all_of(node.children.begin(), node.children.end(),
                       [&rules](const NodePtr &child) { return isConstant(*child, rules); });
  }
}

Evaluation::Evaluation(const Variables &variables, const Rules &rules)
    : m_variables(variables), m_rules(rules) {}

std::vector<Value> Evaluation::evaluateChildren(const Node &node) {
  std::vector<Value> values(node.children.size());
  for (std::size_t done = 0; done < values.size(); ++done) {
    const std::size_t next = m_rules.leftOperandFirst ? done : values.size() - 1 - done;
    values[next] = evaluate(*node.children[next]);
  }
  return values;
}

const Node &Evaluation::beginVariable(const std::string &name) {
  if (m_inProgress.count(name) != 0) {
    throw Error("Circular Dependency");
  }
  const auto found = m_variables.find(name);
  if (found == m_variables.end()) {
    throw Error("Missing Variable");
  }
  m_inProgress.insert(name);
  return *found->second;
}

Value Evaluation::evaluate(const Node &node) {
  switch (node.kind) {
  case Node::Kind::Constant:
    return node.value;
  case Node::Kind::Variable: {
    const Node &definition = beginVariable(node.name);
    if (definition.type != node.type) {
      throw Error("Variable is of wrong type");
    }
    Value value = evaluate(definition);
    m_inProgress.erase(node.name);
    return value;
  }
  case Node::Kind::Prefix:
    return apply(node.prefix, evaluateChildren(node)[0]);
  case Node::Kind::Binary: {
    const std::vector<Value> operands = evaluateChildren(node);
    return apply(node.binary, operands[0], operands[1], m_rules);
  }
  case Node::Kind::Cast:
    return convert(evaluateChildren(node)[0], node.type, m_rules);
  case Node::Kind::Conditional:
    return evaluate(*node.children[evaluate(*node.children[0]).truth ? 1 : 2]);
  case Node::Kind::Call:
    return call(*node.function, evaluateChildren(node), m_rules);
  }
  throw std::logic_error("no such node");
}

void Evaluation::validate(const Node &node) {
  if (node.kind == Node::Kind::Variable) {
    const Node &definition = beginVariable(node.name);
    if (definition.type != node.type) {
      throw Error("Variable has invalid Return Type");
    }
    validate(definition);
    m_inProgress.erase(node.name);
    return;
  }
  if (node.kind == Node::Kind::Conditional) {
    validate(*node.children[0]);
    if (isConstant(*node.children[0], m_rules)) {
      const Variables none;
      const bool chosen = Evaluation(none, m_rules).evaluate(*node.children[0]).truth;
      validate(*node.children[chosen ? 1 : 2]);
      return;
    }
  }
  for (const NodePtr &child : node.children) {
    validate(*child);
  }
}

} // namespace LanguageOracle
