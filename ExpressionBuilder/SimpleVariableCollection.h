#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

/// The guarded look-up. A name is in progress from the beginning to the end of its look-up, and so while its
/// definition is validated or evaluated; a second look-up of it on the same thread meanwhile is a circle.
/// Look-ups of other threads are none of its business, so threads may evaluate expressions that share one
/// collection at once. The mutex guards the set and the hook below, not the evaluation.
class SimpleVariableCollectionBase : public VariableCollectionAbstract {
public:
  ~SimpleVariableCollectionBase() override;

  /// \throws CircularDependency  the name is in progress on this thread
  /// \throws MissingVariable     there is no such variable
  const ElementAbstract *beginLookup(const std::string &name) const override;
  void endLookup(const std::string &name) const noexcept override;

protected:
  SimpleVariableCollectionBase();
  /// Look-ups in progress are not copied.
  SimpleVariableCollectionBase(const SimpleVariableCollectionBase &other);
  SimpleVariableCollectionBase &operator=(const SimpleVariableCollectionBase &other);

  /// The definition or null. Called with the mutex held and the name in progress; may look other names up.
  virtual const ElementAbstract *findDefinition(const std::string &name) const = 0;

private:
  mutable std::recursive_mutex m_mutex;
  mutable std::set<std::pair<std::thread::id, std::string_view>> m_inProgress;
};

/// Definitions by name, in the order of the names' bytes. Names may hold any bytes and may be empty.
///
/// Declaring, replacing and clearing while another thread evaluates against the collection is not protected;
/// the caller must order it.
class SimpleVariableCollection : public SimpleVariableCollectionBase {
public:
  SimpleVariableCollection();
  /// Clones every definition.
  SimpleVariableCollection(const SimpleVariableCollection &other);
  SimpleVariableCollection(SimpleVariableCollection &&other) noexcept;
  SimpleVariableCollection &operator=(const SimpleVariableCollection &other);
  SimpleVariableCollection &operator=(SimpleVariableCollection &&other) noexcept;
  ~SimpleVariableCollection() override;

  /// Adds a variable. The first declaration of a name stays: a second one changes nothing and gives false,
  /// and its definition is released.
  /// \throws std::runtime_error  "Invalid Type" when there is no definition; nothing has changed
  bool declare(const std::string &name, std::unique_ptr<ElementAbstract> definition);

  /// Gives a declared variable another definition of the same type and releases the old one. Pointers to the
  /// old definition become invalid.
  /// \throws std::out_of_range   "Variable does not exist"; nothing has changed
  /// \throws std::runtime_error  "Invalid Type" when the new definition's type code differs from the old
  ///                             one's or there is no new definition; the old one stays
  void replace(const std::string &name, std::unique_ptr<ElementAbstract> definition);

  /// The definition, which stays the collection's own until it is replaced or cleared; null when the name is
  /// not declared. Its `type()` is the variable's type. Not guarded, never throws.
  const ElementAbstract *find(const std::string &name) const;
  bool contains(const std::string &name) const;

  std::size_t size() const noexcept;
  bool empty() const noexcept;
  /// All names, in the order of their bytes.
  std::vector<std::string> names() const;

  /// Removes every variable.
  void clear() noexcept;

protected:
  const ElementAbstract *findDefinition(const std::string &name) const override;

private:
  std::map<std::string, std::unique_ptr<ElementAbstract>> m_definitions;
};

} // namespace ExpressionBuilder
