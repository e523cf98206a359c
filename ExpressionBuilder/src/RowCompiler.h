#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/SimpleVariableCollection.h"
#include "ExpressionBuilder/src/RowProgram.h"

#include <optional>

namespace ExpressionBuilder {

/// Lowers the tree to a program over the cells of the collection. The program addresses the constants of the
/// tree and the cells, so the tree must outlive it and the collection's `layout()` must stay as it is.
///
/// Nothing when the tree cannot be lowered: a text, a function or node class that is not this library's, a
/// variable that is missing, of another type or not plain, a missing child, a constant condition that cannot
/// be computed. A tree that can be lowered is valid against the collection; its program gives the value of the
/// evaluation of the tree or throws when that does - though not always the same exception, because operands
/// are computed in another order.
std::optional<RowProgram> compileRow(const ElementAbstract &root, const SimpleVariableCollection &variables);

} // namespace ExpressionBuilder
