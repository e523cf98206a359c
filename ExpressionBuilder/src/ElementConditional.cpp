#include "ExpressionBuilder/ElementConditional.h"

#include "ExpressionBuilder/EmptyVariableCollection.h"

#include <utility>

namespace ExpressionBuilder {

template <class T>
typename ElementConditional<T>::Children
ElementConditional<T>::pack(std::unique_ptr<Element<bool>> condition, std::unique_ptr<Element<T>> trueBranch,
                            std::unique_ptr<Element<T>> falseBranch) {
  return {std::move(condition), std::move(trueBranch), std::move(falseBranch)};
}

template <class T>
ElementConditional<T>::ElementConditional(std::unique_ptr<Element<bool>> condition,
                                          std::unique_ptr<Element<T>> trueBranch,
                                          std::unique_ptr<Element<T>> falseBranch)
    : ElementConditional(pack(std::move(condition), std::move(trueBranch), std::move(falseBranch))) {}

template <class T>
ElementConditional<T>::ElementConditional(Children &&children)
    : ElementConditional(std::move(children), selectBranch(children)) {}

template <class T>
ElementConditional<T>::ElementConditional(Children &&children, std::size_t selected)
    : Base(conditionalShape(), std::move(children), isBranchConstant(children, selected)),
      m_selected(selected) {}

template <class T>
ElementConditional<T>::ElementConditional(bool constant, std::size_t selected)
    : Base(conditionalShape(), {}, constant), m_selected(selected) {}

template <class T> const Element<bool> *ElementConditional<T>::condition() const {
  return static_cast<const Element<bool> *>(this->child(0));
}

template <class T> const Element<T> *ElementConditional<T>::trueBranch() const {
  return static_cast<const Element<T> *>(this->child(1));
}

template <class T> const Element<T> *ElementConditional<T>::falseBranch() const {
  return static_cast<const Element<T> *>(this->child(2));
}

template <class T> ElementKind ElementConditional<T>::kind() const {
  return ElementKind::Conditional;
}

template <class T> std::size_t ElementConditional<T>::selectBranch(const Children &children) {
  const auto *const condition = static_cast<const Element<bool> *>(children[0].get());
  if (condition == nullptr || !condition->isConstant()) {
    return 0;
  }
  try {
    return condition->evaluate(EmptyVariableCollection::instance()) ? 1 : 2;
  } catch (...) {
    // Building a node reports nothing; validation and evaluation compute the condition again and do.
    return 0;
  }
}

template <class T>
bool ElementConditional<T>::isBranchConstant(const Children &children, std::size_t selected) {
  return selected != 0 && children[selected] != nullptr && children[selected]->isConstant();
}

template <class T>
std::unique_ptr<ElementAbstract> ElementConditional<T>::copyWithoutChildren(const ElementAbstract &node) {
  const auto &conditional = static_cast<const ElementConditional &>(node);
  return std::unique_ptr<ElementAbstract>(
      new ElementConditional(conditional.isConstant(), conditional.m_selected));
}

template <class T> const ElementShape &ElementConditional<T>::conditionalShape() noexcept {
  static constexpr ElementShape shape{
      ElementShape::Form::Conditional,
      ValueTypeOf<T>::code,
      3,
      &Base::childrenOfNode,
      nullptr,
      &copyWithoutChildren,
      nullptr,
      nullptr,
      [](const ElementAbstract &node) { return static_cast<const ElementConditional &>(node).m_selected; },
      {},
      nullptr};
  return shape;
}

template class ElementConditional<double>;
template class ElementConditional<int>;
template class ElementConditional<bool>;
template class ElementConditional<std::string>;
template class ElementConditional<long long>;

} // namespace ExpressionBuilder
