#pragma once

#include "ExpressionBuilder/ElementWithChildren.h"

namespace ExpressionBuilder {

/// "condition ? true branch : false branch". Only the selected branch is ever computed. A node may be made
/// without some of its children; it can be copied and compared, and validating or computing it reports the
/// missing one as "No Element in container".
template <class T> class ElementConditional : public ElementWithChildren<T, 3> {
public:
  /// A constant condition is computed here, once, so that isConstant() need not; what it throws is kept for
  /// validation and evaluation.
  ElementConditional(std::unique_ptr<Element<bool>> condition, std::unique_ptr<Element<T>> trueBranch,
                     std::unique_ptr<Element<T>> falseBranch);

  /// Null when missing, as the branches.
  const Element<bool> *condition() const;
  const Element<T> *trueBranch() const;
  const Element<T> *falseBranch() const;

  ElementKind kind() const override;

private:
  using Base = ElementWithChildren<T, 3>;
  using Children = typename Base::Children;

  static Children pack(std::unique_ptr<Element<bool>> condition, std::unique_ptr<Element<T>> trueBranch,
                       std::unique_ptr<Element<T>> falseBranch);
  /// Slot of the branch that a constant condition selects; 0 when there is no such branch.
  static std::size_t selectBranch(const Children &children);
  static bool isBranchConstant(const Children &children, std::size_t selected);
  static std::unique_ptr<ElementAbstract> copyWithoutChildren(const ElementAbstract &node);
  static const ElementShape &conditionalShape() noexcept;

  explicit ElementConditional(Children &&children);
  ElementConditional(Children &&children, std::size_t selected);
  ElementConditional(bool constant, std::size_t selected);

  std::size_t m_selected;
};

extern template class ElementConditional<double>;
extern template class ElementConditional<int>;
extern template class ElementConditional<bool>;
extern template class ElementConditional<std::string>;
extern template class ElementConditional<long long>;

} // namespace ExpressionBuilder
