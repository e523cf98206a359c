#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Benchmarking {

/// With so many digits behind the point.
std::string fixed(double value, int decimals);
/// In the unit that suits it, from ns to s.
std::string duration(double seconds);

/// Cells in aligned columns.
class Table {
public:
  /// Of all columns but the first, which is a name and stands to the left.
  enum class Alignment { Left, Right };

  explicit Table(std::vector<std::string> heading, Alignment alignment = Alignment::Right);

  void add(std::vector<std::string> cells);
  /// To standard output.
  void print() const;

private:
  std::vector<std::vector<std::string>> m_lines;
  Alignment m_alignment;
};

/// What must hold and what is aimed at, each beside what was measured. Small is good.
class BarList {
public:
  /// \param must  the bar; nothing where only a goal is set
  /// \param unit  what the figures are counted in, empty for ratios
  void judge(const std::string &what, double measured, std::optional<double> must, std::optional<double> goal,
             const std::string &unit = "");

  bool empty() const noexcept;
  /// All bars from the given one on, to standard output.
  void print(std::size_t from = 0) const;
  /// One sentence: how many bars and goals hold.
  void printSummary() const;
  std::size_t size() const noexcept;

private:
  struct Bar {
    std::string what;
    double measured = 0.0;
    std::optional<double> must;
    std::optional<double> goal;
    std::string unit;
  };
  std::vector<Bar> m_bars;
};

} // namespace Benchmarking
