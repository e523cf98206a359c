// The types of the nodes, the conversions of their operands, and what is computed at once.
#include "ExpressionBuilder/tests/property/OracleParser.h"

#include <utility>

namespace LanguageOracle {
namespace {

Type mergedType(Type first, Type second) {
  for (const Type type : {Type::String, Type::Double, Type::Int, Type::LongLong}) {
    if (first == type || second == type) {
      return type;
    }
  }
  return Type::Bool;
}

} // namespace

NodePtr Parser::prefixNode(Prefix op, NodePtr operand) const {
  if (m_options.coverage != nullptr) {
    m_options.coverage->countPrefix(op, operand->type);
  }
  const std::optional<Type> type = resultType(op, operand->type);
  if (!type) {
    throw Error("Unsupported Operator");
  }
  if (op == Prefix::Plus) {
    return operand;
  }
  Node node;
  node.kind = Node::Kind::Prefix;
  node.type = *type;
  node.prefix = op;
  node.children.push_back(std::move(operand));
  return fold(std::make_shared<const Node>(std::move(node)));
}

NodePtr Parser::binaryNode(Binary op, NodePtr left, NodePtr right) const {
  if (m_options.coverage != nullptr) {
    m_options.coverage->countBinary(op, left->type, right->type);
  }
  const Type operandType = m_options.rules.leftOperandDecides ? left->type : right->type;
  Node node;
  node.kind = Node::Kind::Binary;
  node.binary = op;
  node.children.push_back(castTo(operandType, std::move(left)));
  node.children.push_back(castTo(operandType, std::move(right)));
  const std::optional<Type> type = resultType(op, operandType);
  if (!type) {
    throw Error("Unsupported Operator");
  }
  node.type = *type;
  return fold(std::make_shared<const Node>(std::move(node)));
}

NodePtr Parser::castTo(Type type, NodePtr node) const {
  if (node->type == type) {
    return node;
  }
  Node cast;
  cast.kind = Node::Kind::Cast;
  cast.type = type;
  cast.children.push_back(std::move(node));
  return fold(std::make_shared<const Node>(std::move(cast)));
}

NodePtr Parser::fold(NodePtr node) const {
  if (!m_options.foldConstants || node->kind == Node::Kind::Constant || !isConstant(*node, m_options.rules)) {
    return node;
  }
  const Variables none;
  return constantNode(Evaluation(none, m_options.rules).evaluate(*node));
}

NodePtr Parser::conditionalNode(NodePtr condition, NodePtr whenTrue, NodePtr whenFalse) const {
  if (m_options.coverage != nullptr) {
    m_options.coverage->countConditional(condition->type, whenTrue->type, whenFalse->type);
  }
  Node node;
  node.kind = Node::Kind::Conditional;
  node.type = mergedType(whenTrue->type, whenFalse->type);
  node.children.push_back(castTo(Type::Bool, std::move(condition)));
  node.children.push_back(castTo(node.type, std::move(whenTrue)));
  node.children.push_back(castTo(node.type, std::move(whenFalse)));
  return fold(std::make_shared<const Node>(std::move(node)));
}

} // namespace LanguageOracle
