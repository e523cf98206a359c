#pragma once

#include "EmbeddedHost/src/project/FolderTree.h"

#include <string>

namespace EmbeddedHost {

class CopyProgress;

/// Folders inside folders deeper than this are refused by both operations, so that they need few open files.
constexpr int kDeepestFolder = 200;

/// Copies a folder with the files and folders in it into a new one. Links, pipes and devices are left out; nothing is
/// ever followed or waited for. File contents are shared with the original where the file system can.
/// \param name      of the new folder in \p target, where nothing of that name may be
/// \param progress  told of each file; may be null
/// \param leftOut   what of \p source itself is not copied
/// \return false with one sentence in \p problem; what was made so far is still there then
bool copyTree(const Folder &source, const Folder &target, const std::string &name, std::string &problem,
              CopyProgress *progress = nullptr, const std::string &leftOut = {});

/// Writes the regular files of a folder, and the folders in it, to the disk. Links are not followed.
bool syncTree(const Folder &folder, std::string &problem);

} // namespace EmbeddedHost
