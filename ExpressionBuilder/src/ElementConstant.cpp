#include "ExpressionBuilder/ElementConstant.h"

#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/TreeOperations.h"

#include <utility>

namespace ExpressionBuilder {

namespace {

template <class T> const T &valueOf(const ElementAbstract &node) {
  return static_cast<const ElementConstant<T> &>(node).value();
}

template <class T> const void *addressOf(const ElementAbstract &node) {
  return &valueOf<T>(node);
}

template <class T>
void computeConstant(const ElementAbstract &node, const VariableCollectionAbstract & /*collection*/,
                     EvaluationStack &stack) {
  stack.push<T>(valueOf<T>(node));
}

template <class T> std::unique_ptr<ElementAbstract> copyConstant(const ElementAbstract &node) {
  return std::make_unique<ElementConstant<T>>(valueOf<T>(node));
}

template <class T> bool sameConstant(const ElementAbstract &first, const ElementAbstract &second) {
  return valueOf<T>(first) == valueOf<T>(second);
}

template <class T> const ElementShape &constantShape() noexcept {
  static constexpr ElementShape shape{ElementShape::Form::Constant,
                                      ValueTypeOf<T>::code,
                                      0,
                                      nullptr,
                                      &computeConstant<T>,
                                      &copyConstant<T>,
                                      &sameConstant<T>,
                                      nullptr,
                                      nullptr,
                                      {},
                                      &addressOf<T>};
  return shape;
}

} // namespace

template <class T>
ElementConstant<T>::ElementConstant(T value) : Element<T>(constantShape<T>()), m_value(std::move(value)) {}

template <class T> ElementKind ElementConstant<T>::kind() const {
  return ElementKind::Constant;
}

template <class T> bool ElementConstant<T>::isConstant() const {
  return true;
}

template <class T>
void ElementConstant<T>::validate(const VariableCollectionAbstract & /*collection*/) const {}

template <class T> bool ElementConstant<T>::equals(const ElementAbstract &other) const {
  return equalTrees(*this, other);
}

template <class T> T ElementConstant<T>::evaluate(const VariableCollectionAbstract & /*collection*/) const {
  return m_value;
}

template <class T> std::unique_ptr<Element<T>> ElementConstant<T>::clone() const {
  return std::make_unique<ElementConstant<T>>(m_value);
}

template class ElementConstant<double>;
template class ElementConstant<int>;
template class ElementConstant<bool>;
template class ElementConstant<std::string>;
template class ElementConstant<long long>;

} // namespace ExpressionBuilder
