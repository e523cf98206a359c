#include "benchmarks/common/Program.h"

#include "benchmarks/common/CommandLine.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <numeric>
#include <stdexcept>

namespace Benchmarking {

namespace {

// Nothing when help is asked for.
std::optional<Choice> readChoice(int count, char **arguments, std::size_t tables, const OwnOptions &own) {
  Choice choice;
  choice.tables.resize(tables);
  std::iota(choice.tables.begin(), choice.tables.end(), std::size_t{1});
  bool asksForHelp = false;
  for (int at = 1; at < count; ++at) {
    const std::string_view argument = arguments[at];
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const std::string_view value = equals == std::string_view::npos ? "" : argument.substr(equals + 1);
    const auto option = own.find(name);
    if (option != own.end()) {
      option->second(value);
    } else if (name == "--rows") {
      choice.tables = tableNumbers(value, tables);
    } else if (name == "--core") {
      choice.core = wholeNumber<int>(value);
    } else if (argument == "--quick") {
      choice.quick = true;
    } else if (argument == "--help") {
      asksForHelp = true;
    } else {
      throw std::invalid_argument("Unknown option " + std::string(argument));
    }
  }
  return asksForHelp ? std::nullopt : std::optional<Choice>(choice);
}

} // namespace

int runProgram(int count, char **arguments, const char *help, std::size_t tables, const OwnOptions &own,
               const std::function<void(const Choice &)> &measure) {
  try {
    if (const std::optional<Choice> choice = readChoice(count, arguments, tables, own)) {
      measure(*choice);
    } else {
      std::cout << help;
    }
    return 0;
  } catch (const std::invalid_argument &error) {
    std::cerr << error.what() << "\n\n" << help;
    return 2;
  } catch (const std::exception &error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}

std::string programPath() {
  return std::filesystem::read_symlink("/proc/self/exe").string();
}

void printAll(const BarList &bars, const char *heading) {
  std::cout << "\n" << heading << '\n';
  bars.print();
  bars.printSummary();
}

} // namespace Benchmarking
