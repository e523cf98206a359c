#pragma once

#include "ExpressionBuilder/Element.h"

namespace ExpressionBuilder {

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
  T m_value;
};

extern template class ElementConstant<double>;
extern template class ElementConstant<int>;
extern template class ElementConstant<bool>;
extern template class ElementConstant<std::string>;
extern template class ElementConstant<long long>;

} // namespace ExpressionBuilder
