#pragma once

#include "ExpressionBuilder/Element.h"

#include <memory>
#include <string>

namespace ExpressionBuilder {

/// The operations of the nodes, done over a whole tree with a stack on the heap. Time and memory are linear
/// in the number of nodes, apart from definitions of variables, each of which is visited once. The virtual
/// operations of the node classes forward to these.

/// Value of the tree under `root`, which must be an `Element<T>`; errors as `Element<T>::evaluate`.
template <class T> T evaluateTree(const ElementAbstract &root, const VariableCollectionAbstract &collection);

extern template double evaluateTree<double>(const ElementAbstract &, const VariableCollectionAbstract &);
extern template int evaluateTree<int>(const ElementAbstract &, const VariableCollectionAbstract &);
extern template bool evaluateTree<bool>(const ElementAbstract &, const VariableCollectionAbstract &);
extern template std::string evaluateTree<std::string>(const ElementAbstract &,
                                                      const VariableCollectionAbstract &);
extern template long long evaluateTree<long long>(const ElementAbstract &,
                                                  const VariableCollectionAbstract &);

/// As `ElementAbstract::validate`.
void validateTree(const ElementAbstract &root, const VariableCollectionAbstract &collection);

/// As `ElementAbstract::equals`.
bool equalTrees(const ElementAbstract &first, const ElementAbstract &second);

/// A deep copy.
std::unique_ptr<ElementAbstract> cloneTree(const ElementAbstract &root);

/// Releases the tree without allocating; an empty pointer is fine.
void destroyTree(std::unique_ptr<ElementAbstract> root) noexcept;

} // namespace ExpressionBuilder
