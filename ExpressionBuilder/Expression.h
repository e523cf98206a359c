#pragma once

#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <memory>
#include <string>
#include <utility>

namespace ExpressionBuilder {

/// What can be asked of an expression without knowing the type of its value.
class ExpressionAbstract {
public:
  virtual ~ExpressionAbstract();

  /// True when there is a root and validating it against the expression's variables throws nothing.
  virtual bool isValid() const = 0;

  /// True when the root is itself a constant node; false without a root.
  virtual bool isConstantRoot() const = 0;

  /// The root's `isConstant()`; false without a root.
  virtual bool isConstant() const = 0;

protected:
  ExpressionAbstract() = default;
  ExpressionAbstract(const ExpressionAbstract &) = default;
  ExpressionAbstract &operator=(const ExpressionAbstract &) = default;
};

/// An expression with a value of type T.
template <class T> class ExpressionGenericAbstract : public ExpressionAbstract {
public:
  /// An independent copy: the root is cloned, the variables are copied.
  virtual std::unique_ptr<ExpressionGenericAbstract<T>> clone() const = 0;

  /// The value against the expression's variables.
  /// \throws std::runtime_error  "Invalid expression" when `isValid()` is false, whatever validation found;
  ///                             what `Element<T>::evaluate` throws
  virtual T evaluate() const = 0;
};

/// An expression with a root, which may be missing, and some collection of variables.
template <class T> class ExpressionBase : public ExpressionGenericAbstract<T> {
public:
  ~ExpressionBase() override;

  bool isValid() const override;
  bool isConstantRoot() const override;
  bool isConstant() const override;
  T evaluate() const override;

  /// The variables that the root is evaluated against.
  virtual VariableCollectionAbstract &variables() = 0;
  virtual const VariableCollectionAbstract &variables() const = 0;

  /// Null when the expression has no root. Stays the expression's own.
  const Element<T> *root() const noexcept;

protected:
  explicit ExpressionBase(std::unique_ptr<Element<T>> root) noexcept;
  ExpressionBase(const ExpressionBase &other);
  ExpressionBase &operator=(const ExpressionBase &) = delete;

private:
  std::unique_ptr<Element<T>> m_root;
};

/// An expression with a collection of variables of its own, embedded by value.
template <class T, class VariableCollection> class Expression : public ExpressionBase<T> {
public:
  /// Takes the root, which may be missing, and the variables.
  explicit Expression(std::unique_ptr<Element<T>> root, VariableCollection variables = VariableCollection())
      : ExpressionBase<T>(std::move(root)), m_variables(std::move(variables)) {}
  /// As clone().
  Expression(const Expression &) = default;
  Expression &operator=(const Expression &) = delete;
  ~Expression() override = default;

  std::unique_ptr<ExpressionGenericAbstract<T>> clone() const override {
    return std::make_unique<Expression>(*this);
  }
  VariableCollection &variables() override { return m_variables; }
  const VariableCollection &variables() const override { return m_variables; }

private:
  VariableCollection m_variables;
};

extern template class ExpressionBase<double>;
extern template class ExpressionBase<int>;
extern template class ExpressionBase<bool>;
extern template class ExpressionBase<std::string>;
extern template class ExpressionBase<long long>;

extern template class Expression<double, SimpleVariableCollection>;
extern template class Expression<int, SimpleVariableCollection>;
extern template class Expression<bool, SimpleVariableCollection>;
extern template class Expression<std::string, SimpleVariableCollection>;
extern template class Expression<long long, SimpleVariableCollection>;

} // namespace ExpressionBuilder
