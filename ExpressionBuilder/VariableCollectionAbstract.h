#pragma once

#include <string>

namespace ExpressionBuilder {

class ElementAbstract;

/// The variables as the elements see them: definitions under names. A definition is an element of any kind,
/// usually a constant; it is evaluated against the same collection and may refer to other variables.
///
/// A look-up has a beginning and an end. Between them the definition is validated or evaluated, so that a
/// collection can notice a definition that leads back to its own variable. Use `VariableLookup`.
class VariableCollectionAbstract {
public:
  virtual ~VariableCollectionAbstract();

  /// Begins a look-up. The string object must live until the look-up has ended.
  /// \return  the definition, which stays the collection's own; null, or MissingVariable thrown, when there
  ///          is none, and then no look-up is in progress
  /// \throws CircularDependency  a look-up of this name is in progress on the calling thread
  /// \throws MissingVariable     instead of returning null, as the collection likes
  virtual const ElementAbstract *beginLookup(const std::string &name) const = 0;

  /// Ends a look-up that gave a definition.
  virtual void endLookup(const std::string &name) const noexcept;

protected:
  VariableCollectionAbstract() = default;
  VariableCollectionAbstract(const VariableCollectionAbstract &) = default;
  VariableCollectionAbstract &operator=(const VariableCollectionAbstract &) = default;
};

/// One look-up, from construction to destruction.
class VariableLookup {
public:
  /// Collection and name must outlive the look-up. Throws what `beginLookup` throws.
  VariableLookup(const VariableCollectionAbstract &collection, const std::string &name);
  VariableLookup(const VariableCollectionAbstract &collection, std::string &&name) = delete;
  VariableLookup(VariableLookup &&other) noexcept;
  VariableLookup &operator=(VariableLookup &&) = delete;
  VariableLookup(const VariableLookup &) = delete;
  VariableLookup &operator=(const VariableLookup &) = delete;
  ~VariableLookup();

  /// Null when the collection has no such variable.
  const ElementAbstract *definition() const noexcept { return m_definition; }

private:
  const VariableCollectionAbstract *m_collection;
  const std::string *m_name;
  const ElementAbstract *m_definition;
};

} // namespace ExpressionBuilder
