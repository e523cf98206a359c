#pragma once

#include <string>
#include <string_view>

namespace EmbeddedHost {

/// A new name for a version's results folder: 16 hexadecimal digits drawn at random, so that a folder left behind
/// by a session that was never saved is not taken for that of another version.
std::string newFolderName();

/// Whether the text has the form of newFolderName(); anything else never becomes part of a path.
bool isFolderName(std::string_view text);

} // namespace EmbeddedHost
