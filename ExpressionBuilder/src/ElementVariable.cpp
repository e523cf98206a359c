#include "ExpressionBuilder/ElementVariable.h"

#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/TreeOperations.h"

#include <utility>

namespace ExpressionBuilder {

namespace {

template <class T> const std::string &nameOf(const ElementAbstract &node) {
  return static_cast<const ElementVariable<T> &>(node).name();
}

template <class T> std::unique_ptr<ElementAbstract> copyVariable(const ElementAbstract &node) {
  return std::make_unique<ElementVariable<T>>(nameOf<T>(node));
}

template <class T> bool sameVariable(const ElementAbstract &first, const ElementAbstract &second) {
  return nameOf<T>(first) == nameOf<T>(second);
}

template <class T> const ElementShape &variableShape() noexcept {
  static constexpr ElementShape shape{ElementShape::Form::Variable,
                                      ValueTypeOf<T>::code,
                                      0,
                                      nullptr,
                                      nullptr,
                                      &copyVariable<T>,
                                      &sameVariable<T>,
                                      &nameOf<T>,
                                      nullptr,
                                      {},
                                      nullptr};
  return shape;
}

} // namespace

template <class T>
ElementVariable<T>::ElementVariable(std::string name)
    : Element<T>(variableShape<T>()), m_name(std::move(name)) {}

template <class T> ElementKind ElementVariable<T>::kind() const {
  return ElementKind::Variable;
}

template <class T> bool ElementVariable<T>::isConstant() const {
  return false;
}

template <class T> void ElementVariable<T>::validate(const VariableCollectionAbstract &collection) const {
  validateTree(*this, collection);
}

template <class T> bool ElementVariable<T>::equals(const ElementAbstract &other) const {
  return equalTrees(*this, other);
}

template <class T> T ElementVariable<T>::evaluate(const VariableCollectionAbstract &collection) const {
  return evaluateTree<T>(*this, collection);
}

template <class T> std::unique_ptr<Element<T>> ElementVariable<T>::clone() const {
  return std::make_unique<ElementVariable<T>>(m_name);
}

template class ElementVariable<double>;
template class ElementVariable<int>;
template class ElementVariable<bool>;
template class ElementVariable<std::string>;
template class ElementVariable<long long>;

} // namespace ExpressionBuilder
