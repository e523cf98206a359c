#pragma once

#include "ExpressionBuilder/Element.h"

#include <string>

namespace ExpressionBuilder {

/// A node that stands for the variable of a name. Its value is the value of the definition that the
/// collection holds under that name at the moment of the evaluation.
template <class T> class ElementVariable : public Element<T> {
public:
  explicit ElementVariable(std::string name);

  const std::string &name() const noexcept { return m_name; }

  ElementKind kind() const override;
  bool isConstant() const override;
  void validate(const VariableCollectionAbstract &collection) const override;
  bool equals(const ElementAbstract &other) const override;
  T evaluate(const VariableCollectionAbstract &collection) const override;
  std::unique_ptr<Element<T>> clone() const override;

private:
  std::string m_name;
};

extern template class ElementVariable<double>;
extern template class ElementVariable<int>;
extern template class ElementVariable<bool>;
extern template class ElementVariable<std::string>;
extern template class ElementVariable<long long>;

} // namespace ExpressionBuilder
