#pragma once

#include "ExpressionBuilder/Element.h"

namespace ExpressionBuilder {

class SimpleVariableCollection;

/// A node that holds one value of T.
template <class T> class ElementConstant : public Element<T> {
public:
  explicit ElementConstant(T value);

  const T &value() const noexcept { return m_value; }

  ElementKind kind() const override;
  bool isConstant() const override;
  void validate(const VariableCollectionAbstract &collection) const override;
  bool equals(const ElementAbstract &other) const override;
  T evaluate(const VariableCollectionAbstract &collection) const override;
  std::unique_ptr<Element<T>> clone() const override;

private:
  /// The collection gives its own constants another value instead of making new ones; every other node never
  /// changes.
  friend class SimpleVariableCollection;

  void setValue(const T &value) { m_value = value; }
  T *place() noexcept { return &m_value; }

  T m_value;
};

extern template class ElementConstant<double>;
extern template class ElementConstant<int>;
extern template class ElementConstant<bool>;
extern template class ElementConstant<std::string>;
extern template class ElementConstant<long long>;

} // namespace ExpressionBuilder
