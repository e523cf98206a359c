#pragma once

#include "EmbeddedHost/Project.h"

#include <string>

namespace FaultTests {

/// One version of a project as text: its place in the tree, its marks, every value bit for bit, its run and the hash
/// of every result file. Two projects that hold the same give the same text: no identifier that is drawn by chance,
/// no time of day. Files of a version that was not solved, or whose solver may still be running, do not count.
/// Makes that version the shown one.
std::string versionText(EmbeddedHost::Project &project, EntityModel::ModelVersion &version);

/// The whole project, one block a version; each block begins with a line "@ name/version path".
std::string projectText(EmbeddedHost::Project &project, const std::string &name);

/// SHA-256 in hexadecimal digits.
std::string hashOf(const std::string &bytes);

} // namespace FaultTests
