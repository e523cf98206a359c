#include "EmbeddedHost/src/model/NumberText.h"

#include <charconv>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kLongestNumber = 64;

template <class Number> std::string shortestText(Number value) {
  char buffer[kLongestNumber];
  const auto end = std::to_chars(buffer, buffer + kLongestNumber, value).ptr;
  return {buffer, end};
}

// The library's reader takes no "+", engineers write one.
std::string_view withoutPlus(std::string_view text) {
  const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+';
  return hasPlus ? text.substr(1) : text;
}

} // namespace

std::string numberText(double value) {
  return shortestText(value);
}

std::string numberText(std::int64_t value) {
  return shortestText(value);
}

std::optional<LeadingNumber> readLeadingNumber(std::string_view text) {
  const std::string_view digits = withoutPlus(text);
  LeadingNumber number;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number.value);
  if (error != std::errc()) {
    return std::nullopt;
  }
  number.length = static_cast<std::size_t>(end - text.data());
  return number;
}

std::optional<std::int64_t> readInteger(std::string_view text) {
  const std::string_view digits = withoutPlus(text);
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    return std::nullopt;
  }
  return value;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

} // namespace EmbeddedHost
