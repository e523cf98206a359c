#pragma once

#include "ExpressionBuilder/Element.h"
#include "ExpressionBuilder/LoweredTree.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

/// The values of one variable in a number of rows, the first one first. They stay the caller's.
struct VariableColumn {
  VariableHandle<double> variable;
  const double *values = nullptr;
};

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

  /// `evaluate` for each of a number of rows: results[i] is what `evaluate()` would give after
  /// `variables().set(column.variable, column.values[i])` for all columns, bit for bit; of two columns for one
  /// variable the last one counts. Much faster, and the variables are left as they are.
  /// \param columns  values for some or all variables, `rows` each, with handles of `variables()`
  /// \param results  room for `rows` values, which must not overlap the columns
  /// \throws std::out_of_range  "Variable does not exist" when a handle is not the collection's; no result has
  ///                            been written
  /// \throws                    what `evaluate` throws for the first row for which it does; the results of the
  ///                            rows before it have been written, and nothing behind them
  /// Only for expressions over a `SimpleVariableCollection`; the others report std::logic_error "Invalid Cast".
  void evaluateRows(const std::vector<VariableColumn> &columns, std::size_t rows, T *results) const;

  /// The variables that the root is evaluated against.
  virtual VariableCollectionAbstract &variables() = 0;
  virtual const VariableCollectionAbstract &variables() const = 0;

  /// Null when the expression has no root. Stays the expression's own.
  const Element<T> *root() const noexcept;

protected:
  /// `variables` is what `variables()` will give when that is a `SimpleVariableCollection`, null otherwise.
  ExpressionBase(std::unique_ptr<Element<T>> root, const SimpleVariableCollection *variables) noexcept;
  ExpressionBase(const ExpressionBase &other, const SimpleVariableCollection *variables);
  ExpressionBase(const ExpressionBase &) = delete;
  ExpressionBase &operator=(const ExpressionBase &) = delete;

private:
  std::unique_ptr<Element<T>> m_root;
  bool evaluateBlocks(const std::vector<VariableColumn> &columns, std::size_t rows, T *results) const;

  const SimpleVariableCollection *m_variables;
  LoweredTree m_lowered;
};

/// An expression with a collection of variables of its own, embedded by value.
template <class T, class VariableCollection> class Expression : public ExpressionBase<T> {
public:
  /// Takes the root, which may be missing, and the variables.
  explicit Expression(std::unique_ptr<Element<T>> root, VariableCollection variables = VariableCollection())
      : ExpressionBase<T>(std::move(root), simple(m_variables)), m_variables(std::move(variables)) {}
  /// As clone().
  Expression(const Expression &other)
      : ExpressionBase<T>(other, simple(m_variables)), m_variables(other.m_variables) {}
  Expression &operator=(const Expression &) = delete;
  ~Expression() override = default;

  std::unique_ptr<ExpressionGenericAbstract<T>> clone() const override {
    return std::make_unique<Expression>(*this);
  }
  VariableCollection &variables() override { return m_variables; }
  const VariableCollection &variables() const override { return m_variables; }

private:
  /// Takes the address only; the collection need not be alive yet.
  static const SimpleVariableCollection *simple(const VariableCollection &variables) noexcept {
    if constexpr (std::is_same_v<VariableCollection, SimpleVariableCollection>) {
      return &variables;
    } else {
      return nullptr;
    }
  }

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
