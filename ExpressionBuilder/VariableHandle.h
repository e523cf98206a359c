#pragma once

#include <cstddef>
#include <cstdint>

namespace ExpressionBuilder {

/// Stands for one variable of type T of one `SimpleVariableCollection`, so that its value can be set without
/// looking its name up. Copyable and small. It is refused by every other collection, copies of its own
/// included, and by its own once that was cleared, assigned to or moved from; declaring further variables does
/// not harm it.
template <class T> class VariableHandle {
public:
  /// Stands for nothing; every collection refuses it.
  VariableHandle() = default;

private:
  friend class SimpleVariableCollection;

  VariableHandle(std::uint64_t stamp, std::size_t slot, T *value) noexcept
      : m_stamp(stamp), m_value(value), m_slot(static_cast<std::uint32_t>(slot)) {}

  /// Of the collection when it gave the handle; while that still is the collection's stamp, the variable's
  /// value stands at m_value. 0 is no collection's stamp.
  std::uint64_t m_stamp = 0;
  T *m_value = nullptr;
  std::uint32_t m_slot = 0;
};

} // namespace ExpressionBuilder
