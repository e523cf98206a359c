#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace ExpressionBuilder {

/// The intermediate values of one evaluation. Every node knows the types of its operands, so a value is
/// stored without its type: what was pushed as T must be popped as T, in reverse order.
class EvaluationStack {
public:
  template <class T> void push(T value) {
    if constexpr (std::is_same_v<T, std::string>) {
      m_texts.push_back(std::move(value));
    } else {
      static_assert(sizeof(T) <= sizeof(std::uint64_t));
      std::uint64_t cell = 0;
      std::memcpy(&cell, &value, sizeof(T));
      m_cells.push_back(cell);
    }
  }

  template <class T> T pop() {
    if constexpr (std::is_same_v<T, std::string>) {
      std::string value = std::move(m_texts.back());
      m_texts.pop_back();
      return value;
    } else {
      T value;
      std::memcpy(&value, &m_cells.back(), sizeof(T));
      m_cells.pop_back();
      return value;
    }
  }

private:
  std::vector<std::uint64_t> m_cells;
  std::vector<std::string> m_texts;
};

} // namespace ExpressionBuilder
