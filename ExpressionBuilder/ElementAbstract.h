#pragma once

#include "ExpressionBuilder/ValueType.h"

#include <cstddef>
#include <memory>

namespace ExpressionBuilder {

struct ElementShape;
class VariableCollectionAbstract;

/// What `ElementAbstract::kind()` answers for the node classes of this library.
enum class ElementKind : int {
  Constant = 1,
  Function = 2, ///< operators, conversions and functions
  Variable = 3,
  Conditional = 4,
};

/// Root of all nodes of an expression tree. A node exclusively owns its children, is built whole and never
/// changes afterwards, so that any number of threads may read one tree.
///
/// No operation of this library descends into a tree by calling itself: trees millions of levels deep are
/// validated, compared, evaluated, copied and destroyed on a small stack. What an application derives from
/// `Element` is treated as a leaf and answers through its virtual operations.
class ElementAbstract {
public:
  /// Releases the node and its children.
  virtual ~ElementAbstract() = default;

  /// Code of the node's value type.
  virtual ValueType type() const = 0;

  virtual ElementKind kind() const = 0;

  /// The same as `Element<T>::clone()`, for a caller that does not know T.
  virtual std::unique_ptr<ElementAbstract> cloneAbstract() const = 0;

  /// True when the value can be known without variables. A variable never is constant; a function node is
  /// when all its children are; a conditional is when its condition and the branch that the condition
  /// selects are, and is not when the condition cannot be computed. Throws nothing.
  virtual bool isConstant() const = 0;

  /// Checks, without computing, that every variable the tree refers to exists in the collection with the
  /// right type, descending into the definitions of the variables. Of several faults the one is reported
  /// that evaluation would meet first: the last operand of a node is checked first.
  /// \throws MissingVariable      a name is not in the collection
  /// \throws CircularDependency   a definition leads back to a variable that is being validated
  /// \throws std::runtime_error   "Variable has invalid Return Type" when the definition has another type
  ///                              than the node, "No Element in container" when a child is missing; what
  ///                              the evaluation of a conditional's constant condition throws
  virtual void validate(const VariableCollectionAbstract &collection) const = 0;

  /// Structural equality: the same dynamic class and pairwise equal children; constants compare their
  /// values with == (so a NaN equals nothing), variables their names.
  virtual bool equals(const ElementAbstract &other) const = 0;

  ElementAbstract(const ElementAbstract &) = delete;
  ElementAbstract &operator=(const ElementAbstract &) = delete;

  /// Nodes have memory of their own, in which making and releasing many small objects is cheap.
  static void *operator new(std::size_t size);
  static void operator delete(void *memory) noexcept;

  /// How the tree operations see this node; of no use to applications.
  const ElementShape &shape() const noexcept { return *m_shape; }

protected:
  /// A node that is no `Element` of any type. Nothing can compute or convert it.
  ElementAbstract() noexcept;
  explicit ElementAbstract(const ElementShape &shape) noexcept : m_shape(&shape) {}

private:
  const ElementShape *m_shape;
};

} // namespace ExpressionBuilder
