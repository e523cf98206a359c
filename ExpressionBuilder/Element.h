#pragma once

#include "ExpressionBuilder/ElementAbstract.h"

#include <memory>
#include <string>

namespace ExpressionBuilder {

/// A node with a value of type T: `double`, `int`, `bool`, `std::string` or `long long`.
template <class T> class Element : public ElementAbstract {
public:
  ValueType type() const override;
  std::unique_ptr<ElementAbstract> cloneAbstract() const final;

  /// Computes the value; variables are looked up in the collection. The last argument of a node is computed
  /// first, "&&" and "||" compute both operands, and a conditional computes the selected branch only. A
  /// variable's definition is computed at most once per call. Nothing is kept between calls.
  /// \throws MissingVariable      a name is not in the collection
  /// \throws CircularDependency   a definition leads back to a variable that is being computed
  /// \throws std::runtime_error   "Variable is of wrong type" when the definition has another type than the
  ///                              node, "No Element in container" when a child is missing, "Integer division
  ///                              by zero" and "Integer overflow" from integer operators
  virtual T evaluate(const VariableCollectionAbstract &collection) const = 0;

  /// A deep copy of the node and its whole subtree.
  virtual std::unique_ptr<Element<T>> clone() const = 0;

protected:
  /// For node classes outside this library: the tree operations treat the node as a leaf.
  Element() noexcept;
  explicit Element(const ElementShape &shape) noexcept : ElementAbstract(shape) {}
};

extern template class Element<double>;
extern template class Element<int>;
extern template class Element<bool>;
extern template class Element<std::string>;
extern template class Element<long long>;

/// The element as what its reported type says.
/// \throws std::logic_error "Invalid Cast" when there is no element, when it does not report T, or when it is
///                          no `Element<T>` in spite of its report
template <class T> std::unique_ptr<Element<T>> elementAs(std::unique_ptr<ElementAbstract> element);

extern template std::unique_ptr<Element<double>> elementAs<double>(std::unique_ptr<ElementAbstract>);
extern template std::unique_ptr<Element<int>> elementAs<int>(std::unique_ptr<ElementAbstract>);
extern template std::unique_ptr<Element<bool>> elementAs<bool>(std::unique_ptr<ElementAbstract>);
extern template std::unique_ptr<Element<std::string>>
    elementAs<std::string>(std::unique_ptr<ElementAbstract>);
extern template std::unique_ptr<Element<long long>> elementAs<long long>(std::unique_ptr<ElementAbstract>);

} // namespace ExpressionBuilder
