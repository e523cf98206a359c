#include "ExpressionBuilder/SimpleVariableCollection.h"

#include "ExpressionBuilder/Exceptions.h"

#include <stdexcept>

namespace ExpressionBuilder {

SimpleVariableCollectionBase::SimpleVariableCollectionBase() = default;

SimpleVariableCollectionBase::SimpleVariableCollectionBase(const SimpleVariableCollectionBase &other)
    : VariableCollectionAbstract(other) {}

SimpleVariableCollectionBase &
SimpleVariableCollectionBase::operator=(const SimpleVariableCollectionBase & /*other*/) {
  return *this;
}

SimpleVariableCollectionBase::~SimpleVariableCollectionBase() = default;

const ElementAbstract *SimpleVariableCollectionBase::beginLookup(const std::string &name) const {
  const std::lock_guard<std::recursive_mutex> lock(m_mutex);
  const auto [entry, isNew] = m_inProgress.emplace(std::this_thread::get_id(), name);
  if (!isNew) {
    throw CircularDependency(name);
  }
  const ElementAbstract *definition = nullptr;
  try {
    definition = findDefinition(name);
  } catch (...) {
    m_inProgress.erase(entry);
    throw;
  }
  if (definition == nullptr) {
    m_inProgress.erase(entry);
    throw MissingVariable(name);
  }
  return definition;
}

void SimpleVariableCollectionBase::endLookup(const std::string &name) const noexcept {
  const std::lock_guard<std::recursive_mutex> lock(m_mutex);
  m_inProgress.erase({std::this_thread::get_id(), name});
}

SimpleVariableCollection::SimpleVariableCollection() = default;

SimpleVariableCollection::SimpleVariableCollection(const SimpleVariableCollection &other)
    : SimpleVariableCollectionBase(other) {
  for (const auto &[name, definition] : other.m_definitions) {
    m_definitions.emplace_hint(m_definitions.end(), name, definition->cloneAbstract());
  }
}

SimpleVariableCollection::SimpleVariableCollection(SimpleVariableCollection &&other) noexcept
    : m_definitions(std::move(other.m_definitions)) {
  other.m_definitions.clear();
}

SimpleVariableCollection &SimpleVariableCollection::operator=(const SimpleVariableCollection &other) {
  return *this = SimpleVariableCollection(other);
}

SimpleVariableCollection &SimpleVariableCollection::operator=(SimpleVariableCollection &&other) noexcept {
  m_definitions.swap(other.m_definitions);
  return *this;
}

SimpleVariableCollection::~SimpleVariableCollection() = default;

bool SimpleVariableCollection::declare(const std::string &name, std::unique_ptr<ElementAbstract> definition) {
  if (definition == nullptr) {
    throw std::runtime_error("Invalid Type");
  }
  return m_definitions.try_emplace(name, std::move(definition)).second;
}

void SimpleVariableCollection::replace(const std::string &name, std::unique_ptr<ElementAbstract> definition) {
  const auto entry = m_definitions.find(name);
  if (entry == m_definitions.end()) {
    throw std::out_of_range("Variable does not exist");
  }
  if (definition == nullptr || definition->type() != entry->second->type()) {
    throw std::runtime_error("Invalid Type");
  }
  entry->second = std::move(definition);
}

const ElementAbstract *SimpleVariableCollection::find(const std::string &name) const {
  const auto entry = m_definitions.find(name);
  return entry == m_definitions.end() ? nullptr : entry->second.get();
}

bool SimpleVariableCollection::contains(const std::string &name) const {
  return find(name) != nullptr;
}

std::size_t SimpleVariableCollection::size() const noexcept {
  return m_definitions.size();
}

bool SimpleVariableCollection::empty() const noexcept {
  return m_definitions.empty();
}

std::vector<std::string> SimpleVariableCollection::names() const {
  std::vector<std::string> names;
  names.reserve(m_definitions.size());
  for (const auto &entry : m_definitions) {
    names.push_back(entry.first);
  }
  return names;
}

void SimpleVariableCollection::clear() noexcept {
  m_definitions.clear();
}

const ElementAbstract *SimpleVariableCollection::findDefinition(const std::string &name) const {
  return find(name);
}

} // namespace ExpressionBuilder
