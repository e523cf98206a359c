#include "ExpressionBuilder/Expression.h"

#include <stdexcept>

namespace ExpressionBuilder {

ExpressionAbstract::~ExpressionAbstract() = default;

template <class T>
ExpressionBase<T>::ExpressionBase(std::unique_ptr<Element<T>> root) noexcept : m_root(std::move(root)) {}

template <class T>
ExpressionBase<T>::ExpressionBase(const ExpressionBase &other)
    : ExpressionGenericAbstract<T>(other), m_root(other.m_root == nullptr ? nullptr : other.m_root->clone()) {
}

template <class T> ExpressionBase<T>::~ExpressionBase() = default;

template <class T> bool ExpressionBase<T>::isValid() const {
  if (m_root == nullptr) {
    return false;
  }
  try {
    m_root->validate(this->variables());
    return true;
  } catch (...) {
    return false;
  }
}

template <class T> bool ExpressionBase<T>::isConstantRoot() const {
  return m_root != nullptr && m_root->kind() == ElementKind::Constant;
}

template <class T> bool ExpressionBase<T>::isConstant() const {
  return m_root != nullptr && m_root->isConstant();
}

template <class T> T ExpressionBase<T>::evaluate() const {
  if (!isValid()) {
    throw std::runtime_error("Invalid expression");
  }
  return m_root->evaluate(this->variables());
}

template <class T> const Element<T> *ExpressionBase<T>::root() const noexcept {
  return m_root.get();
}

template class ExpressionBase<double>;
template class ExpressionBase<int>;
template class ExpressionBase<bool>;
template class ExpressionBase<std::string>;
template class ExpressionBase<long long>;

template class Expression<double, SimpleVariableCollection>;
template class Expression<int, SimpleVariableCollection>;
template class Expression<bool, SimpleVariableCollection>;
template class Expression<std::string, SimpleVariableCollection>;
template class Expression<long long, SimpleVariableCollection>;

} // namespace ExpressionBuilder
