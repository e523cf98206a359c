#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ExpressionBuilder {

/// The names of a collection's variables, each with its number, counted from 0 in the order of declaration.
/// Collections that were copied from one another share one object until one of them declares another name.
class VariableNames {
public:
  VariableNames();
  VariableNames(const VariableNames &other);
  VariableNames &operator=(const VariableNames &) = delete;
  ~VariableNames();

  /// The new name's number; nothing when the name is known.
  std::optional<std::size_t> add(std::string_view name);
  std::optional<std::size_t> find(std::string_view name) const;
  const std::string &at(std::size_t number) const { return m_names[number]; }
  /// As `find`, quickly when it is the name with the guessed number.
  std::optional<std::size_t> find(std::string_view name, std::size_t guess) const;
  std::size_t size() const noexcept { return m_names.size(); }
  /// In the order of their bytes.
  std::vector<std::string> sorted() const;

private:
  /// One place of the table; free while there is no name.
  struct Entry {
    const std::string *name = nullptr;
    std::uint64_t hash = 0;
    std::size_t number = 0;
  };

  const Entry *findEntry(std::string_view name, std::uint64_t hash) const noexcept;
  void enter(const Entry &entry) noexcept;
  void grow();

  /// Its elements never move.
  std::deque<std::string> m_names;
  /// Open addressing: an entry stands at its hash modulo the size, which is a power of two, or at the next
  /// free place. Twice as fast here as the standard library's table, which divides by a prime and keeps a
  /// node for every name; replacing values by name is what a study does for every row.
  std::vector<Entry> m_table;
  /// By number.
  std::vector<const std::string *> m_byNumber;
};

} // namespace ExpressionBuilder
