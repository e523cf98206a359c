#include "ExpressionBuilder/Expression.h"

#include "ExpressionBuilder/src/BlockProgram.h"
#include "ExpressionBuilder/src/RowProgram.h"

#include <optional>
#include <stdexcept>
#include <type_traits>

namespace ExpressionBuilder {

ExpressionAbstract::~ExpressionAbstract() = default;

template <class T>
ExpressionBase<T>::ExpressionBase(std::unique_ptr<Element<T>> root,
                                  const SimpleVariableCollection *variables) noexcept
    : m_root(std::move(root)), m_variables(variables) {}

template <class T>
ExpressionBase<T>::ExpressionBase(const ExpressionBase &other, const SimpleVariableCollection *variables)
    : m_root(other.m_root == nullptr ? nullptr : other.m_root->clone()), m_variables(variables) {}

template <class T> ExpressionBase<T>::~ExpressionBase() = default;

namespace {

bool isValidTree(const ElementAbstract *root, const VariableCollectionAbstract &variables) {
  if (root == nullptr) {
    return false;
  }
  try {
    root->validate(variables);
    return true;
  } catch (...) {
    return false;
  }
}

} // namespace

template <class T> bool ExpressionBase<T>::isValid() const {
  return isValidTree(m_root.get(), this->variables());
}

template <class T> bool ExpressionBase<T>::isConstantRoot() const {
  return m_root != nullptr && m_root->kind() == ElementKind::Constant;
}

template <class T> bool ExpressionBase<T>::isConstant() const {
  return m_root != nullptr && m_root->isConstant();
}

namespace {

/// The value against the variables, by the program when there is one.
template <class T>
T evaluateOver(const Element<T> *root, const VariableCollectionAbstract &variables,
               const RowProgram *program) {
  if constexpr (ScalarCell::holds<T>()) {
    if (program != nullptr) {
      try {
        if constexpr (std::is_same_v<T, double>) {
          return program->runDouble();
        } else {
          return program->run(ValueTypeOf<T>::code).template get<T>();
        }
      } catch (const std::runtime_error &) {
        // Of several faults the evaluation of the tree finds the one that is to be reported.
      }
    }
  }
  if (!isValidTree(root, variables)) {
    throw std::runtime_error("Invalid expression");
  }
  return root->evaluate(variables);
}

} // namespace

template <class T> T ExpressionBase<T>::evaluate() const {
  if (m_variables == nullptr) {
    return evaluateOver(m_root.get(), this->variables(), nullptr);
  }
  return evaluateOver(m_root.get(), *m_variables,
                      m_root == nullptr ? nullptr : m_lowered.program(*m_root, *m_variables));
}

template <class T>
void ExpressionBase<T>::evaluateRows(const std::vector<VariableColumn> &columns, std::size_t rows,
                                     T *results) const {
  if (m_variables == nullptr) {
    throw std::logic_error("Invalid Cast");
  }
  if (evaluateBlocks(columns, rows, results)) {
    return;
  }
  SimpleVariableCollection variables(*m_variables);
  std::vector<VariableHandle<double>> handles;
  handles.reserve(columns.size());
  for (const VariableColumn &column : columns) {
    handles.push_back(variables.handleInCopy(*m_variables, column.variable));
  }
  const LoweredTree lowered;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      variables.set(handles[i], columns[i].values[row]);
    }
    results[row] = evaluateOver(m_root.get(), variables,
                                m_root == nullptr ? nullptr : lowered.program(*m_root, variables));
  }
}

/// False, with no result written, when the rows must be evaluated one by one.
template <class T>
bool ExpressionBase<T>::evaluateBlocks(const std::vector<VariableColumn> &columns, std::size_t rows,
                                       T *results) const {
  BlockProgram::Columns places;
  bool arePlain = true;
  for (const VariableColumn &column : columns) {
    const double *const place = m_variables->plainValue(column.variable);
    arePlain = arePlain && place != nullptr;
    places[place] = column.values;
  }
  // A few rows are done before a program for blocks has been made.
  constexpr std::size_t kFewRows = 4;
  if (!arePlain || m_root == nullptr || rows < kFewRows) {
    return false;
  }
  if constexpr (std::is_same_v<T, double>) {
    const std::optional<BlockProgram> program = BlockProgram::compile(*m_root, *m_variables, places);
    if (program) {
      program->run(rows, results);
    }
    return program.has_value();
  } else {
    return false;
  }
}

template <class T> const Element<T> *ExpressionBase<T>::root() const noexcept {
  return m_root.get();
}

template class ExpressionBase<double>;
template class ExpressionBase<int>;
template class ExpressionBase<bool>;
template class ExpressionBase<std::string>;
template class ExpressionBase<long long>;

template class Expression<double, SimpleVariableCollection>;
template class Expression<int, SimpleVariableCollection>;
template class Expression<bool, SimpleVariableCollection>;
template class Expression<std::string, SimpleVariableCollection>;
template class Expression<long long, SimpleVariableCollection>;

} // namespace ExpressionBuilder
