#pragma once

#include "ExpressionBuilder/tests/property/LanguageCoverage.h"
#include "ExpressionBuilder/tests/property/OracleTree.h"

#include <cstddef>
#include <string>

namespace LanguageOracle {

struct ParserOptions {
  bool foldConstants = true;
  Rules rules;
  /// Counts what operators, conversions and functions meet; may be null.
  LanguageCoverage *coverage = nullptr;
};

/// Builds the tree of one text; used once. The text is read by calls that each take operators up to a level.
class Parser {
public:
  Parser(const std::string &text, const Variables &variables, const ParserOptions &options);

  /// \throws Error  with the message of the build error
  NodePtr build();

  /// The node itself when it has the type, otherwise its conversion, computed at once where that is possible.
  NodePtr castTo(Type type, NodePtr node) const;

private:
  enum class Place { Whole, Brackets, Argument, TrueBranch, FalseBranch };
  /// The loosest operators that a call may take.
  struct Limit {
    int level;
    bool sameLevel;

    bool allows(int precedence) const { return sameLevel ? level >= precedence : level > precedence; }
  };

  NodePtr parse(Limit limit, Place place);
  bool takeOperand(NodePtr &left);
  bool takePrefix(NodePtr &left);
  bool takeBinary(NodePtr &left, Limit limit);
  NodePtr parseVariable();
  NodePtr parseName();
  NodePtr parseCall(const Function &function);
  NodePtr parseBracket();
  NodePtr parsePrefixOperand();
  NodePtr parseConditional(NodePtr condition);

  NodePtr prefixNode(Prefix op, NodePtr operand) const;
  NodePtr binaryNode(Binary op, NodePtr left, NodePtr right) const;
  NodePtr conditionalNode(NodePtr condition, NodePtr whenTrue, NodePtr whenFalse) const;
  NodePtr fold(NodePtr node) const;

  bool isAtEnd() const { return m_position == m_text.size(); }
  char current() const { return m_text[m_position]; }
  char next() const { return m_position + 1 < m_text.size() ? m_text[m_position + 1] : '\0'; }
  void skipBlanks();

  const std::string &m_text;
  const Variables &m_variables;
  const ParserOptions &m_options;
  std::size_t m_position = 0;
};

} // namespace LanguageOracle
