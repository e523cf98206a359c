#pragma once

#include "ExpressionBuilder/BuilderInterface.h"
#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/FunctionTable.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/Warnings.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace ExpressionBuilder {

/// Builds trees from text. The root keeps the type that the text gives it.
///
/// A new builder knows the constants "pi" and "e", the built-in functions and no variables. Parsing changes
/// nothing in it, so one builder serves any number of texts, also from several threads while nobody changes
/// it. Nesting uses no stack of the thread; a text of more than kMaximumTextBytes bytes or with more than
/// kMaximumNesting levels is refused with "Syntax error".
///
/// Errors are ParserErrors with one of these messages: "Empty expression", "Syntax error", "Syntax Error",
/// "Syntax error - Unexpected left hand side", "Syntax error - Right hand side invalid", "Syntax error - No
/// left hand side expected", "Syntax error : unbalanced brackets", "Syntax error - Condition", "Syntax error -
/// True expression", "Syntax error - False expression", "No right hand side of unary operator", "Undefined
/// variable : " and the name, "Number out of range", "Unsupported Operator", "Function does not support the
/// current argument types", "Syntax Error : No Overload", "Invalid number of arguments"; or what the
/// evaluation of a constant part throws, "Integer division by zero" and "Integer overflow".
class BuilderBase : public BuilderInterface {
public:
  static constexpr std::size_t kMaximumTextBytes = std::size_t{16} * 1024 * 1024;
  static constexpr std::size_t kMaximumNesting = 1'000'000;

  BuilderBase();
  ~BuilderBase() override;

  /// \name Parsing
  /// \{
  void parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position, TextPosition end,
                       int level, bool sameLevel, ParseMode mode) const override;
  std::unique_ptr<ElementAbstract> resolveVariable(const std::string &name) const override;
  std::unique_ptr<ElementAbstract> resolveConstant(const std::string &name) const override;
  const OverloadTable *resolveFunction(const std::string &name) const override;
  void parseLiteral(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                    TextPosition end) const override;
  std::unique_ptr<ElementAbstract> build(const std::string &text) const override;

  /// As `build`, the same tree and the same errors, and lists what is legal in the text and seldom meant.
  /// \param warnings  on success replaced by the warnings, ordered by their places; otherwise unchanged
  virtual std::unique_ptr<ElementAbstract> buildWithWarnings(const std::string &text,
                                                             std::vector<Warning> &warnings) const;

  /// The warnings alone. `warningMessage` puts them into words.
  /// \throws ParserError  what `build` throws
  std::vector<Warning> warnings(const std::string &text) const;
  /// \}

  /// \name Options
  /// \{
  /// Whether parts without variables are computed while parsing; on in a new builder. Their errors then are
  /// errors of the build, also in a branch that would never be taken.
  bool foldConstants() const noexcept;
  void setFoldConstants(bool fold) noexcept;
  /// Whether a backslash in a string literal or variable name is dropped and makes everything after it, to
  /// the end of the text and with all quotes, "%" and further backslashes, part of that literal or name; off
  /// in a new builder.
  bool allowEscapes() const noexcept;
  void setAllowEscapes(bool allow) noexcept;
  /// \}

  /// \name Names
  /// \{
  /// The variables that a text may refer to. A reference takes the type that the variable has while parsing.
  SimpleVariableCollection &variables() noexcept;
  const SimpleVariableCollection &variables() const noexcept;

  /// Enters a named constant, in the place of one of the same name. Every use gets a copy of the element.
  /// \throws std::logic_error "Invalid Cast" when there is no element
  void registerConstant(const std::string &name, std::unique_ptr<ElementAbstract> element);

  /// Enters one overload, in the place of one with the same argument types. Without a constructor a call
  /// fails with "Syntax Error : No Overload".
  void registerOverload(const std::string &name, const std::vector<ValueType> &argumentTypes,
                        std::unique_ptr<ElementFunctionConstructorOverloadAbstract> constructor);

  /// Enters the built-in functions for `double`, `int` or `long long` arguments; a new builder has all three.
  template <class T> void registerDefaultFunctions();

  /// Names of all functions, in the order of their bytes.
  std::vector<std::string> functionNames() const;
  /// \}

  /// \name Conversion
  /// \{
  /// The element itself when its type is T, otherwise a node that converts it, folded when that is on.
  /// \throws std::logic_error "Invalid Cast" when there is no element or its type code is not its real type
  template <class T> std::unique_ptr<Element<T>> castTo(std::unique_ptr<ElementAbstract> element) const;
  /// The same for a type that is known at run time only.
  std::unique_ptr<ElementAbstract> castTo(ValueType type, std::unique_ptr<ElementAbstract> element) const;

  /// With foldConstants on, an element whose value is known without variables is replaced by a constant node
  /// holding that value; any other element is returned as it is. Throws what the evaluation throws.
  std::unique_ptr<ElementAbstract> fold(std::unique_ptr<ElementAbstract> element) const;
  /// \}

private:
  std::map<std::string, std::unique_ptr<ElementAbstract>> m_constants;
  FunctionTable m_functions;
  SimpleVariableCollection m_variables;
  bool m_foldConstants = true;
  bool m_allowEscapes = false;
};

extern template void BuilderBase::registerDefaultFunctions<double>();
extern template void BuilderBase::registerDefaultFunctions<int>();
extern template void BuilderBase::registerDefaultFunctions<long long>();

extern template std::unique_ptr<Element<double>>
    BuilderBase::castTo<double>(std::unique_ptr<ElementAbstract>) const;
extern template std::unique_ptr<Element<int>>
    BuilderBase::castTo<int>(std::unique_ptr<ElementAbstract>) const;
extern template std::unique_ptr<Element<bool>>
    BuilderBase::castTo<bool>(std::unique_ptr<ElementAbstract>) const;
extern template std::unique_ptr<Element<std::string>>
    BuilderBase::castTo<std::string>(std::unique_ptr<ElementAbstract>) const;
extern template std::unique_ptr<Element<long long>>
    BuilderBase::castTo<long long>(std::unique_ptr<ElementAbstract>) const;

} // namespace ExpressionBuilder
