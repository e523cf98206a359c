#pragma once

#include "OptimizationTool/Export.h"
#include "OptimizationTool/OptimizationVariant.h"
#include "OptimizationTool/OptimizationVariantGroup.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace OptimizationTool {

/// One value per row of the matrix, in row order.
template <typename T> using OptimizationVariantValues = std::vector<T>;

/// The variant matrix of a study: row 0 is the baseline, every further row an alternate version of the model.
/// It owns its rows. A place for a row may be null; searches by name skip those.
class OPTIMIZATIONTOOL_EXPORT OptimizationVariants {
public:
  using Rows = std::vector<std::unique_ptr<OptimizationVariant>>;
  using iterator = Rows::iterator;
  using const_iterator = Rows::const_iterator;

  /// The empty matrix.
  OptimizationVariants();
  OptimizationVariants(const OptimizationVariants &) = delete;
  OptimizationVariants &operator=(const OptimizationVariants &) = delete;
  OptimizationVariants(OptimizationVariants &&other) noexcept;
  OptimizationVariants &operator=(OptimizationVariants &&other) noexcept;
  virtual ~OptimizationVariants();

  /// \name The sequence of rows, as a standard vector has it: nothing is tested
  /// @{
  std::size_t size() const noexcept { return m_rows.size(); }
  bool empty() const noexcept { return m_rows.empty(); }
  std::unique_ptr<OptimizationVariant> &front() { return m_rows.front(); }
  const std::unique_ptr<OptimizationVariant> &front() const { return m_rows.front(); }
  std::unique_ptr<OptimizationVariant> &back() { return m_rows.back(); }
  const std::unique_ptr<OptimizationVariant> &back() const { return m_rows.back(); }
  iterator begin() noexcept { return m_rows.begin(); }
  const_iterator begin() const noexcept { return m_rows.begin(); }
  iterator end() noexcept { return m_rows.end(); }
  const_iterator end() const noexcept { return m_rows.end(); }
  std::unique_ptr<OptimizationVariant> &operator[](std::size_t index) { return m_rows[index]; }
  const std::unique_ptr<OptimizationVariant> &operator[](std::size_t index) const { return m_rows[index]; }
  Rows &data() noexcept { return m_rows; }
  const Rows &data() const noexcept { return m_rows; }
  /// @}

  /// \name Look-ups
  /// The row found stays owned by the matrix; null when there is none.
  /// @{

  /// The row at \p index; null when it is out of range.
  OptimizationVariant *get(std::size_t index);
  const OptimizationVariant *get(std::size_t index) const;
  /// The first row, in row order, with exactly this name; null when there is none, and for a null name.
  OptimizationVariant *get(const char *name);
  const OptimizationVariant *get(const char *name) const;
  /// The first row, in row order, with exactly this name, which may contain any bytes.
  OptimizationVariant *get(const std::string &name);
  const OptimizationVariant *get(const std::string &name) const;
  /// The row at an index of any other integer type, so that get(0) means the baseline and no null name; a
  /// negative index is out of range.
  template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
  OptimizationVariant *get(Integer index) {
    return get(static_cast<std::size_t>(index));
  }
  template <typename Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
  const OptimizationVariant *get(Integer index) const {
    return get(static_cast<std::size_t>(index));
  }
  /// Position of the first row with exactly this name; empty when there is none.
  std::optional<std::size_t> getIndex(const std::string &name) const;
  /// @}

  /// \name Changes
  /// @{

  /// Adds a row at the end.
  /// \return  its index
  std::size_t append(std::unique_ptr<OptimizationVariant> &&variant);
  /// Inserts a row before \p index, which must not exceed size() and is not tested.
  /// \return  \p index
  std::size_t insert(std::size_t index, std::unique_ptr<OptimizationVariant> &&variant);
  /// Inserts a row before \p position.
  /// \return  the place of the row
  iterator insert(const_iterator position, std::unique_ptr<OptimizationVariant> &&variant);
  /// Destroys and removes a row. Ignores an index out of range.
  void erase(std::size_t index);
  /// Destroys and removes a row.
  /// \return  the place that follows
  iterator erase(const_iterator position);
  /// Removes a row and hands it to the caller; null when \p index is out of range.
  std::unique_ptr<OptimizationVariant> take(std::size_t index);
  /// Moves a row before the one that is now at \p to. It ends at \p to when that is before its old place, else at
  /// \p to - 1, so no row becomes the last one this way.
  /// \param from  below size()
  /// \param to    below size()
  /// \return      true only when the indices are equal and nothing was to be done. False for an index out of range,
  ///              when nothing has changed, and just so for a row that was moved: the answer does not tell whether a
  ///              row has moved.
  bool move(std::size_t from, std::size_t to);
  /// @}

  /// The values of one column in the host's standard units, one element per row; 0.0 where a row has no such
  /// cell or an empty one.
  OptimizationVariantValues<double> standardVal(bool isInput, std::size_t index) const;

private:
  Rows m_rows;
};

} // namespace OptimizationTool
