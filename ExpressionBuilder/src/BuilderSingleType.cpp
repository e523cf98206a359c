#include "ExpressionBuilder/BuilderSingleType.h"

#include <utility>

namespace ExpressionBuilder {

template <class T> BuilderSingleType<T>::BuilderSingleType() = default;

template <class T> BuilderSingleType<T>::~BuilderSingleType() = default;

template <class T>
void BuilderSingleType<T>::parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                                           TextPosition end, int level, bool sameLevel,
                                           ParseMode mode) const {
  BuilderBase::parseExpression(result, position, end, level, sameLevel, mode);
  if (result != nullptr) {
    result = castTo<T>(std::move(result));
  }
}

template <class T>
void BuilderSingleType<T>::parseLiteral(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                                        TextPosition end) const {
  BuilderBase::parseLiteral(result, position, end);
  if (result != nullptr) {
    result = castTo<T>(std::move(result));
  }
}

template <class T>
std::unique_ptr<ElementAbstract> BuilderSingleType<T>::build(const std::string &text) const {
  return buildElement(text);
}

template <class T>
std::unique_ptr<Element<T>> BuilderSingleType<T>::buildElement(const std::string &text) const {
  return castTo<T>(BuilderBase::build(text));
}

template <class T>
std::unique_ptr<Expression<T, SimpleVariableCollection>>
BuilderSingleType<T>::buildExpression(const std::string &text) const {
  return std::make_unique<Expression<T, SimpleVariableCollection>>(buildElement(text), variables());
}

template class BuilderSingleType<double>;
template class BuilderSingleType<int>;
template class BuilderSingleType<bool>;
template class BuilderSingleType<std::string>;
template class BuilderSingleType<long long>;

} // namespace ExpressionBuilder
