#include "EmbeddedHost/src/project/FolderName.h"

#include <algorithm>
#include <cstdint>
#include <random>

namespace EmbeddedHost {

namespace {

constexpr std::size_t kDigits = 16;
constexpr std::string_view kHexDigits = "0123456789abcdef";

} // namespace

std::string newFolderName() {
  static std::mt19937_64 generator = [] {
    std::random_device device;
    std::seed_seq seed{device(), device(), device(), device()};
    return std::mt19937_64(seed);
  }();
  std::uint64_t bits = generator();
  std::string name(kDigits, '0');
  for (char &digit : name) {
    digit = kHexDigits[bits & 15U];
    bits >>= 4U;
  }
  return name;
}

bool isFolderName(std::string_view text) {
  return text.size() == kDigits && text.find_first_not_of(kHexDigits) == std::string_view::npos;
}

} // namespace EmbeddedHost
