#pragma once

#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/ElementShape.h"
#include "ExpressionBuilder/TreeOperations.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

namespace ExpressionBuilder {

/// Common part of the nodes that own N children. The slots hold untyped elements so that the tree operations
/// can walk them; the constructors of the derived classes take typed ones, so slot i always is what the class
/// says, or empty.
template <class T, std::size_t N> class ElementWithChildren : public Element<T> {
public:
  using Children = std::array<std::unique_ptr<ElementAbstract>, N>;

  ~ElementWithChildren() override {
    for (std::unique_ptr<ElementAbstract> &child : m_children) {
      destroyTree(std::move(child));
    }
  }

  bool isConstant() const override { return m_constant; }
  void validate(const VariableCollectionAbstract &collection) const override {
    validateTree(*this, collection);
  }
  bool equals(const ElementAbstract &other) const override { return equalTrees(*this, other); }
  T evaluate(const VariableCollectionAbstract &collection) const override {
    return evaluateTree<T>(*this, collection);
  }
  std::unique_ptr<Element<T>> clone() const override { return elementAs<T>(cloneTree(*this)); }

protected:
  /// `constant` is the answer of isConstant(): kept, because asking the children each time would make the
  /// building of a long chain quadratic.
  ElementWithChildren(const ElementShape &shape, Children &&children, bool constant)
      : Element<T>(shape), m_children(std::move(children)), m_constant(constant) {}

  const ElementAbstract *child(std::size_t index) const { return m_children[index].get(); }

  static std::unique_ptr<ElementAbstract> *childrenOfNode(ElementAbstract &node) {
    return static_cast<ElementWithChildren &>(node).m_children.data();
  }

private:
  Children m_children;
  bool m_constant;
};

} // namespace ExpressionBuilder
