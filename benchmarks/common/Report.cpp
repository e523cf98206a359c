#include "benchmarks/common/Report.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <utility>

namespace Benchmarking {

namespace {

std::string withUnit(double value, const std::string &unit) {
  const int decimals = value < 10.0 ? 3 : value < 100.0 ? 2 : 1;
  return fixed(value, decimals) + unit;
}

bool holds(double measured, const std::optional<double> &limit) {
  return !limit || measured <= *limit;
}

std::string verdict(double measured, const std::optional<double> &limit, const std::string &unit) {
  if (!limit) {
    return "-";
  }
  const std::string name = "<= " + withUnit(*limit, unit) + ": ";
  const double ratio = measured / *limit;
  if (ratio <= 1.0) {
    return name + "holds, " + fixed((1.0 - ratio) * 100.0, 1) + " % below";
  }
  return name + "MISSED by " +
         (ratio < 2.0 ? fixed((ratio - 1.0) * 100.0, 1) + " %" : "a factor of " + fixed(ratio, 1));
}

} // namespace

std::string fixed(double value, int decimals) {
  std::ostringstream out;
  out << std::fixed << std::setprecision(decimals) << value;
  return out.str();
}

std::string duration(double seconds) {
  if (seconds < 1e-6) {
    return fixed(seconds * 1e9, 1) + " ns";
  }
  if (seconds < 1e-3) {
    return fixed(seconds * 1e6, 2) + " us";
  }
  return seconds < 1.0 ? fixed(seconds * 1e3, 2) + " ms" : fixed(seconds, 3) + " s";
}

Table::Table(std::vector<std::string> heading, Alignment alignment) : m_alignment(alignment) {
  m_lines.push_back(std::move(heading));
}

void Table::add(std::vector<std::string> cells) {
  m_lines.push_back(std::move(cells));
}

void Table::print() const {
  std::vector<std::size_t> widths;
  for (const std::vector<std::string> &line : m_lines) {
    widths.resize(std::max(widths.size(), line.size()));
    for (std::size_t column = 0; column < line.size(); ++column) {
      widths[column] = std::max(widths[column], line[column].size());
    }
  }
  for (const std::vector<std::string> &line : m_lines) {
    std::ostringstream out;
    for (std::size_t column = 0; column < line.size(); ++column) {
      out << (column == 0 ? "  " : "   ")
          << (column == 0 || m_alignment == Alignment::Left ? std::left : std::right)
          << std::setw(static_cast<int>(widths[column])) << line[column];
    }
    std::cout << out.str() << '\n';
  }
  std::cout << std::flush;
}

void BarList::judge(const std::string &what, double measured, std::optional<double> must,
                    std::optional<double> goal, const std::string &unit) {
  m_bars.push_back({what, measured, must, goal, unit});
}

bool BarList::empty() const noexcept {
  return m_bars.empty();
}

std::size_t BarList::size() const noexcept {
  return m_bars.size();
}

void BarList::print(std::size_t from) const {
  Table table({"", "measured", "must", "goal"}, Table::Alignment::Left);
  for (std::size_t at = from; at < m_bars.size(); ++at) {
    const Bar &bar = m_bars[at];
    table.add({bar.what, withUnit(bar.measured, bar.unit), verdict(bar.measured, bar.must, bar.unit),
               verdict(bar.measured, bar.goal, bar.unit)});
  }
  table.print();
}

void BarList::printSummary() const {
  const auto missed = [this](std::optional<double> Bar::*limit) {
    return std::count_if(m_bars.begin(), m_bars.end(),
                         [limit](const Bar &bar) { return !holds(bar.measured, bar.*limit); });
  };
  std::cout << m_bars.size() << " figures: " << missed(&Bar::must) << " bars MISSED, " << missed(&Bar::goal)
            << " goals MISSED\n";
}

} // namespace Benchmarking
