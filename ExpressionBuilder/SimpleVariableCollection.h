#pragma once

#include "ExpressionBuilder/ElementAbstract.h"
#include "ExpressionBuilder/VariableCollectionAbstract.h"
#include "ExpressionBuilder/VariableHandle.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

class VariableNames;

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

/// Definitions by name. Names may hold any bytes and may be empty.
///
/// Declaring, replacing, setting and clearing while another thread evaluates against the collection is not
/// protected; the caller must order it.
class SimpleVariableCollection : public SimpleVariableCollectionBase {
public:
  SimpleVariableCollection();
  /// Clones every definition.
  SimpleVariableCollection(const SimpleVariableCollection &other);
  SimpleVariableCollection(SimpleVariableCollection &&other) noexcept;
  SimpleVariableCollection &operator=(const SimpleVariableCollection &other);
  SimpleVariableCollection &operator=(SimpleVariableCollection &&other) noexcept;
  ~SimpleVariableCollection() override;

  const ElementAbstract *beginLookup(const std::string &name) const final;
  void endLookup(const std::string &name) const noexcept final;

  /// Adds a variable. The first declaration of a name stays: a second one changes nothing and gives false,
  /// and its definition is released.
  /// \throws std::runtime_error  "Invalid Type" when there is no definition; nothing has changed
  bool declare(std::string_view name, std::unique_ptr<ElementAbstract> definition);

  /// Gives a declared variable another definition of the same type. Pointers to the old definition become
  /// invalid. (Of two constants the old one may take the new one's value and stay.)
  /// \throws std::out_of_range   "Variable does not exist"; nothing has changed
  /// \throws std::runtime_error  "Invalid Type" when the new definition's type code differs from the old
  ///                             one's or there is no new definition; the old one stays
  void replace(std::string_view name, std::unique_ptr<ElementAbstract> definition);

  /// A handle for `set`.
  /// \throws std::out_of_range   "Variable does not exist"
  /// \throws std::runtime_error  "Invalid Type" when the variable is not of type T
  template <class T> VariableHandle<T> handle(std::string_view name) const;

  /// As `replace` with a new constant, without looking the name up and without allocating.
  /// \throws std::out_of_range   "Variable does not exist" when the handle is not this collection's; nothing
  ///                             has changed
  template <class T> void set(const VariableHandle<T> &variable, T value) {
    if (variable.m_stamp == m_stamp && variable.m_value != nullptr) {
      *variable.m_value = std::move(value);
    } else {
      setDefinition(variable.m_stamp, variable.m_slot, std::move(value));
    }
  }

  /// The definition, which stays the collection's own until it is replaced, set or cleared; null when the name
  /// is not declared. Its `type()` is the variable's type. Not guarded.
  const ElementAbstract *find(std::string_view name) const;
  bool contains(std::string_view name) const;

  std::size_t size() const noexcept;
  bool empty() const noexcept;
  /// All names, in the order of their bytes.
  std::vector<std::string> names() const;

  /// Removes every variable.
  void clear() noexcept;

  /// \name For the evaluation of expressions
  /// \{
  /// A number that changes whenever a variable comes or goes, and whenever one becomes, or ceases to be, plain:
  /// a variable is plain while its definition is exactly an `ElementConstant`.
  std::uint64_t layout() const noexcept { return m_layout; }
  /// Where the value of a plain variable of this type stands, a `const T *`, for as long as `layout()` is the
  /// same; null for any other variable and when there is none.
  const void *plainValue(std::string_view name, ValueType type) const;
  /// The same for a handle.
  /// \throws std::out_of_range   "Variable does not exist" when the handle is not this collection's
  template <class T> const T *plainValue(const VariableHandle<T> &variable) const {
    requireOwn(variable.m_stamp);
    return static_cast<const T *>(plainValueOf(variable.m_slot));
  }
  /// In a collection that was copied from `original` and not changed since: the handle of the variable that
  /// the handle of the original stands for.
  /// \throws std::out_of_range   "Variable does not exist" when the handle is not the original's
  template <class T>
  VariableHandle<T> handleInCopy(const SimpleVariableCollection &original,
                                 const VariableHandle<T> &variable) const {
    original.requireOwn(variable.m_stamp);
    return handleOf<T>(variable.m_slot);
  }
  /// \}

private:
  struct Slot {
    std::unique_ptr<ElementAbstract> definition;
    ValueType type;
    bool isPlain;
  };

  const ElementAbstract *findDefinition(const std::string &name) const final;

  const Slot *findSlot(std::string_view name) const;
  template <class T> VariableHandle<T> handleOf(std::size_t slot) const;
  template <class T> void setDefinition(std::uint64_t stamp, std::size_t slot, T value);
  void replaceDefinition(Slot &slot, std::unique_ptr<ElementAbstract> definition);
  const void *plainValueOf(std::size_t slot) const;
  void requireOwn(std::uint64_t stamp) const;
  static std::uint64_t withoutPlaces(std::uint64_t stamp) noexcept;
  void forgetPlaces() noexcept;
  void forgetHandles() noexcept;
  void swapContents(SimpleVariableCollection &other) noexcept;

  /// Null while nothing was ever declared.
  std::shared_ptr<VariableNames> m_names;
  /// Whether another collection may have the same names object; it then is not written any more.
  mutable std::atomic<bool> m_namesAreShared{false};
  std::vector<Slot> m_slots;
  /// Number of the variable that `replace` tries first: who replaces all values for each row of a matrix does
  /// it in one order.
  std::size_t m_likelyNext = 0;
  std::uint64_t m_layout = 1;
  /// The upper part is this collection's alone, as long as its handles are valid; the lower part counts how
  /// often values have moved.
  std::uint64_t m_stamp;
};

extern template VariableHandle<double> SimpleVariableCollection::handle<double>(std::string_view) const;
extern template VariableHandle<int> SimpleVariableCollection::handle<int>(std::string_view) const;
extern template VariableHandle<bool> SimpleVariableCollection::handle<bool>(std::string_view) const;
extern template VariableHandle<std::string>
    SimpleVariableCollection::handle<std::string>(std::string_view) const;
extern template VariableHandle<long long> SimpleVariableCollection::handle<long long>(std::string_view) const;

extern template VariableHandle<double> SimpleVariableCollection::handleOf<double>(std::size_t) const;
extern template void SimpleVariableCollection::setDefinition<double>(std::uint64_t, std::size_t, double);
extern template VariableHandle<int> SimpleVariableCollection::handleOf<int>(std::size_t) const;
extern template void SimpleVariableCollection::setDefinition<int>(std::uint64_t, std::size_t, int);
extern template VariableHandle<bool> SimpleVariableCollection::handleOf<bool>(std::size_t) const;
extern template void SimpleVariableCollection::setDefinition<bool>(std::uint64_t, std::size_t, bool);
extern template VariableHandle<std::string>
    SimpleVariableCollection::handleOf<std::string>(std::size_t) const;
extern template void SimpleVariableCollection::setDefinition<std::string>(std::uint64_t, std::size_t,
                                                                          std::string);
extern template VariableHandle<long long> SimpleVariableCollection::handleOf<long long>(std::size_t) const;
extern template void SimpleVariableCollection::setDefinition<long long>(std::uint64_t, std::size_t,
                                                                        long long);

} // namespace ExpressionBuilder
