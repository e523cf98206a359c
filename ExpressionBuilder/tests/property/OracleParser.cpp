#include "ExpressionBuilder/tests/property/OracleParser.h"

#include "ExpressionBuilder/tests/property/OracleLiterals.h"

#include <algorithm>
#include <utility>

namespace LanguageOracle {
namespace {

constexpr int kConditionalLevel = 10;
constexpr int kLoosestLevel = 11;

} // namespace

Parser::Parser(const std::string &text, const Variables &variables, const ParserOptions &options)
    : m_text(text), m_variables(variables), m_options(options) {}

NodePtr Parser::build() {
  skipBlanks();
  if (isAtEnd()) {
    throw Error("Empty expression");
  }
  NodePtr root = parse({kLoosestLevel, true}, Place::Whole);
  if (!root || !isAtEnd()) {
    throw Error("Syntax error");
  }
  return root;
}

void Parser::skipBlanks() {
  while (!isAtEnd() && current() == ' ') {
    ++m_position;
  }
}

NodePtr Parser::parse(Limit limit, Place place) {
  NodePtr left;
  for (skipBlanks(); !isAtEnd(); skipBlanks()) {
    if (takeOperand(left) || takePrefix(left)) {
      continue;
    }
    const char byte = current();
    if (byte == ')' && limit.allows(kLoosestLevel)) {
      if (left && (place == Place::Brackets || place == Place::Argument)) {
        return left;
      }
      throw Error("Syntax error : unbalanced brackets");
    }
    if (byte == ',' && limit.allows(kLoosestLevel)) {
      if (place != Place::Argument) {
        throw Error("Syntax error : unbalanced brackets");
      }
      if (!left) {
        throw Error("Syntax error");
      }
      return left;
    }
    if (byte == '?' && limit.allows(kConditionalLevel)) {
      if (!left) {
        throw Error("Syntax error - Condition");
      }
      left = parseConditional(std::move(left));
      continue;
    }
    if (byte == ':' && limit.allows(kConditionalLevel)) {
      if (limit.level == kLoosestLevel) {
        throw Error("Syntax error");
      }
      if (place == Place::TrueBranch) {
        ++m_position;
      }
      return left;
    }
    if (!takeBinary(left, limit)) {
      return left;
    }
  }
  return left;
}

// Literals, variables, names and brackets: taken by every call, and refused behind another operand.
bool Parser::takeOperand(NodePtr &left) {
  const char byte = current();
  const bool isSigned = (byte == '+' || byte == '-') && !left && isDigit(next());
  const bool isLiteral = isDigit(byte) || byte == '"' || byte == '.' || isSigned;
  if (!isLiteral && byte != '%' && byte != '(' && !isLetter(byte)) {
    return false;
  }
  if (left) {
    throw Error("Syntax error");
  }
  if (isLiteral) {
    left = constantNode(readLiteral(m_text, m_position));
  } else if (byte == '%') {
    left = parseVariable();
  } else if (byte == '(') {
    left = parseBracket();
  } else {
    left = parseName();
  }
  return true;
}

NodePtr Parser::parseVariable() {
  const std::size_t begin = m_position + 1;
  const std::size_t close = std::min(m_text.find('%', begin), m_text.size());
  Node node;
  node.kind = Node::Kind::Variable;
  node.name = m_text.substr(begin, close - begin);
  m_position = std::min(close + 1, m_text.size());
  const auto found = m_variables.find(node.name);
  if (found == m_variables.end()) {
    throw Error("Undefined variable : " + node.name);
  }
  node.type = found->second->type;
  return std::make_shared<const Node>(std::move(node));
}

NodePtr Parser::parseName() {
  const std::size_t begin = m_position;
  while (!isAtEnd() && (isLetter(current()) || isDigit(current()) || current() == '_' || current() == '-')) {
    ++m_position;
  }
  const std::string name = m_text.substr(begin, m_position - begin);
  if (!isAtEnd() && current() == '(') {
    if (const Function *function = findFunction(name)) {
      return parseCall(*function);
    }
  } else if (name == "pi") {
    return constantNode(Value::ofDouble(3.141592653589793));
  } else if (name == "e") {
    return constantNode(Value::ofDouble(2.718281828459045));
  }
  throw Error("Syntax error");
}

NodePtr Parser::parseCall(const Function &function) {
  Node node;
  node.kind = Node::Kind::Call;
  node.function = &function;
  std::vector<Type> types;
  bool isLast = false;
  while (!isLast) {
    ++m_position;
    NodePtr argument = parse({kLoosestLevel, true}, Place::Argument);
    if (isAtEnd() || (current() != ',' && current() != ')')) {
      throw Error("Syntax Error");
    }
    isLast = current() == ')';
    types.push_back(argument->type);
    node.children.push_back(std::move(argument));
  }
  ++m_position;
  if (m_options.coverage != nullptr) {
    m_options.coverage->countCall(function, types);
  }
  if (!accepts(function, types)) {
    throw Error("Function does not support the current argument types");
  }
  node.type = types.front();
  // Calls are not computed at once; what is built on top of them is.
  return std::make_shared<const Node>(std::move(node));
}

NodePtr Parser::parseBracket() {
  ++m_position;
  std::size_t end = m_position;
  while (end < m_text.size() && isLetter(m_text[end])) {
    ++end;
  }
  const std::string word = m_text.substr(m_position, end - m_position);
  if (end < m_text.size() && m_text[end] == ')') {
    for (const Type type : {Type::String, Type::Int, Type::Double, Type::Bool}) {
      if (word == typeName(type)) {
        m_position = end + 1;
        NodePtr operand = parsePrefixOperand();
        if (m_options.coverage != nullptr) {
          m_options.coverage->countCast(type, operand->type);
        }
        return castTo(type, std::move(operand));
      }
    }
  }
  NodePtr inner = parse({kLoosestLevel, true}, Place::Brackets);
  if (isAtEnd() || current() != ')') {
    throw Error("Syntax error");
  }
  ++m_position;
  return inner;
}

NodePtr Parser::parsePrefixOperand() {
  NodePtr operand = parse({0, true}, Place::Whole);
  if (!operand) {
    throw Error("No right hand side of unary operator");
  }
  return operand;
}

NodePtr Parser::parseConditional(NodePtr condition) {
  ++m_position;
  NodePtr whenTrue = parse({kConditionalLevel, true}, Place::TrueBranch);
  if (!whenTrue) {
    throw Error("Syntax error - True expression");
  }
  if (m_text[m_position - 1] != ':') {
    throw Error("Syntax error");
  }
  NodePtr whenFalse = parse({kConditionalLevel, true}, Place::FalseBranch);
  if (!whenFalse) {
    throw Error("Syntax error - False expression");
  }
  return conditionalNode(std::move(condition), std::move(whenTrue), std::move(whenFalse));
}

bool Parser::takePrefix(NodePtr &left) {
  const char byte = current();
  if (byte == '!' && next() != '=') {
    if (left) {
      throw Error("Syntax error - No left hand side expected");
    }
  } else if ((byte != '+' && byte != '-') || left) {
    return false;
  }
  ++m_position;
  const Prefix op = byte == '!' ? Prefix::Not : byte == '-' ? Prefix::Minus : Prefix::Plus;
  left = prefixNode(op, parsePrefixOperand());
  return true;
}

bool Parser::takeBinary(NodePtr &left, Limit limit) {
  const Binary *op = nullptr;
  std::size_t length = 0;
  for (const Binary &candidate : kBinaries) {
    const std::string characters = symbol(candidate);
    if (characters.size() > length && m_text.compare(m_position, characters.size(), characters) == 0) {
      op = &candidate;
      length = characters.size();
    }
  }
  if (op == nullptr || !limit.allows(precedence(*op))) {
    return false;
  }
  if (!left) {
    throw Error("Syntax error - Unexpected left hand side");
  }
  m_position += length;
  NodePtr right = parse({precedence(*op), false}, Place::Whole);
  if (!right) {
    throw Error("Syntax error - Right hand side invalid");
  }
  left = binaryNode(*op, std::move(left), std::move(right));
  return true;
}

} // namespace LanguageOracle
