#pragma once

#include "benchmarks/common/Report.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Benchmarking {

/// What every benchmark program is told on its command line.
struct Choice {
  std::vector<std::size_t> tables; ///< from 1, in the order given; all of them unless told
  bool quick = false;
  std::optional<int> core;
};

/// Options of one program: the name with its dashes, and what takes the text behind the "=", "" where there is none.
using OwnOptions = std::map<std::string_view, std::function<void(std::string_view)>>;

/// Reads "--rows", "--quick", "--core", "--help" and the program's own options, and measures.
/// \param help     what "--help" prints, and what follows the message about a wrong option
/// \param tables   how many there are
/// \param measure  is not called for "--help"; what it throws is printed
/// \return the exit code: 0 when it could measure, whatever came out, 1 when it could not, 2 for a wrong option
int runProgram(int count, char **arguments, const char *help, std::size_t tables, const OwnOptions &own,
               const std::function<void(const Choice &)> &measure);

/// The path of the program that is running.
std::string programPath();

/// A heading, all bars, and how many hold.
void printAll(const BarList &bars, const char *heading);

/// Measures the chosen ones of a program's tables and prints all their bars.
/// \param tables   functions of a setting and a BarList, which print a table and add its bars
/// \param heading  of the list at the end
template <class Tables, class Setting>
void measureTables(const Tables &tables, const Choice &choice, const Setting &setting, const char *heading) {
  BarList bars;
  for (const std::size_t table : choice.tables) {
    tables.at(table - 1)(setting, bars);
  }
  printAll(bars, heading);
}

} // namespace Benchmarking
