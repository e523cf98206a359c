#include "EmbeddedHost/src/model/EditTable.h"

#include <iterator>
#include <utility>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kSearchedInPlace = 12;

// Addresses differ in their middle bits; multiplication spreads them over the high ones.
std::size_t placeOf(const Slot *slot, std::size_t mask) {
  constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15ULL;
  const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(slot));
  return static_cast<std::size_t>((address * kSpread) >> 32U) & mask;
}

} // namespace

std::size_t EditTable::find(const Slot *slot) const {
  if (m_index.empty()) {
    for (std::size_t position = 0; position < m_edits.size(); ++position) {
      if (m_edits[position].slot == slot) {
        return position;
      }
    }
    return kNone;
  }
  const std::size_t mask = m_index.size() - 1;
  for (std::size_t place = placeOf(slot, mask); m_index[place].slot != nullptr; place = (place + 1) & mask) {
    if (m_index[place].slot == slot) {
      return m_index[place].position;
    }
  }
  return kNone;
}

void EditTable::append(Slot *slot, Value value) {
  m_edits.push_back({slot, std::move(value)});
  if (m_edits.size() <= kSearchedInPlace) {
    return;
  }
  if (m_edits.size() * 2 > m_index.size()) {
    rebuildIndex();
  } else {
    enter(m_edits.size() - 1);
  }
}

void EditTable::take(std::vector<Edit> &edits) {
  m_edits.assign(std::make_move_iterator(edits.begin()), std::make_move_iterator(edits.end()));
  edits.clear();
  m_index.clear();
  if (m_edits.size() > kSearchedInPlace) {
    rebuildIndex();
  }
}

void EditTable::rebuildIndex() {
  std::size_t size = 64;
  while (size < m_edits.size() * 3) {
    size *= 2;
  }
  m_index.assign(size, {});
  for (std::size_t position = 0; position < m_edits.size(); ++position) {
    enter(position);
  }
}

void EditTable::enter(std::size_t position) {
  const std::size_t mask = m_index.size() - 1;
  std::size_t place = placeOf(m_edits[position].slot, mask);
  while (m_index[place].slot != nullptr) {
    place = (place + 1) & mask;
  }
  m_index[place] = {m_edits[position].slot, position};
}

} // namespace EmbeddedHost
