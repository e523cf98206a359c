#pragma once

#include "ExpressionBuilder/BuilderBase.h"
#include "ExpressionBuilder/Expression.h"

#include <memory>
#include <string>
#include <vector>

namespace ExpressionBuilder {

/// A builder whose results have the type T. The result as a whole is converted; the parts of the text keep
/// their types, so that "7/2" is 3.0 for a double.
template <class T> class BuilderSingleType : public BuilderBase {
public:
  BuilderSingleType();
  ~BuilderSingleType() override;

  /// As BuilderBase, and a result that is not empty is converted to T.
  void parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position, TextPosition end,
                       int level, bool sameLevel, ParseMode mode) const override;
  void parseLiteral(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                    TextPosition end) const override;
  std::unique_ptr<ElementAbstract> build(const std::string &text) const override;
  /// The conversion of the result as a whole is nothing to warn of.
  std::unique_ptr<ElementAbstract> buildWithWarnings(const std::string &text,
                                                     std::vector<Warning> &warnings) const override;

  /// `build` as the type that the root has.
  std::unique_ptr<Element<T>> buildElement(const std::string &text) const;

  /// `build` as an expression with a copy of the builder's variables, independent of the builder afterwards.
  std::unique_ptr<Expression<T, SimpleVariableCollection>> buildExpression(const std::string &text) const;
};

extern template class BuilderSingleType<double>;
extern template class BuilderSingleType<int>;
extern template class BuilderSingleType<bool>;
extern template class BuilderSingleType<std::string>;
extern template class BuilderSingleType<long long>;

} // namespace ExpressionBuilder
