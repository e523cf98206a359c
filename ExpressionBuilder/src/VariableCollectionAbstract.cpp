#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <utility>

namespace ExpressionBuilder {

VariableCollectionAbstract::~VariableCollectionAbstract() = default;

void VariableCollectionAbstract::endLookup(const std::string & /*name*/) const noexcept {}

VariableLookup::VariableLookup(const VariableCollectionAbstract &collection, const std::string &name)
    : m_collection(&collection), m_name(&name), m_definition(collection.beginLookup(name)) {}

VariableLookup::VariableLookup(VariableLookup &&other) noexcept
    : m_collection(other.m_collection), m_name(other.m_name),
      m_definition(std::exchange(other.m_definition, nullptr)) {}

VariableLookup::~VariableLookup() {
  if (m_definition != nullptr) {
    m_collection->endLookup(*m_name);
  }
}

} // namespace ExpressionBuilder
