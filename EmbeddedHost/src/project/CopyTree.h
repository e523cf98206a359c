#pragma once

#include <string>

namespace EmbeddedHost {

/// Copies a folder with the files and folders in it to a place that must be free. Links, pipes and devices are left
/// out; nothing is ever followed or waited for. File contents are shared with the original where the file system can.
/// \return false when anything could not be read or written; what was made so far is still there then
bool copyTree(const std::string &from, const std::string &to);

/// Writes the regular files of a folder, and the folders in it, to the disk. Links are not followed.
bool syncTree(const std::string &folder);

} // namespace EmbeddedHost
