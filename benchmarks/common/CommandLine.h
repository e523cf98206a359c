#pragma once

#include <charconv>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Benchmarking {

/// \throws std::invalid_argument  the text is no number of that type
template <class T> T wholeNumber(std::string_view text) {
  T number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) {
    throw std::invalid_argument("Not a whole number: " + std::string(text));
  }
  return number;
}

/// Reads numbers of tables with commas between them.
/// \param count  of the tables that there are, from 1
/// \throws std::invalid_argument  one of them is no number or there is no such table
std::vector<std::size_t> tableNumbers(std::string_view list, std::size_t count);

} // namespace Benchmarking
