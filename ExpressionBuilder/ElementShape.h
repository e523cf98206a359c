#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/EvaluationStack.h"
#include "ExpressionBuilder/ScalarOperation.h"

#include <cstddef>
#include <memory>
#include <string>

namespace ExpressionBuilder {

/// What the tree operations must know of a node class; one constant object per class. It stands beside the
/// virtual operations of `ElementAbstract` because those answer for a whole tree, while the tree operations
/// go from node to node with a stack of their own and need the step for a single node.
struct ElementShape {
  enum class Form { Opaque, Constant, Variable, Functional, Conditional };

  Form form = Form::Opaque;
  /// The T of the `Element<T>` that the class really is; 0 when it is none.
  ValueType type = ValueType{};
  std::size_t arity = 0;
  /// First of `arity` slots, each of which may be empty.
  std::unique_ptr<ElementAbstract> *(*children)(ElementAbstract &node) = nullptr;
  /// Constant and opaque: pushes the value. Functional: pops the arguments, the first one on top, and pushes
  /// the result.
  void (*compute)(const ElementAbstract &node, const VariableCollectionAbstract &collection,
                  EvaluationStack &stack) = nullptr;
  /// The node without its children. Opaque: a full copy.
  std::unique_ptr<ElementAbstract> (*copyAlone)(const ElementAbstract &node) = nullptr;
  /// Whether two nodes of this class are equal apart from their children; null when they always are.
  bool (*sameAlone)(const ElementAbstract &first, const ElementAbstract &second) = nullptr;
  /// Variable: its name.
  const std::string &(*name)(const ElementAbstract &node) = nullptr;
  /// Conditional: the branch (1 or 2) that a constant condition selects, 0 when that is not known.
  std::size_t (*selectedBranch)(const ElementAbstract &node) = nullptr;
  /// Functional: what the node does, for the lowering.
  ScalarOperation operation = {};
  /// Constant: where the value stands, a `const T *`.
  const void *(*value)(const ElementAbstract &node) = nullptr;
};

/// The slots of a node whose shape has some; for reading.
inline const std::unique_ptr<ElementAbstract> *childrenOf(const ElementAbstract &node) {
  // The slots are part of the node; the cast only spares a second accessor in every shape.
  return node.shape().children(const_cast<ElementAbstract &>(node));
}

} // namespace ExpressionBuilder
