#include "ExpressionBuilder/Element.h"

#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/src/NodeStorage.h"

#include <stdexcept>

namespace ExpressionBuilder {

namespace {

std::unique_ptr<ElementAbstract> copyOpaque(const ElementAbstract &node) {
  return node.cloneAbstract();
}

bool sameOpaque(const ElementAbstract &first, const ElementAbstract &second) {
  return first.equals(second);
}

[[noreturn]] void computeUntyped(const ElementAbstract & /*node*/,
                                 const VariableCollectionAbstract & /*collection*/,
                                 EvaluationStack & /*stack*/) {
  throw std::logic_error("Invalid Cast");
}

template <class T>
void computeOpaque(const ElementAbstract &node, const VariableCollectionAbstract &collection,
                   EvaluationStack &stack) {
  stack.push<T>(static_cast<const Element<T> &>(node).evaluate(collection));
}

template <class T> const ElementShape &opaqueShape() noexcept {
  static constexpr ElementShape shape{ElementShape::Form::Opaque,
                                      ValueTypeOf<T>::code,
                                      0,
                                      nullptr,
                                      &computeOpaque<T>,
                                      &copyOpaque,
                                      &sameOpaque,
                                      nullptr,
                                      nullptr,
                                      {},
                                      nullptr};
  return shape;
}

const ElementShape &untypedShape() noexcept {
  static constexpr ElementShape shape{ElementShape::Form::Opaque,
                                      ValueType{},
                                      0,
                                      nullptr,
                                      &computeUntyped,
                                      &copyOpaque,
                                      &sameOpaque,
                                      nullptr,
                                      nullptr,
                                      {},
                                      nullptr};
  return shape;
}

} // namespace

ElementAbstract::ElementAbstract() noexcept : ElementAbstract(untypedShape()) {}

void *ElementAbstract::operator new(std::size_t size) {
  return NodeStorage::allocate(size);
}

void ElementAbstract::operator delete(void *memory) noexcept {
  NodeStorage::release(memory);
}

template <class T> Element<T>::Element() noexcept : Element(opaqueShape<T>()) {}

template <class T> ValueType Element<T>::type() const {
  return ValueTypeOf<T>::code;
}

template <class T> std::unique_ptr<ElementAbstract> Element<T>::cloneAbstract() const {
  return clone();
}

template <class T> std::unique_ptr<Element<T>> elementAs(std::unique_ptr<ElementAbstract> element) {
  if (element == nullptr || element->type() != ValueTypeOf<T>::code ||
      element->shape().type != ValueTypeOf<T>::code) {
    throw std::logic_error("Invalid Cast");
  }
  return std::unique_ptr<Element<T>>(static_cast<Element<T> *>(element.release()));
}

template class Element<double>;
template class Element<int>;
template class Element<bool>;
template class Element<std::string>;
template class Element<long long>;

template std::unique_ptr<Element<double>> elementAs<double>(std::unique_ptr<ElementAbstract>);
template std::unique_ptr<Element<int>> elementAs<int>(std::unique_ptr<ElementAbstract>);
template std::unique_ptr<Element<bool>> elementAs<bool>(std::unique_ptr<ElementAbstract>);
template std::unique_ptr<Element<std::string>> elementAs<std::string>(std::unique_ptr<ElementAbstract>);
template std::unique_ptr<Element<long long>> elementAs<long long>(std::unique_ptr<ElementAbstract>);

} // namespace ExpressionBuilder
