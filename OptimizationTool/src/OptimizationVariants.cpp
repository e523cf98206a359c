#include "OptimizationTool/OptimizationVariants.h"

#include "HostModel/Attribute.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace OptimizationTool {

namespace {

using Rows = OptimizationVariants::Rows;

Rows::difference_type offset(std::size_t index) {
  return static_cast<Rows::difference_type>(index);
}

Rows::const_iterator findRow(const Rows &rows, std::string_view name) {
  return std::find_if(rows.begin(), rows.end(), [name](const std::unique_ptr<OptimizationVariant> &row) {
    return row != nullptr && row->getName() == name;
  });
}

OptimizationVariant *rowNamed(const Rows &rows, std::string_view name) {
  const auto found = findRow(rows, name);
  return found == rows.end() ? nullptr : found->get();
}

OptimizationVariant *rowNamed(const Rows &rows, const char *name) {
  return name == nullptr ? nullptr : rowNamed(rows, std::string_view(name));
}

OptimizationVariant *rowAt(const Rows &rows, std::size_t index) {
  return index < rows.size() ? rows[index].get() : nullptr;
}

// Asks for memory that is going to be read; any address will do.
void fetchSoon([[maybe_unused]] const void *memory) {
#if defined(__GNUC__)
  __builtin_prefetch(memory);
#endif
}

} // namespace

OptimizationVariants::OptimizationVariants() = default;
OptimizationVariants::OptimizationVariants(OptimizationVariants &&other) noexcept = default;
OptimizationVariants &OptimizationVariants::operator=(OptimizationVariants &&other) noexcept = default;
OptimizationVariants::~OptimizationVariants() = default;

OptimizationVariant *OptimizationVariants::get(std::size_t index) {
  return rowAt(m_rows, index);
}

const OptimizationVariant *OptimizationVariants::get(std::size_t index) const {
  return rowAt(m_rows, index);
}

OptimizationVariant *OptimizationVariants::get(const char *name) {
  return rowNamed(m_rows, name);
}

const OptimizationVariant *OptimizationVariants::get(const char *name) const {
  return rowNamed(m_rows, name);
}

OptimizationVariant *OptimizationVariants::get(const std::string &name) {
  return rowNamed(m_rows, std::string_view(name));
}

const OptimizationVariant *OptimizationVariants::get(const std::string &name) const {
  return rowNamed(m_rows, std::string_view(name));
}

std::optional<std::size_t> OptimizationVariants::getIndex(const std::string &name) const {
  const auto found = findRow(m_rows, name);
  if (found == m_rows.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - m_rows.begin());
}

std::size_t OptimizationVariants::append(std::unique_ptr<OptimizationVariant> &&variant) {
  m_rows.push_back(std::move(variant));
  return m_rows.size() - 1;
}

std::size_t OptimizationVariants::insert(std::size_t index, std::unique_ptr<OptimizationVariant> &&variant) {
  m_rows.insert(m_rows.begin() + offset(index), std::move(variant));
  return index;
}

OptimizationVariants::iterator OptimizationVariants::insert(const_iterator position,
                                                            std::unique_ptr<OptimizationVariant> &&variant) {
  return m_rows.insert(position, std::move(variant));
}

void OptimizationVariants::erase(std::size_t index) {
  if (index < m_rows.size()) {
    m_rows.erase(m_rows.begin() + offset(index));
  }
}

OptimizationVariants::iterator OptimizationVariants::erase(const_iterator position) {
  return m_rows.erase(position);
}

std::unique_ptr<OptimizationVariant> OptimizationVariants::take(std::size_t index) {
  if (index >= m_rows.size()) {
    return nullptr;
  }
  std::unique_ptr<OptimizationVariant> row = std::move(m_rows[index]);
  erase(index);
  return row;
}

bool OptimizationVariants::move(std::size_t from, std::size_t to) {
  if (from >= m_rows.size() || to >= m_rows.size()) {
    return false;
  }
  if (from == to) {
    return true;
  }
  std::unique_ptr<OptimizationVariant> row = take(from);
  // With its old place gone, every later row has moved up by one.
  insert(to < from ? to : to - 1, std::move(row));
  return false;
}

OptimizationVariantValues<double> OptimizationVariants::standardVal(bool isInput, std::size_t index) const {
  // The cells of many rows lie far apart: looking them up by the block lets the processor fetch several at once,
  // which it cannot while it follows one cell to its value.
  constexpr std::size_t kBlock = 256;
  std::array<const EntityModel::Attribute *, kBlock> cells;
  OptimizationVariantValues<double> values(m_rows.size(), 0.0);
  for (std::size_t first = 0; first < m_rows.size(); first += kBlock) {
    const std::size_t count = std::min(kBlock, m_rows.size() - first);
    for (std::size_t row = 0; row < count; ++row) {
      fetchSoon(m_rows[first + row].get());
    }
    for (std::size_t row = 0; row < count; ++row) {
      const OptimizationVariant *variant = m_rows[first + row].get();
      cells[row] = variant == nullptr ? nullptr : variant->getAttribute(isInput, index);
      fetchSoon(cells[row]);
    }
    for (std::size_t row = 0; row < count; ++row) {
      if (cells[row] != nullptr) {
        values[first + row] = cells[row]->getStandardValue();
      }
    }
  }
  return values;
}

} // namespace OptimizationTool
