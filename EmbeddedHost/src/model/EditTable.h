#pragma once

#include "EmbeddedHost/src/model/Value.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace EmbeddedHost {

struct Slot;

/// One recorded edit: the value that a version gives to a slot.
struct Edit {
  Slot *slot = nullptr;
  Value value;
};

/// The edits of one version, one per slot, found in constant time. Few edits are searched in place, more have an
/// index, so that many small versions stay small.
class EditTable {
public:
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  std::size_t size() const { return m_edits.size(); }
  const std::vector<Edit> &edits() const { return m_edits; }
  Edit &at(std::size_t position) { return m_edits[position]; }
  const Edit &at(std::size_t position) const { return m_edits[position]; }
  /// Position of the slot's edit, or kNone.
  std::size_t find(const Slot *slot) const;
  /// Appends the edit of a slot that has none yet.
  void append(Slot *slot, Value value);
  /// Takes over edits, one per slot, in no more room than they need, and leaves none in \p edits.
  void take(std::vector<Edit> &edits);
  void reserve(std::size_t count) { m_edits.reserve(count); }

private:
  // With the slot, so that a search need not look into the edits.
  struct Place {
    const Slot *slot = nullptr;
    std::size_t position = 0;
  };

  void rebuildIndex();
  void enter(std::size_t position);

  std::vector<Edit> m_edits;
  // Open addressing; a free place has no slot. A power of two, empty for few edits.
  std::vector<Place> m_index;
};

} // namespace EmbeddedHost
