#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

namespace LanguageOracle {

/// Choices that depend on the seed alone: the engine is the same everywhere, the distributions of the
/// standard library are not.
class RandomChoice {
public:
  explicit RandomChoice(std::uint64_t seed) : m_engine(seed) {}

  /// 0..count-1; the small advantage of the lower numbers does not matter here.
  std::size_t below(std::size_t count) { return static_cast<std::size_t>(m_engine() % count); }
  bool chance(std::size_t percent) { return below(100) < percent; }
  int between(int first, int last) {
    return first + static_cast<int>(below(static_cast<std::size_t>(last - first) + 1));
  }
  template <class List> const typename List::value_type &of(const List &list) {
    return list[below(list.size())];
  }

private:
  std::mt19937_64 m_engine;
};

} // namespace LanguageOracle
