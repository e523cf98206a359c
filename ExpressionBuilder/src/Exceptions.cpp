#include "ExpressionBuilder/Exceptions.h"

namespace ExpressionBuilder {

CircularDependency::CircularDependency(const std::string &name)
    : std::runtime_error("Circular Dependency"), m_name(name) {}

CircularDependency::~CircularDependency() = default;

const std::string &CircularDependency::name() const noexcept {
  return m_name;
}

MissingVariable::MissingVariable(const std::string &name)
    : std::runtime_error("Missing Variable"), m_name(name) {}

MissingVariable::~MissingVariable() = default;

const std::string &MissingVariable::name() const noexcept {
  return m_name;
}

ParserError::ParserError(const std::string &message, std::size_t offset)
    : std::runtime_error(message), m_offset(offset) {}

ParserError::~ParserError() = default;

std::size_t ParserError::offset() const noexcept {
  return m_offset;
}

} // namespace ExpressionBuilder
