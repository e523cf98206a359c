#include "ExpressionBuilder/src/VariableNames.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace ExpressionBuilder {

namespace {

template <class Part> std::uint64_t load(const char *bytes) noexcept {
  Part part = 0;
  std::memcpy(&part, bytes, sizeof part);
  return part;
}

/// All bytes of a text of fewer than eight; those of four and more may overlap.
std::uint64_t loadShort(const char *bytes, std::size_t size) noexcept {
  constexpr unsigned kHalf = 32;
  if (size >= sizeof(std::uint32_t)) {
    return load<std::uint32_t>(bytes) << kHalf | load<std::uint32_t>(bytes + size - sizeof(std::uint32_t));
  }
  std::uint64_t part = 0;
  for (std::size_t i = 0; i < size; ++i) {
    part = part << 8U | static_cast<unsigned char>(bytes[i]);
  }
  return part;
}

/// Eight bytes at a time: multiplication spreads them upwards, the shift brings the upper bits down again.
std::uint64_t hashOf(std::string_view name) noexcept {
  constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15U;
  constexpr unsigned kHalf = 32;
  std::uint64_t hash = name.size() * kOdd;
  const auto mix = [&hash](std::uint64_t part) {
    hash = (hash ^ part) * kOdd;
    hash ^= hash >> kHalf;
  };
  const char *bytes = name.data();
  std::size_t left = name.size();
  for (; left >= sizeof(std::uint64_t); left -= sizeof(std::uint64_t)) {
    mix(load<std::uint64_t>(bytes));
    bytes += sizeof(std::uint64_t);
  }
  mix(loadShort(bytes, left));
  return hash;
}

/// Names are too short for a call of memcmp to pay.
bool isSame(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) {
    return false;
  }
  std::size_t i = 0;
  for (; a.size() - i >= sizeof(std::uint64_t); i += sizeof(std::uint64_t)) {
    if (load<std::uint64_t>(a.data() + i) != load<std::uint64_t>(b.data() + i)) {
      return false;
    }
  }
  return loadShort(a.data() + i, a.size() - i) == loadShort(b.data() + i, a.size() - i);
}

} // namespace

VariableNames::VariableNames() = default;

VariableNames::VariableNames(const VariableNames &other) {
  for (const std::string &name : other.m_names) {
    add(name);
  }
}

VariableNames::~VariableNames() = default;

std::optional<std::size_t> VariableNames::add(std::string_view name) {
  const std::uint64_t hash = hashOf(name);
  if (findEntry(name, hash) != nullptr) {
    return std::nullopt;
  }
  // At most half of the table is taken, so that a search soon meets a free place.
  if (2 * (m_names.size() + 1) > m_table.size()) {
    grow();
  }
  const std::size_t number = m_names.size();
  m_byNumber.reserve(m_table.size());
  m_names.emplace_back(name);
  m_byNumber.push_back(&m_names.back());
  enter({&m_names.back(), hash, number});
  return number;
}

std::optional<std::size_t> VariableNames::find(std::string_view name) const {
  const Entry *const entry = findEntry(name, hashOf(name));
  return entry == nullptr ? std::nullopt : std::optional<std::size_t>(entry->number);
}

std::optional<std::size_t> VariableNames::find(std::string_view name, std::size_t guess) const {
  if (guess < m_byNumber.size() && isSame(*m_byNumber[guess], name)) {
    return guess;
  }
  return find(name);
}

const VariableNames::Entry *VariableNames::findEntry(std::string_view name,
                                                     std::uint64_t hash) const noexcept {
  if (m_table.empty()) {
    return nullptr;
  }
  const std::size_t mask = m_table.size() - 1;
  for (std::size_t i = static_cast<std::size_t>(hash) & mask; m_table[i].name != nullptr;
       i = (i + 1) & mask) {
    if (m_table[i].hash == hash && isSame(*m_table[i].name, name)) {
      return &m_table[i];
    }
  }
  return nullptr;
}

void VariableNames::enter(const Entry &entry) noexcept {
  const std::size_t mask = m_table.size() - 1;
  std::size_t i = static_cast<std::size_t>(entry.hash) & mask;
  while (m_table[i].name != nullptr) {
    i = (i + 1) & mask;
  }
  m_table[i] = entry;
}

void VariableNames::grow() {
  constexpr std::size_t kFirstSize = 16;
  std::vector<Entry> old(m_table.empty() ? kFirstSize : 2 * m_table.size());
  old.swap(m_table);
  for (const Entry &entry : old) {
    if (entry.name != nullptr) {
      enter(entry);
    }
  }
}

std::vector<std::string> VariableNames::sorted() const {
  std::vector<std::string> names(m_names.begin(), m_names.end());
  std::sort(names.begin(), names.end());
  return names;
}

} // namespace ExpressionBuilder
