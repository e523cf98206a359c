#include "ExpressionBuilder/EmptyVariableCollection.h"

namespace ExpressionBuilder {

EmptyVariableCollection::~EmptyVariableCollection() = default;

const ElementAbstract *EmptyVariableCollection::beginLookup(const std::string & /*name*/) const {
  return nullptr;
}

const EmptyVariableCollection &EmptyVariableCollection::instance() {
  static const EmptyVariableCollection empty;
  return empty;
}

} // namespace ExpressionBuilder
