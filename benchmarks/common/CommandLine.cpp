#include "benchmarks/common/CommandLine.h"

namespace Benchmarking {

std::vector<std::size_t> tableNumbers(std::string_view list, std::size_t count) {
  std::vector<std::size_t> numbers;
  for (;;) {
    const std::size_t comma = list.find(',');
    numbers.push_back(wholeNumber<std::size_t>(list.substr(0, comma)));
    if (numbers.back() < 1 || numbers.back() > count) {
      throw std::invalid_argument("There is no table " + std::to_string(numbers.back()));
    }
    if (comma == std::string_view::npos) {
      return numbers;
    }
    list.remove_prefix(comma + 1);
  }
}

} // namespace Benchmarking
