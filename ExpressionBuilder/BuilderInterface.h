#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/FunctionTable.h"

#include <memory>
#include <string>

namespace ExpressionBuilder {

/// A place in the text that is parsed.
using TextPosition = std::string::const_iterator;

/// What may end a call of `parseExpression`.
enum class ParseMode : int {
  Whole = 0,    ///< the whole text or the branch of a conditional
  Bracket = 1,  ///< inside brackets: the call ends behind a ")"
  Argument = 2, ///< one argument of a function: the call ends on a "," or ")"
};

/// What turns text into elements.
class BuilderInterface {
public:
  /// Parses one expression.
  /// \param result     the root, empty when nothing was parsed
  /// \param position   where to begin; afterwards the first byte that does not belong to the expression
  /// \param end        end of the text
  /// \param level      0..11, the loosest precedence that the call may absorb
  /// \param sameLevel  whether an operator whose precedence equals `level` may be absorbed
  /// \param mode       what may end the call
  /// \throws ParserError  with offsets counted from the position at the beginning of the call
  virtual void parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                               TextPosition end, int level, bool sameLevel, ParseMode mode) const = 0;

  /// The element for a reference to the variable; empty when there is none.
  virtual std::unique_ptr<ElementAbstract> resolveVariable(const std::string &name) const = 0;

  /// A copy of the named constant's element; empty when there is none.
  virtual std::unique_ptr<ElementAbstract> resolveConstant(const std::string &name) const = 0;

  /// The overloads of the function, which stay the builder's own; null when there is no such function.
  virtual const OverloadTable *resolveFunction(const std::string &name) const = 0;

  /// Reads one number, one string literal, or one of the words "true" and "false".
  /// \param result    the constant; empty when the text does not begin with a literal or a string literal has
  ///                  no closing quote
  /// \param position  where to begin; afterwards behind the literal
  /// \throws ParserError  "Number out of range"; "Syntax error" for a number text without a digit
  virtual void parseLiteral(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                            TextPosition end) const = 0;

  /// Builds the tree of a whole text.
  /// \return  the root, never empty
  /// \throws ParserError  see BuilderBase
  virtual std::unique_ptr<ElementAbstract> build(const std::string &text) const = 0;

  virtual ~BuilderInterface();

  BuilderInterface(const BuilderInterface &) = delete;
  BuilderInterface &operator=(const BuilderInterface &) = delete;

protected:
  BuilderInterface() = default;
};

} // namespace ExpressionBuilder
