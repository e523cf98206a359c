#include "ExpressionBuilder/BuilderSingleType.h"

#include "ExpressionBuilder/Exceptions.h"

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

namespace ExpressionBuilder {

namespace {

/// Folding may compute the root here for the first time, a function call say; its error gets the place where
/// the expression begins.
template <class T>
std::unique_ptr<Element<T>> convertedRoot(const BuilderBase &builder, std::unique_ptr<ElementAbstract> root,
                                          TextPosition begin, TextPosition end) {
  try {
    return builder.castTo<T>(std::move(root));
  } catch (const std::runtime_error &error) {
    const TextPosition first = std::find_if(begin, end, [](char c) { return c != ' '; });
    throw ParserError(error.what(), static_cast<std::size_t>(first - begin));
  }
}

} // namespace

template <class T> BuilderSingleType<T>::BuilderSingleType() = default;

template <class T> BuilderSingleType<T>::~BuilderSingleType() = default;

template <class T>
void BuilderSingleType<T>::parseExpression(std::unique_ptr<ElementAbstract> &result, TextPosition &position,
                                           TextPosition end, int level, bool sameLevel,
                                           ParseMode mode) const {
  const TextPosition begin = position;
  BuilderBase::parseExpression(result, position, end, level, sameLevel, mode);
  if (result != nullptr) {
    result = convertedRoot<T>(*this, std::move(result), begin, end);
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
std::unique_ptr<ElementAbstract>
BuilderSingleType<T>::buildWithWarnings(const std::string &text, std::vector<Warning> &warnings) const {
  std::vector<Warning> found;
  std::unique_ptr<ElementAbstract> root = BuilderBase::buildWithWarnings(text, found);
  root = convertedRoot<T>(*this, std::move(root), text.begin(), text.end());
  warnings = std::move(found);
  return root;
}

template <class T>
std::unique_ptr<Element<T>> BuilderSingleType<T>::buildElement(const std::string &text) const {
  return convertedRoot<T>(*this, BuilderBase::build(text), text.begin(), text.end());
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
