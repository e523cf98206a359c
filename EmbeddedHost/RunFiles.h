#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace EmbeddedHost {

/// Reads a whole regular file.
/// \return empty when it cannot be read or holds more than `largest` bytes; `problem` then says why
std::optional<std::string> readWholeFile(const std::string &path, std::size_t largest, std::string &problem);

/// Writes a new file with this content and fails when one of that name exists. Every write is checked, so
/// that a full disk cannot leave a shortened file unnoticed.
/// \return false with the reason in `problem`; a
/// partly written file is removed
bool writeNewFile(const std::string &path, std::string_view content, std::string &problem);

/// Copies a regular file (a link's target, not the link) to a new file and fails when one of that name
/// exists. The permission to execute is kept.
bool copyToNewFile(const std::string &from, const std::string &to, std::string &problem);

} // namespace EmbeddedHost
