#pragma once

#include <nlohmann/json.hpp>

#include <string>

namespace Workbench {

// Keeps the order in which the keys are set.
using Json = nlohmann::ordered_json;

// Stands in every document that a command prints: a key that is renamed, removed or given another meaning makes it the
// next number, one that is added does not.
constexpr int kJsonVersion = 1;

// The document as text, ending with a line feed. Bytes that are no UTF-8 become U+FFFD.
inline std::string jsonText(const Json &document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace Workbench
