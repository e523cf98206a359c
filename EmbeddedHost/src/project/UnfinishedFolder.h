#pragma once

#include "EmbeddedHost/src/project/FolderTree.h"

#include <string>

namespace EmbeddedHost {

class CopyProgress;

/// The folder "unfinished" beside the folders of versions. What is on its way in or out lies there, so that a
/// version's folder is there whole or not at all even if the program is killed: content that is not complete yet and
/// content that is being removed under names of newFolderName(), and under "old-<folder>" the only copy of a version's
/// folder whose place is about to be taken. Nothing else in it is ever touched.

/// Removes a version's folder, or whatever stands in its place: one renaming, and then the work.
bool removeThroughUnfinished(const Folder &results, const std::string &name, std::string &problem);

/// Copies a folder to a version's place, which may be taken: what was there stays until the new content is complete.
/// \param progress  told of each file; may be null
bool copyThroughUnfinished(const Folder &source, const Folder &results, const std::string &name,
                           CopyProgress *progress, std::string &problem);

/// Moves a version's folder of the same file system to another version's place, which may be taken.
bool moveThroughUnfinished(const Folder &source, const std::string &sourceName, const Folder &results,
                           const std::string &name, std::string &problem);

/// Puts a version's folder back that was set aside, if nothing has taken its place.
bool restoreSetAside(const Folder &results, const std::string &name, std::string &problem);

/// Clears up after a program that was killed: puts back what was set aside, removes what is of no use.
bool clearUnfinished(const Folder &results, std::string &problem);

} // namespace EmbeddedHost
