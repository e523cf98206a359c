#pragma once

#include "ExpressionBuilder/VariableCollectionAbstract.h"

namespace ExpressionBuilder {

/// Holds nothing: every look-up finds nothing. Constant trees are evaluated against it.
class EmptyVariableCollection : public VariableCollectionAbstract {
public:
  EmptyVariableCollection() = default;
  ~EmptyVariableCollection() override;

  const ElementAbstract *beginLookup(const std::string &name) const override;

  /// The shared one.
  static const EmptyVariableCollection &instance();
};

} // namespace ExpressionBuilder
